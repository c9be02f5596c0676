#pragma once

#include "platform/Database.h"

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

// Helpers shared by the store's tests. The expected shape is written down
// here from the board's field list, apart from the code under test, so a
// slip in either shows as a difference.
namespace StoreFixtures {

struct FieldRow {
    QString table;
    QString name;
    int position = 0;      // 0-based, in creation order
    QString type;          // "Integer", "Long", "Boolean", "Double", "Date/Time", "Text", "Memo"
    int size = 0;
    bool required = false;
    bool zeroLength = true;
    QString defaultValue;  // as the store prints it: 1200, 'Users'; empty: none
    bool autoIncrement = false;
    bool primary = false;  // part of the table's primary index
};

struct IndexRow {
    QString table;
    QString name;
    QStringList fields;
    bool primary = false;
    bool unique = false;
};

QStringList expectedTableOrder();
QVector<FieldRow> expectedFields();
QVector<IndexRow> expectedIndexes();
// The declared type a field of the list gets on SQLite.
QString expectedDeclaredType(const FieldRow &f);

// 0, or the number of the StoreError that `f` throws.
int failureOf(const std::function<void()> &f);

// A new file at `local` with every table, index and relation, and no rows.
Database structureOnly(const QString &local);

// Every object's definition and every row of every table, as text; two
// files with equal dumps hold the same shape and the same data.
QString dump(Database &db);

// The values of one column in rowid order, as SQLite's quote() prints them
// ('text', 12, 1.5, NULL).
QStringList columnValues(Database &db, const QString &table, const QString &column);

// One row per (table, column) of pragma table_info: "name type notnull default".
QStringList columnShapes(Database &db, const QString &table);

}  // namespace StoreFixtures
