#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class Database;
class StoreError;

// Added columns. A column named N is six real fields and nothing else:
//   EmployeeTable          New_N (the user's value), New_NReadOnly (flag)
//   EmployeeSettingsTable  New_NColumnWidth, New_NColumnOrder
//   NewUserDefaultsTable   New_N (value for new users), New_NReadOnly
// so the field names are the catalogue. Names reach SQL only quoted, so
// blanks, brackets, quotes and any letters are safe in them.
//
// The functions below run their statements on `db` as they come; the
// windows wrap each change in one transaction (Store::inTransaction, or a
// deletion batch), so that the six fields change together or not at all.
namespace Columns {

const QString Prefix = QStringLiteral("New_");

struct Field {
    QString table;
    QString name;
};
// The six fields of column `name`, in the order they are added.
QVector<Field> fieldsOf(const QString &name);

// The name test: refused when "New_" + name or the name itself is already a
// field of EmployeeTable (blind to case, so no column can take the name of
// a built-in field or of another column's flag), or when one of its six
// fields already stands in its table.
bool nameTaken(Database &db, const QString &name);
// Whether the column's value field is still in EmployeeTable.
bool exists(Database &db, const QString &name);

// The six fields, both flags set on every row, ExtraColumnsCounter raised.
void add(Database &db, const QString &name, bool readOnly);
// Renames in place, values kept; the flags set afresh under the new name;
// counter raised. A field a column lacks (made by an older console that let
// the last four fail) is passed over.
void rename(Database &db, const QString &from, const QString &to, bool readOnly);
// Drops whatever of the six fields is there. The counter is the batch's.
void drop(Database &db, const QString &name);

// A refusal because another program reads or writes the file right now.
bool inUse(const StoreError &e);

}  // namespace Columns
