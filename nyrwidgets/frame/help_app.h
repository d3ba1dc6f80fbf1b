#pragma once

#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <string>

#include "nyr/platform/export.h"

class QCoreApplication;

// The help request as the host's main window receives it: sent synchronously
// by CNyrHelpApp::ShowHelp. The main window handles it in event() and shows
// help for Context() and Command() (the window's WinHelp in the framework the
// interface comes from).
class NYR_EXPORT CNyrHelpEvent : public QEvent
{
public:
    CNyrHelpEvent(quint32 context, unsigned int command);
    static QEvent::Type EventType();
    quint32 Context() const { return m_context; }
    unsigned int Command() const { return m_command; }

private:
    quint32 m_context;
    unsigned int m_command;
};

// Routes the library's help requests to the host application. One instance
// per process (NyrGetHelpApp).
class NYR_EXPORT CNyrHelpApp
{
public:
    // May change the context and the command before help is shown.
    using HelpHook = void (*)(quint32& context, unsigned int& command);

    // Posted to the main window before the help request (WM_KICKIDLE), so
    // that its idle processing runs.
    static constexpr unsigned int kKickIdleMessage = 0x036A;

    CNyrHelpApp();
    virtual ~CNyrHelpApp();
    CNyrHelpApp(const CNyrHelpApp&) = delete;
    CNyrHelpApp& operator=(const CNyrHelpApp&) = delete;

    QCoreApplication* WinApp() const;
    void WinApp(QCoreApplication* app);

    // The window that receives help requests. When none is set, the active
    // window of the application is used, else its first visible top-level
    // widget.
    QWidget* MainWindow() const;
    void MainWindow(QWidget* window);

    // Installs `hook` and returns the one it replaces (null when none).
    HelpHook SetHelpHook(HelpHook hook);

    // (1) the hook, when one is installed, may change context and command;
    // (2) the application leaves What's-This help mode; (3) the main window
    // gets kKickIdleMessage posted, (4) then a CNyrHelpEvent sent with the
    // possibly changed context and command. Without a main window, steps 3
    // and 4 do nothing.
    virtual void ShowHelp(quint32 context, unsigned int command);

private:
    QCoreApplication* m_app = nullptr;
    int m_reserved = 0;
    std::string m_text;  // kept for hosts; no operation of the library reads it
    HelpHook m_hook = nullptr;
    QPointer<QWidget> m_mainWindow;
};

// Stores the host application in the process-wide CNyrHelpApp.
NYR_EXPORT void NyrSetHelpApp(QCoreApplication* app);
// The process-wide CNyrHelpApp; when no application is stored yet it first
// stores the running QCoreApplication.
NYR_EXPORT CNyrHelpApp& NyrGetHelpApp();
