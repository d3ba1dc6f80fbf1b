#include "nyr/util/profile_store_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "nyr/platform/user_folders_p.h"
#include "nyr/util/profile_text_p.h"

namespace nyr::detail {

namespace {

// How long a read trusts the cached parse without looking at the file,
// measured on the coarse monotonic clock, so in practice until its next tick
// (1 to 10 ms by the kernel's tick rate, 4 ms on Debian). The file's own
// times come from the same coarse clock, so they cannot tell changes apart
// more finely anyway; and a burst of reads (restoring a window's layout, say)
// costs one stat instead of one per read. The coarse clock is also a fraction
// of the fine one's cost.
constexpr int64_t kTrustCachedNs = 1'000'000;

int64_t CoarseNow()
{
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &ts);
    return int64_t{ts.tv_sec} * 1'000'000'000 + ts.tv_nsec;
}

// Larger files are not settings files: they read as absent and are never
// rewritten (rewriting would mean truncating what could not be read).
constexpr off_t kMaxFileSize = off_t{64} << 20;
// Parsed files kept per process.
constexpr size_t kMaxCachedFiles = 32;

// What identifies one version of a file. A write by rename gives a new inode;
// an edit in place changes size or times.
struct FileId
{
    dev_t dev = 0;
    ino_t ino = 0;
    off_t size = 0;
    timespec mtime{};
    timespec ctime{};

    static FileId Of(const struct stat& st) { return {st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim}; }
    bool operator==(const FileId& o) const
    {
        return dev == o.dev && ino == o.ino && size == o.size && mtime.tv_sec == o.mtime.tv_sec &&
               mtime.tv_nsec == o.mtime.tv_nsec && ctime.tv_sec == o.ctime.tv_sec && ctime.tv_nsec == o.ctime.tv_nsec;
    }
};

struct CachedFile
{
    std::shared_ptr<const CProfileText> text;  // null: absent or unreadable
    FileId id;
    int64_t checked = 0;  // CoarseNow() of the last look at the file
    bool valid = false;  // `checked` and `text` describe the file
    uint64_t lastUse = 0;
};

struct Cache
{
    std::mutex mutex;
    std::unordered_map<std::string, CachedFile> files;
    uint64_t uses = 0;

    // The file used last: reads come in runs on one file.
    std::string lastPath;
    CachedFile* last = nullptr;  // nodes of `files` keep their address

    CachedFile& Slot(const std::string& path)
    {
        if (!last || path != lastPath) {
            auto it = files.find(path);
            if (it == files.end()) {
                if (files.size() >= kMaxCachedFiles) {
                    auto oldest = files.begin();
                    for (auto i = files.begin(); i != files.end(); ++i)
                        if (i->second.lastUse < oldest->second.lastUse)
                            oldest = i;
                    files.erase(oldest);
                }
                it = files.emplace(path, CachedFile{}).first;
            }
            lastPath = path;
            last = &it->second;
        }
        last->lastUse = ++uses;
        return *last;
    }
};

Cache& TheCache()
{
    // Never destroyed: settings may be read from other objects' destructors.
    static Cache* cache = new Cache;
    return *cache;
}

// The whole file behind `fd` from its start; nullopt on a read error or when
// it is larger than kMaxFileSize.
std::optional<std::string> ReadAll(int fd, off_t sizeHint)
{
    if (sizeHint > kMaxFileSize)
        return std::nullopt;
    std::string content(static_cast<size_t>(sizeHint), '\0');
    size_t have = 0;
    for (;;) {
        if (have == content.size()) {
            if (have > static_cast<size_t>(kMaxFileSize))  // grew past the limit since fstat
                return std::nullopt;
            content.resize(have + 4096);
        }
        const ssize_t n = pread(fd, content.data() + have, content.size() - have, static_cast<off_t>(have));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return std::nullopt;
        if (n == 0)
            break;
        have += static_cast<size_t>(n);
    }
    content.resize(have);
    return content;
}

void Refresh(const std::string& path, CachedFile& file)
{
    struct stat st{};
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) {
        file.text.reset();
        return;
    }
    if (file.text && file.id == FileId::Of(st))
        return;
    file.text.reset();
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return;
    // Identify what was actually opened: the path may have been replaced
    // since the stat above.
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        if (auto content = ReadAll(fd, st.st_size)) {
            file.text = std::make_shared<const CProfileText>(std::move(*content));
            file.id = FileId::Of(st);
        }
    }
    close(fd);
}

bool WriteAll(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t n = write(fd, data.data(), data.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

// A file descriptor that closes itself.
class Fd
{
public:
    explicit Fd(int fd = -1) : m_fd(fd) {}
    ~Fd()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }
    void reset(int fd = -1)
    {
        if (m_fd >= 0)
            close(m_fd);
        m_fd = fd;
    }

private:
    int m_fd;
};

// Opens `path` for writing (creating it empty when missing) and takes the
// exclusive advisory lock on it. Writers replace the file by rename, so the
// lock taken may belong to a file that was replaced while we waited: then
// try again on the new one. Waits as long as another writer holds the lock;
// each writer holds it for one read-modify-write only.
bool OpenLocked(const std::string& path, Fd& fd, struct stat& st)
{
    for (int attempt = 0; attempt < 1000; ++attempt) {
        fd.reset(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
        if (fd.get() < 0)
            return false;
        int locked;
        while ((locked = flock(fd.get(), LOCK_EX)) != 0 && errno == EINTR) {
        }
        if (locked != 0)
            return false;
        struct stat now{};
        if (fstat(fd.get(), &st) != 0)
            return false;
        if (stat(path.c_str(), &now) == 0 && now.st_dev == st.st_dev && now.st_ino == st.st_ino)
            return true;
    }
    return false;
}

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                      void (*use)(void* context, std::string_view value), void* context)
{
    Cache& cache = TheCache();
    std::lock_guard lock(cache.mutex);
    CachedFile& file = cache.Slot(path);
    const int64_t now = CoarseNow();
    if (!file.valid || now - file.checked >= kTrustCachedNs) {
        Refresh(path, file);
        file.checked = now;
        file.valid = true;
    }
    if (!file.text)
        return false;
    const auto value = file.text->Find(section, entry);
    if (!value)
        return false;
    use(context, *value);
    return true;
}

bool WriteProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                       std::string_view value, bool createFolder)
{
    if (path.empty() || !IsWritableSection(section) || !IsWritableEntry(entry) || !IsWritableValue(value))
        return false;
    try {
        // Through a symbolic link the link stays and its target is rewritten.
        std::string target = path;
        struct stat linkStat{};
        if (lstat(path.c_str(), &linkStat) == 0 && S_ISLNK(linkStat.st_mode)) {
            if (char* resolved = realpath(path.c_str(), nullptr)) {
                target = resolved;
                free(resolved);
            }
        }
        if (createFolder)
            nyr::platform::CreateParentFolders(target);

        Fd fd;
        struct stat st{};
        if (!OpenLocked(target, fd, st) || !S_ISREG(st.st_mode) || st.st_size > kMaxFileSize)
            return false;
        const FileId id = FileId::Of(st);

        Cache& cache = TheCache();
        std::shared_ptr<const CProfileText> current;
        {
            std::lock_guard lock(cache.mutex);
            const CachedFile& cached = cache.Slot(path);
            if (cached.valid && cached.text && cached.id == id)
                current = cached.text;
        }
        if (!current) {
            auto content = ReadAll(fd.get(), st.st_size);
            if (!content)
                return false;
            current = std::make_shared<const CProfileText>(std::move(*content));
        }

        std::string updated = current->With(section, entry, value);
        FileId newId = id;
        if (updated != current->Text()) {
            std::string temp = FolderOf(target) + "/." + target.substr(target.rfind('/') + 1) + ".XXXXXX";
            Fd out(mkostemp(temp.data(), O_CLOEXEC));
            if (out.get() < 0)
                return false;
            // The new file keeps the old one's permissions (and owner, when we may).
            fchmod(out.get(), st.st_mode & 07777);
            if (st.st_uid != geteuid() || st.st_gid != getegid()) {
                if (fchown(out.get(), st.st_uid, st.st_gid) != 0) {
                    // Not allowed: the file becomes ours, which is all we can do.
                }
            }
            struct stat written{};
            // The rename is the commit: a crash or kill before it leaves the
            // old file whole, after it the new one.
            if (!WriteAll(out.get(), updated) || rename(temp.c_str(), target.c_str()) != 0) {
                unlink(temp.c_str());
                return false;
            }
            // After the rename, which changes the inode's change time.
            if (fstat(out.get(), &written) == 0)
                newId = FileId::Of(written);
            current = std::make_shared<const CProfileText>(std::move(updated));
        }
        {
            std::lock_guard lock(cache.mutex);
            CachedFile& cached = cache.Slot(path);
            cached.text = std::move(current);
            cached.id = newId;
            cached.checked = CoarseNow();
            cached.valid = true;
        }
        return true;  // the lock goes with `fd`, after the rename
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace nyr::detail
