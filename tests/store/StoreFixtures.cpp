#include "StoreFixtures.h"

namespace StoreFixtures {

int failureOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const StoreError &e) {
        return e.number();
    }
    return 0;
}

QStringList column(Database &db, const QString &sql, const QVariantList &params)
{
    QStringList values;
    for (Recordset rs = db.query(sql, params); !rs.eof(); rs.moveNext())
        values << rs.value(0).toString();
    return values;
}

QString rowsOf(Database &db, const QString &want)
{
    const QString head = want.section(QLatin1Char(':'), 0, 0);
    QStringList quoted;
    for (const QString &c : head.section(QLatin1Char('('), 1).chopped(1).split(QStringLiteral(", ")))
        quoted << QStringLiteral("quote(%1)").arg(Database::quoteIdentifier(c));
    const QString sql = QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                            .arg(quoted.join(QStringLiteral(" || ',' || ")),
                                 Database::quoteIdentifier(head.section(QLatin1Char('('), 0, 0)));
    return (head + QStringLiteral(": ") + column(db, sql).join(QStringLiteral("; "))).trimmed();
}

QString dump(Database &db)
{
    QStringList out = column(db, QStringLiteral("SELECT type || ' ' || name || ': ' || ifnull(sql, '') FROM sqlite_master "
                                                "ORDER BY type, name"));
    for (const QString &table : column(db, QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"))) {
        QStringList quoted;
        for (const QString &c : db.fieldNames(table))
            quoted << QStringLiteral("quote(%1)").arg(Database::quoteIdentifier(c));
        for (const QString &row : column(db, QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                                 .arg(quoted.join(QStringLiteral(" || '|' || ")), Database::quoteIdentifier(table))))
            out << table + QStringLiteral(" row: ") + row;
    }
    return out.join(QLatin1Char('\n'));
}

}  // namespace StoreFixtures
