#include "nyrwidgets/msgbox/message_box_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <optional>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/msgbox/message_box_p.h"

namespace {

// The kinds of button a row can show.
enum : unsigned {
    kOk = 1u << 0,
    kOkToAll = 1u << 1,
    kYes = 1u << 2,
    kYesToAll = 1u << 3,
    kNo = 1u << 4,
    kNoToAll = 1u << 5,
    kAbort = 1u << 6,
    kRetry = 1u << 7,
    kTryAgain = 1u << 8,
    kIgnore = 1u << 9,
    kIgnoreAll = 1u << 10,
    kContinue = 1u << 11,
    kCancel = 1u << 12,
};

struct ButtonKind
{
    unsigned kind;
    int result;
    unsigned captionId;  // text table
};

// Every button in the row's fixed order.
constexpr ButtonKind kOrder[] = {
    {kOk, NYR_IDOK, NYR_IDS_BUTTON_OK},
    {kOkToAll, NYR_IDOKTOALL, NYR_IDS_BUTTON_OK_TO_ALL},
    {kYes, NYR_IDYES, NYR_IDS_BUTTON_YES},
    {kYesToAll, NYR_IDYESTOALL, NYR_IDS_BUTTON_YES_TO_ALL},
    {kNo, NYR_IDNO, NYR_IDS_BUTTON_NO},
    {kNoToAll, NYR_IDNOTOALL, NYR_IDS_BUTTON_NO_TO_ALL},
    {kAbort, NYR_IDABORT, NYR_IDS_BUTTON_ABORT},
    {kRetry, NYR_IDRETRY, NYR_IDS_BUTTON_RETRY},
    {kTryAgain, NYR_IDTRYAGAIN, NYR_IDS_BUTTON_TRY_AGAIN},
    {kIgnore, NYR_IDIGNORE, NYR_IDS_BUTTON_IGNORE},
    {kIgnoreAll, NYR_IDIGNOREALL, NYR_IDS_BUTTON_IGNORE_ALL},
    {kContinue, NYR_IDCONTINUE, NYR_IDS_BUTTON_CONTINUE},
    {kCancel, NYR_IDCANCEL, NYR_IDS_BUTTON_CANCEL},
};

struct ButtonSet
{
    unsigned kinds;
    int cancelValue;
};

// The extended buttons' flags; a flag whose button the set shows already
// adds nothing. "&Skip" is the Ignore button under another caption, "Skip
// &all" the Ignore-all button.
constexpr std::pair<unsigned, unsigned> kExtended[] = {
    {NYR_MB_OKTOALL, kOkToAll},     {NYR_MB_YESTOALL, kYesToAll}, {NYR_MB_NOTOALL, kNoToAll},
    {NYR_MB_IGNOREALL, kIgnoreAll}, {NYR_MB_SKIPALL, kIgnoreAll}, {NYR_MB_SKIP, kIgnore},
};

// The platform's seven sets; styles 7 to 15 fall back to the first.
constexpr ButtonSet kSets[] = {
    {kOk, NYR_IDOK},
    {kOk | kCancel, NYR_IDCANCEL},
    {kAbort | kRetry | kIgnore, NYR_IDABORT},
    {kYes | kNo | kCancel, NYR_IDCANCEL},
    {kYes | kNo, NYR_IDNO},
    {kRetry | kCancel, NYR_IDCANCEL},
    {kTryAgain | kContinue | kCancel, NYR_IDCANCEL},
};

std::optional<QStyle::StandardPixmap> IconFor(unsigned style)
{
    switch (style & NYR_MB_ICONMASK) {
    case NYR_MB_ICONERROR: return QStyle::SP_MessageBoxCritical;
    case NYR_MB_ICONQUESTION: return QStyle::SP_MessageBoxQuestion;
    case NYR_MB_ICONWARNING: return QStyle::SP_MessageBoxWarning;
    case NYR_MB_ICONINFORMATION: return QStyle::SP_MessageBoxInformation;
    default: return std::nullopt;
    }
}

QString FromUtf8(const char* text)
{
    return text ? QString::fromUtf8(text) : QString();
}

// The caption with its mnemonic on a letter no earlier button of the row
// took: its own letter when that is free, else the first free letter that
// starts a word, else any free letter, else none. Some sets with extended
// buttons would give two buttons one letter ("No &to all" beside "&Try
// again"). `used` collects the letters taken, in lower case. Captions
// without a mnemonic are left as they are.
QString FreeMnemonic(const QString& caption, QString& used)
{
    QString plain;
    qsizetype marked = -1;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == QLatin1Char('&') && i + 1 < caption.size() && caption[i + 1] != QLatin1Char('&')) {
            marked = plain.size();
            continue;
        }
        plain += caption[i];
        if (caption[i] == QLatin1Char('&'))
            plain += caption[++i];  // "&&", a literal ampersand
    }
    const auto freeAt = [&](qsizetype i) { return plain[i].isLetterOrNumber() && !used.contains(plain[i].toLower()); };
    const auto take = [&](qsizetype i) {
        used += plain[i].toLower();
        return plain.left(i) + QLatin1Char('&') + plain.mid(i);
    };
    if (marked < 0)
        return caption;
    if (marked < plain.size() && freeAt(marked))
        return take(marked);
    for (const bool wordStart : {true, false}) {
        for (qsizetype i = 0; i < plain.size(); ++i) {
            if (freeAt(i) && (!wordStart || i == 0 || plain[i - 1].isSpace()))
                return take(i);
        }
    }
    return plain;
}

CNyrMessageBoxDialog::AnswerHook& Hook()
{
    static CNyrMessageBoxDialog::AnswerHook hook;
    return hook;
}

}  // namespace

bool nyr::msgbox::IsResultCode(int result)
{
    return CaptionId(result) != 0;
}

unsigned nyr::msgbox::CaptionId(int result)
{
    for (const ButtonKind& kind : kOrder)
        if (kind.result == result)
            return kind.captionId;
    return 0;
}

nyr::msgbox::ButtonRow nyr::msgbox::ChooseButtons(unsigned style, int defaultValue)
{
    const unsigned setIndex = style & NYR_MB_TYPEMASK;
    const ButtonSet& set = setIndex < std::size(kSets) ? kSets[setIndex] : kSets[0];
    unsigned kinds = set.kinds;
    for (const auto& [flag, kind] : kExtended) {
        if (style & flag)
            kinds |= kind;
    }
    ButtonRow row{{}, set.cancelValue, 0};
    for (const ButtonKind& kind : kOrder) {
        if (!(kinds & kind.kind))
            continue;
        unsigned captionId = kind.captionId;
        if (kind.kind == kIgnore && (style & NYR_MB_SKIP))
            captionId = NYR_IDS_BUTTON_SKIP;
        else if (kind.kind == kIgnoreAll && (style & NYR_MB_SKIPALL))
            captionId = NYR_IDS_BUTTON_SKIP_ALL;
        row.buttons.push_back({kind.result, captionId});
    }
    // The remembered answer when the row shows it, else the style's default
    // button; one beyond the row is the first.
    const auto remembered = std::find_if(row.buttons.begin(), row.buttons.end(),
                                         [defaultValue](const ButtonRow::Button& b) { return b.result == defaultValue; });
    const std::size_t nth = (style & NYR_MB_DEFMASK) >> 8;
    if (remembered != row.buttons.end())
        row.defaultIndex = static_cast<std::size_t>(remembered - row.buttons.begin());
    else
        row.defaultIndex = nth < row.buttons.size() ? nth : 0;
    return row;
}

struct CNyrMessageBoxDialog::Private
{
    std::vector<std::pair<int, QPushButton*>> buttons;  // display order
    QCheckBox* doNotPrompt = nullptr;                   // null when not offered
    int defaultResult = NYR_IDOK;
    int cancelValue = NYR_IDCANCEL;

    // The style's icon, if it names one, at the top left.
    static void AddIcon(QDialog* dialog, QHBoxLayout* body, unsigned style)
    {
        const auto pixmap = IconFor(style);
        if (!pixmap)
            return;
        auto* icon = new QLabel(dialog);
        icon->setObjectName("icon");
        const int size = dialog->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, dialog);
        icon->setPixmap(dialog->style()->standardIcon(*pixmap, nullptr, dialog).pixmap(size, size));
        icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
        body->addWidget(icon, 0, Qt::AlignTop);
    }

    // The text, never markup, and under it the check box when offered.
    void AddText(QDialog* dialog, QHBoxLayout* body, const char* text, bool offerDoNotPrompt)
    {
        auto* column = new QVBoxLayout;
        body->addLayout(column, 1);
        auto* label = new QLabel(FromUtf8(text), dialog);
        label->setObjectName("text");
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setMinimumWidth(label->fontMetrics().averageCharWidth() * 40);
        column->addWidget(label);
        if (offerDoNotPrompt) {
            doNotPrompt = new QCheckBox(QString::fromStdString(NyrLoadString(NYR_IDS_MSGBOX_DO_NOT_PROMPT)), dialog);
            doNotPrompt->setObjectName("doNotPrompt");
            column->addSpacing(label->fontMetrics().height() / 2);
            column->addWidget(doNotPrompt);
        }
        column->addStretch();
    }

    // The row, right-aligned, every button as wide as the widest; the
    // default button takes the focus.
    void AddButtons(CNyrMessageBoxDialog* dialog, QVBoxLayout* top, const nyr::msgbox::ButtonRow& row)
    {
        auto* line = new QHBoxLayout;
        line->addStretch();
        top->addLayout(line);
        int width = 0;
        QString mnemonics;
        for (const nyr::msgbox::ButtonRow::Button& b : row.buttons) {
            auto* button = new QPushButton(FreeMnemonic(QString::fromStdString(NyrLoadString(b.captionId)), mnemonics),
                                           dialog);
            const int result = b.result;
            QObject::connect(button, &QPushButton::clicked, dialog, [dialog, result] { dialog->done(result); });
            line->addWidget(button);
            buttons.emplace_back(result, button);
            width = std::max(width, button->sizeHint().width());
        }
        for (auto& [result, button] : buttons)
            button->setFixedWidth(width);
        cancelValue = row.cancelValue;
        QPushButton* chosen = buttons[row.defaultIndex].second;
        defaultResult = buttons[row.defaultIndex].first;
        chosen->setDefault(true);
        chosen->setFocus(Qt::OtherFocusReason);
    }
};

CNyrMessageBoxDialog::CNyrMessageBoxDialog(QWidget* parent, const char* text, const char* caption, unsigned style,
                                           int defaultValue, int offerDoNotPrompt)
    : QDialog(parent), d(std::make_unique<Private>())
{
    setWindowTitle(FromUtf8(caption));
    setModal(true);
    auto* top = new QVBoxLayout(this);
    top->setSizeConstraint(QLayout::SetFixedSize);
    auto* body = new QHBoxLayout;
    top->addLayout(body);
    Private::AddIcon(this, body, style);
    d->AddText(this, body, text, offerDoNotPrompt != 0);
    d->AddButtons(this, top, nyr::msgbox::ChooseButtons(style, defaultValue));
}

CNyrMessageBoxDialog::~CNyrMessageBoxDialog() = default;

int CNyrMessageBoxDialog::ShowMessageBox()
{
    if (const AnswerHook hook = Hook()) {
        const int answer = hook(*this);
        if (!Button(answer)) {
            SetDoNotPromptUser(false);
            return d->cancelValue;
        }
        return answer;
    }
    const QPointer<QWidget> focus = QApplication::focusWidget();
    const QPointer<CNyrMessageBoxDialog> self(this);
    const int cancelValue = d->cancelValue;
    int result = exec();
    if (!self)
        result = cancelValue;  // destroyed with its parent while up
    if (focus) {
        focus->activateWindow();
        focus->setFocus(Qt::OtherFocusReason);
    }
    return result;
}

int CNyrMessageBoxDialog::GetDoNotPromptUser() const
{
    return d->doNotPrompt && d->doNotPrompt->isChecked() ? 1 : 0;
}

void CNyrMessageBoxDialog::SetDoNotPromptUser(bool tick)
{
    if (d->doNotPrompt)
        d->doNotPrompt->setChecked(tick);
}

std::vector<int> CNyrMessageBoxDialog::ButtonResults() const
{
    std::vector<int> results;
    for (const auto& b : d->buttons)
        results.push_back(b.first);
    return results;
}

QPushButton* CNyrMessageBoxDialog::Button(int result) const
{
    for (const auto& b : d->buttons)
        if (b.first == result)
            return b.second;
    return nullptr;
}

int CNyrMessageBoxDialog::DefaultResult() const
{
    return d->defaultResult;
}

int CNyrMessageBoxDialog::CancelValue() const
{
    return d->cancelValue;
}

CNyrMessageBoxDialog::AnswerHook CNyrMessageBoxDialog::SetAnswerHook(AnswerHook hook)
{
    AnswerHook previous = std::move(Hook());
    Hook() = std::move(hook);
    return previous;
}

void CNyrMessageBoxDialog::reject()
{
    done(d->cancelValue);
}
