#include "nyrwidgets/input/input_time.h"

#include <algorithm>
#include <bitset>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/ascii_p.h"
#include "nyrwidgets/input/input_range_p.h"
#include "nyrwidgets/input/time_text_p.h"

using nyr::input::TimePart;

namespace {

// The characters, letters in both cases.
std::bitset<128> Characters(std::string_view characters)
{
    std::bitset<128> set;
    for (char c : characters) {
        set.set(static_cast<unsigned char>(c));
        set.set(static_cast<unsigned char>(nyr::ascii::ToUpper(c)));
    }
    return set;
}

bool OnlyCharacters(const QString& text, const std::bitset<128>& allowed)
{
    return std::all_of(text.begin(), text.end(),
                       [&allowed](QChar c) { return c.unicode() < 128 && allowed.test(c.unicode()); });
}

// The pattern a text of the date/time field was written with: the format of
// that index, the current one as it stands (a stored 32 uses row 0's).
std::string PatternOf(long form)
{
    if (form == CNyrTime::CurrentTimeFormatIndex())
        return CNyrTime::CurrentTimeFormat();
    const char* pattern = CNyrTime::TimeFormatPattern(static_cast<int>(form));
    return pattern ? pattern : CNyrTime::TimeFormatPattern(0);
}

constexpr const char* kSpanPattern = "%h:%M:%S";

}  // namespace

// ---------------------------------------------------------------------------
// Date and time

struct CNyrInputDateTime::Private
{
    ePart part;
    int digits = 0;
    nyr::input::Range<CNyrTime> range;

    TimePart Part() const { return static_cast<TimePart>(part); }
};

CNyrInputDateTime::CNyrInputDateTime(QWidget* parent, ePart part) : CNyrInputControl(parent), d(new Private{part})
{
}

CNyrInputDateTime::~CNyrInputDateTime() = default;

int CNyrInputDateTime::Kind() const
{
    return NYR_INPUT_DATETIME;
}

CNyrTime CNyrInputDateTime::GetValue() const
{
    return HeldValueOr(CNyrTime(int64_t{0}));
}

void CNyrInputDateTime::SetValue(const CNyrTime& time)
{
    SetHeldValue(time);
}

void CNyrInputDateTime::SetPart(ePart part)
{
    d->part = part;
    Reformat();
}

CNyrInputDateTime::ePart CNyrInputDateTime::GetPart() const
{
    return d->part;
}

void CNyrInputDateTime::SetFractionDigits(int digits)
{
    d->digits = std::clamp(digits, 0, 3);
    Reformat();
}

int CNyrInputDateTime::GetFractionDigits() const
{
    return d->digits;
}

void CNyrInputDateTime::SetRange(const CNyrTime& earliest, const CNyrTime& latest)
{
    d->range.Set(earliest, latest);
}

void CNyrInputDateTime::SetMinimum(const CNyrTime& earliest)
{
    d->range.minimum = earliest;
}

void CNyrInputDateTime::SetMaximum(const CNyrTime& latest)
{
    d->range.maximum = latest;
}

void CNyrInputDateTime::ClearRange()
{
    d->range.Clear();
}

QString CNyrInputDateTime::Render(const std::any& value) const
{
    CNyrTime time = std::any_cast<CNyrTime>(value);
    const std::string pattern = nyr::input::PatternPart(CNyrTime::CurrentTimeFormat(), d->Part());
    if (d->digits == 0)
        return QString::fromStdString(time.Format(pattern, CNyrTimeHelper::eRoundSecond));
    CNyrTimeHelper::Round(time, nyr::input::FractionRounding(d->digits));
    return QString::fromStdString(
        time.Format(nyr::input::WithFraction(pattern, time.GetFracSecond(), d->digits), CNyrTimeHelper::eRoundNone));
}

bool CNyrInputDateTime::Read(const QString& text, std::any& value, long form) const
{
    const std::string utf8 = text.toStdString();
    // A date alone keeps the time of day held (midnight for none); a time
    // alone keeps the date (today for none).
    const auto* held = std::any_cast<CNyrTime>(&HeldValue());
    CNyrTime base(int64_t{0});  // made only when a part needs it: it costs a local-time conversion
    if (d->part != eDateTime)
        base = held ? *held : d->part == eTime ? CNyrTime() : CNyrTime(2000, 1, 1, 0, 0, 0);
    CNyrTime time(int64_t{0});
    if (!nyr::input::ReadTimeNumber(utf8, time) &&
        !nyr::input::ReadTimeText(utf8, PatternOf(form), d->Part(), base, time))
        return false;
    value = time;
    return true;
}

long CNyrInputDateTime::CurrentForm() const
{
    return CNyrTime::CurrentTimeFormatIndex();
}

bool CNyrInputDateTime::FollowsMessage(unsigned int message) const
{
    return message == WM_NYR_FORMAT_CHANGED_TIME;
}

bool CNyrInputDateTime::MayBecomeValid(const QString& text) const
{
    // Digits, separators, the month names, AM and PM, the MJD and GPS prefixes.
    static const std::bitset<128> allowed = Characters(
        "0123456789 \t./-:,"
        "januaryfebruarymarchaprilmayjunejulyaugustseptemberoctobernovemberdecember"
        "ampm" "mjd" "gps");
    return OnlyCharacters(text, allowed);
}

int CNyrInputDateTime::RangeSide(const std::any& value) const
{
    return d->range.Side(value);
}

std::any CNyrInputDateTime::Bound(bool maximum) const
{
    return d->range.Bound(maximum);
}

unsigned int CNyrInputDateTime::InvalidTextId() const
{
    return d->part == eTime ? NYR_IDS_INPUT_BAD_TIME : NYR_IDS_INPUT_BAD_DATE;
}

std::string CNyrInputDateTime::Description() const
{
    static constexpr unsigned int kNames[] = {NYR_IDS_FIELD_DATE_TIME, NYR_IDS_FIELD_DATE, NYR_IDS_FIELD_TIME};
    return NyrLoadString(kNames[std::clamp(static_cast<int>(d->part), 0, 2)]);
}

// ---------------------------------------------------------------------------
// Time span

struct CNyrInputTimeSpan::Private
{
    int digits = 0;
    nyr::input::Range<CNyrTimeSpan> range;
};

CNyrInputTimeSpan::CNyrInputTimeSpan(QWidget* parent) : CNyrInputControl(parent), d(new Private)
{
}

CNyrInputTimeSpan::~CNyrInputTimeSpan() = default;

int CNyrInputTimeSpan::Kind() const
{
    return NYR_INPUT_TIMESPAN;
}

CNyrTimeSpan CNyrInputTimeSpan::GetValue() const
{
    return HeldValueOr(CNyrTimeSpan());
}

void CNyrInputTimeSpan::SetValue(const CNyrTimeSpan& span)
{
    SetHeldValue(span);
}

void CNyrInputTimeSpan::SetFractionDigits(int digits)
{
    d->digits = std::clamp(digits, 0, 3);
    Reformat();
}

int CNyrInputTimeSpan::GetFractionDigits() const
{
    return d->digits;
}

void CNyrInputTimeSpan::SetRange(const CNyrTimeSpan& shortest, const CNyrTimeSpan& longest)
{
    d->range.Set(shortest, longest);
}

void CNyrInputTimeSpan::SetMinimum(const CNyrTimeSpan& shortest)
{
    d->range.minimum = shortest;
}

void CNyrInputTimeSpan::SetMaximum(const CNyrTimeSpan& longest)
{
    d->range.maximum = longest;
}

void CNyrInputTimeSpan::ClearRange()
{
    d->range.Clear();
}

QString CNyrInputTimeSpan::Render(const std::any& value) const
{
    CNyrTimeSpan span = std::any_cast<CNyrTimeSpan>(value);
    if (d->digits == 0)
        return QString::fromStdString(CNyrTimeSpanHelper::Format(span, kSpanPattern));
    CNyrTimeSpanHelper::Round(span, nyr::input::FractionRounding(d->digits));
    return QString::fromStdString(CNyrTimeSpanHelper::Format(
        span, nyr::input::WithFraction(kSpanPattern, span.GetFracSecond(), d->digits), CNyrTimeHelper::eRoundNone));
}

bool CNyrInputTimeSpan::Read(const QString& text, std::any& value, long) const
{
    CNyrTimeSpan span;
    if (!nyr::input::ReadSpanText(text.toStdString(), span))
        return false;
    value = span;
    return true;
}

bool CNyrInputTimeSpan::MayBecomeValid(const QString& text) const
{
    static const std::bitset<128> allowed = Characters("0123456789 \t:.d");
    return OnlyCharacters(text, allowed);
}

int CNyrInputTimeSpan::RangeSide(const std::any& value) const
{
    return d->range.Side(value);
}

std::any CNyrInputTimeSpan::Bound(bool maximum) const
{
    return d->range.Bound(maximum);
}

unsigned int CNyrInputTimeSpan::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_TIME_SPAN;
}
