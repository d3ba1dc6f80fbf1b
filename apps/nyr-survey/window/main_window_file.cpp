// The main window's file commands: every way of opening a project (menu,
// recent files, drop, command line, a later start, tour) ends in OpenFile,
// every save in SaveFile; both keep the log.
#include <QDir>
#include <QFileInfo>
#include <QStatusBar>
#include <memory>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "nyr/app/log_file.h"
#include "nyr/app/recent_documents.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/app/browse.h"
#include "nyrwidgets/app/progress_dialog.h"
#include "nyrwidgets/frame/wait_cursor.h"

namespace survey {

namespace {

// The purpose under which the browse helpers remember the folder of points files.
const QString kPointsPurpose = QStringLiteral("Points");

std::string Utf8(const QString& text)
{
    return text.toStdString();
}

}  // namespace

bool CMainWindow::MayReplaceProject()
{
    if (!m_view->IsModified())
        return true;
    const QString name = m_path.isEmpty() ? QText(m_titleId) : QFileInfo(m_path).fileName();
    switch (NyrMessageBox(Utf8(QText(TxtAskSaveChanges).arg(name)), Text(TxtAppName),
                          NYR_MB_YESNOCANCEL | NYR_MB_ICONQUESTION)) {
    case NYR_IDNO: return true;
    case NYR_IDYES: return m_path.isEmpty() ? SaveAs() : SaveFile(m_path);
    default: return false;
    }
}

bool CMainWindow::OpenFile(const QString& path)
{
    if (!MayReplaceProject())
        return false;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const std::string file = Utf8(absolute);
    PrepareReading();
    auto loaded = std::make_shared<ProjectData>();
    auto error = std::make_shared<ReadError>();
    const std::string reading = Utf8(QText(TxtReading).arg(QFileInfo(path).fileName()));
    QVariant read;
    const int status = CNyrProgressDialog::Run(
        this,
        [file, loaded, error, reading](CNyrProgress& progress) -> QVariant {
            progress.SetText(reading);
            return ReadPointsFile(file, *loaded, *error, &progress);
        },
        &read, QText(TxtOpenTitle));
    if (status == CNyrWorker::eCancelled || (status == CNyrWorker::eDone && !read.toBool() && error->id == 0)) {
        CNyrLogFile::Default().Info("Opening " + file + " was cancelled");
        statusBar()->showMessage(QText(TxtOpenCancelled).arg(QDir::toNativeSeparators(absolute)));
        return false;
    }
    if (status != CNyrWorker::eDone || !read.toBool()) {
        const std::string reason = status == CNyrWorker::eDone ? error->Text() : Utf8(read.toString());
        CNyrLogFile::Default().Error("Opening " + file + " failed: " + reason);
        m_recent->Remove(file);
        ShowError(Utf8(QText(TxtOpenFailed).arg(QDir::toNativeSeparators(absolute), QString::fromStdString(reason))));
        return false;
    }
    const std::size_t count = loaded->points.size();
    LoadProject(std::move(*loaded));
    // A points file names no base: the one the user chose last, if the file
    // has it, else its first point.
    m_view->ChooseBase(ReadSetting("BasePoint", std::string()));
    m_path = absolute;
    m_recent->Add(file);
    CNyrLogFile::Default().Info("Opened " + file + ": " + std::to_string(count) + " points");
    UpdateTitle();
    statusBar()->showMessage(QText(TxtOpened).arg(QFileInfo(path).fileName()));
    return true;
}

void CMainWindow::OpenHandedOver(const QStringList& files, const QString& workingDirectory)
{
    CNyrLogFile::Default().Info("A later start handed over " + std::to_string(files.size()) + " file(s)");
    // One project at a time: the last file named wins, as on the command line.
    if (!files.isEmpty())
        OpenFile(QDir(workingDirectory).absoluteFilePath(files.back()));
}

bool CMainWindow::SaveFile(const QString& path)
{
    if (path != m_path && !CNyrBrowse::ConfirmReplace(this, path, QText(TxtAppName)))
        return false;
    std::string error;
    bool written = false;
    {
        CNyrWaitCursor wait;
        written = WritePointsFile(Utf8(path), m_view->Points(), error);
    }
    if (!written) {
        CNyrLogFile::Default().Error("Saving " + Utf8(path) + " failed: " + error);
        ShowError(error);
        return false;
    }
    m_path = QFileInfo(path).absoluteFilePath();
    m_recent->Add(Utf8(m_path));
    m_view->SetModified(false);
    CNyrLogFile::Default().Info("Saved " + Utf8(m_path) + ": " + std::to_string(m_view->Points().size()) + " points");
    UpdateTitle();
    statusBar()->showMessage(QText(TxtSaved).arg(QFileInfo(path).fileName()));
    return true;
}

void CMainWindow::LoadProject(ProjectData loaded)
{
    CNyrWaitCursor wait;
    m_view->SetProject(std::move(loaded));
}

void CMainWindow::OpenSample()
{
    if (!MayReplaceProject())
        return;
    LoadProject(MakeSampleProject());
    m_path.clear();
    m_titleId = TxtSampleProject;
    UpdateTitle();
}

bool CMainWindow::GenerateTestData(std::size_t count)
{
    if (!MayReplaceProject())
        return false;
    statusBar()->showMessage(QText(TxtGenerating).arg(count));
    auto made = std::make_shared<ProjectData>();
    const int status = CNyrProgressDialog::Run(
        this,
        [count, made](CNyrProgress& progress) -> QVariant {
            *made = MakeTestData(count, 1, &progress);
            return {};
        },
        nullptr, QText(TxtGenerating).arg(count));
    if (status != CNyrWorker::eDone) {
        CNyrLogFile::Default().Info("Generating " + std::to_string(count) + " test points was cancelled");
        statusBar()->showMessage(QText(TxtGenerateCancelled));
        return false;
    }
    LoadProject(std::move(*made));
    m_path.clear();
    m_titleId = TxtUntitled;
    UpdateTitle();
    CNyrLogFile::Default().Info("Generated " + std::to_string(count) + " test points");
    statusBar()->showMessage(QText(TxtGenerated).arg(count));
    return true;
}

std::string CMainWindow::FileStem() const
{
    if (!m_path.isEmpty()) {
        const QFileInfo file(m_path);
        return Utf8(file.absoluteDir().filePath(file.completeBaseName()));
    }
    const std::string folder = CNyrProfileEntries::ReadNyrProfileString(
        CNyrBrowse::SettingsSection(kPointsPurpose), CNyrProfileEntries::SelectFilenameEntryLastFolder(), "");
    return Utf8(QDir(QString::fromStdString(folder.empty() ? Utf8(QDir::homePath()) : folder)).filePath("points"));
}

// The library's browse helpers: the desktop's dialog where there is one,
// started in the folder of the last points file.
QString CMainWindow::AskFileName(bool save)
{
    if (save)
        return CNyrBrowse::BrowseForSaveFile(this, kPointsPurpose, m_path, QText(TxtCsvFilter));
    return CNyrBrowse::Browse(this, CNyrBrowse::eFile, kPointsPurpose, {}, QText(TxtCsvFilter),
                              QText(TxtOpen).remove('&').remove("..."));
}

void CMainWindow::Open()
{
    const QString path = AskFileName(false);
    if (!path.isEmpty())
        OpenFile(path);
}

bool CMainWindow::SaveAs()
{
    const QString path = AskFileName(true);
    return !path.isEmpty() && SaveFile(path);
}

}  // namespace survey
