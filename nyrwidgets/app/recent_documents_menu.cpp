#include "nyrwidgets/app/recent_documents_menu.h"

#include <QFileInfo>
#include <QMenu>
#include <QPointer>

#include "nyr/app/recent_documents.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"

namespace {

QString Mnemonic(int position)
{
    if (position <= 9)
        return "&" + QString::number(position) + " ";
    if (position == 10)
        return "1&0 ";
    return QString::number(position) + " ";
}

// The file names, or the whole paths of those whose names are alike.
QStringList Names(const std::vector<std::string>& files)
{
    QStringList names;
    for (const std::string& file : files)
        names << QFileInfo(QString::fromStdString(file)).fileName();
    QStringList shown = names;
    for (int i = 0; i < names.size(); ++i)
        if (names.count(names[i]) > 1)
            shown[i] = QString::fromStdString(files[i]);
    return shown;
}

}  // namespace

struct CNyrRecentDocumentsMenu::Private
{
    CNyrRecentDocuments* documents;
    QPointer<QMenu> menu;
    int subscription = 0;
};

CNyrRecentDocumentsMenu::CNyrRecentDocumentsMenu(CNyrRecentDocuments& documents, QMenu* menu, QObject* parent)
    : QObject(parent), d(std::make_unique<Private>())
{
    d->documents = &documents;
    d->menu = menu;
    d->subscription = documents.Subscribe([this] { Rebuild(); });
    if (menu)
        connect(menu, &QMenu::aboutToShow, this, [this] {
            d->documents->Refresh();
            Rebuild();
        });
    Rebuild();
}

CNyrRecentDocumentsMenu::~CNyrRecentDocumentsMenu()
{
    d->documents->Unsubscribe(d->subscription);
}

void CNyrRecentDocumentsMenu::Rebuild()
{
    QMenu* menu = d->menu;
    if (!menu)
        return;
    // Not clear(): a rebuild may come from inside an entry's own triggered
    // signal (Clear List, or a host that adds the chosen file at once), and
    // the entry must outlive its signal.
    for (QAction* action : menu->actions()) {
        menu->removeAction(action);
        if (action->parent() == menu)
            action->deleteLater();
    }
    const std::vector<std::string>& files = d->documents->Files();
    if (files.empty()) {
        menu->addAction(QString::fromStdString(NyrLoadString(NYR_IDS_RECENT_NONE)))->setEnabled(false);
        return;
    }
    const QStringList names = Names(files);
    for (int i = 0; i < static_cast<int>(files.size()); ++i) {
        QString name = names[i];
        name.replace("&", "&&");
        const bool missing = d->documents->IsMissing(i);
        if (missing)
            name = QString::fromStdString(
                NyrFormat(NyrLoadString(NYR_IDS_RECENT_MISSING).c_str(), name.toStdString().c_str()));
        QAction* action = menu->addAction(Mnemonic(i + 1) + name);
        const QString path = QString::fromStdString(files[i]);
        action->setToolTip(path);
        action->setStatusTip(path);
        action->setEnabled(!missing);
        connect(action, &QAction::triggered, this, [this, path] { emit documentSelected(path); });
    }
    menu->addSeparator();
    connect(menu->addAction(QString::fromStdString(NyrLoadString(NYR_IDS_RECENT_CLEAR))), &QAction::triggered, this,
            [this] { d->documents->Clear(); });
}
