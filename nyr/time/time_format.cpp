// The table of date/time formats, the current format and its persistence.
#include <cstring>

#include "nyr/time/time.h"
#include "nyr/time/time_p.h"
#include "nyr/util/profile_entries.h"

namespace {

constexpr const char* kPatterns[CNyrTime::eTimeFormatCount] = {
    "%m/%d/%Y %H:%M:%S",     "%d/%m/%Y %H:%M:%S",     "%m/%d/%Y %#I:%M:%S %p", "%d/%m/%Y %#I:%M:%S %p",
    "%m/%d/%y %H:%M:%S",     "%d/%m/%y %H:%M:%S",     "%m/%d/%y %#I:%M:%S %p", "%d/%m/%y %#I:%M:%S %p",
    "%m-%d-%Y %H:%M:%S",     "%d-%m-%Y %H:%M:%S",     "%m-%d-%Y %#I:%M:%S %p", "%d-%m-%Y %#I:%M:%S %p",
    "%m-%d-%y %H:%M:%S",     "%d-%m-%y %H:%M:%S",     "%m-%d-%y %#I:%M:%S %p", "%d-%m-%y %#I:%M:%S %p",
    "%m.%d.%Y %H:%M:%S",     "%d.%m.%Y %H:%M:%S",     "%m.%d.%Y %#I:%M:%S %p", "%d.%m.%Y %#I:%M:%S %p",
    "%m.%d.%y %H:%M:%S",     "%d.%m.%y %H:%M:%S",     "%m.%d.%y %#I:%M:%S %p", "%d.%m.%y %#I:%M:%S %p",
    "%#d. %b %Y %H:%M:%S",   "%#d-%b-%Y %H:%M:%S",    "%#d. %b %Y %#I:%M:%S %p", "%#d-%b-%Y %#I:%M:%S %p",
    "%#d. %b %y %H:%M:%S",   "%#d-%b-%y %H:%M:%S",    "%#d. %b %y %#I:%M:%S %p", "%#d-%b-%y %#I:%M:%S %p",
};

// The current format: index -1 until loaded.
struct FormatState
{
    int index = -1;
    std::string pattern;
};

FormatState& StaticCurrentTimeFormat()
{
    static FormatState state;
    return state;
}

void MakeCurrent(int index)
{
    FormatState& state = StaticCurrentTimeFormat();
    state.index = index;
    // A stored 32 is kept as the index; the table has no such row, so it
    // shows row 0.
    state.pattern = kPatterns[index >= 0 && index < CNyrTime::eTimeFormatCount ? index : 0];
}

// The stored index as the settings store reads it: unsigned, so -1 (absent)
// and every negative value compare above any row.
unsigned StoredIndex()
{
    return CNyrProfileEntries::ReadNyrProfileInt(CNyrProfileEntries::TimeSection(),
                                                 CNyrProfileEntries::TimeEntryFormatNumber(), -1);
}

void Store(int index)
{
    CNyrProfileEntries::WriteNyrProfileInt(CNyrProfileEntries::TimeSection(),
                                           CNyrProfileEntries::TimeEntryFormatNumber(), index);
    CNyrProfileEntries::WriteNyrProfileString(CNyrProfileEntries::TimeSection(),
                                              CNyrProfileEntries::TimeEntryFormatString(), kPatterns[index]);
}

}  // namespace

namespace nyr::time {

void EnsureFormatLoaded()
{
    if (StaticCurrentTimeFormat().index == -1)
        CNyrTime::ReloadTimeFormat();
}

void SplitPattern(const char* pattern, std::string* date, std::string* time)
{
    const std::string text = pattern;
    std::size_t hour = std::string::npos;
    for (const char* token : {"%H", "%I", "%#H", "%#I"})
        hour = std::min(hour, text.find(token));
    const std::size_t split = hour == std::string::npos ? text.size() : hour;
    if (date) {
        *date = text.substr(0, split);
        date->erase(date->find_last_not_of(' ') + 1);
    }
    if (time)
        *time = text.substr(split);
}

}  // namespace nyr::time

const char* CNyrTime::TimeFormatPattern(int index)
{
    return index >= 0 && index < eTimeFormatCount ? kPatterns[index] : nullptr;
}

std::string CNyrTime::CurrentTimeFormat()
{
    nyr::time::EnsureFormatLoaded();
    return StaticCurrentTimeFormat().pattern;
}

int CNyrTime::CurrentTimeFormatIndex()
{
    nyr::time::EnsureFormatLoaded();
    return StaticCurrentTimeFormat().index;
}

void CNyrTime::ReloadTimeFormat()
{
    unsigned stored = StoredIndex();
    if (stored == static_cast<unsigned>(-1))
        stored = 0;
    if (stored > 32)  // above 32, not 32 or above: the bound is kept as it is
        stored = 0;
    MakeCurrent(static_cast<int>(stored));
}

void CNyrTime::DefaultSettings(eTimeFormat format)
{
    if (format < 0 || format >= eTimeFormatCount)
        return;
    unsigned stored = StoredIndex();
    if (stored >= static_cast<unsigned>(eTimeFormatCount)) {
        Store(format);
        stored = static_cast<unsigned>(format);
    }
    MakeCurrent(static_cast<int>(stored));
}

int CNyrTime::SaveTimeFormat(int index)
{
    if (index < 0 || index >= eTimeFormatCount)
        index = 0;
    const int previous = CurrentTimeFormatIndex();
    MakeCurrent(index);
    Store(index);
    return previous;
}

char CNyrTime::DateSeparator()
{
    const std::string pattern = CurrentTimeFormat();
    std::size_t year = pattern.find("%Y");
    if (year == std::string::npos)
        year = pattern.find("%y");
    if (year == std::string::npos)
        return ' ';
    if (year == 0)
        return pattern.size() > 2 ? pattern[2] : ' ';
    return pattern[year - 1];
}

int CNyrTime::DateOrder()
{
    const std::string pattern = CurrentTimeFormat();
    const std::size_t month = pattern.find("%m");
    const std::size_t day = pattern.find("%d");
    if (day == std::string::npos)
        return 1;
    if (month == std::string::npos)
        return 0;
    return month < day ? 1 : 0;
}
