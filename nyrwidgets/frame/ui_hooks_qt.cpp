// Installs the Qt versions of the core's user-interface hooks when the
// widgets library is loaded. Without a QApplication the core's headless
// behaviour stays (no cursor; messages on standard error).
#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <cstdio>

#include "nyr/frame/ui_hooks.h"

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

// The platform's message-box style: the low nibble chooses the buttons, the
// next one the icon.
int ShowMessage(const std::string& text, const std::string& caption, unsigned style)
{
    if (!HaveGui()) {
        std::fprintf(stderr, "%s%s%s\n", caption.c_str(), caption.empty() ? "" : ": ", text.c_str());
        return 1;
    }
    static const QMessageBox::StandardButtons kSets[] = {
        QMessageBox::Ok,
        QMessageBox::Ok | QMessageBox::Cancel,
        QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
        QMessageBox::Yes | QMessageBox::No,
        QMessageBox::Retry | QMessageBox::Cancel,
    };
    const unsigned set = style & 0xF;
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(QString::fromStdString(caption.empty() ? QApplication::applicationName().toStdString()
                                                              : caption));
    box.setText(QString::fromStdString(text));
    box.setStandardButtons(set < std::size(kSets) ? kSets[set] : QMessageBox::Ok);
    switch (style & 0xF0) {
    case 0x10: box.setIcon(QMessageBox::Critical); break;
    case 0x20: box.setIcon(QMessageBox::Question); break;
    case 0x30: box.setIcon(QMessageBox::Warning); break;
    case 0x40: box.setIcon(QMessageBox::Information); break;
    default: break;
    }
    switch (box.exec()) {
    case QMessageBox::Ok: return 1;
    case QMessageBox::Cancel: return 2;
    case QMessageBox::Abort: return 3;
    case QMessageBox::Retry: return 4;
    case QMessageBox::Ignore: return 5;
    case QMessageBox::Yes: return 6;
    case QMessageBox::No: return 7;
    default: return 2;
    }
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
        CNyrUiHooks hooks;
        hooks.beginWaitCursor = BeginWait;
        hooks.endWaitCursor = EndWait;
        hooks.messageBox = ShowMessage;
        hooks.enableMainWindow = EnableMainWindow;
        NyrSetUiHooks(hooks);
    }
};

const InstallHooks install;

}  // namespace
