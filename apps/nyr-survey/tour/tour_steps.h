#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "apps/nyr-survey/window/main_window.h"

class QComboBox;
class QTimer;
class QDialog;
class QWidget;

namespace survey {

// The tour's machinery (tour.cpp) and its steps (tour_steps.cpp). A step
// triggers the window's own actions; a dialog that an action runs modally
// is answered by a handler armed just before (WhenModal), which finds it
// as the application's active modal widget, takes its screenshot and
// answers it with its own controls.
class CTourRunner
{
public:
    explicit CTourRunner(const QString& outDir);
    ~CTourRunner();

    // Runs every step; the exit status.
    int Run();

private:
    void StepSample();
    void StepOpen();
    void StepUnits();
    void StepSort();
    void StepPlan();
    void StepFind();
    void StepDelete();
    void StepEdit();
    void StepExport();
    void StepPrint();
    void StepRecent();
    void StepTools();
    void StepGerman();
    void StepLongWork();

    void Say(const QString& text);
    bool Check(bool ok, const QString& what);
    QString File(const QString& name) const;
    void Shot(const QString& name, QWidget* dialog = nullptr);
    // A screenshot of the window with its open pop-up menus where they are.
    void ShotMenus(const QString& name, const std::vector<QWidget*>& menus);
    // Arms `act` for the next modal dialog of class `className`; waits at
    // most ten seconds for it. Deleting the timer returned disarms it.
    QTimer* WhenModal(const char* className, std::function<void(QDialog&)> act);
    void Trigger(CMainWindow::eAction action);
    // Answers the next file dialog with `path`.
    void ChooseFile(const QString& path);
    // Selects the entry of a unit list whose data is `data`.
    void PickData(QComboBox* box, long data);
    QString Cell(int screenRow, unsigned int realCol) const;
    // The real index of the point named `name`; -1 when there is none.
    int RealOf(const QString& name) const;
    // Selects and shows that point alone; its screen row, -1 when none.
    int Focus(const QString& name);

    QString m_dir;
    std::unique_ptr<CMainWindow> m_window;
    QStringList m_log;
    int m_shots = 0;
    bool m_failed = false;
};

}  // namespace survey
