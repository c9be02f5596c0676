#include "catalogues/DueBackStore.h"

#include "platform/Database.h"

namespace DueBackTypes {

bool exists(Database &db, const QString &pattern)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM DueBackTable WHERE DueBack LIKE ?"), {pattern}).toLongLong() != 0;
}

bool equalExists(Database &db, const QString &text)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM DueBackTable WHERE DueBack = ?"), {text}).toLongLong() != 0;
}

void add(Database &db, const QString &text)
{
    db.addRow(QStringLiteral("DueBackTable"), {{QStringLiteral("DueBack"), text.trimmed()}});
}

void rename(Database &db, const QString &current, const QString &text)
{
    Recordset rs = db.openTable(QStringLiteral("DueBackTable"), QStringLiteral("DueBack = ?"), {current});
    rs.edit({{QStringLiteral("DueBack"), text}});
    rs.close();
}

void deleteRows(Database &db, const QString &text)
{
    db.execute(QStringLiteral("DELETE FROM DueBackTable WHERE DueBack = ?"), {text});
}

}  // namespace DueBackTypes
