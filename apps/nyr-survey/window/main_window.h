#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <memory>

#include "apps/nyr-survey/project/survey_project.h"

class CNyrPlanView;
class CNyrRecentDocuments;
class CNyrRecentDocumentsMenu;
class QAction;
class QLabel;
class QMenu;
class QTimer;

namespace survey {

class CPointView;
class CUnitBar;

// The application's main window: the point list and beside it the plan of
// the points (a CNyrPlanView in step with the list), the unit tool bar
// above, counts and the base point in the status bar, and menus that reach
// every command of the list, printing (the list and the plan) among them.
// It accepts points files dropped on it.
//
// Every way of opening a file (the menu, the recent files, a drop, the
// command line, a later start of the program) goes through OpenFile, which
// keeps the recent files list and the log; long work (opening, generating
// test data) runs on a worker with a progress dialog whose Cancel leaves the
// open project as it was.
class CMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // The commands, one action each.
    enum eAction {
        ActOpen, ActSave, ActSaveAs, ActExport, ActPrint, ActPrintPreview, ActExportPdf, ActSend, ActSample,
        ActGenerate, ActExit,
        ActEditPoint, ActDelete, ActSetBase, ActFind, ActFindNext, ActFindPrevious, ActSelectAll, ActInvertSelection,
        ActSelectChecked, ActCheckAll, ActInvertChecked, ActCheckSelected, ActUncheckSelected,
        ActColumns, ActSortMultiple, ActOriginalOrder, ActAutoArrange, ActShowAllColumns,
        ActTimeConverter, ActUnitConverter,
        ActAnswers, ActMailServer, ActEnglish, ActGerman,
        ActAbout,
        ActCount
    };

    explicit CMainWindow(QWidget* parent = nullptr);
    ~CMainWindow() override;

    // Reads a points file and shows it; on failure (or Cancel) the open
    // project stays and the reason is shown. True when opened. Like
    // OpenSample and GenerateTestData, it asks first (MayReplaceProject).
    bool OpenFile(const QString& path);
    // Opens the files a later start of the program was given, relative to
    // the folder it was started in.
    void OpenHandedOver(const QStringList& files, const QString& workingDirectory);
    // Writes the points (File > Save form) to `path`, asking first when it
    // exists ("Files/Overwrite"). True when written.
    bool SaveFile(const QString& path);
    void OpenSample();
    // Replaces the project with `count` generated points; false when
    // cancelled (the project stays).
    bool GenerateTestData(std::size_t count);
    // Before the project is replaced or the window closes: when points were
    // changed, asks whether to save them first (Yes saves, through Save As
    // when the project has no file yet; No drops the changes). False when
    // the user cancels or the save fails: the project must stay.
    bool MayReplaceProject();
    // Switches and stores the language; false when the modules are missing.
    bool ChangeLanguage(int language);

    CPointView* View() const { return m_view; }
    CNyrPlanView* Plan() const { return m_plan; }
    CUnitBar* UnitBar() const { return m_unitBar; }
    QAction* Action(eAction action) const { return m_actions[action]; }
    QMenu* RecentMenu() const { return m_recentMenu; }
    CNyrRecentDocuments& RecentFiles() const { return *m_recent; }
    const QString& FilePath() const { return m_path; }
    // The status bar's texts: counts and base point.
    QString StatusText() const;

protected:
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    bool event(QEvent* e) override;

private:
    void CreateActions();
    void CreateMenus();
    void Retranslate();
    void Run(eAction action);
    void Open();
    bool SaveAs();
    void ShowAbout();
    void UpdateTitle();
    void LoadProject(ProjectData loaded);
    void ScheduleStatus();
    void UpdateStatus();
    QString AskFileName(bool save);
    void ShowError(const std::string& text);
    // What printing and exports start from: the file's folder and name, or
    // the last folder of points files.
    std::string FileStem() const;
    // One symbol per code of the project, and the projection of its UTM zone.
    void SetUpPlan();

    CPointView* m_view;
    CNyrPlanView* m_plan;
    CUnitBar* m_unitBar;
    std::array<QAction*, ActCount> m_actions{};
    std::array<QMenu*, 7> m_menus{};  // File, Edit, View, Tools, Settings, Language, Help
    QMenu* m_recentMenu;
    std::unique_ptr<CNyrRecentDocuments> m_recent;
    std::unique_ptr<CNyrRecentDocumentsMenu> m_recentHelper;  // goes before the list it follows
    QLabel* m_counts;
    QLabel* m_base;
    QTimer* m_statusTimer;
    QString m_path;       // the file the project came from; empty for the sample or test data
    unsigned int m_titleId;  // what the title shows without a file
};

}  // namespace survey
