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
// NyrEncodeBase64 gives for the whole input at once. Writes into the
// caller's buffer and never allocates.
class NYR_EXPORT CNyrBase64Encoder
{
public:
    // "\r\n" after every `lineLength` characters (0: no breaks).
    explicit CNyrBase64Encoder(unsigned lineLength = 76);

    // The most characters one Add of `length` bytes, or one Finish, writes.
    std::size_t MaxText(std::size_t length) const;
    // Writes the text of `length` more bytes to `out`, which has room for
    // MaxText(length) characters; up to two bytes wait for the next piece.
    // Returns the number of characters written.
    std::size_t Add(const unsigned char* data, std::size_t length, char* out);
    // Writes the end of the text (the extra zero byte and the padding) to
    // `out`, which has room for MaxText(0); the encoder then starts a new
    // text. Returns the number of characters written.
    std::size_t Finish(char* out);

private:
    std::size_t Put(const char* chars, std::size_t count, char* out);

    unsigned m_lineLength;
    unsigned char m_carry[2] = {};
    std::size_t m_carried = 0;    // bytes waiting in m_carry
    std::size_t m_column = 0;     // characters on the current line
    std::uint64_t m_written = 0;  // characters so far, line breaks included
};

// Decodes a stream in pieces exactly as NyrDecodeBase64 decodes the whole
// text: the text ends at the first "=" or zero byte. Never allocates.
class NYR_EXPORT CNyrBase64Decoder
{
public:
    // Writes the bytes of `length` more characters to `out`, which has room
    // for `length` bytes; returns the number written. Nothing once Ended().
    std::size_t Add(const char* text, std::size_t length, unsigned char* out);
    // Whether the text has ended: later pieces add nothing.
    bool Ended() const { return m_ended; }

private:
    unsigned m_position = 0;  // in the current group of four
    unsigned m_held = 0;      // the value of the group's previous character
    bool m_ended = false;
};
