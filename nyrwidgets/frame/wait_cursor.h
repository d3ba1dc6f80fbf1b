#pragma once

#include "nyr/platform/export.h"

// Shows the wait cursor over the whole application for the object's lifetime
// (QGuiApplication's override cursor; nothing without a GUI application).
class NYR_EXPORT CNyrWaitCursor
{
public:
    CNyrWaitCursor();
    ~CNyrWaitCursor();
    CNyrWaitCursor(const CNyrWaitCursor&) = delete;
    CNyrWaitCursor& operator=(const CNyrWaitCursor&) = delete;

    // Whether the cursor currently shown is the wait cursor.
    static bool IsShown();

private:
    bool m_active;
};
