#include "StoreFixtures.h"

namespace StoreFixtures {

QStringList column(Database &db, const QString &sql, const QVariantList &params)
{
    QStringList values;
    for (Recordset rs = db.query(sql, params); !rs.eof(); rs.moveNext())
        values << rs.value(0).toString();
    return values;
}

// Each row of `table` in rowid order: its `fields` as quote() prints them, joined by `separator`.
static QStringList quotedRows(Database &db, const QString &table, const QStringList &fields, const QString &separator)
{
    QStringList quoted;
    for (const QString &c : fields)
        quoted << "quote(" + Database::quoteIdentifier(c) + ')';
    return column(db, "SELECT " + quoted.join(" || '" + separator + "' || ") + " FROM " + Database::quoteIdentifier(table) +
                          " ORDER BY rowid");
}

QString rowsOf(Database &db, const QString &want)
{
    const QString head = want.section(':', 0, 0);
    const QStringList fields = head.section('(', 1).chopped(1).split(", ");
    return (head + ": " + quotedRows(db, head.section('(', 0, 0), fields, ",").join("; ")).trimmed();
}

QString dump(Database &db)
{
    QStringList out = column(db, "SELECT type || ' ' || name || ': ' || ifnull(sql, '') FROM sqlite_master ORDER BY type, name");
    for (const QString &table : column(db, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"))
        for (const QString &row : quotedRows(db, table, db.fieldNames(table), "|"))
            out << table + " row: " + row;
    return out.join('\n');
}

}  // namespace StoreFixtures
