#pragma once

#include <QEvent>
#include <QPointer>
#include <QtGlobal>

#include "nyr/platform/export.h"

class QObject;
class QWidget;

// A registered notification delivered to a QObject: the library's one event
// type, carrying the message number and its two parameters. A receiver
// handles it in event() (or an event filter) and may set a result.
//
//     bool MyView::event(QEvent* e) {
//         if (auto* m = CNyrMessageEvent::From(e); m && m->Message() == WM_NYR_UNIT_CHANGED_ANGLE) {
//             Reconvert(m->WParam(), m->LParam());
//             return true;
//         }
//         return QWidget::event(e);
//     }
class NYR_EXPORT CNyrMessageEvent : public QEvent
{
public:
    CNyrMessageEvent(unsigned int message, quintptr wParam, qintptr lParam);

    // The QEvent type all library messages travel as (registered once).
    static QEvent::Type EventType();
    // The event as a library message, or null when it is another event.
    static CNyrMessageEvent* From(QEvent* event);

    unsigned int Message() const { return m_message; }
    quintptr WParam() const { return m_wParam; }
    qintptr LParam() const { return m_lParam; }
    qintptr Result() const { return m_result; }
    void SetResult(qintptr result) { m_result = result; }

private:
    unsigned int m_message;
    quintptr m_wParam;
    qintptr m_lParam;
    qintptr m_result = 0;
};

// Sends a message synchronously (the receiver runs before this returns) and
// gives the receiver's result; 0 for a null receiver.
NYR_EXPORT qintptr NyrSendMessage(QObject* receiver, unsigned int message, quintptr wParam = 0, qintptr lParam = 0);

// Posts a message to the receiver's event queue; delivered later by the event
// loop unless the receiver is gone by then.
NYR_EXPORT void NyrPostMessage(QObject* receiver, unsigned int message, quintptr wParam = 0, qintptr lParam = 0);

// Sends a message to every descendant widget of `root` (not to root itself),
// depth first: each child receives it before that child's own children, and
// children in their stacking order. With `deep` false only direct children
// receive it. A widget deleted by a receiver along the way is skipped.
NYR_EXPORT void NyrSendMessageToDescendants(QWidget* root, unsigned int message, quintptr wParam = 0,
                                            qintptr lParam = 0, bool deep = true);

// Whether the object guarded by the pointer still exists (IsWindow).
inline bool NyrIsWindow(const QPointer<QObject>& window)
{
    return !window.isNull();
}
