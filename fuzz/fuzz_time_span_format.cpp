// Time-span format patterns. Input: a first line "SECONDS FLAG" (the span,
// taken modulo 2^31, and a rounding flag), then the pattern.
// Checked, beyond the absence of a crash:
//  - the text stays within three bytes per pattern byte (the longest
//    expansion is an hour count of six digits for a two-byte "%h");
//  - a pattern without '%' comes back as it is;
//  - a second pattern made of the input's bytes as tokens ("%D", "%H", "%M",
//    "%S", "%h" and separators) gives, unrounded, the fields of the span:
//    total days, minutes and seconds in two digits, "%h" the total hours,
//    and "%H" the total hours too unless a "%h" is there (then 00 to 23).
#include <cstddef>
#include <cstdint>
#include <string>

#include "nyr/time/time_span.h"

namespace {

// A leading decimal number of `text` from `i` on (at most 18 digits), or 0.
int64_t ReadNumber(const std::string& text, std::size_t& i)
{
    int64_t value = 0;
    for (int digits = 0; i < text.size() && text[i] >= '0' && text[i] <= '9' && digits < 18; ++i, ++digits)
        value = value * 10 + (text[i] - '0');
    return value;
}

std::string Two(int64_t value)
{
    return std::string(1, static_cast<char>('0' + value / 10)) + static_cast<char>('0' + value % 10);
}

void CheckTokens(const CNyrTimeSpan& span, const std::string& bytes)
{
    static const char* const kTokens[] = {"%D", "%H", "%M", "%S", "%h", ":", " ", "d"};
    std::string pattern;
    bool lowerH = false;
    for (unsigned char byte : bytes) {
        lowerH = lowerH || byte % 8 == 4;
        pattern += kTokens[byte % 8];
    }
    const int64_t s = span.GetTimeSpan().GetTimeSpan();
    std::string expected;
    for (unsigned char byte : bytes) {
        switch (byte % 8) {
        case 0: expected += std::to_string(s / 86400); break;
        case 1: expected += lowerH ? Two(s / 3600 % 24) : std::to_string(s / 3600); break;
        case 2: expected += Two(s / 60 % 60); break;
        case 3: expected += Two(s % 60); break;
        case 4: expected += std::to_string(s / 3600); break;
        default: expected += kTokens[byte % 8];
        }
    }
    if (span.Format(pattern, CNyrTimeHelper::eRoundNone) != expected)
        __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::size_t i = 0;
    const int64_t seconds = ReadNumber(input, i) % 2147483648;
    while (i < input.size() && input[i] == ' ')
        ++i;
    const int flag = static_cast<int>(ReadNumber(input, i) % 256) - 128;
    const std::size_t split = input.find('\n');
    const std::string pattern = split == std::string::npos ? std::string() : input.substr(split + 1);

    CNyrTimeSpan span(static_cast<long>(seconds));
    span.SetFracSecond(static_cast<double>(size % 100) / 100.0);
    const std::string text = span.Format(pattern, flag);
    if (text.size() > 3 * pattern.size())
        __builtin_trap();
    if (pattern.find('%') == std::string::npos && text != pattern)
        __builtin_trap();
    CheckTokens(span, pattern.substr(0, 64));
    return 0;
}
