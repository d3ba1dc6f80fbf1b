#include "nyr/platform/ascii_p.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <cctype>
#include <string>

#include "tests/support/turkish_locale.h"

namespace {

using namespace nyr::ascii;

// Every byte classifies and folds as the C library does in the "C" locale,
// while the process runs under tr_TR, where tolower('I') is a dotless i.
TEST(Ascii, EveryByteAsTheCLocaleWhateverLocaleIsSet)
{
    const nyr::test::ScopedTurkishLocale turkish;
    NYR_REQUIRE_TURKISH_LOCALE(turkish);
    const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t{});
    ASSERT_NE(c, locale_t{});
    for (int byte = 0; byte < 256; ++byte) {
        const char ch = static_cast<char>(byte);
        SCOPED_TRACE(byte);
        EXPECT_EQ(IsSpace(ch), isspace_l(byte, c) != 0);
        EXPECT_EQ(IsLineBlank(ch), isspace_l(byte, c) != 0 && ch != '\n');
        EXPECT_EQ(IsDigit(ch), isdigit_l(byte, c) != 0);
        EXPECT_EQ(IsAlnum(ch), isalnum_l(byte, c) != 0);
        EXPECT_EQ(static_cast<unsigned char>(ToLower(ch)), tolower_l(byte, c));
        EXPECT_EQ(static_cast<unsigned char>(ToUpper(ch)), toupper_l(byte, c));
    }
    freelocale(c);
    EXPECT_TRUE(EqualsNoCase("TITLE", "title"));
    EXPECT_EQ(CompareNoCase("Istanbul", "istanbul"), 0);
}

struct TrimCase
{
    std::string text;
    bool lineBlanks;  // IsLineBlank instead of IsSpace
    std::string trimmed;
};

TEST(Ascii, TrimmedDropsOnlyItsBlanksAndOnlyAtTheEnds)
{
    const TrimCase cases[] = {
        {"", false, ""},
        {" \t\r\n\v\f", false, ""},
        {"  a b  ", false, "a b"},
        {"\na\r\n", false, "a"},
        {"\na\r\n", true, "\na\r\n"},           // a line feed is no line blank
        {"\t value\v\f\r", true, "value"},      // what the settings store trims
        {"\xC2\xA0x\xC2\xA0", false, "\xC2\xA0x\xC2\xA0"},  // UTF-8 no-break spaces stay
        {std::string(" \0 ", 3), false, std::string("\0", 1)},
    };
    for (const TrimCase& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.lineBlanks ? Trimmed(c.text, IsLineBlank) : Trimmed(c.text), c.trimmed);
    }
}

}  // namespace
