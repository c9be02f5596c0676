#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class Database;
class StoreError;

// What the group windows read and write, as plain functions on an open
// handle, so a test can run them without a window. Every value is a bound
// parameter.
namespace Groups {

// Asked after a change failed and was rolled back: true runs the whole
// change again, false gives up.
using RetryAsk = std::function<bool(const StoreError &)>;

// The board's protected group, compared blind to case.
bool isEveryone(const QString &name);

// Add's uniqueness test: the typed text is a `like` pattern, so * ? # [..]
// act as wildcards, and case is ignored.
bool nameMatches(Database &db, const QString &pattern);
// Modify's test: a group of exactly this name, blind to case (letters
// beyond ASCII too).
bool nameExists(Database &db, const QString &name);

// The Name of every user, in the store's order.
QStringList allUsers(Database &db);

// A new group and its first members (plain members), GroupCounter raised
// once. One transaction: a failure leaves no part of the group behind, and
// is thrown on.
void addGroup(Database &db, const QString &name, const QStringList &members);

// The Modify window's two lists at opening, by name, each name trimmed.
QStringList nonMembers(Database &db, const QString &group);
QStringList members(Database &db, const QString &group);

// Writes `to` over the group row `from` (also when equal) and raises
// GroupCounter, in one transaction. The store's cascades carry a new name
// into the memberships and the users' default group. A group that another
// program has deleted meanwhile is a 3167 failure and nothing is written.
void renameGroup(Database &db, const QString &from, const QString &to);

// Makes the memberships of `group` those of `wanted`: rows of members not
// wanted are deleted (a manager mark goes with its row), wanted names
// without a row are added as plain members, other rows stay as they are.
// Names compare exactly, blanks around them aside. One transaction; after a
// failure it is rolled back and `retry` asked whether to run it again;
// false when it declines.
bool setMembers(Database &db, const QString &group, const QStringList &wanted, const RetryAsk &retry);

// Deletes one group in a transaction of its own; its memberships, and the
// settings rows of users whose default group it was, go by the store's
// cascades. After a failure it is rolled back and `retry` asked whether to
// run it again; false when it declines.
bool deleteGroup(Database &db, const QString &name, const RetryAsk &retry);

}  // namespace Groups
