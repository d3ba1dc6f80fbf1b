#include "nyrwidgets/views/compare.h"

namespace {

unsigned char Lower(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

}  // namespace

int NyrCompareIS(const std::string& a, const std::string& b)
{
    const std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char ca = Lower(static_cast<unsigned char>(a[i]));
        const unsigned char cb = Lower(static_cast<unsigned char>(b[i]));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return nyr::views_detail::Sign(a.size(), b.size());
}
