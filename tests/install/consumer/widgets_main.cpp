#include <QApplication>
#include <QWidget>
#include <cstdio>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"

class Receiver : public QWidget
{
protected:
    bool event(QEvent* e) override
    {
        if (CNyrMessageEvent::From(e)) {
            std::printf("delivered\n");
            return true;
        }
        return QWidget::event(e);
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QWidget root;
    auto* child = new Receiver;
    child->setParent(&root);
    NyrSendMessageToDescendants(&root, WM_NYR_UNIT_CHANGED_ANGLE, 11, 12);
    return 0;
}
