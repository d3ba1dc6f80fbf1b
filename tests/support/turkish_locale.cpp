#include "tests/support/turkish_locale.h"

#include <clocale>
#include <cstdlib>

namespace nyr::test {

ScopedTurkishLocale::ScopedTurkishLocale()
{
    m_previous = std::setlocale(LC_ALL, nullptr);
    m_active = std::setlocale(LC_ALL, "tr_TR.UTF-8") != nullptr;
    const char* generated = std::getenv("NYR_TEST_LOCPATH");
    if (!m_active && generated && *generated) {
        // setlocale reads LOCPATH on every call; set it for this one only.
        setenv("LOCPATH", generated, 1);
        m_active = std::setlocale(LC_ALL, "tr_TR.UTF-8") != nullptr;
        unsetenv("LOCPATH");
    }
}

ScopedTurkishLocale::~ScopedTurkishLocale()
{
    std::setlocale(LC_ALL, m_previous.c_str());
}

}  // namespace nyr::test
