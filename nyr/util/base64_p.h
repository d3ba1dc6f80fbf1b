#pragma once

#include <cstddef>
#include <string>

#include "nyr/platform/export.h"

// Standard Base64 (RFC 2045 and RFC 4648) beside the library's own form, for
// mail attachments that strict decoders must read. Exported for the tests;
// not an installed header.

// Appends the encoding of `length` bytes to `out`: "=" padding to whole
// groups of four, nothing encoded beyond the input, "\r\n" after every
// `lineLength` characters except after the last (0: no breaks). May throw
// std::bad_alloc; `out` then keeps what it held.
NYR_EXPORT void NyrAppendStandardBase64(const unsigned char* data, std::size_t length, unsigned lineLength,
                                        std::string& out);
