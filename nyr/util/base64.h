#pragma once

#include <string>

#include "nyr/platform/export.h"

// The library's Base64. Stored leap-second tables and sent attachments depend
// on two deliberate departures from the published rules:
//  - one extra zero byte is always encoded after the input, so "abc" gives
//    "YWJjA===" and an empty non-null input "A===";
//  - "=" padding fills up to a multiple of 4 of all characters written,
//    line breaks included.
// Strict decoders refuse such text; NyrDecodeBase64 reads it back exactly.

// Encodes `length` bytes with "\r\n" after every `lineLength` characters
// (0: no breaks). A null `data` gives an empty text.
NYR_EXPORT std::string NyrEncodeBase64(const unsigned char* data, unsigned long length, unsigned lineLength);

// Encodes a whole file with lines of 76 characters; empty when the file
// cannot be read.
NYR_EXPORT std::string NyrEncodeBase64(const std::string& path);

// Decodes the zero-terminated `text` in place and returns the number of bytes
// written (a terminating zero follows them, not counted). Stops at the first
// "=" or the terminating zero; CR and LF start a new group of four; other
// characters outside the alphabet are skipped. Never reads or writes past the
// terminating zero.
NYR_EXPORT unsigned long NyrDecodeBase64(unsigned char* text);
