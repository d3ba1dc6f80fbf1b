// The tour's later steps: editing points, printing, the recent files and
// long work with its progress.
#include <QApplication>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrintPreviewWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/tour/tour_steps.h"
#include "apps/nyr-survey/window/point_dialog.h"
#include "apps/nyr-survey/window/point_view.h"
#include "nyr/app/recent_documents.h"
#include "nyrwidgets/app/progress_dialog.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/views/view_print_dlg.h"

namespace survey {

namespace {

// Replaces a field's text as the user does: all of it selected, then typed.
void Retype(QLineEdit* field, const QString& text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, text);
}

}  // namespace

void CTourRunner::StepEdit()
{
    Say("8. Edit TP 105's height in place (F2 in the list), then GNSS 502 in the point dialog (Edit > Edit "
        "point...): a new name and code");
    CPointView& view = *m_window->View();
    const int row = Focus("TP 105");
    const int real = RealOf("TP 105");
    if (row < 0 || !Check(view.EditRealItem(static_cast<unsigned int>(real), ColHeight) == 1, "the height opens"))
        return;
    CNyrInputControl* editor = view.GetInplaceEditor();
    Retype(editor, "1000");
    Shot("edit-in-place");
    QTest::keyClick(editor, Qt::Key_Return);
    Check(view.GetInplaceEditor() == nullptr && Cell(row, ColHeight).trimmed() == "1000.000",
          "the height is 1000 US survey feet: " + Cell(row, ColHeight));

    Focus("GNSS 502");
    WhenModal("survey::CPointDialog", [this](QDialog& d) {
        auto& dialog = static_cast<CPointDialog&>(d);
        Retype(dialog.NameField(), "GNSS 502a");
        Retype(dialog.CodeField(), "CP");
        Shot("point-dialog", &dialog);
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
    });
    Trigger(CMainWindow::ActEditPoint);
    const int renamed = RealOf("GNSS 502a");
    Check(renamed >= 0 && Cell(view.ScreenItemFromReal(static_cast<unsigned int>(renamed)), ColCode) == "CP",
          "GNSS 502 is GNSS 502a of code CP");
    Shot("edited");
}

void CTourRunner::StepPrint()
{
    Say("10. File > Export PDF...: the list and the plan in one printout; File > Print Preview... on the plan's page");
    const QString pdf = File("sample.pdf");
    WhenModal("CNyrListViewPrintDlg", [this, pdf](QDialog& d) {
        auto& dialog = static_cast<CNyrListViewPrintDlg&>(d);
        Check(dialog.FileNameEdit()->text() == pdf, "the PDF is named after the points file");
        dialog.LandscapeButton(true)->click();
        Shot("pdf-dialog", &dialog);
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
    });
    Trigger(CMainWindow::ActExportPdf);
    Check(QFile::exists(pdf), "sample.pdf was written");
    Say("   written: " + pdf);
    WhenModal("CNyrListViewPrintDlg", [this](QDialog& d) {
        WhenModal("QPrintPreviewDialog", [this](QDialog& preview) {
            preview.resize(1100, 680);
            auto* pages = preview.findChild<QPrintPreviewWidget*>();
            Check(pages && pages->pageCount() >= 2, "the preview has the list's pages and the plan's");
            // To the last page, the plan's, as a user types its number.
            for (QLineEdit* number : preview.findChildren<QLineEdit*>())
                if (pages && !qobject_cast<QComboBox*>(number->parentWidget())) {
                    number->setText(QString::number(pages->pageCount()));
                    QTest::keyClick(number, Qt::Key_Return);
                }
            Shot("print-preview-plan", &preview);
            preview.reject();
        });
        static_cast<CNyrDialog&>(d).accept();
    });
    Trigger(CMainWindow::ActPrintPreview);
}

void CTourRunner::StepRecent()
{
    Say("11. File > Save, File > Open... export.csv, then back to sample.csv through File > Recent files");
    Trigger(CMainWindow::ActSave);
    ChooseFile(File("export.csv"));
    Trigger(CMainWindow::ActOpen);
    Check(m_window->FilePath() == File("export.csv"), "export.csv is the open file");
    QMenu* fileMenu = m_window->menuBar()->actions().value(0) ? m_window->menuBar()->actions()[0]->menu() : nullptr;
    QMenu* recent = m_window->RecentMenu();
    if (!Check(fileMenu != nullptr, "the File menu"))
        return;
    fileMenu->popup(m_window->mapToGlobal(QPoint(0, m_window->menuBar()->height())));
    recent->popup(fileMenu->mapToGlobal(fileMenu->actionGeometry(recent->menuAction()).topRight()));
    ShotMenus("recent-files", {fileMenu, recent});
    QAction* sample = nullptr;
    for (QAction* entry : recent->actions())
        sample = entry->text().endsWith("sample.csv") ? entry : sample;
    recent->hide();
    fileMenu->hide();
    if (!Check(sample != nullptr, "the recent files offer sample.csv"))
        return;
    sample->trigger();
    QApplication::processEvents();
    const std::vector<std::string>& files = m_window->RecentFiles().Files();
    Check(m_window->FilePath() == File("sample.csv") && m_window->View()->GetItemCount() == 298,
          "sample.csv is open again, as saved");
    Check(files.size() == 2 && files[0] == File("sample.csv").toStdString() &&
              files[1] == File("export.csv").toStdString(),
          "the recent files: sample.csv, then export.csv");
}

void CTourRunner::StepLongWork()
{
    Say("14. File > Generate test data: a million points on a worker; Cancel keeps the project, then all of them");
    // Shown at once, however fast this machine makes them.
    CNyrProgressDialog::MinimumDurationDefault(0);
    CPointView& view = *m_window->View();
    const int before = view.GetItemCount();
    WhenModal("CNyrProgressDialog", [this](QDialog& dialog) {
        // Cancelled as soon as the bar has moved (the worker's first report,
        // a tenth of a second in), long before a million points are made: a
        // fixed wait lets a fast machine finish first.
        auto& bar = static_cast<QProgressDialog&>(dialog);
        const QDeadlineTimer bound(10000);
        while (bar.value() <= 0 && dialog.isVisible() && !bound.hasExpired())
            QTest::qWait(5);
        Shot("progress", &dialog);
        if (auto* cancel = dialog.findChild<QPushButton*>())
            QTest::mouseClick(cancel, Qt::LeftButton);
    });
    Trigger(CMainWindow::ActGenerate);
    Check(view.GetItemCount() == before, "Cancel keeps the project");
    Trigger(CMainWindow::ActGenerate);
    Check(view.GetItemCount() == 1000000, "a million points");
    Shot("million");
}

}  // namespace survey
