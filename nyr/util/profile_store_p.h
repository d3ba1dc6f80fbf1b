#pragma once

// File access of the settings store: the per-process cache of parsed files
// and the locked, atomic read-modify-write.

#include <string>
#include <string_view>

#include "nyr/util/profile_file_p.h"

namespace nyr::detail {

// How long a write waits for another process's lock unless the host sets it.
constexpr unsigned kDefaultProfileLockWaitMs = 5000;

// Calls use(context, value) with the value of the first matching entry of the
// first matching section of `path`, while the cache is held; false (and no
// call) when the file, section or entry is absent.
//
// Parsed files are cached by device and inode, reached from the paths that
// led to them. A read trusts what it knows about a path until the coarse
// clock has moved 1 ms on from its last look (one clock tick, 1 to 10 ms);
// after that it checks inode, size, modification and change time (one stat)
// and parses again only when one differs. A write of this process makes every
// path look again at its next read, so the write is seen at once through any
// path to the file.
bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                      void (*use)(void* context, std::string_view value), void* context);

template <class F>
bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry, F&& use)
{
    return ReadProfileValue(
        path, section, entry, [](void* f, std::string_view value) { (*static_cast<F*>(f))(value); }, &use);
}

// Sets one entry: takes the advisory lock (waiting at most ProfileLockWait()
// ms), reads the file as it is now, writes the edited text to a temporary file
// in the same folder, renames it over the file and removes stale temporaries
// of earlier, killed writers. True on success; false for names or a value
// that cannot be written (see profile_entries.h), a missing or unwritable
// folder, a read-only file, a file too large to read or a lock that stays
// taken. `createFolder` creates missing folders of `path` first (mode 0700).
bool WriteProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                       std::string_view value, bool createFolder);

// Why the calling thread's last ReadProfileValue or WriteProfileValue could
// not use its file (kNone when it could, or when a read found no file).
ProfileStatus LastProfileStatus();
// The path of that operation when it failed.
const std::string& LastProfilePath();

void SetProfileLockWait(unsigned milliseconds);
unsigned ProfileLockWait();

}  // namespace nyr::detail
