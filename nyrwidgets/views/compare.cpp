#include "nyrwidgets/views/compare.h"

#include "nyr/platform/ascii_p.h"

int NyrCompareIS(const std::string& a, const std::string& b)
{
    return nyr::ascii::CompareNoCase(a, b);
}
