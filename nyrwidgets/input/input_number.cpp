#include "nyrwidgets/input/input_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "nyr/frame/text_ids.h"
#include "nyrwidgets/input/input_range_p.h"

namespace {

bool IsBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

bool IsDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Whether `text` can still grow into: blanks, a sign, digits, with
// `decimals` a point and digits and an exponent, blanks. A '-' in front is
// refused unless `minus`. `maxDigits` limits the digits before the point.
bool IsNumberPrefix(QStringView text, bool decimals, bool minus, int maxDigits)
{
    qsizetype i = 0;
    const qsizetype n = text.size();
    const auto digits = [&] {
        const qsizetype start = i;
        while (i < n && IsDigit(text[i]))
            ++i;
        return i - start;
    };
    while (i < n && IsBlank(text[i]))
        ++i;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) {
        if (text[i] == u'-' && !minus)
            return false;
        ++i;
    }
    qsizetype mantissa = digits();
    if (mantissa > maxDigits)
        return false;
    if (decimals && i < n && text[i] == u'.') {
        ++i;
        mantissa += digits();
    }
    if (decimals && mantissa > 0 && i < n && (text[i] == u'e' || text[i] == u'E')) {
        ++i;
        if (i < n && (text[i] == u'+' || text[i] == u'-'))
            ++i;
        if (digits() > 4)  // beyond 1e9999 nothing is finite
            return false;
    }
    if (mantissa > 0)
        while (i < n && IsBlank(text[i]))
            ++i;
    return i == n;
}

// The text between blanks, as ASCII bytes; empty when something else is in it.
std::string Core(const QString& text)
{
    const QString core = text.trimmed();
    std::string out;
    out.reserve(static_cast<std::size_t>(core.size()));
    for (QChar c : core) {
        if (c.unicode() > 0x7F)
            return {};
        out.push_back(static_cast<char>(c.unicode()));
    }
    return out;
}

// Drops one leading '+', which std::from_chars does not take.
const char* SkipPlus(const std::string& text)
{
    return text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+' ? text.data() + 1 : text.data();
}

}  // namespace

// ---------------------------------------------------------------------------
// Integer

struct CNyrInputInteger::Private
{
    nyr::input::Range<long long> range;
};

CNyrInputInteger::CNyrInputInteger(QWidget* parent) : CNyrInputControl(parent), d(new Private)
{
}

CNyrInputInteger::~CNyrInputInteger() = default;

int CNyrInputInteger::Kind() const
{
    return NYR_INPUT_INTEGER;
}

long long CNyrInputInteger::GetValue() const
{
    return HeldValueOr(0LL);
}

void CNyrInputInteger::SetValue(long long value)
{
    SetHeldValue(value);
}

void CNyrInputInteger::SetRange(long long minimum, long long maximum)
{
    d->range.Set(minimum, maximum);
}

void CNyrInputInteger::SetMinimum(long long minimum)
{
    d->range.minimum = minimum;
}

void CNyrInputInteger::SetMaximum(long long maximum)
{
    d->range.maximum = maximum;
}

void CNyrInputInteger::ClearRange()
{
    d->range.Clear();
}

QString CNyrInputInteger::Render(const std::any& value) const
{
    return QString::number(std::any_cast<long long>(value));
}

bool CNyrInputInteger::Read(const QString& text, std::any& value, long) const
{
    const std::string core = Core(text);
    if (core.empty())
        return false;
    long long number = 0;
    const char* first = SkipPlus(core);
    const char* last = core.data() + core.size();
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end != last)
        return false;
    value = number;
    return true;
}

bool CNyrInputInteger::MayBecomeValid(const QString& text) const
{
    return IsNumberPrefix(text, false, !d->range.minimum || *d->range.minimum < 0, 19);
}

int CNyrInputInteger::RangeSide(const std::any& value) const
{
    return d->range.Side(value);
}

std::any CNyrInputInteger::Bound(bool maximum) const
{
    return d->range.Bound(maximum);
}

unsigned int CNyrInputInteger::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_INTEGER;
}

// ---------------------------------------------------------------------------
// Floating number

struct CNyrInputFloat::Private
{
    int precision = 6;
    bool trim = false;
    nyr::input::Range<double> range;
};

CNyrInputFloat::CNyrInputFloat(QWidget* parent) : CNyrInputControl(parent), d(new Private)
{
}

CNyrInputFloat::~CNyrInputFloat() = default;

int CNyrInputFloat::Kind() const
{
    return NYR_INPUT_FLOAT;
}

double CNyrInputFloat::GetValue() const
{
    return HeldValueOr(0.0);
}

void CNyrInputFloat::SetValue(double value)
{
    SetHeldValue(std::isfinite(value) ? std::any(value + 0.0) : std::any());
}

void CNyrInputFloat::SetPrecision(int decimals)
{
    d->precision = std::clamp(decimals, 0, 15);
    Reformat();
}

int CNyrInputFloat::GetPrecision() const
{
    return d->precision;
}

void CNyrInputFloat::SetTrimTrailingZeros(bool trim)
{
    d->trim = trim;
    Reformat();
}

bool CNyrInputFloat::GetTrimTrailingZeros() const
{
    return d->trim;
}

void CNyrInputFloat::SetRange(double minimum, double maximum)
{
    d->range.Set(minimum, maximum);
}

void CNyrInputFloat::SetMinimum(double minimum)
{
    d->range.minimum = minimum;
}

void CNyrInputFloat::SetMaximum(double maximum)
{
    d->range.maximum = maximum;
}

void CNyrInputFloat::ClearRange()
{
    d->range.Clear();
}

QString CNyrInputFloat::Render(const std::any& value) const
{
    char buffer[400];  // 1.8e308 in fixed notation with 15 decimals fits
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, std::any_cast<double>(value), std::chars_format::fixed,
                      d->precision);
    std::string text(buffer, error == std::errc() ? end : buffer);
    if (text.find_first_not_of("-0.") == std::string::npos && text[0] == '-')
        text.erase(0, 1);  // a number that rounds to zero has no sign: "-0.0" would not read back as typed
    if (d->trim && text.find('.') != std::string::npos) {
        while (text.back() == '0' && text[text.size() - 2] != '.')
            text.pop_back();
    }
    return QString::fromLatin1(text);
}

bool CNyrInputFloat::Read(const QString& text, std::any& value, long) const
{
    const std::string core = Core(text);
    if (core.empty())
        return false;
    double number = 0;
    const char* first = SkipPlus(core);
    const char* last = core.data() + core.size();
    const auto [end, error] = std::from_chars(first, last, number, std::chars_format::general);
    if (error != std::errc() || end != last || !std::isfinite(number))
        return false;
    value = number + 0.0;
    return true;
}

bool CNyrInputFloat::MayBecomeValid(const QString& text) const
{
    return IsNumberPrefix(text, true, !d->range.minimum || *d->range.minimum < 0, 309);
}

int CNyrInputFloat::RangeSide(const std::any& value) const
{
    return d->range.Side(value);
}

std::any CNyrInputFloat::Bound(bool maximum) const
{
    return d->range.Bound(maximum);
}

unsigned int CNyrInputFloat::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_NUMBER;
}
