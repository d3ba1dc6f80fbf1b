#pragma once

#include <string>

#include "nyr/frame/message_box_style.h"
#include "nyr/platform/export.h"

// The few places where the toolkit-free core touches the user interface go
// through these hooks. The core's defaults are headless: no cursor, and a
// message box that writes "caption: text" to standard error and answers OK.
// libNyr240Widgets installs Qt versions when it is loaded; a host that links
// Nyr240::Widgets (or pkg-config's nyr240widgets) loads it whatever its
// linker flags, --as-needed included.

using NyrWaitCursorHook = void (*)();
// Shows `text` modally; `style` takes the eNyrMessageBoxStyle values
// (NYR_MB_OK, NYR_MB_ICONERROR, ...). Returns the eNyrMessageBoxResult of the
// button pressed (NYR_IDOK, NYR_IDCANCEL, ...).
using NyrMessageBoxHook = int (*)(const std::string& text, const std::string& caption, unsigned style);
// Disables (false) the application's main window while another program
// holds the user, such as the mail client of a mail hand-off; enabling
// (true) makes it usable and the active window again.
using NyrEnableMainWindowHook = void (*)(bool enable);

struct CNyrUiHooks
{
    NyrWaitCursorHook beginWaitCursor = nullptr;
    NyrWaitCursorHook endWaitCursor = nullptr;
    NyrMessageBoxHook messageBox = nullptr;
    NyrEnableMainWindowHook enableMainWindow = nullptr;
};

// Replaces all hooks; a null member falls back to the headless default.
NYR_EXPORT void NyrSetUiHooks(const CNyrUiHooks& hooks);
NYR_EXPORT const CNyrUiHooks& NyrGetUiHooks();

// Each replaces one hook and keeps the others (null: the headless default)
// and returns what was installed before. Set hooks at start-up: they are
// read without a lock.
NYR_EXPORT NyrMessageBoxHook NyrSetMessageBoxHook(NyrMessageBoxHook hook);
NYR_EXPORT NyrEnableMainWindowHook NyrSetEnableMainWindowHook(NyrEnableMainWindowHook hook);
// The two wait-cursor hooks go together: every begin is matched by an end.
NYR_EXPORT void NyrSetWaitCursorHooks(NyrWaitCursorHook begin, NyrWaitCursorHook end);

// Shows a message through the installed hook.
NYR_EXPORT int NyrMessageBox(const std::string& text, const std::string& caption = {}, unsigned style = 0);

// Disables or enables the main window through the installed hook; the
// headless default does nothing.
NYR_EXPORT void NyrEnableMainWindow(bool enable);

// Shows the busy cursor for the lifetime of the object (nesting is allowed:
// every begin is matched by an end).
class NYR_EXPORT CNyrBusyCursor
{
public:
    CNyrBusyCursor();
    ~CNyrBusyCursor();
    CNyrBusyCursor(const CNyrBusyCursor&) = delete;
    CNyrBusyCursor& operator=(const CNyrBusyCursor&) = delete;
};
