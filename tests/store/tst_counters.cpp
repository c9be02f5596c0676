// The counter row the user programs watch, its repair at start, and the
// console's own rows of the transaction log.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/MessageBox.h"
#include "store/Counters.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QTest>

using namespace StoreFixtures;

namespace {

const QStringList kCounters = {"Counter", "GroupCounter", "StatusTypeCounter", "SecurityCounter", "ExtraColumnsCounter"};

// A new board on the share, opened as gdbMain, its counter table holding
// `rows` (NULL allowed), first replaced by an older one if `columns` says so.
void openBoard(const TestSupport::Site &site, int columns, const QStringList &rows)
{
    site.useShareAsDataPath();
    QCOMPARE(CreateDatabase(gstrDatabaseFile), 0);
    subOpenDatabase();
    gdbMain.execute("DELETE FROM StatusCounterTable");
    if (columns) {
        QStringList definitions;
        for (int i = 0; i < columns; ++i)
            definitions << kCounters[i] + (i < 4 ? " INTEGER DEFAULT 1" : " INTEGER");
        gdbMain.execute("DROP TABLE StatusCounterTable");
        gdbMain.execute("CREATE TABLE StatusCounterTable (" + definitions.join(", ") + ")");
    }
    for (const QString &row : rows) {
        QVariantList values;
        for (const QString &v : row.split(','))
            values << (v == "NULL" ? QVariant() : QVariant(v.toInt()));
        gdbMain.execute(QString("INSERT INTO StatusCounterTable (%1) VALUES (%2)")
                            .arg(kCounters.mid(0, values.size()).join(", "), QStringList(values.size(), "?").join(", ")),
                        values);
    }
}

// The counter rows as "c,g,s,sec,x; ...".
QString counters()
{
    return rowsOf(gdbMain, "StatusCounterTable(" + kCounters.join(", ") + "):").section(": ", 1);
}

}  // namespace

class TestCounters : public QObject {
    Q_OBJECT

private slots:
    // Each raise adds exactly one to its own field; the check at start makes
    // the row well formed (rows "c,g,s,sec,x"; columns: 0 a new file's table,
    // 4 or 5 an older one with that many counters).
    void counterRow_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::addColumn<int>("columns");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<bool>("fails");
        QTest::addColumn<QString>("after");
        const QStringList set = {"7,20,30,40,50"};
        QTest::newRow("users") << "Counter" << 0 << set << false << "8,20,30,40,50";
        QTest::newRow("groups") << "GroupCounter" << 0 << set << false << "7,21,30,40,50";
        QTest::newRow("status types") << "StatusTypeCounter" << 0 << set << false << "7,20,31,40,50";
        QTest::newRow("security") << "SecurityCounter" << 0 << set << false << "7,20,30,41,50";
        QTest::newRow("extra columns") << "ExtraColumnsCounter" << 0 << set << false << "7,20,30,40,51";
        QTest::newRow("extra columns, field missing") << "ExtraColumnsCounter" << 4 << QStringList{"5,6,7,8"} << false << "5,6,7,8,1";
        QTest::newRow("only the first row") << "GroupCounter" << 0 << QStringList{"1,1,1,1,0", "1,1,1,1,0"} << false
                                            << "1,2,1,1,0; 1,1,1,1,0";
        QTest::newRow("one below the top") << "Counter" << 0 << QStringList{"2147483646,1,1,1,0"} << false << "2147483647,1,1,1,0";
        // The field's range refuses the raise rather than let it wrap.
        QTest::newRow("at the top") << "Counter" << 0 << QStringList{"2147483647,1,1,1,0"} << true << "2147483647,1,1,1,0";
        QTest::newRow("no row") << "Counter" << 0 << QStringList{} << true << "";
        QTest::newRow("check: well formed") << "check" << 5 << QStringList{"3,4,5,6,2"} << false << "3,4,5,6,2";
        QTest::newRow("check: empty table") << "check" << 5 << QStringList{} << false << "1,1,1,1,1";
        QTest::newRow("check: Nulls") << "check" << 5 << QStringList{"NULL,7,NULL,NULL,NULL"} << false << "1,7,1,1,1";
        QTest::newRow("check: zero is no Null") << "check" << 5 << QStringList{"0,0,0,0,0"} << false << "0,0,0,0,0";
        QTest::newRow("check: without the column") << "check" << 4 << QStringList{"5,6,7,8"} << false << "5,6,7,8,1";
        QTest::newRow("check: without column or row") << "check" << 4 << QStringList{} << false << "1,1,1,1,1";
        QTest::newRow("check: Nulls, without the column") << "check" << 4 << QStringList{"NULL,2,3,NULL"} << false << "1,2,3,1,1";
        QTest::newRow("check: a new file's empty table") << "check" << 0 << QStringList{} << false << "1,1,1,1,0";
    }
    void counterRow()
    {
        QFETCH(QString, routine);
        QFETCH(int, columns);
        QFETCH(QStringList, before);
        QFETCH(bool, fails);
        QFETCH(QString, after);
        const QMap<QString, void (*)()> routines = {{"Counter", subRaiseCounter},
                                                    {"GroupCounter", subRaiseGroupCounter},
                                                    {"StatusTypeCounter", subRaiseStatusTypeCounter},
                                                    {"SecurityCounter", subRaiseSecurityCounter},
                                                    {"ExtraColumnsCounter", subRaiseExtraColumnsCounter},
                                                    {"check", subTestStatusCounterTable}};
        TestSupport::Site site;
        openBoard(site, columns, before);
        if (routine == "check")
            gdbMain.close();  // as at start: the check opens the file itself
        QCOMPARE(failureOf(routines.value(routine)) != 0, fails);
        QVERIFY(gdbMain.isOpen());
        QCOMPARE(counters(), after);
        if (routine == "check") {
            subTestStatusCounterTable();  // on the open handle, with nothing left to mend
            QCOMPARE(counters(), after);
        }
        QVERIFY(Msg::transcript().isEmpty());
    }

    // The console's own log row; one the log refuses fails and leaves nothing.
    void transactionLogRow()
    {
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        Database db = Database::open(site.local("tavello.mdb"));
        QVERIFY(failureOf([&] { subWriteTransactionLog(db, QString(251, 's')); }) != 0);
        QVERIFY(failureOf([&] { subWriteTransactionLog(db, ""); }) != 0);
        subWriteTransactionLog(db, "REPAIR FAILED. disk I/O error");
        const QString want = "TransactionLogTable(Name, Status, NetworkLogonID): 'Admin','REPAIR FAILED. disk I/O error','Unknown'";
        QCOMPARE(rowsOf(db, want), want);
        const QDateTime when =
            QDateTime::fromString(db.scalar("SELECT LastModified FROM TransactionLogTable").toString(), "yyyy-MM-dd hh:mm:ss");
        QVERIFY(when.isValid() && qAbs(when.secsTo(QDateTime::currentDateTime())) <= 2);
    }
};

QTEST_MAIN(TestCounters)
#include "tst_counters.moc"
