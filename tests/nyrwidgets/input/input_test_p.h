#pragma once

// Windows, key helpers and the German module shared by the input field tests.

#include <QLineEdit>
#include <QTest>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyrwidgets/frame/message_event.h"

namespace nyr::test {

// A window that records the library messages it receives and answers each
// with the result set for it in `answers` (0 when none is).
class Window : public QWidget
{
public:
    struct Message
    {
        unsigned int message;
        quintptr wParam;
        qintptr lParam;
    };
    std::vector<Message> received;
    std::map<unsigned int, qintptr> answers;
    std::function<void(const Message&)> onMessage;

    // The lParams of every `message` received, in order.
    std::vector<qintptr> LParams(unsigned int message) const
    {
        std::vector<qintptr> out;
        for (const Message& m : received)
            if (m.message == message)
                out.push_back(m.lParam);
        return out;
    }

protected:
    bool event(QEvent* e) override
    {
        if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
            received.push_back({m->Message(), m->WParam(), m->LParam()});
            const auto answer = answers.find(m->Message());
            m->SetResult(answer == answers.end() ? 0 : answer->second);
            if (onMessage)
                onMessage(received.back());
            return true;
        }
        return QWidget::event(e);
    }
};

// Shows the window and waits until it is the active one (at once on the
// offscreen platform).
inline bool ShowActive(QWidget& window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

// Replaces the whole text as a user does: select all, then type (or delete).
inline void Retype(QLineEdit& edit, const QString& text)
{
    edit.setFocus(Qt::OtherFocusReason);
    edit.selectAll();
    if (text.isEmpty())
        QTest::keyClick(&edit, Qt::Key_Delete);
    else
        QTest::keyClicks(&edit, text);
}

// The library's texts in German while the object lives.
class German
{
public:
    German()
        : m_module(CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang")),
          m_saved(NyrGetNyrResourceHandle())
    {
        if (m_module)
            NyrSetNyrResourceHandle(m_module.get());
    }
    ~German() { NyrSetNyrResourceHandle(m_saved); }
    German(const German&) = delete;
    German& operator=(const German&) = delete;
    bool Loaded() const { return m_module != nullptr; }

private:
    std::unique_ptr<CNyrResourceModule> m_module;
    NyrResourceHandle m_saved;
};

}  // namespace nyr::test
