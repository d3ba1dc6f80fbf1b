#include "nyrwidgets/input/input_dialog.h"

#include <QPointer>
#include <QSet>
#include <QStackedWidget>
#include <QTabWidget>
#include <vector>

#include "nyrwidgets/input/input_control.h"

namespace {

// Whether the user can reach the field: nothing between it and `root` was
// hidden, except pages that a stacked widget (or a tab widget) hides. (A
// widget on a page not shown yet counts as hidden without having been hidden.)
bool Reachable(const CNyrInputControl* field, const QWidget* root)
{
    for (const QWidget* w = field; w && w != root; w = w->parentWidget()) {
        const bool hidden = w->testAttribute(Qt::WA_WState_Hidden) && w->testAttribute(Qt::WA_WState_ExplicitShowHide);
        if (hidden && !qobject_cast<const QStackedWidget*>(w->parentWidget()))
            return false;
    }
    return field->isEnabledTo(root) && !field->isReadOnly();
}

// Brings every page that holds the field to the front.
void Reveal(QWidget* field, const QWidget* root)
{
    for (QWidget* w = field; w && w != root; w = w->parentWidget()) {
        auto* stack = qobject_cast<QStackedWidget*>(w->parentWidget());
        if (!stack)
            continue;
        auto* tabs = qobject_cast<QTabWidget*>(stack->parentWidget());
        if (tabs && tabs->indexOf(w) >= 0)
            tabs->setCurrentWidget(w);
        else
            stack->setCurrentWidget(w);
    }
}

// The fields below `root` in the order Tab visits them; fields outside the
// focus chain (none in practice) follow in the order of their creation.
std::vector<QPointer<CNyrInputControl>> FieldsInTabOrder(QWidget* root)
{
    std::vector<QPointer<CNyrInputControl>> fields;
    QSet<const QWidget*> seen;
    for (QWidget* w = root->nextInFocusChain(); w && w != root && !seen.contains(w); w = w->nextInFocusChain()) {
        seen.insert(w);
        auto* field = qobject_cast<CNyrInputControl*>(w);
        if (field && root->isAncestorOf(field))
            fields.emplace_back(field);
    }
    for (CNyrInputControl* field : root->findChildren<CNyrInputControl*>())
        if (!seen.contains(field))
            fields.emplace_back(field);
    return fields;
}

}  // namespace

CNyrInputControl* NyrValidateInputControls(QWidget* root)
{
    if (!root)
        return nullptr;
    const QPointer<QWidget> guard(root);
    for (const QPointer<CNyrInputControl>& field : FieldsInTabOrder(root)) {
        // An owner answering a validation may take fields (or the dialog) away.
        if (!guard)
            return nullptr;
        if (!field || !Reachable(field, root) || field->Validate())
            continue;
        if (!field)
            continue;
        Reveal(field, root);
        field->setFocus(Qt::OtherFocusReason);
        field->selectAll();
        return field;
    }
    return nullptr;
}
