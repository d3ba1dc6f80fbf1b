#include "nyrwidgets/input/input_control.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QTimer>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/frame/message_event.h"

namespace {

// Asks the field about every keystroke.
class CNyrInputValidator : public QValidator
{
public:
    explicit CNyrInputValidator(CNyrInputControl* field) : QValidator(field), m_field(field) {}
    State validate(QString& input, int&) const override { return m_field->CheckKeystroke(input); }

private:
    const CNyrInputControl* m_field;
};

void ReplaceAll(std::string& text, const std::string& token, const std::string& by)
{
    for (std::size_t at = text.find(token); at != std::string::npos; at = text.find(token, at + by.size()))
        text.replace(at, token.size(), by);
}

}  // namespace

struct CNyrInputControl::Private
{
    std::any value;                        // the value held; empty for an empty field
    long shownForm = 0;                    // the unit or format every text of the history is written in...
    bool formKnown = false;                // ...once a text was shown or typed (before: the current one)
    bool allowEmpty = false;
    bool validateOnLeave = true;
    bool valid = true;                     // the last validation passed
    bool changed = false;                  // the user changed the text since the last validation
    bool empty = true;                     // the text was blank at the last change
    bool validating = false;
    bool writing = false;                  // set while the field itself changes the text
    bool ownerSpoke = false;               // ShowMessage ran during the owner's VALIDATE call
    std::string message;
    QPointer<QObject> host;
    QPointer<QWidget> announcedTo;
    QLabel* balloon = nullptr;
};

CNyrInputControl::CNyrInputControl(QWidget* parent) : CNyrEdit(parent), d(new Private)
{
    setValidator(new CNyrInputValidator(this));
    connect(this, &QLineEdit::textChanged, this, [this] { OnTextChanged(); });
    // The window learns of a field made with a parent once the field is whole.
    QTimer::singleShot(0, this, [this] { AnnounceToWindow(); });
}

CNyrInputControl::~CNyrInputControl() = default;

bool CNyrInputControl::IsEmpty() const
{
    return text().trimmed().isEmpty();
}

void CNyrInputControl::SetAllowEmpty(bool allow)
{
    d->allowEmpty = allow;
}

bool CNyrInputControl::GetAllowEmpty() const
{
    return d->allowEmpty;
}

void CNyrInputControl::Clear()
{
    SetHeldValue({});
}

bool CNyrInputControl::IsInputValid() const
{
    return d->valid;
}

std::string CNyrInputControl::GetMessage() const
{
    return d->message;
}

bool CNyrInputControl::IsMessageShown() const
{
    return !d->message.empty();
}

void CNyrInputControl::SetValidateOnLeave(bool validate)
{
    d->validateOnLeave = validate;
}

bool CNyrInputControl::GetValidateOnLeave() const
{
    return d->validateOnLeave;
}

QObject* CNyrInputControl::Host() const
{
    return d->host;
}

const std::any& CNyrInputControl::HeldValue() const
{
    return d->value;
}

// ---------------------------------------------------------------------------
// Value and text

void CNyrInputControl::SetHeldValue(std::any value)
{
    d->value = std::move(value);
    d->writing = true;
    ResetText(d->value.has_value() ? Render(d->value) : QString(), d->value);
    d->writing = false;
    d->shownForm = CurrentForm();
    d->formKnown = true;
    d->changed = false;
    d->valid = true;
    ShowMessage({});
    emit ValueCommitted();
}

long CNyrInputControl::FormOfTexts() const
{
    return d->formKnown ? d->shownForm : CurrentForm();
}

void CNyrInputControl::Reformat()
{
    const long from = FormOfTexts();
    d->writing = true;
    RewriteStates([this, from](Snapshot& s) {
        // Typed text is read in the unit it was typed in; what does not read stays as typed.
        if (!s.value.has_value() && (s.text.trimmed().isEmpty() || !Read(s.text, s.value, from)))
            return;
        const QString text = Render(s.value);
        if (text != s.text) {
            s.text = text;
            s.cursor = s.anchor = static_cast<int>(text.size());
        }
    });
    d->writing = false;
    d->shownForm = CurrentForm();
    d->formKnown = true;
    UpdateDescription();
    update();
}

void CNyrInputControl::OnTextChanged()
{
    if (!d->formKnown) {  // the first text is typed in the unit of the moment
        d->shownForm = CurrentForm();
        d->formKnown = true;
    }
    if (!d->writing) {
        d->changed = true;
        ShowMessage({});  // a message stays until the text changes
    }
    const bool empty = IsEmpty();
    if (empty != d->empty) {
        d->empty = empty;
        NotifyOwner(WM_NYR_INPUT_CONTROL_EMPTY_CHANGED, empty ? 1 : 0);
    }
}

QValidator::State CNyrInputControl::CheckKeystroke(const QString& text) const
{
    if (!MayBecomeValid(text))
        return QValidator::Invalid;
    std::any value;
    if (text.trimmed().isEmpty() || !Read(text, value, FormOfTexts()))
        return QValidator::Intermediate;
    return RangeSide(value) == 0 ? QValidator::Acceptable : QValidator::Intermediate;
}

// ---------------------------------------------------------------------------
// Validation

int CNyrInputControl::Validate()
{
    if (d->validating)
        return d->valid ? 1 : 0;
    d->validating = true;
    // The owner may close the dialog, and with it the field, while it answers.
    const QPointer<CNyrInputControl> self(this);
    const int result = IsEmpty() ? ValidateEmpty() : ValidateText();
    if (self) {
        d->validating = false;
        d->changed = false;
    }
    return result;
}

int CNyrInputControl::ValidateEmpty()
{
    const QPointer<CNyrInputControl> self(this);
    const qintptr answer = NotifyOwner(WM_NYR_INPUT_CONTROL_VALIDATE_EMPTY, d->allowEmpty ? 1 : 0);
    if (!self)
        return 0;
    if (answer < 0 || (answer == 0 && !d->allowEmpty))
        return Fail(NyrLoadString(NYR_IDS_INPUT_EMPTY));
    Commit({});
    return 1;
}

int CNyrInputControl::ValidateText()
{
    std::any value = CurrentValue();
    if (!value.has_value() && !Read(text(), value, FormOfTexts()))
        return Fail(NyrLoadString(InvalidTextId()));
    if (const int side = RangeSide(value))
        return Fail(RangeMessage(side));
    if (const unsigned int id = CheckValue(value))
        return Fail(NyrLoadString(id));

    std::any previous = std::exchange(d->value, value);
    d->ownerSpoke = false;
    const QPointer<CNyrInputControl> self(this);
    if (NotifyOwner(WM_NYR_INPUT_CONTROL_VALIDATE, 0) != 0) {
        if (!self)
            return 0;
        d->value = std::move(previous);
        return Fail(d->ownerSpoke ? d->message : NyrLoadString(InvalidTextId()));
    }
    if (!self)
        return 1;
    Commit(std::move(value));
    return 1;
}

void CNyrInputControl::Commit(std::any value)
{
    d->value = value;
    // The text as the unit writes the value ("12.5" shows as 12° 30' 00.00000").
    d->writing = true;
    const QString shown = value.has_value() ? Render(value) : text();
    ReplaceTextAsStep(shown, std::move(value));
    d->writing = false;
    d->valid = true;
    ShowMessage({});
    emit ValueCommitted();
}

int CNyrInputControl::Fail(const std::string& message)
{
    ShowMessage(message);
    d->valid = false;
    return 0;
}

std::string CNyrInputControl::RangeMessage(int side) const
{
    const bool both = !BoundText(false).empty() && !BoundText(true).empty();
    return BoundMessage(both ? NYR_IDS_INPUT_RANGE : side < 0 ? NYR_IDS_INPUT_MINIMUM : NYR_IDS_INPUT_MAXIMUM);
}

std::string CNyrInputControl::BoundText(bool maximum) const
{
    const std::any bound = Bound(maximum);
    return bound.has_value() ? Render(bound).toStdString() : std::string();
}

std::string CNyrInputControl::BoundMessage(unsigned int id) const
{
    std::string text = NyrLoadString(id);
    ReplaceAll(text, "%MIN", BoundText(false));
    ReplaceAll(text, "%MAX", BoundText(true));
    return text;
}

// ---------------------------------------------------------------------------
// Messages next to the field

void CNyrInputControl::ShowMessage(const std::string& text)
{
    if (d->validating && !text.empty())
        d->ownerSpoke = true;
    if (text.empty() && d->message.empty())
        return;
    d->message = text;
    if (!text.empty())
        d->valid = false;
    if (!d->balloon) {
        // A tool tip window: it takes no focus and goes with the field.
        d->balloon = new QLabel(this, Qt::ToolTip);
        d->balloon->setObjectName(QStringLiteral("nyrInputMessage"));
        d->balloon->setForegroundRole(QPalette::ToolTipText);
        d->balloon->setBackgroundRole(QPalette::ToolTipBase);
        d->balloon->setAutoFillBackground(true);
        d->balloon->setFrameShape(QFrame::Box);
        d->balloon->setMargin(3);
    }
    d->balloon->setText(QString::fromStdString(text));
    PlaceBalloon();
    UpdateDescription();
}

void CNyrInputControl::Refuse(const std::string& message)
{
    ShowMessage(message.empty() ? NyrLoadString(InvalidTextId()) : message);
}

void CNyrInputControl::PlaceBalloon()
{
    if (!d->balloon)
        return;
    if (d->message.empty() || !isVisible()) {
        d->balloon->hide();
        return;
    }
    d->balloon->adjustSize();
    d->balloon->move(mapToGlobal(QPoint(0, height() + 2)));
    d->balloon->show();
}

std::string CNyrInputControl::Description() const
{
    static constexpr unsigned int kNames[] = {0,
                                              NYR_IDS_FIELD_INTEGER,
                                              NYR_IDS_FIELD_NUMBER,
                                              NYR_IDS_FIELD_TEXT,
                                              NYR_IDS_FIELD_FILE_NAME,
                                              NYR_IDS_FIELD_ANGLE,
                                              NYR_IDS_FIELD_DISTANCE,
                                              NYR_IDS_FIELD_LATITUDE,
                                              NYR_IDS_FIELD_LONGITUDE,
                                              NYR_IDS_FIELD_DATE_TIME,
                                              NYR_IDS_FIELD_TIME_SPAN};
    const int kind = Kind();
    return kind > 0 && kind < static_cast<int>(std::size(kNames)) ? NyrLoadString(kNames[kind]) : std::string();
}

void CNyrInputControl::UpdateDescription()
{
    setAccessibleDescription(QString::fromStdString(d->message.empty() ? Description() : d->message));
}

// ---------------------------------------------------------------------------
// Events

bool CNyrInputControl::HandleMessage(unsigned int message, quintptr wParam)
{
    if (message == WM_NYR_INPUT_CONTROL_HOOK_DLG_CTRL) {
        d->host = reinterpret_cast<QObject*>(wParam);
        return true;
    }
    if (message == WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL) {
        d->host = nullptr;
        return true;
    }
    if (FollowsMessage(message)) {
        Reformat();
        return true;
    }
    return false;
}

void CNyrInputControl::CommitInline(qintptr how)
{
    const QPointer<QObject> host = d->host;
    const QPointer<CNyrInputControl> self(this);
    if (host && Validate() && host && self)
        NyrSendMessage(host, WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE, reinterpret_cast<quintptr>(this), how);
}

bool CNyrInputControl::event(QEvent* e)
{
    if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
        if (HandleMessage(m->Message(), m->WParam())) {
            m->SetResult(1);
            return true;
        }
    } else if (e->type() == QEvent::KeyPress && d->host) {
        // Tab moves on from cell to cell, not from widget to widget.
        const auto* k = static_cast<QKeyEvent*>(e);
        if (k->key() == Qt::Key_Tab || k->key() == Qt::Key_Backtab) {
            const bool back = k->key() == Qt::Key_Backtab || (k->modifiers() & Qt::ShiftModifier);
            CommitInline(back ? -1 : 1);
            return true;
        }
    } else if (e->type() == QEvent::ParentChange) {
        AnnounceToWindow();
    }
    return CNyrEdit::event(e);
}

void CNyrInputControl::AnnounceToWindow()
{
    QWidget* w = window();
    if (w == this || w == d->announcedTo)
        return;
    d->announcedTo = w;
    NyrSendMessage(w, WM_NYR_INPUT_CONTROL_CHILD_ADDED, reinterpret_cast<quintptr>(this), 0);
}

void CNyrInputControl::keyPressEvent(QKeyEvent* e)
{
    if (d->host && (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter)) {
        CommitInline(0);
    } else if (d->host && e->key() == Qt::Key_Escape) {
        NyrSendMessage(d->host, WM_NYR_INPUT_CONTROL_CANCEL_INLINE, reinterpret_cast<quintptr>(this), 0);
    } else {
        CNyrEdit::keyPressEvent(e);
        return;
    }
    e->accept();
}

bool CNyrInputControl::LeavingForCancel() const
{
    QWidget* next = QApplication::focusWidget();
    if (!next || next == this)
        return false;
    if (next->property("nyrNoValidate").toBool())
        return true;
    auto* button = qobject_cast<QAbstractButton*>(next);
    for (QWidget* p = button ? button->parentWidget() : nullptr; p; p = p->parentWidget()) {
        if (auto* box = qobject_cast<QDialogButtonBox*>(p))
            return box->buttonRole(button) == QDialogButtonBox::RejectRole;
    }
    return false;
}

void CNyrInputControl::focusOutEvent(QFocusEvent* e)
{
    CNyrEdit::focusOutEvent(e);
    // A context menu, a message box or another window takes the focus for a while.
    if (e->reason() == Qt::PopupFocusReason || e->reason() == Qt::ActiveWindowFocusReason)
        return;
    if (d->host)
        CommitInline(2);
    else if (d->validateOnLeave && d->changed && !LeavingForCancel())
        Validate();
}

void CNyrInputControl::showEvent(QShowEvent* e)
{
    CNyrEdit::showEvent(e);
    UpdateDescription();
    PlaceBalloon();
}

void CNyrInputControl::hideEvent(QHideEvent* e)
{
    if (d->balloon)
        d->balloon->hide();
    CNyrEdit::hideEvent(e);
}

void CNyrInputControl::moveEvent(QMoveEvent* e)
{
    CNyrEdit::moveEvent(e);
    if (d->balloon && d->balloon->isVisible())
        PlaceBalloon();
}
