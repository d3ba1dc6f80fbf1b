#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <vector>

#include "nyr/platform/export.h"

class QPushButton;

// Style word of a message box: the platform's message-box style values plus
// flags of the library's own for the extended buttons. One value of each
// group may be combined with any of the extended-button flags.
enum eNyrMessageBoxStyle : unsigned
{
    // Button sets (low nibble). Values 7 to 15 show the OK set.
    NYR_MB_OK = 0x0,                 // OK
    NYR_MB_OKCANCEL = 0x1,           // OK, Cancel
    NYR_MB_ABORTRETRYIGNORE = 0x2,   // Abort, Retry, Ignore
    NYR_MB_YESNOCANCEL = 0x3,        // Yes, No, Cancel
    NYR_MB_YESNO = 0x4,              // Yes, No
    NYR_MB_RETRYCANCEL = 0x5,        // Retry, Cancel
    NYR_MB_CANCELTRYCONTINUE = 0x6,  // Try again, Continue, Cancel
    NYR_MB_TYPEMASK = 0xF,

    // Icons (second nibble). 0 and values other than these show none.
    NYR_MB_ICONERROR = 0x10,
    NYR_MB_ICONQUESTION = 0x20,
    NYR_MB_ICONWARNING = 0x30,
    NYR_MB_ICONINFORMATION = 0x40,
    NYR_MB_ICONMASK = 0xF0,

    // Default button: the first to fourth button of the row, counted from the
    // left. A number beyond the last button falls back to the first.
    NYR_MB_DEFBUTTON1 = 0x000,
    NYR_MB_DEFBUTTON2 = 0x100,
    NYR_MB_DEFBUTTON3 = 0x200,
    NYR_MB_DEFBUTTON4 = 0x300,
    NYR_MB_DEFMASK = 0xF00,

    // The library's extended buttons; each adds one button to the set unless
    // the set already shows its result.
    NYR_MB_OKTOALL = 0x01000000,      // "OK to a&ll"   -> NYR_IDOKTOALL
    NYR_MB_YESTOALL = 0x02000000,     // "Y&es to all"  -> NYR_IDYESTOALL
    NYR_MB_NOTOALL = 0x04000000,      // "No &to all"   -> NYR_IDNOTOALL
    NYR_MB_IGNOREALL = 0x08000000,    // "I&gnore all"  -> NYR_IDIGNOREALL
    // "&Skip" answers NYR_IDIGNORE: it is the Ignore button under another
    // caption (an Ignore button of the set reads "&Skip" instead).
    NYR_MB_SKIP = 0x10000000,
    // "Skip &all" answers NYR_IDIGNOREALL: the Ignore-all button under another
    // caption (with NYR_MB_IGNOREALL too, that one button reads "Skip &all").
    NYR_MB_SKIPALL = 0x20000000,
};

// Result codes of a message box; also the remembered answers. The first nine
// are the platform's standard message-box results, 101 to 104 the library's.
enum eNyrMessageBoxResult : int
{
    NYR_IDOK = 1,
    NYR_IDCANCEL = 2,
    NYR_IDABORT = 3,
    NYR_IDRETRY = 4,
    NYR_IDIGNORE = 5,
    NYR_IDYES = 6,
    NYR_IDNO = 7,
    NYR_IDTRYAGAIN = 10,
    NYR_IDCONTINUE = 11,
    NYR_IDOKTOALL = 101,
    NYR_IDYESTOALL = 102,
    NYR_IDNOTOALL = 103,
    NYR_IDIGNOREALL = 104,
};

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
