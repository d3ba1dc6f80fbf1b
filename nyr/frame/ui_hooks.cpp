#include "nyr/frame/ui_hooks.h"

#include <cstdio>
#include <utility>

namespace {

int HeadlessMessageBox(const std::string& text, const std::string& caption, unsigned)
{
    if (caption.empty())
        std::fprintf(stderr, "%s\n", text.c_str());
    else
        std::fprintf(stderr, "%s: %s\n", caption.c_str(), text.c_str());
    return 1;
}

CNyrUiHooks& Hooks()
{
    static CNyrUiHooks hooks;
    return hooks;
}

}  // namespace

void NyrSetUiHooks(const CNyrUiHooks& hooks)
{
    Hooks() = hooks;
}

const CNyrUiHooks& NyrGetUiHooks()
{
    return Hooks();
}

NyrMessageBoxHook NyrSetMessageBoxHook(NyrMessageBoxHook hook)
{
    return std::exchange(Hooks().messageBox, hook);
}

NyrEnableMainWindowHook NyrSetEnableMainWindowHook(NyrEnableMainWindowHook hook)
{
    return std::exchange(Hooks().enableMainWindow, hook);
}

void NyrSetWaitCursorHooks(NyrWaitCursorHook begin, NyrWaitCursorHook end)
{
    Hooks().beginWaitCursor = begin;
    Hooks().endWaitCursor = end;
}

int NyrMessageBox(const std::string& text, const std::string& caption, unsigned style)
{
    const auto show = Hooks().messageBox ? Hooks().messageBox : HeadlessMessageBox;
    return show(text, caption, style);
}

void NyrEnableMainWindow(bool enable)
{
    if (Hooks().enableMainWindow)
        Hooks().enableMainWindow(enable);
}

CNyrBusyCursor::CNyrBusyCursor()
{
    if (Hooks().beginWaitCursor)
        Hooks().beginWaitCursor();
}

CNyrBusyCursor::~CNyrBusyCursor()
{
    if (Hooks().endWaitCursor)
        Hooks().endWaitCursor();
}
