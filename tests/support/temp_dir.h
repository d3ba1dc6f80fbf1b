#pragma once

#include <string>
#include <vector>

namespace nyr::test {

// A fresh folder below $TMPDIR (or /tmp), removed with its contents when the
// object goes out of scope.
class TempDir
{
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    // Path() + "/" + name
    std::string File(const std::string& name) const;

private:
    std::string m_path;
};

// Whole file contents ("" when unreadable) and a whole-file write.
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);

}  // namespace nyr::test

namespace nyr::test {

struct ProcessResult
{
    int exitCode = -1;  // -1 when the process could not run or was killed
    std::string out;
    std::string err;
    bool timedOut = false;  // killed for running longer than allowed
};

// Runs a program with an argument vector (no shell), feeding `input` to its
// standard input, and collects its output. A process still running after
// `limitSeconds` is killed.
ProcessResult RunProcess(const std::vector<std::string>& argv, const std::string& input = {},
                         int limitSeconds = 120);

}  // namespace nyr::test

namespace nyr::test {

// Another process holding the exclusive advisory lock (flock) on a file, as a
// settings writer of another program would, until the object goes.
class LockHolder
{
public:
    explicit LockHolder(const std::string& path);  // returns once the lock is held
    ~LockHolder();                                 // kills the holder
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

    bool Holding() const { return m_pid > 0; }
    // Stops the holder as Ctrl+Z would; it keeps the lock.
    void Stop();

private:
    void Release();
    int m_pid = -1;
};

}  // namespace nyr::test
