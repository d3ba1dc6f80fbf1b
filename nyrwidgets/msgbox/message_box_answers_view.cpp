#include "nyrwidgets/msgbox/message_box_answers_view.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/msgbox/message_box_p.h"
#include "nyrwidgets/msgbox/message_box_settings_lookup_table.h"

namespace {

constexpr int kKeyRole = Qt::UserRole + 1;  // the item's key level, UTF-8

enum Column { kKeyColumn, kAnswerColumn, kTextColumn, kColumns };

QString Q(const std::string& text)
{
    return QString::fromUtf8(text.c_str(), static_cast<qsizetype>(text.size()));
}

QString AnswerCaption(int result)
{
    const unsigned id = nyr::msgbox::CaptionId(result);
    return id ? Q(NyrLoadString(id)).remove(QLatin1Char('&')) : Q(NyrLoadString(NYR_IDS_ANSWER_NONE));
}

// A heading the host set, or the library's own text when it set none.
QString Heading(const std::string& text, unsigned fallback)
{
    return Q(text.empty() ? NyrLoadString(fallback) : text);
}

QString ShownText(const CNyrMessageBox::PERSISTENT_MSG& msg)
{
    QString text = Q(msg.description.empty() ? msg.text : msg.description);
    return text.simplified();  // one line in the list
}

std::string Below(const std::string& level, const std::string& name)
{
    return level.empty() ? name : level + "/" + name;
}

}  // namespace

struct CNyrMessageBoxAnswersView::Private
{
    std::string prefix;  // normalised key level shown
    QTreeWidget* tree = nullptr;
    bool filling = false;  // check changes made by the view itself

    void AddLevel(QTreeWidgetItem* parent, const std::string& level)
    {
        for (const std::string& name : CNyrMessageBox::GetMessageSubKeys(level.c_str())) {
            const std::string key = Below(level, name);
            auto* item = new QTreeWidgetItem(parent, {Q(name)});
            item->setData(kKeyColumn, kKeyRole, Q(key));
            CNyrMessageBox::PERSISTENT_MSG msg;
            if (CNyrMessageBox::LookUpMessage(key.c_str(), msg)) {
                item->setText(kAnswerColumn, AnswerCaption(msg.defaultValue));
                item->setText(kTextColumn, ShownText(msg));
            }
            AddLevel(item, key);
        }
    }

    // Ticks from the table: a level is ticked when all its messages are.
    void UpdateChecks(QTreeWidgetItem* item)
    {
        const std::string key = item->data(kKeyColumn, kKeyRole).toString().toStdString();
        int flagged = 0;
        const auto messages = CNyrMessageBox::GetMessages(key.c_str());
        for (const auto& message : messages)
            flagged += message.second.doNotPromptInFuture ? 1 : 0;
        const Qt::CheckState state = flagged == 0                                       ? Qt::Unchecked
                                     : flagged == static_cast<int>(messages.size()) ? Qt::Checked
                                                                                      : Qt::PartiallyChecked;
        // Only a ticked box can be changed: unticking asks again.
        item->setFlags(state == Qt::Unchecked ? item->flags() & ~Qt::ItemIsUserCheckable
                                              : item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(kKeyColumn, state);
        for (int i = 0; i < item->childCount(); ++i)
            UpdateChecks(item->child(i));
    }

    void UpdateAllChecks()
    {
        const QScopedValueRollback guard(filling, true);
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            UpdateChecks(tree->topLevelItem(i));
    }
};

CNyrMessageBoxAnswersView::CNyrMessageBoxAnswersView(QWidget* parent, const std::string& prefix)
    : QWidget(parent), d(std::make_unique<Private>())
{
    d->prefix = nyr::msgbox::RelativeKey(prefix);
    setWindowTitle(Q(NyrLoadString(NYR_IDS_MSGBOX_REMEMBERED_ANSWERS)));

    d->tree = new QTreeWidget(this);
    d->tree->setColumnCount(kColumns);
    d->tree->setHeaderLabels({Heading(CNyrMessageBox::GetSub1Text(), NYR_IDS_MSGBOX_REMEMBERED_ANSWERS),
                              Heading(CNyrMessageBox::GetSub2Text(), NYR_IDS_HEADING_ANSWER),
                              Heading(CNyrMessageBox::GetSub3Text(), NYR_IDS_HEADING_MESSAGE)});
    d->tree->header()->setSectionResizeMode(kKeyColumn, QHeaderView::ResizeToContents);
    d->tree->header()->setSectionResizeMode(kAnswerColumn, QHeaderView::ResizeToContents);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(d->tree);

    connect(d->tree, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        if (d->filling || column != kKeyColumn)
            return;
        // Qt has already flipped the box; whatever it shows now, a click on a
        // ticked or partly ticked box means "ask again".
        AskAgain(item->data(kKeyColumn, kKeyRole).toString().toStdString());
    });

    CNyrMessageBoxSettingsLookupTable::Default().HoldOrgValues();
    Refresh();
}

CNyrMessageBoxAnswersView::~CNyrMessageBoxAnswersView() = default;

void CNyrMessageBoxAnswersView::Refresh()
{
    const QScopedValueRollback guard(d->filling, true);
    d->tree->clear();
    std::string allLabel = CNyrMessageBox::GetSub4Text();
    if (allLabel.empty())
        allLabel = QCoreApplication::applicationName().toStdString();
    if (allLabel.empty())
        allLabel = NyrLoadString(NYR_IDS_MSGBOX_REMEMBERED_ANSWERS);
    auto* all = new QTreeWidgetItem(d->tree, {Q(d->prefix.empty() ? allLabel : d->prefix)});
    all->setData(kKeyColumn, kKeyRole, Q(d->prefix));
    CNyrMessageBox::PERSISTENT_MSG msg;
    if (!d->prefix.empty() && CNyrMessageBox::LookUpMessage(d->prefix.c_str(), msg)) {
        all->setText(kAnswerColumn, AnswerCaption(msg.defaultValue));
        all->setText(kTextColumn, ShownText(msg));
    }
    d->AddLevel(all, d->prefix);
    const QString tip = Q(NyrLoadString(NYR_IDS_MSGBOX_DO_NOT_PROMPT));
    for (QTreeWidgetItemIterator it(d->tree); *it; ++it)
        (*it)->setToolTip(kKeyColumn, tip);
    d->tree->expandAll();
    d->UpdateAllChecks();
}

void CNyrMessageBoxAnswersView::AskAgain(const std::string& key)
{
    std::string level = nyr::msgbox::RelativeKey(key);
    if (level.empty())
        level = d->prefix;
    CNyrMessageBoxSettingsLookupTable::Default().DoNotPromptInFutureAllMessages(0, level);
    d->UpdateAllChecks();
    emit Changed();
}

bool CNyrMessageBoxAnswersView::IsModified() const
{
    return CNyrMessageBoxSettingsLookupTable::Default().IsModified();
}

int CNyrMessageBoxAnswersView::Apply()
{
    auto& table = CNyrMessageBoxSettingsLookupTable::Default();
    const int written = table.WriteIniFile();
    table.HoldOrgValues();
    return written;
}

void CNyrMessageBoxAnswersView::Revert()
{
    CNyrMessageBoxSettingsLookupTable::Default().RestoreOrgValues();
    Refresh();
}

QTreeWidget* CNyrMessageBoxAnswersView::Tree() const
{
    return d->tree;
}
