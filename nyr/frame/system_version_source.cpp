// The version source of this platform: the Linux library that plays the part
// of each Windows library, its version as the loaded Qt reports it (see
// version_check.h for the table and the rule).
#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>

#include "nyr/frame/version_check.h"
#include "nyr/platform/ascii_p.h"

namespace {

struct Counterpart
{
    const char* windowsName;
    const char* soname;
    std::uint32_t levelMajor, levelMinor;  // interface level reported from Qt 6.2 on
};

constexpr Counterpart kCounterparts[] = {
    {"ComCtl32.Dll", "libQt6Widgets.so.6", 6, 0}, {"Shell32.Dll", "libQt6Gui.so.6", 6, 0},
    {"Shlwapi.Dll", "libQt6Core.so.6", 6, 0},     {"ShFolder.Dll", "libQt6Core.so.6", 6, 0},
    {"Mfc70.Dll", "libQt6Widgets.so.6", 7, 0},
};

constexpr std::uint32_t kMinimumMajor = 6, kMinimumMinor = 2;

// "6.4.2" gives 6, 4, 2; false unless it starts with a number.
bool ParseVersion(const char* text, std::uint32_t (&parts)[3])
{
    const char* p = text;
    for (int i = 0; i < 3; ++i) {
        parts[i] = 0;
        if (*p < '0' || *p > '9')
            return i > 0;
        char* end = nullptr;
        parts[i] = static_cast<std::uint32_t>(std::strtoul(p, &end, 10) & 0xFFFF);
        p = end;
        if (*p == '.')
            ++p;
    }
    return true;
}

// The version the loaded Qt reports about itself. qVersion lives in QtCore;
// asked through a module's handle, dlsym searches the module and the
// libraries it was loaded with, so it answers for the QtCore that module
// runs on. The file name says nothing: applications ship Qt under its
// soname alone.
bool QtVersion(void* handle, std::uint32_t (&parts)[3])
{
    using VersionFunction = const char* (*)();
    const auto version = reinterpret_cast<VersionFunction>(dlsym(handle, "qVersion"));
    const char* text = version ? version() : nullptr;
    return text && ParseVersion(text, parts);
}

class SystemSource final : public CNyrVersionSource
{
public:
    bool Query(const std::string& fileName, VS_FIXEDFILEINFO& info, unsigned long& errorCode) override
    {
        for (const Counterpart& c : kCounterparts) {
            if (nyr::ascii::EqualsNoCase(c.windowsName, fileName))
                return Read(c, info, errorCode);
        }
        errorCode = ENOENT;
        return false;
    }

private:
    static bool Read(const Counterpart& c, VS_FIXEDFILEINFO& info, unsigned long& errorCode)
    {
        // Stays resident: unloading a library that ran its static initialisers
        // orphans what they allocated.
        void* handle = dlopen(c.soname, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
        if (!handle) {
            errorCode = ENOENT;
            return false;
        }
        std::uint32_t v[3];
        const bool known = QtVersion(handle, v);
        dlclose(handle);
        if (!known) {
            errorCode = ENOEXEC;
            return false;
        }
        info = VS_FIXEDFILEINFO{};
        info.dwSignature = 0xFEEF04BD;
        info.dwStrucVersion = 0x00010000;
        info.dwFileVersionMS = v[0] << 16 | v[1];
        info.dwFileVersionLS = v[2] << 16;
        const bool recent = v[0] > kMinimumMajor || (v[0] == kMinimumMajor && v[1] >= kMinimumMinor);
        info.dwProductVersionMS = recent ? (c.levelMajor << 16 | c.levelMinor) : info.dwFileVersionMS;
        info.dwProductVersionLS = recent ? 0 : info.dwFileVersionLS;
        return true;
    }
};

}  // namespace

CNyrVersionSource& NyrSystemVersionSource()
{
    static SystemSource source;
    return source;
}
