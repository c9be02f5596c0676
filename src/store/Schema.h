#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// The shape of tavello.mdb as data: every table with its fields, indexes and
// relations in the order they are created. Creation and the structure
// upgrade both build their statements from here, so a column added by the
// upgrade is defined exactly like the same column in a new file.
//
// Only SQLite's own types, collations and functions appear in the
// statements: any SQLite tool must be able to read and write the file with
// every rule below still enforced.
namespace Schema {

enum class Type { Boolean, Integer, Long, Double, DateTime, Text, Memo };

struct Field {
    QString name;
    Type type = Type::Text;
    int size = 0;                 // characters; Text only
    bool required = false;
    bool allowZeroLength = true;  // Text and Memo only
    QString defaultValue;         // an SQL expression (1200, 'Users'); empty: none
    bool autoIncrement = false;
};

struct Index {
    QString name;        // the name within its table
    QStringList fields;
    bool primary = false;
    bool unique = false;
};

struct Table {
    QString name;
    QVector<Field> fields;
    QVector<Index> indexes;
};

// Relation attributes as the board has always numbered them.
enum : int { NotEnforced = 2, CascadeUpdateDelete = 4352, CascadeOneToOne = 4353 };

struct Relation {
    QString name;
    QString table;         // the one side (EmployeeTable)
    QString foreignTable;  // the many side, which holds the constraint
    QString field;
    QString foreignField;
    int attributes = NotEnforced;
    bool enforced() const { return attributes != NotEnforced; }
};

struct AddedField {
    QString table;
    Field field;
};

// The sixteen tables in creation order, fields in creation order.
const QVector<Table> &tables();
// The seven relations in creation order.
const QVector<Relation> &relations();
// Fields that only the structure upgrade adds (a new file lacks them).
const QVector<AddedField> &upgradeFields();

const Table *table(const QString &name);  // case-blind; nullptr if unknown
// A field of the creation shape or of the upgrade; nullptr if unknown.
const Field *field(const QString &table, const QString &name);

// Index names are global in SQLite: "EmployeeTable.PrimaryKey".
QString indexName(const QString &table, const QString &index);

// Declared type, collation, NOT NULL, DEFAULT and the named constraints of
// one column, without its name. Used by CREATE TABLE and ADD COLUMN alike.
QString columnDefinition(const QString &table, const Field &field);

QString createTableStatement(const Table &table);
QStringList createIndexStatements(const Table &table);

}  // namespace Schema
