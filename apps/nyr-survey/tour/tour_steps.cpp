// The steps of the tour, in the order a new user would take them.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/tools/time_converter.h"
#include "apps/nyr-survey/tour/tour_steps.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/time/time_format_combo_box.h"
#include "nyrwidgets/values/unit_combo_box.h"
#include "nyrwidgets/views/list_view_find_dialog.h"
#include "nyrwidgets/views/plan_view.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"

namespace survey {

int CTourRunner::Run()
{
    Say("Nyr Survey tour, files in " + m_dir);
    // A dialog no step expects (an error message, say) must not hold the
    // tour: after fifteen seconds it is recorded as a failure and closed.
    QTimer watchdog;
    int modalTicks = 0;
    QObject::connect(&watchdog, &QTimer::timeout, &watchdog, [this, &modalTicks] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        modalTicks = dialog ? modalTicks + 1 : 0;
        if (dialog && modalTicks > 30) {
            Shot("unexpected-dialog", dialog);
            Check(false, "an unexpected dialog: " + dialog->windowTitle() + " (" + dialog->metaObject()->className() + ")");
            dialog->reject();
        }
    });
    watchdog.start(500);
    m_window->OpenSample();
    m_window->show();
    Check(QTest::qWaitForWindowExposed(m_window.get()), "the main window shows");
    StepSample();
    StepOpen();
    StepUnits();
    StepSort();
    StepPlan();
    StepFind();
    StepDelete();
    StepEdit();
    StepExport();
    StepPrint();
    StepRecent();
    StepTools();
    StepGerman();
    StepLongWork();
    QFile log(File("tour.txt"));
    if (log.open(QIODevice::WriteOnly | QIODevice::Truncate))
        log.write((m_log.join('\n') + '\n').toUtf8());
    Say(m_failed ? "The tour FAILED; see above." : "The tour is done. Screenshots, exports and tour.txt are in " + m_dir);
    m_window.reset();  // the list stores its layout as it closes
    return m_failed ? 1 : 0;
}

void CTourRunner::StepSample()
{
    Say("1. The sample project: 300 points of a control network; distances and azimuths from TP 101");
    Check(m_window->View()->GetItemCount() == 300, "the sample has 300 points");
    Shot("sample");
    Say("   File > Save As... sample.csv");
    ChooseFile(File("sample.csv"));
    Trigger(CMainWindow::ActSaveAs);
    Check(QFile::exists(File("sample.csv")), "sample.csv was written");
}

void CTourRunner::StepOpen()
{
    Say("2. File > Open... sample.csv");
    ChooseFile(File("sample.csv"));
    Trigger(CMainWindow::ActOpen);
    Check(m_window->FilePath() == File("sample.csv"), "sample.csv is the open file");
    Check(m_window->View()->GetItemCount() == 300, "the file holds the 300 points");
    Shot("opened");
}

void CTourRunner::StepUnits()
{
    Say("3. Units: distances in US survey feet, azimuths in gon, positions in degrees, dates as 31-12-2016");
    CUnitBar& bar = *m_window->UnitBar();
    PickData(bar.DistanceBox(), 22);
    PickData(bar.AngleBox(), 15);
    PickData(bar.LatLonBox(), 11);
    bar.TimeBox()->setCurrentIndex(CNyrTime::eTimeFormatDMY4Dash24);
    QApplication::processEvents();
    Check(m_window->View()->GetColumnLabel(ColEasting) == "Easting [fts]", "the easting column is in US survey feet");
    Shot("units");
}

void CTourRunner::StepSort()
{
    Say("4. Sort: a click on the Distance header, then by code and distance (View > Sort by multiple columns...)");
    CPointView& view = *m_window->View();
    view.EnsureRealColVisible(ColDistance);
    QApplication::processEvents();
    QHeaderView* header = view.horizontalHeader();
    const int section = view.ScreenColFromReal(ColDistance);
    const int x = header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    Check(Cell(0, ColPoint) == "TP 101", "the base point comes first by distance");
    Shot("sorted-by-distance");
    WhenModal("CNyrReportViewSortMultipleDlg", [this](QDialog& d) {
        auto& dialog = static_cast<CNyrReportViewSortMultipleDlg&>(d);
        dialog.SetChoice(0, ColCode, 1);
        dialog.SetChoice(1, ColDistance, 0);
        dialog.SetChoice(2, CNyrReportViewSortMultipleDlg::kNoColumn, 1);
        Shot("sort-dialog", &dialog);
        dialog.accept();
    });
    Trigger(CMainWindow::ActSortMultiple);
    std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
    view.GetSortState(state);
    Check(state.size() == 2 && state[0].realCol == ColCode && state[1].realCol == ColDistance,
          "sorted by code, then by distance");
    Check(Cell(0, ColCode) == "BM", "benchmarks come first");
    view.scrollToTop();
    Shot("sorted-by-code-and-distance");
}

void CTourRunner::StepPlan()
{
    Say("5. The plan beside the list: the benchmarks selected in the list show in it; a rubber band (Shift+drag) "
        "around one of them selects its neighbours in the list");
    CPointView& view = *m_window->View();
    CNyrPlanView& plan = *m_window->Plan();
    // Sorted by code, the list starts with the benchmarks.
    std::vector<unsigned int> benchmarks;
    for (int s = 0; s < view.GetItemCount() && Cell(s, ColCode) == "BM"; ++s)
        benchmarks.push_back(static_cast<unsigned int>(view.RealItemFromScreen(s)));
    view.SelectAllItems(0);
    view.SelectRealItems(benchmarks, 1);
    plan.ZoomToAll();
    Check(!benchmarks.empty() && plan.RealItemsIn(QRectF(plan.rect())).size() ==
                                     static_cast<std::size_t>(view.GetItemCount()),
          "the plan shows every point of the list");
    Shot("plan");
    if (benchmarks.empty())
        return;
    const auto* first = static_cast<const CSurveyPoint*>(view.GetRealItem(benchmarks.front()));
    const QPoint at = plan.PlaneToScreen(first->GetData().easting, first->GetData().northing).toPoint();
    const QRect band(at - QPoint(60, 60), at + QPoint(60, 60));
    QTest::mousePress(&plan, Qt::LeftButton, Qt::ShiftModifier, band.topLeft());
    QTest::mouseMove(&plan, band.center());
    QTest::mouseMove(&plan, band.bottomRight());
    QTest::mouseRelease(&plan, Qt::LeftButton, Qt::ShiftModifier, band.bottomRight());
    const std::size_t inside = plan.RealItemsIn(QRectF(band)).size();
    Check(inside > 0 && static_cast<std::size_t>(view.GetSelectedCount()) == inside,
          "the rubber band selects its points in the list");
    plan.ZoomToSelection();
    Shot("plan-selection");
}

void CTourRunner::StepFind()
{
    Say("6. Find (Ctrl+F) \"GNSS 61\", then the next match with F3");
    CPointView& view = *m_window->View();
    Trigger(CMainWindow::ActFind);
    CNyrListViewFindDialog* dialog = view.GetFind().GetFindDialog();
    if (!Check(dialog != nullptr, "the find dialog opens"))
        return;
    dialog->SearchEdit()->setText("GNSS 61");
    QTest::mouseClick(dialog->FindNextButton(), Qt::LeftButton);
    const int first = view.GetFocusedItem();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_F3);
    const int second = view.GetFocusedItem();
    Check(Cell(first, ColPoint).startsWith("GNSS 61") && Cell(second, ColPoint).startsWith("GNSS 61") &&
              first != second,
          "two different matches found");
    Shot("find", dialog);
    dialog->hide();
}

void CTourRunner::StepDelete()
{
    Say("7. Delete the point found: the question, answered Yes with \"Do not prompt in future\"; the next "
        "delete asks no more");
    CPointView& view = *m_window->View();
    const int before = view.GetItemCount();
    WhenModal("CNyrMessageBoxDialog", [this](QDialog& d) {
        auto& box = static_cast<CNyrMessageBoxDialog&>(d);
        box.SetDoNotPromptUser(true);
        Shot("delete-question", &box);
        QTest::mouseClick(box.Button(NYR_IDYES), Qt::LeftButton);
    });
    Trigger(CMainWindow::ActDelete);
    Check(view.GetItemCount() == before - 1, "the point is deleted");
    view.SelectAllItems(0);
    view.SelectRealItem(static_cast<unsigned int>(view.RealItemFromScreen(0)), 1);
    QTimer* guard = WhenModal("CNyrMessageBoxDialog", [this](QDialog& d) {
        Check(false, "the remembered answer is used");
        d.reject();
    });
    Trigger(CMainWindow::ActDelete);
    delete guard;
    Check(view.GetItemCount() == before - 2, "the second point is deleted without asking");
    Shot("deleted");
    Say("   Settings > Remembered answers...");
    WhenModal("survey::CAnswersDialog", [this](QDialog& d) {
        Shot("remembered-answers", &d);
        d.accept();
    });
    Trigger(CMainWindow::ActAnswers);
}

void CTourRunner::StepExport()
{
    Say("9. File > Export...: the list as CSV and as tab-delimited text, read back");
    const struct
    {
        const char* name;
        int type;
    } exports[] = {{"export.csv", CNyrListViewSaveAsDlgCV::FileTypeCsv},
                   {"export.txt", CNyrListViewSaveAsDlgCV::FileTypeTxt}};
    for (const auto& e : exports) {
        const QString path = File(e.name);
        WhenModal("CNyrListViewSaveAsDlgCV", [this, path, e](QDialog& d) {
            auto& dialog = static_cast<CNyrListViewSaveAsDlgCV&>(d);
            const int type = dialog.FileTypeBox()->findData(e.type);
            dialog.FileTypeBox()->setCurrentIndex(type >= 0 ? type : 0);
            dialog.FileNameEdit()->setText(path);
            dialog.HeaderBox()->setChecked(true);
            dialog.SaveWhatButton(CNyrListViewSaveAsDlgCV::SaveAll)->setChecked(true);
            if (e.type == CNyrListViewSaveAsDlgCV::FileTypeCsv)
                Shot("export-dialog", &dialog);
            dialog.accept();
        });
        Trigger(CMainWindow::ActExport);
        ProjectData back;
        std::string error;
        const bool read = ReadPointsFile(path.toStdString(), back, error);
        Check(read, QString("%1 reads back: %2").arg(e.name, QString::fromStdString(error)));
        Check(static_cast<int>(back.points.size()) == m_window->View()->GetItemCount(),
              QString("%1 holds every point of the list").arg(e.name));
        Say("   written: " + path);
    }
}

void CTourRunner::StepTools()
{
    Say("12. Tools: the time converter across the leap second, the angle and distance converter");
    WhenModal("survey::CTimeConverter", [this](QDialog& d) {
        auto& converter = static_cast<CTimeConverter&>(d);
        converter.Field(CTimeConverter::FieldUtc)->setText("2016-12-31T23:59:59.500Z");
        Check(converter.ConvertFrom(CTimeConverter::FieldUtc), "the converter reads UTC");
        Check(converter.Field(CTimeConverter::FieldGps)->text() == "1930 16.500",
              "half a second before the leap second is GPS week 1930, 16.5 s (GPS - UTC 17 s)");
        Shot("time-converter", &converter);
        converter.reject();
    });
    Trigger(CMainWindow::ActTimeConverter);
    WhenModal("survey::CUnitConverter", [this](QDialog& d) {
        Shot("unit-converter", &d);
        d.reject();
    });
    Trigger(CMainWindow::ActUnitConverter);
}

void CTourRunner::StepGerman()
{
    Say("13. Settings > Language > Deutsch, then Help > About");
    Trigger(CMainWindow::ActGerman);
    QStringList texts;
    for (const QAction* menu : m_window->menuBar()->actions())
        texts << "menu: " + menu->text();
    const CPointView& view = *m_window->View();
    for (int c = 0; c < view.GetColumnCount(); ++c)
        texts << "column: " + QString::fromStdString(view.GetColumnLabel(c));
    texts << "status: " + m_window->StatusText() << "title: " + m_window->windowTitle()
          << "message: " + m_window->statusBar()->currentMessage() << "plan: " + m_window->Plan()->GetCursorText();
    QFile file(File("texts-de.txt"));
    Check(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write((texts.join('\n') + '\n').toUtf8()) > 0,
          "texts-de.txt is written");
    Check(m_window->menuBar()->actions().value(0) && m_window->menuBar()->actions()[0]->text() == "&Datei",
          "the menus are German");
    Shot("german");
    WhenModal("CNyrAboutDialog", [this](QDialog& d) {
        Shot("about", &d);
        d.accept();
    });
    Trigger(CMainWindow::ActAbout);
}

}  // namespace survey
