#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"

// The list of documents the user opened last, newest first, kept in the
// library's settings file: section `section`, entries "Doc_1" (newest) to
// "Doc_N" (CNyrProfileEntries::LastDocumentsEntry() and the position).
// Every change is written at once, so the list survives a crash and other
// processes see it at their next Load.
//
// A document is one file however it is named: two paths of one file (a
// link, "a/../b", a hard link) take one place in the list, under the path
// added last. Paths are kept absolute and lexically clean ("/a/./b/../c"
// is "/a/c"); relative ones are taken from the working directory.
//
// Missing files are either kept and marked (IsMissing), or dropped from the
// list and the settings file, as the host chooses. Existence is checked by
// Load, Add and Refresh, not on every read.
//
// For the user-interface thread. Subscribers are called after every change
// that alters the list, with the list already in its new state; a
// subscriber may change the list again (it is then called again after that
// change) or unsubscribe.
class NYR_EXPORT CNyrRecentDocuments
{
public:
    enum eMissing
    {
        eMarkMissing,  // kept in the list, IsMissing true
        eDropMissing,  // removed from the list and the settings file
    };

    static constexpr int kMaxCount = 64;

    // Reads nothing yet: call Load. `maxCount` is kept within 1..kMaxCount.
    explicit CNyrRecentDocuments(std::string section = "CNyrRecentDocuments", int maxCount = 9);
    ~CNyrRecentDocuments();
    CNyrRecentDocuments(const CNyrRecentDocuments&) = delete;
    CNyrRecentDocuments& operator=(const CNyrRecentDocuments&) = delete;

    // Reads the list from the settings file (entries that are empty or not
    // absolute paths, duplicates and entries beyond the maximum are left
    // out) and checks which files exist. Returns the number of documents.
    int Load();

    // Puts `path` first (moving it up when it is in the list already) and
    // drops the oldest beyond the maximum. 0 (list unchanged) for a path
    // the settings file cannot hold: empty, holding CR, LF or NUL, or ending
    // in a blank.
    int Add(const std::string& path);
    // Removes the document `path` names; 0 when it is not in the list.
    int Remove(const std::string& path);
    void Clear();

    // Checks again which files exist; drops missing ones under eDropMissing.
    void Refresh();

    const std::vector<std::string>& Files() const;
    // True when the file at `index` was missing at the last check; false
    // for an index outside the list.
    bool IsMissing(int index) const;

    int MaxCount() const;
    // Drops the oldest documents beyond the new maximum.
    void SetMaxCount(int maxCount);
    eMissing MissingPolicy() const;
    // Applies the policy to the list at once.
    void SetMissingPolicy(eMissing policy);

    // Returns an id for Unsubscribe.
    int Subscribe(std::function<void()> subscriber);
    void Unsubscribe(int id);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
