#include <gtest/gtest.h>

#include <QApplication>
#include <QGuiApplication>
#include <QMainWindow>
#include <QWidget>
#include <memory>
#include <vector>

#include "nyr/frame/notifications.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/frame/help_app.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/frame/wait_cursor.h"

namespace {

// A widget that logs the library messages it receives and answers with a result.
class Recorder : public QWidget
{
public:
    Recorder(const char* name, std::vector<std::string>* log, QWidget* parent = nullptr) : QWidget(parent), m_log(log)
    {
        setObjectName(name);
    }
    std::function<void()> onMessage;
    quintptr lastWParam = 0;
    qintptr lastLParam = 0;

protected:
    bool event(QEvent* e) override
    {
        if (auto* m = CNyrMessageEvent::From(e)) {
            m_log->push_back(objectName().toStdString());
            lastWParam = m->WParam();
            lastLParam = m->LParam();
            m->SetResult(42);
            if (onMessage)
                onMessage();
            return true;
        }
        return QWidget::event(e);
    }

private:
    std::vector<std::string>* m_log;
};

TEST(MessageDelivery, SendIsSynchronousAndCarriesParametersAndResult)
{
    std::vector<std::string> log;
    Recorder r("r", &log);
    EXPECT_EQ(NyrSendMessage(&r, WM_NYR_UNIT_CHANGED_ANGLE, 12, -15), 42);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(r.lastWParam, 12u);
    EXPECT_EQ(r.lastLParam, -15);
    EXPECT_EQ(NyrSendMessage(nullptr, WM_NYR_UNIT_CHANGED_ANGLE), 0);
}

TEST(MessageDelivery, DescendantsReceiveDepthFirstThroughEveryLevelButNotTheRoot)
{
    std::vector<std::string> log;
    Recorder root("root", &log);
    auto* a = new Recorder("a", &log, &root);
    new Recorder("a1", &log, new Recorder("a0", &log, a));  // a0 has a1
    new Recorder("b", &log, &root);
    NyrSendMessageToDescendants(&root, WM_NYR_FORMAT_CHANGED_TIME, 3, 17);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "a0", "a1", "b"}));

    log.clear();
    NyrSendMessageToDescendants(&root, WM_NYR_FORMAT_CHANGED_TIME, 3, 17, false);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "b"}));
}

TEST(MessageDelivery, AReceiverDeletingASiblingDoesNotBreakTheWalk)
{
    std::vector<std::string> log;
    Recorder root("root", &log);
    auto* first = new Recorder("first", &log, &root);
    auto* second = new Recorder("second", &log, &root);
    new Recorder("third", &log, &root);
    first->onMessage = [second] { delete second; };
    NyrSendMessageToDescendants(&root, WM_NYR_UNIT_CHANGED_DISTANCE);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "third"}));
}

TEST(MessageDelivery, IsWindowFollowsTheObjectsLifetime)
{
    auto* widget = new QWidget;
    QPointer<QObject> guard(widget);
    EXPECT_TRUE(NyrIsWindow(guard));
    delete widget;
    EXPECT_FALSE(NyrIsWindow(guard));
}

TEST(WaitCursor, ScopedAndNestedAndUsedByTheCoreHook)
{
    EXPECT_FALSE(CNyrWaitCursor::IsShown());
    {
        CNyrWaitCursor outer;
        EXPECT_TRUE(CNyrWaitCursor::IsShown());
        {
            CNyrBusyCursor inner;  // the core's hook, installed by this library
            EXPECT_TRUE(CNyrWaitCursor::IsShown());
        }
        EXPECT_TRUE(CNyrWaitCursor::IsShown());
    }
    EXPECT_FALSE(CNyrWaitCursor::IsShown());
}

int g_hostMessages = 0;
int HostMessageBox(const std::string&, const std::string&, unsigned)
{
    ++g_hostMessages;
    return 2;
}

TEST(UiHooks, AHostReplacingOneHookKeepsTheLibrarysOthers)
{
    const CNyrUiHooks library = NyrGetUiHooks();
    ASSERT_NE(library.messageBox, nullptr);  // the library installed its own
    EXPECT_EQ(NyrSetMessageBoxHook(HostMessageBox), library.messageBox);
    EXPECT_EQ(NyrMessageBox("Replace?", "Host", 1), 2);
    EXPECT_EQ(g_hostMessages, 1);
    {
        const CNyrBusyCursor busy;  // still the library's Qt cursor
        EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    }
    QMainWindow window;
    window.show();
    NyrEnableMainWindow(false);  // and still its main-window hook
    EXPECT_FALSE(window.isEnabled());
    NyrEnableMainWindow(true);

    EXPECT_EQ(NyrSetEnableMainWindowHook(nullptr), library.enableMainWindow);  // headless: does nothing
    NyrEnableMainWindow(false);
    EXPECT_TRUE(window.isEnabled());
    NyrSetWaitCursorHooks(nullptr, nullptr);
    {
        const CNyrBusyCursor busy;
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }
    EXPECT_EQ(NyrGetUiHooks().messageBox, HostMessageBox);  // untouched by the other setters

    NyrSetUiHooks(library);
}

struct HelpCall
{
    quint32 context = 0;
    unsigned int command = 0;
};
HelpCall g_hookSaw;

void ChangingHook(quint32& context, unsigned int& command)
{
    g_hookSaw = {context, command};
    context += 1000;
    command = 7;
}

class MainWindow : public QWidget
{
public:
    std::vector<std::string> events;
    HelpCall help;

protected:
    bool event(QEvent* e) override
    {
        if (auto* m = CNyrMessageEvent::From(e)) {
            events.push_back("message " + std::to_string(m->Message()));
            return true;
        }
        if (e->type() == CNyrHelpEvent::EventType()) {
            auto* h = static_cast<CNyrHelpEvent*>(e);
            help = {h->Context(), h->Command()};
            events.push_back("help");
            return true;
        }
        return QWidget::event(e);
    }
};

TEST(HelpApp, ShowHelpRunsTheHookThenKicksIdleThenAsksTheMainWindow)
{
    CNyrHelpApp& app = NyrGetHelpApp();
    EXPECT_EQ(app.WinApp(), QCoreApplication::instance());
    MainWindow window;
    app.MainWindow(&window);
    EXPECT_EQ(app.SetHelpHook(ChangingHook), nullptr);

    app.ShowHelp(5, 1);
    EXPECT_EQ(g_hookSaw.context, 5u);
    EXPECT_EQ(g_hookSaw.command, 1u);
    EXPECT_EQ(window.help.context, 1005u);
    EXPECT_EQ(window.help.command, 7u);
    // The idle kick is posted before the request is sent; it arrives with the event loop.
    EXPECT_EQ(window.events, (std::vector<std::string>{"help"}));
    QCoreApplication::sendPostedEvents(&window);
    EXPECT_EQ(window.events, (std::vector<std::string>{"help", "message 874"}));  // 0x036A

    EXPECT_EQ(app.SetHelpHook(nullptr), ChangingHook);
    app.ShowHelp(9, 2);
    EXPECT_EQ(window.help.context, 9u);
    app.MainWindow(nullptr);
}

}  // namespace

TEST(MainWindowHook, DisablesTheMainWindowAndEnablesItAgain)
{
    QMainWindow window;
    window.show();
    NyrEnableMainWindow(false);  // the core's hook, installed by this library
    EXPECT_FALSE(window.isEnabled());
    NyrEnableMainWindow(true);
    EXPECT_TRUE(window.isEnabled());
    NyrEnableMainWindow(true);  // nothing left to enable: harmless
    EXPECT_TRUE(window.isEnabled());
}
