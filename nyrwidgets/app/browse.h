#pragma once

#include <QString>
#include <QStringList>
#include <string>

#include "nyr/platform/export.h"

class QWidget;

// Choosing a folder or a file through QFileDialog, so that the desktop's own
// dialog appears where the platform offers one. Each kind has the library's
// title and prompt, and its filters:
//
//   kind        title (prompt)                                   filters
//   eFolder     "Browse for Folder" ("Select a directory:")      folders only
//   eFile       "Browse for File" ("Select a file:")             the caller's, else NYR_IDS_FILTER_ALL_FILES
//   eExecutable "Browse for Executable" ("Select an executable file:")  executable files
//   eProgram    "Browse for Program" ("Select a program:")       executable files; starts in
//                                                                /usr/bin the first time
//   eLibrary    "Browse for Library" ("Select a library:")       NYR_IDS_FILTER_LIBRARIES (shared objects)
//   eSaveFile   "Save As" ("File &name:"), a new or existing     the caller's, else NYR_IDS_FILTER_ALL_FILES
//               file; a name without a suffix gets the first
//               pattern's of the chosen filter ("x" -> "x.csv")
//
// The folder the user ended in is remembered per purpose in the settings
// file (section "CNyrBrowse/PURPOSE", "Last Folder"), with the file type
// chosen last ("FileType", the filter's position), and the next dialog for
// that purpose starts there. An executable or program that turns out not to
// be one is refused with the message "The file %s is not an executable
// program." and gives "".
//
// Modal: the dialog runs through NyrExecDialog, so tests answer it through
// NyrSetDialogHook (the hook receives the QFileDialog). Browsing never asks
// whether a file may be replaced: the caller does, with ConfirmReplace.
class NYR_EXPORT CNyrBrowse
{
public:
    enum eKind
    {
        eFolder,
        eFile,
        eExecutable,
        eProgram,
        eLibrary,
        eSaveFile,
    };

    // The chosen path, absolute; "" when the user cancelled. `purpose`
    // names the use ("Import", "Export", ...; "" is the kind's own);
    // `initial` is a folder, or a file to preselect, to start in instead of
    // the remembered folder; `filter` (eFile only) is in the library's form
    // "Text Files (*.txt)|*.txt|All Files (*.*)|*.*||"; `title` replaces
    // the kind's title.
    static QString Browse(QWidget* parent, eKind kind, const QString& purpose = {}, const QString& initial = {},
                          const QString& filter = {}, const QString& title = {});

    static QString BrowseForFolder(QWidget* parent, const QString& purpose = {}, const QString& initial = {});
    static QString BrowseForFile(QWidget* parent, const QString& purpose = {}, const QString& initial = {},
                                 const QString& filter = {});
    static QString BrowseForExecutable(QWidget* parent, const QString& purpose = {}, const QString& initial = {});
    static QString BrowseForProgram(QWidget* parent, const QString& purpose = {}, const QString& initial = {});
    static QString BrowseForLibrary(QWidget* parent, const QString& purpose = {}, const QString& initial = {});
    static QString BrowseForSaveFile(QWidget* parent, const QString& purpose = {}, const QString& initial = {},
                                     const QString& filter = {});

    // Before the library (or its host) replaces the file `path`: true when
    // there is no such file or the user answers Yes to "The file %s already
    // exists. Do you want to replace it?" (NYR_IDS_FILE_REPLACE) under `caption`. The
    // question is a plain message box, or, once the host named one with
    // ReplaceMessageKeyDefault, that managed message (CNyrMessageBox), with
    // its "Do not prompt in future": then every question of the library and
    // the host about replacing a file shares one remembered answer.
    static bool ConfirmReplace(QWidget* parent, const QString& path, const QString& caption = {});
    // The managed message's key; "" (the default) for the plain question.
    static void ReplaceMessageKeyDefault(const std::string& key);
    static std::string ReplaceMessageKeyDefault();

    // QFileDialog name filters from the library's form: pairs of
    // description and patterns separated by "|", ending at an empty
    // description. The description's own "(...)" is replaced by the
    // patterns, ";" between patterns becomes a blank, and "*.*" becomes "*":
    // on the platform the texts come from "*.*" means every file, also one
    // without a dot, intended. "All Files (*.*)|*.*||" gives "All Files (*)".
    static QStringList NameFilters(const QString& filter);

    // The settings section of a purpose: "CNyrBrowse/" and the purpose with
    // "]", CR, LF and NUL replaced by "_".
    static std::string SettingsSection(const QString& purpose);
};
