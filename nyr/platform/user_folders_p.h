#pragma once

#include <cstddef>
#include <string>

// The user's folders by the freedesktop base-directory rules, shared by the
// settings file, the log file and the single-instance guard.

namespace nyr::platform {

// $HOME, else the password database's home folder; no trailing "/" ("" for
// a home of "/").
std::string HomeFolder();

// The folder named by the environment variable `variable` when it holds an
// absolute path, else HomeFolder() + `belowHome` ("/.config",
// "/.local/state").
std::string XdgFolder(const char* variable, const char* belowHome);

// `name` as one safe file-name component: characters other than letters,
// digits, ".", "_" and "-" become "_", at most `maxLength` are kept; "",
// "." and ".." become "nyr".
std::string SafeFileName(const std::string& name, std::size_t maxLength = 64);

// Creates the missing folders above `path` (not its last component), mode
// 0700. Failures are left for the caller's next open or rename to report.
void CreateParentFolders(const std::string& path);

}  // namespace nyr::platform
