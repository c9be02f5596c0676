#include "catalogues/ColumnStore.h"

#include "platform/Database.h"
#include "store/Counters.h"

namespace Columns {

namespace {

const QString EmployeeTable = QStringLiteral("EmployeeTable");
const QString EmployeeSettingsTable = QStringLiteral("EmployeeSettingsTable");
const QString NewUserDefaultsTable = QStringLiteral("NewUserDefaultsTable");
const QString ReadOnly = QStringLiteral("ReadOnly");
const QString ColumnWidth = QStringLiteral("ColumnWidth");
const QString ColumnOrder = QStringLiteral("ColumnOrder");

QString field(const QString &name, const QString &suffix = QString()) { return Prefix + name + suffix; }

// The field of `table` that `wanted` names, in the spelling the table has
// it; empty when there is none. Compared in upper case, as the name test does.
QString stored(Database &db, const QString &table, const QString &wanted)
{
    const QString upper = wanted.toUpper();
    for (const QString &f : db.fieldNames(table))
        if (f.toUpper() == upper)
            return f;
    return QString();
}

// Column types as the rest of the schema declares them; the constraints
// carry no name, so that a rename leaves nothing behind that names the old
// field.
QString definition(const QString &fieldName, const QString &suffix)
{
    const QString q = Database::quoteIdentifier(fieldName);
    if (suffix.isEmpty())
        return QStringLiteral("TEXT(250) COLLATE NOCASE CHECK (length(%1) <= 250)").arg(q);
    if (suffix == ReadOnly)  // a Yes/No field: -1 is the True of the board's older engine
        return QStringLiteral("BOOLEAN NOT NULL DEFAULT 0 CHECK (%1 IN (-1, 0, 1))").arg(q);
    return QStringLiteral("REAL");
}

void setFlag(Database &db, const QString &table, const QString &name, bool readOnly)
{
    const QString flag = stored(db, table, field(name, ReadOnly));
    if (flag.isEmpty())
        return;
    db.execute(QStringLiteral("UPDATE %1 SET %2 = ?").arg(Database::quoteIdentifier(table), Database::quoteIdentifier(flag)),
               {readOnly ? 1 : 0});
}

void renameField(Database &db, const QString &table, const QString &from, const QString &to, const QString &suffix)
{
    const QString old = stored(db, table, field(from, suffix));
    if (!old.isEmpty())
        db.renameColumn(table, old, field(to, suffix));
}

void dropField(Database &db, const QString &table, const QString &name, const QString &suffix)
{
    const QString f = stored(db, table, field(name, suffix));
    if (!f.isEmpty())
        db.dropColumn(table, f);
}

}  // namespace

QVector<Field> fieldsOf(const QString &name)
{
    return {
        {EmployeeTable, field(name)},
        {EmployeeTable, field(name, ReadOnly)},
        {EmployeeSettingsTable, field(name, ColumnWidth)},
        {EmployeeSettingsTable, field(name, ColumnOrder)},
        {NewUserDefaultsTable, field(name)},
        {NewUserDefaultsTable, field(name, ReadOnly)},
    };
}

bool nameTaken(Database &db, const QString &name)
{
    const QString upper = name.toUpper();
    const QString prefixed = field(name).toUpper();
    for (const QString &f : db.fieldNames(EmployeeTable))
        if (f.toUpper() == prefixed || f.toUpper() == upper)
            return true;
    // A column named RoomReadOnly made before Room holds Room's flag field.
    for (const Field &f : fieldsOf(name))
        if (!stored(db, f.table, f.name).isEmpty())
            return true;
    return false;
}

bool exists(Database &db, const QString &name) { return !stored(db, EmployeeTable, field(name)).isEmpty(); }

void add(Database &db, const QString &name, bool readOnly)
{
    const QString suffixes[] = {QString(), ReadOnly, ColumnWidth, ColumnOrder, QString(), ReadOnly};
    const QVector<Field> fields = fieldsOf(name);
    for (int i = 0; i < fields.size(); ++i) {
        db.addColumn(fields[i].table, fields[i].name, definition(fields[i].name, suffixes[i]));
        if (i == 1)
            setFlag(db, EmployeeTable, name, readOnly);
    }
    setFlag(db, NewUserDefaultsTable, name, readOnly);
    raiseExtraColumnsCounter(db);
}

void rename(Database &db, const QString &from, const QString &to, bool readOnly)
{
    renameField(db, EmployeeTable, from, to, ReadOnly);
    renameField(db, EmployeeTable, from, to, QString());
    setFlag(db, EmployeeTable, to, readOnly);
    renameField(db, EmployeeSettingsTable, from, to, ColumnWidth);
    renameField(db, EmployeeSettingsTable, from, to, ColumnOrder);
    renameField(db, NewUserDefaultsTable, from, to, QString());
    renameField(db, NewUserDefaultsTable, from, to, ReadOnly);
    setFlag(db, NewUserDefaultsTable, to, readOnly);
    raiseExtraColumnsCounter(db);
}

void drop(Database &db, const QString &name)
{
    dropField(db, EmployeeTable, name, QString());
    dropField(db, EmployeeTable, name, ReadOnly);
    dropField(db, EmployeeSettingsTable, name, ColumnOrder);
    dropField(db, EmployeeSettingsTable, name, ColumnWidth);
    dropField(db, NewUserDefaultsTable, name, QString());
    dropField(db, NewUserDefaultsTable, name, ReadOnly);
}

bool inUse(const StoreError &e) { return e.number() == err::RowLocked; }

}  // namespace Columns
