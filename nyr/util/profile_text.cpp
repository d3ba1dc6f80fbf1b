#include "nyr/util/profile_text_p.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "nyr/platform/text_p.h"

namespace nyr::detail {

namespace {

constexpr unsigned char FoldCase(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

// A value enclosed in one pair of matching quotes loses them on reading.
std::string_view Unquote(std::string_view v)
{
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

bool HasLineBreakOrZero(std::string_view s)
{
    return s.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

// Eight bytes at a time, each with bit 0x20 set: that folds ASCII letters to
// lower case and gives names that compare equal without regard to case equal
// hashes (other bytes only collide more, which the comparison sorts out).
// The table tag is the upper half, never 0.
uint32_t NameTag(std::string_view s)
{
    constexpr uint64_t kFold = 0x2020202020202020ull;
    constexpr uint64_t kMulA = 0x9E3779B97F4A7C15ull;
    constexpr uint64_t kMulB = 0xC2B2AE3D27D4EB4Full;
    // Two independent multiply chains over 16 bytes a step.
    uint64_t a = s.size() * kMulA;
    uint64_t b = ~a;
    const char* p = s.data();
    size_t n = s.size();
    for (; n >= 16; n -= 16, p += 16) {
        uint64_t w0, w1;
        std::memcpy(&w0, p, 8);
        std::memcpy(&w1, p + 8, 8);
        a = (a ^ (w0 | kFold)) * kMulA;
        b = (b ^ (w1 | kFold)) * kMulB;
    }
    uint64_t w0 = 0, w1 = 0;
    std::memcpy(&w0, p, n < 8 ? n : 8);
    if (n > 8)
        std::memcpy(&w1, p + 8, n - 8);
    a = (a ^ (w0 | kFold)) * kMulA;
    b = (b ^ (w1 | kFold)) * kMulB;
    uint64_t h = a ^ (b >> 31 | b << 33);
    h ^= h >> 29;
    h *= kMulA;
    h ^= h >> 32;
    return static_cast<uint32_t>(h) | 1;
}

bool SameName(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    if (std::memcmp(a.data(), b.data(), a.size()) == 0)  // names are mostly spelled alike
        return true;
    for (size_t i = 0; i < a.size(); ++i)
        if (FoldCase(static_cast<unsigned char>(a[i])) != FoldCase(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::string_view TrimBlanks(std::string_view s)
{
    return nyr::text::TrimmedBy(s, nyr::text::IsProfileBlank);
}

int ParseLeadingInt(std::string_view s)
{
    size_t i = 0;
    while (i < s.size() && (nyr::text::IsProfileBlank(s[i]) || s[i] == '\n'))
        ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        negative = s[i++] == '-';
    // Accumulate towards the sign so that INT_MIN itself fits.
    long long v = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        const int digit = s[i] - '0';
        v = negative ? v * 10 - digit : v * 10 + digit;
        if (v > INT_MAX)
            return INT_MAX;
        if (v < INT_MIN)
            return INT_MIN;
    }
    return static_cast<int>(v);
}

void ParseIntVector(std::string_view text, std::vector<int>& values)
{
    values.clear();
    while (!text.empty()) {
        const size_t semicolon = text.find(';');
        // No ";" left: the rest is ignored (a value without its final ";"
        // loses its last element: intended).
        if (semicolon == std::string_view::npos)
            break;
        // An empty element ends the reading; what was read before it stays.
        if (semicolon == 0)
            break;
        values.push_back(ParseLeadingInt(text.substr(0, semicolon)));
        text.remove_prefix(semicolon + 1);
    }
}

std::string FormatIntVector(const std::vector<int>& values)
{
    std::string text;
    text.reserve(values.size() * 5);
    for (const int v : values) {
        text += std::to_string(v);
        text += ';';
    }
    return text;
}

bool IsWritableSection(std::string_view section)
{
    section = TrimBlanks(section);
    return !section.empty() && !HasLineBreakOrZero(section) && section.find(']') == std::string_view::npos;
}

bool IsWritableEntry(std::string_view entry)
{
    entry = TrimBlanks(entry);
    // A leading "[" would read as a section header, ";" and "#" as a comment.
    return !entry.empty() && !HasLineBreakOrZero(entry) && entry.find('=') == std::string_view::npos &&
           entry.front() != '[' && entry.front() != ';' && entry.front() != '#';
}

bool IsWritableValue(std::string_view value)
{
    return !HasLineBreakOrZero(value);
}

template <class Record>
const Record* CProfileText::FlatIndex<Record>::Find(std::string_view text, std::string_view name,
                                                    uint32_t tag) const
{
    if (m_slots.empty())
        return nullptr;
    const size_t mask = m_slots.size() - 1;
    for (size_t i = tag & mask;; i = (i + 1) & mask) {
        const Record& r = m_slots[i];
        if (r.tag == 0)
            return nullptr;
        if (r.tag == tag && SameName(text.substr(r.nameBegin, r.nameLength), name))
            return &r;
    }
}

template <class Record>
Record* CProfileText::FlatIndex<Record>::Add(std::string_view text, const Record& record)
{
    if (Find(text, text.substr(record.nameBegin, record.nameLength), record.tag))
        return nullptr;
    if ((m_count + 1) * 2 > m_slots.size()) {
        std::vector<Record> old(std::max<size_t>(8, m_slots.size() * 2));
        old.swap(m_slots);
        const size_t mask = m_slots.size() - 1;
        for (Record& r : old) {
            if (r.tag == 0)
                continue;
            size_t i = r.tag & mask;
            while (m_slots[i].tag != 0)
                i = (i + 1) & mask;
            m_slots[i] = std::move(r);
        }
    }
    const size_t mask = m_slots.size() - 1;
    size_t i = record.tag & mask;
    while (m_slots[i].tag != 0)
        i = (i + 1) & mask;
    m_slots[i] = record;
    ++m_count;
    return &m_slots[i];
}

CProfileText::CProfileText(std::string text) : m_text(std::move(text))
{
    if (m_text.size() <= UINT32_MAX)
        Parse();
}

void CProfileText::Parse()
{
    const std::string_view all = m_text;
    if (const size_t lf = all.find('\n'); lf != std::string_view::npos && lf > 0 && all[lf - 1] == '\r')
        m_eol = "\r\n";
    const auto offset = [&](std::string_view part) { return static_cast<uint32_t>(part.data() - all.data()); };
    const auto length = [](std::string_view part) { return static_cast<uint32_t>(part.size()); };

    size_t pos = all.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    Section* current = nullptr;  // null before the first section and in repeated sections
    while (pos < all.size()) {
        const size_t lf = all.find('\n', pos);
        const size_t next = lf == std::string_view::npos ? all.size() : lf + 1;
        size_t end = lf == std::string_view::npos ? all.size() : lf;
        if (end > pos && all[end - 1] == '\r')
            --end;
        const std::string_view line = all.substr(pos, end - pos);
        const size_t first = line.find_first_not_of(" \t");

        if (first == std::string_view::npos || line[first] == ';' || line[first] == '#') {
            // blank line or comment
        } else if (line[first] == '[') {
            // The name runs to the first "]", or to the end of a line without one.
            std::string_view name = line.substr(first + 1);
            name = TrimBlanks(name.substr(0, name.find(']')));
            Section section;
            section.tag = NameTag(name);
            section.nameBegin = offset(name);
            section.nameLength = length(name);
            section.insertAt = static_cast<uint32_t>(next);
            section.needsBreak = lf == std::string_view::npos;
            current = m_sections.Add(all, section);  // the first matching section wins
        } else if (const size_t eq = line.find('='); eq != std::string_view::npos && current) {
            const std::string_view name = TrimBlanks(line.substr(0, eq));
            if (!name.empty()) {
                const std::string_view raw = line.substr(eq + 1);
                size_t lead = 0;
                while (lead < raw.size() && nyr::text::IsProfileBlank(raw[lead]))
                    ++lead;
                const std::string_view value = Unquote(TrimBlanks(raw)).substr(0, kMaxValue);
                Entry entry;
                entry.tag = NameTag(name);
                entry.nameBegin = offset(name);
                entry.nameLength = length(name);
                entry.valueBegin = offset(value);
                entry.valueLength = length(value);
                entry.rawValueBegin = offset(raw) + static_cast<uint32_t>(lead);
                entry.lineEnd = static_cast<uint32_t>(end);
                current->entries.Add(all, entry);
                current->insertAt = static_cast<uint32_t>(next);
                current->needsBreak = lf == std::string_view::npos;
            }
        }
        pos = next;
    }
}

const CProfileText::Entry* CProfileText::FindEntry(std::string_view section, std::string_view entry,
                                                   const Section** owner) const
{
    section = TrimBlanks(section);
    entry = TrimBlanks(entry);
    const Section* s = m_sections.Find(m_text, section, NameTag(section));
    if (owner)
        *owner = s;
    return s ? s->entries.Find(m_text, entry, NameTag(entry)) : nullptr;
}

std::optional<std::string_view> CProfileText::Find(std::string_view section, std::string_view entry) const
{
    const Entry* e = FindEntry(section, entry, nullptr);
    if (!e)
        return std::nullopt;
    return std::string_view(m_text).substr(e->valueBegin, e->valueLength);
}

std::string CProfileText::With(std::string_view section, std::string_view entry, std::string_view value) const
{
    section = TrimBlanks(section);
    entry = TrimBlanks(entry);
    const std::string_view all = m_text;
    std::string out;
    out.reserve(all.size() + section.size() + entry.size() + value.size() + 8);

    const Section* sec = nullptr;
    if (const Entry* e = FindEntry(section, entry, &sec)) {
        out.append(all.substr(0, e->rawValueBegin));
        out.append(value);
        out.append(all.substr(e->lineEnd));
        return out;
    }
    if (sec) {
        out.append(all.substr(0, sec->insertAt));
        if (sec->needsBreak)
            out.append(m_eol);
        out.append(entry).append("=").append(value).append(m_eol);
        out.append(all.substr(sec->insertAt));
        return out;
    }

    out.append(all);
    if (!out.empty() && out.back() != '\n')
        out.append(m_eol);
    if (!out.empty()) {
        // A blank line before the new section unless the text ends in one.
        const size_t lastEnd = out.size() - 1;  // its line break
        const size_t previous = lastEnd == 0 ? std::string::npos : out.rfind('\n', lastEnd - 1);
        const size_t lastStart = previous == std::string::npos ? 0 : previous + 1;
        if (!TrimBlanks(std::string_view(out).substr(lastStart, lastEnd - lastStart)).empty())
            out.append(m_eol);
    }
    out.append("[").append(section).append("]").append(m_eol);
    out.append(entry).append("=").append(value).append(m_eol);
    return out;
}

}  // namespace nyr::detail
