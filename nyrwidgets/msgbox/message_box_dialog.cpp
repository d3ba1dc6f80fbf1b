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
    {kOk, NYR_IDOK, 26099},           {kOkToAll, NYR_IDOKTOALL, 26112},     {kYes, NYR_IDYES, 26101},
    {kYesToAll, NYR_IDYESTOALL, 26109}, {kNo, NYR_IDNO, 26102},             {kNoToAll, NYR_IDNOTOALL, 26108},
    {kAbort, NYR_IDABORT, 26103},     {kRetry, NYR_IDRETRY, 26105},         {kTryAgain, NYR_IDTRYAGAIN, 26113},
    {kIgnore, NYR_IDIGNORE, 26104},   {kIgnoreAll, NYR_IDIGNOREALL, 26110}, {kContinue, NYR_IDCONTINUE, 26114},
    {kCancel, NYR_IDCANCEL, 26100},
};
constexpr unsigned kSkipCaption = 26106;
constexpr unsigned kSkipAllCaption = 26107;
constexpr unsigned kDoNotPromptCaption = 26115;

struct ButtonSet
{
    unsigned kinds;
    int cancelValue;
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

struct CNyrMessageBoxDialog::Private
{
    std::vector<std::pair<int, QPushButton*>> buttons;  // display order
    QCheckBox* doNotPrompt = nullptr;                   // null when not offered
    int defaultResult = NYR_IDOK;
    int cancelValue = NYR_IDCANCEL;
};

CNyrMessageBoxDialog::CNyrMessageBoxDialog(QWidget* parent, const char* text, const char* caption, unsigned style,
                                           int defaultValue, int offerDoNotPrompt)
    : QDialog(parent), d(std::make_unique<Private>())
{
    setWindowTitle(FromUtf8(caption));
    setModal(true);

    const unsigned setIndex = style & NYR_MB_TYPEMASK;
    const ButtonSet& set = setIndex < std::size(kSets) ? kSets[setIndex] : kSets[0];
    d->cancelValue = set.cancelValue;
    unsigned kinds = set.kinds;
    if (style & NYR_MB_OKTOALL)
        kinds |= kOkToAll;
    if (style & NYR_MB_YESTOALL)
        kinds |= kYesToAll;
    if (style & NYR_MB_NOTOALL)
        kinds |= kNoToAll;
    if (style & (NYR_MB_IGNOREALL | NYR_MB_SKIPALL))
        kinds |= kIgnoreAll;
    if (style & NYR_MB_SKIP)
        kinds |= kIgnore;

    auto* top = new QVBoxLayout(this);
    top->setSizeConstraint(QLayout::SetFixedSize);
    auto* body = new QHBoxLayout;
    top->addLayout(body);

    if (const auto pixmap = IconFor(style)) {
        auto* icon = new QLabel(this);
        icon->setObjectName("icon");
        const int size = this->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
        icon->setPixmap(this->style()->standardIcon(*pixmap, nullptr, this).pixmap(size, size));
        icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
        body->addWidget(icon, 0, Qt::AlignTop);
    }

    auto* textColumn = new QVBoxLayout;
    body->addLayout(textColumn, 1);
    auto* label = new QLabel(FromUtf8(text), this);
    label->setObjectName("text");
    label->setTextFormat(Qt::PlainText);  // a message is never markup
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * 40);
    textColumn->addWidget(label);
    if (offerDoNotPrompt) {
        d->doNotPrompt = new QCheckBox(QString::fromStdString(NyrLoadString(kDoNotPromptCaption)), this);
        d->doNotPrompt->setObjectName("doNotPrompt");
        textColumn->addSpacing(label->fontMetrics().height() / 2);
        textColumn->addWidget(d->doNotPrompt);
    }
    textColumn->addStretch();

    auto* row = new QHBoxLayout;
    row->addStretch();
    top->addLayout(row);
    int width = 0;
    QString mnemonics;
    for (const ButtonKind& kind : kOrder) {
        if (!(kinds & kind.kind))
            continue;
        unsigned captionId = kind.captionId;
        if (kind.kind == kIgnore && (style & NYR_MB_SKIP))
            captionId = kSkipCaption;
        else if (kind.kind == kIgnoreAll && (style & NYR_MB_SKIPALL))
            captionId = kSkipAllCaption;
        auto* button = new QPushButton(FreeMnemonic(QString::fromStdString(NyrLoadString(captionId)), mnemonics), this);
        const int result = kind.result;
        connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
        row->addWidget(button);
        d->buttons.emplace_back(result, button);
        width = std::max(width, button->sizeHint().width());
    }
    for (auto& [result, button] : d->buttons)
        button->setFixedWidth(width);

    auto chosen = std::find_if(d->buttons.begin(), d->buttons.end(),
                               [defaultValue](const auto& b) { return b.first == defaultValue; });
    if (chosen == d->buttons.end()) {
        const std::size_t nth = (style & NYR_MB_DEFMASK) >> 8;
        chosen = d->buttons.begin() + (nth < d->buttons.size() ? nth : 0);
    }
    d->defaultResult = chosen->first;
    chosen->second->setDefault(true);
    chosen->second->setFocus(Qt::OtherFocusReason);
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
