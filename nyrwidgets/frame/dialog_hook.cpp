#include "nyrwidgets/frame/dialog_hook.h"

#include <QDialog>
#include <QPointer>

namespace {

NyrDialogHook& Hook()
{
    static NyrDialogHook hook;
    return hook;
}

}  // namespace

NyrDialogHook NyrSetDialogHook(NyrDialogHook hook)
{
    NyrDialogHook previous = std::move(Hook());
    Hook() = std::move(hook);
    return previous;
}

int NyrExecDialog(QDialog& dialog)
{
    // A copy: the hook may install another one while it runs.
    const NyrDialogHook hook = Hook();
    if (!hook)
        return dialog.exec();
    const QPointer<QDialog> alive(&dialog);
    dialog.setResult(QDialog::Rejected);
    // Shown, so that what the dialog does as it shows (its showEvent) has
    // happened before the hook looks at it.
    dialog.show();
    hook(dialog);
    if (!alive)
        return QDialog::Rejected;
    if (dialog.isVisible())
        dialog.reject();
    return dialog.result();
}
