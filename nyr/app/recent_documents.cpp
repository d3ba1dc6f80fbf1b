#include "nyr/app/recent_documents.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "nyr/platform/ascii_p.h"
#include "nyr/util/profile_entries.h"

namespace {

namespace fs = std::filesystem;

std::string Entry(int position)
{
    return CNyrProfileEntries::LastDocumentsEntry() + std::to_string(position);
}

// What the settings file can hold as a value and read back unchanged: the
// reader trims blanks and one pair of enclosing quotes, a line ends at CR
// or LF. Absolute paths start with "/", so only the end is at risk.
bool Storable(const std::string& path)
{
    if (path.empty() || path.find_first_of(std::string("\r\n\0", 3)) != std::string::npos)
        return false;
    return !nyr::ascii::IsLineBlank(path.back());
}

std::string Absolute(const std::string& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return (error ? fs::path(path) : absolute).lexically_normal().string();
}

// Identity of a document: the file itself when it exists (device and
// inode), else the path with its existing links resolved.
struct Identity
{
    bool exists = false;
    dev_t dev = 0;
    ino_t ino = 0;
    std::string canonical;

    explicit Identity(const std::string& path)
    {
        struct stat st{};
        exists = stat(path.c_str(), &st) == 0;
        dev = st.st_dev;
        ino = st.st_ino;
        std::error_code error;
        canonical = fs::weakly_canonical(path, error).string();
        if (error)
            canonical = path;
    }
    bool operator==(const Identity& other) const
    {
        if (exists && other.exists)
            return dev == other.dev && ino == other.ino;
        return canonical == other.canonical;
    }
};

}  // namespace

struct CNyrRecentDocuments::Private
{
    std::string section;
    int maxCount;
    eMissing policy = eMarkMissing;
    std::vector<std::string> files;
    std::vector<bool> missing;  // parallel to files
    std::vector<std::string> saved;  // the entries as the settings file holds them ("" for empty)
    std::map<int, std::function<void()>> subscribers;
    int nextId = 1;

    void Check()
    {
        missing.assign(files.size(), false);
        for (std::size_t i = 0; i < files.size(); ++i)
            missing[i] = !Identity(files[i]).exists;
        if (policy != eDropMissing)
            return;
        std::vector<std::string> kept;
        for (std::size_t i = 0; i < files.size(); ++i)
            if (!missing[i])
                kept.push_back(files[i]);
        files = std::move(kept);
        missing.assign(files.size(), false);
    }

    // Writes the positions whose path differs from the file's and empties
    // the entries beyond the list.
    void Save()
    {
        for (std::size_t i = 0; i < std::max(files.size(), saved.size()); ++i) {
            const std::string path = i < files.size() ? files[i] : std::string();
            if (i >= saved.size() || saved[i] != path)
                CNyrProfileEntries::WriteNyrProfileString(section, Entry(static_cast<int>(i) + 1), path);
        }
        saved = files;
    }

    // Saves and tells the subscribers, when `before` differs from now.
    void Changed(const std::vector<std::string>& before)
    {
        if (before == files)
            return;
        Save();
        const std::vector<std::string> now = files;
        const auto snapshot = subscribers;  // a subscriber may subscribe or unsubscribe
        for (const auto& [id, subscriber] : snapshot) {
            if (!subscribers.count(id))
                continue;  // unsubscribed by an earlier one
            subscriber();
            if (files != now)
                return;  // a subscriber changed the list: that change told everyone
        }
    }

    // Position of the document `path` names, or -1.
    int Find(const std::string& path) const
    {
        const Identity wanted(path);
        for (std::size_t i = 0; i < files.size(); ++i)
            if (Identity(files[i]) == wanted)
                return static_cast<int>(i);
        return -1;
    }
};

CNyrRecentDocuments::CNyrRecentDocuments(std::string section, int maxCount) : d(std::make_unique<Private>())
{
    d->section = std::move(section);
    d->maxCount = std::clamp(maxCount, 1, kMaxCount);
}

CNyrRecentDocuments::~CNyrRecentDocuments() = default;

int CNyrRecentDocuments::Load()
{
    const std::vector<std::string> before = d->files;
    d->files.clear();
    d->saved.clear();
    for (int position = 1; position <= kMaxCount; ++position) {
        const std::string path = CNyrProfileEntries::ReadNyrProfileString(d->section, Entry(position), "");
        d->saved.push_back(path);
        if (!path.empty() && path[0] == '/' && static_cast<int>(d->files.size()) < d->maxCount && d->Find(path) < 0)
            d->files.push_back(path);
    }
    while (!d->saved.empty() && d->saved.back().empty())
        d->saved.pop_back();
    d->Check();
    if (d->files != d->saved)
        d->Save();  // left out or dropped entries go from the file too
    d->Changed(before);
    return static_cast<int>(d->files.size());
}

int CNyrRecentDocuments::Add(const std::string& path)
{
    const std::string absolute = Absolute(path);
    if (!Storable(path) || !Storable(absolute))
        return 0;
    const std::vector<std::string> before = d->files;
    if (const int at = d->Find(absolute); at >= 0)
        d->files.erase(d->files.begin() + at);
    d->files.insert(d->files.begin(), absolute);
    if (static_cast<int>(d->files.size()) > d->maxCount)
        d->files.resize(d->maxCount);
    d->Check();
    d->Changed(before);
    return 1;
}

int CNyrRecentDocuments::Remove(const std::string& path)
{
    const int at = d->Find(Absolute(path));
    if (at < 0)
        return 0;
    const std::vector<std::string> before = d->files;
    d->files.erase(d->files.begin() + at);
    d->missing.erase(d->missing.begin() + at);
    d->Changed(before);
    return 1;
}

void CNyrRecentDocuments::Clear()
{
    const std::vector<std::string> before = d->files;
    d->files.clear();
    d->missing.clear();
    d->Changed(before);
}

void CNyrRecentDocuments::Refresh()
{
    const std::vector<std::string> before = d->files;
    d->Check();
    d->Changed(before);
}

const std::vector<std::string>& CNyrRecentDocuments::Files() const
{
    return d->files;
}

bool CNyrRecentDocuments::IsMissing(int index) const
{
    return index >= 0 && index < static_cast<int>(d->missing.size()) && d->missing[index];
}

int CNyrRecentDocuments::MaxCount() const
{
    return d->maxCount;
}

void CNyrRecentDocuments::SetMaxCount(int maxCount)
{
    d->maxCount = std::clamp(maxCount, 1, kMaxCount);
    if (static_cast<int>(d->files.size()) <= d->maxCount)
        return;
    const std::vector<std::string> before = d->files;
    d->files.resize(d->maxCount);
    d->missing.resize(d->maxCount);
    d->Changed(before);
}

CNyrRecentDocuments::eMissing CNyrRecentDocuments::MissingPolicy() const
{
    return d->policy;
}

void CNyrRecentDocuments::SetMissingPolicy(eMissing policy)
{
    d->policy = policy;
    Refresh();
}

int CNyrRecentDocuments::Subscribe(std::function<void()> subscriber)
{
    const int id = d->nextId++;
    d->subscribers[id] = std::move(subscriber);
    return id;
}

void CNyrRecentDocuments::Unsubscribe(int id)
{
    d->subscribers.erase(id);
}
