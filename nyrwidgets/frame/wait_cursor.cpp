#include "nyrwidgets/frame/wait_cursor.h"

#include <QCursor>
#include <QGuiApplication>

CNyrWaitCursor::CNyrWaitCursor() : m_active(qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr)
{
    if (m_active)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

CNyrWaitCursor::~CNyrWaitCursor()
{
    if (m_active)
        QGuiApplication::restoreOverrideCursor();
}

bool CNyrWaitCursor::IsShown()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    const QCursor* cursor = QGuiApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}
