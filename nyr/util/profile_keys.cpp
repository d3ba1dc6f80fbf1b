#include "nyr/util/profile_keys.h"

const char* CNyrProfileKeys::TimeSection() { return "CNyrTime"; }
const char* CNyrProfileKeys::TimeEntryFormatNumber() { return "Time Format (###)"; }
const char* CNyrProfileKeys::TimeEntryFormatString() { return "Time Format (str)"; }
const char* CNyrProfileKeys::LeapSecondsSection() { return "LeapSeconds"; }
const char* CNyrProfileKeys::LeapSecondsEntry() { return "KnownLeapSeconds"; }
const char* CNyrProfileKeys::LastDocumentsEntry() { return "Doc_"; }
const char* CNyrProfileKeys::ListViewFindDialogSearchFromBeginning() { return "SearchFromBeginning"; }
const char* CNyrProfileKeys::ListViewFindDialogMatchWord() { return "MatchWord"; }
const char* CNyrProfileKeys::ListViewFindDialogMatchCase() { return "MatchCase"; }
const char* CNyrProfileKeys::ListViewFindDialogSearchAll() { return "SearchAll"; }
const char* CNyrProfileKeys::ListViewFindDialogSearchString() { return "SearchString"; }
const char* CNyrProfileKeys::ListViewSaveAsDlgIncludeHeader() { return "IncludeHeader"; }
const char* CNyrProfileKeys::ListViewSaveAsDlgSaveWhat() { return "SaveWhat"; }
const char* CNyrProfileKeys::ListViewPrintWhat() { return "PrintWhat"; }
const char* CNyrProfileKeys::ListViewPrintFitToWidth() { return "PrintFitToWidth"; }
const char* CNyrProfileKeys::ListViewPrintLandscape() { return "PrintLandscape"; }
const char* CNyrProfileKeys::ListViewPrintMargins() { return "PrintMargins"; }
const char* CNyrProfileKeys::ListViewPrintPdfFile() { return "PrintPdfFile"; }
const char* CNyrProfileKeys::ReportViewColWidth() { return "ColWidth"; }
const char* CNyrProfileKeys::ReportViewColOrder() { return "ColOrder"; }
const char* CNyrProfileKeys::ReportViewSortState() { return "SortState"; }
const char* CNyrProfileKeys::SplitterViewColSize() { return "ColSize"; }
const char* CNyrProfileKeys::SplitterViewRowSize() { return "RowSize"; }
const char* CNyrProfileKeys::SplitterViewWidthOriginalCur() { return "WidthOriginalCur"; }
const char* CNyrProfileKeys::SplitterViewWidthOriginalMin() { return "WidthOriginalMin"; }
const char* CNyrProfileKeys::SplitterViewCollapsed() { return "Collapsed"; }
const char* CNyrProfileKeys::MessageBoxDialogSettings() { return "@NyrMessageBox/"; }
const char* CNyrProfileKeys::MessageBoxDoNotPromptInFuture() { return "DoNotPromptInFuture"; }
const char* CNyrProfileKeys::MessageBoxDefaultValue() { return "defaultvalue"; }
const char* CNyrProfileKeys::UnitSettingsDistanceSection() { return "CNyrUnitSettingsDistance"; }
const char* CNyrProfileKeys::UnitSettingsDistanceEntryFormatNumber() { return "UnitDistance Format (###)"; }
const char* CNyrProfileKeys::UnitSettingsDistanceEntryFormatString() { return "UnitDistance Format (str)"; }
const char* CNyrProfileKeys::UnitSettingsAngleSection() { return "CNyrUnitSettingsAngle"; }
const char* CNyrProfileKeys::UnitSettingsAngleLatLonSection() { return "CNyrUnitSettingsAngleLatLon"; }
const char* CNyrProfileKeys::UnitSettingsAngleEntryFormatNumber() { return "UnitAngle Format (###)"; }
const char* CNyrProfileKeys::UnitSettingsAngleEntryFormatString() { return "UnitAngle Format (str)"; }
const char* CNyrProfileKeys::SelectFilenameEntryWindowWidth() { return "Window Width"; }
const char* CNyrProfileKeys::SelectFilenameEntryWindowHeight() { return "Window Height"; }
const char* CNyrProfileKeys::SelectFilenameEntryLastFolder() { return "Last Folder"; }
const char* CNyrProfileKeys::SelectFilenameEntryFileType() { return "FileType"; }
const char* CNyrProfileKeys::DialogEntryWindowLeft() { return "Window Left"; }
const char* CNyrProfileKeys::DialogEntryWindowTop() { return "Window Top"; }
const char* CNyrProfileKeys::FolderContentViewColWidth() { return "FCV_ColWidth"; }
const char* CNyrProfileKeys::FolderContentViewSortState() { return "FCV_SortState"; }
const char* CNyrProfileKeys::FolderContentViewViewStyle() { return "FCV_ViewStyle"; }
