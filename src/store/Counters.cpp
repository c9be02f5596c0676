#include "store/Counters.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "store/Schema.h"

#include <QDateTime>

namespace {

const QString kCounterTable = QStringLiteral("StatusCounterTable");
const QString kExtraColumnsCounter = QStringLiteral("ExtraColumnsCounter");

template <typename Step>
void ignoringFailures(Step &&run)
{
    try {
        run();
    } catch (const StoreError &) {
    }
}

void addExtraColumnsCounter(Database &db)
{
    const Schema::Field *field = Schema::field(kCounterTable, kExtraColumnsCounter);
    db.addColumn(kCounterTable, field->name, Schema::columnDefinition(kCounterTable, *field));
}

}  // namespace

void raiseCounterField(Database &db, const QString &field)
{
    // One statement reads and writes the row under the store's lock. The
    // field's range check turns an overflow into a failure, never a wrap.
    const QString f = Database::quoteIdentifier(field);
    const qint64 rows = db.execute(QStringLiteral("UPDATE StatusCounterTable SET %1 = %1 + 1 "
                                                  "WHERE rowid = (SELECT min(rowid) FROM StatusCounterTable)")
                                       .arg(f));
    if (rows == 0)
        throw StoreError(3021, QStringLiteral("No current record."));
}

void subRaiseCounter() { raiseCounterField(gdbMain, QStringLiteral("Counter")); }
void subRaiseGroupCounter() { raiseCounterField(gdbMain, QStringLiteral("GroupCounter")); }
void subRaiseStatusTypeCounter() { raiseCounterField(gdbMain, QStringLiteral("StatusTypeCounter")); }
void subRaiseSecurityCounter() { raiseCounterField(gdbMain, QStringLiteral("SecurityCounter")); }

void subRaiseExtraColumnsCounter() { raiseExtraColumnsCounter(gdbMain); }

void raiseExtraColumnsCounter(Database &db)
{
    // Files from before the extra columns lack the field.
    if (!db.fieldNames(kCounterTable).contains(kExtraColumnsCounter, Qt::CaseInsensitive))
        addExtraColumnsCounter(db);
    raiseCounterField(db, kExtraColumnsCounter);
}

void subTestStatusCounterTable()
{
    int failure = 0;
    qint64 rows = 0;
    for (;;) {
        subOpenDatabase();
        try {
            rows = gdbMain.scalar(QStringLiteral("SELECT count(*) FROM StatusCounterTable")).toLongLong();
            failure = 0;
        } catch (const StoreError &e) {
            failure = e.number();
        }
        // A handle that is gone means the open did not take: try again.
        if (failure != err::ObjectClosed || gbolEnding)
            break;
    }
    if (failure == 0 && rows == 0)
        ignoringFailures([] { gdbMain.addRow(kCounterTable); });

    QStringList fields;
    ignoringFailures([&] { fields = gdbMain.fieldNames(kCounterTable); });
    if (!fields.contains(kExtraColumnsCounter, Qt::CaseInsensitive)) {
        ignoringFailures([] { addExtraColumnsCounter(gdbMain); });
        ignoringFailures([] {
            Recordset rs = gdbMain.openTable(kCounterTable);
            rs.edit({{kExtraColumnsCounter, 1}});
        });
    }

    Recordset rs;
    ignoringFailures([&] { rs = gdbMain.openTable(kCounterTable); });
    for (const char *name : {"Counter", "StatusTypeCounter", "GroupCounter", "SecurityCounter", "ExtraColumnsCounter"}) {
        const QString field = QString::fromLatin1(name);
        ignoringFailures([&] {
            if (rs.isNull(field))
                rs.edit({{field, 1}});
        });
    }
    rs.close();
}

void subWriteTransactionLog(Database &db, const QString &status)
{
    db.addRow(QStringLiteral("TransactionLogTable"),
              {{QStringLiteral("Name"), QStringLiteral("Admin")},
               {QStringLiteral("Status"), status},
               {QStringLiteral("LastModified"),
                QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))}});
}
