#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>

#include "apps/nyr-survey/project/survey_project.h"

class CNyrPlanView;
class QAction;
class QLabel;
class QMenu;
class QTimer;

namespace survey {

class CPointView;
class CUnitBar;

// The application's main window: the point list and beside it the plan of
// the points (a CNyrPlanView in step with the list), the unit tool bar above, counts and the base point in the status bar, and menus
// that reach every command of the list. It accepts points files dropped on
// it.
//
// Where the library's coming parts plug in (see the README's walk-through):
// point editing -> CPointView::OnModifyRealItem; printing -> the File menu
// beside Export (ActionDefs in main_window_actions.cpp); recent files and
// single instance -> OpenFile, which every way of opening goes through;
// progress on long work -> GenerateTestData and OpenFile, which now show
// the busy cursor; the About dialog -> ShowAbout.
class CMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // The commands, one action each.
    enum eAction {
        ActOpen, ActSave, ActSaveAs, ActExport, ActSend, ActSample, ActGenerate, ActExit,
        ActDelete, ActSetBase, ActFind, ActFindNext, ActFindPrevious, ActSelectAll, ActInvertSelection,
        ActSelectChecked, ActCheckAll, ActInvertChecked, ActCheckSelected, ActUncheckSelected,
        ActColumns, ActSortMultiple, ActOriginalOrder, ActAutoArrange, ActShowAllColumns,
        ActTimeConverter, ActUnitConverter,
        ActAnswers, ActMailServer, ActEnglish, ActGerman,
        ActAbout,
        ActCount
    };

    explicit CMainWindow(QWidget* parent = nullptr);
    ~CMainWindow() override;

    // Reads a points file and shows it; on failure the open project stays
    // and the reason is shown. True when opened.
    bool OpenFile(const QString& path);
    // Writes the points (File > Save form) to `path`, asking first when it
    // exists ("Files/Overwrite"). True when written.
    bool SaveFile(const QString& path);
    void OpenSample();
    // Replaces the project with `count` generated points.
    void GenerateTestData(std::size_t count);
    // Switches and stores the language; false when the modules are missing.
    bool ChangeLanguage(int language);

    CPointView* View() const { return m_view; }
    CNyrPlanView* Plan() const { return m_plan; }
    CUnitBar* UnitBar() const { return m_unitBar; }
    QAction* Action(eAction action) const { return m_actions[action]; }
    const QString& FilePath() const { return m_path; }
    // The status bar's texts: counts and base point.
    QString StatusText() const;

protected:
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;
    bool event(QEvent* e) override;

private:
    void CreateActions();
    void CreateMenus();
    void Retranslate();
    void Run(eAction action);
    void Open();
    void SaveAs();
    void ShowAbout();
    void UpdateTitle();
    void ScheduleStatus();
    void UpdateStatus();
    QString AskFileName(bool save);
    void ShowError(const std::string& text);
    // One symbol per code of the project, and the projection of its UTM zone.
    void SetUpPlan();

    CPointView* m_view;
    CNyrPlanView* m_plan;
    CUnitBar* m_unitBar;
    std::array<QAction*, ActCount> m_actions{};
    std::array<QMenu*, 7> m_menus{};  // File, Edit, View, Tools, Settings, Language, Help
    QLabel* m_counts;
    QLabel* m_base;
    QTimer* m_statusTimer;
    QString m_path;       // the file the project came from; empty for the sample or test data
    unsigned int m_titleId;  // what the title shows without a file
};

}  // namespace survey
