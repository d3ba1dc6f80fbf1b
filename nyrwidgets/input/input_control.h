#pragma once

#include <QValidator>
#include <any>
#include <memory>
#include <string>

#include "nyr/platform/export.h"
#include "nyrwidgets/input/edit.h"

// The typed fields (which field edits a report view cell, see
// CNyrReportViewItem::OnEditItemKind).
enum eNyrInputKind : int
{
    NYR_INPUT_NONE = 0,
    NYR_INPUT_INTEGER = 1,    // CNyrInputInteger
    NYR_INPUT_FLOAT = 2,      // CNyrInputFloat
    NYR_INPUT_STRING = 3,     // CNyrInputString
    NYR_INPUT_FILENAME = 4,   // CNyrInputFileName
    NYR_INPUT_ANGLE = 5,      // CNyrInputAngle
    NYR_INPUT_DISTANCE = 6,   // CNyrInputDistance
    NYR_INPUT_LATITUDE = 7,   // CNyrInputLatitude
    NYR_INPUT_LONGITUDE = 8,  // CNyrInputLongitude
    NYR_INPUT_DATETIME = 9,   // CNyrInputDateTime
    NYR_INPUT_TIMESPAN = 10,  // CNyrInputTimeSpan
};

class CNyrInputControl;

// A new field of that kind (null for NYR_INPUT_NONE and unknown kinds).
NYR_EXPORT CNyrInputControl* NyrCreateInputControl(int kind, QWidget* parent = nullptr);

// The core of every typed field. A field holds a value, not a text: the text
// is the value written in the current display unit (or time format), and the
// field writes it anew whenever that changes, from the value it holds, so no
// back and forth between units changes the value. A field is empty when its
// text is blank; an empty field holds no value.
//
// The value a field holds changes when the program sets it and when a
// validation passes, not at every keystroke. While the user types, keystrokes
// that can never lead to a valid text are refused (a letter in a number, a
// second sign); half-typed text ("-", "12 3") is let through.
//
// Validation (Validate()): blank text passes when the field may be empty (or
// its owner says so); otherwise the text must read as a value of the kind
// and lie in the field's range. The failure shows as a message next to the
// field (texts NYR_IDS_INPUT_EMPTY-NYR_IDS_INPUT_TOO_LONG, %MIN and %MAX written in the field's current unit
// and precision) and stays until the text changes. A field validates
// itself when the user leaves it after changing its text, unless the focus
// goes to a Cancel button (a button of the reject role in a
// QDialogButtonBox, or any widget with the property "nyrNoValidate" set),
// to a pop-up or to another window. Dialogs validate all their fields on OK
// with NyrValidateInputControls. A passing validation writes the text anew
// from the value read ("12.5" becomes 12° 30' 00.00000"), as one undoable step.
//
// Notifications to the owner (CNyrEdit::SetOwner; by default the field's
// window), sent synchronously with wParam the field (CNyrInputControl*):
//   WM_NYR_INPUT_CONTROL_VALIDATE        during a validation, after the
//       field's own rules passed; the field already holds the new value.
//       lParam 0. A non-zero result refuses it: the previous value comes
//       back, and the message is the one the owner gave with ShowMessage
//       during the call, or the field's "invalid" text.
//   WM_NYR_INPUT_CONTROL_VALIDATE_EMPTY  during a validation of a blank
//       field; lParam 1 when the field may be empty, else 0. The result
//       decides: positive accepts, negative refuses ("Field must not be
//       empty"), 0 leaves it to the field's own rule.
//   WM_NYR_INPUT_CONTROL_EMPTY_CHANGED   when the text turns blank or stops
//       being blank, by any cause; lParam 1 when it is blank now, else 0.
//   WM_NYR_INPUT_CONTROL_CHILD_ADDED     when the field gets a new parent;
//       sent to its new window, lParam 0.
// And to the host while the field is hooked (below):
//   WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE  after a validation that passed
//       on Enter (lParam 0), Tab (1), Shift+Tab (-1) or the focus leaving
//       the field (2). The host stores the value and returns non-zero, or
//       refuses with 0 after ShowMessage; the field stays as it is.
//   WM_NYR_INPUT_CONTROL_CANCEL_INLINE      on Escape; lParam 0.
// Messages the field takes:
//   WM_NYR_INPUT_CONTROL_HOOK_DLG_CTRL    wParam the host (QObject*): the
//       field edits in place for that host (a report view cell) until
//       WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL; Enter, Tab and Escape then go
//       to the host, not to the dialog. Result 1.
//   WM_NYR_UNIT_CHANGED_ANGLE, WM_NYR_UNIT_CHANGED_DISTANCE,
//   WM_NYR_FORMAT_CHANGED_TIME            the fields of that kind write
//       their text anew (Reformat); the parameters are not needed, a field
//       knows the unit its texts were written in.
class NYR_EXPORT CNyrInputControl : public CNyrEdit
{
    Q_OBJECT
public:
    ~CNyrInputControl() override;

    // eNyrInputKind.
    virtual int Kind() const = 0;

    // Whether the text is blank (the field holds no value then).
    bool IsEmpty() const;
    // Whether a blank field passes validation; false unless set.
    void SetAllowEmpty(bool allow);
    bool GetAllowEmpty() const;
    // Empties the field and its history.
    void Clear();

    // Validates as described above; 1 when the text passes (the field then
    // holds its value), 0 with the message shown.
    int Validate();
    // Whether the last validation passed (true for a field the program set
    // and the user has not changed).
    bool IsInputValid() const;
    // The message shown; empty when none is.
    std::string GetMessage() const;
    // Shows a message next to the field (the owner or host refusing a
    // value, the program) until the text changes or a validation passes;
    // the field counts as invalid meanwhile. An empty text hides it.
    void ShowMessage(const std::string& text);
    // Shows `message`, or the kind's "Invalid ..." text when it is empty.
    void Refuse(const std::string& message);
    bool IsMessageShown() const;
    // Whether leaving the field after a change validates it; true unless set.
    void SetValidateOnLeave(bool validate);
    bool GetValidateOnLeave() const;
    // The host while the field edits in place, else null.
    QObject* Host() const;

    // Writes the text anew from the value (and every text of the history
    // from theirs) in the current unit or format. The unit and format
    // notifications call it.
    void Reformat();

    // Whether `text` could be typed: Invalid when no continuation can make
    // it valid, Intermediate while incomplete or out of range, Acceptable
    // when it passes the field's rules. The field's validator answers with
    // it for every keystroke.
    QValidator::State CheckKeystroke(const QString& text) const;

signals:
    // The value the field holds changed (set by the program or by a
    // passing validation).
    void ValueCommitted();

protected:
    explicit CNyrInputControl(QWidget* parent);

    // ---- What each kind supplies ----

    // The text of a value, in the current unit or format.
    virtual QString Render(const std::any& value) const = 0;
    // Reads a text written in `form` (a unit code, a time format index: what
    // CurrentForm() was when it was written). False when it does not read.
    virtual bool Read(const QString& text, std::any& value, long form) const = 0;
    // The unit or format that texts are written in now; 0 for kinds
    // without one.
    virtual long CurrentForm() const { return 0; }
    // Whether the message reformats this kind (a unit or format change).
    virtual bool FollowsMessage(unsigned int) const { return false; }
    // Quick test of the characters of a text: false when no continuation
    // can make it valid.
    virtual bool MayBecomeValid(const QString& text) const = 0;
    // -1 below the range, +1 above it, 0 inside.
    virtual int RangeSide(const std::any&) const { return 0; }
    // The message of a value outside the range (side as RangeSide gives it);
    // the default builds NYR_IDS_INPUT_MINIMUM, NYR_IDS_INPUT_MAXIMUM or NYR_IDS_INPUT_RANGE from BoundText.
    virtual std::string RangeMessage(int side) const;
    // A bound of the range; empty for none.
    virtual std::any Bound(bool) const { return {}; }
    // A bound as the message shows it, empty for none; the default renders Bound.
    virtual std::string BoundText(bool maximum) const;
    // The text number of "Invalid ..." for this kind.
    virtual unsigned int InvalidTextId() const = 0;
    // Further checks of a value that reads and lies in range; 0 passes,
    // otherwise the text number of the message (file names: must exist).
    virtual unsigned int CheckValue(const std::any&) const { return 0; }
    // What the field is for, for assistive technology (its accessible
    // description while no message is shown): the kind's name by default.
    virtual std::string Description() const;

    // ---- For the typed fields ----

    // The value held; empty for an empty field.
    const std::any& HeldValue() const;
    // The value held as a T; `none` for an empty field.
    template <class T>
    T HeldValueOr(T none) const
    {
        const T* value = std::any_cast<T>(&HeldValue());
        return value ? *value : none;
    }
    // Holds `value` (empty: none), shows it and empties the history.
    void SetHeldValue(std::any value);
    // The message with %MIN and %MAX replaced by the bound texts.
    std::string BoundMessage(unsigned int id) const;

    bool event(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;
    void moveEvent(QMoveEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;

    int Fail(const std::string& message);
    int ValidateEmpty();
    int ValidateText();
    void Commit(std::any value);
    void CommitInline(qintptr how);
    bool HandleMessage(unsigned int message, quintptr wParam);
    void OnTextChanged();
    bool LeavingForCancel() const;
    // The unit or format the shown text and the history are written in.
    long FormOfTexts() const;
    void AnnounceToWindow();
    void UpdateDescription();
    void PlaceBalloon();
};
