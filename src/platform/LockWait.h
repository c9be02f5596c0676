#pragma once

#include <QString>

struct sqlite3;

// The store's one rule for locks that other programs hold. A board is never
// quiet: hundreds of user programs hold the file for moments all day. So
// every open, read and write waits for a passing lock, up to a bounded time,
// with the hourglass up and the windows repainting, before it fails. A file
// counts as held exclusively by another program only when it was so held
// across the whole wait; a writer's commit that holds it for an instant is
// a passing lock like any other.
namespace Store {

constexpr int DefaultLockWaitMs = 10000;

// How long a store call waits for a passing lock before it fails.
int lockWait();
// Tests shorten it to reach a failure path without waiting the full time.
void setLockWait(int ms);

}  // namespace Store

namespace LockWait {

// Makes the connection `db`, on the file `localPath`, wait by the rule.
void install(sqlite3 *db, const QString &localPath);
// Forgets the connection before it is closed.
void forget(sqlite3 *db);

// Whether the last wait of `db` ran out with another program holding the
// file to itself at every look during the wait.
bool heldThroughout(sqlite3 *db);

// Whether another program holds the file to itself right now.
bool heldByAnother(const QString &localPath);

}  // namespace LockWait
