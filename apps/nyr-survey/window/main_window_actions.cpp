// The main window's commands: one table says each action's text, key and
// menu; Run() carries them out.
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include "apps/nyr-survey/app/language.h"
#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/mail/send_points.h"
#include "apps/nyr-survey/tools/answers_dialog.h"
#include "apps/nyr-survey/tools/time_converter.h"
#include "apps/nyr-survey/tools/unit_converter.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/view_print_list.h"

namespace survey {

namespace {

enum eMenu { MenuFile, MenuEdit, MenuView, MenuTools, MenuSettings, MenuLanguage, MenuHelp };

struct ActionDef
{
    unsigned int text;
    QKeySequence::StandardKey standard;
    const char* keys;  // used when `standard` is UnknownKey
    eMenu menu;
    bool separatorBefore;
};

constexpr QKeySequence::StandardKey kNone = QKeySequence::UnknownKey;

// In the order of CMainWindow::eAction.
const ActionDef kActions[CMainWindow::ActCount] = {
    {TxtOpen, QKeySequence::Open, "", MenuFile, false},
    {TxtSave, QKeySequence::Save, "", MenuFile, false},
    {TxtSaveAs, QKeySequence::SaveAs, "", MenuFile, false},
    {TxtExport, kNone, "Ctrl+E", MenuFile, true},
    {TxtPrint, QKeySequence::Print, "", MenuFile, true},
    {TxtPrintPreview, kNone, "", MenuFile, false},
    {TxtExportPdf, kNone, "", MenuFile, false},
    {TxtSend, kNone, "", MenuFile, true},
    {TxtOpenSample, kNone, "", MenuFile, true},
    {TxtGenerate, kNone, "", MenuFile, false},
    {TxtExit, QKeySequence::Quit, "", MenuFile, true},
    {TxtEditPoint, kNone, "Alt+Return", MenuEdit, false},
    {TxtDelete, kNone, "Del", MenuEdit, false},
    {TxtSetBase, kNone, "Ctrl+B", MenuEdit, false},
    {TxtFind, kNone, "Ctrl+F", MenuEdit, true},
    {TxtFindNext, kNone, "F3", MenuEdit, false},
    {TxtFindPrevious, kNone, "Shift+F3", MenuEdit, false},
    {TxtSelectAll, kNone, "Ctrl+A", MenuEdit, true},
    {TxtInvertSelection, kNone, "", MenuEdit, false},
    {TxtSelectChecked, kNone, "", MenuEdit, false},
    {TxtCheckAll, kNone, "", MenuEdit, true},
    {TxtInvertChecked, kNone, "", MenuEdit, false},
    {TxtCheckSelected, kNone, "", MenuEdit, false},
    {TxtUncheckSelected, kNone, "", MenuEdit, false},
    {TxtColumns, kNone, "", MenuView, false},
    {TxtSortMultiple, kNone, "", MenuView, false},
    {TxtOriginalOrder, kNone, "", MenuView, false},
    {TxtAutoArrange, kNone, "", MenuView, true},
    {TxtShowAllColumns, kNone, "", MenuView, false},
    {TxtTimeConverter, kNone, "", MenuTools, false},
    {TxtUnitConverter, kNone, "", MenuTools, false},
    {TxtRememberedAnswers, kNone, "", MenuSettings, false},
    {TxtMailServer, kNone, "", MenuSettings, false},
    {TxtEnglish, kNone, "", MenuLanguage, false},
    {TxtGerman, kNone, "", MenuLanguage, false},
    {TxtAbout, kNone, "", MenuHelp, false},
};

constexpr unsigned int kMenuTitles[] = {TxtMenuFile,     TxtMenuEdit,     TxtMenuView, TxtMenuTools,
                                        TxtMenuSettings, TxtMenuLanguage, TxtMenuHelp};

// The list's own commands behind the Edit and View entries.
unsigned int ViewCommand(CMainWindow::eAction action)
{
    switch (action) {
    case CMainWindow::ActDelete: return WM_NYR_REPORTVIEW_DELETE_SELECTED;
    case CMainWindow::ActFind: return WM_NYR_REPORTVIEW_FIND;
    case CMainWindow::ActFindNext: return WM_NYR_REPORTVIEW_FIND_NEXT;
    case CMainWindow::ActFindPrevious: return WM_NYR_REPORTVIEW_FIND_PREV;
    case CMainWindow::ActSelectAll: return WM_NYR_REPORTVIEW_SELECT_ALL;
    case CMainWindow::ActInvertSelection: return WM_NYR_REPORTVIEW_INVERT_SELECTION;
    case CMainWindow::ActSelectChecked: return WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS;
    case CMainWindow::ActCheckAll: return WM_NYR_REPORTVIEW_CHECK_ALL;
    case CMainWindow::ActInvertChecked: return WM_NYR_REPORTVIEW_INVERT_CHECKED;
    case CMainWindow::ActExport: return WM_NYR_REPORTVIEW_SAVE_AS;
    case CMainWindow::ActPrint: return NyrListViewPrintMessage();
    case CMainWindow::ActPrintPreview: return NyrListViewPrintPreviewMessage();
    case CMainWindow::ActExportPdf: return NyrListViewExportPdfMessage();
    case CMainWindow::ActColumns: return WM_NYR_REPORTVIEW_COLUMNS_DLG;
    case CMainWindow::ActSortMultiple: return WM_NYR_REPORTVIEW_SORT_MULTIPLE;
    case CMainWindow::ActOriginalOrder: return WM_NYR_REPORTVIEW_SORT_UNSORTED;
    case CMainWindow::ActAutoArrange: return WM_NYR_REPORTVIEW_AUTO_ARRANGE;
    case CMainWindow::ActShowAllColumns: return WM_NYR_REPORTVIEW_VIEW_ALL_COLS;
    default: return 0;
    }
}

}  // namespace

void CMainWindow::CreateActions()
{
    auto* languages = new QActionGroup(this);
    for (int a = 0; a < ActCount; ++a) {
        const ActionDef& def = kActions[a];
        auto* action = new QAction(this);
        action->setObjectName(QString::fromStdString(EnglishText(def.text)).remove('&').remove("..."));
        if (def.standard != kNone)
            action->setShortcuts(def.standard);
        else if (*def.keys)
            action->setShortcut(QKeySequence(QString::fromLatin1(def.keys)));
        if (def.menu == MenuLanguage) {
            action->setCheckable(true);
            languages->addAction(action);
        }
        connect(action, &QAction::triggered, this, [this, a] { Run(static_cast<eAction>(a)); });
        m_actions[static_cast<std::size_t>(a)] = action;
    }
    // The list's context menu offers the application's point commands too.
    auto* itemMenu = new QMenu(this);
    itemMenu->addAction(m_actions[ActSetBase]);
    itemMenu->addAction(m_actions[ActSend]);
    CNyrReportView::SetGlobalItemMenu(itemMenu);
}

void CMainWindow::CreateMenus()
{
    for (std::size_t m = 0; m < m_menus.size(); ++m)
        m_menus[m] = m == MenuLanguage ? m_menus[MenuSettings]->addMenu(QString()) : menuBar()->addMenu(QString());
    for (int a = 0; a < ActCount; ++a) {
        QMenu* menu = m_menus[kActions[a].menu];
        if (kActions[a].separatorBefore)
            menu->addSeparator();
        menu->addAction(m_actions[static_cast<std::size_t>(a)]);
    }
    m_menus[MenuFile]->insertMenu(m_actions[ActSave], m_recentMenu);
}

void CMainWindow::Retranslate()
{
    for (std::size_t m = 0; m < m_menus.size(); ++m)
        m_menus[m]->setTitle(QText(kMenuTitles[m]));
    for (int a = 0; a < ActCount; ++a)
        m_actions[static_cast<std::size_t>(a)]->setText(QText(kActions[a].text));
    m_recentMenu->setTitle(QText(TxtRecentFiles));
    m_actions[CurrentLanguage() == LanguageGerman ? ActGerman : ActEnglish]->setChecked(true);
    m_unitBar->Retranslate();
    m_view->UpdateColumnLabels();
    QEvent changed(QEvent::LanguageChange);
    QApplication::sendEvent(m_plan, &changed);
    statusBar()->clearMessage();  // said in the language before
    UpdateTitle();
    UpdateStatus();
}

void CMainWindow::Run(eAction action)
{
    switch (action) {
    case ActOpen: Open(); break;
    case ActSave: (void)(m_path.isEmpty() ? SaveAs() : SaveFile(m_path)); break;
    case ActSaveAs: SaveAs(); break;
    case ActSend: SendPoints(this, m_view->ChosenPoints()); break;
    case ActSample: OpenSample(); break;
    case ActEditPoint:
        if (const int real = m_view->FocusedRealItem(); real >= 0)
            m_view->EditPoint(static_cast<unsigned int>(real));
        break;
    case ActGenerate: GenerateTestData(1000000); break;
    case ActExit: close(); break;
    case ActSetBase:
        if (m_view->SetBaseFromFocus())
            WriteSetting("BasePoint", m_view->Project().BaseName());
        break;
    case ActCheckSelected: m_view->CheckSelectedItems(1); break;
    case ActUncheckSelected: m_view->CheckSelectedItems(0); break;
    case ActTimeConverter: CTimeConverter(this).Exec(); break;
    case ActUnitConverter: CUnitConverter(this).Exec(); break;
    case ActAnswers: CAnswersDialog(this).Exec(); break;
    case ActMailServer: EditMailServer(this); break;
    case ActEnglish: ChangeLanguage(LanguageEnglish); break;
    case ActGerman: ChangeLanguage(LanguageGerman); break;
    case ActAbout: ShowAbout(); break;
    default:
        if (const unsigned int command = ViewCommand(action))
            NyrSendMessage(m_view, command);
        break;
    }
}

}  // namespace survey
