#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

// Real board files for the repair tests, built and inspected through the
// bare SQLite library so that the code under test checks nothing itself.
namespace RepairFixtures {

struct BoardShape {
    int users = 2000;
    int activeEvery = 7;   // every n-th user is "Yes", the rest "No"
    int deleteEvery = 5;   // every n-th run of fifty users is deleted again: free pages to compact away
    bool guest = true;     // keep the seed row "Guest"
};

// A complete board database (CreateDatabase) with `shape.users` extra users
// whose comments fill the pages.
void makeBoard(const QString &local, const BoardShape &shape);

QByteArray bytesOf(const QString &local);
bool writeBytes(const QString &local, const QByteArray &bytes);
quint64 inodeOf(const QString &local);

// Every row of every table, hashed in key order: equal for two files that
// hold the same data whatever their page layout.
QString fingerprint(const QString &local);
// The same for the data a repair leaves: every active flag reset.
QString flagsResetFingerprint(const QString &local);
// Rows of one table as "Name -> the row's values", for comparing row sets.
QMap<QString, QString> employeeRows(const QString &local);
QString integrity(const QString &local);
QVariant scalar(const QString &local, const QString &sql);

// Pages of one b-tree of the file (table or index), by SQLite's own page
// statistics: `kind` is "leaf" or "internal".
QVector<int> pagesOf(const QString &local, const QString &btree, const QString &kind);
// The EmployeeTable names stored on one table leaf page, read off the raw page.
QStringList namesOnLeaf(const QString &local, int page);
// The row ids stored on one table leaf page.
QVector<qint64> rowidsOnLeaf(const QString &local, int page);
int pageSize(const QString &local);
// Overwrites whole pages with noise.
void damagePages(const QString &local, const QVector<int> &pages);

}  // namespace RepairFixtures
