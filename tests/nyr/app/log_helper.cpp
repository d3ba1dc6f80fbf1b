// A second process for the log tests: writes through CNyrLogFile under
// conditions a test process should not put itself in (killed mid-run, a file
// size limit, a full file system) and reports what happened on stdout.
//   log_helper crash PATH                      writes one line, then SIGKILL
//   log_helper write PATH COUNT FSIZE MAXBYTES writes COUNT lines under
//                                              RLIMIT_FSIZE (0: none)
//   log_helper diskfull DIR                    fills the file system of DIR,
//                                              logs, frees it, logs again
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "nyr/app/log_file.h"
#include "nyr/util/profile_entries.h"

namespace {

void Fill(const std::string& path)
{
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const std::string block(512, 'x');
    while (write(fd, block.data(), block.size()) > 0) {
    }
    while (write(fd, "x", 1) > 0) {
    }
    close(fd);
}

int DiskFull(const std::string& dir)
{
    CNyrLogFile log(dir + "/app.log");
    // Most of one page, so the line that meets the full disk fits in part.
    for (int i = 0; i < 38; ++i)
        log.Info("before " + std::to_string(i) + std::string(40, '.'));
    Fill(dir + "/filler");
    int written = 0;
    for (int i = 0; i < 50; ++i)
        written += log.Info("while full " + std::to_string(i) + std::string(200, '.'));
    std::printf("written while full %d lost %llu\n", written, static_cast<unsigned long long>(log.LostLines()));
    unlink((dir + "/filler").c_str());
    std::printf("written after %d\n", log.Info("after"));
    std::fflush(stdout);
    return execlp("cat", "cat", (dir + "/app.log").c_str(), static_cast<char*>(nullptr));
}

}  // namespace

int main(int argc, char** argv)
{
    NyrSetProfilePath("/nonexistent/settings.ini");  // time format row 0
    const std::string mode = argc > 2 ? argv[1] : "";
    if (mode == "crash") {
        CNyrLogFile log(argv[2]);
        log.Error("last words");
        raise(SIGKILL);
    }
    if (mode == "write" && argc == 6) {
        if (const long fsize = std::atol(argv[4]); fsize > 0) {
            const rlimit limit{static_cast<rlim_t>(fsize), static_cast<rlim_t>(fsize)};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        CNyrLogFile log(argv[2]);
        log.SetLimits(std::strtoull(argv[5], nullptr, 10), 5);
        const int count = std::atoi(argv[3]);
        int written = 0;
        for (int i = 0; i < count; ++i)
            written += log.Info("line " + std::to_string(i) + " " + std::string(100, '.'));
        std::printf("written %d lost %llu\n", written, static_cast<unsigned long long>(log.LostLines()));
        return 0;
    }
    if (mode == "diskfull")
        return DiskFull(argv[2]);
    return 2;
}
