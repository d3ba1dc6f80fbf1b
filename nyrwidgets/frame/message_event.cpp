#include "nyrwidgets/frame/message_event.h"

#include <QCoreApplication>
#include <QWidget>

CNyrMessageEvent::CNyrMessageEvent(unsigned int message, quintptr wParam, qintptr lParam)
    : QEvent(EventType()), m_message(message), m_wParam(wParam), m_lParam(lParam)
{
}

QEvent::Type CNyrMessageEvent::EventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

CNyrMessageEvent* CNyrMessageEvent::From(QEvent* event)
{
    return event && event->type() == EventType() ? static_cast<CNyrMessageEvent*>(event) : nullptr;
}

qintptr NyrSendMessage(QObject* receiver, unsigned int message, quintptr wParam, qintptr lParam)
{
    if (!receiver)
        return 0;
    CNyrMessageEvent event(message, wParam, lParam);
    QCoreApplication::sendEvent(receiver, &event);
    return event.Result();
}

void NyrPostMessage(QObject* receiver, unsigned int message, quintptr wParam, qintptr lParam)
{
    if (receiver)
        QCoreApplication::postEvent(receiver, new CNyrMessageEvent(message, wParam, lParam));
}

void NyrSendMessageToDescendants(QWidget* root, unsigned int message, quintptr wParam, qintptr lParam, bool deep)
{
    if (!root)
        return;
    // Take the child list first and guard each entry: a receiver may delete
    // or create widgets while it handles the message.
    QList<QPointer<QWidget>> children;
    for (QObject* child : root->children()) {
        if (child->isWidgetType())
            children.append(static_cast<QWidget*>(child));
    }
    for (const QPointer<QWidget>& child : children) {
        if (!child)
            continue;
        NyrSendMessage(child, message, wParam, lParam);
        if (deep && child)
            NyrSendMessageToDescendants(child, message, wParam, lParam, true);
    }
}
