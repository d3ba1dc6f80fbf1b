// The process-wide table of GPS-UTC offsets (leap seconds).
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <vector>

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
// A leap-second list is a few kB; anything far beyond is not one.
constexpr std::size_t kMaxListBytes = 1 << 20;

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

void Save()
{
    const auto& rows = StaticLeapSeconds().rows;
    if (rows.empty())
        return;
    std::vector<unsigned char> bytes;
    bytes.reserve(rows.size() * 16);
    for (const auto& [mjd, offset] : rows) {
        AppendLittleEndian(bytes, mjd);
        AppendLittleEndian(bytes, offset);
    }
    CNyrProfileEntries::WriteNyrProfileString(CNyrProfileEntries::LeapSecondsSection(),
                                              CNyrProfileEntries::LeapSecondsEntry(),
                                              NyrEncodeBase64(bytes.data(), bytes.size(), 0));
}

// Whole file into `text`; false when unreadable or larger than `limit`.
bool ReadSmallFile(const std::string& path, std::string& text, std::size_t limit)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return false;
    char buffer[4096];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0 && text.size() <= limit)
        text.append(buffer, n);
    const bool ok = !std::ferror(file) && text.size() <= limit;
    std::fclose(file);
    return ok;
}

// An unsigned decimal number at text[i...]; false when there is none or it
// exceeds 2^62.
bool ParseCount(const std::string& text, std::size_t& i, int64_t& value)
{
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    if (i == text.size() || text[i] < '0' || text[i] > '9')
        return false;
    value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        if (value > (int64_t{1} << 62) / 10)
            return false;
        value = value * 10 + (text[i] - '0');
    }
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
    if (count < kLastBuiltinCount)
        return true;
    if (count > kMaxCount)
        return false;
    const double day = std::floor(mjd);
    double earliest = 0.0, latest = 0.0;
    GetPhysicalRange(earliest, latest, eRangeCTime);
    if (!(day >= earliest && day <= latest))
        return false;
    long y, m, d, h, mi, s;
    double fraction;
    if (!Mjd2Ymd(day, y, m, d, h, mi, s, fraction) || d != 1 || (m != 1 && m != 7))
        return false;
    Rows().emplace(day, count / 86400.0);
    Save();
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

int CNyrTimeHelper::ImportLeapSecondsList(const std::string& path, bool* expired)
{
    if (expired)
        *expired = false;
    std::string text;
    if (!ReadSmallFile(path, text, kMaxListBytes))
        return -1;

    int64_t expiresNtp = -1;
    std::vector<std::pair<double, long>> rows;  // MJD, TAI-UTC
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = text.substr(pos, end - pos);
        pos = end + 1;
        std::size_t i = 0;
        if (line.rfind("#@", 0) == 0) {
            i = 2;
            if (!ParseCount(line, i, expiresNtp))
                return -1;
            continue;
        }
        if (line.find_first_not_of(" \t\r") == std::string::npos || line[0] == '#')
            continue;
        int64_t ntp = 0, taiMinusUtc = 0;
        if (!ParseCount(line, i, ntp) || !ParseCount(line, i, taiMinusUtc) || ntp % 86400 != 0 ||
            taiMinusUtc > 1000)
            return -1;
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r'))
            ++i;
        if (i < line.size() && line[i] != '#')
            return -1;
        rows.emplace_back(kMjdOfNtpZero + static_cast<double>(ntp / 86400), static_cast<long>(taiMinusUtc));
    }
    if (rows.empty())
        return -1;
    if (expired && expiresNtp >= 0)
        *expired = static_cast<int64_t>(std::time(nullptr)) + kNtpOf1970 > expiresNtp;

    const std::size_t before = Rows().size();
    for (const auto& [mjd, taiMinusUtc] : rows) {
        const long gpsMinusUtc = taiMinusUtc - kTaiMinusGps;
        if (gpsMinusUtc >= 0 && gpsMinusUtc <= 255)  // rows before 1980 have no GPS form
            AddLeapSeconds(mjd, static_cast<uint8_t>(gpsMinusUtc));
    }
    return static_cast<int>(Rows().size() - before);
}
