#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <vector>

#include "nyr/frame/message_box_style.h"
#include "nyr/platform/export.h"

class QPushButton;

// The modal message box: an icon, the text (plain text, wrapped), under it the
// check box "Do not prompt in future" when it is offered, and a right-aligned
// row of push buttons of one width, that of the widest caption.
//
// Buttons always appear in this order, whichever the style shows:
//   OK, OK to all, Yes, Yes to all, No, No to all, Abort, Retry, Try again,
//   Ignore (or Skip), Ignore all (or Skip all), Continue, Cancel.
//
// Escape and the close box give the cancel value of the set shown, the result
// of the button that plays the part of Cancel:
//   OK: OK (1) | OK, Cancel: Cancel (2) | Abort, Retry, Ignore: Abort (3) |
//   Yes, No, Cancel: Cancel (2) | Yes, No: No (7) | Retry, Cancel: Cancel (2) |
//   Try again, Continue, Cancel: Cancel (2).
// The extended buttons never change it. The check box counts as for any other
// answer.
//
// The default button (Return) is the button of `defaultValue` when the row
// shows it, else the one NYR_MB_DEFBUTTONn names. It has the focus when the
// dialog opens.
class NYR_EXPORT CNyrMessageBoxDialog : public QDialog
{
    Q_OBJECT

public:
    // `text` and `caption` are UTF-8 (null reads as empty); `defaultValue` is
    // a result code (values the row does not show are ignored);
    // `offerDoNotPrompt` non-zero shows the check box, unticked.
    CNyrMessageBoxDialog(QWidget* parent, const char* text, const char* caption, unsigned style, int defaultValue,
                         int offerDoNotPrompt);
    ~CNyrMessageBoxDialog() override;
    CNyrMessageBoxDialog(const CNyrMessageBoxDialog&) = delete;
    CNyrMessageBoxDialog& operator=(const CNyrMessageBoxDialog&) = delete;

    // Runs the dialog modally and returns the result code of the button
    // pressed (or the cancel value). The widget that had the keyboard focus
    // before gets it back afterwards, when it still exists. A dialog that is
    // destroyed while it runs (its parent went) returns the cancel value; the
    // caller must then not touch it again (hold it in a QPointer). With an
    // answer hook installed the dialog is not run: see SetAnswerHook.
    int ShowMessageBox();

    // Non-zero when the check box was offered and ticked.
    int GetDoNotPromptUser() const;
    // Ticks or clears the check box (no effect when it is not offered).
    void SetDoNotPromptUser(bool tick);

    // The result codes of the buttons shown, left to right.
    std::vector<int> ButtonResults() const;
    // The button giving `result`; null when the row has none.
    QPushButton* Button(int result) const;
    // The result code of the default button and the cancel value.
    int DefaultResult() const;
    int CancelValue() const;

    // The seam for tests, the library's and the host's own: while a hook is
    // installed, ShowMessageBox() builds the dialog but does not show it; it
    // calls the hook with the dialog and returns the hook's answer. The hook
    // may tick the check box with SetDoNotPromptUser. An answer that no
    // button of the row gives counts as a close of the dialog: the cancel
    // value is returned. Process-wide, for the user-interface thread;
    // returns the hook it replaces. An empty hook restores normal operation.
    using AnswerHook = std::function<int(CNyrMessageBoxDialog& dialog)>;
    static AnswerHook SetAnswerHook(AnswerHook hook);

public slots:
    // Escape and the close box end here: the dialog ends with the cancel value.
    void reject() override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
