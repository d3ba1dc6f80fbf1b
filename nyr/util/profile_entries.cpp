#include "nyr/util/profile_entries.h"

#include <cstdlib>
#include <mutex>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/platform/system_error.h"
#include "nyr/platform/user_folders_p.h"
#include "nyr/util/profile_store_p.h"
#include "nyr/util/profile_text_p.h"

using nyr::detail::ReadProfileValue;
using nyr::detail::WriteProfileValue;

// ---- file-addressed operations --------------------------------------------

unsigned int CNyrProfileEntries::ReadProfileInt(const std::string& file, const std::string& section,
                                                const std::string& entry, int defaultValue)
{
    auto value = static_cast<unsigned int>(defaultValue);
    // Present but empty reads as the default too, as on the platform.
    ReadProfileValue(file, section, entry, [&](std::string_view text) {
        if (!text.empty())
            value = nyr::detail::ParseProfileUnsigned(text);
    });
    return value;
}

int CNyrProfileEntries::WriteProfileInt(const std::string& file, const std::string& section,
                                        const std::string& entry, int value)
{
    return WriteProfileValue(file, section, entry, std::to_string(value), false) ? 1 : 0;
}

std::string CNyrProfileEntries::ReadProfileString(const std::string& file, const std::string& section,
                                                  const std::string& entry, const std::string& defaultValue)
{
    std::string value;
    if (!ReadProfileValue(file, section, entry, [&](std::string_view text) { value.assign(text); }))
        return defaultValue;
    return value;
}

int CNyrProfileEntries::WriteProfileStringA(const std::string& file, const std::string& section,
                                            const std::string& entry, const std::string& value)
{
    return WriteProfileValue(file, section, entry, value, false) ? 1 : 0;
}

void CNyrProfileEntries::ReadProfileIntVector(const std::string& file, const std::string& section,
                                              const std::string& entry, std::vector<int>& values)
{
    values.clear();
    ReadProfileValue(file, section, entry,
                     [&](std::string_view text) { nyr::detail::ParseIntVector(text, values); });
}

int CNyrProfileEntries::WriteProfileIntVector(const std::string& file, const std::string& section,
                                              const std::string& entry, const std::vector<int>& values)
{
    return WriteProfileValue(file, section, entry, nyr::detail::FormatIntVector(values), false) ? 1 : 0;
}

// ---- the host application's profile store --------------------------------

CNyrHostProfile::~CNyrHostProfile() = default;

void CNyrProfileEntries::ReadProfileIntVector(CNyrHostProfile& host, const std::string& section,
                                              const std::string& entry, std::vector<int>& values)
{
    nyr::detail::ParseIntVector(host.GetProfileString(section, entry, ""), values);
}

int CNyrProfileEntries::WriteProfileIntVector(CNyrHostProfile& host, const std::string& section,
                                              const std::string& entry, const std::vector<int>& values)
{
    return host.WriteProfileString(section, entry, nyr::detail::FormatIntVector(values));
}

// ---- the library's own file ---------------------------------------------
// Writes create the file's folder when it is missing (~/.config may not
// exist yet on a fresh account).

unsigned int CNyrProfileEntries::ReadNyrProfileInt(const std::string& section, const std::string& entry,
                                                   int defaultValue)
{
    return ReadProfileInt(NyrGetProfilePath(), section, entry, defaultValue);
}

int CNyrProfileEntries::WriteNyrProfileInt(const std::string& section, const std::string& entry, int value)
{
    return WriteProfileValue(NyrGetProfilePath(), section, entry, std::to_string(value), true) ? 1 : 0;
}

std::string CNyrProfileEntries::ReadNyrProfileString(const std::string& section, const std::string& entry,
                                                     const std::string& defaultValue)
{
    return ReadProfileString(NyrGetProfilePath(), section, entry, defaultValue);
}

int CNyrProfileEntries::WriteNyrProfileString(const std::string& section, const std::string& entry,
                                              const std::string& value)
{
    return WriteProfileValue(NyrGetProfilePath(), section, entry, value, true) ? 1 : 0;
}

void CNyrProfileEntries::ReadNyrProfileIntVector(const std::string& section, const std::string& entry,
                                                 std::vector<int>& values)
{
    ReadProfileIntVector(NyrGetProfilePath(), section, entry, values);
}

int CNyrProfileEntries::WriteNyrProfileIntVector(const std::string& section, const std::string& entry,
                                                 const std::vector<int>& values)
{
    return WriteProfileValue(NyrGetProfilePath(), section, entry, nyr::detail::FormatIntVector(values), true) ? 1
                                                                                                              : 0;
}

// ---- waits and failures -------------------------------------------------

void NyrSetProfileLockTimeout(unsigned milliseconds)
{
    nyr::detail::SetProfileLockWait(milliseconds);
}

unsigned NyrGetProfileLockTimeout()
{
    return nyr::detail::ProfileLockWait();
}

std::string NyrGetProfileError()
{
    using nyr::detail::ProfileProblem;
    const nyr::detail::ProfileStatus status = nyr::detail::LastProfileStatus();
    const char* path = nyr::detail::LastProfilePath().c_str();
    const auto text = [](unsigned id) { return NyrLoadString(id); };
    switch (status.problem) {
    case ProfileProblem::kNone: return {};
    case ProfileProblem::kLocked: return NyrFormat(text(NYR_IDS_SETTINGS_LOCKED).c_str(), path);
    case ProfileProblem::kReadOnly: return NyrFormat(text(NYR_IDS_SETTINGS_READ_ONLY).c_str(), path);
    case ProfileProblem::kTooLarge:
        return NyrFormat(text(NYR_IDS_SETTINGS_TOO_LARGE).c_str(), path,
                         static_cast<int>(nyr::detail::kMaxProfileFileSize >> 20));
    case ProfileProblem::kNotRegular: return NyrFormat(text(NYR_IDS_SETTINGS_NOT_REGULAR).c_str(), path);
    case ProfileProblem::kRefused: return NyrFormat(text(NYR_IDS_SETTINGS_BREAKS_LINES).c_str(), path);
    case ProfileProblem::kReadError:
    case ProfileProblem::kWriteError:
        return NyrFormat(text(status.problem == ProfileProblem::kReadError ? NYR_IDS_SETTINGS_CANNOT_READ
                                                                           : NYR_IDS_SETTINGS_CANNOT_WRITE)
                             .c_str(),
                         path, NyrSystemErrorText(static_cast<unsigned long>(status.error)).c_str());
    }
    return {};
}

// ---- where the file lives ------------------------------------------------

namespace {

constexpr const char* kFileName = "Nyr240.INI";

std::mutex& PathMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::string& ProfilePath()
{
    static std::string path;  // empty: not decided yet
    return path;
}

// $XDG_CONFIG_HOME when set to an absolute path, else $HOME/.config (the
// password database's home folder when HOME is unset).
std::string DefaultFolder()
{
    return nyr::platform::XdgFolder("XDG_CONFIG_HOME", "/.config");
}

}  // namespace

void NyrSetProfilePath(const std::string& path)
{
    std::lock_guard lock(PathMutex());
    ProfilePath() = path;
}

void NyrSetProfilePrefix(const std::string& prefix)
{
    std::lock_guard lock(PathMutex());
    ProfilePath() = DefaultFolder() + "/" + prefix + "." + kFileName;
}

std::string NyrGetProfilePath()
{
    std::lock_guard lock(PathMutex());
    if (ProfilePath().empty())
        ProfilePath() = DefaultFolder() + "/" + kFileName;
    return ProfilePath();
}
