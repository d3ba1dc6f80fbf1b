// The stored leap-second table: the input, up to its first line break, is the
// value of "KnownLeapSeconds" in the settings file (Base64 of little-endian
// double pairs, MJD then offset in days). Checked, beyond the absence of a
// crash:
//  - every built-in row answers as built in: a stored row never replaces one;
//  - every answer is the last row at or before the day among the built-in
//    rows and the stored pairs as decoded here, the first of equal days
//    winning; a value that is not whole pairs of finite numbers leaves the
//    built-in table alone (neutral);
//  - the table saved by the next addition loads back to the same answers
//    (round trip).
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "nyr/time/time.h"
#include "nyr/util/base64.h"
#include "nyr/util/profile_entries.h"

namespace {

std::string g_dir;

constexpr double kBuiltin[][2] = {
    {44239, 0},  {44786, 1},  {45151, 2},  {45516, 3},  {46247, 4},  {47161, 5},  {47892, 6},  {48257, 7},
    {48804, 8},  {49169, 9},  {49534, 10}, {50083, 11}, {50630, 12}, {51179, 13}, {53736, 14},
};
constexpr double kAdded = 62502;  // 2030-01-01, the last 1st of January in the CTime range

// The pairs the stored text holds, as the format defines them; empty when
// they are not whole pairs of finite numbers.
std::vector<std::pair<double, double>> StoredPairs(const std::string& stored)
{
    std::vector<unsigned char> bytes(stored.begin(), stored.end());
    bytes.push_back(0);
    const unsigned long length = NyrDecodeBase64(bytes.data());
    std::vector<std::pair<double, double>> pairs;
    if (length < 16 || length % 16 >= 8)
        return pairs;
    for (unsigned long at = 0; at + 16 <= length; at += 16) {
        double values[2];
        for (int v = 0; v < 2; ++v) {
            uint64_t bits = 0;
            for (int b = 7; b >= 0; --b)
                bits = bits << 8 | bytes[at + 8 * v + b];
            values[v] = std::bit_cast<double>(bits);
        }
        if (!std::isfinite(values[0]) || !std::isfinite(values[1]))
            return {};
        pairs.emplace_back(values[0], values[1]);
    }
    return pairs;
}

struct Answer
{
    double offset, row;
    bool operator!=(const Answer& o) const { return offset != o.offset || row != o.row; }
};

Answer Ask(double mjd)
{
    Answer a{};
    a.offset = CNyrTimeHelper::GetLeapSeconds(mjd, &a.row);
    return a;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    char pattern[] = "/tmp/nyr-fuzz-stored-leap-XXXXXX";
    g_dir = mkdtemp(pattern) ? pattern : "/tmp";
    NyrSetProfilePath(g_dir + "/Nyr240.INI");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::string value = input.substr(0, input.find_first_of(std::string("\r\n\0", 3)));
    // One settings file for every input, written through the store only, so
    // that its cache always holds what the file holds (a file of its own per
    // input would grow the cache, and libFuzzer would hunt leaks each run).
    if (!CNyrProfileEntries::WriteNyrProfileString("LeapSeconds", "KnownLeapSeconds", value))
        return 0;
    const std::string stored = CNyrProfileEntries::ReadNyrProfileString("LeapSeconds", "KnownLeapSeconds", "");
    CNyrTimeHelper::LoadLeapSeconds();

    // First occurrence wins among the stored pairs; built-in rows over all.
    std::map<double, double> expected;
    for (const auto& row : kBuiltin)
        expected.emplace(row[0], row[1] / 86400.0);
    const auto pairs = StoredPairs(stored);
    for (const auto& [mjd, offset] : pairs)
        expected.emplace(mjd, offset);

    std::vector<double> probes = {-1e300, 0.0, 1e300, kAdded};
    for (const auto& [mjd, offset] : expected)
        for (double d : {-0.5, 0.0, 0.5})
            probes.push_back(mjd + d);
    std::vector<Answer> before;
    for (double mjd : probes) {
        // The last row at or before the day, (0, 0) before the first.
        auto row = expected.upper_bound(mjd);
        const Answer want = row == expected.begin() ? Answer{0.0, 0.0} : Answer{std::prev(row)->second,
                                                                               std::prev(row)->first};
        const Answer a = Ask(mjd);
        if (a != want)
            __builtin_trap();
        before.push_back(a);
    }
    for (const auto& row : kBuiltin)
        if (Ask(row[0]).offset != row[1] / 86400.0)
            __builtin_trap();

    // Round trip: the addition saves the table; a fresh load answers alike
    // everywhere but on and after the added day. (Only for stored rows: a
    // save is a file written, and the built-in table needs none.)
    if (pairs.empty())
        return 0;
    if (!CNyrTimeHelper::AddLeapSeconds(kAdded, 50))
        __builtin_trap();
    CNyrTimeHelper::LoadLeapSeconds();
    for (std::size_t p = 0; p < probes.size(); ++p)
        if (probes[p] < kAdded && Ask(probes[p]) != before[p])
            __builtin_trap();
    return 0;
}
