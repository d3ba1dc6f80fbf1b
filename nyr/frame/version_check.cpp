#include "nyr/frame/version_check.h"

#include <cerrno>
#include <cstring>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/platform/system_error.h"

namespace {

constexpr std::size_t kMaxErrorText = 260;

CNyrVersionSource*& InstalledSource()
{
    static CNyrVersionSource* source = nullptr;
    return source;
}

// One cached query per library and process.
struct CachedInfo
{
    bool firstCallDone = false;
    bool loaded = false;
    unsigned long error = 0;
    VS_FIXEDFILEINFO info{};
};

enum Library { kComCtl32, kShell32, kShFolder, kShlwapi, kMfc, kLibraryCount };

constexpr const char* kFileNames[kLibraryCount] = {"ComCtl32.Dll", "Shell32.Dll", "ShFolder.Dll", "Shlwapi.Dll",
                                                   "Mfc70.Dll"};
constexpr const char* kPrefixes[kLibraryCount] = {"ComCtl32.dll: ", "Shell32.dll: ", "ShFolder.dll: ",
                                                  "Shlwapi.dll: ", "Mfc70.dll: "};

CachedInfo& Cache(Library library)
{
    static CachedInfo cache[kLibraryCount];
    return cache[library];
}

bool FixedFileInfo(Library library, VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    CachedInfo& cached = Cache(library);
    if (!cached.firstCallDone) {
        cached.loaded = NyrLoadFixedFileInfo(cached.info, kFileNames[library], &cached.error);
        cached.firstCallDone = true;
    }
    if (cached.loaded) {
        info = cached.info;
        if (errorCode)
            *errorCode = 0;
        if (text)
            text->clear();
        return true;
    }
    info = VS_FIXEDFILEINFO{};
    if (errorCode)
        *errorCode = cached.error;
    if (text)
        *text = NyrSystemErrorText(cached.error).substr(0, kMaxErrorText);
    return false;
}

unsigned Major(const VS_FIXEDFILEINFO& info) { return info.dwProductVersionMS >> 16; }
unsigned Minor(const VS_FIXEDFILEINFO& info) { return info.dwProductVersionMS & 0xFFFF; }

// Step 1 of every check: the cached record, or the prefix and system text.
bool Fetch(Library library, VS_FIXEDFILEINFO& info, std::string& message)
{
    std::string text;
    if (FixedFileInfo(library, info, nullptr, &text))
        return true;
    message = kPrefixes[library] + text;
    return false;
}

std::string FoundMessage(unsigned textId, unsigned foundMajor, unsigned foundMinor, unsigned wantMajor,
                         unsigned wantMinor)
{
    const std::string pattern = NyrLoadString(textId);
    return NyrFormat(pattern.c_str(), static_cast<int>(foundMajor), static_cast<int>(foundMinor),
                     static_cast<int>(wantMajor), static_cast<int>(wantMinor));
}

// ComCtl32, Shell32 and Shlwapi: 5.x or later, or 4.71 or later.
bool Check471(Library library, unsigned textId, std::string& message)
{
    VS_FIXEDFILEINFO info;
    if (!Fetch(library, info, message))
        return false;
    message.clear();
    const unsigned major = Major(info), minor = Minor(info);
    if (major >= 5 || (major == 4 && minor >= 71))
        return true;
    message = FoundMessage(textId, major, minor, 4, 71);
    return false;
}

}  // namespace

CNyrVersionSource::~CNyrVersionSource() = default;

void NyrSetVersionSource(CNyrVersionSource* source)
{
    InstalledSource() = source;
}

CNyrVersionSource& NyrGetVersionSource()
{
    return InstalledSource() ? *InstalledSource() : NyrSystemVersionSource();
}

void NyrResetFixedFileInfoCache()
{
    for (int library = 0; library < kLibraryCount; ++library)
        Cache(static_cast<Library>(library)) = CachedInfo{};
}

bool NyrLoadFixedFileInfo(VS_FIXEDFILEINFO& info, const char* fileName, unsigned long* errorCode, std::string* text)
{
    info = VS_FIXEDFILEINFO{};
    if (errorCode)
        *errorCode = 0;
    if (text)
        text->clear();
    unsigned long error = 0;
    if (fileName && NyrGetVersionSource().Query(fileName, info, error))
        return true;
    info = VS_FIXEDFILEINFO{};
    if (!fileName || error == 0)
        error = ENOENT;
    if (errorCode)
        *errorCode = error;
    if (text)
        *text = NyrSystemErrorText(error).substr(0, kMaxErrorText);
    return false;
}

bool NyrFixedFileInfoComCtl32(VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    return FixedFileInfo(kComCtl32, info, errorCode, text);
}

bool NyrFixedFileInfoShell32(VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    return FixedFileInfo(kShell32, info, errorCode, text);
}

bool NyrFixedFileInfoShFolder(VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    return FixedFileInfo(kShFolder, info, errorCode, text);
}

bool NyrFixedFileInfoShlwapi(VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    return FixedFileInfo(kShlwapi, info, errorCode, text);
}

bool NyrFixedFileInfoMfc(VS_FIXEDFILEINFO& info, unsigned long* errorCode, std::string* text)
{
    return FixedFileInfo(kMfc, info, errorCode, text);
}

bool NyrCheckComCtl32Version(std::string& message)
{
    return Check471(kComCtl32, NYR_IDS_VERSION_COMCTL32, message);
}

bool NyrCheckShell32Version(std::string& message)
{
    return Check471(kShell32, NYR_IDS_VERSION_SHELL32, message);
}

bool NyrCheckShlwapiVersion(std::string& message)
{
    return Check471(kShlwapi, NYR_IDS_VERSION_SHLWAPI, message);
}

bool NyrCheckMfcVersion(std::string& message)
{
    VS_FIXEDFILEINFO info;
    if (!Fetch(kMfc, info, message))
        return false;
    message.clear();
    if (Major(info) >= 7)
        return true;
    message = FoundMessage(NYR_IDS_VERSION_MFC70, Major(info), Minor(info), 7, 0);
    return false;
}

bool NyrCheckShFolderVersion(std::string& message)
{
    VS_FIXEDFILEINFO shell32, shFolder;
    if (!Fetch(kShell32, shell32, message) || !Fetch(kShFolder, shFolder, message))
        return false;
    message.clear();
    // Shell32's version decides and the Shell32 text reports: intended.
    if (Major(shell32) >= 4)
        return true;
    message = FoundMessage(NYR_IDS_VERSION_SHELL32, Major(shell32), Minor(shell32), 4, 0);
    return false;
}

bool NyrCheckAllRequirements(eNyrRequirements& missing, std::string& message)
{
    struct Step
    {
        bool (*check)(std::string&);
        eNyrRequirements code;
    };
    static constexpr Step kSteps[] = {{NyrCheckComCtl32Version, NYR_REQUIREMENT_COMCTL32},
                                      {NyrCheckShell32Version, NYR_REQUIREMENT_SHELL32},
                                      {NyrCheckShlwapiVersion, NYR_REQUIREMENT_SHLWAPI},
                                      {NyrCheckMfcVersion, NYR_REQUIREMENT_MFC}};
    for (const Step& step : kSteps) {
        if (!step.check(message)) {
            missing = step.code;
            return false;
        }
    }
    missing = NYR_REQUIREMENTS_MET;
    message.clear();
    return true;
}
