#include "groups/GroupStore.h"

#include "platform/Database.h"
#include "platform/Transaction.h"
#include "store/Counters.h"

#include <QSet>

namespace Groups {

namespace {

const QString GroupTable = QStringLiteral("GroupTable");
const QString EmployeeGroupTable = QStringLiteral("EmployeeGroupTable");
const QString GroupCounter = QStringLiteral("GroupCounter");

// A name as a `like` pattern that matches only itself: each character the
// pattern rules give a meaning stands alone in a list.
QString literalPattern(const QString &name)
{
    QString out;
    out.reserve(name.size() + 8);
    for (QChar c : name) {
        if (c == QLatin1Char('*') || c == QLatin1Char('?') || c == QLatin1Char('#') || c == QLatin1Char('['))
            out += QLatin1Char('[') + c + QLatin1Char(']');
        else
            out += c;
    }
    return out;
}

QStringList trimmedColumn(Database &db, const QString &sql, const QVariantList &params)
{
    QStringList out;
    for (Recordset rs = db.query(sql, params); !rs.eof(); rs.moveNext())
        out << rs.value(0).toString().trimmed();
    return out;
}

}  // namespace

bool isEveryone(const QString &name) { return name.toUpper() == QLatin1String("EVERYONE"); }

bool nameMatches(Database &db, const QString &pattern)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM GroupTable WHERE GroupName LIKE ?"), {pattern}).toLongLong() != 0;
}

bool nameExists(Database &db, const QString &name)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM GroupTable WHERE GroupName LIKE ?"), {literalPattern(name)})
               .toLongLong() != 0;
}

QStringList allUsers(Database &db)
{
    QStringList out;
    for (Recordset rs = db.query(QStringLiteral("SELECT Name FROM EmployeeTable")); !rs.eof(); rs.moveNext())
        out << rs.value(0).toString();
    return out;
}

void addGroup(Database &db, const QString &name, const QStringList &members)
{
    db.beginTrans();
    try {
        db.addRow(GroupTable, {{QStringLiteral("GroupName"), name}});
        for (const QString &member : members)
            db.execute(QStringLiteral("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)"),
                       {member, name});
        raiseCounterField(db, GroupCounter);
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
}

QStringList nonMembers(Database &db, const QString &group)
{
    return trimmedColumn(db,
                         QStringLiteral("SELECT EmployeeTable.Name FROM EmployeeTable WHERE Name NOT IN (SELECT DISTINCT "
                                        "EmployeeName FROM EmployeeGroupTable WHERE GroupName = ?) ORDER BY Name"),
                         {group});
}

QStringList members(Database &db, const QString &group)
{
    return trimmedColumn(db,
                         QStringLiteral("SELECT Name FROM EmployeeTable, EmployeeGroupTable WHERE Name = EmployeeName "
                                        "AND GroupName = ? ORDER BY Name"),
                         {group});
}

void renameGroup(Database &db, const QString &from, const QString &to)
{
    db.beginTrans();
    try {
        Recordset rs = db.openTable(GroupTable, QStringLiteral("GroupName = ?"), {from});
        if (rs.eof())
            throw StoreError(err::RowDeleted,
                             QStringLiteral("The group '%1' no longer exists: another program has deleted it.").arg(from));
        rs.edit({{QStringLiteral("GroupName"), to}});
        rs.close();
        raiseCounterField(db, GroupCounter);
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
}

bool setMembers(Database &db, const QString &group, const QStringList &wanted, const RetryAsk &retry)
{
    QSet<QString> keep;
    keep.reserve(wanted.size());
    for (const QString &name : wanted)
        keep.insert(name.trimmed());

    return Store::inTransaction(
        db,
        [&] {
            // Those who left go, with any manager mark they had.
            QSet<QString> present;
            Recordset rows = db.openTable(EmployeeGroupTable, QStringLiteral("GroupName = ?"), {group});
            for (; !rows.eof(); rows.moveNext()) {
                const QString name = rows.text(QStringLiteral("EmployeeName")).trimmed();
                present.insert(name);
                if (!keep.contains(name))
                    rows.remove();
            }
            rows.close();
            // Those who came are plain members.
            for (const QString &name : wanted) {
                if (present.contains(name.trimmed()))
                    continue;
                db.execute(QStringLiteral("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)"),
                           {name, group});
                present.insert(name.trimmed());
            }
        },
        retry);
}

bool deleteGroup(Database &db, const QString &name, const RetryAsk &retry)
{
    return Store::inTransaction(
        db,
        [&] {
            Recordset rows = db.openTable(GroupTable, QStringLiteral("GroupName = ?"), {name});
            for (; !rows.eof(); rows.moveNext())
                rows.remove();
        },
        retry);
}

}  // namespace Groups
