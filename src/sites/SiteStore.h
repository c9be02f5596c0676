#pragma once

#include "platform/StoreError.h"

#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class Database;

// What the server windows and Auto Sync read and write, as plain functions,
// so that a test can run them without a window. Every value is a bound
// parameter.
namespace Sites {

// The file of a site's database in its folder.
inline const QString DatabaseName = QStringLiteral("tavello.mdb");

// One ServersTable row; a Null description reads as empty.
struct ServerRow {
    QString path;
    QString description;
};

// --- the server windows, on the home database

// Opens the database at `file` and closes it again; the failure, if any.
std::optional<StoreError> testOpen(const QString &file);

// Whether `folder` + "tavello.mdb" is a 2005 board database. On any failure,
// or another version, says "Error: This is NOT a 2005 Tavello database." and
// answers false. Works on a handle of its own: gdbMain stays on the home
// database the entries are written to.
bool validityTest(const QString &folder);

// An entry with exactly this path (the store compares without regard to case).
bool serverListed(Database &db, const QString &path);
// An entry with the new path that is not the entry of the old path.
bool otherServerListed(Database &db, const QString &newPath, const QString &oldPath);

// The three windows' writes, each the body of one transaction, for
// Store::inTransaction.
std::function<void()> addServerChange(Database &db, const QString &path, const QString &description);
std::function<void()> modifyServerChange(Database &db, const QString &oldPath, const QString &newPath,
                                         const QString &description);
// Deletes the first row of the path only, even where two exist.
std::function<void()> deleteServerChange(Database &db, const QString &path);

// --- Auto Sync, one site at a time

// What happened at one site. `opened` tells whether its database opened;
// `failures` are the failures met, in order: after an open failure, after a
// 3044, or after a failure of reading, beginning or committing, nothing more
// was done there. Each insert that fails is one failure, and the others go on.
struct SiteOutcome {
    bool opened = false;
    QVector<StoreError> failures;
    QVector<ServerRow> rows;   // scan: the site's rows with a path, in path order, read before any failure
    QVector<ServerRow> added;  // update: the rows written, in list order
};

// Reads the ServersTable of the database at `folder` + "tavello.mdb" once.
SiteOutcome readSite(const QString &folder);

// Writes to the database at `target` + "tavello.mdb" every list row that it
// lacks: a row is lacking when no stored path is `like` the row's path and
// the row's path is not exactly `target`. Rows written earlier count for the
// later ones. The table is read once, and the rows go in one transaction; a
// path with a double quote fails as its query always has.
SiteOutcome updateSite(const QString &target, const QVector<ServerRow> &list);

// Runs `work` on a thread of its own while this thread keeps handling its
// events (paints, input), and returns when it is done. `work` must not touch
// widgets; database handles it opens must be closed inside it.
void runAside(const std::function<void()> &work);

}  // namespace Sites
