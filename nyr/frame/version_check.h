#pragma once

#include <cstdint>
#include <string>

#include "nyr/platform/export.h"

// Start-up check that the system libraries the library relies on are recent
// enough. The checks, their order, thresholds and texts are those of the
// Windows libraries the interface was defined for; where those libraries
// live on this platform is decided by the version source (below).

// The platform's fixed version record: 13 32-bit words.
struct VS_FIXEDFILEINFO
{
    std::uint32_t dwSignature;         // 0xFEEF04BD
    std::uint32_t dwStrucVersion;      // 0x00010000
    std::uint32_t dwFileVersionMS;     // major << 16 | minor
    std::uint32_t dwFileVersionLS;     // patch << 16 | build
    std::uint32_t dwProductVersionMS;  // what the checks compare: major << 16 | minor
    std::uint32_t dwProductVersionLS;
    std::uint32_t dwFileFlagsMask;
    std::uint32_t dwFileFlags;
    std::uint32_t dwFileOS;
    std::uint32_t dwFileType;
    std::uint32_t dwFileSubtype;
    std::uint32_t dwFileDateMS;
    std::uint32_t dwFileDateLS;
};

// Result of NyrCheckAllRequirements: the first library that failed.
enum eNyrRequirements
{
    NYR_REQUIREMENTS_MET = 0,
    NYR_REQUIREMENT_COMCTL32 = 1,
    NYR_REQUIREMENT_SHELL32 = 2,
    NYR_REQUIREMENT_SHLWAPI = 4,
    NYR_REQUIREMENT_MFC = 8,
};

// Where version records come from. The default source (NyrSystemVersionSource)
// answers for the Windows library names with the Linux library that plays
// the same part here, read from the shared object the dynamic loader finds:
//
//   asked for       Linux counterpart       product version reported
//   ComCtl32.Dll    libQt6Widgets.so.6      6.0 (common controls level 6)
//   Shell32.Dll     libQt6Gui.so.6          6.0
//   Shlwapi.Dll     libQt6Core.so.6         6.0
//   ShFolder.Dll    libQt6Core.so.6         6.0 (only has to load)
//   Mfc70.Dll       libQt6Widgets.so.6      7.0 (the window framework level)
//
// The product version is the interface level the counterpart provides when
// its own version (what the loaded Qt reports through qVersion(), "6.4.2",
// put in the file-version words) is at least Qt 6.2; an older counterpart
// reports its own version instead. The file's name plays no part, so Qt
// shipped under its soname alone (libQt6Widgets.so.6) is read as well. A
// counterpart that cannot be loaded fails with ENOENT, one that reports no
// version with ENOEXEC. A system with Qt 6.2 or later passes the combined
// check.
class NYR_EXPORT CNyrVersionSource
{
public:
    virtual ~CNyrVersionSource();
    // Fills `info` for the library `fileName`; false with an errno value in
    // `errorCode` when the library or its version cannot be found.
    virtual bool Query(const std::string& fileName, VS_FIXEDFILEINFO& info, unsigned long& errorCode) = 0;
};

NYR_EXPORT CNyrVersionSource& NyrSystemVersionSource();

// Replaces the source the checks read (null: the system source). The cached
// records are not cleared; call NyrResetFixedFileInfoCache for that.
NYR_EXPORT void NyrSetVersionSource(CNyrVersionSource* source);
NYR_EXPORT CNyrVersionSource& NyrGetVersionSource();

// Forgets every cached record so the next check asks the source again. The
// checks themselves never refresh; this is for tests and for hosts that
// install a source after a check has run.
NYR_EXPORT void NyrResetFixedFileInfoCache();

// Reads the version record of `fileName` from the source, uncached. Zeroes
// the record and the outputs first; on failure gives the errno value and the
// system's text for it (at most 260 characters).
NYR_EXPORT bool NyrLoadFixedFileInfo(VS_FIXEDFILEINFO& info, const char* fileName, unsigned long* errorCode = nullptr,
                                     std::string* text = nullptr);

// Cached records, one query per library and process. On success the record,
// error 0 and an empty text; on failure a zeroed record, the cached error and
// the system's text for it.
NYR_EXPORT bool NyrFixedFileInfoComCtl32(VS_FIXEDFILEINFO& info, unsigned long* errorCode = nullptr,
                                         std::string* text = nullptr);
NYR_EXPORT bool NyrFixedFileInfoShell32(VS_FIXEDFILEINFO& info, unsigned long* errorCode = nullptr,
                                        std::string* text = nullptr);
NYR_EXPORT bool NyrFixedFileInfoShFolder(VS_FIXEDFILEINFO& info, unsigned long* errorCode = nullptr,
                                         std::string* text = nullptr);
NYR_EXPORT bool NyrFixedFileInfoShlwapi(VS_FIXEDFILEINFO& info, unsigned long* errorCode = nullptr,
                                        std::string* text = nullptr);
NYR_EXPORT bool NyrFixedFileInfoMfc(VS_FIXEDFILEINFO& info, unsigned long* errorCode = nullptr,
                                    std::string* text = nullptr);

// The checks. Each returns true when the library is recent enough and leaves
// `message` empty; otherwise `message` holds either the library's prefix
// ("ComCtl32.dll: ") and the system's text (library missing) or the text
// table's "... V%d.%d found ..." message filled with found and required
// versions.
//   ComCtl32, Shell32, Shlwapi: 4.71 or later (text NYR_IDS_VERSION_COMCTL32, NYR_IDS_VERSION_SHELL32,
//   NYR_IDS_VERSION_SHLWAPI) MFC: major 7 or later (text NYR_IDS_VERSION_MFC70) ShFolder: Shell32's major 4 or later
//   and ShFolder loadable; it tests Shell32's version and reports with the Shell32 text 26001. Intended.
NYR_EXPORT bool NyrCheckComCtl32Version(std::string& message);
NYR_EXPORT bool NyrCheckShell32Version(std::string& message);
NYR_EXPORT bool NyrCheckShlwapiVersion(std::string& message);
NYR_EXPORT bool NyrCheckMfcVersion(std::string& message);
NYR_EXPORT bool NyrCheckShFolderVersion(std::string& message);

// ComCtl32, Shell32, Shlwapi and MFC in that order; stops at the first
// failure with its code and text. All met: code 0, empty text, true.
NYR_EXPORT bool NyrCheckAllRequirements(eNyrRequirements& missing, std::string& message);
