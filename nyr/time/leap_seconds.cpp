// The process-wide table of GPS-UTC offsets (leap seconds).
#include <bit>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"
#include "nyr/platform/system_error.h"
#include "nyr/time/leap_seconds_p.h"
#include "nyr/time/time.h"
#include "nyr/util/base64.h"
#include "nyr/util/profile_entries.h"

namespace {

// MJD of the day from which the offset applies, offset in seconds.
constexpr struct
{
    double mjd;
    int seconds;
} kBuiltinRows[] = {
    {44239, 0},  {44786, 1},  {45151, 2},  {45516, 3},  {46247, 4},  {47161, 5},  {47892, 6},  {48257, 7},
    {48804, 8},  {49169, 9},  {49534, 10}, {50083, 11}, {50630, 12}, {51179, 13}, {53736, 14},
};
constexpr int kLastBuiltinCount = 14;
constexpr int kMaxCount = 50;

// NTP time counts seconds from 1900-01-01 (MJD 15020); GPS-UTC = TAI-UTC - 19.
constexpr double kMjdOfNtpZero = 15020.0;
constexpr int64_t kNtpOf1970 = 2208988800;
constexpr long kTaiMinusGps = 19;

struct LeapTable
{
    bool loaded = false;
    std::map<double, double> rows;  // MJD -> offset in days
};

LeapTable& StaticLeapSeconds()
{
    static LeapTable table;
    return table;
}

std::map<double, double>& Rows()
{
    LeapTable& table = StaticLeapSeconds();
    if (!table.loaded)
        CNyrTimeHelper::LoadLeapSeconds();
    return table.rows;
}

double ReadLittleEndian(const unsigned char* bytes)
{
    uint64_t bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = bits << 8 | bytes[i];
    return std::bit_cast<double>(bits);
}

void AppendLittleEndian(std::vector<unsigned char>& out, double value)
{
    const auto bits = std::bit_cast<uint64_t>(value);
    for (int i = 0; i < 8; ++i)
        out.push_back(static_cast<unsigned char>(bits >> (8 * i)));
}

// Writes `rows` to the settings file; false when the file was not written
// (an empty table writes nothing and succeeds).
bool Save(const std::map<double, double>& rows)
{
    if (rows.empty())
        return true;
    std::vector<unsigned char> bytes;
    bytes.reserve(rows.size() * 16);
    for (const auto& [mjd, offset] : rows) {
        AppendLittleEndian(bytes, mjd);
        AppendLittleEndian(bytes, offset);
    }
    return CNyrProfileEntries::WriteNyrProfileString(CNyrProfileEntries::LeapSecondsSection(),
                                                     CNyrProfileEntries::LeapSecondsEntry(),
                                                     NyrEncodeBase64(bytes.data(), bytes.size(), 0)) != 0;
}

// Whether AddLeapSeconds takes the row (floor(mjd), count): false when it
// refuses it, and `add` false for a count the built-in rows cover.
bool TakesRow(double& day, uint8_t count, bool& add)
{
    add = false;
    if (count < kLastBuiltinCount)
        return true;
    if (count > kMaxCount)
        return false;
    day = std::floor(day);
    double earliest = 0.0, latest = 0.0;
    CNyrTimeHelper::GetPhysicalRange(earliest, latest, CNyrTimeHelper::eRangeCTime);
    if (!(day >= earliest && day <= latest))
        return false;
    long y, m, d, h, mi, s;
    double fraction;
    if (!CNyrTimeHelper::Mjd2Ymd(day, y, m, d, h, mi, s, fraction) || d != 1 || (m != 1 && m != 7))
        return false;
    add = true;
    return true;
}

}  // namespace

void CNyrTimeHelper::LoadLeapSeconds()
{
    LeapTable& table = StaticLeapSeconds();
    table.loaded = true;
    table.rows.clear();
    for (const auto& row : kBuiltinRows)
        table.rows.emplace(row.mjd, row.seconds / 86400.0);

    std::string stored = CNyrProfileEntries::ReadNyrProfileString(CNyrProfileEntries::LeapSecondsSection(),
                                                                  CNyrProfileEntries::LeapSecondsEntry(), "");
    if (stored.empty())
        return;
    std::vector<unsigned char> bytes(stored.begin(), stored.end());
    bytes.push_back(0);
    const unsigned long length = NyrDecodeBase64(bytes.data());
    if (length <= 7)
        return;
    const unsigned long pairs = (length / 8 - 1) / 2 + 1;
    // Read defensively: a value whose pairs do not all fit, or that holds a
    // value that is not a finite number, is ignored whole.
    if (pairs * 16 > length)
        return;
    std::vector<std::pair<double, double>> read;
    for (unsigned long i = 0; i < pairs; ++i) {
        const double mjd = ReadLittleEndian(&bytes[i * 16]);
        const double offset = ReadLittleEndian(&bytes[i * 16 + 8]);
        if (!std::isfinite(mjd) || !std::isfinite(offset))
            return;
        read.emplace_back(mjd, offset);
    }
    for (const auto& [mjd, offset] : read)
        table.rows.emplace(mjd, offset);  // never replaces: a built-in row wins
}

double CNyrTimeHelper::GetLeapSeconds(const double& mjd, double* rowMjd)
{
    const auto& rows = Rows();
    auto it = std::isnan(mjd) ? rows.begin() : rows.upper_bound(mjd);
    if (it == rows.begin()) {
        if (rowMjd)
            *rowMjd = 0.0;
        return 0.0;
    }
    --it;
    if (rowMjd)
        *rowMjd = it->first;
    return it->second;
}

bool CNyrTimeHelper::AddLeapSeconds(const double& mjd, uint8_t count)
{
    double day = mjd;
    bool add = false;
    if (!TakesRow(day, count, add))
        return false;
    if (add) {
        Rows().emplace(day, count / 86400.0);
        Save(Rows());
    }
    return true;
}

bool CNyrTimeHelper::AddLeapSeconds(uint16_t week, uint8_t weekLow, uint8_t dayNumber, uint8_t count)
{
    auto candidate = static_cast<uint16_t>((week & 0xFF00) | weekLow);
    const auto difference = static_cast<int16_t>(static_cast<uint16_t>(candidate - week));
    if (difference >= 128)
        candidate = static_cast<uint16_t>(candidate - 256);
    else if (difference < -127)
        candidate = static_cast<uint16_t>(candidate + 256);
    return AddLeapSeconds(CNyrTime::GpsTime(candidate, 0.0) + dayNumber, count);
}

const char* CNyrTimeHelper::SystemLeapSecondsList()
{
    return "/usr/share/zoneinfo/leap-seconds.list";
}

int CNyrTimeHelper::ImportLeapSecondsList(const std::string& path, bool* expired, std::string* problem)
{
    if (expired)
        *expired = false;
    nyr::time::LeapSecondsList list;
    std::string why;
    if (!nyr::time::ReadLeapSecondsList(path, list, why)) {
        if (problem)
            *problem = why;
        return -1;
    }
    if (expired && list.expires >= 0)
        *expired = static_cast<int64_t>(std::time(nullptr)) + kNtpOf1970 > list.expires;

    // The whole list goes into a copy, which becomes the table only once the
    // settings file holds it.
    std::map<double, double> rows = Rows();
    for (const nyr::time::LeapRow& row : list.rows) {
        const int64_t gpsMinusUtc = row.taiMinusUtc - kTaiMinusGps;
        double day = kMjdOfNtpZero + static_cast<double>(row.ntp / 86400);
        bool add = false;
        // Rows before 1980 have no GPS form; rows the table cannot hold are left out.
        if (gpsMinusUtc >= 0 && gpsMinusUtc <= kMaxCount &&
            TakesRow(day, static_cast<uint8_t>(gpsMinusUtc), add) && add)
            rows.emplace(day, static_cast<double>(gpsMinusUtc) / 86400.0);
    }
    const int gained = static_cast<int>(rows.size() - Rows().size());
    if (gained > 0) {
        errno = 0;
        if (!Save(rows)) {
            const int code = errno;
            if (problem)
                *problem = code ? NyrFormat(NyrLoadString(NYR_IDS_LEAP_TABLE_CANNOT_WRITE_BECAUSE).c_str(),
                                            NyrGetProfilePath().c_str(),
                                            NyrSystemErrorText(static_cast<unsigned long>(code)).c_str())
                                : NyrFormat(NyrLoadString(NYR_IDS_LEAP_TABLE_CANNOT_WRITE).c_str(),
                                            NyrGetProfilePath().c_str());
            return -1;
        }
    }
    StaticLeapSeconds().rows = std::move(rows);
    return gained;
}
