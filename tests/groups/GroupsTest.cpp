#include "GroupsTest.h"

#include <QAbstractItemModel>
#include <QListView>

namespace GroupsTest {

void seedBoard(Database &db)
{
    UsersTest::addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Dan=d1", "Eve=e1"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?), (?), (?), (?), (?)",
               {"Sales", "Support", "Team 7", "Vehicles Fleet", "Émigrés"});
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES (?, ?, 0), (?, ?, 0), "
               "(?, ?, 1), (?, ?, 0), (?, ?, 2)",
               {"Ann", "Sales", "Bob", "Sales", "Cleo", "Sales", "Bob", "Support", "Dan", "Support"});
    db.execute("UPDATE EmployeeSettingsTable SET DefaultGroup = ? WHERE Name IN (?, ?)", {"Sales", "Ann", "Cleo"});
    db.execute("UPDATE EmployeeSettingsTable SET DefaultGroup = ? WHERE Name = ?", {"Support", "Bob"});
}

QString memberships(Database &db, const QString &group)
{
    return UsersTest::rows(db, "SELECT ifnull(group_concat(m, ' '), '') FROM (SELECT EmployeeName || '=' || GroupManager AS m FROM "
                               "EmployeeGroupTable WHERE GroupName = ? ORDER BY rowid)", {group});
}

QString defaultGroups(Database &db)
{
    return UsersTest::rows(db, "SELECT group_concat(d, ' ') FROM (SELECT Name || '=' || DefaultGroup AS d FROM "
                               "EmployeeSettingsTable ORDER BY Name)");
}

QString groupNames(Database &db)
{
    return UsersTest::rows(db, "SELECT group_concat(GroupName, '|') FROM (SELECT GroupName FROM GroupTable "
                               "ORDER BY GroupName)");
}

long long groupCounter(Database &db) { return db.scalar("SELECT GroupCounter FROM StatusCounterTable").toLongLong(); }

QStringList shown(const QListView *view)
{
    QStringList out;
    const QAbstractItemModel *m = view->model();
    for (int row = 0; row < m->rowCount(); ++row)
        out << m->index(row, 0).data().toString();
    return out;
}

void clickItem(QListView *view, const QString &name)
{
    const int row = int(shown(view).indexOf(name));
    if (row < 0)
        qFatal("%s is not in %s", qPrintable(name), qPrintable(view->objectName()));
    const QModelIndex index = view->model()->index(row, 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

void clickAll(QWidget *dialog, const QStringList &clicks)
{
    for (const QString &c : clicks)
        clickItem(UsersTest::control<QListView>(dialog, c[0] == '-' ? "ListView2" : "ListView1"), c.mid(1));
}

}  // namespace GroupsTest
