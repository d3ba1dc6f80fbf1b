// The settings file reader and single-entry writer on arbitrary text. Besides
// crashes, checks that a write reads back and that every other line is kept.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nyr/util/profile_text_p.h"

using nyr::detail::CProfileText;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const CProfileText parsed(text);

    // Names from the input's first line "section|entry", else fixed ones.
    std::string section = "Section";
    std::string entry = "Entry";
    const std::string first = text.substr(0, text.find('\n'));
    if (const size_t bar = first.find('|'); bar != std::string::npos) {
        section = first.substr(0, bar);
        entry = first.substr(bar + 1);
    }
    parsed.Find(section, entry);
    parsed.Find(entry, section);
    if (!nyr::detail::IsWritableSection(section) || !nyr::detail::IsWritableEntry(entry))
        return 0;

    const std::string updated = parsed.With(section, entry, "fuzz value");
    const CProfileText reparsed(updated);
    const auto value = reparsed.Find(section, entry);
    if (!value || *value != "fuzz value")
        abort();  // the written entry must read back
    // The edit replaces the tail of one line or inserts lines: the text before
    // the first difference is the old text's, and so is what follows.
    size_t head = 0;
    while (head < text.size() && head < updated.size() && text[head] == updated[head])
        ++head;
    size_t tail = 0;
    while (tail < text.size() - head && tail < updated.size() - head &&
           text[text.size() - 1 - tail] == updated[updated.size() - 1 - tail])
        ++tail;
    const std::string removed = text.substr(head, text.size() - head - tail);
    if (removed.find('\n') != std::string::npos)
        abort();  // a write never removes a line break, so no other line is lost
    return 0;
}
