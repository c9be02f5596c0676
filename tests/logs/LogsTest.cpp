#include "LogsTest.h"

#include "store/modUpdateDatabaseStructure.h"

#include <QDateTime>

namespace LogsTest {

void seedLog(Database &db, const QList<LogRow> &rows)
{
    updateDatabaseStructure(db);
    db.beginTrans();
    Statement add = db.prepareStatement("INSERT INTO TransactionLogTable (Name, Status, DueBack, Comments, LastModified, "
                                        "NetworkLogonID, ComputerName) VALUES (?, ?, ?, ?, ?, ?, ?)");
    for (const LogRow &row : rows) {
        QVariantList values;
        for (const QString &v : row)
            values << (v == "<null>" ? QVariant() : QVariant(v));
        add.execute(values);
    }
    db.commitTrans();
}

QList<LogRow> generatedRows(int count, const QStringList &names)
{
    QList<LogRow> rows;
    const QDateTime start(QDate(2006, 7, 1), QTime(0, 0));
    for (int i = 0; i < count; ++i)
        rows << LogRow{names[i % names.size()], i % 3 ? "In" : "Out", "Tomorrow", QString("comment %1").arg(i),
                       start.addSecs(i).toString("yyyy-MM-dd HH:mm:ss"), "net" + QString::number(i % 7),
                       "PC" + QString::number(i % 5)};
    return rows;
}

}  // namespace LogsTest
