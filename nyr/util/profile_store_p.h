#pragma once

// File access of the settings store: the per-process cache of parsed files
// and the locked, atomic read-modify-write.

#include <string>
#include <string_view>

namespace nyr::detail {

// Calls use(context, value) with the value of the first matching entry of the
// first matching section of `path`, while the cache is held; false (and no
// call) when the file, section or entry is absent.
//
// The parsed file is cached. A read trusts the cache for kTrustCached after
// the file was last checked; after that it checks size, modification time,
// change time and inode (one stat) and parses again only when one differs.
// Writes of this process update the cache at once; a change another program
// makes is seen by reads that start kTrustCached or more after it.
bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                      void (*use)(void* context, std::string_view value), void* context);

template <class F>
bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry, F&& use)
{
    return ReadProfileValue(
        path, section, entry, [](void* f, std::string_view value) { (*static_cast<F*>(f))(value); }, &use);
}

// Sets one entry: takes the advisory lock, reads the file as it is now,
// writes the edited text to a temporary file in the same folder and renames
// it over the file. True on success; false for names or a value that cannot
// be written (see profile_entries.h), a missing or unwritable folder, a
// read-only file, a file too large to read or a lock that stays taken.
// `createFolder` creates missing folders of `path` first (mode 0700).
bool WriteProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                       std::string_view value, bool createFolder);

}  // namespace nyr::detail
