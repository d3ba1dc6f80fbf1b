#include "nyrwidgets/input/edit.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <algorithm>
#include <deque>
#include <functional>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/frame/message_event.h"

struct CNyrEdit::Private
{
    std::deque<Snapshot> undo;  // oldest first
    std::deque<Snapshot> redo;  // the next step to redo last
    Snapshot current;            // what the edit shows: current.text == text() outside Show()
    int limit = 1000;
    bool showing = false;  // set while the history puts a state on screen
    QPointer<QObject> owner;

    void Push(Snapshot state)
    {
        undo.push_back(std::move(state));
        Trim();
    }
    // The last state of `from` becomes the current one, which goes to
    // `to`; false when `from` is empty.
    bool Step(std::deque<Snapshot>& from, std::deque<Snapshot>& to)
    {
        if (from.empty())
            return false;
        to.push_back(std::move(current));
        current = std::move(from.back());
        from.pop_back();
        return true;
    }
    void Trim()
    {
        while (limit > 0 && undo.size() > static_cast<std::size_t>(limit))
            undo.pop_front();
    }
};

namespace {

// The end of the selection opposite the cursor (the cursor itself without one).
int Anchor(const QLineEdit& edit)
{
    if (!edit.hasSelectedText())
        return edit.cursorPosition();
    const int start = edit.selectionStart();
    return edit.cursorPosition() == start ? start + edit.selectionLength() : start;
}

void Clamp(QString& text, int& position)
{
    position = std::clamp(position, 0, static_cast<int>(text.size()));
}

}  // namespace

CNyrEdit::CNyrEdit(QWidget* parent) : QLineEdit(parent), d(new Private)
{
    // Every change the history did not make is one step; it is recorded
    // once the text has changed, with the state before it.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (d->showing || text == d->current.text)
            return;
        d->Push(std::move(d->current));
        d->redo.clear();
        d->current = Snapshot{text, cursorPosition(), Anchor(*this), {}};
    });
    const auto followCursor = [this] {
        if (!d->showing && text() == d->current.text) {
            d->current.cursor = cursorPosition();
            d->current.anchor = Anchor(*this);
        }
    };
    connect(this, &QLineEdit::cursorPositionChanged, this, followCursor);
    connect(this, &QLineEdit::selectionChanged, this, followCursor);
}

CNyrEdit::~CNyrEdit() = default;

bool CNyrEdit::CanUndo() const
{
    return !d->undo.empty();
}

bool CNyrEdit::CanRedo() const
{
    return !d->redo.empty();
}

void CNyrEdit::Undo()
{
    if (!isReadOnly() && d->Step(d->undo, d->redo))
        Show(d->current);
}

void CNyrEdit::Redo()
{
    if (!isReadOnly() && d->Step(d->redo, d->undo))
        Show(d->current);
}

void CNyrEdit::ClearHistory()
{
    d->undo.clear();
    d->redo.clear();
}

int CNyrEdit::GetUndoCount() const
{
    return static_cast<int>(d->undo.size());
}

int CNyrEdit::GetRedoCount() const
{
    return static_cast<int>(d->redo.size());
}

void CNyrEdit::SetUndoLimit(int steps)
{
    d->limit = std::max(steps, 0);
    d->Trim();
}

int CNyrEdit::GetUndoLimit() const
{
    return d->limit;
}

void CNyrEdit::SetOwner(QObject* owner)
{
    d->owner = owner;
}

QObject* CNyrEdit::Owner() const
{
    return d->owner ? d->owner.data() : window();
}

qintptr CNyrEdit::NotifyOwner(unsigned int message, qintptr lParam)
{
    QObject* owner = Owner();
    if (!owner || owner == this)
        return 0;
    return NyrSendMessage(owner, message, reinterpret_cast<quintptr>(this), lParam);
}

void CNyrEdit::ReplaceTextAsStep(const QString& text, std::any value)
{
    if (text == d->current.text) {
        d->current.value = std::move(value);
        return;
    }
    d->Push(std::move(d->current));
    d->redo.clear();
    const int end = static_cast<int>(text.size());
    d->current = Snapshot{text, end, end, std::move(value)};
    Show(d->current);
}

void CNyrEdit::ResetText(const QString& text, std::any value)
{
    ClearHistory();
    const int end = static_cast<int>(text.size());
    d->current = Snapshot{text, end, end, std::move(value)};
    Show(d->current);
}

void CNyrEdit::RewriteStates(const std::function<void(Snapshot&)>& rewrite)
{
    const auto apply = [&rewrite](Snapshot& s) {
        rewrite(s);
        Clamp(s.text, s.cursor);
        Clamp(s.text, s.anchor);
    };
    for (Snapshot& s : d->undo)
        apply(s);
    for (Snapshot& s : d->redo)
        apply(s);
    apply(d->current);
    Show(d->current);
}

const std::any& CNyrEdit::CurrentValue() const
{
    return d->current.value;
}

void CNyrEdit::SetCurrentValue(std::any value)
{
    d->current.value = std::move(value);
}

void CNyrEdit::Show(const Snapshot& state)
{
    d->showing = true;
    if (text() != state.text)
        setText(state.text);
    if (state.cursor == state.anchor)
        setCursorPosition(state.cursor);
    else
        setSelection(state.anchor, state.cursor - state.anchor);
    d->showing = false;
}

void CNyrEdit::DeleteSelection()
{
    if (isReadOnly() || !hasSelectedText())
        return;
    const qsizetype before = text().size();
    del();
    const qsizetype deleted = before - text().size();
    if (deleted > 0)
        NotifyOwner(WM_NYR_EDIT_DELETE, static_cast<qintptr>(deleted));
}

void CNyrEdit::SelectAllNotified()
{
    selectAll();
    NotifyOwner(WM_NYR_EDIT_SELECT_ALL, static_cast<qintptr>(text().size()));
}

void CNyrEdit::keyPressEvent(QKeyEvent* e)
{
    const auto modifiers = e->modifiers() & ~Qt::KeypadModifier;
    if (e->matches(QKeySequence::Undo)) {
        Undo();
    } else if (e->matches(QKeySequence::Redo) || (e->key() == Qt::Key_Y && modifiers == Qt::ControlModifier)) {
        Redo();
    } else if (e->key() == Qt::Key_Delete && modifiers == Qt::NoModifier && hasSelectedText()) {
        DeleteSelection();
    } else if (e->matches(QKeySequence::SelectAll)) {
        SelectAllNotified();
    } else if ((e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter || e->key() == Qt::Key_Escape) &&
               NotifyOwner(WM_NYR_KEYDOWN_EE, e->key()) != 0) {
        // The owner took the key.
    } else {
        QLineEdit::keyPressEvent(e);
        return;
    }
    e->accept();
}

QMenu* CNyrEdit::CreateEditMenu(QWidget* parent)
{
    auto* menu = new QMenu(parent);
    const bool editable = !isReadOnly();
    const bool selected = hasSelectedText();
    const bool plain = echoMode() == QLineEdit::Normal;  // never copy a password out
    const QMimeData* clip = QApplication::clipboard()->mimeData();
    const QPointer<CNyrEdit> self(this);
    const auto add = [menu, self](unsigned int id, const char* name, bool enabled, auto slot) {
        QAction* action = menu->addAction(QString::fromStdString(NyrLoadString(id)));
        action->setObjectName(QString::fromLatin1(name));
        action->setEnabled(enabled);
        QObject::connect(action, &QAction::triggered, menu, [self, slot] {
            if (self)
                std::invoke(slot, *self);
        });
    };
    add(NYR_IDS_EDIT_UNDO, "undo", editable && CanUndo(), &CNyrEdit::Undo);
    add(NYR_IDS_EDIT_REDO, "redo", editable && CanRedo(), &CNyrEdit::Redo);
    menu->addSeparator();
    add(NYR_IDS_EDIT_CUT, "cut", editable && selected && plain, &QLineEdit::cut);
    add(NYR_IDS_EDIT_COPY, "copy", selected && plain, &QLineEdit::copy);
    add(NYR_IDS_EDIT_PASTE, "paste", editable && clip && clip->hasText(), &QLineEdit::paste);
    add(NYR_IDS_EDIT_DELETE, "delete", editable && selected, &CNyrEdit::DeleteSelection);
    menu->addSeparator();
    add(NYR_IDS_EDIT_SELECT_ALL, "selectAll", !text().isEmpty(), &CNyrEdit::SelectAllNotified);
    return menu;
}

void CNyrEdit::contextMenuEvent(QContextMenuEvent* e)
{
    QMenu* menu = CreateEditMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(e->globalPos());
    e->accept();
}
