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
};

// Runs a program with an argument vector (no shell), feeding `input` to its
// standard input, and collects its output.
ProcessResult RunProcess(const std::vector<std::string>& argv, const std::string& input = {});

}  // namespace nyr::test
