#pragma once

#include <string>

namespace nyr::test {

// Switches the process's C locale to tr_TR.UTF-8 for the life of the object.
// In that locale tolower('I') is not 'i' and toupper('i') is not 'I', which
// breaks case folding that goes through the C library. The locale is taken
// from the system, else from the folder in $NYR_TEST_LOCPATH (CTest generates
// it there with localedef when the system lacks it).
class ScopedTurkishLocale
{
public:
    ScopedTurkishLocale();
    ~ScopedTurkishLocale();
    ScopedTurkishLocale(const ScopedTurkishLocale&) = delete;
    ScopedTurkishLocale& operator=(const ScopedTurkishLocale&) = delete;

    bool Active() const { return m_active; }

private:
    std::string m_previous;
    bool m_active = false;
};

}  // namespace nyr::test

// Skips the test, visibly, when the Turkish locale cannot be had.
#define NYR_REQUIRE_TURKISH_LOCALE(locale)                                                               \
    if (!(locale).Active())                                                                              \
    GTEST_SKIP() << "tr_TR.UTF-8 is not available: install it with scripts/setup.sh (package locales) " \
                    "or localedef -i tr_TR -f UTF-8 tr_TR.UTF-8"
