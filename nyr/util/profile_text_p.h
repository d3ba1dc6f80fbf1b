#pragma once

// The settings file's text model behind CNyrProfileEntries: parsing, the
// look-up index and single-entry edits. Exported only so that the fuzz
// targets, benchmarks and tests can drive the parser without files; not part
// of the installed interface.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nyr/platform/export.h"

namespace nyr::detail {

// Case-insensitive (ASCII) hashing and comparison of names.
struct CaseInsensitiveHash
{
    size_t operator()(std::string_view s) const noexcept;
};
struct CaseInsensitiveEqual
{
    bool operator()(std::string_view a, std::string_view b) const noexcept;
};

// Blanks around names and values: space, tab, CR, vertical tab, form feed.
NYR_EXPORT std::string_view TrimBlanks(std::string_view s);

// Reads an integer the way atoi does (leading white space, a sign, digits;
// anything after them ignored; no digits give 0), saturating at the limits of
// int instead of overflowing.
NYR_EXPORT int ParseLeadingInt(std::string_view s);

// The integer-vector form "1;2;3;": every element ends in ";" and text after
// the last ";" is ignored (a value without its final ";" loses its last
// element: intended). An empty element (";" where an element should start)
// ends the reading and keeps what was read before it. Clears `values` first.
NYR_EXPORT void ParseIntVector(std::string_view text, std::vector<int>& values);
// "%d;" for each element, concatenated.
NYR_EXPORT std::string FormatIntVector(const std::vector<int>& values);

// Whether a name or value can be written without changing the meaning of
// other lines (see profile_entries.h for the rules).
NYR_EXPORT bool IsWritableSection(std::string_view section);
NYR_EXPORT bool IsWritableEntry(std::string_view entry);
NYR_EXPORT bool IsWritableValue(std::string_view value);

// One parsed settings text. The index holds views into the text, so the
// object is neither copied nor moved; share it through a pointer.
class NYR_EXPORT CProfileText
{
public:
    // Values are cut to this many characters on reading.
    static constexpr size_t kMaxValue = 4096;

    explicit CProfileText(std::string text);
    CProfileText(const CProfileText&) = delete;
    CProfileText& operator=(const CProfileText&) = delete;

    const std::string& Text() const { return m_text; }

    // The value of the first matching entry of the first matching section:
    // trimmed, one pair of enclosing quotes removed, cut to kMaxValue. The
    // names are trimmed before comparing. nullopt when absent.
    std::optional<std::string_view> Find(std::string_view section, std::string_view entry) const;

    // The whole text after setting `entry` of `section` to `value`: the first
    // matching entry's value is replaced (its name and the blanks around "="
    // stay as they were), or the entry is added after the last entry of the
    // first matching section, or a new section is appended. Every other line
    // stays byte for byte. New lines end as the text's first line does (CRLF
    // or LF). Names and value must pass the IsWritable checks.
    std::string With(std::string_view section, std::string_view entry, std::string_view value) const;

private:
    struct Entry
    {
        std::string_view value;  // as read: trimmed, unquoted, cut
        size_t valueBegin;       // raw value text [valueBegin, lineEnd) is what a write replaces
        size_t lineEnd;          // end of the line's text, before its line break
    };
    struct Section
    {
        // Where an added entry goes: after the last entry line of the
        // section, or after its header when it has none.
        size_t insertAt;  // just after that line and its line break
        bool needsBreak;  // that line ends the text without a line break
        std::unordered_map<std::string_view, Entry, CaseInsensitiveHash, CaseInsensitiveEqual> entries;
    };

    void Parse();

    std::string m_text;
    std::string_view m_eol = "\n";
    std::unordered_map<std::string_view, Section, CaseInsensitiveHash, CaseInsensitiveEqual> m_sections;
};

}  // namespace nyr::detail
