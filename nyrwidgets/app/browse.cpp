#include "nyrwidgets/app/browse.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/string_format.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/app/dialog.h"

namespace {

struct KindTexts
{
    const char* name;  // the purpose when the caller gives none
    unsigned title, prompt, filter;
};

const KindTexts& Texts(CNyrBrowse::eKind kind)
{
    static const KindTexts texts[] = {
        {"Folder", 26054, 26055, 0},
        {"File", 26062, 26063, 26096},
        {"Executable", 26056, 26057, 26096},
        {"Program", 26058, 26059, 26096},
        {"Library", 26060, 26061, 26098},
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

void Configure(QFileDialog& dialog, CNyrBrowse::eKind kind, const QString& filter, const std::string& section)
{
    const KindTexts& texts = Texts(kind);
    dialog.setWindowTitle(Text(texts.title));
    dialog.setLabelText(QFileDialog::FileName, Text(texts.prompt));
    dialog.setLabelText(QFileDialog::FileType, Text(26070));
    dialog.setLabelText(QFileDialog::Accept, Text(26067));
    dialog.setLabelText(QFileDialog::Reject, Text(26100));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (kind == CNyrBrowse::eFolder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        return;
    }
    dialog.setFileMode(QFileDialog::ExistingFile);
    const QStringList filters =
        CNyrBrowse::NameFilters(kind == CNyrBrowse::eFile && !filter.isEmpty() ? filter : Text(texts.filter));
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

}  // namespace

QString CNyrBrowse::Browse(QWidget* parent, eKind kind, const QString& purpose, const QString& initial,
                           const QString& filter)
{
    if (kind < eFolder || kind > eLibrary)
        return {};
    const std::string section = SettingsSection(purpose.isEmpty() ? QString(Texts(kind).name) : purpose);
    QFileDialog dialog(parent);
    Configure(dialog, kind, filter, section);
    StartIn(dialog, kind, initial, section);
    if (CNyrDialog::ExecDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    const QString chosen = QFileInfo(dialog.selectedFiles().first()).absoluteFilePath();
    Remember(dialog, kind, chosen, section);
    const QFileInfo file(chosen);
    if (WantsExecutable(kind) && !(file.isFile() && file.isExecutable())) {
        NyrMessageBox(NyrFormat(NyrLoadString(26441).c_str(), chosen.toStdString().c_str()),
                      Text(Texts(kind).title).toStdString(), 0x30 /* warning icon */);
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
