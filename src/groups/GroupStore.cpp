#include "groups/GroupStore.h"

#include "platform/Database.h"
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

// Runs one step until it goes through or `retry` declines.
template <typename Step>
bool attempt(const RetryAsk &retry, Step &&step)
{
    for (;;) {
        try {
            step();
            return true;
        } catch (const StoreError &e) {
            if (!retry(e))
                return false;
        }
    }
}

bool giveUp(Database &db)
{
    if (db.inTransaction())
        db.rollback();
    return false;
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

    if (!attempt(retry, [&] { db.beginTrans(); }))
        return giveUp(db);
    Recordset rows;
    if (!attempt(retry, [&] { rows = db.openTable(EmployeeGroupTable, QStringLiteral("GroupName = ?"), {group}); }))
        return giveUp(db);

    // Those who left go, with any manager mark they had.
    QSet<QString> present;
    for (; !rows.eof(); rows.moveNext()) {
        const QString name = rows.text(QStringLiteral("EmployeeName")).trimmed();
        present.insert(name);
        if (!keep.contains(name) && !attempt(retry, [&] { rows.remove(); }))
            return giveUp(db);
    }
    rows.close();

    // Those who came are plain members.
    for (const QString &name : wanted) {
        if (present.contains(name.trimmed()))
            continue;
        if (!attempt(retry, [&] {
                db.execute(QStringLiteral("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)"),
                           {name, group});
            }))
            return giveUp(db);
        present.insert(name.trimmed());
    }
    if (!attempt(retry, [&] { db.commitTrans(); }))
        return giveUp(db);
    return true;
}

bool deleteGroup(Database &db, const QString &name, const RetryAsk &retry)
{
    if (!attempt(retry, [&] { db.beginTrans(); }))
        return giveUp(db);
    Recordset rows;
    if (!attempt(retry, [&] { rows = db.openTable(GroupTable, QStringLiteral("GroupName = ?"), {name}); }))
        return giveUp(db);
    for (; !rows.eof(); rows.moveNext())
        if (!attempt(retry, [&] { rows.remove(); }))
            return giveUp(db);
    rows.close();
    if (!attempt(retry, [&] { db.commitTrans(); }))
        return giveUp(db);
    return true;
}

}  // namespace Groups
