// The transaction log window: the newest 500, the logging switch, clearing
// with a compact, and the export read back by another program's CSV reader.
#include "LogsTest.h"

#include "console/frmMain.h"
#include "logs/TransLogStore.h"
#include "logs/frmTransLog.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QTreeWidget>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace LogsTest;

namespace {

QString exportName() { return TransLog::exportFileName(QDate::currentDate()); }

QStringList listed(const frmTransLog &d)
{
    auto *list = control<QTreeWidget>(&d, "lvTransLog");
    QStringList out;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QStringList cells;
        for (int c = 0; c < 7; ++c)
            cells << list->topLevelItem(i)->text(c);
        out << cells.join('|');
    }
    return out;
}

// Clear, Print and Export as enabled.
QList<bool> logButtons(const frmTransLog &d)
{
    return {control<QPushButton>(&d, "cmdButtons_2")->isEnabled(), control<QPushButton>(&d, "cmdButtons_3")->isEnabled(),
            control<QPushButton>(&d, "cmdButtons_4")->isEnabled()};
}

// The rows of a CSV file as the sqlite3 shell's CSV reader takes them: each
// field in hex, fields joined by '|'.
QStringList readBack(const QString &csv)
{
    QProcess p;
    p.start("sqlite3", {":memory:"});
    p.waitForStarted();
    p.write("CREATE TABLE t(a, b, c, d, e, f, g);\n.import --csv '" + csv.toUtf8() +
            "' t\nSELECT hex(a)||'|'||hex(b)||'|'||hex(c)||'|'||hex(d)||'|'||hex(e)||'|'||hex(f)||'|'||hex(g) "
            "FROM t ORDER BY rowid;\n");
    p.closeWriteChannel();
    p.waitForFinished(60000);
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return out.isEmpty() ? QStringList() : out.split('\n');
}

QString hexRow(const LogRow &row)
{
    QStringList fields;
    for (const QString &v : row)
        fields << (v == "<null>" ? QString() : QString::fromLatin1(v.toUtf8().toHex().toUpper()));
    return fields.join('|');
}

}  // namespace

class TestTransLog : public QObject {
    Q_OBJECT

private slots:
    // The newest 500 by LastModified as text, and the whole log exported.
    void newestShownAllExported_data()
    {
        QTest::addColumn<int>("rows");
        QTest::newRow("empty log") << 0;
        QTest::newRow("three rows") << 3;
        QTest::newRow("501 rows: 500 shown, 501 exported") << 501;
    }
    void newestShownAllExported()
    {
        QFETCH(int, rows);
        const QList<LogRow> log = generatedRows(rows);
        Console c([&](Database &db) { seedLog(db, log); });
        frmTransLog d;
        d.show();
        const QStringList shown = listed(d);
        QCOMPARE(shown.size(), std::min(rows, 500));
        for (int i = 0; i < shown.size(); ++i)
            QCOMPARE(shown[i], log[rows - 1 - i].join('|'));
        QCOMPARE(logButtons(d), QList<bool>(3, rows > 0));

        d.cmdButtons_Click(4);
        const QString file = c.site().local(exportName());
        if (rows == 0) {
            QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Transaction Log is empty - Nothing to export."});
            QVERIFY(!QFile::exists(file));
            return;
        }
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Export to file " + gstrDataPath + exportName() + " complete."});
        QStringList expected;
        for (const LogRow &row : log)
            expected << hexRow(row);
        QCOMPARE(readBack(file), expected);
    }

    // Values that CSV has to protect come back as they were; every value in
    // quotes, CRLF after each row, no heading.
    void exportReadBack()
    {
        const QList<LogRow> log{
            {"Smith, Ann", "In", "Back at 3, maybe", "She said \"hi\"", "2006-07-01 10:00:00", "asmith", "PC1"},
            {"Bob", "Out", "<null>", "line one\r\nline two\nthree", "2006-07-01 10:00:01", "", "<null>"},
            {"Zoë “Q”", "Busy", "", "\"\"", "2006-07-01 10:00:02", "x,\"y\"", "ß€"},
        };
        Console c([&](Database &db) { seedLog(db, log); });
        frmTransLog d;
        d.cmdButtons_Click(4);
        const QString file = c.site().local(exportName());
        QStringList expected;
        for (const LogRow &row : log)
            expected << hexRow(row);
        QCOMPARE(readBack(file), expected);
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray raw = f.readAll();
        QVERIFY(raw.startsWith("\"Smith, Ann\",\"In\",\"Back at 3, maybe\",\"She said \"\"hi\"\"\","));
        QVERIFY(raw.contains("\"Bob\",\"Out\",\"\",\"line one\r\nline two\nthree\",\"2006-07-01 10:00:01\",\"\",\"\"\r\n"));
        QVERIFY(raw.endsWith("\"ß€\"\r\n"));
    }

    // Today's file already there: No (also the default) keeps it as it was.
    void exportOverExisting_data()
    {
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("No") << QList<int>{Msg::No} << false;
        QTest::newRow("Enter: the default") << QList<int>() << false;
        QTest::newRow("Yes") << QList<int>{Msg::Yes} << true;
    }
    void exportOverExisting()
    {
        QFETCH(QList<int>, answers);
        QFETCH(bool, replaced);
        Console c([&](Database &db) { seedLog(db, generatedRows(2)); });
        const QString file = c.site().local(exportName());
        QFile old(file);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("old export\r\n");
        old.close();
        frmTransLog d;
        Msg::queueAnswers(answers);
        d.cmdButtons_Click(4);
        const QList<Msg::Shown> shown = Msg::transcript();
        QVERIFY(!shown.isEmpty());
        QCOMPARE(shown[0].text, gstrDataPath + exportName() + " already exists. Do you wish to over-write it?");
        QCOMPARE(shown[0].icon, Msg::Icon::Question);
        QCOMPARE(shown[0].buttons, Msg::Buttons::YesNo);
        QCOMPARE(shown[0].defaultButton, 2);
        QCOMPARE(shown.size(), replaced ? 2 : 1);
        QCOMPARE(readBack(file).size(), replaced ? 2 : 1);
        QFile now(file);
        QVERIFY(now.open(QIODevice::ReadOnly));
        QCOMPARE(now.readAll() == "old export\r\n", !replaced);
    }

    // Where the file cannot be written the export says so, and the log stays.
    void exportCannotWrite()
    {
        Console c([&](Database &db) { seedLog(db, generatedRows(2)); });
        QVERIFY(QDir().mkpath(c.site().local(exportName())));  // a folder stands in the file's place
        frmTransLog d;
        Msg::queueAnswers({Msg::Yes});
        d.cmdButtons_Click(4);
        const QStringList shown = boxes();
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown[1], Msg::defaultTitle() + "|Export to file " + gstrDataPath + exportName() + " failed.");
        Database other = c.other();
        QCOMPARE(rows(other, "SELECT count(*) FROM TransactionLogTable"), QString("2"));
    }

    // The switch is written on OK only, to the setting and the table.
    void loggingSwitch_data()
    {
        QTest::addColumn<bool>("was");
        QTest::addColumn<bool>("ticked");
        QTest::addColumn<int>("button");
        QTest::newRow("on with OK") << false << true << 0;
        QTest::newRow("off with OK") << true << false << 0;
        QTest::newRow("on, then Cancel") << false << true << 1;
    }
    void loggingSwitch()
    {
        QFETCH(bool, was);
        QFETCH(bool, ticked);
        QFETCH(int, button);
        Console c([&](Database &db) {
            seedLog(db, {});
            db.execute("UPDATE GlobalSettingsTable SET TransactionLogFlag = ?", {was ? 1 : 0});
        });
        QCOMPARE(gbolTransactionLog, was);
        frmTransLog d;
        d.show();
        auto *box = control<QCheckBox>(&d, "chkTransLog");
        QCOMPARE(box->isChecked(), was);
        box->setChecked(ticked);
        d.cmdButtons_Click(button);
        const bool now = button == 0 ? ticked : was;
        QCOMPARE(gbolTransactionLog, now);
        Database other = c.other();
        QCOMPARE(rows(other, "SELECT TransactionLogFlag FROM GlobalSettingsTable"), QString::number(now));
        QVERIFY(!d.isVisible());
    }

    // Clear erases and compacts without a question; the buttons stay as they
    // were until Refresh.
    void clearCompacts()
    {
        Console c([&](Database &db) {
            seedLog(db, generatedRows(40));
            // Someone logged on, so the compact's reset of active flags has a row to reset.
            db.execute("UPDATE EmployeeTable SET ActiveFlag = 'Yes'");
        });
        frmTransLog d;
        d.show();
        d.cmdButtons_Click(2);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(listed(d), QStringList());
        QCOMPARE(logButtons(d), QList<bool>(3, true));
        QVERIFY(QFile::exists(c.site().local("tavello-database-backup.000")));
        QVERIFY(gbolRepairDone);
        Database other = c.other();
        QCOMPARE(rows(other, "SELECT count(*) FROM TransactionLogTable"), QString("0"));
        d.cmdButtons_Click(6);
        QCOMPARE(logButtons(d), QList<bool>(3, false));
        other.execute("INSERT INTO TransactionLogTable (Name, Status, LastModified) VALUES ('Cy', 'In', '2006-08-01')");
        d.cmdButtons_Click(6);
        QCOMPARE(listed(d).size(), 1);
        QCOMPARE(logButtons(d), QList<bool>(3, true));
    }

    // Print Log opens the print dialog.
    void printLog()
    {
        Console c([&](Database &db) { seedLog(db, generatedRows(1)); });
        ShownWindows shown;
        frmTransLog d;
        d.cmdButtons_Click(3);
        QCOMPARE(shown.names, QStringList{"frmPrint"});
    }
};

QTEST_MAIN(TestTransLog)
#include "tst_translog.moc"
