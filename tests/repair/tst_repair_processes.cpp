// Repair and compact against other processes: a board program that keeps
// writing while the console compacts, and a console killed at chosen
// moments of a compact and of the creation of a new file.
#include "RepairFixtures.h"

#include "core/Global.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"
#include "support/BusyBoard.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <QThread>

using namespace RepairFixtures;
using TestSupport::Site;

namespace {

// The helper program, started and told when to die; killed at the latest
// when it goes out of scope.
struct Helper : QProcess {
    explicit Helper(const QStringList &arguments)
    {
        setProcessChannelMode(MergedChannels);
        start(QStringLiteral(REPAIR_HELPER), arguments);
    }
    void killAfter(int ms)
    {
        QThread::msleep(ms);
        kill();  // SIGKILL: no handler runs, nothing is flushed by the program
        waitForFinished(10000);
    }
    bool finish() { return waitForFinished(60000) && exitStatus() == NormalExit && exitCode() == 0; }
};

}  // namespace

class TestRepairProcesses : public QObject {
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_board;
    QString m_expected;      // the board's data with the active flags reset
    QString m_newFile;       // the data of a complete new file
    qint64 m_compactMs = 0;  // an undisturbed run of each in the helper
    qint64 m_createMs = 0;
    int m_killsWithJournal = 0;
    int m_kills = 0;

private slots:
    void initTestCase()
    {
        m_board = m_work.filePath(QStringLiteral("board.mdb"));
        // A hundred at work: the time goes to the compaction, not the flags.
        makeBoard(m_board, 40000, 400);
        QVERIFY(QFileInfo(m_board).size() > 20 * 1024 * 1024);
        const QString expected = m_work.filePath(QStringLiteral("expected.mdb"));
        QVERIFY(QFile::copy(m_board, expected));
        scalar(expected, ResetFlags);
        m_expected = fingerprint(expected);

        // How long an undisturbed compact and creation take, to spread the kills over.
        const auto timed = [](const QString &mode, const QString &file) {
            Helper helper({mode, file});
            const bool started = helper.waitForReadyRead(20000);
            QElapsedTimer clock;
            clock.start();
            return started && helper.finish() ? clock.elapsed() : qint64(-1);
        };
        QVERIFY(QFile::copy(m_board, m_work.filePath(Live)));
        m_compactMs = timed(QStringLiteral("compact"), m_work.filePath(Live));
        m_createMs = timed(QStringLiteral("create"), m_work.filePath(QStringLiteral("created.mdb")));
        QVERIFY(m_compactMs >= 0 && m_createMs >= 0);
        m_newFile = fingerprint(m_work.filePath(QStringLiteral("created.mdb")));
    }

    void cleanupTestCase()
    {
        // Some kills must have struck while the file itself was being rewritten.
        QVERIFY2(m_kills == 0 || m_killsWithJournal > 0, "no kill left a journal to roll back");
    }

    void killed_data()
    {
        QTest::addColumn<bool>("creation");
        QTest::addColumn<double>("atFraction");
        QTest::addColumn<int>("afterWriteMs");  // counted from the first write to the file instead
        for (double f : {0.0, 0.05, 0.15, 0.3, 0.45, 0.6, 0.75, 0.9, 1.0})
            QTest::newRow(qPrintable(QStringLiteral("compact at %1 of the run").arg(f))) << false << f << -1;
        for (int ms : {0, 1, 2, 4, 6, 10, 15, 25})
            QTest::newRow(qPrintable(QStringLiteral("compact %1 ms into the rewrite").arg(ms))) << false << 0.0 << ms;
        for (double f : {0.0, 0.1, 0.25, 0.4, 0.55, 0.7, 0.85, 1.0})
            QTest::newRow(qPrintable(QStringLiteral("creation at %1 of the run").arg(f))) << true << f << -1;
    }

    void killed()
    {
        QFETCH(bool, creation);
        QFETCH(double, atFraction);
        QFETCH(int, afterWriteMs);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        QVERIFY(creation || QFile::copy(m_board, live));
        {
            const QDateTime copied = QFileInfo(live).lastModified();
            Helper helper({creation ? QStringLiteral("create") : QStringLiteral("compact"), live});
            QVERIFY(helper.waitForReadyRead(20000));  // "started"
            QElapsedTimer clock;
            clock.start();
            // Nothing writes to the file before the rewrite itself begins.
            while (afterWriteMs >= 0 && QFileInfo(live).lastModified() == copied && clock.elapsed() < 30000 &&
                   helper.state() != QProcess::NotRunning)
                QThread::usleep(100);
            helper.killAfter(afterWriteMs >= 0 ? afterWriteMs
                                               : int(atFraction * double(creation ? m_createMs : m_compactMs)));
        }
        if (creation) {
            // No file, or a complete one: never a half-built database under the
            // name. Nor does what the killed one left disturb the next creation.
            if (!QFile::exists(live))
                QCOMPARE(CreateDatabase(live), 0);
            QCOMPARE(integrity(live), QString("ok"));
            QCOMPARE(fingerprint(live), m_newFile);
            return;
        }
        // Whatever the file holds must be the whole board, old layout or new.
        ++m_kills;
        // A journal whose header is intact holds the old pages of an unfinished rewrite.
        m_killsWithJournal += bytesOf(live + "-journal").startsWith(QByteArray::fromHex("d9d505f920a163d7"));
        QCOMPARE(integrity(live), QString("ok"));  // the next reader rolls back what the killed one left
        scalar(live, ResetFlags);  // whether the killed one got to them or not
        QCOMPARE(fingerprint(live), m_expected);
        // A backup that has its name is complete.
        const QString backup = site.local(QStringLiteral("tavello-database-backup.000"));
        QVERIFY(!QFile::exists(backup) || bytesOf(backup) == bytesOf(m_board));

        // The next repair is not disturbed by anything left behind. (With
        // nobody active it would fail on the row of defaults: someone is.)
        scalar(live, "UPDATE EmployeeTable SET ActiveFlag = 'Yes' WHERE Name = "
                     "(SELECT min(Name) FROM EmployeeTable WHERE Name LIKE 'User %')");
        subCompactDatabase();
        gdbMain.close();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        QVERIFY(gbolRepairDone);
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(fingerprint(live), m_expected);
    }

    void writerKeepsEveryRow_data()
    {
        QTest::addColumn<bool>("oneShot");
        QTest::newRow("dialog") << false;
        QTest::newRow("command line") << true;
    }

    // User programs write all through the repair: three writers and two
    // readers at a person's pace. None of their writes is lost, and a
    // writer's commit is never taken for a file held to itself.
    void writerKeepsEveryRow()
    {
        QFETCH(bool, oneShot);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        QVERIFY(QFile::copy(m_board, live));

        TestSupport::BusyBoard::Pace pace;
        pace.holds = false;
        TestSupport::BusyBoard board(live, pace);
        QTest::qWait(500);
        if (oneShot)
            QVERIFY(subOneShotRepair(QStringLiteral("REPAIR")));
        else
            subCompactDatabase();
        gdbMain.close();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        QVERIFY(oneShot || gbolRepairDone);
        QTest::qWait(500);
        const TestSupport::BusyBoard::Report report = board.stop();
        QVERIFY2(report.lost.isEmpty(), qPrintable(report.lost.join("\n")));
        QCOMPARE(integrity(live), QString("ok"));
        // They wrote before the repair and after it: the backup holds some of their rows.
        const QString writerRows = "SELECT count(*) FROM TransactionLogTable WHERE Name LIKE 'Busy Writer %'";
        const qint64 inBackup =
            scalar(site.local(oneShot ? "tavello.000" : "tavello-database-backup.000"), writerRows).toLongLong();
        QVERIFY2(inBackup > 0 && inBackup < report.committed, qPrintable(QString::number(inBackup)));
        if (oneShot)
            QVERIFY(scalar(live, "SELECT count(*) FROM TransactionLogTable WHERE Status = 'REPAIR SUCCESSFUL'").toInt() == 1);
    }
};

QTEST_MAIN(TestRepairProcesses)
#include "tst_repair_processes.moc"
