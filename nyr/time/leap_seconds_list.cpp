// Reading and checking a leap-second list in the NTP format of the time-zone
// data (leap-seconds.list).
#include <openssl/evp.h>

#include <cstdio>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/file_read.h"
#include "nyr/platform/string_format.h"
#include "nyr/time/leap_seconds_p.h"

namespace nyr::time {

namespace {

// A leap-second list is a few kB; anything far beyond is not one.
constexpr std::size_t kMaxListBytes = 1 << 20;

// The value of a hexadecimal digit, -1 for any other character.
int HexValue(char c)
{
    if (nyr::ascii::IsDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// A field of digits at line[i...] after blanks: its text and value; false
// when there is none or it exceeds 2^62.
bool ReadCount(const std::string& line, std::size_t& i, std::string& digits, int64_t& value)
{
    while (i < line.size() && nyr::ascii::IsLineBlank(line[i]))
        ++i;
    const std::size_t start = i;
    value = 0;
    for (; i < line.size() && nyr::ascii::IsDigit(line[i]); ++i) {
        if (value > (int64_t{1} << 62) / 10)
            return false;
        value = value * 10 + (line[i] - '0');
    }
    digits = line.substr(start, i - start);
    return i > start;
}

// Nothing but blanks, or a comment, from line[i] on.
bool RestIsComment(const std::string& line, std::size_t i)
{
    while (i < line.size() && nyr::ascii::IsLineBlank(line[i]))
        ++i;
    return i == line.size() || line[i] == '#';
}

// The five 32-bit words of "#h": hexadecimal, leading zeros of a word may
// be missing (some published lists drop them).
bool ReadHashWords(const std::string& line, uint32_t (&words)[5])
{
    std::size_t i = 2;
    for (uint32_t& word : words) {
        while (i < line.size() && nyr::ascii::IsLineBlank(line[i]))
            ++i;
        word = 0;
        int digits = 0;
        for (; i < line.size() && HexValue(line[i]) >= 0; ++i, ++digits)
            word = word << 4 | static_cast<uint32_t>(HexValue(line[i]));
        if (digits == 0 || digits > 8)
            return false;
    }
    return RestIsComment(line, i);
}

bool HashMatches(const std::string& data, const uint32_t (&words)[5])
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(data.data(), data.size(), digest, &length, EVP_sha1(), nullptr) != 1 || length != 20)
        return false;
    for (int w = 0; w < 5; ++w) {
        const uint32_t word = uint32_t{digest[4 * w]} << 24 | uint32_t{digest[4 * w + 1]} << 16 |
                              uint32_t{digest[4 * w + 2]} << 8 | uint32_t{digest[4 * w + 3]};
        if (word != words[w])
            return false;
    }
    return true;
}

std::string Text(unsigned id, const std::string& path, int line = 0)
{
    const std::string format = NyrLoadString(id);
    return line ? NyrFormat(format.c_str(), line, path.c_str()) : NyrFormat(format.c_str(), path.c_str());
}

// The lines of `text` into `list`; the data the hash covers into `hashed`.
// Returns 0, or the number of the first line that cannot be read.
int ReadLines(const std::string& text, LeapSecondsList& list, std::string& hashed, bool& hasHash,
              uint32_t (&hash)[5])
{
    std::string updated, expires, rows, digits;
    int number = 0;
    for (std::size_t pos = 0; pos < text.size();) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = text.substr(pos, end - pos);
        pos = end + 1;
        ++number;
        std::size_t i = 2;
        if (line.rfind("#$", 0) == 0 || line.rfind("#@", 0) == 0) {
            const bool update = line[1] == '$';
            if (!ReadCount(line, i, update ? updated : expires, update ? list.updated : list.expires) ||
                !RestIsComment(line, i))
                return number;
        } else if (line.rfind("#h", 0) == 0) {
            if (hasHash || !ReadHashWords(line, hash))
                return number;
            hasHash = true;
        } else if (!RestIsComment(line, 0)) {
            LeapRow row;
            std::string tai;
            i = 0;
            if (!ReadCount(line, i, digits, row.ntp) || !ReadCount(line, i, tai, row.taiMinusUtc) ||
                !RestIsComment(line, i) || row.ntp % 86400 != 0)
                return number;  // a leap second starts a UTC day
            row.line = number;
            list.rows.push_back(row);
            rows += digits + tai;
        }
    }
    hashed = updated + expires + rows;
    return 0;
}

}  // namespace

bool ReadLeapSecondsList(const std::string& path, LeapSecondsList& list, std::string& problem)
{
    list = LeapSecondsList{};
    std::string text, error;
    if (!NyrReadRegularFile(path, kMaxListBytes, text, &error)) {
        problem = NyrFormat(NyrLoadString(NYR_IDS_LEAP_LIST_UNREADABLE).c_str(), error.c_str());
        return false;
    }
    std::string hashed;
    bool hasHash = false;
    uint32_t hash[5] = {};
    if (const int bad = ReadLines(text, list, hashed, hasHash, hash)) {
        problem = Text(NYR_IDS_LEAP_LIST_BAD_LINE, path, bad);
        return false;
    }
    if (!hasHash) {
        problem = Text(NYR_IDS_LEAP_LIST_NO_HASH, path);
        return false;
    }
    if (!HashMatches(hashed, hash)) {
        problem = Text(NYR_IDS_LEAP_LIST_BAD_HASH, path);
        return false;
    }
    if (list.rows.empty()) {
        problem = Text(NYR_IDS_LEAP_LIST_EMPTY, path);
        return false;
    }
    // Each row is a later day with one second more: a row lost in the middle
    // of a list shows here even where the hash was made after the loss.
    for (std::size_t r = 1; r < list.rows.size(); ++r) {
        const LeapRow& row = list.rows[r];
        const LeapRow& before = list.rows[r - 1];
        if (row.ntp <= before.ntp || row.taiMinusUtc != before.taiMinusUtc + 1) {
            problem = Text(NYR_IDS_LEAP_LIST_OUT_OF_ORDER, path, row.line);
            return false;
        }
    }
    return true;
}

}  // namespace nyr::time
