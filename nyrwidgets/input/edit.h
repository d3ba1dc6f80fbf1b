#pragma once

#include <QLineEdit>
#include <any>
#include <functional>
#include <memory>

#include "nyr/platform/export.h"

class QMenu;

// The library's single-line edit: a QLineEdit with a history of its own and
// the library's edit menu. The base of every input field.
//
// History: every change of the text that does not come from the history
// itself is one step (a keystroke, a paste, a cut, a drop, a program's
// insert). Undo and Redo go back and forth through the steps with the text,
// the cursor and the selection as they were; a change after an undo drops
// the steps that could be redone. Ctrl+Z undoes, Ctrl+Y and Ctrl+Shift+Z
// redo. The history keeps GetUndoLimit() steps (1000 unless set; 0 keeps all),
// dropping the oldest. QLineEdit's own undo()/redo() slots are not this
// history: use Undo() and Redo().
//
// The edit menu (right mouse button, the menu key): "&Undo", "&Redo",
// "Cu&t", "&Copy", "&Paste", "&Delete", "Select &All" (texts NYR_IDS_EDIT_UNDO-NYR_IDS_EDIT_SELECT_ALL),
// each enabled only when it can do something.
//
// Notifications to the owner (SetOwner; by default the edit's window, never
// the edit itself), sent synchronously through NyrSendMessage with wParam the
// edit (CNyrEdit*):
//   WM_NYR_EDIT_DELETE      after the user deleted the selection with the
//                           Delete key or the menu; lParam the number of
//                           characters deleted.
//   WM_NYR_EDIT_SELECT_ALL  after the user selected all (Ctrl+A, the menu);
//                           lParam the length of the text.
//   WM_NYR_KEYDOWN_EE       when Enter or Escape is pressed, before the edit
//                           acts on it; lParam the Qt key code. A non-zero
//                           result says the owner handled the key and the
//                           edit drops it; with 0 it goes on as usual (a
//                           dialog's default button, or its Cancel).
class NYR_EXPORT CNyrEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit CNyrEdit(QWidget* parent = nullptr);
    ~CNyrEdit() override;

    bool CanUndo() const;
    bool CanRedo() const;
    // One step back or forward; nothing when there is none or the edit is
    // read-only.
    void Undo();
    void Redo();
    void ClearHistory();
    int GetUndoCount() const;
    int GetRedoCount() const;
    // Steps kept; 0 keeps every step. Lowering it drops the oldest at once.
    void SetUndoLimit(int steps);
    int GetUndoLimit() const;

    // A new edit menu for the edit's current state; the caller owns it. Its
    // actions act on the edit when triggered.
    QMenu* CreateEditMenu(QWidget* parent = nullptr);

    // The window the notifications go to; null (the default) means the
    // edit's window. Not owned.
    void SetOwner(QObject* owner);
    QObject* Owner() const;

protected:
    // One state of the text: what it showed, where the cursor and the
    // selection's anchor stood, and the value it stands for when the field
    // knows it (empty while it is text the user typed).
    struct Snapshot
    {
        QString text;
        int cursor = 0;
        int anchor = 0;
        std::any value;
    };

    // Shows `text` as one step of the history (undoable), standing for `value`.
    void ReplaceTextAsStep(const QString& text, std::any value);
    // Shows `text` standing for `value` and empties the history.
    void ResetText(const QString& text, std::any value);
    // Rewrites every state, the shown one and those of the history (a unit
    // change shows them all in the new unit); cursors are kept inside the text.
    void RewriteStates(const std::function<void(Snapshot&)>& rewrite);
    // The value the shown text stands for; empty while it is typed text.
    const std::any& CurrentValue() const;
    void SetCurrentValue(std::any value);
    // Sends a message to the owner (never to the edit itself); its result.
    qintptr NotifyOwner(unsigned int message, qintptr lParam);

    void keyPressEvent(QKeyEvent* e) override;
    void contextMenuEvent(QContextMenuEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;

    void Show(const Snapshot& state);
    void DeleteSelection();
    void SelectAllNotified();
};
