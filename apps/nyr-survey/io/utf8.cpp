#include "apps/nyr-survey/io/utf8.h"

#include <cstdint>
#include <cstring>

namespace survey {

namespace {

bool Continuation(unsigned char c)
{
    return (c & 0xC0) == 0x80;
}

// The length of the well-formed sequence at `p`, 0 when it is not one
// (the ranges of Unicode's table 3-7).
std::size_t SequenceLength(const unsigned char* p, std::size_t left)
{
    const unsigned char c = p[0];
    if (c >= 0xC2 && c <= 0xDF)
        return left >= 2 && Continuation(p[1]) ? 2 : 0;
    if (c >= 0xE0 && c <= 0xEF) {
        if (left < 3 || !Continuation(p[1]) || !Continuation(p[2]))
            return 0;
        if ((c == 0xE0 && p[1] < 0xA0) || (c == 0xED && p[1] > 0x9F))
            return 0;  // overlong, or a surrogate
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        if (left < 4 || !Continuation(p[1]) || !Continuation(p[2]) || !Continuation(p[3]))
            return 0;
        if ((c == 0xF0 && p[1] < 0x90) || (c == 0xF4 && p[1] > 0x8F))
            return 0;  // overlong, or above U+10FFFF
        return 4;
    }
    return 0;
}

}  // namespace

std::size_t FirstInvalidUtf8(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        if (i + 8 <= n) {
            uint64_t word = 0;
            std::memcpy(&word, p + i, 8);
            if ((word & 0x8080808080808080ull) == 0) {
                i += 8;
                continue;
            }
        }
        if (p[i] < 0x80) {
            ++i;
            continue;
        }
        const std::size_t len = SequenceLength(p + i, n - i);
        if (len == 0)
            return i;
        i += len;
    }
    return std::string_view::npos;
}

}  // namespace survey
