#include "nyrwidgets/frame/help_app.h"

#include <QApplication>
#include <QWhatsThis>

#include "nyrwidgets/frame/message_event.h"

CNyrHelpEvent::CNyrHelpEvent(quint32 context, unsigned int command)
    : QEvent(EventType()), m_context(context), m_command(command)
{
}

QEvent::Type CNyrHelpEvent::EventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

CNyrHelpApp::CNyrHelpApp() = default;
CNyrHelpApp::~CNyrHelpApp() = default;

QCoreApplication* CNyrHelpApp::WinApp() const
{
    return m_app;
}

void CNyrHelpApp::WinApp(QCoreApplication* app)
{
    m_app = app;
}

QWidget* CNyrHelpApp::MainWindow() const
{
    if (m_mainWindow)
        return m_mainWindow;
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return nullptr;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible())
            return widget;
    }
    return nullptr;
}

void CNyrHelpApp::MainWindow(QWidget* window)
{
    m_mainWindow = window;
}

CNyrHelpApp::HelpHook CNyrHelpApp::SetHelpHook(HelpHook hook)
{
    const HelpHook previous = m_hook;
    m_hook = hook;
    return previous;
}

void CNyrHelpApp::ShowHelp(quint32 context, unsigned int command)
{
    if (m_hook)
        m_hook(context, command);
    QCoreApplication* app = m_app ? m_app : QCoreApplication::instance();
    if (app && qobject_cast<QApplication*>(app) && QWhatsThis::inWhatsThisMode())
        QWhatsThis::leaveWhatsThisMode();
    QWidget* mainWindow = MainWindow();
    if (!mainWindow)
        return;
    NyrPostMessage(mainWindow, kKickIdleMessage, 0, 0);
    CNyrHelpEvent request(context, command);
    QCoreApplication::sendEvent(mainWindow, &request);
}

void NyrSetHelpApp(QCoreApplication* app)
{
    NyrGetHelpApp().WinApp(app);
}

CNyrHelpApp& NyrGetHelpApp()
{
    static CNyrHelpApp helpApp;
    if (!helpApp.WinApp())
        helpApp.WinApp(QCoreApplication::instance());
    return helpApp;
}
