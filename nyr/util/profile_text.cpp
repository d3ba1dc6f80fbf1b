#include "nyr/util/profile_text_p.h"

#include <climits>
#include <cstring>

namespace nyr::detail {

namespace {

constexpr unsigned char FoldCase(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

constexpr bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
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

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

size_t CaseInsensitiveHash::operator()(std::string_view s) const noexcept
{
    uint64_t h = 14695981039346656037ull;  // FNV-1a
    for (const char c : s)
        h = (h ^ FoldCase(static_cast<unsigned char>(c))) * 1099511628211ull;
    return static_cast<size_t>(h);
}

bool CaseInsensitiveEqual::operator()(std::string_view a, std::string_view b) const noexcept
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (FoldCase(static_cast<unsigned char>(a[i])) != FoldCase(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

std::string_view TrimBlanks(std::string_view s)
{
    size_t b = 0;
    size_t e = s.size();
    while (b < e && IsBlank(s[b]))
        ++b;
    while (e > b && IsBlank(s[e - 1]))
        --e;
    return s.substr(b, e - b);
}

int ParseLeadingInt(std::string_view s)
{
    size_t i = 0;
    while (i < s.size() && (IsBlank(s[i]) || s[i] == '\n'))
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

CProfileText::CProfileText(std::string text) : m_text(std::move(text))
{
    Parse();
}

void CProfileText::Parse()
{
    const std::string_view all = m_text;
    if (const size_t lf = all.find('\n'); lf != std::string_view::npos && lf > 0 && all[lf - 1] == '\r')
        m_eol = "\r\n";

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
            const auto [it, added] = m_sections.try_emplace(name, Section{next, lf == std::string_view::npos, {}});
            current = added ? &it->second : nullptr;  // the first matching section wins
        } else if (const size_t eq = line.find('='); eq != std::string_view::npos && current) {
            const std::string_view name = TrimBlanks(line.substr(0, eq));
            if (!name.empty()) {
                const std::string_view raw = line.substr(eq + 1);
                size_t lead = 0;
                while (lead < raw.size() && IsBlank(raw[lead]))
                    ++lead;
                const std::string_view value = Unquote(TrimBlanks(raw)).substr(0, kMaxValue);
                current->entries.try_emplace(name, Entry{value, pos + eq + 1 + lead, end});
                current->insertAt = next;
                current->needsBreak = lf == std::string_view::npos;
            }
        }
        pos = next;
    }
}

std::optional<std::string_view> CProfileText::Find(std::string_view section, std::string_view entry) const
{
    const auto s = m_sections.find(TrimBlanks(section));
    if (s == m_sections.end())
        return std::nullopt;
    const auto e = s->second.entries.find(TrimBlanks(entry));
    if (e == s->second.entries.end())
        return std::nullopt;
    return e->second.value;
}

std::string CProfileText::With(std::string_view section, std::string_view entry, std::string_view value) const
{
    section = TrimBlanks(section);
    entry = TrimBlanks(entry);
    const std::string_view all = m_text;
    std::string out;
    out.reserve(all.size() + section.size() + entry.size() + value.size() + 8);

    const auto s = m_sections.find(section);
    if (s != m_sections.end()) {
        const Section& sec = s->second;
        if (const auto e = sec.entries.find(entry); e != sec.entries.end()) {
            out.append(all.substr(0, e->second.valueBegin));
            out.append(value);
            out.append(all.substr(e->second.lineEnd));
            return out;
        }
        out.append(all.substr(0, sec.insertAt));
        if (sec.needsBreak)
            out.append(m_eol);
        out.append(entry).append("=").append(value).append(m_eol);
        out.append(all.substr(sec.insertAt));
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
