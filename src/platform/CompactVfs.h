#pragma once

#include <condition_variable>
#include <mutex>

struct sqlite3;

// A thin layer over SQLite's own file system, used only by the connection
// that compacts the board's file.
//
// It does two things. It holds the first write to the database file back
// until a gate opens, so that the file is not changed before the copy of
// the untouched file is complete and on disk. And it gathers the many small
// writes of a compaction (a page at a time to the file, three writes a page
// to its rollback journal) into large ones. Kept writes go out in an order
// that keeps the journal's promise: the journal's before the file's, and
// both before the journal's header is written, truncated or closed. A
// process killed at any moment thus leaves a journal that rolls the file
// back as before, or a file that is complete.
namespace CompactVfs {

class Gate {
public:
    void open(bool copied);
    // Waits until the gate opens; true when the copy it waited for is done.
    bool wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
    bool m_copied = false;
};

// The name to open a connection with.
const char *name();

// Puts `gate` (or none) in front of the writes to the main file of `db`.
// False when `db` was not opened through this layer.
bool setGate(sqlite3 *db, Gate *gate);

// Takes a file's name away at once and leaves the freeing of its blocks,
// a noticeable moment for a file of hundreds of megabytes, to a background
// thread. Returns 0 or the error number of the unlink.
int removeFile(const char *path);

}  // namespace CompactVfs
