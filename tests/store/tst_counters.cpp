// The counter row the user programs watch, its repair at start, and the
// console's own rows of the transaction log.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/Counters.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

using namespace StoreFixtures;

namespace {

const QString kCounters = QStringLiteral("Counter, GroupCounter, StatusTypeCounter, SecurityCounter, ExtraColumnsCounter");

// A new board on the share, opened as gdbMain.
void openNewBoard(const TestSupport::Site &site)
{
    site.useShareAsDataPath();
    QCOMPARE(CreateDatabase(gstrDatabaseFile), 0);
    subOpenDatabase();
    QVERIFY(gdbMain.isOpen());
}

// The counter row(s) as "c,g,s,sec,x" per row.
QStringList counterRows(Database &db)
{
    QStringList rows;
    const QStringList fields = db.fieldNames(QStringLiteral("StatusCounterTable"));
    QStringList quotedFields;
    for (const QString &f : fields)
        quotedFields << QStringLiteral("quote(%1)").arg(Database::quoteIdentifier(f));
    Recordset rs = db.query(QStringLiteral("SELECT %1 FROM StatusCounterTable ORDER BY rowid").arg(quotedFields.join(" || ',' || ")));
    for (; !rs.eof(); rs.moveNext())
        rows << rs.value(0).toString();
    return rows;
}

// Replaces the counter table by one of an older shape holding `rows`.
void rebuildCounterTable(Database &db, bool withExtraColumnsCounter, const QStringList &rows)
{
    db.execute(QStringLiteral("DROP TABLE StatusCounterTable"));
    db.execute(withExtraColumnsCounter
                   ? QStringLiteral("CREATE TABLE StatusCounterTable (Counter INTEGER DEFAULT 1, GroupCounter INTEGER DEFAULT 1, "
                                    "StatusTypeCounter INTEGER DEFAULT 1, SecurityCounter INTEGER DEFAULT 1, "
                                    "ExtraColumnsCounter INTEGER)")
                   : QStringLiteral("CREATE TABLE StatusCounterTable (Counter INTEGER DEFAULT 1, GroupCounter INTEGER DEFAULT 1, "
                                    "StatusTypeCounter INTEGER DEFAULT 1, SecurityCounter INTEGER DEFAULT 1)"));
    for (const QString &row : rows) {
        QVariantList values;
        for (const QString &v : row.split(QLatin1Char(',')))
            values << (v == QLatin1String("NULL") ? QVariant() : QVariant(v.toInt()));
        QStringList marks(values.size(), QStringLiteral("?"));
        db.execute(QStringLiteral("INSERT INTO StatusCounterTable VALUES (%1)").arg(marks.join(", ")), values);
    }
}

}  // namespace

class TestCounters : public QObject {
    Q_OBJECT

private slots:
    void raiseAddsExactlyOne_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::addColumn<QString>("after");
        QTest::newRow("users") << "Counter" << "8,20,30,40,50";
        QTest::newRow("groups") << "GroupCounter" << "7,21,30,40,50";
        QTest::newRow("status types") << "StatusTypeCounter" << "7,20,31,40,50";
        QTest::newRow("security") << "SecurityCounter" << "7,20,30,41,50";
        QTest::newRow("extra columns") << "ExtraColumnsCounter" << "7,20,30,40,51";
    }
    void raiseAddsExactlyOne()
    {
        QFETCH(QString, routine);
        QFETCH(QString, after);
        TestSupport::Site site;
        openNewBoard(site);
        gdbMain.execute(QStringLiteral("UPDATE StatusCounterTable SET Counter = 7, GroupCounter = 20, StatusTypeCounter = 30, "
                                       "SecurityCounter = 40, ExtraColumnsCounter = 50"));
        if (routine == QLatin1String("Counter"))
            subRaiseCounter();
        else if (routine == QLatin1String("GroupCounter"))
            subRaiseGroupCounter();
        else if (routine == QLatin1String("StatusTypeCounter"))
            subRaiseStatusTypeCounter();
        else if (routine == QLatin1String("SecurityCounter"))
            subRaiseSecurityCounter();
        else
            subRaiseExtraColumnsCounter();
        QCOMPARE(counterRows(gdbMain), QStringList{after});
    }

    void raiseFailsRatherThanWraps_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<bool>("fails");
        QTest::addColumn<QString>("after");
        QTest::newRow("one below the top") << "UPDATE StatusCounterTable SET Counter = 2147483646" << false
                                           << "2147483647,1,1,1,0";
        QTest::newRow("at the top") << "UPDATE StatusCounterTable SET Counter = 2147483647" << true << "2147483647,1,1,1,0";
        QTest::newRow("no row") << "DELETE FROM StatusCounterTable" << true << "";
    }
    void raiseFailsRatherThanWraps()
    {
        QFETCH(QString, setup);
        QFETCH(bool, fails);
        QFETCH(QString, after);
        TestSupport::Site site;
        openNewBoard(site);
        gdbMain.execute(setup);
        QCOMPARE(failureOf([] { subRaiseCounter(); }) != 0, fails);
        QCOMPARE(counterRows(gdbMain).join(QLatin1Char(';')), after);
    }

    void raiseTouchesOnlyTheFirstRow()
    {
        TestSupport::Site site;
        openNewBoard(site);
        gdbMain.addRow(QStringLiteral("StatusCounterTable"));
        raiseCounterField(gdbMain, QStringLiteral("GroupCounter"));
        QCOMPARE(counterRows(gdbMain), (QStringList{"1,2,1,1,0", "1,1,1,1,0"}));
    }

    void extraColumnsCounterAddedWhereMissing()
    {
        TestSupport::Site site;
        openNewBoard(site);
        rebuildCounterTable(gdbMain, false, {"5,6,7,8"});
        subRaiseExtraColumnsCounter();
        QCOMPARE(counterRows(gdbMain), QStringList{"5,6,7,8,1"});
    }

    void counterRowMadeWellFormed_data()
    {
        QTest::addColumn<bool>("withExtraColumnsCounter");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("well formed") << true << QStringList{"3,4,5,6,2"} << QStringList{"3,4,5,6,2"};
        QTest::newRow("empty table") << true << QStringList{} << QStringList{"1,1,1,1,1"};
        QTest::newRow("Nulls") << true << QStringList{"NULL,7,NULL,NULL,NULL"} << QStringList{"1,7,1,1,1"};
        QTest::newRow("zero is no Null") << true << QStringList{"0,0,0,0,0"} << QStringList{"0,0,0,0,0"};
        QTest::newRow("without the column") << false << QStringList{"5,6,7,8"} << QStringList{"5,6,7,8,1"};
        QTest::newRow("without column or row") << false << QStringList{} << QStringList{"1,1,1,1,1"};
        QTest::newRow("Nulls, without the column") << false << QStringList{"NULL,2,3,NULL"} << QStringList{"1,2,3,1,1"};
    }
    void counterRowMadeWellFormed()
    {
        QFETCH(bool, withExtraColumnsCounter);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, after);
        TestSupport::Site site;
        openNewBoard(site);
        rebuildCounterTable(gdbMain, withExtraColumnsCounter, rows);
        subTestStatusCounterTable();
        QVERIFY(gdbMain.isOpen());
        QCOMPARE(counterRows(gdbMain), after);
        QVERIFY(Msg::transcript().isEmpty());
    }

    // A new file's empty counter table gets its row from the defaults.
    void emptyCounterTableOfANewFile()
    {
        TestSupport::Site site;
        openNewBoard(site);
        gdbMain.execute(QStringLiteral("DELETE FROM StatusCounterTable"));
        subTestStatusCounterTable();
        QCOMPARE(counterRows(gdbMain), QStringList{"1,1,1,1,0"});
        subTestStatusCounterTable();
        QCOMPARE(counterRows(gdbMain), QStringList{"1,1,1,1,0"});
    }

    void testReopensAClosedHandle()
    {
        TestSupport::Site site;
        openNewBoard(site);
        gdbMain.close();
        subTestStatusCounterTable();
        QVERIFY(gdbMain.isOpen());
        QCOMPARE(counterRows(gdbMain), QStringList{"1,1,1,1,0"});
    }

    void transactionLogRow_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("written");
        QTest::newRow("repair done") << "REPAIR SUCCESSFUL" << true;
        QTest::newRow("repair failed") << "REPAIR FAILED. disk I/O error" << true;
        QTest::newRow("250 characters") << QString(250, QLatin1Char('s')) << true;
        QTest::newRow("251 characters") << QString(251, QLatin1Char('s')) << false;
        QTest::newRow("empty") << "" << false;
    }
    void transactionLogRow()
    {
        QFETCH(QString, status);
        QFETCH(bool, written);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = Database::open(file);
        db.addRow(QStringLiteral("TransactionLogTable"), {{"Name", "Ann"}, {"Status", "In"}, {"LastModified", "x"}});
        const QDateTime start = QDateTime::currentDateTime().addSecs(-1);
        QCOMPARE(failureOf([&] { subWriteTransactionLog(db, status); }) == 0, written);
        const QDateTime end = QDateTime::currentDateTime().addSecs(1);

        Recordset rs = db.query(QStringLiteral("SELECT Name, Status, LastModified, NetworkLogonID FROM TransactionLogTable "
                                               "WHERE rowid > 1"));
        if (!written) {
            QVERIFY(rs.eof());
            return;
        }
        QVERIFY(!rs.eof());
        QCOMPARE(rs.text("Name"), QStringLiteral("Admin"));
        QCOMPARE(rs.text("Status"), status);
        QCOMPARE(rs.text("NetworkLogonID"), QStringLiteral("Unknown"));
        const QString stamp = rs.text("LastModified");
        QVERIFY2(QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$")).match(stamp).hasMatch(),
                 qPrintable(stamp));
        const QDateTime when = QDateTime::fromString(stamp, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY(when >= start.addMSecs(-start.time().msec()) && when <= end);
        rs.moveNext();
        QVERIFY(rs.eof());
    }
};

QTEST_MAIN(TestCounters)
#include "tst_counters.moc"
