#include "platform/CompactVfs.h"

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace CompactVfs {

void Gate::open(bool copied)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
        m_copied = copied;
    }
    m_changed.notify_all();
}

bool Gate::wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_done; });
    return m_copied;
}

}  // namespace CompactVfs

namespace {

using CompactVfs::Gate;

// Large enough that a journal of hundreds of megabytes takes a few dozen
// writes, small enough to be no burden on memory.
constexpr size_t GatherLimit = size_t(4) << 20;

// SQLite allocates these itself and knows nothing of their members beyond
// `base`: everything else is set in gatedOpen and freed in gatedClose.
struct GatedFile {
    sqlite3_file base;
    Gate *gate;                  // main file: holds its writes back until it opens
    const char *name;            // main file: its name as SQLite gave it
    GatedFile *journal;          // main file: its rollback journal while that is open
    GatedFile *owner;            // journal: the main file it belongs to
    std::vector<char> *pending;  // writes kept back to go out as one
    sqlite3_int64 pendingStart;  // where they go
};
constexpr int RealOffset = (int(sizeof(GatedFile)) + 15) / 16 * 16;

sqlite3_vfs *g_realVfs = nullptr;

// Main files open through the layer, so that a journal can find its own.
std::mutex g_openMutex;
std::vector<GatedFile *> g_openMains;

sqlite3_file *realOf(sqlite3_file *f)
{
    return reinterpret_cast<sqlite3_file *>(reinterpret_cast<char *>(f) + RealOffset);
}
GatedFile *gatedOf(sqlite3_file *f) { return reinterpret_cast<GatedFile *>(f); }

// Writes the kept writes of a file (or of nothing) out. SQLite's
// own file layer takes less than 128 KiB a write.
int flushPending(GatedFile *g)
{
    if (!g || !g->pending || g->pending->empty())
        return SQLITE_OK;
    sqlite3_file *real = realOf(&g->base);
    constexpr size_t Chunk = size_t(64) << 10;
    int rc = SQLITE_OK;
    for (size_t done = 0; done < g->pending->size() && rc == SQLITE_OK; done += Chunk) {
        const size_t n = std::min(Chunk, g->pending->size() - done);
        rc = real->pMethods->xWrite(real, g->pending->data() + done, int(n), g->pendingStart + sqlite3_int64(done));
    }
    g->pending->clear();
    return rc;
}
// A main file's writes reach it only after its journal's: the old pages
// are in the journal before the file is changed.
int flushMain(GatedFile *main)
{
    if (const int rc = flushPending(main->journal); rc != SQLITE_OK)
        return rc;
    return flushPending(main);
}

// Keeps a write for later when it follows the ones kept so far; else writes
// those out first (through `flush`) and starts again with this one.
template <typename Flush>
int gather(GatedFile *g, const void *buffer, int amount, sqlite3_int64 offset, Flush flush)
{
    std::vector<char> &pending = *g->pending;
    const bool follows = !pending.empty() && offset == g->pendingStart + sqlite3_int64(pending.size());
    if (!follows || pending.size() + size_t(amount) > GatherLimit) {
        if (const int rc = flush(); rc != SQLITE_OK)
            return rc;
        g->pendingStart = offset;
    }
    const char *bytes = static_cast<const char *>(buffer);
    pending.insert(pending.end(), bytes, bytes + amount);
    return SQLITE_OK;
}

bool passGate(sqlite3_file *f)
{
    Gate *gate = gatedOf(f)->gate;
    return !gate || gate->wait();
}

// ---- main files: anything but a write first puts the kept writes out

int mainFlushed(sqlite3_file *f) { return flushMain(gatedOf(f)); }

int mainClose(sqlite3_file *f)
{
    GatedFile *g = gatedOf(f);
    mainFlushed(f);
    {
        const std::lock_guard<std::mutex> lock(g_openMutex);
        g_openMains.erase(std::remove(g_openMains.begin(), g_openMains.end(), g), g_openMains.end());
        if (g->journal)
            g->journal->owner = nullptr;
    }
    delete g->pending;
    g->pending = nullptr;
    return realOf(f)->pMethods->xClose(realOf(f));
}
int mainWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    if (!passGate(f))
        return SQLITE_IOERR_WRITE;
    return gather(gatedOf(f), buffer, amount, offset, [f] { return mainFlushed(f); });
}
int mainRead(sqlite3_file *f, void *buffer, int amount, sqlite3_int64 offset)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xRead(realOf(f), buffer, amount, offset);
}
int mainTruncate(sqlite3_file *f, sqlite3_int64 size)
{
    if (!passGate(f))
        return SQLITE_IOERR_TRUNCATE;
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xTruncate(realOf(f), size);
}
int mainSync(sqlite3_file *f, int flags)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xSync(realOf(f), flags);
}
int mainFileSize(sqlite3_file *f, sqlite3_int64 *size)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xFileSize(realOf(f), size);
}
int mainLock(sqlite3_file *f, int level)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xLock(realOf(f), level);
}
int mainUnlock(sqlite3_file *f, int level)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xUnlock(realOf(f), level);
}
int mainFileControl(sqlite3_file *f, int op, void *arg)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xFileControl(realOf(f), op, arg);
}
int mainFetch(sqlite3_file *f, sqlite3_int64 offset, int amount, void **out)
{
    if (const int rc = mainFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xFetch(realOf(f), offset, amount, out);
}

// ---- journals: appends gathered; whatever reads or ends the journal
// first puts out the kept writes of the journal and of its main file

int journalFlushed(sqlite3_file *f)
{
    GatedFile *g = gatedOf(f);
    return g->owner ? flushMain(g->owner) : flushPending(g);
}

int journalClose(sqlite3_file *f)
{
    GatedFile *g = gatedOf(f);
    journalFlushed(f);
    {
        const std::lock_guard<std::mutex> lock(g_openMutex);
        if (g->owner)
            g->owner->journal = nullptr;
    }
    delete g->pending;
    g->pending = nullptr;
    return realOf(f)->pMethods->xClose(realOf(f));
}
int journalWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    // The header at the start is what makes a journal live or dead: it goes
    // out at once, after every write kept before it.
    if (offset == 0) {
        if (const int rc = journalFlushed(f); rc != SQLITE_OK)
            return rc;
        return realOf(f)->pMethods->xWrite(realOf(f), buffer, amount, offset);
    }
    GatedFile *g = gatedOf(f);
    return gather(g, buffer, amount, offset, [g] { return flushPending(g); });
}
int journalRead(sqlite3_file *f, void *buffer, int amount, sqlite3_int64 offset)
{
    if (const int rc = journalFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xRead(realOf(f), buffer, amount, offset);
}
int journalTruncate(sqlite3_file *f, sqlite3_int64 size)
{
    if (const int rc = journalFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xTruncate(realOf(f), size);
}
int journalSync(sqlite3_file *f, int flags)
{
    if (const int rc = journalFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xSync(realOf(f), flags);
}
int journalFileSize(sqlite3_file *f, sqlite3_int64 *size)
{
    if (const int rc = journalFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xFileSize(realOf(f), size);
}
int journalFileControl(sqlite3_file *f, int op, void *arg)
{
    if (const int rc = journalFlushed(f); rc != SQLITE_OK)
        return rc;
    return realOf(f)->pMethods->xFileControl(realOf(f), op, arg);
}

// ---- the rest passes straight through

int plainClose(sqlite3_file *f) { return realOf(f)->pMethods->xClose(realOf(f)); }
int plainRead(sqlite3_file *f, void *buffer, int amount, sqlite3_int64 offset)
{
    return realOf(f)->pMethods->xRead(realOf(f), buffer, amount, offset);
}
int plainWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    return realOf(f)->pMethods->xWrite(realOf(f), buffer, amount, offset);
}
int plainTruncate(sqlite3_file *f, sqlite3_int64 size) { return realOf(f)->pMethods->xTruncate(realOf(f), size); }
int plainSync(sqlite3_file *f, int flags) { return realOf(f)->pMethods->xSync(realOf(f), flags); }
int plainFileSize(sqlite3_file *f, sqlite3_int64 *size) { return realOf(f)->pMethods->xFileSize(realOf(f), size); }
int plainLock(sqlite3_file *f, int level) { return realOf(f)->pMethods->xLock(realOf(f), level); }
int plainUnlock(sqlite3_file *f, int level) { return realOf(f)->pMethods->xUnlock(realOf(f), level); }
int plainCheckReservedLock(sqlite3_file *f, int *out)
{
    return realOf(f)->pMethods->xCheckReservedLock(realOf(f), out);
}
int plainFileControl(sqlite3_file *f, int op, void *arg) { return realOf(f)->pMethods->xFileControl(realOf(f), op, arg); }
int plainSectorSize(sqlite3_file *f) { return realOf(f)->pMethods->xSectorSize(realOf(f)); }
int plainDeviceCharacteristics(sqlite3_file *f) { return realOf(f)->pMethods->xDeviceCharacteristics(realOf(f)); }
int plainShmMap(sqlite3_file *f, int page, int size, int extend, void volatile **out)
{
    return realOf(f)->pMethods->xShmMap(realOf(f), page, size, extend, out);
}
int plainShmLock(sqlite3_file *f, int offset, int n, int flags)
{
    return realOf(f)->pMethods->xShmLock(realOf(f), offset, n, flags);
}
void plainShmBarrier(sqlite3_file *f) { realOf(f)->pMethods->xShmBarrier(realOf(f)); }
int plainShmUnmap(sqlite3_file *f, int deleteFlag) { return realOf(f)->pMethods->xShmUnmap(realOf(f), deleteFlag); }
int plainFetch(sqlite3_file *f, sqlite3_int64 offset, int amount, void **out)
{
    return realOf(f)->pMethods->xFetch(realOf(f), offset, amount, out);
}
int plainUnfetch(sqlite3_file *f, sqlite3_int64 offset, void *p)
{
    return realOf(f)->pMethods->xUnfetch(realOf(f), offset, p);
}

const sqlite3_io_methods PlainMethods = {
    3, plainClose, plainRead, plainWrite, plainTruncate, plainSync, plainFileSize, plainLock, plainUnlock,
    plainCheckReservedLock, plainFileControl, plainSectorSize, plainDeviceCharacteristics, plainShmMap,
    plainShmLock, plainShmBarrier, plainShmUnmap, plainFetch, plainUnfetch,
};

const sqlite3_io_methods MainMethods = {
    3, mainClose, mainRead, mainWrite, mainTruncate, mainSync, mainFileSize, mainLock, mainUnlock,
    plainCheckReservedLock, mainFileControl, plainSectorSize, plainDeviceCharacteristics, plainShmMap,
    plainShmLock, plainShmBarrier, plainShmUnmap, mainFetch, plainUnfetch,
};

// A journal is never mapped into memory, so reads through xFetch need no flush.
const sqlite3_io_methods JournalMethods = {
    3, journalClose, journalRead, journalWrite, journalTruncate, journalSync, journalFileSize, plainLock, plainUnlock,
    plainCheckReservedLock, journalFileControl, plainSectorSize, plainDeviceCharacteristics, plainShmMap,
    plainShmLock, plainShmBarrier, plainShmUnmap, plainFetch, plainUnfetch,
};

int gatedOpen(sqlite3_vfs *, sqlite3_filename name, sqlite3_file *f, int flags, int *outFlags)
{
    GatedFile *g = gatedOf(f);
    g->base.pMethods = nullptr;
    g->gate = nullptr;
    g->name = name;
    g->journal = nullptr;
    g->owner = nullptr;
    g->pending = nullptr;
    g->pendingStart = 0;
    const int rc = g_realVfs->xOpen(g_realVfs, name, realOf(f), flags, outFlags);
    if (!realOf(f)->pMethods)
        return rc;
    // From here a failed open is still closed through us.
    if (rc == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB)) {
        g->base.pMethods = &MainMethods;
        g->pending = new std::vector<char>;
        g->pending->reserve(GatherLimit);
        const std::lock_guard<std::mutex> lock(g_openMutex);
        g_openMains.push_back(g);
    } else if (rc == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_JOURNAL) && name) {
        const char *database = sqlite3_filename_database(name);
        const std::lock_guard<std::mutex> lock(g_openMutex);
        for (GatedFile *main : g_openMains)
            if (main->name == database && !main->journal) {
                g->pending = new std::vector<char>;
                g->pending->reserve(GatherLimit);
                g->owner = main;
                main->journal = g;
                break;
            }
        g->base.pMethods = g->pending ? &JournalMethods : &PlainMethods;
    } else {
        g->base.pMethods = &PlainMethods;
    }
    return rc;
}

// The last close of an unlinked file is what frees its blocks.
void closeInBackground(int fd)
{
    try {
        std::thread([fd] { ::close(fd); }).detach();
    } catch (const std::system_error &) {
        ::close(fd);
    }
}

// The journal of a compaction is as large as the new content; its removal
// at the commit should not hold the compaction up.
int lateDelete(sqlite3_vfs *, const char *name, int syncDir)
{
    const int fd = ::open(name, O_RDONLY | O_CLOEXEC);
    const int rc = g_realVfs->xDelete(g_realVfs, name, syncDir);
    if (fd >= 0)
        closeInBackground(fd);
    return rc;
}

GatedFile *mainFileOf(sqlite3 *db)
{
    sqlite3_file *file = nullptr;
    if (sqlite3_file_control(db, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file ||
        file->pMethods != &MainMethods)
        return nullptr;
    return gatedOf(file);
}

}  // namespace

namespace CompactVfs {

const char *name()
{
    static sqlite3_vfs vfs;
    static std::once_flag registered;
    std::call_once(registered, [] {
        g_realVfs = sqlite3_vfs_find(nullptr);
        vfs = *g_realVfs;
        vfs.szOsFile = RealOffset + g_realVfs->szOsFile;
        vfs.zName = "tavello-compact";
        vfs.pNext = nullptr;
        vfs.xOpen = gatedOpen;
        vfs.xDelete = lateDelete;
        sqlite3_vfs_register(&vfs, 0);
    });
    return vfs.zName;
}

int removeFile(const char *path)
{
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    const int error = ::unlink(path) == 0 ? 0 : errno;
    if (fd >= 0)
        closeInBackground(fd);
    return error;
}

bool setGate(sqlite3 *db, Gate *gate)
{
    GatedFile *main = mainFileOf(db);
    if (!main)
        return false;
    main->gate = gate;
    return true;
}

}  // namespace CompactVfs
