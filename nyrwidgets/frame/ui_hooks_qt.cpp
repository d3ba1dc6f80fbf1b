// Installs the Qt versions of the core's user-interface hooks when the
// widgets library is loaded. Without a QApplication the core's headless
// behaviour stays (no cursor; messages on standard error). Hosts that link
// the library but call only the core still load it: the exported
// Nyr240::Widgets target and nyr240widgets.pc link it with --no-as-needed.
#include <QApplication>
#include <QMainWindow>
#include <QPointer>
#include <cstdio>

#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"

namespace {

bool HaveGui()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

void BeginWait()
{
    if (HaveGui())
        QApplication::setOverrideCursor(Qt::WaitCursor);
}

void EndWait()
{
    if (HaveGui())
        QApplication::restoreOverrideCursor();
}

// The library's own message box: it reads the platform's style word (and the
// library's extended buttons) and answers to its test seam.
int ShowMessage(const std::string& text, const std::string& caption, unsigned style)
{
    if (!HaveGui()) {
        std::fprintf(stderr, "%s%s%s\n", caption.c_str(), caption.empty() ? "" : ": ", text.c_str());
        return 1;
    }
    const std::string title = caption.empty() ? QApplication::applicationName().toStdString() : caption;
    // Guarded: the box goes with its parent if that is closed while it runs.
    QPointer<CNyrMessageBoxDialog> box =
        new CNyrMessageBoxDialog(QApplication::activeWindow(), text.c_str(), title.c_str(), style, 0, 0);
    const int result = box->ShowMessageBox();
    delete box;
    return result;
}

// The main window is the active top-level window, else the first visible
// QMainWindow. It is remembered so that enabling reaches the same window.
QPointer<QWidget>& DisabledMainWindow()
{
    static QPointer<QWidget> window;
    return window;
}

void EnableMainWindow(bool enable)
{
    if (!HaveGui())
        return;
    QPointer<QWidget>& disabled = DisabledMainWindow();
    if (!enable) {
        QWidget* window = QApplication::activeWindow();
        for (QWidget* top : QApplication::topLevelWidgets())
            if (!window && top->isVisible() && qobject_cast<QMainWindow*>(top))
                window = top;
        if (window) {
            window->setEnabled(false);
            disabled = window;
        }
    } else if (disabled) {
        disabled->setEnabled(true);
        disabled->activateWindow();
        disabled = nullptr;
    }
}

struct InstallHooks
{
    InstallHooks()
    {
        NyrSetWaitCursorHooks(BeginWait, EndWait);
        NyrSetMessageBoxHook(ShowMessage);
        NyrSetEnableMainWindowHook(EnableMainWindow);
    }
};

const InstallHooks install;

}  // namespace
