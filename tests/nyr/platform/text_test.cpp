#include "nyr/platform/text_p.h"

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <string>

#include "nyr/platform/ascii_p.h"

namespace {

// Restores the locale a test switched to.
class LocaleGuard
{
public:
    LocaleGuard() : m_saved(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleGuard() { std::setlocale(LC_ALL, m_saved.c_str()); }

private:
    std::string m_saved;
};

TEST(Text, BlanksAreTheCLocaleWhiteSpaceWhateverTheHostsLocale)
{
    // Every byte against the C locale's isspace; the settings store's set is
    // that without LF. Under a Turkish or German locale nothing changes.
    for (const char* locale : {"C", "tr_TR.UTF-8", "de_DE.ISO-8859-1"}) {
        LocaleGuard guard;
        std::setlocale(LC_ALL, locale);  // where installed
        for (int b = 0; b < 256; ++b) {
            const char c = static_cast<char>(b);
            const bool cSpace = b < 0x80 && (b == ' ' || (b >= '\t' && b <= '\r'));
            EXPECT_EQ(cSpace, nyr::text::IsSpace(c)) << locale << " byte " << b;
            EXPECT_EQ(cSpace && b != '\n', nyr::text::IsProfileBlank(c)) << locale << " byte " << b;
            if (std::string(locale) == "C") {
                EXPECT_EQ(std::isspace(b) != 0, nyr::text::IsSpace(c)) << "byte " << b;
            }
        }
        EXPECT_EQ('i', nyr::ascii::ToLower('I')) << locale;
    }
}

TEST(Text, TrimmedTakesBlanksFromBothEndsOnly)
{
    struct Case
    {
        std::string text;
        std::string trimmed;
        std::string profileTrimmed;
    };
    const Case cases[] = {
        {"", "", ""},
        {" \t\r\n\v\f", "", "\n"},
        {"  a b  ", "a b", "a b"},
        {"\na\n", "a", "\na\n"},
        {"\xC2\xA0x\xC2\xA0", "\xC2\xA0x\xC2\xA0", "\xC2\xA0x\xC2\xA0"},  // UTF-8 no-break space is text
        {std::string("\0a\0", 3), std::string("\0a\0", 3), std::string("\0a\0", 3)},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.trimmed, nyr::text::Trimmed(c.text)) << '"' << c.text << '"';
        EXPECT_EQ(c.profileTrimmed, nyr::text::TrimmedBy(c.text, nyr::text::IsProfileBlank)) << '"' << c.text << '"';
    }
    static_assert(nyr::text::Trimmed(" x ") == "x");
}

}  // namespace
