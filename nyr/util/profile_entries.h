#pragma once

#include <string>
#include <vector>

#include "nyr/platform/export.h"

// The library's settings file: a sectioned text file of "[Section]" lines
// followed by "Entry=Value" lines, read and written with the classic
// private-profile rules:
//  - section and entry names compare case-insensitively (ASCII); the first
//    matching section and the first matching entry in it win;
//  - names and values are trimmed of blanks; one pair of matching enclosing
//    quotes ("..." or '...') is removed from a value on reading; the value
//    runs to the end of its line; values are cut to 4096 characters on reading;
//  - writing keeps every other line as it was (comments, blank lines, order,
//    lines it does not understand): it replaces the first matching entry, or
//    appends the entry to the first matching section, or appends a section.
//
// Value forms: integers as "%d"; texts as they are; integer vectors as each
// element followed by ";" ("120;80;-1;"; an empty vector is an empty value).
//
// Reads fall back to the caller's default when the file, section or entry is
// absent; writes return 1 on success and 0 on failure (a missing or
// read-only folder, a name that would break the file format) and never throw.
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
    static const char* FolderContentViewColWidth();              // "FCV_ColWidth"
    static const char* FolderContentViewSortState();             // "FCV_SortState"
    static const char* FolderContentViewViewStyle();             // "FCV_ViewStyle"

    // File-addressed operations; `file` is a full path.

    // The entry read as a decimal integer (leading blanks, sign, digits; text
    // after the digits is ignored, no digits read as 0); `defaultValue` when
    // the entry is absent. Negative values come back as their unsigned form:
    // cast to int.
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

    // The same on the library's own settings file, NyrGetProfilePath().
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

// Where the library's settings file lives. The default is
// $XDG_CONFIG_HOME/Nyr240.INI ($HOME/.config when XDG_CONFIG_HOME is unset or
// not absolute); the folder is created on the first write.

// Sets the path as it stands (no checking).
NYR_EXPORT void NyrSetProfilePath(const std::string& path);
// Sets the path to the default folder + prefix + "." + default file name:
// "Survey" gives ".../Survey.Nyr240.INI". Always applied to the default path,
// never to a path set earlier.
NYR_EXPORT void NyrSetProfilePrefix(const std::string& prefix);
// The path; the default path when none is set yet (and keeps it).
NYR_EXPORT std::string NyrGetProfilePath();
