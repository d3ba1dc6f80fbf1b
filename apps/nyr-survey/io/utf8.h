#pragma once

#include <string_view>

namespace survey {

// The offset of the first byte that does not belong to well-formed UTF-8
// (overlong forms, surrogates and code points above U+10FFFF are not), or
// npos when the whole text is. ASCII runs are skipped eight bytes at a time.
std::size_t FirstInvalidUtf8(std::string_view text);

}  // namespace survey
