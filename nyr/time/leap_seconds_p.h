#pragma once

// The leap-second list of the time-zone data (leap-seconds.list), read and
// checked before any row of it is taken.

#include <cstdint>
#include <string>
#include <vector>

namespace nyr::time {

struct LeapRow
{
    int64_t ntp = 0;          // the UTC day the row starts, in seconds since 1900-01-01 (NTP)
    int64_t taiMinusUtc = 0;  // seconds
    int line = 0;             // of the list, from 1
};

struct LeapSecondsList
{
    int64_t updated = -1;  // "#$", NTP seconds; -1 without the line
    int64_t expires = -1;  // "#@"
    std::vector<LeapRow> rows;
};

// Reads the list at `path` (a regular file of at most 1 MiB) and checks it
// whole: every line is a data line "NTP TAI-UTC [# comment]" on a whole UTC
// day, "#$ NTP", "#@ NTP", "#h" with five hexadecimal words, or a comment;
// the "#h" line is there and is the SHA-1 of the data fields the format
// defines (the digits of "#$", of "#@", then of each row's two numbers, in
// that order, without separators); there is a row, and each row is a later
// day than the one before with TAI-UTC one second more. False, with the
// reason from the text table (NYR_IDS_LEAP_LIST_UNREADABLE to NYR_IDS_LEAP_LIST_EMPTY) in `problem`, otherwise.
bool ReadLeapSecondsList(const std::string& path, LeapSecondsList& list, std::string& problem);

}  // namespace nyr::time
