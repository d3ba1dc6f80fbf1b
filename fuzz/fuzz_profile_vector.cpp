// The integer-vector reader on arbitrary text: it must finish, and what it
// reads must survive a write and a second read unchanged.
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "nyr/util/profile_text_p.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<int> values;
    nyr::detail::ParseIntVector(text, values);
    size_t semicolons = 0;
    for (const char c : text)
        semicolons += c == ';';
    if (values.size() > semicolons)
        abort();
    std::vector<int> again;
    nyr::detail::ParseIntVector(nyr::detail::FormatIntVector(values), again);
    if (again != values)
        abort();
    return 0;
}
