#include "nyr/time/strftime.h"

#include <cstdint>
#include <cstring>

#include "nyr/platform/calendar_p.h"

namespace {

using nyr::cal::FloorDiv;

constexpr const char* kShortDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kLongDays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr const char* kShortMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kLongMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};

const char* Name(const char* const* table, int count, int index)
{
    return index >= 0 && index < count ? table[index] : "?";
}

int IsoWeeksInYear(int64_t y)
{
    auto p = [](int64_t year) {
        return ((year + FloorDiv(year, 4) - FloorDiv(year, 100) + FloorDiv(year, 400)) % 7 + 7) % 7;
    };
    return p(y) == 4 || p(y - 1) == 3 ? 53 : 52;
}

// ISO 8601 week number and its year.
void IsoWeek(const struct tm& f, int64_t& isoYear, int& week)
{
    const int64_t year = int64_t{f.tm_year} + 1900;
    const int isoWday = (f.tm_wday + 6) % 7 + 1;  // Monday 1 .. Sunday 7
    week = (f.tm_yday + 1 - isoWday + 10) / 7;
    isoYear = year;
    if (week < 1) {
        isoYear = year - 1;
        week = IsoWeeksInYear(isoYear);
    } else if (week > IsoWeeksInYear(year)) {
        isoYear = year + 1;
        week = 1;
    }
}

class Writer
{
public:
    Writer(char* buffer, std::size_t size) : m_p(buffer), m_end(buffer + size) {}

    bool Ok() const { return m_ok; }
    char* Position() const { return m_p; }

    void Put(char c)
    {
        if (m_p < m_end)
            *m_p++ = c;
        else
            m_ok = false;
    }
    void Put(const char* text, std::size_t n)
    {
        if (static_cast<std::size_t>(m_end - m_p) < n) {
            m_ok = false;
        } else if (n <= 8) {  // separators and names: cheaper than a call
            for (std::size_t i = 0; i < n; ++i)
                m_p[i] = text[i];
            m_p += n;
        } else {
            std::memcpy(m_p, text, n);
            m_p += n;
        }
    }
    void Put(const char* text) { Put(text, std::strlen(text)); }
    // Two digits, the common case, without the general path.
    void Two(int value, bool dropZero)
    {
        if (value < 0 || value > 99)
            return Number(value, 2, dropZero);
        if (value < 10 && dropZero)
            return Put(static_cast<char>('0' + value));
        if (m_end - m_p < 2) {
            m_ok = false;
            return;
        }
        m_p[0] = static_cast<char>('0' + value / 10);
        m_p[1] = static_cast<char>('0' + value % 10);
        m_p += 2;
    }
    // A year of four digits, the common case of "%Y".
    void Four(int64_t value)
    {
        if (value < 1000 || value > 9999)
            return Number(value, 1, false);
        if (m_end - m_p < 4) {
            m_ok = false;
            return;
        }
        const int v = static_cast<int>(value);
        m_p[0] = static_cast<char>('0' + v / 1000);
        m_p[1] = static_cast<char>('0' + v / 100 % 10);
        m_p[2] = static_cast<char>('0' + v / 10 % 10);
        m_p[3] = static_cast<char>('0' + v % 10);
        m_p += 4;
    }
    // A decimal number padded to `width` with '0' (or `pad`); `dropZero`
    // ("%#") leaves the padding out.
    void Number(int64_t value, int width, bool dropZero, char pad = '0')
    {
        char digits[24];
        int n = 0;
        const bool negative = value < 0;
        uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
        do {
            digits[n++] = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (negative)
            Put('-');
        if (!dropZero)
            for (int i = n + (negative ? 1 : 0); i < width; ++i)
                Put(pad);
        while (n > 0)
            Put(digits[--n]);
    }

private:
    char* m_p;
    char* m_end;
    bool m_ok = true;
};

void Expand(Writer& w, const char* pattern, const struct tm& f);

// Every conversion that Expand does not write in line.
void Convert(Writer& w, char letter, bool alt, const struct tm& f)
{
    const int64_t year = int64_t{f.tm_year} + 1900;
    switch (letter) {
    case 'a': return w.Put(Name(kShortDays, 7, f.tm_wday));
    case 'A': return w.Put(Name(kLongDays, 7, f.tm_wday));
    case 'b':
    case 'h': return w.Put(Name(kShortMonths, 12, f.tm_mon));
    case 'B': return w.Put(Name(kLongMonths, 12, f.tm_mon));
    case 'e': return w.Number(f.tm_mday, 2, alt, ' ');
    case 'j': return w.Number(f.tm_yday + 1, 3, alt);
    case 'y': return w.Two(static_cast<int>(year - FloorDiv(year, 100) * 100), alt);
    case 'C': return w.Number(FloorDiv(year, 100), 2, alt);
    case 'u': return w.Number(f.tm_wday == 0 ? 7 : f.tm_wday, 1, alt);
    case 'w': return w.Number(f.tm_wday, 1, alt);
    case 'U': return w.Two((f.tm_yday + 7 - f.tm_wday) / 7, alt);
    case 'W': return w.Two((f.tm_yday + 7 - (f.tm_wday + 6) % 7) / 7, alt);
    case 'V':
    case 'G':
    case 'g': {
        int64_t isoYear = 0;
        int week = 0;
        IsoWeek(f, isoYear, week);
        if (letter == 'V')
            return w.Two(week, alt);
        if (letter == 'G')
            return w.Number(isoYear, 1, alt);
        return w.Two(static_cast<int>(isoYear - FloorDiv(isoYear, 100) * 100), alt);
    }
    case 'z': {
        const long offset = f.tm_gmtoff;
        const long magnitude = offset < 0 ? -offset : offset;
        w.Put(offset < 0 ? '-' : '+');
        w.Two(static_cast<int>(magnitude / 3600 % 100), false);
        return w.Two(static_cast<int>(magnitude / 60 % 60), false);
    }
    case 'Z': return w.Put(f.tm_zone ? f.tm_zone : "");
    case 'c': return Expand(w, alt ? "%A, %B %#d, %Y %H:%M:%S" : "%m/%d/%y %H:%M:%S", f);
    case 'x': return Expand(w, alt ? "%A, %B %#d, %Y" : "%m/%d/%y", f);
    case 'X':
    case 'T': return Expand(w, "%H:%M:%S", f);
    case 'D': return Expand(w, "%m/%d/%y", f);
    case 'F': return Expand(w, "%Y-%m-%d", f);
    case 'R': return Expand(w, "%H:%M", f);
    case 'r': return Expand(w, "%I:%M:%S %p", f);
    case 'n': return w.Put('\n');
    case 't': return w.Put('\t');
    case '%': return w.Put('%');
    default:
        w.Put('%');
        if (alt)
            w.Put('#');
        if (letter != '\0')
            w.Put(letter);
        return;
    }
}

void Expand(Writer& w, const char* p, const struct tm& f)
{
    while (*p != '\0' && w.Ok()) {
        const char* run = p;
        while (*p != '\0' && *p != '%')
            ++p;
        w.Put(run, static_cast<std::size_t>(p - run));
        if (*p == '\0')
            break;
        ++p;
        const bool alt = *p == '#';
        if (alt)
            ++p;
        const char letter = *p;
        if (letter != '\0')
            ++p;
        // The conversions of the format table in line; the rest by Convert.
        switch (letter) {
        case 'd': w.Two(f.tm_mday, alt); break;
        case 'm': w.Two(f.tm_mon + 1, alt); break;
        case 'H': w.Two(f.tm_hour, alt); break;
        case 'M': w.Two(f.tm_min, alt); break;
        case 'S': w.Two(f.tm_sec, alt); break;
        case 'I': w.Two(f.tm_hour % 12 == 0 ? 12 : f.tm_hour % 12, alt); break;
        case 'Y': w.Four(int64_t{f.tm_year} + 1900); break;
        case 'p': w.Put(f.tm_hour >= 12 ? "PM" : "AM", 2); break;
        case 'b':
            if (f.tm_mon >= 0 && f.tm_mon < 12) {
                w.Put(kShortMonths[f.tm_mon], 3);
                break;
            }
            [[fallthrough]];
        default: Convert(w, letter, alt, f); break;
        }
    }
}

}  // namespace

std::size_t NyrStrftime(char* buffer, std::size_t size, const char* pattern, const struct tm& fields)
{
    if (buffer == nullptr || size == 0 || pattern == nullptr)
        return 0;
    Writer w(buffer, size - 1);  // room for the terminator
    Expand(w, pattern, fields);
    if (!w.Ok())
        return 0;
    *w.Position() = '\0';
    return static_cast<std::size_t>(w.Position() - buffer);
}

std::string NyrStrftime(const std::string& pattern, const struct tm& fields)
{
    char buffer[kNyrStrftimeBufferSize];
    const std::size_t n = NyrStrftime(buffer, sizeof buffer, pattern.c_str(), fields);
    return std::string(buffer, n);
}
