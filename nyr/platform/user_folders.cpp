#include "nyr/platform/user_folders_p.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace nyr::platform {

std::string HomeFolder()
{
    std::string home;
    if (const char* env = std::getenv("HOME"); env && env[0])
        home = env;
    else if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir)
        home = pw->pw_dir;
    while (!home.empty() && home.back() == '/')
        home.pop_back();
    return home;
}

std::string XdgFolder(const char* variable, const char* belowHome)
{
    if (const char* value = std::getenv(variable); value && value[0] == '/')
        return value;
    return HomeFolder() + belowHome;
}

std::string SafeFileName(const std::string& name, std::size_t maxLength)
{
    std::string safe = name.substr(0, maxLength);
    for (char& c : safe) {
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                          c == '_' || c == '-';
        if (!keep)
            c = '_';
    }
    return safe.empty() || safe == "." || safe == ".." ? "nyr" : safe;
}

void CreateParentFolders(const std::string& path)
{
    for (size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), 0700);
}

}  // namespace nyr::platform
