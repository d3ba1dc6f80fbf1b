#include "apps/nyr-survey/window/main_window.h"

#include <GeographicLib/Config.h>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>

#include "apps/nyr-survey/app/language.h"
#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/project/geodesy.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyr/app/recent_documents.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/app/about_dialog.h"
#include "nyrwidgets/app/recent_documents_menu.h"
#include "nyrwidgets/frame/help_app.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/plan_view.h"

namespace survey {

namespace {

constexpr long kStatusMask = CNyrReportView::NotifyItemDisplay | CNyrReportView::NotifyItemCleanup |
                             CNyrReportView::NotifyItemAppend | CNyrReportView::NotifyItemHide |
                             CNyrReportView::NotifyItemSelect | CNyrReportView::NotifyItemCheck;

}  // namespace

CMainWindow::CMainWindow(QWidget* parent)
    : QMainWindow(parent), m_view(new CPointView(this)), m_plan(new CNyrPlanView(this)),
      m_unitBar(new CUnitBar(this, this)), m_recentMenu(new QMenu(this)),
      m_recent(std::make_unique<CNyrRecentDocuments>(kRecentSection, 9)), m_counts(new QLabel(this)),
      m_base(new QLabel(this)), m_statusTimer(new QTimer(this)), m_titleId(TxtSampleProject)
{
    setObjectName("MainWindow");
    auto* splitter = new QSplitter(this);
    splitter->addWidget(m_view);
    splitter->addWidget(m_plan);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setSizes({740, 540});
    setCentralWidget(splitter);
    m_plan->SetReportView(m_view);
    m_view->SetPlan(m_plan);
    connect(m_view, &CPointView::ProjectChanged, this, &CMainWindow::SetUpPlan);
    connect(m_view, &CPointView::ModifiedChanged, this, &CMainWindow::UpdateTitle);
    addToolBar(m_unitBar);
    statusBar()->addPermanentWidget(m_base);
    statusBar()->addPermanentWidget(m_counts);
    setAcceptDrops(true);
    CreateActions();
    CreateMenus();
    // Files that went away are marked and disabled, not dropped: a network
    // share may come back.
    m_recent->Load();
    m_recentHelper = std::make_unique<CNyrRecentDocumentsMenu>(*m_recent, m_recentMenu);
    connect(m_recentHelper.get(), &CNyrRecentDocumentsMenu::documentSelected, this, &CMainWindow::OpenFile);
    // A selection of a million rows sends a million notifications: the
    // counts are worked out once, after the last of them.
    m_statusTimer->setSingleShot(true);
    m_statusTimer->setInterval(0);
    connect(m_statusTimer, &QTimer::timeout, this, &CMainWindow::UpdateStatus);
    m_view->AddItemNotification(this, kStatusMask);
    connect(m_view, &CPointView::ProjectChanged, this, &CMainWindow::ScheduleStatus);
    NyrGetHelpApp().MainWindow(this);
    Retranslate();
    resize(1280, 720);
}

CMainWindow::~CMainWindow()
{
    CNyrReportView::SetGlobalItemMenu(nullptr);
}

bool CMainWindow::ChangeLanguage(int language)
{
    std::string error;
    if (!SetLanguage(static_cast<eLanguage>(language), &error)) {
        ShowError(QText(TxtLanguageFailed).arg(QString::fromStdString(error)).toStdString());
        Retranslate();  // puts the check mark back on the language in force
        return false;
    }
    WriteSetting("Language", language);
    RegisterMessages();
    Retranslate();
    return true;
}

QString CMainWindow::StatusText() const
{
    return m_base->text() + " | " + m_counts->text();
}

void CMainWindow::ScheduleStatus()
{
    m_statusTimer->start();
}

void CMainWindow::UpdateStatus()
{
    m_counts->setText(QText(TxtStatusPoints).arg(m_view->GetItemCount()) + "   " +
                      QText(TxtStatusSelected).arg(m_view->GetSelectedCount()) + "   " +
                      QText(TxtStatusChecked).arg(m_view->GetCheckedCount()));
    const CSurveyProject& project = m_view->Project();
    m_base->setText(project.HasBase() ? QText(TxtStatusBase).arg(QString::fromStdString(project.BaseName()))
                                      : QText(TxtStatusNoBase));
}

void CMainWindow::UpdateTitle()
{
    const QString name = m_path.isEmpty() ? QText(m_titleId) : QFileInfo(m_path).fileName();
    setWindowTitle((m_view->IsModified() ? "*" : "") + name + " - " + QText(TxtAppName));
    m_view->SetPrintTitle((name + " - " + QText(TxtAppName)).toStdString());
    m_view->SetFileStem(FileStem());
}

bool CMainWindow::event(QEvent* e)
{
    if (CNyrMessageEvent::From(e)) {
        ScheduleStatus();  // one of the list's item notifications
        return true;
    }
    return QMainWindow::event(e);
}

void CMainWindow::dragEnterEvent(QDragEnterEvent* e)
{
    if (e->mimeData()->hasUrls() && !e->mimeData()->urls().isEmpty() && e->mimeData()->urls().front().isLocalFile())
        e->acceptProposedAction();
}

void CMainWindow::dropEvent(QDropEvent* e)
{
    const QList<QUrl> urls = e->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile())
        return;
    e->acceptProposedAction();
    // Opened after the drop has finished, so that an error message does not
    // run inside the drag-and-drop loop of the source.
    const QString path = urls.front().toLocalFile();
    QTimer::singleShot(0, this, [this, path] { OpenFile(path); });
}

void CMainWindow::closeEvent(QCloseEvent* e)
{
    e->setAccepted(MayReplaceProject());
}

void CMainWindow::ShowAbout()
{
    CNyrAboutDialog about(this, QText(TxtAppName), QStringLiteral(NYR_SURVEY_VERSION),
                          {{"GeographicLib", GEOGRAPHICLIB_VERSION_STRING}});
    about.setObjectName("AboutDialog");
    about.Exec();
}

void CMainWindow::SetUpPlan()
{
    // No blue: selected points are drawn in the highlight colour.
    static const QColor colors[] = {QColor(200, 30, 30), QColor(20, 150, 60), QColor(220, 130, 0),
                                    QColor(140, 60, 170), QColor(120, 80, 40), QColor(70, 70, 70)};
    const CSurveyProject& project = m_view->Project();
    for (uint32_t code = 0; code < project.CodeCount(); ++code)
        m_plan->SetSymbol(code, static_cast<CNyrPlanView::eSymbolShape>(code % 6), colors[(code / 6 + code) % 6]);
    m_plan->SetProjection([zone = project.UtmZone(), north = project.UtmNorth()](double e, double n, double& lat,
                                                                                double& lon) {
        return UtmToLatLon(UtmPosition{zone, north, e, n}, lat, lon);
    });
}

void CMainWindow::ShowError(const std::string& text)
{
    NyrMessageBox(text, Text(TxtAppName), NYR_MB_ICONERROR);
}

}  // namespace survey
