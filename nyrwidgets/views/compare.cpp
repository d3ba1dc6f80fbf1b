#include "nyrwidgets/views/compare.h"

#include <cmath>
#include <cstring>

namespace {

template <class T>
int Sign(T a, T b)
{
    return (a < b) ? -1 : (b < a) ? 1 : 0;
}

unsigned char Lower(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

}  // namespace

int NyrCompare(const std::string& a, const std::string& b)
{
    const int r = a.compare(b);
    return (r < 0) ? -1 : (r > 0) ? 1 : 0;
}

int NyrCompareIS(const std::string& a, const std::string& b)
{
    const std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char ca = Lower(static_cast<unsigned char>(a[i]));
        const unsigned char cb = Lower(static_cast<unsigned char>(b[i]));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return Sign(a.size(), b.size());
}

int NyrCompare(int a, int b)
{
    return Sign(a, b);
}

int NyrCompare(long a, long b)
{
    return Sign(a, b);
}

int NyrCompare(unsigned int a, unsigned int b)
{
    return Sign(a, b);
}

int NyrCompare(unsigned long a, unsigned long b)
{
    return Sign(a, b);
}

int NyrCompare(double a, double b)
{
    const bool nanA = std::isnan(a);
    const bool nanB = std::isnan(b);
    if (nanA || nanB)
        return Sign(nanA, nanB);
    return Sign(a, b);
}
