#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVector>

// Real board files for the repair tests, built and read through the bare
// SQLite library, so that the code under test checks nothing itself.
namespace RepairFixtures {

inline const QString Live = QStringLiteral("tavello.mdb");
// What a repair does to the active flags, for the data expected of it.
inline const QString ResetFlags = QStringLiteral("UPDATE EmployeeTable SET ActiveFlag = 'No' WHERE ActiveFlag = 'Yes'");

// A new board (CreateDatabase) with users whose comments fill the pages, every
// n-th of them active; runs of them are deleted again, leaving free pages.
void makeBoard(const QString &local, int users = 2000, int activeEvery = 7);
// The first value of the first row, or "error: " and SQLite's text.
QVariant scalar(const QString &local, const QString &sql, const QVariantList &args = {});
inline QString integrity(const QString &local) { return scalar(local, "PRAGMA integrity_check").toString(); }

QByteArray bytesOf(const QString &local);
bool writeBytes(const QString &local, const QByteArray &bytes);
quint64 inodeOf(const QString &local);

// The schema and every row of every table, equal for two files holding the
// same data whatever their page layout.
QString fingerprint(const QString &local);

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
