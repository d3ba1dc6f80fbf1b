// A Qt host that links the widgets library but calls only core functions,
// linked with --as-needed: the library must be loaded all the same, so the
// core's busy cursor is Qt's wait cursor and not the headless nothing.
#include <QApplication>
#include <cstdio>

#include "nyr/frame/ui_hooks.h"

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    bool shown = false;
    {
        const CNyrBusyCursor busy;
        shown = QGuiApplication::overrideCursor() != nullptr;
    }
    std::printf(shown ? "qt hooks\n" : "headless hooks\n");
    return shown ? 0 : 1;
}
