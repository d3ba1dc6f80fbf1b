#include "nyr/util/profile_keys.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"

namespace {

using K = CNyrProfileKeys;

struct Key
{
    const char* (*accessor)();
    const char* stored;  // as it stands in users' files
};

// Every name the library has ever written; a change here loses users' settings.
const Key kKeys[] = {
    {K::TimeSection, "CNyrTime"},
    {K::TimeEntryFormatNumber, "Time Format (###)"},
    {K::TimeEntryFormatString, "Time Format (str)"},
    {K::LeapSecondsSection, "LeapSeconds"},
    {K::LeapSecondsEntry, "KnownLeapSeconds"},
    {K::LastDocumentsEntry, "Doc_"},
    {K::ListViewFindDialogSearchFromBeginning, "SearchFromBeginning"},
    {K::ListViewFindDialogMatchWord, "MatchWord"},
    {K::ListViewFindDialogMatchCase, "MatchCase"},
    {K::ListViewFindDialogSearchAll, "SearchAll"},
    {K::ListViewFindDialogSearchString, "SearchString"},
    {K::ListViewSaveAsDlgIncludeHeader, "IncludeHeader"},
    {K::ListViewSaveAsDlgSaveWhat, "SaveWhat"},
    {K::ListViewPrintWhat, "PrintWhat"},
    {K::ListViewPrintFitToWidth, "PrintFitToWidth"},
    {K::ListViewPrintLandscape, "PrintLandscape"},
    {K::ListViewPrintMargins, "PrintMargins"},
    {K::ListViewPrintPdfFile, "PrintPdfFile"},
    {K::ReportViewColWidth, "ColWidth"},
    {K::ReportViewColOrder, "ColOrder"},
    {K::ReportViewSortState, "SortState"},
    {K::SplitterViewColSize, "ColSize"},
    {K::SplitterViewRowSize, "RowSize"},
    {K::SplitterViewWidthOriginalCur, "WidthOriginalCur"},
    {K::SplitterViewWidthOriginalMin, "WidthOriginalMin"},
    {K::SplitterViewCollapsed, "Collapsed"},
    {K::MessageBoxDialogSettings, "@NyrMessageBox/"},
    {K::MessageBoxDoNotPromptInFuture, "DoNotPromptInFuture"},
    {K::MessageBoxDefaultValue, "defaultvalue"},
    {K::UnitSettingsDistanceSection, "CNyrUnitSettingsDistance"},
    {K::UnitSettingsDistanceEntryFormatNumber, "UnitDistance Format (###)"},
    {K::UnitSettingsDistanceEntryFormatString, "UnitDistance Format (str)"},
    {K::UnitSettingsAngleSection, "CNyrUnitSettingsAngle"},
    {K::UnitSettingsAngleLatLonSection, "CNyrUnitSettingsAngleLatLon"},
    {K::UnitSettingsAngleEntryFormatNumber, "UnitAngle Format (###)"},
    {K::UnitSettingsAngleEntryFormatString, "UnitAngle Format (str)"},
    {K::SelectFilenameEntryWindowWidth, "Window Width"},
    {K::SelectFilenameEntryWindowHeight, "Window Height"},
    {K::SelectFilenameEntryLastFolder, "Last Folder"},
    {K::SelectFilenameEntryFileType, "FileType"},
    {K::DialogEntryWindowLeft, "Window Left"},
    {K::DialogEntryWindowTop, "Window Top"},
    {K::FolderContentViewColWidth, "FCV_ColWidth"},
    {K::FolderContentViewSortState, "FCV_SortState"},
    {K::FolderContentViewViewStyle, "FCV_ViewStyle"},
};

// Each name is the stored one, no two names collide even without regard to
// case (the store would read one for the other), and each works as a
// section and as an entry name of a write that reads back: a name the writer
// refuses would drop that setting without a word.
TEST(ProfileKeys, NamesAreTheStoredOnesDistinctAndAcceptedByTheStore)
{
    nyr::test::TempDir dir;
    const std::string file = dir.File("keys.ini");
    std::set<std::string> folded;
    for (const Key& key : kKeys) {
        const std::string name = key.accessor();
        SCOPED_TRACE(key.stored);
        EXPECT_EQ(name, key.stored);
        std::string lower;
        for (char c : name)
            lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        EXPECT_TRUE(folded.insert(lower).second);
        ASSERT_EQ(CNyrProfileEntries::WriteProfileStringA(file, name, name, "v:" + name), 1);
    }
    for (const Key& key : kKeys)
        EXPECT_EQ(CNyrProfileEntries::ReadProfileString(file, key.stored, key.stored, ""), std::string("v:") + key.stored);
    // The derived class reaches the same accessors.
    EXPECT_STREQ(CNyrProfileEntries::TimeSection(), K::TimeSection());
}

}  // namespace
