// Importing a leap-second list: the input is the list file.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"

namespace {

std::string g_dir;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    char pattern[] = "/tmp/nyr-fuzz-leap-XXXXXX";
    g_dir = mkdtemp(pattern) ? pattern : "/tmp";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // A settings file of its own for every input: the store may trust its
    // cache of a file for a clock tick, so a file removed behind its back
    // could still be read by the next input.
    static unsigned long run = 0;
    const std::string settings = g_dir + "/Nyr240-" + std::to_string(++run) + ".INI";
    NyrSetProfilePath(settings);
    const std::string list = g_dir + "/leap-seconds.list";
    std::FILE* file = std::fopen(list.c_str(), "wb");
    if (!file)
        return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    CNyrTimeHelper::LoadLeapSeconds();
    bool expired = false;
    const int added = CNyrTimeHelper::ImportLeapSecondsList(list, &expired);
    if (added < -1)
        __builtin_trap();
    // The saved table must read back to the same answers.
    const double before = CNyrTimeHelper::GetLeapSeconds(1e6);
    CNyrTimeHelper::LoadLeapSeconds();
    if (CNyrTimeHelper::GetLeapSeconds(1e6) != before)
        __builtin_trap();
    std::remove(settings.c_str());
    return 0;
}
