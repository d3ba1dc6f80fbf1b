#include "nyrwidgets/app/browse.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QTreeView>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/string_format.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/msgbox/message_box.h"

namespace {

struct KindTexts
{
    const char* name;  // the purpose when the caller gives none
    unsigned title, prompt, filter;
};

const KindTexts& Texts(CNyrBrowse::eKind kind)
{
    static const KindTexts texts[] = {
        {"Folder", NYR_IDS_BROWSE_FOLDER_TITLE, NYR_IDS_BROWSE_FOLDER_PROMPT, 0},
        {"File", NYR_IDS_BROWSE_FILE_TITLE, NYR_IDS_BROWSE_FILE_PROMPT, NYR_IDS_FILTER_ALL_FILES},
        {"Executable", NYR_IDS_BROWSE_EXECUTABLE_TITLE, NYR_IDS_BROWSE_EXECUTABLE_PROMPT, NYR_IDS_FILTER_ALL_FILES},
        {"Program", NYR_IDS_BROWSE_PROGRAM_TITLE, NYR_IDS_BROWSE_PROGRAM_PROMPT, NYR_IDS_FILTER_ALL_FILES},
        {"Library", NYR_IDS_BROWSE_LIBRARY_TITLE, NYR_IDS_BROWSE_LIBRARY_PROMPT, NYR_IDS_FILTER_LIBRARIES},
        {"Save", NYR_IDS_FILE_DLG_SAVE_AS, NYR_IDS_FILE_DLG_FILE_NAME, NYR_IDS_FILTER_ALL_FILES},
    };
    return texts[kind];
}

QString Text(unsigned id)
{
    return QString::fromStdString(NyrLoadString(id));
}

bool WantsExecutable(CNyrBrowse::eKind kind)
{
    return kind == CNyrBrowse::eExecutable || kind == CNyrBrowse::eProgram;
}

// Starts in `initial` (a folder, or a file to preselect), else in the folder
// remembered for the purpose, else at home (/usr/bin for programs).
void StartIn(QFileDialog& dialog, CNyrBrowse::eKind kind, const QString& initial, const std::string& section)
{
    const QFileInfo given(initial);
    if (!initial.isEmpty() && given.isDir()) {
        dialog.setDirectory(given.absoluteFilePath());
        return;
    }
    if (!initial.isEmpty() && given.absoluteDir().exists()) {
        dialog.setDirectory(given.absolutePath());
        dialog.selectFile(given.fileName());
        return;
    }
    const QString remembered = QString::fromStdString(
        CNyrProfileEntries::ReadNyrProfileString(section, CNyrProfileEntries::SelectFilenameEntryLastFolder(), ""));
    if (!remembered.isEmpty() && QFileInfo(remembered).isDir())
        dialog.setDirectory(remembered);
    else
        dialog.setDirectory(kind == CNyrBrowse::eProgram && QFileInfo("/usr/bin").isDir() ? "/usr/bin"
                                                                                        : QDir::homePath());
}

// Room for a file's name, size, type and date side by side, and for the
// places beside them: Qt's own layout cuts them short.
void MakeRoom(QFileDialog& dialog)
{
    const QFontMetrics metrics(dialog.font());
    dialog.resize(dialog.size().expandedTo(QSize(metrics.averageCharWidth() * 120, metrics.height() * 28)));
    if (auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        for (int column = 1; column < files->header()->count(); ++column)
            files->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    }
    if (auto* places = dialog.findChild<QListView*>(QStringLiteral("sidebar")))
        places->setMinimumWidth(places->sizeHintForColumn(0) + 4 * places->frameWidth() + 8);
}

void Configure(QFileDialog& dialog, CNyrBrowse::eKind kind, const QString& filter, const std::string& section)
{
    const KindTexts& texts = Texts(kind);
    const bool save = kind == CNyrBrowse::eSaveFile;
    dialog.setWindowTitle(Text(texts.title));
    dialog.setLabelText(QFileDialog::FileName, Text(texts.prompt));
    dialog.setLabelText(QFileDialog::FileType, Text(NYR_IDS_FILE_DLG_FILE_TYPE));
    // Qt gives the file type label no buddy, so its mnemonic would show as
    // a plain "&" and its key would do nothing.
    if (auto* type = dialog.findChild<QLabel*>(QStringLiteral("fileTypeLabel")))
        type->setBuddy(dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo")));
    MakeRoom(dialog);
    dialog.setLabelText(QFileDialog::Accept, Text(save ? NYR_IDS_DIALOG_SAVE : NYR_IDS_FILE_DLG_OPEN));
    dialog.setLabelText(QFileDialog::Reject, Text(NYR_IDS_BUTTON_CANCEL));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    if (kind == CNyrBrowse::eFolder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        return;
    }
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    // Qt's own question would bypass the library's (ConfirmReplace).
    dialog.setOption(QFileDialog::DontConfirmOverwrite, save);
    const bool own = (kind == CNyrBrowse::eFile || save) && !filter.isEmpty();
    const QStringList filters = CNyrBrowse::NameFilters(own ? filter : Text(texts.filter));
    dialog.setNameFilters(filters);
    const int type = static_cast<int>(
        CNyrProfileEntries::ReadNyrProfileInt(section, CNyrProfileEntries::SelectFilenameEntryFileType(), 0));
    if (type >= 0 && type < filters.size())
        dialog.selectNameFilter(filters[type]);
    if (WantsExecutable(kind))
        dialog.setFilter(QDir::AllDirs | QDir::Files | QDir::Executable | QDir::NoDotAndDotDot);
}

void Remember(const QFileDialog& dialog, CNyrBrowse::eKind kind, const QString& chosen, const std::string& section)
{
    const QString folder = kind == CNyrBrowse::eFolder ? chosen : QFileInfo(chosen).absolutePath();
    CNyrProfileEntries::WriteNyrProfileString(section, CNyrProfileEntries::SelectFilenameEntryLastFolder(),
                                              folder.toStdString());
    if (kind == CNyrBrowse::eFolder)
        return;
    const auto type = static_cast<int>(dialog.nameFilters().indexOf(dialog.selectedNameFilter()));
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::SelectFilenameEntryFileType(), type);
}

// A name to save under without a suffix takes the first pattern's of the
// chosen filter ("Points (*.csv *.txt)" gives ".csv"); "*" adds none.
QString WithSuffix(const QString& chosen, const QString& nameFilter)
{
    if (!QFileInfo(chosen).suffix().isEmpty())
        return chosen;
    const qsizetype open = nameFilter.lastIndexOf('(');
    const QString first = nameFilter.mid(open + 1).section(' ', 0, 0).remove(')');
    return first.startsWith("*.") && first.size() > 2 && first.count('*') == 1 ? chosen + first.mid(1) : chosen;
}

std::string& ReplaceKey()
{
    static std::string key;
    return key;
}

}  // namespace

QString CNyrBrowse::Browse(QWidget* parent, eKind kind, const QString& purpose, const QString& initial,
                           const QString& filter, const QString& title)
{
    if (kind < eFolder || kind > eSaveFile)
        return {};
    const std::string section = SettingsSection(purpose.isEmpty() ? QString(Texts(kind).name) : purpose);
    QFileDialog dialog(parent);
    Configure(dialog, kind, filter, section);
    if (!title.isEmpty())
        dialog.setWindowTitle(title);
    StartIn(dialog, kind, initial, section);
    if (NyrExecDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    QString chosen = QFileInfo(dialog.selectedFiles().first()).absoluteFilePath();
    if (kind == eSaveFile)
        chosen = WithSuffix(chosen, dialog.selectedNameFilter());
    Remember(dialog, kind, chosen, section);
    const QFileInfo file(chosen);
    if (WantsExecutable(kind) && !(file.isFile() && file.isExecutable())) {
        NyrMessageBox(NyrFormat(NyrLoadString(NYR_IDS_BROWSE_NOT_EXECUTABLE).c_str(), chosen.toStdString().c_str()),
                      dialog.windowTitle().toStdString(), NYR_MB_ICONWARNING);
        return {};
    }
    return chosen;
}

QString CNyrBrowse::BrowseForFolder(QWidget* parent, const QString& purpose, const QString& initial)
{
    return Browse(parent, eFolder, purpose, initial);
}

QString CNyrBrowse::BrowseForFile(QWidget* parent, const QString& purpose, const QString& initial,
                                  const QString& filter)
{
    return Browse(parent, eFile, purpose, initial, filter);
}

QString CNyrBrowse::BrowseForExecutable(QWidget* parent, const QString& purpose, const QString& initial)
{
    return Browse(parent, eExecutable, purpose, initial);
}

QString CNyrBrowse::BrowseForProgram(QWidget* parent, const QString& purpose, const QString& initial)
{
    return Browse(parent, eProgram, purpose, initial);
}

QString CNyrBrowse::BrowseForLibrary(QWidget* parent, const QString& purpose, const QString& initial)
{
    return Browse(parent, eLibrary, purpose, initial);
}

QString CNyrBrowse::BrowseForSaveFile(QWidget* parent, const QString& purpose, const QString& initial,
                                      const QString& filter)
{
    return Browse(parent, eSaveFile, purpose, initial, filter);
}

bool CNyrBrowse::ConfirmReplace(QWidget* parent, const QString& path, const QString& caption)
{
    if (!QFileInfo::exists(path))
        return true;
    const std::string text = NyrFormat(NyrLoadString(NYR_IDS_FILE_REPLACE).c_str(), path.toStdString().c_str());
    const std::string title = caption.toStdString();
    const std::string& key = ReplaceKey();
    if (key.empty())
        return NyrMessageBox(text, title, NYR_MB_YESNO | NYR_MB_ICONQUESTION) == NYR_IDYES;
    CNyrMessageBox::PERSISTENT_MSG registered;
    const unsigned style = CNyrMessageBox::LookUpMessage(key.c_str(), registered) ? registered.style
                                                                                  : NYR_MB_YESNO | NYR_MB_ICONQUESTION;
    return CNyrMessageBox::ShowMessageDialog(key.c_str(), parent, text.c_str(), title.c_str(), style) == NYR_IDYES;
}

void CNyrBrowse::ReplaceMessageKeyDefault(const std::string& key)
{
    ReplaceKey() = key;
}

std::string CNyrBrowse::ReplaceMessageKeyDefault()
{
    return ReplaceKey();
}

QStringList CNyrBrowse::NameFilters(const QString& filter)
{
    QStringList filters;
    const QStringList parts = filter.split('|');
    for (int i = 0; i + 1 < parts.size() && !parts[i].isEmpty(); i += 2) {
        QString description = parts[i].trimmed();
        if (description.endsWith(')') && description.lastIndexOf('(') > 0)
            description = description.left(description.lastIndexOf('(')).trimmed();
        QStringList patterns;
        for (const QString& pattern : parts[i + 1].split(';', Qt::SkipEmptyParts))
            patterns << (pattern.trimmed() == "*.*" ? QStringLiteral("*") : pattern.trimmed());
        if (!patterns.isEmpty())
            filters << description + " (" + patterns.join(' ') + ")";
    }
    return filters;
}

std::string CNyrBrowse::SettingsSection(const QString& purpose)
{
    std::string section = "CNyrBrowse/" + purpose.toStdString();
    for (char& c : section)
        if (c == ']' || c == '\r' || c == '\n' || c == '\0')
            c = '_';
    return section;
}
