#pragma once

#include <cstddef>
#include <string>

#include "nyr/platform/export.h"

// Reading files whose size or kind the library does not control (language
// modules, leap-second lists, mail bodies, attachments, passwords). A path
// that names a FIFO, a device, a folder or a file under /proc must not block a
// caller or feed it for ever, so only regular files are read, and whole-file
// reads stop at a limit the caller states.

// Opens a regular file for reading (close-on-exec, never blocking on a FIFO).
// Returns the descriptor, or -1 with a one-line reason in `error`:
// "PATH: not a regular file" or "PATH: " and the system's text.
NYR_EXPORT int NyrOpenRegularFile(const std::string& path, std::string* error = nullptr);

// Reads a whole regular file of at most `limit` bytes into `content`.
// Returns 1 on success; 0 with `content` empty and a reason in `error` when the
// file cannot be opened, is not a regular file or holds more than `limit`
// bytes ("PATH: larger than LIMIT bytes"), also when it grows past the limit
// while being read.
NYR_EXPORT int NyrReadRegularFile(const std::string& path, std::size_t limit, std::string& content,
                                  std::string* error = nullptr);
