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

const QStringList kCounters = {"Counter", "GroupCounter", "StatusTypeCounter", "SecurityCounter", "ExtraColumnsCounter"};

using Rows = QList<QVariantList>;

// A new board on the share, opened as gdbMain, its counter table holding
// `rows`, first replaced by an older one of `columns` counters if not 0.
static void openBoard(const TestSupport::Site &site, int columns, const Rows &rows)
{
    site.useShareAsDataPath();
    QCOMPARE(CreateDatabase(gstrDatabaseFile), 0);
    subOpenDatabase();
    gdbMain.execute(columns ? "DROP TABLE StatusCounterTable" : "DELETE FROM StatusCounterTable");
    if (columns)
        gdbMain.execute("CREATE TABLE StatusCounterTable (" + kCounters.mid(0, columns).join(" INTEGER DEFAULT 1, ") +
                        (columns == 5 ? " INTEGER)" : " INTEGER DEFAULT 1)"));
    for (const QVariantList &row : rows)
        gdbMain.execute("INSERT INTO StatusCounterTable (" + kCounters.mid(0, row.size()).join(", ") + ") VALUES (" +
                            QStringList(row.size(), "?").join(", ") + ")", row);
}

class TestCounters : public QObject {
    Q_OBJECT

private slots:
    // Each raise adds exactly one to its own field, or fails and changes
    // nothing; the check at start makes the row well formed (rows
    // "c,g,s,sec,x"; columns: 0 a new file's table, 4 or 5 an older one with
    // that many counters).
    void counterRow_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::addColumn<int>("columns");
        QTest::addColumn<Rows>("before");
        QTest::addColumn<QString>("after");
        const Rows set = {{7, 20, 30, 40, 50}};
        QTest::newRow("users") << "Counter" << 0 << set << "8,20,30,40,50";
        QTest::newRow("groups") << "GroupCounter" << 0 << set << "7,21,30,40,50";
        QTest::newRow("status types") << "StatusTypeCounter" << 0 << set << "7,20,31,40,50";
        QTest::newRow("security") << "SecurityCounter" << 0 << set << "7,20,30,41,50";
        QTest::newRow("extra columns") << "ExtraColumnsCounter" << 0 << set << "7,20,30,40,51";
        QTest::newRow("extra columns, field missing") << "ExtraColumnsCounter" << 4 << Rows{{5, 6, 7, 8}} << "5,6,7,8,1";
        QTest::newRow("first row only") << "GroupCounter" << 0 << Rows{{1, 1, 1, 1, 0}, {1, 1, 1, 1, 0}} << "1,2,1,1,0; 1,1,1,1,0";
        QTest::newRow("one below the top") << "Counter" << 0 << Rows{{2147483646, 1, 1, 1, 0}} << "2147483647,1,1,1,0";
        // The field's range refuses the raise rather than let it wrap.
        QTest::newRow("at the top") << "Counter" << 0 << Rows{{2147483647, 1, 1, 1, 0}} << "2147483647,1,1,1,0";
        QTest::newRow("no row") << "Counter" << 0 << Rows{} << "";
        QTest::newRow("check: well formed") << "check" << 5 << Rows{{3, 4, 5, 6, 2}} << "3,4,5,6,2";
        QTest::newRow("check: empty table") << "check" << 5 << Rows{} << "1,1,1,1,1";
        QTest::newRow("check: Nulls") << "check" << 5 << Rows{{QVariant(), 7, QVariant(), QVariant(), QVariant()}} << "1,7,1,1,1";
        QTest::newRow("check: zero is no Null") << "check" << 5 << Rows{{0, 0, 0, 0, 0}} << "0,0,0,0,0";
        QTest::newRow("check: without the column") << "check" << 4 << Rows{{5, 6, 7, 8}} << "5,6,7,8,1";
        QTest::newRow("check: a new file's empty table") << "check" << 0 << Rows{} << "1,1,1,1,0";
    }
    void counterRow()
    {
        QFETCH(QString, routine);
        QFETCH(int, columns);
        QFETCH(Rows, before);
        QFETCH(QString, after);
        const QMap<QString, void (*)()> routines = {{"Counter", subRaiseCounter}, {"GroupCounter", subRaiseGroupCounter},
            {"StatusTypeCounter", subRaiseStatusTypeCounter}, {"SecurityCounter", subRaiseSecurityCounter},
            {"ExtraColumnsCounter", subRaiseExtraColumnsCounter}, {"check", subTestStatusCounterTable}};
        const auto counters = [] {  // the rows as "c,g,s,sec,x; ..."
            return rowsOf(gdbMain, "StatusCounterTable(" + kCounters.join(", ") + "):").section(": ", 1);
        };
        TestSupport::Site site;
        openBoard(site, columns, before);
        const QString was = counters();
        if (routine == "check")
            gdbMain.close();  // as at start: the check opens the file itself
        QCOMPARE(failureOf(routines.value(routine)) != 0, routine != "check" && after == was);
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
        openBoard(site, 0, {});
        QVERIFY(failureOf([] { subWriteTransactionLog(gdbMain, QString(251, 's')); }) != 0);  // refused, not cut short
        subWriteTransactionLog(gdbMain, "REPAIR FAILED. disk I/O error");
        const QString want = "TransactionLogTable(Name, Status, NetworkLogonID): 'Admin','REPAIR FAILED. disk I/O error','Unknown'";
        QCOMPARE(rowsOf(gdbMain, want), want);
        const QString logged = gdbMain.scalar("SELECT LastModified FROM TransactionLogTable").toString();
        const QDateTime when = QDateTime::fromString(logged, "yyyy-MM-dd hh:mm:ss");
        QVERIFY(when.isValid() && qAbs(when.secsTo(QDateTime::currentDateTime())) <= 2);
    }
};

QTEST_MAIN(TestCounters)
#include "tst_counters.moc"
