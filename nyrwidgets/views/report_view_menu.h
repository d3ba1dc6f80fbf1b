#pragma once

#include <QMenu>
#include <functional>

#include "nyr/platform/export.h"

// A context menu of a report view. Command entries carry a registered
// message; choosing one sends that message to the target (the view), which
// handles it as a command. Other entries run a function.
class NYR_EXPORT CNyrReportViewMenuPopUp : public QMenu
{
    Q_OBJECT
public:
    explicit CNyrReportViewMenuPopUp(QObject* target, QWidget* parent = nullptr);
    ~CNyrReportViewMenuPopUp() override;

    // An entry with the library text `textId` that sends `message` to the
    // target (wParam and lParam 0).
    QAction* AppendCommand(unsigned int textId, unsigned int message, bool enabled = true);
    // An entry with the library text `textId` that runs `run`.
    QAction* AppendAction(unsigned int textId, std::function<void()> run, bool enabled = true);
    // The same with a text of its own.
    QAction* AppendAction(const QString& text, std::function<void()> run, bool enabled = true);
    // A sub-menu titled with the library text `textId`, appended to this one.
    CNyrReportViewMenuPopUp* AppendSubMenu(unsigned int textId, bool enabled = true);
    // A separator, unless the menu is empty or already ends with one.
    void AppendSeparator();
    // The command entry of `message`, searched through the sub-menus; null
    // when there is none.
    QAction* FindCommand(unsigned int message) const;
    // The entry whose text is the library text `textId`, searched the same way.
    QAction* FindText(unsigned int textId) const;
    // Appends the entries of `menu` themselves (choosing one triggers the
    // application's own action).
    void AppendMenu(const QMenu* menu);

    QObject* Target() const { return m_target; }

    // Shows the menu at a global position and runs the entry the user
    // chooses; returns it, or null when the menu closed without a choice.
    QAction* Exec(const QPoint& globalPos);

    // The seam for tests: while a hook is installed, Exec() does not show the
    // menu but hands it to the hook, filled as it would show, and runs the
    // entry the hook returns when that is enabled (a disabled entry, or
    // null, chooses nothing). Process-wide, for the user-interface thread;
    // returns the hook it replaces. An empty hook restores normal operation.
    using ChoiceHook = std::function<QAction*(CNyrReportViewMenuPopUp& menu)>;
    static ChoiceHook SetChoiceHook(ChoiceHook hook);

private:
    QObject* m_target;
};
