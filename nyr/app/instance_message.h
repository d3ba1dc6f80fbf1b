#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "nyr/platform/export.h"

// What a later start of an application hands to its first instance: the
// working directory it was started in (relative file names are relative to
// it) and its command-line arguments, UTF-8.
struct CNyrInstanceMessage
{
    std::string workingDirectory;
    std::vector<std::string> arguments;
};

// The wire form: "NYRI", a 32-bit little-endian field count, then each field
// (the working directory, then the arguments) as a 32-bit little-endian
// length and its bytes. The first instance answers "OK\n" once it has
// handled the message.
constexpr std::size_t kNyrInstanceMessageMaxBytes = 1024 * 1024;  // whole message
constexpr std::size_t kNyrInstanceMessageMaxFields = 4096;

// The encoded message; "" when it would pass either limit.
NYR_EXPORT std::string NyrEncodeInstanceMessage(const CNyrInstanceMessage& message);

// Decodes a message from the start of `bytes`, which may hold only its first
// part so far. 1: complete, `message` filled and `*used` (when given) set
// to its length; 0: incomplete, read more; -1: not a message, or one that
// passes a limit (stop reading: the peer is not one of us).
NYR_EXPORT int NyrDecodeInstanceMessage(std::string_view bytes, CNyrInstanceMessage& message,
                                        std::size_t* used = nullptr);
