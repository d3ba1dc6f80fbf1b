// The print commands as the user meets them: menus, Ctrl+P, the options
// dialog, the printer's dialog and the preview, and the stored choices.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <functional>

#include "nyr/frame/resource_module.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "nyrwidgets/views/view_print_dlg.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"
#include "tests/support/dialog_answer.h"

using namespace nyr::test;
using Info = CNyrListViewPrint::PRINT_INFO;
using Dlg = CNyrListViewPrintDlg;

namespace {

class PrintDialog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(dir.File("views.ini"));
        view.SetInifileSection("Points");
        FillPoints(view, 40);
        saved = NyrSetDialogHook({});
        NyrSetDialogHook(saved);
    }
    void TearDown() override
    {
        NyrSetDialogHook(saved);  // an answer armed for a dialog that never came goes
        NyrSetProfilePath("");
    }

    // Answers the next dialog, which must be a T, through the dialog seam.
    template <class T>
    void WhenModal(std::function<void(T*)> answer)
    {
        AnswerNext<T>([answer](T& dialog) { answer(&dialog); });
    }

    int StoredInt(const char* entry) const
    {
        return static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt("Points", entry, -1));
    }

    TempDir dir;
    CNyrReportView view;
    NyrDialogHook saved;
};

TEST_F(PrintDialog, ItemMenusOfferPrintPreviewAndPdfAsCommands)
{
    const unsigned int commands[] = {NyrListViewPrintMessage(), NyrListViewPrintPreviewMessage(),
                                     NyrListViewExportPdfMessage()};
    CNyrReportViewMenuPopUp item(&view), background(&view), header(&view);
    view.BuildRealItemContextMenu(item, 0);
    view.BuildItemBkContextMenu(background);
    view.BuildHeaderContextMenu(header, 0);
    for (unsigned int message : commands) {
        ASSERT_TRUE(item.FindCommand(message));
        EXPECT_TRUE(item.FindCommand(message)->isEnabled());
        EXPECT_TRUE(background.FindCommand(message));
        EXPECT_FALSE(header.FindCommand(message));
    }
    EXPECT_EQ(item.FindText(26040), item.FindCommand(NyrListViewPrintMessage()));

    CNyrReportView bare;
    CNyrReportViewMenuPopUp none(&bare);
    bare.BuildItemBkContextMenu(none);
    EXPECT_FALSE(none.FindCommand(NyrListViewPrintMessage())->isEnabled());  // no column to print
    bare.SetItemBkMenu(bare.GetItemBkMenu() & ~CNyrReportView::MenuPrint, 0);
    CNyrReportViewMenuPopUp without(&bare);
    bare.BuildItemBkContextMenu(without);
    EXPECT_FALSE(without.FindCommand(NyrListViewPrintMessage()));

    // Choosing the entry runs the command on the view.
    bool shown = false;
    WhenModal<Dlg>([&shown](Dlg* dialog) {
        shown = dialog->windowTitle() == QStringLiteral("Export PDF");
        dialog->reject();
    });
    item.FindCommand(NyrListViewExportPdfMessage())->trigger();
    EXPECT_TRUE(shown);
}

TEST_F(PrintDialog, ExportPdfWritesTheChosenRowsAndRemembersTheChoices)
{
    view.SelectRealItems({3, 5}, 1);
    WhenModal<Dlg>([this](Dlg* dialog) {
        EXPECT_TRUE(dialog->PrintWhatButton(CNyrListViewPrint::PrintSelected)->isEnabled());
        EXPECT_FALSE(dialog->PrintWhatButton(CNyrListViewPrint::PrintChecked)->isEnabled());  // none checked
        dialog->FileNameEdit()->setText(QString::fromStdString(dir.File("points")));
        dialog->PrintWhatButton(CNyrListViewPrint::PrintSelected)->click();
        dialog->LandscapeButton(true)->click();
        dialog->FitToWidthButton(false)->click();
        dialog->MarginBox(Dlg::SideLeft)->setValue(12);
        dialog->accept();
    });
    EXPECT_EQ(view.ExportPdf(), 1);
    const std::string file = dir.File("points.pdf");
    const std::vector<std::string> pages = PdfPages(file);
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(PointNames(pages[0]), (std::vector<std::string>{"P3", "P5"}));
    // Landscape paper: wider than high.
    const ProcessResult info = RunProcess({"/usr/bin/pdfinfo", file});
    std::smatch size;
    ASSERT_TRUE(std::regex_search(info.out, size, std::regex(R"(Page size:\s+([\d.]+) x ([\d.]+) pts)"))) << info.out;
    EXPECT_GT(std::stod(size[1]), std::stod(size[2]));

    EXPECT_EQ(StoredInt("PrintWhat"), 1);
    EXPECT_EQ(StoredInt("PrintLandscape"), 1);
    EXPECT_EQ(StoredInt("PrintFitToWidth"), 0);
    std::vector<int> margins;
    CNyrProfileEntries::ReadNyrProfileIntVector("Points", "PrintMargins", margins);
    EXPECT_EQ(margins, (std::vector<int>{12, 15, 15, 15}));
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileString("Points", "PrintPdfFile", ""), file);

    // Opened again: the stored choices; the file exists now, and declining to
    // replace it keeps the dialog open and the file as it is.
    MessageLog messages(NYR_IDNO);
    WhenModal<Dlg>([&](Dlg* dialog) {
        EXPECT_TRUE(dialog->PrintWhatButton(CNyrListViewPrint::PrintSelected)->isChecked());
        EXPECT_TRUE(dialog->LandscapeButton(true)->isChecked());
        EXPECT_TRUE(dialog->FitToWidthButton(false)->isChecked());
        EXPECT_EQ(dialog->MarginBox(Dlg::SideLeft)->value(), 12);
        EXPECT_EQ(dialog->FileNameEdit()->text().toStdString(), file);
        dialog->accept();
        EXPECT_TRUE(dialog->isVisible());
        dialog->FileNameEdit()->clear();
        dialog->accept();
        dialog->FileNameEdit()->setText(QString::fromStdString(dir.File("missing/points.pdf")));
        dialog->accept();
        EXPECT_TRUE(dialog->isVisible());
        dialog->reject();
    });
    const std::string before = ReadFile(file);
    EXPECT_EQ(view.ExportPdf(), 0);
    EXPECT_TRUE(ReadFile(file) == before);
    ASSERT_EQ(messages.texts.size(), 3u);
    EXPECT_EQ(messages.texts[0], "The file " + file + " already exists.\nDo you want to replace it?");
    EXPECT_EQ(messages.texts[1], NyrLoadString(26271));
    EXPECT_EQ(messages.texts[2].rfind("The PDF file " + dir.File("missing/points.pdf") + " cannot be written:\n", 0),
              0u);
}

TEST_F(PrintDialog, CtrlPPrintsAPlainListThroughThePrintersDialog)
{
    CNyrListView list;
    list.setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    for (const char* label : {"Code", "Secret", "Height"})
        list.InsertColumn(list.GetColumnCount(), label);
    for (int i = 0; i < 3; ++i) {
        list.InsertItem(i, "P" + std::to_string(i));
        list.SetItemText(i, 1, "hidden");
        list.SetItemText(i, 2, std::to_string(100 + i));
    }
    list.hideColumn(1);
    list.horizontalHeader()->moveSection(2, 0);  // Height, Code
    list.SetPrintTitle("Levelling");
    const std::string file = dir.File("printed.pdf");
    WhenModal<Dlg>([this, file](Dlg* dialog) {
        dialog->accept();
        WhenModal<QPrintDialog>([file](QPrintDialog* printer) {
            auto* name = printer->findChild<QLineEdit*>(QStringLiteral("filename"));
            ASSERT_NE(name, nullptr);
            name->setText(QString::fromStdString(file));
            printer->accept();
        });
    });
    QTest::keyClick(&list, Qt::Key_P, Qt::ControlModifier);
    const std::vector<std::string> pages = PdfPages(file);
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(CountLines(pages[0], "^Levelling +Printed on"), 1) << pages[0];
    EXPECT_EQ(CountLines(pages[0], R"(^\s*Height\s+Code\s*$)"), 1);
    EXPECT_EQ(CountLines(pages[0], R"(^\s*10[012]\s+P[012]\s*$)"), 3);
    EXPECT_EQ(CountLines(pages[0], "Secret|hidden"), 0);
}

TEST_F(PrintDialog, PreviewShowsThePagesOrTellsWhyItCannot)
{
    int previewed = 0;
    WhenModal<Dlg>([&](Dlg* dialog) {
        dialog->accept();
        WhenModal<QPrintPreviewDialog>([&previewed](QPrintPreviewDialog* preview) {
            previewed = preview->findChild<QPrintPreviewWidget*>()->pageCount();
            preview->reject();
        });
    });
    NyrSendMessage(&view, NyrListViewPrintPreviewMessage());
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(dir.File("same.pdf")));
    Info info = PrintInfo(view, {});
    info.marginsMm = QMargins(15, 15, 15, 15);
    EXPECT_EQ(previewed, NyrPrintListView(info, printer));
    EXPECT_GE(previewed, 1);

    // Rows taller than the page: the reason, and no preview.
    view.setFont(QFont(QStringLiteral("DejaVu Sans"), 72));
    CNyrProfileEntries::WriteNyrProfileIntVector("Points", "PrintMargins", {10, 100, 10, 100});
    MessageLog messages;
    bool shown = false;
    WhenModal<Dlg>([this, &shown](Dlg* dialog) {
        dialog->accept();
        WhenModal<QPrintPreviewDialog>([&shown](QPrintPreviewDialog* preview) {
            shown = true;
            preview->reject();
        });
    });
    EXPECT_EQ(view.PrintPreview(), 0);
    EXPECT_EQ(messages.texts, std::vector<std::string>{NyrLoadString(26414)});
    EXPECT_FALSE(shown);
}

TEST_F(PrintDialog, StoredChoicesAreTakenOnlyWhenTheyMakeSense)
{
    Info stored;
    stored.printWhat = CNyrListViewPrint::PrintChecked;
    stored.fitToWidth = false;
    stored.landscape = true;
    stored.marginsMm = QMargins(0, 5, 100, 7);
    stored.fileName = "/tmp/x.pdf";
    CNyrListViewPrint::StoreCustomProperties(stored, "Good");
    Info read;
    CNyrListViewPrint::LoadCustomProperties(read, "Good");
    EXPECT_EQ(read.printWhat, stored.printWhat);
    EXPECT_EQ(read.fitToWidth, stored.fitToWidth);
    EXPECT_EQ(read.landscape, stored.landscape);
    EXPECT_EQ(read.marginsMm, stored.marginsMm);
    EXPECT_EQ(read.fileName, stored.fileName);

    struct Bad
    {
        int what, fit, landscape;
        std::vector<int> margins;
    };
    for (const Bad& b : {Bad{3, 2, -1, {1, 2, 3}}, Bad{-1, -1, 2, {1, 2, 3, 101}},
                         Bad{100, 10, 10, {-1, 2, 3, 4}}, Bad{2, 1, 1, {1, 2, 3, 4, 5}}}) {
        CNyrProfileEntries::WriteNyrProfileInt("Bad", "PrintWhat", b.what);
        CNyrProfileEntries::WriteNyrProfileInt("Bad", "PrintFitToWidth", b.fit);
        CNyrProfileEntries::WriteNyrProfileInt("Bad", "PrintLandscape", b.landscape);
        CNyrProfileEntries::WriteNyrProfileIntVector("Bad", "PrintMargins", b.margins);
        Info kept = stored;
        CNyrListViewPrint::LoadCustomProperties(kept, "Bad");
        EXPECT_EQ(kept.printWhat, b.what == 2 ? 2 : stored.printWhat);
        EXPECT_EQ(kept.fitToWidth, b.fit == 1 ? true : stored.fitToWidth);
        EXPECT_EQ(kept.landscape, b.landscape == 1 ? true : stored.landscape);
        EXPECT_EQ(kept.marginsMm, stored.marginsMm);
        EXPECT_EQ(kept.fileName, stored.fileName);
    }
}

}  // namespace
