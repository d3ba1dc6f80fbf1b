// The main window's file commands: every way of opening a project (menu,
// drop, command line, tour) ends in OpenFile, every save in SaveFile.
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStatusBar>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/msgbox/message_box.h"

namespace survey {

bool CMainWindow::OpenFile(const QString& path)
{
    ProjectData loaded;
    std::string error;
    bool read = false;
    {
        CNyrWaitCursor wait;
        read = ReadPointsFile(path.toStdString(), loaded, error);
    }
    if (!read) {
        ShowError(QText(TxtOpenFailed).arg(QDir::toNativeSeparators(path), QString::fromStdString(error)).toStdString());
        return false;
    }
    m_view->SetProject(std::move(loaded));
    // A points file names no base: the one the user chose last, if the file
    // has it, else its first point.
    m_view->ChooseBase(ReadSetting("BasePoint", std::string()));
    m_path = QFileInfo(path).absoluteFilePath();
    WriteSetting("LastFolder", QFileInfo(path).absolutePath().toStdString());
    UpdateTitle();
    statusBar()->showMessage(QText(TxtOpened).arg(QFileInfo(path).fileName()));
    return true;
}

bool CMainWindow::SaveFile(const QString& path)
{
    if (QFileInfo::exists(path) && path != m_path &&
        CNyrMessageBox::ShowMessage(this, kOverwriteKey) != NYR_IDYES)
        return false;
    std::string error;
    bool written = false;
    {
        CNyrWaitCursor wait;
        written = WritePointsFile(path.toStdString(), m_view->Points(), error);
    }
    if (!written) {
        ShowError(error);
        return false;
    }
    m_path = QFileInfo(path).absoluteFilePath();
    WriteSetting("LastFolder", QFileInfo(path).absolutePath().toStdString());
    UpdateTitle();
    statusBar()->showMessage(QText(TxtSaved).arg(QFileInfo(path).fileName()));
    return true;
}

void CMainWindow::OpenSample()
{
    m_view->SetProject(MakeSampleProject());
    m_path.clear();
    m_titleId = TxtSampleProject;
    UpdateTitle();
}

void CMainWindow::GenerateTestData(std::size_t count)
{
    statusBar()->showMessage(QText(TxtGenerating).arg(count));
    {
        CNyrWaitCursor wait;
        m_view->SetProject(MakeTestData(count));
    }
    m_path.clear();
    m_titleId = TxtUntitled;
    UpdateTitle();
    statusBar()->showMessage(QText(TxtGenerated).arg(count));
}

// The file dialog is Qt's own (not the desktop's), so that it looks the
// same everywhere and the tour can drive it; the managed message box asks
// before a file is replaced.
QString CMainWindow::AskFileName(bool save)
{
    QFileDialog dialog(this, QText(save ? TxtSaveAs : TxtOpen).remove('&').remove("..."),
                       QString::fromStdString(ReadSetting("LastFolder", QDir::homePath().toStdString())),
                       QText(TxtCsvFilter));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setObjectName(save ? "SaveDialog" : "OpenDialog");
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (save)
        dialog.setDefaultSuffix("csv");
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

void CMainWindow::Open()
{
    const QString path = AskFileName(false);
    if (!path.isEmpty())
        OpenFile(path);
}

void CMainWindow::SaveAs()
{
    const QString path = AskFileName(true);
    if (!path.isEmpty())
        SaveFile(path);
}

}  // namespace survey
