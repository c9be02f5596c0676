#pragma once

#include "platform/Database.h"

#include <QFile>
#include <QStringList>
#include <functional>

// Helpers shared by the store's tests.
namespace StoreFixtures {

// 0, or the number of the StoreError that `f` throws.
inline int failureOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const StoreError &e) {
        return e.number();
    }
    return 0;
}

inline QByteArray contentOf(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The first value of every row `sql` returns, as text.
QStringList column(Database &db, const QString &sql, const QVariantList &params = {});

// `want` is "Table(A, B): ..."; returns "Table(A, B): a1,b1; a2,b2", the rows
// in rowid order as quote() prints them ('text', 12, NULL), to compare with it.
QString rowsOf(Database &db, const QString &want);

// Every object's definition and every row of every table: equal dumps, equal files.
QString dump(Database &db);

}  // namespace StoreFixtures
