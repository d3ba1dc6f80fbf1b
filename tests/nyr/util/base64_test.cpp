#include "nyr/util/base64.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <random>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

std::string Encode(const std::string& data, unsigned lineLength)
{
    return NyrEncodeBase64(reinterpret_cast<const unsigned char*>(data.data()), data.size(), lineLength);
}

// Decodes a copy held in a buffer of exactly the text's size plus its zero,
// so that AddressSanitizer builds catch any access past it.
std::string Decode(const std::string& text)
{
    auto buffer = std::make_unique<unsigned char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), buffer.get());
    buffer[text.size()] = 0;
    const unsigned long n = NyrDecodeBase64(buffer.get());
    EXPECT_LE(n, text.size());
    EXPECT_EQ(buffer[n], 0) << "output not terminated";
    return std::string(reinterpret_cast<char*>(buffer.get()), n);
}

std::string RandomBytes(size_t n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::string s(n, '\0');
    for (auto& c : s)
        c = static_cast<char>(rng());
    return s;
}

TEST(Base64, EncodesWithTheExtraZeroByteAndPaddingCountingLineBreaks)
{
    struct Case { std::string data; unsigned line; std::string text; };
    const Case cases[] = {
        {"ab", 0, "YWI="},
        {"abc", 0, "YWJjA==="},   // the extra zero byte opens a group of its own
        {"", 0, "A==="},
        {"a", 0, "YQ=="},
        {"abcd", 0, "YWJjZA=="},
        {"abc", 4, "YWJj\r\nA="},  // 7 characters with the break: one "=" only
        {"ab", 3, "YWI\r\n==="},   // a break at the very end counts towards the padding
        {"abcdef", 5, "YWJjZ\r\nGVmA="},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Encode(c.data, c.line), c.text) << c.data << " / " << c.line;
    std::string line;  // 57 bytes fill one mail line of 76 characters
    for (int i = 0; i < 19; ++i)
        line += "eHh4";
    EXPECT_EQ(Encode(std::string(57, 'x'), 76), line + "\r\nA=");
    EXPECT_EQ(NyrEncodeBase64(nullptr, 5, 0), "");
}

// The straightforward byte-at-a-time encoder the fast paths must agree with.
std::string ReferenceEncode(const std::string& data, unsigned lineLength)
{
    static const char* a = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    unsigned count = 0;
    auto put = [&](int v) {
        out += a[v];
        if (lineLength && ++count == lineLength) {
            out += "\r\n";
            count = 0;
        }
    };
    int pos = 0, pending = 0;
    for (size_t i = 0; i <= data.size(); ++i) {
        const int c = i < data.size() ? static_cast<unsigned char>(data[i]) : 0;
        const bool last = i == data.size();
        if (pos == 0) {
            put(c >> 2);
            pending = (c & 3) << 4;
        } else if (pos == 1) {
            put(pending | c >> 4);
            pending = (c & 15) << 2;
        } else {
            put(pending | c >> 6);
            if (!last)
                put(c & 63);
        }
        pos = (pos + 1) % 3;
    }
    while (out.size() % 4)
        out += '=';
    return out;
}

TEST(Base64, FastPathsMatchTheByteAtATimeRuleForAllLengthsAndLineLengths)
{
    for (size_t n = 0; n < 100; ++n) {
        const std::string data = RandomBytes(n, static_cast<unsigned>(n));
        for (unsigned line : {0u, 1u, 2u, 3u, 4u, 5u, 7u, 8u, 13u, 64u, 76u})
            ASSERT_EQ(Encode(data, line), ReferenceEncode(data, line)) << n << " bytes, line " << line;
    }
}

TEST(Base64, DecodesItsOwnTextBackWhenLinesHoldWholeGroups)
{
    for (size_t n : {0, 1, 2, 3, 56, 57, 58, 1000, 4096}) {
        const std::string data = RandomBytes(n, 7);
        for (unsigned line : {0u, 4u, 76u}) {
            const std::string text = Encode(data, line);
            ASSERT_EQ(Decode(text), data) << n << " bytes, line " << line;
            // Every prefix (a text cut anywhere) gives a prefix of the data.
            for (size_t cut = 0; cut < std::min<size_t>(text.size(), 200); ++cut) {
                const std::string part = Decode(text.substr(0, cut));
                ASSERT_EQ(part, data.substr(0, part.size())) << "cut at " << cut;
            }
        }
    }
}

TEST(Base64, DecoderStopsSkipsAndRestartsGroupsAsDocumented)
{
    struct Case { std::string text; std::string bytes; };
    const Case cases[] = {
        {"YWJjA===", "abc"},         // the lone "A" before "=" contributes nothing
        {"YWI=", "ab"},
        {"YWI=YWJj", "ab"},          // text after padding is ignored
        {"Y!W?I*=", "ab"},           // characters outside the alphabet are skipped
        {"YW\r\nJj", "a&"},          // a line break starts a new group: "Jj" is a group of its own
        {"YWJjY\r\nWI=", "abcX"},    // so breaks inside groups (line length 5) do not read back
        {"", ""},
        {"Y", ""},
        {std::string("YWJj\0YWJj", 9), "abc"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Decode(c.text), c.bytes) << c.text;
    EXPECT_EQ(NyrDecodeBase64(nullptr), 0u);
}

// `text` cut into pieces of random sizes, empty ones included.
std::vector<std::string> Pieces(const std::string& text, std::mt19937& rng)
{
    std::vector<std::string> pieces;
    for (size_t at = 0; at < text.size();) {
        const size_t n = std::min<size_t>(text.size() - at, rng() % 300);
        pieces.push_back(text.substr(at, n));
        at += n;
    }
    pieces.emplace_back();
    return pieces;
}

// A whole text through the streaming encoder in the given pieces, each into
// a buffer of exactly the size the encoder asks for.
std::string EncodeInPieces(CNyrBase64Encoder& encoder, const std::vector<std::string>& pieces)
{
    std::string text;
    for (size_t i = 0; i <= pieces.size(); ++i) {
        const size_t length = i < pieces.size() ? pieces[i].size() : 0;
        auto buffer = std::make_unique<char[]>(encoder.MaxText(length));
        const size_t n = i < pieces.size()
                             ? encoder.Add(reinterpret_cast<const unsigned char*>(pieces[i].data()), length, buffer.get())
                             : encoder.Finish(buffer.get());
        EXPECT_LE(n, encoder.MaxText(length));
        text.append(buffer.get(), n);
    }
    return text;
}

TEST(Base64, StreamsInPiecesGiveExactlyTheTextsOfTheWhole)
{
    std::mt19937 rng(2024);
    CNyrBase64Encoder reused(76);
    for (int round = 0; round < 300; ++round) {
        const std::string data = RandomBytes(rng() % 3000, rng());
        const unsigned line = std::vector<unsigned>{0, 1, 2, 3, 4, 5, 57, 76, 77}[rng() % 9];
        CNyrBase64Encoder encoder(line);
        const std::string text = EncodeInPieces(encoder, Pieces(data, rng));
        ASSERT_EQ(text, Encode(data, line)) << data.size() << " bytes, line " << line;
        // An encoder starts afresh after Finish.
        ASSERT_EQ(EncodeInPieces(reused, {data}), Encode(data, 76));

        // Decoding: the encoder's text with noise, stops and breaks mixed in.
        std::string noisy = text;
        for (int i = 0; i < 5; ++i)
            noisy.insert(rng() % (noisy.size() + 1), 1, "!\r\n=\0 A"[rng() % 8]);
        CNyrBase64Decoder decoder;
        std::string bytes;
        for (const std::string& piece : Pieces(noisy, rng)) {
            auto buffer = std::make_unique<unsigned char[]>(piece.size() + 1);
            bytes.append(reinterpret_cast<char*>(buffer.get()), decoder.Add(piece.data(), piece.size(), buffer.get()));
        }
        ASSERT_EQ(bytes, Decode(noisy.substr(0, noisy.find('\0')))) << noisy;
        EXPECT_EQ(decoder.Ended(), noisy.find_first_of(std::string("=\0", 2)) != std::string::npos);
    }
}

TEST(Base64, FileOverloadEncodesWholeRegularFilesOnly)
{
    nyr::test::TempDir dir;
    const std::string data = RandomBytes(100000, 3);
    nyr::test::WriteFile(dir.File("data.bin"), data);
    EXPECT_EQ(NyrEncodeBase64(dir.File("data.bin")), Encode(data, 76));
    nyr::test::WriteFile(dir.File("empty"), "");
    EXPECT_EQ(NyrEncodeBase64(dir.File("empty")), "A===");
    EXPECT_EQ(NyrEncodeBase64(dir.File("missing")), "");
    EXPECT_EQ(NyrEncodeBase64(dir.Path()), "");
    ASSERT_EQ(mkfifo(dir.File("fifo").c_str(), 0600), 0);
    EXPECT_EQ(NyrEncodeBase64(dir.File("fifo")), "");  // and does not wait for a writer
    EXPECT_EQ(NyrEncodeBase64("/dev/zero"), "");        // nor reads for ever
    nyr::test::WriteFile(dir.File("large"), "");
    truncate(dir.File("large").c_str(), static_cast<off_t>(kNyrMaxBase64FileSize) + 1);
    EXPECT_EQ(NyrEncodeBase64(dir.File("large")), "");
}

}  // namespace
