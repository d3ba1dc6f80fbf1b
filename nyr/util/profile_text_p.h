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
#include <vector>

#include "nyr/platform/export.h"

namespace nyr::detail {

// Blanks around names and values: space, tab, CR, vertical tab, form feed.
NYR_EXPORT std::string_view TrimBlanks(std::string_view s);

// Reads an integer the way atoi does (leading white space, a sign, digits;
// anything after them ignored; no digits give 0), saturating at the limits of
// int instead of overflowing.
NYR_EXPORT int ParseLeadingInt(std::string_view s);

// Reads an integer as the platform's private-profile integer read does:
// leading blanks, a sign, decimal digits; text after the digits is ignored
// and no digits read as 0. The digits accumulate modulo 2^32 and a minus
// sign negates modulo 2^32, so "4294967295" reads as 4294967295,
// "4294967296" as 0 and "-1" as 4294967295.
NYR_EXPORT unsigned ParseProfileUnsigned(std::string_view s);

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

// One parsed settings text: the text and an index of its first matching
// sections and entries. Immutable once made; share it through a pointer.
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
    // Names and values are [begin, begin + length) of m_text; texts are at
    // most 4 GiB (the store reads files of at most 64 MiB).
    struct Entry
    {
        uint32_t tag = 0;  // 0: empty slot
        uint32_t nameBegin, nameLength;
        uint32_t valueBegin, valueLength;  // as read: trimmed, unquoted, cut
        uint32_t rawValueBegin;            // [rawValueBegin, lineEnd) is what a write replaces
        uint32_t lineEnd;                  // end of the line's text, before its line break
    };

    // Open addressing with linear probing in a power-of-two table kept at
    // most half full. The records sit in the slots, so a look-up touches one
    // slot and the name's text; a miss compares 32-bit tags only.
    template <class Record>
    class FlatIndex
    {
    public:
        const Record* Find(std::string_view text, std::string_view name, uint32_t tag) const;
        // Adds `record` unless a record of the same name is there (the first
        // stays); returns the added record or null.
        Record* Add(std::string_view text, const Record& record);

    private:
        std::vector<Record> m_slots;
        size_t m_count = 0;
    };

    struct Section
    {
        uint32_t tag = 0;
        uint32_t nameBegin, nameLength;
        // Where an added entry goes: after the last entry line of the
        // section, or after its header when it has none.
        uint32_t insertAt;  // just after that line and its line break
        bool needsBreak;    // that line ends the text without a line break
        FlatIndex<Entry> entries;
    };

    void Parse();
    const Entry* FindEntry(std::string_view section, std::string_view entry, const Section** owner) const;

    std::string m_text;
    std::string_view m_eol = "\n";
    FlatIndex<Section> m_sections;
};

}  // namespace nyr::detail
