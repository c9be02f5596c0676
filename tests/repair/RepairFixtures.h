#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>
#include <QVector>

// Real board files for the repair tests, built and read through the bare
// SQLite library, so that the code under test checks nothing itself.
namespace RepairFixtures {

struct BoardShape {
    int users = 2000;
    int activeEvery = 7;  // every n-th user is "Yes", the rest "No"
    bool guest = true;    // keep the seed row "Guest"
};

// A new board (CreateDatabase) with users whose comments fill the pages;
// runs of them are deleted again, leaving free pages to compact away.
void makeBoard(const QString &local, const BoardShape &shape);
// The first value of the first row, or "error: " and SQLite's text.
QVariant scalar(const QString &local, const QString &sql, const QVariantList &args = {});
QString integrity(const QString &local);

QByteArray bytesOf(const QString &local);
bool writeBytes(const QString &local, const QByteArray &bytes);
quint64 inodeOf(const QString &local);

// Every row of every table, equal for two files holding the same data
// whatever their page layout; `resetFlags` reads every active flag as "No".
QString fingerprint(const QString &local, bool resetFlags = false);
// EmployeeTable as Name -> the row's values.
QMap<QString, QString> employeeRows(const QString &local, bool resetFlags = false);

// The leaf pages of one b-tree in key order, by SQLite's page statistics;
// for a table with the row ids each one holds.
struct Leaf {
    int page;
    QVector<qint64> rowids;
};
QVector<Leaf> leavesOf(const QString &local, const QString &btree);
// Overwrites whole pages with noise.
void damagePages(const QString &local, const QVector<int> &pages);

}  // namespace RepairFixtures
