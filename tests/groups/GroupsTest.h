#pragma once

#include "users/UsersTest.h"

class QListView;

namespace GroupsTest {

// Users Ann, Bob, Cleo, Dan and Eve beside the seed's Guest; groups Sales
// (Ann, Bob, and Cleo as its manager), Support (Bob, and Dan as manager),
// Team 7, Vehicles Fleet and Émigrés. Ann's and Cleo's default group is
// Sales, Bob's Support.
void seedBoard(Database &db);

// A group's memberships as "Name=GroupManager ...", in the order written.
QString memberships(Database &db, const QString &group);
// Every user's settings row as "Name=DefaultGroup ...", by name.
QString defaultGroups(Database &db);
QString groupNames(Database &db);  // "A|B|..." by name
long long groupCounter(Database &db);

// The names a two-list view shows, in order.
QStringList shown(const QListView *view);
// A real mouse click on the item of that name.
void clickItem(QListView *view, const QString &name);
// "+Name" clicks it in ListView1, "-Name" in ListView2.
void clickAll(QWidget *dialog, const QStringList &clicks);

}  // namespace GroupsTest
