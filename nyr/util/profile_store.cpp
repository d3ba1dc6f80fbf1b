#include "nyr/util/profile_store_p.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "nyr/platform/user_folders_p.h"
#include "nyr/util/profile_file_p.h"
#include "nyr/util/profile_text_p.h"

namespace nyr::detail {

namespace {

// How long a read trusts what it knows about a path without looking at the
// file, measured on the coarse monotonic clock, so in practice until its next
// tick (1 to 10 ms by the kernel's tick rate, 4 ms on Debian). The file's own
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

// Parsed files and paths kept per process: bench/util's
// BM_ProfileReadInt_10000Random_100x100 against BM_ProfileColdParse_100x100
// is what a read saves by not parsing the file again.
constexpr size_t kMaxCached = 32;

std::atomic<unsigned> g_lockWaitMs{kDefaultProfileLockWaitMs};
thread_local ProfileStatus t_lastStatus;
thread_local std::string t_lastPath;  // set when t_lastStatus is not ok

void SetLastStatus(const ProfileStatus& status, const std::string& path)
{
    t_lastStatus = status;
    if (!status.ok())
        t_lastPath = path;
}

// One file, whatever path reaches it: device and inode.
struct FileKey
{
    dev_t dev = 0;
    ino_t ino = 0;
    static FileKey Of(const struct stat& st) { return {st.st_dev, st.st_ino}; }
    bool operator<(const FileKey& o) const { return dev != o.dev ? dev < o.dev : ino < o.ino; }
};

// One version of a file: an edit in place changes size or times, a write by
// rename the inode.
struct FileVersion
{
    off_t size = 0;
    timespec mtime{};
    timespec ctime{};

    static FileVersion Of(const struct stat& st) { return {st.st_size, st.st_mtim, st.st_ctim}; }
    bool operator==(const FileVersion& o) const
    {
        return size == o.size && mtime.tv_sec == o.mtime.tv_sec && mtime.tv_nsec == o.mtime.tv_nsec &&
               ctime.tv_sec == o.ctime.tv_sec && ctime.tv_nsec == o.ctime.tv_nsec;
    }
};

struct ParsedFile
{
    std::shared_ptr<const CProfileText> text;
    FileVersion version;
};

// What a path led to at its last look: a parsed file, or nothing and why.
struct PathSlot
{
    std::shared_ptr<const ParsedFile> file;  // null: absent or unusable
    ProfileStatus status;                    // why `file` is null (kNone: absent)
    int64_t checked = 0;                     // CoarseNow() of the last look
    bool valid = false;                      // `checked`, `file` and `status` describe the path
    uint64_t lastUse = 0;
};

struct FileSlot
{
    std::shared_ptr<const ParsedFile> file;
    uint64_t lastUse = 0;
};

template <class Map>
void EvictOldest(Map& map)
{
    auto oldest = map.begin();
    for (auto i = map.begin(); i != map.end(); ++i)
        if (i->second.lastUse < oldest->second.lastUse)
            oldest = i;
    map.erase(oldest);
}

// Paths lead to parsed files keyed by file identity, so a write through one
// path is seen at once through every other path to the same file ("./", "..",
// symbolic and hard links).
struct Cache
{
    std::mutex mutex;
    std::unordered_map<std::string, PathSlot> paths;
    std::map<FileKey, FileSlot> files;
    uint64_t uses = 0;

    // The path used last: reads come in runs on one file.
    std::string lastPath;
    PathSlot* last = nullptr;  // nodes of `paths` keep their address

    PathSlot& Slot(const std::string& path)
    {
        if (!last || path != lastPath) {
            auto it = paths.find(path);
            if (it == paths.end()) {
                if (paths.size() >= kMaxCached)
                    EvictOldest(paths);
                it = paths.emplace(path, PathSlot{}).first;
            }
            lastPath = path;
            last = &it->second;
        }
        last->lastUse = ++uses;
        return *last;
    }

    // The parsed file of `key` when it is of `version`; null otherwise.
    std::shared_ptr<const ParsedFile> Find(const FileKey& key, const FileVersion& version)
    {
        const auto it = files.find(key);
        if (it == files.end() || !(it->second.file->version == version))
            return nullptr;
        it->second.lastUse = ++uses;
        return it->second.file;
    }

    // Stores the text of `key` as of `version`; returns the stored file.
    std::shared_ptr<const ParsedFile> Store(const FileKey& key, const FileVersion& version,
                                            std::shared_ptr<const CProfileText> text)
    {
        if (!files.count(key) && files.size() >= kMaxCached)
            EvictOldest(files);
        FileSlot& slot = files[key];
        slot.file = std::make_shared<const ParsedFile>(ParsedFile{std::move(text), version});
        slot.lastUse = ++uses;
        return slot.file;
    }

    // After this process changed a file: every path looks again at its next
    // read. One stat each; the parse comes from `files`.
    void Invalidate()
    {
        for (auto& [path, slot] : paths)
            slot.valid = false;
    }
};

Cache& TheCache()
{
    // Never destroyed: settings may be read from other objects' destructors.
    static Cache* cache = new Cache;
    return *cache;
}

// Looks at the file `path` leads to now, parsing it unless the cache holds
// that version already.
void Refresh(Cache& cache, const std::string& path, PathSlot& slot)
{
    slot.file.reset();
    slot.status = ProfileStatus::Ok();
    struct stat st{};
    if (stat(path.c_str(), &st) != 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            slot.status = {ProfileProblem::kReadError, errno};
        return;
    }
    if (!S_ISREG(st.st_mode)) {
        slot.status = {ProfileProblem::kNotRegular, 0};
        return;
    }
    if ((slot.file = cache.Find(FileKey::Of(st), FileVersion::Of(st))))
        return;
    const Fd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    // Identify what was actually opened: the path may have been replaced
    // since the stat above.
    if (fd.get() < 0 || fstat(fd.get(), &st) != 0) {
        slot.status = {ProfileProblem::kReadError, errno};
        return;
    }
    if (!S_ISREG(st.st_mode)) {
        slot.status = {ProfileProblem::kNotRegular, 0};
        return;
    }
    auto content = ReadWholeFile(fd.get(), st.st_size);
    if (!content) {
        slot.status = {st.st_size > kMaxProfileFileSize ? ProfileProblem::kTooLarge : ProfileProblem::kReadError,
                       errno};
        return;
    }
    slot.file = cache.Store(FileKey::Of(st), FileVersion::Of(st),
                            std::make_shared<const CProfileText>(std::move(*content)));
}

// Through a symbolic link the link stays and its target is rewritten.
std::string WriteTarget(const std::string& path)
{
    struct stat st{};
    if (lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        if (char* resolved = realpath(path.c_str(), nullptr)) {
            std::string target = resolved;
            free(resolved);
            return target;
        }
    }
    return path;
}

ProfileStatus Write(const std::string& path, std::string_view section, std::string_view entry, std::string_view value,
                    bool createFolder)
{
    if (path.empty() || !IsWritableSection(section) || !IsWritableEntry(entry) || !IsWritableValue(value))
        return {ProfileProblem::kRefused, 0};
    const std::string target = WriteTarget(path);
    if (createFolder)
        nyr::platform::CreateParentFolders(target);
    Fd fd;
    struct stat st{};
    if (const ProfileStatus opened = OpenLocked(target, std::chrono::milliseconds(g_lockWaitMs.load()), fd, st);
        !opened.ok())
        return opened;

    Cache& cache = TheCache();
    std::shared_ptr<const CProfileText> current;
    {
        std::lock_guard lock(cache.mutex);
        if (const auto cached = cache.Find(FileKey::Of(st), FileVersion::Of(st)))
            current = cached->text;
    }
    if (!current) {
        auto content = ReadWholeFile(fd.get(), st.st_size);
        if (!content)
            return {ProfileProblem::kReadError, errno};
        current = std::make_shared<const CProfileText>(std::move(*content));
    }

    std::string updated = current->With(section, entry, value);
    struct stat written = st;
    if (updated != current->Text()) {
        if (const ProfileStatus replaced = ReplaceFile(target, st, updated, written); !replaced.ok())
            return replaced;
        current = std::make_shared<const CProfileText>(std::move(updated));
    }
    RemoveStaleTemporaries(target);
    std::lock_guard lock(cache.mutex);
    if (written.st_ino != st.st_ino || written.st_dev != st.st_dev)
        cache.files.erase(FileKey::Of(st));
    cache.Invalidate();
    PathSlot& slot = cache.Slot(path);
    slot.file = cache.Store(FileKey::Of(written), FileVersion::Of(written), std::move(current));
    slot.status = ProfileStatus::Ok();
    slot.checked = CoarseNow();
    slot.valid = true;
    return ProfileStatus::Ok();  // the lock goes with `fd`, after the rename
}

}  // namespace

bool ReadProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                      void (*use)(void* context, std::string_view value), void* context)
{
    try {
        Cache& cache = TheCache();
        std::lock_guard lock(cache.mutex);
        PathSlot& slot = cache.Slot(path);
        const int64_t now = CoarseNow();
        if (!slot.valid || now - slot.checked >= kTrustCachedNs) {
            Refresh(cache, path, slot);
            slot.checked = now;
            slot.valid = true;
        }
        SetLastStatus(slot.status, path);
        if (!slot.file)
            return false;
        const auto value = slot.file->text->Find(section, entry);
        if (!value)
            return false;
        use(context, *value);
        return true;
    } catch (const std::bad_alloc&) {
        SetLastStatus({ProfileProblem::kReadError, ENOMEM}, path);
        return false;
    }
}

bool WriteProfileValue(const std::string& path, std::string_view section, std::string_view entry,
                       std::string_view value, bool createFolder)
{
    ProfileStatus status;
    try {
        status = Write(path, section, entry, value, createFolder);
    } catch (const std::bad_alloc&) {
        status = {ProfileProblem::kWriteError, ENOMEM};
    }
    SetLastStatus(status, path);
    return status.ok();
}

ProfileStatus LastProfileStatus()
{
    return t_lastStatus;
}

const std::string& LastProfilePath()
{
    return t_lastPath;
}

void SetProfileLockWait(unsigned milliseconds)
{
    g_lockWaitMs = milliseconds;
}

unsigned ProfileLockWait()
{
    return g_lockWaitMs;
}

}  // namespace nyr::detail
