#pragma once

#include <string>
#include <vector>

#include "nyr/platform/export.h"

// The library's settings file: a sectioned text file of "[Section]" lines
// followed by "Entry=Value" lines, read and written with the classic
// private-profile rules:
//  - section and entry names compare case-insensitively (ASCII); the first
//    matching section and the first matching entry in it win; entries of a
//    later section with the same name are not seen;
//  - names and values are trimmed of blanks (space, tab, CR, VT, FF); one pair
//    of matching enclosing quotes ("..." or '...') is removed from a value on
//    reading; the value runs to the end of its line (";" in it is text, not a
//    comment); values are cut to 4096 characters on reading.
//
// Lines the reader meets:
//  - "\n" and "\r\n" both end a line; a file may lack its final line break;
//    a UTF-8 byte order mark at the start is ignored;
//  - a line whose first non-blank character is "[" is a section header; its
//    name runs to the first "]" (text after it is ignored) or, without "]",
//    to the end of the line;
//  - a line starting with ";" or "#" is a comment; a line without "=", or with
//    nothing before it, is kept but means nothing; entries before the first
//    section belong to no section and are never found;
//  - any other byte (NUL included) is ordinary text; lines may be any length.
//    Files larger than 64 MiB read as absent and are never rewritten.
//
// Writing keeps every other line byte for byte (comments, blank lines, order,
// lines it does not understand, line-end style): it replaces the value of the
// first matching entry (keeping the name as spelled in the file), or adds
// "Entry=Value" after the last entry of the first matching section, or
// appends a new section (after a blank line) at the end. A write is refused
// with 0, leaving the file untouched, when it would change how other lines
// read: a section name that is empty or holds "]", CR, LF or NUL; an entry
// name that is empty, holds "=", CR, LF or NUL, or starts with "[", ";" or
// "#"; a value holding CR, LF or NUL. Blanks around a value and one pair of
// enclosing quotes do not survive a round trip (the reading rules drop them).
//
// Durability and sharing: a write takes an advisory lock (flock) on the file,
// reads it as it is now, writes the new text to a temporary file in the same
// folder and renames it over the file, so a crash or kill leaves the old or
// the new file, never a mix, and processes writing different entries of one
// file at the same time lose nothing. The file keeps its permissions; a
// symbolic link stays a link to the rewritten file. Writes need a writable
// folder and a writable file. No fsync, so a write costs no disk flush:
// after a power failure the file may be the old one; ext4 (by default) writes
// a file replaced by rename to disk before it commits the rename.
//
// Speed: parsed files are cached per process. A read is a hash look-up; the
// file is checked (size, modification and change time, inode: one stat) once
// per tick of the coarse system clock (1 to 10 ms by the kernel's tick rate,
// 4 ms on Debian) and parsed again only when it changed. This process's
// writes are seen at once; another program's change is seen by reads starting
// one tick after it (file times have that resolution too).
//
// Value forms: integers as "%d"; texts as they are; integer vectors as each
// element followed by ";" ("120;80;-1;"; an empty vector is an empty value).
//
// Reads fall back to the caller's default when the file, section or entry is
// absent; writes return 1 on success and 0 on failure (a missing or
// read-only folder or file, a name or value refused above) and never throw;
// NyrGetProfileError() says why. A file without any write permission bit is
// never rewritten, not even by root. A write waits for another process's
// lock at most NyrGetProfileLockTimeout() (5 s unless set), then fails with
// the file left as it was. Temporaries that writers killed between creating
// and renaming them left behind (".NAME.XXXXXX" beside the file) are removed
// by the next successful write once they are a minute old.
// Safe to call from any thread.

class CNyrHostProfile;

class NYR_EXPORT CNyrProfileEntries
{
public:
    // Section and entry names used by the library.
    static const char* TimeSection();                            // "CNyrTime"
    static const char* TimeEntryFormatNumber();                  // "Time Format (###)"
    static const char* TimeEntryFormatString();                  // "Time Format (str)"
    static const char* LeapSecondsSection();                     // "LeapSeconds"
    static const char* LeapSecondsEntry();                       // "KnownLeapSeconds"
    static const char* LastDocumentsEntry();                     // "Doc_"
    static const char* ListViewFindDialogSearchFromBeginning();  // "SearchFromBeginning"
    static const char* ListViewFindDialogMatchWord();            // "MatchWord"
    static const char* ListViewFindDialogMatchCase();            // "MatchCase"
    static const char* ListViewFindDialogSearchAll();            // "SearchAll"
    static const char* ListViewFindDialogSearchString();         // "SearchString"
    static const char* ListViewSaveAsDlgIncludeHeader();         // "IncludeHeader"
    static const char* ListViewSaveAsDlgSaveWhat();              // "SaveWhat"
    static const char* ListViewPrintWhat();                      // "PrintWhat"
    static const char* ListViewPrintFitToWidth();                // "PrintFitToWidth"
    static const char* ListViewPrintLandscape();                 // "PrintLandscape"
    static const char* ListViewPrintMargins();                   // "PrintMargins"
    static const char* ListViewPrintPdfFile();                   // "PrintPdfFile"
    static const char* ReportViewColWidth();                     // "ColWidth"
    static const char* ReportViewColOrder();                     // "ColOrder"
    static const char* ReportViewSortState();                    // "SortState"
    static const char* SplitterViewColSize();                    // "ColSize"
    static const char* SplitterViewRowSize();                    // "RowSize"
    static const char* SplitterViewWidthOriginalCur();           // "WidthOriginalCur"
    static const char* SplitterViewWidthOriginalMin();           // "WidthOriginalMin"
    static const char* SplitterViewCollapsed();                  // "Collapsed"
    static const char* MessageBoxDialogSettings();               // "@NyrMessageBox/"
    static const char* MessageBoxDoNotPromptInFuture();          // "DoNotPromptInFuture"
    static const char* MessageBoxDefaultValue();                 // "defaultvalue"
    static const char* UnitSettingsDistanceSection();            // "CNyrUnitSettingsDistance"
    static const char* UnitSettingsDistanceEntryFormatNumber();  // "UnitDistance Format (###)"
    static const char* UnitSettingsDistanceEntryFormatString();  // "UnitDistance Format (str)"
    static const char* UnitSettingsAngleSection();               // "CNyrUnitSettingsAngle"
    static const char* UnitSettingsAngleLatLonSection();         // "CNyrUnitSettingsAngleLatLon"
    static const char* UnitSettingsAngleEntryFormatNumber();     // "UnitAngle Format (###)"
    static const char* UnitSettingsAngleEntryFormatString();     // "UnitAngle Format (str)"
    static const char* SelectFilenameEntryWindowWidth();         // "Window Width"
    static const char* SelectFilenameEntryWindowHeight();        // "Window Height"
    static const char* SelectFilenameEntryLastFolder();          // "Last Folder"
    static const char* SelectFilenameEntryFileType();            // "FileType"
    static const char* DialogEntryWindowLeft();                  // "Window Left"
    static const char* DialogEntryWindowTop();                   // "Window Top"
    static const char* FolderContentViewColWidth();              // "FCV_ColWidth"
    static const char* FolderContentViewSortState();             // "FCV_SortState"
    static const char* FolderContentViewViewStyle();             // "FCV_ViewStyle"

    // File-addressed operations; `file` is a full path. Writes do not create
    // missing folders.

    // The entry read as a decimal integer (leading blanks, sign, digits; text
    // after the digits is ignored, no digits read as 0); `defaultValue` when
    // the entry is absent or empty. The result is unsigned and wraps modulo
    // 2^32 as the platform's reading does: "4294967295" reads as 4294967295,
    // "4294967296" as 0, "-5" as 4294967291 (cast to int for -5).
    static unsigned int ReadProfileInt(const std::string& file, const std::string& section, const std::string& entry,
                                       int defaultValue);
    static int WriteProfileInt(const std::string& file, const std::string& section, const std::string& entry,
                               int value);
    static std::string ReadProfileString(const std::string& file, const std::string& section,
                                         const std::string& entry, const std::string& defaultValue);
    static int WriteProfileStringA(const std::string& file, const std::string& section, const std::string& entry,
                                   const std::string& value);
    // Empties `values`, then reads the "%d;" form: every element ends in ";"
    // (text after the last ";" is ignored, so a value without its final ";"
    // loses its last element: intended); an element reads as atoi reads it; an
    // empty element (";" where an element should start) ends the reading and
    // keeps what was read before it.
    static void ReadProfileIntVector(const std::string& file, const std::string& section, const std::string& entry,
                                     std::vector<int>& values);
    static int WriteProfileIntVector(const std::string& file, const std::string& section, const std::string& entry,
                                     const std::vector<int>& values);

    // The integer-vector form read from and written to the host
    // application's profile store instead of a file; same rules as above.
    static void ReadProfileIntVector(CNyrHostProfile& host, const std::string& section, const std::string& entry,
                                     std::vector<int>& values);
    static int WriteProfileIntVector(CNyrHostProfile& host, const std::string& section, const std::string& entry,
                                     const std::vector<int>& values);

    // The same on the library's own settings file, NyrGetProfilePath().
    // Writes create the file's missing folders (mode 0700) first.
    static unsigned int ReadNyrProfileInt(const std::string& section, const std::string& entry, int defaultValue);
    static int WriteNyrProfileInt(const std::string& section, const std::string& entry, int value);
    static std::string ReadNyrProfileString(const std::string& section, const std::string& entry,
                                            const std::string& defaultValue);
    static int WriteNyrProfileString(const std::string& section, const std::string& entry, const std::string& value);
    static void ReadNyrProfileIntVector(const std::string& section, const std::string& entry,
                                        std::vector<int>& values);
    static int WriteNyrProfileIntVector(const std::string& section, const std::string& entry,
                                        const std::vector<int>& values);
};

// The host application's own profile store, reached by the host-application
// variants of the integer-vector operations. Whether it keeps its strings in
// a file or elsewhere is the host's choice. The widgets library implements it
// over QSettings (CNyrSettingsProfile, nyrwidgets/frame/settings_profile.h).
class NYR_EXPORT CNyrHostProfile
{
public:
    virtual ~CNyrHostProfile();
    // The stored text of `entry` in `section`, or `defaultValue` when absent.
    virtual std::string GetProfileString(const std::string& section, const std::string& entry,
                                         const std::string& defaultValue) = 0;
    // Stores the text; non-zero on success.
    virtual int WriteProfileString(const std::string& section, const std::string& entry,
                                   const std::string& value) = 0;
};

// Where the library's settings file lives. The default is
// $XDG_CONFIG_HOME/Nyr240.INI ($HOME/.config when XDG_CONFIG_HOME is unset or
// not absolute), decided by the first NyrGetProfilePath() and kept; the folder
// is created on the first write. Set the path or prefix once at start-up,
// before any setting is read.

// Sets the path as it stands (no checking); "" goes back to "not decided".
NYR_EXPORT void NyrSetProfilePath(const std::string& path);
// Sets the path to the default folder + prefix + "." + default file name:
// "Survey" gives ".../Survey.Nyr240.INI". Always applied to the default path,
// never to a path set earlier.
NYR_EXPORT void NyrSetProfilePrefix(const std::string& prefix);
// The path; the default path when none is set yet (and keeps it).
NYR_EXPORT std::string NyrGetProfilePath();

// How long a settings write waits for another process's lock on the file, in
// milliseconds (5000 unless set; 0: not at all). Process-wide.
NYR_EXPORT void NyrSetProfileLockTimeout(unsigned milliseconds);
NYR_EXPORT unsigned NyrGetProfileLockTimeout();

// Why the calling thread's last read or write of a settings file could not
// use the file, as a text of the text table ("The settings file PATH is locked
// by another program."); empty after a success and after a read that found no
// file (which reads as absent).
NYR_EXPORT std::string NyrGetProfileError();
