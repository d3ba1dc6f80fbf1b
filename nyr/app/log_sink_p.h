#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace nyr::app {

// The file side of CNyrLogFile: opening, the size limit, rotation and
// writes that either land whole or not at all. Not locked: its owner
// serialises the calls.
class LogSink
{
public:
    LogSink() = default;
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    // Closes the current file; the next Append opens `path` ("" for none).
    void SetPath(std::string path);
    const std::string& Path() const { return m_path; }
    void SetLimits(std::uint64_t maxBytes, int keep);

    // Opens the file when it is not open or was removed or renamed meanwhile.
    // 0, or the errno value of the failure.
    int Prepare();
    // True once after each open: the caller then reads the time format again.
    bool TakeOpened();

    // Appends `line` (one line, "\n" included) to the file the last Prepare
    // checked: rotates first when it would pass the limit. 0 when all of it
    // is in the file, else the errno value; a line that could be written
    // only in part is cut off again.
    int Append(std::string_view line);

private:
    void Close();
    std::uint64_t Limit() const;  // the smaller of m_maxBytes and RLIMIT_FSIZE
    void Rotate();
    int WriteWhole(std::string_view line);

    std::string m_path;
    std::uint64_t m_maxBytes = 1024 * 1024;
    int m_keep = 3;
    int m_fd = -1;
    dev_t m_dev = 0;  // identity of the open file, to notice a rotation by others
    ino_t m_ino = 0;
    std::uint64_t m_size = 0;  // size of the file as last seen
    bool m_opened = false;
};

}  // namespace nyr::app
