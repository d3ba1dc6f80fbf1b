#pragma once

#include <functional>

#include "nyr/platform/export.h"

class QDialog;

// Every modal dialog of the library runs through NyrExecDialog: CNyrDialog's
// Exec (and so the dialogs built on it), the sort, columns, save-as and
// print dialogs, the file dialogs of the browse helpers, the progress
// dialog; hosts run theirs through it too. The message box has a seam of
// its own (CNyrMessageBoxDialog::SetAnswerHook).
//
// The seam for tests, the library's and the host's own: while a hook is
// installed, NyrExecDialog shows the dialog without an event loop of its own,
// calls the hook with it and returns the dialog's result. The hook answers as
// the user would: it sets the controls and closes the dialog (accept(),
// reject(), done(r)); a dialog it leaves open is rejected. So a test learns at
// once which dialog opened, and one that does not open never leaves a test
// waiting. Process-wide, for the user-interface thread.
using NyrDialogHook = std::function<void(QDialog& dialog)>;

// Installs `hook` and returns the one it replaces; an empty hook restores
// normal operation.
NYR_EXPORT NyrDialogHook NyrSetDialogHook(NyrDialogHook hook);

// Runs `dialog` modally (QDialog::exec) or through the hook; returns the
// dialog's result (QDialog::Accepted, QDialog::Rejected or the code given to
// done()).
NYR_EXPORT int NyrExecDialog(QDialog& dialog);
