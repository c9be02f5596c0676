#pragma once

#include "platform/StoreError.h"

#include <QString>
#include <QtGlobal>

#include <memory>

struct sqlite3;

// File-level work on the board's database: raw copies for the backups,
// compaction in place and salvage of damaged files.
//
// Other programs keep the file open while this runs and after it. They hold
// the file by its inode, so the file is never renamed or replaced: the
// compacted content is written into the same file under SQLite's own
// rollback journal, by one connection that holds the file to itself from
// the copy to the end. A process killed at any moment leaves the old or the
// complete new content under the file's name (a journal left behind is
// rolled back by the next program that opens the file).
//
// Failures are thrown as StoreError: 75 for the plain file work, the
// store's numbers for the rest.
namespace Compact {

struct CloseConnection {
    void operator()(sqlite3 *db) const;
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

struct Result {
    bool salvaged = false;        // damaged pages were met: the readable rows were copied instead
    qint64 rowsCopied = 0;        // salvage: rows put into the new content
    int unreadableRuns = 0;       // salvage: runs of rows that could not be read
    int tablesLost = 0;           // salvage: tables of which nothing at all could be read
};

// Opens a file that may be damaged and takes it to itself until the
// connection is closed; only the file's header is read. A missing file gives
// 3024, one whose header SQLite cannot read 3343, one that other programs
// are using 3050 (3045 when one of them holds it to itself).
Connection holdFile(const QString &localPath);

// Writes the raw bytes of the file that `db` holds to `targetLocal`: under a
// temporary name first, flushed to disk, then renamed, so the target is
// either complete or untouched. The bytes are read through the
// connection's own file handle: another descriptor on the file, once
// closed, would drop this process's locks on it.
void copyHeldFile(sqlite3 *db, const QString &targetLocal);

// The same for a file that this process does not have open.
void copyFile(const QString &sourceLocal, const QString &targetLocal);

// Removes a file (an old backup) without waiting for its blocks to be
// freed. False when the file could not be removed.
bool removeFile(const QString &localPath);

// Rewrites the file that `held` holds exclusively as a compact copy of
// itself, and lets it go. When pages turn out to be damaged, every row that
// can still be read is salvaged into fresh content instead (indexes
// rebuilt), and that content is written into the file. Throws 3343/3049
// when not even the list of tables can be read; the file is then left as it
// was.
//
// With a `backupLocal`, the untouched file is first copied there as
// copyHeldFile does; on a connection from holdFile the copy runs while the
// new content is built, and the file is not written before the copy is on
// disk. A failed copy (75) leaves the file as it was.
Result compactHeld(Connection held, const QString &backupLocal = QString());

// Copies every readable row of `source` into the empty database `target`:
// the same tables, indexes, triggers and views, rows table by table,
// stepping past pages that cannot be read.
Result salvage(sqlite3 *source, sqlite3 *target);

}  // namespace Compact
