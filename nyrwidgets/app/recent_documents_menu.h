#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "nyr/platform/export.h"

class CNyrRecentDocuments;
class QMenu;

// Keeps a menu (the "Recent Documents" submenu, say) in step with a
// CNyrRecentDocuments list. The helper owns the menu's content:
//
//   &1 plan.nyr          one entry a document, newest first: "&1".."&9",
//   &2 survey.csv        "1&0", then no mnemonic; the file name, or the
//   &3 old.nyr (missing)  whole path where two names are alike; the path as
//   ---------             tool tip; a missing file marked and disabled
//   &Clear List
//
// and "(No recent documents)", disabled, while the list is empty. The menu
// follows every change of the list, and checks which files exist each time
// it is about to open. Choosing an entry emits documentSelected; the host
// opens the file and calls Add (which moves it to the top) or, when it
// cannot be opened, Remove.
class NYR_EXPORT CNyrRecentDocumentsMenu : public QObject
{
    Q_OBJECT

public:
    // `documents` must outlive the helper; `menu` may go first.
    CNyrRecentDocumentsMenu(CNyrRecentDocuments& documents, QMenu* menu, QObject* parent = nullptr);
    ~CNyrRecentDocumentsMenu() override;
    CNyrRecentDocumentsMenu(const CNyrRecentDocumentsMenu&) = delete;
    CNyrRecentDocumentsMenu& operator=(const CNyrRecentDocumentsMenu&) = delete;

    // Fills the menu from the list as it stands.
    void Rebuild();

signals:
    void documentSelected(const QString& path);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
