#pragma once

#include "nyr/platform/export.h"

// The section and entry names the library keeps in the settings file, in one
// place. Each accessor returns a constant text with the name exactly as it
// stands in users' files (in the comment); renaming one would lose what
// users stored under it. Reached as CNyrProfileEntries::TimeSection() and so
// on: CNyrProfileEntries (nyr/util/profile_entries.h) derives from this.
class NYR_EXPORT CNyrProfileKeys
{
public:
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
};
