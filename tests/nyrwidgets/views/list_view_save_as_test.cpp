#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>
#include <memory>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::MessageLog;
using nyr::test::ReadFile;
using nyr::test::TextItem;
using nyr::test::WriteFile;
using Info = CNyrListViewSaveAsDlgCV::SAVE_AS_INFO;

namespace {

// Columns in real order "Name", " Pt, No ", "Desc", "Secret" (hidden);
// shown in the display order Desc, Name, Pt No.
class Export : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(dir.File("views.ini"));
        view.SetInifileSection("Export");
        view.AddRealCols(std::vector<std::string>{"Name", " Pt, No ", "Desc", "Secret"}, {}, {}, {0, 0, 0, 1});
        view.SetCheckBoxes(true);
        view.AddRealItem(new TextItem({"  alpha ", "1,5", " a b\tc ", "s0"}));
        view.AddRealItem(new TextItem({"beta", "2", "", "s1"}));
        view.AddRealItem(new TextItem({"", "", "", "s2"}));
        view.AddRealItem(new TextItem({"hidden", "9", "z", "s3"}));
        view.DisplayRealItems(1);
        view.HideRealItem(3, 1);
        view.horizontalHeader()->moveSection(2, 0);
    }
    void TearDown() override { NyrSetProfilePath(""); }

    std::string Save(int fileType, bool header = true, int saveWhat = 0)
    {
        Info info;
        info.list = &view;
        info.fileType = fileType;
        info.includeHeader = header;
        info.saveWhat = saveWhat;
        info.fileName = dir.File("out");
        CNyrReportViewSaveAsDlgCV dialog(info);
        EXPECT_EQ(dialog.SaveData(), 1);
        return ReadFile(info.fileName);
    }

    nyr::test::TempDir dir;
    CNyrReportView view;
};

TEST_F(Export, EachTypeIsWrittenByteForByte)
{
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv),
              "Desc,Name,Pt; No\r\n"
              "a b\tc,alpha,1;5\r\n"
              ",beta,2\r\n"
              ",,\r\n");
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeTxt),
              "Desc\tName\tPt, No\r\n"
              "a b;c\talpha\t1,5\r\n"
              "\tbeta\t2\r\n"
              "\t\t\r\n");
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypePrn),
              "Desc Name Pt,_No\r\n"
              "a_b\tc alpha 1,5\r\n"
              " beta 2\r\n"
              "  \r\n");
    // Not a type: cells without delimiters.
    EXPECT_EQ(Save(3, false), "a b\tcalpha1,5\r\nbeta2\r\n\r\n");
    // An empty first label shifts the header, an empty first cell does not
    // shift its row (intended).
    view.GetRealCol(2)->SetLabel("");
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv).substr(0, 20), "Name,Pt; No\r\na b\tc,a");
}

TEST_F(Export, RowChoicesFollowTheItemsStates)
{
    view.SelectRealItem(1, 1);
    view.CheckRealItem(0, 1);
    view.CheckRealItem(2, 1);
    view.CheckRealItem(3, 1);  // hidden: never written
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv, false, CNyrListViewSaveAsDlgCV::SaveSelected), ",beta,2\r\n");
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv, false, CNyrListViewSaveAsDlgCV::SaveChecked),
              "a b\tc,alpha,1;5\r\n,,\r\n");
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv, true, 7), "Desc,Name,Pt; No\r\n");

    // The plain list decides by its own rows.
    CNyrListView list;
    list.InsertColumn(0, "N");
    for (int i = 0; i < 3; ++i)
        list.InsertItem(i, "r" + std::to_string(i));
    list.SetItemState(2, LVIS_SELECTED, LVIS_SELECTED);
    list.SetCheck(0, 1);
    Info info;
    info.list = &list;
    info.fileName = dir.File("list.csv");
    info.includeHeader = false;
    CNyrListViewSaveAsDlgCV dialog(info);
    for (const auto& [what, expected] : {std::pair{1, "r2\r\n"}, std::pair{2, "r0\r\n"}, std::pair{0, "r0\r\nr1\r\nr2\r\n"}}) {
        info.saveWhat = what;
        ASSERT_EQ(dialog.SaveData(), 1);
        EXPECT_EQ(ReadFile(info.fileName), expected) << what;
    }
}

TEST_F(Export, PythonsCsvReaderReadsTheRowsBack)
{
    view.AddRealItem(new TextItem({"x\"y", "caf\xc3\xa9", "l\xc3\xa4nge", ""}));
    view.DisplayRealItems(1);
    Save(CNyrListViewSaveAsDlgCV::FileTypeCsv);
    const auto result = nyr::test::RunProcess(
        {"/usr/bin/python3", "-c",
         "import csv, sys\n"
         "with open(sys.argv[1], newline='', encoding='utf-8') as f:\n"
         "    for row in csv.reader(f):\n"
         "        print('|'.join(row))\n",
         dir.File("out")});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out,
              "Desc|Name|Pt; No\n"
              "a b\tc|alpha|1;5\n"
              "|beta|2\n"
              "||\n"
              "l\xc3\xa4nge|x\"y|caf\xc3\xa9\n");
}

TEST_F(Export, FailuresShowTheSystemsTextAndReplaceExistingFiles)
{
    MessageLog messages;
    Info info;
    info.list = &view;
    CNyrReportViewSaveAsDlgCV dialog(info);
    EXPECT_EQ(dialog.SaveData(), 0);  // no name: nothing to do, nothing said
    info.fileName = dir.File("missing/out.csv");
    EXPECT_EQ(dialog.SaveData(), 0);
    info.fileName = "/dev/full";
    EXPECT_EQ(dialog.SaveData(), 0);
    EXPECT_EQ(messages.texts, (std::vector<std::string>{"No such file or directory", "No space left on device"}));
    EXPECT_EQ(messages.styles, (std::vector<unsigned>{0x10, 0x10}));
    info.list = nullptr;
    info.fileName = dir.File("none.csv");
    EXPECT_EQ(dialog.SaveData(), 0);

    // An existing file is replaced, not appended to or refused.
    WriteFile(dir.File("out"), std::string(500, 'o'));
    EXPECT_EQ(Save(CNyrListViewSaveAsDlgCV::FileTypeCsv, false, 0), "a b\tc,alpha,1;5\r\n,beta,2\r\n,,\r\n");
}

TEST_F(Export, StoredOptionsAreTakenOnlyWhenValid)
{
    struct Case
    {
        const char* includeHeader;  // null: absent
        const char* saveWhat;
        bool offer;
        bool expectHeader;
        int expectWhat;
    };
    const Case cases[] = {
        {"0", "2", true, false, 2},   {"1", "1", true, true, 1},   {"2", "3", true, true, 1},
        {"-1", "-1", true, true, 1},  {nullptr, nullptr, true, true, 1}, {"0", "2", false, false, 1},
        {"x", "0", true, false, 0},  // no digits read as 0
    };
    for (const Case& c : cases) {
        const std::string section = "Opt" + std::to_string(&c - cases);
        if (c.includeHeader)
            CNyrProfileEntries::WriteNyrProfileString(section, "IncludeHeader", c.includeHeader);
        if (c.saveWhat)
            CNyrProfileEntries::WriteNyrProfileString(section, "SaveWhat", c.saveWhat);
        Info info;
        info.list = &view;
        info.offerRowChoice = c.offer;
        info.saveWhat = CNyrListViewSaveAsDlgCV::SaveSelected;
        CNyrReportViewSaveAsDlgCV dialog(info);
        dialog.LoadCustomProperties(section);
        EXPECT_EQ(info.includeHeader, c.expectHeader) << section;
        EXPECT_EQ(info.saveWhat, c.expectWhat) << section;
        EXPECT_EQ(dialog.HeaderBox()->isChecked(), c.expectHeader) << section;
    }
}

TEST_F(Export, TheDialogAsksWritesAndStores)
{
    MessageLog messages(7);  // "No" to replacing a file
    view.CheckRealItem(1, 1);
    auto answer = std::make_unique<nyr::test::DialogAnswer>([this](QDialog& d) {
        auto* dialog = qobject_cast<CNyrReportViewSaveAsDlgCV*>(&d);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), "Save List As");
        ASSERT_EQ(dialog->FileTypeBox()->count(), 3);
        EXPECT_EQ(dialog->FileTypeBox()->itemText(2), "Formated Text (Space delimited *.prn)");
        EXPECT_FALSE(dialog->SaveWhatButton(1)->isEnabled());  // nothing selected
        EXPECT_TRUE(dialog->SaveWhatButton(2)->isEnabled());
        dialog->FileNameEdit()->setText(QString::fromStdString(dir.File("points")));
        dialog->FileTypeBox()->setCurrentIndex(1);
        dialog->HeaderBox()->setChecked(false);
        dialog->SaveWhatButton(2)->click();
        dialog->accept();
    });
    EXPECT_EQ(view.SaveAs(), 1);
    EXPECT_EQ(ReadFile(dir.File("points.txt")), "\tbeta\t2\r\n");
    const std::string ini = ReadFile(dir.File("views.ini"));
    EXPECT_NE(ini.find("IncludeHeader=0"), std::string::npos) << ini;
    EXPECT_NE(ini.find("SaveWhat=2"), std::string::npos) << ini;

    EXPECT_EQ(answer->opened, 1);
    // The file exists now: declining to replace it keeps the dialog open.
    answer.reset();  // first: it puts back the hook it replaced
    answer = std::make_unique<nyr::test::DialogAnswer>([this, &messages](QDialog& d) {
        auto* dialog = qobject_cast<CNyrReportViewSaveAsDlgCV*>(&d);
        ASSERT_NE(dialog, nullptr);
        EXPECT_FALSE(dialog->HeaderBox()->isChecked());  // as stored
        EXPECT_TRUE(dialog->SaveWhatButton(2)->isChecked());
        dialog->FileNameEdit()->setText(QString::fromStdString(dir.File("points.txt")));
        dialog->FileTypeBox()->setCurrentIndex(2);  // the extension follows the type
        EXPECT_EQ(dialog->FileNameEdit()->text().toStdString(), dir.File("points.prn"));
        dialog->FileNameEdit()->setText(QString::fromStdString(dir.File("points.txt")));
        dialog->accept();
        EXPECT_TRUE(dialog->isVisible());
        ASSERT_EQ(messages.texts.size(), 1u);
        EXPECT_EQ(messages.texts[0], "The file " + dir.File("points.txt") + " already exists.\nDo you want to replace it?");
        dialog->reject();
    });
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_SAVE_AS);
    EXPECT_EQ(answer->opened, 1);
    EXPECT_EQ(ReadFile(dir.File("points.txt")), "\tbeta\t2\r\n");
}

}  // namespace
