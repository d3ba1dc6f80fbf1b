#pragma once

#include <cstddef>
#include <cstdint>
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

// Files NyrEncodeBase64(path) encodes in memory are at most this large.
constexpr std::size_t kNyrMaxBase64FileSize = std::size_t{256} << 20;

// Encodes a whole regular file of at most kNyrMaxBase64FileSize bytes with
// lines of 76 characters; empty when the file cannot be read, is not a
// regular file or is larger. The text takes 4/3 of the file's size in memory
// (the file itself is read in pieces); CNyrBase64Encoder keeps memory flat.
NYR_EXPORT std::string NyrEncodeBase64(const std::string& path);

// Decodes the zero-terminated `text` in place and returns the number of bytes
// written (a terminating zero follows them, not counted). Stops at the first
// "=" or the terminating zero; CR and LF start a new group of four; other
// characters outside the alphabet are skipped. Never reads or writes past the
// terminating zero.
NYR_EXPORT unsigned long NyrDecodeBase64(unsigned char* text);

// Encodes a stream in pieces with flat memory, giving exactly the text
// NyrEncodeBase64 gives for the whole input at once.
class NYR_EXPORT CNyrBase64Encoder
{
public:
    // "\r\n" after every `lineLength` characters (0: no breaks).
    explicit CNyrBase64Encoder(unsigned lineLength = 76);

    // Appends the text of `length` more bytes to `out`; up to two bytes wait
    // for the next piece.
    void Add(const unsigned char* data, std::size_t length, std::string& out);
    // Appends the end of the text (the extra zero byte and the padding); the
    // encoder then starts a new text.
    void Finish(std::string& out);

private:
    void Put(const char* chars, std::size_t count, std::string& out);

    unsigned m_lineLength;
    unsigned char m_carry[2] = {};
    std::size_t m_carried = 0;   // bytes waiting in m_carry
    std::size_t m_column = 0;    // characters on the current line
    std::uint64_t m_written = 0; // characters so far, line breaks included
};

// Decodes a stream in pieces exactly as NyrDecodeBase64 decodes the whole
// text: the text ends at the first "=" or zero byte.
class NYR_EXPORT CNyrBase64Decoder
{
public:
    // Appends the bytes of `length` more characters to `out`; false once the
    // text has ended (later pieces add nothing).
    bool Add(const char* text, std::size_t length, std::string& out);

private:
    unsigned m_position = 0;  // in the current group of four
    unsigned m_held = 0;      // the value of the group's previous character
    bool m_ended = false;
};
