#include "nyr/util/base64.h"
#include "nyr/util/base64_p.h"

#include <fcntl.h>
#include <sys/stat.h>
#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>

#include "nyr/platform/file_read.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Two output characters for every 12-bit half of a group: one table look-up
// and one 2-byte store per pair instead of four single-character look-ups.
struct PairTable
{
    std::array<char, 2 * 4096> chars{};
    constexpr PairTable()
    {
        for (int i = 0; i < 4096; ++i) {
            chars[2 * i] = kAlphabet[i >> 6];
            chars[2 * i + 1] = kAlphabet[i & 63];
        }
    }
};
constexpr PairTable kPairs;

#if defined(__x86_64__) || defined(__i386__)
#define NYR_BASE64_SSSE3 1
// Four groups a step with SSSE3, while at least 16 bytes can be loaded:
// spread 12 bytes over 16 lanes, cut out the 6-bit values with two
// multiplications, and map values to the alphabet by their range (A-Z, a-z,
// 0-9, +, /) with one table shuffle. Returns the groups left over.
__attribute__((target("ssse3"))) size_t EncodeGroupsSsse3(const unsigned char*& src, size_t groups, char*& dst)
{
    const __m128i spread = _mm_set_epi8(10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1);
    const __m128i offsets = _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                          '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
    for (; groups >= 6; groups -= 4, src += 12, dst += 16) {
        const __m128i in = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)), spread);
        const __m128i hi = _mm_mulhi_epu16(_mm_and_si128(in, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
        const __m128i lo = _mm_mullo_epi16(_mm_and_si128(in, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
        const __m128i values = _mm_or_si128(hi, lo);
        // Range number: 0 for 0-25 (13 after the or), 1-12 for 26-63.
        __m128i range = _mm_subs_epu8(values, _mm_set1_epi8(51));
        range = _mm_or_si128(range, _mm_and_si128(_mm_cmpgt_epi8(_mm_set1_epi8(26), values), _mm_set1_epi8(13)));
        const __m128i chars = _mm_add_epi8(_mm_shuffle_epi8(offsets, range), values);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), chars);
    }
    return groups;
}

const bool kHaveSsse3 = __builtin_cpu_supports("ssse3");
#endif

// Encodes `groups` complete groups of three bytes into 4 * groups characters.
void EncodeGroups(const unsigned char* src, size_t groups, char* dst)
{
#ifdef NYR_BASE64_SSSE3
    if (kHaveSsse3)
        groups = EncodeGroupsSsse3(src, groups, dst);
#endif
    if constexpr (std::endian::native == std::endian::little) {
        // Two groups a step: one 8-byte load (of which 6 bytes count, so
        // only while 8 are there), four pair look-ups, one 8-byte store.
        for (; groups >= 3; groups -= 2, src += 6, dst += 8) {
            uint64_t v;
            std::memcpy(&v, src, 8);
            v = __builtin_bswap64(v);
            uint16_t p[4];
            std::memcpy(&p[0], &kPairs.chars[2 * ((v >> 52) & 0xFFF)], 2);
            std::memcpy(&p[1], &kPairs.chars[2 * ((v >> 40) & 0xFFF)], 2);
            std::memcpy(&p[2], &kPairs.chars[2 * ((v >> 28) & 0xFFF)], 2);
            std::memcpy(&p[3], &kPairs.chars[2 * ((v >> 16) & 0xFFF)], 2);
            const uint64_t out = uint64_t(p[0]) | uint64_t(p[1]) << 16 | uint64_t(p[2]) << 32 | uint64_t(p[3]) << 48;
            std::memcpy(dst, &out, 8);
        }
    }
    for (size_t g = 0; g < groups; ++g, src += 3, dst += 4) {
        const uint32_t v = uint32_t(src[0]) << 16 | uint32_t(src[1]) << 8 | src[2];
        std::memcpy(dst, &kPairs.chars[2 * (v >> 12)], 2);
        std::memcpy(dst + 2, &kPairs.chars[2 * (v & 0xFFF)], 2);
    }
}

// The characters after the last complete group, including the effect of the
// one extra zero byte that is always encoded after the input (intended: stored
// data depends on it). `rest` is the number of input bytes left (0 to 2).
// Returns the number of characters written (1 to 3).
size_t EncodeTail(const unsigned char* src, size_t rest, char* dst)
{
    switch (rest) {
    case 0:  // the zero byte opens a new group: one "A"
        dst[0] = 'A';
        return 1;
    case 1:  // the zero byte in second position flushes the first byte's bits
        dst[0] = kAlphabet[src[0] >> 2];
        dst[1] = kAlphabet[(src[0] & 3) << 4];
        return 2;
    default:  // in third position it writes the flush character but not a fourth
        dst[0] = kAlphabet[src[0] >> 2];
        dst[1] = kAlphabet[(src[0] & 3) << 4 | src[1] >> 4];
        dst[2] = kAlphabet[(src[1] & 15) << 2];
        return 3;
    }
}

// Decoder classes of a character: its 6-bit value, or one of these.
constexpr unsigned char kSkip = 0x40;   // outside the alphabet: ignored
constexpr unsigned char kStop = 0x80;   // "=" or the terminating zero
constexpr unsigned char kBreak = 0xC0;  // CR or LF: a new group starts
constexpr unsigned char kSpecial = 0xC0;

struct DecodeTable
{
    std::array<unsigned char, 256> v{};
    constexpr DecodeTable()
    {
        for (auto& c : v)
            c = kSkip;
        for (int i = 0; i < 64; ++i)
            v[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
        v[0] = kStop;
        v['='] = kStop;
        v['\r'] = kBreak;
        v['\n'] = kBreak;
    }
};
constexpr DecodeTable kDecode;

}  // namespace

std::string NyrEncodeBase64(const unsigned char* data, unsigned long length, unsigned lineLength)
{
    if (!data)
        return {};
    const size_t groups = length / 3;
    const size_t rest = length % 3;
    // The standard characters without padding, plus the extra zero byte's one.
    const size_t dataChars = groups * 4 + rest + 1;
    const size_t breaks = lineLength ? dataChars / lineLength : 0;
    const size_t written = dataChars + 2 * breaks;
    // Padding counts the line breaks too (intended), so it may differ from
    // the plain rule when breaks were written.
    const size_t padded = (written + 3) / 4 * 4;

    try {
        std::string out(padded, '=');
        char* dst = out.data();
        const unsigned char* tail = data + groups * 3;
        if (lineLength == 0) {
            EncodeGroups(data, groups, dst);
            EncodeTail(tail, rest, dst + groups * 4);
        } else if (lineLength % 4 == 0) {
            // Lines hold whole groups: encode line by line straight into place.
            const size_t perLine = lineLength / 4;
            size_t g = 0;
            for (; g + perLine <= groups; g += perLine) {
                EncodeGroups(data + g * 3, perLine, dst);
                dst += lineLength;
                *dst++ = '\r';
                *dst++ = '\n';
            }
            EncodeGroups(data + g * 3, groups - g, dst);
            dst += (groups - g) * 4;
            // Fewer than lineLength characters remain here (whole groups plus
            // 1 to 3 tail characters), so no break follows them.
            EncodeTail(tail, rest, dst);
        } else {
            // Breaks fall inside groups: encode the plain character run, then
            // copy it out line by line.
            std::string flat(dataChars, '\0');
            EncodeGroups(data, groups, flat.data());
            EncodeTail(tail, rest, flat.data() + groups * 4);
            const char* src = flat.data();
            for (size_t line = 0; line < breaks; ++line, src += lineLength) {
                std::memcpy(dst, src, lineLength);
                dst += lineLength;
                *dst++ = '\r';
                *dst++ = '\n';
            }
            std::memcpy(dst, src, dataChars - breaks * lineLength);
        }
        return out;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

std::string NyrEncodeBase64(const std::string& path)
{
    const int fd = NyrOpenRegularFile(path);
    if (fd < 0)
        return {};
    std::string text;
    struct stat st{};
    bool ok = fstat(fd, &st) == 0 && static_cast<unsigned long long>(st.st_size) <= kNyrMaxBase64FileSize;
    try {
        CNyrBase64Encoder encoder(76);
        std::array<unsigned char, 65535> piece;  // whole groups of three
        if (ok)
            text.reserve(encoder.MaxText(static_cast<size_t>(st.st_size)));
        size_t total = 0;
        while (ok) {
            const ssize_t n = read(fd, piece.data(), piece.size());
            if (n < 0 && errno == EINTR)
                continue;
            total += n > 0 ? static_cast<size_t>(n) : 0;
            // The size is checked as the bytes come: the file may grow while it is read.
            ok = n >= 0 && total <= kNyrMaxBase64FileSize;
            // An empty file still encodes as "A===".
            const size_t have = text.size();
            text.resize(have + encoder.MaxText(n > 0 ? static_cast<size_t>(n) : 0));
            const size_t written = n > 0 ? encoder.Add(piece.data(), static_cast<size_t>(n), text.data() + have)
                                         : encoder.Finish(text.data() + have);
            text.resize(have + written);
            if (n <= 0)
                break;
        }
    } catch (const std::bad_alloc&) {
        ok = false;
    }
    close(fd);
    return ok ? text : std::string();
}

CNyrBase64Encoder::CNyrBase64Encoder(unsigned lineLength) : m_lineLength(lineLength) {}

size_t CNyrBase64Encoder::MaxText(size_t length) const
{
    // Whole groups with the two bytes carried, the tail and its padding.
    const size_t chars = (length + 2) / 3 * 4 + 6;
    return m_lineLength ? chars + 2 * (chars / m_lineLength + 1) : chars;
}

size_t CNyrBase64Encoder::Put(const char* chars, size_t count, char* out)
{
    m_written += count;
    if (m_lineLength == 0) {
        std::memcpy(out, chars, count);
        return count;
    }
    char* const start = out;
    while (count > 0) {
        const size_t take = std::min(count, m_lineLength - m_column);
        std::memcpy(out, chars, take);
        out += take;
        chars += take;
        count -= take;
        m_column += take;
        if (m_column == m_lineLength) {
            *out++ = '\r';
            *out++ = '\n';
            m_written += 2;
            m_column = 0;
        }
    }
    return static_cast<size_t>(out - start);
}

size_t CNyrBase64Encoder::Add(const unsigned char* data, size_t length, char* out)
{
    char* const start = out;
    char chars[4 * 1024];
    if (m_carried > 0) {
        // The bytes carried from the last piece open the first group.
        unsigned char group[3] = {m_carry[0], m_carry[1], 0};
        size_t have = m_carried;
        for (; have < 3 && length > 0; --length)
            group[have++] = *data++;
        if (have < 3) {
            std::memcpy(m_carry, group, have);
            m_carried = have;
            return 0;
        }
        EncodeGroups(group, 1, chars);
        out += Put(chars, 4, out);
        m_carried = 0;
    }
    while (length >= 3) {
        const size_t groups = std::min(length / 3, sizeof chars / 4);
        EncodeGroups(data, groups, chars);
        out += Put(chars, groups * 4, out);
        data += groups * 3;
        length -= groups * 3;
    }
    for (; length > 0; --length)
        m_carry[m_carried++] = *data++;
    return static_cast<size_t>(out - start);
}

size_t CNyrBase64Encoder::Finish(char* out)
{
    char tail[3];
    size_t written = Put(tail, EncodeTail(m_carry, m_carried, tail), out);
    // Padding counts the line breaks too (intended): see NyrEncodeBase64.
    const size_t padding = static_cast<size_t>((4 - m_written % 4) % 4);
    std::memset(out + written, '=', padding);
    written += padding;
    m_carried = 0;
    m_column = 0;
    m_written = 0;
    return written;
}

size_t CNyrBase64Decoder::Add(const char* text, size_t length, unsigned char* out)
{
    const auto& table = kDecode.v;
    unsigned char* const start = out;
    for (size_t i = 0; i < length && !m_ended; ++i) {
        const unsigned v = table[static_cast<unsigned char>(text[i])];
        if (v == kStop) {
            m_ended = true;
        } else if (v == kBreak) {
            m_position = 0;
        } else if (v != kSkip) {
            if (m_position > 0)
                *out++ = static_cast<unsigned char>(m_held << (2 * m_position) | v >> (6 - 2 * m_position));
            m_held = v;
            m_position = (m_position + 1) & 3;
        }
    }
    return static_cast<size_t>(out - start);
}

void NyrAppendStandardBase64(const unsigned char* data, std::size_t length, unsigned lineLength, std::string& out)
{
    const size_t groups = length / 3;
    const size_t rest = length % 3;
    const size_t chars = (length + 2) / 3 * 4;
    const size_t breaks = lineLength && chars ? (chars - 1) / lineLength : 0;
    // Breaks inside groups need the plain run first; allocated before `out` changes.
    std::string flat(lineLength % 4 ? chars : 0, '\0');
    const size_t start = out.size();
    out.resize(start + chars + 2 * breaks);
    char* dst = out.data() + start;
    auto tail = [&](char* at) {
        if (rest == 0)
            return;
        const unsigned char* src = data + groups * 3;
        const unsigned second = rest == 2 ? src[1] : 0;
        at[0] = kAlphabet[src[0] >> 2];
        at[1] = kAlphabet[(src[0] & 3) << 4 | second >> 4];
        at[2] = rest == 2 ? kAlphabet[(second & 15) << 2] : '=';
        at[3] = '=';
    };
    if (lineLength == 0 || lineLength % 4 == 0) {
        // Whole groups to a line: each line is encoded straight into place,
        // with a break after it while more characters follow.
        const size_t perLine = lineLength ? lineLength / 4 : groups + 1;
        size_t g = 0;
        for (; g + perLine < groups || (g + perLine == groups && rest); g += perLine) {
            EncodeGroups(data + g * 3, perLine, dst);
            dst += lineLength;
            *dst++ = '\r';
            *dst++ = '\n';
        }
        EncodeGroups(data + g * 3, groups - g, dst);
        tail(dst + (groups - g) * 4);
        return;
    }
    EncodeGroups(data, groups, flat.data());
    tail(flat.data() + groups * 4);
    for (size_t at = 0; at < chars; at += lineLength) {
        const size_t n = std::min<size_t>(lineLength, chars - at);
        std::memcpy(dst, flat.data() + at, n);
        dst += n;
        if (at + n < chars) {
            *dst++ = '\r';
            *dst++ = '\n';
        }
    }
}

unsigned long NyrDecodeBase64(unsigned char* text)
{
    if (!text)
        return 0;
    const unsigned char* in = text;
    unsigned char* out = text;  // never ahead of `in`: 4 characters give at most 3 bytes
    const auto& table = kDecode.v;
    for (;;) {
        // At the start of a group: four alphabet characters in a row. Each
        // character is looked at only after the one before it was not the
        // terminating zero, so nothing past it is ever read.
        for (;;) {
            const unsigned a = table[in[0]];
            if (a & kSpecial)
                break;
            const unsigned b = table[in[1]];
            if (b & kSpecial)
                break;
            const unsigned c = table[in[2]];
            if (c & kSpecial)
                break;
            const unsigned d = table[in[3]];
            if (d & kSpecial)
                break;
            const uint32_t v = a << 18 | b << 12 | c << 6 | d;
            out[0] = static_cast<unsigned char>(v >> 16);
            out[1] = static_cast<unsigned char>(v >> 8);
            out[2] = static_cast<unsigned char>(v);
            out += 3;
            in += 4;
        }
        // One character at a time until a group starts again.
        unsigned pos = 0;
        unsigned held = 0;
        do {
            const unsigned v = table[*in++];
            if (v == kStop) {
                *out = 0;
                return static_cast<unsigned long>(out - text);
            }
            if (v == kBreak) {
                pos = 0;
                continue;
            }
            if (v == kSkip)
                continue;
            switch (pos) {
            case 0:
                break;
            case 1:
                *out++ = static_cast<unsigned char>(held << 2 | v >> 4);
                break;
            case 2:
                *out++ = static_cast<unsigned char>(held << 4 | v >> 2);
                break;
            default:
                *out++ = static_cast<unsigned char>(held << 6 | v);
                break;
            }
            held = v;
            pos = (pos + 1) & 3;
        } while (pos != 0);
    }
}
