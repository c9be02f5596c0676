// Repair and compact against other processes: a board program that keeps
// writing while the console compacts, and a console killed at chosen
// moments of its work (of a compact, and of the creation of a new file).
#include "RepairFixtures.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <sys/stat.h>

using namespace RepairFixtures;

namespace {

const QString Live = QStringLiteral("tavello.mdb");
const QString NewestBackup = QStringLiteral("tavello-database-backup.000");

// The helper program, started and told when to die.
class Helper {
public:
    explicit Helper(const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral(REPAIR_HELPER), arguments);
    }
    ~Helper()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    // Waits for a line beginning with `prefix`; false on timeout or exit.
    bool waitForLine(const QString &prefix, int timeoutMs = 20000)
    {
        QElapsedTimer clock;
        clock.start();
        for (;;) {
            readLines();
            for (int i = m_seen; i < m_lines.size(); ++i)
                if (m_lines[i].startsWith(prefix)) {
                    m_seen = i + 1;
                    return true;
                }
            if (clock.elapsed() > timeoutMs || m_process.state() == QProcess::NotRunning)
                return false;
            m_process.waitForReadyRead(5);
        }
    }

    void killAfter(int ms)
    {
        if (ms > 0)
            QThread::usleep(ms * 1000);
        m_process.kill();  // SIGKILL: no handler runs, nothing is flushed by the program
        m_process.waitForFinished(10000);
    }

    bool finish(int timeoutMs = 60000)
    {
        const bool done = m_process.waitForFinished(timeoutMs);
        readLines();
        return done && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }

    QStringList lines()
    {
        readLines();
        return m_lines;
    }
    QProcess &process() { return m_process; }

private:
    void readLines()
    {
        m_buffer += m_process.readAll();
        int nl;
        while ((nl = m_buffer.indexOf('\n')) >= 0) {
            m_lines << QString::fromUtf8(m_buffer.left(nl));
            m_buffer.remove(0, nl + 1);
        }
    }

    QProcess m_process;
    QByteArray m_buffer;
    QStringList m_lines;
    int m_seen = 0;
};

// Every table with its row count: what a complete new file holds.
QString tableCounts(const QString &local)
{
    QStringList counts;
    const QStringList tables = scalar(local, "SELECT group_concat(name, ',') FROM (SELECT name FROM sqlite_master "
                                             "WHERE type = 'table' ORDER BY name)")
                                   .toString()
                                   .split(QLatin1Char(','));
    for (const QString &t : tables)
        counts << t + QLatin1Char('=') + scalar(local, QStringLiteral("SELECT count(*) FROM \"%1\"").arg(t)).toString();
    return counts.join(QLatin1Char(' '));
}

}  // namespace

class TestRepairProcesses : public QObject {
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_board;
    QByteArray m_boardBytes;
    QString m_expected;       // the board's data with the active flags reset
    qint64 m_compactMs = 0;   // an undisturbed compact in the helper
    QString m_newFileCounts;  // a complete new file
    qint64 m_createMs = 0;
    int m_killsWithJournal = 0;
    int m_kills = 0;

    QString freshFolder(const QString &name)
    {
        const QString folder = m_work.filePath(name);
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        return folder;
    }

    // The file after a kill, as the next program finds it: whatever it
    // holds must be the whole board, old layout or new.
    void checkSurvivor(const QString &folder)
    {
        const QString live = folder + QLatin1Char('/') + Live;
        ++m_kills;
        // A journal whose header is intact holds the old pages of an unfinished rewrite.
        if (bytesOf(live + QStringLiteral("-journal")).startsWith(QByteArray::fromHex("d9d505f920a163d7")))
            ++m_killsWithJournal;
        try {
            Database::open(live).close();  // the next open rolls back what the killed one left
        } catch (const StoreError &e) {
            QFAIL(qPrintable(QStringLiteral("the file does not open: %1 %2").arg(e.number()).arg(e.text())));
        }
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(flagsResetFingerprint(live), m_expected);
        // A backup that has its name is complete.
        const QString backup = folder + QLatin1Char('/') + NewestBackup;
        if (QFile::exists(backup))
            QVERIFY(bytesOf(backup) == m_boardBytes);

        // And the next repair is not disturbed by anything left behind. (With
        // nobody active it would fail on the row of defaults: someone is.)
        scalar(live, "UPDATE EmployeeTable SET ActiveFlag = 'Yes' WHERE Name = "
                     "(SELECT min(Name) FROM EmployeeTable WHERE Name LIKE 'User %')");
        TestSupport::resetGlobals();
        Msg::setScripted(true);
        Msg::clearTranscript();
        gstrDataPath = folder + QLatin1Char('/');
        subCompactDatabase();
        gdbMain.close();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        QVERIFY(gbolRepairDone);
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(flagsResetFingerprint(live), m_expected);
    }

private slots:
    void initTestCase()
    {
        m_board = m_work.filePath(QStringLiteral("board.mdb"));
        BoardShape shape;
        shape.users = 40000;
        shape.activeEvery = 400;  // a hundred at work: the run is the compaction, not the flags
        makeBoard(m_board, shape);
        m_boardBytes = bytesOf(m_board);
        m_expected = flagsResetFingerprint(m_board);
        QVERIFY(m_boardBytes.size() > 20 * 1024 * 1024);

        // How long an undisturbed compact takes in the helper, to spread the kills over.
        const QString folder = freshFolder(QStringLiteral("timing"));
        QVERIFY(QFile::copy(m_board, folder + QLatin1Char('/') + Live));
        Helper helper({QStringLiteral("compact"), folder});
        QVERIFY(helper.waitForLine(QStringLiteral("started")));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(helper.finish());
        m_compactMs = clock.elapsed();
        QVERIFY2(helper.lines().contains(QStringLiteral("repair-done 1")), qPrintable(helper.lines().join('\n')));
        qInfo("an undisturbed compact of %lld MB takes %lld ms", qint64(m_boardBytes.size()) >> 20, m_compactMs);

        const QString created = m_work.filePath(QStringLiteral("created.mdb"));
        Helper creator({QStringLiteral("create"), created});
        QVERIFY(creator.waitForLine(QStringLiteral("created 0")));
        QVERIFY(creator.finish());
        m_newFileCounts = tableCounts(created);
        QVERIFY(m_newFileCounts.contains("EmployeeTable=1"));
        clock.restart();
        Helper timed({QStringLiteral("create"), created + QStringLiteral("2")});
        QVERIFY(timed.finish());
        m_createMs = clock.elapsed();
    }

    void cleanupTestCase()
    {
        // At least some kills must have struck while the file itself was being rewritten.
        qInfo("kills that left a journal to roll back: %d of %d", m_killsWithJournal, m_kills);
        QVERIFY(m_kills == 0 || m_killsWithJournal > 0);
    }

    void killedCompact_data()
    {
        QTest::addColumn<double>("atFraction");
        QTest::addColumn<int>("afterWriteMs");
        for (double f : {0.0, 0.05, 0.15, 0.3, 0.45, 0.6, 0.75, 0.9, 1.0})
            QTest::newRow(qPrintable(QStringLiteral("at %1 of the run").arg(f))) << f << -1;
        for (int ms : {0, 1, 2, 4, 6, 10, 15, 25})
            QTest::newRow(qPrintable(QStringLiteral("%1 ms into the rewrite").arg(ms))) << 0.0 << ms;
    }

    void killedCompact()
    {
        QFETCH(double, atFraction);
        QFETCH(int, afterWriteMs);
        const QString folder = freshFolder(QStringLiteral("killed"));
        const QString live = folder + QLatin1Char('/') + Live;
        QVERIFY(QFile::copy(m_board, live));

        Helper helper({QStringLiteral("compact"), folder});
        QVERIFY(helper.waitForLine(QStringLiteral("started")));
        if (afterWriteMs < 0) {
            helper.killAfter(int(atFraction * double(m_compactMs)));
        } else {
            // Nothing writes to the file before the rewrite itself begins.
            const auto modified = [&] {
                struct stat st {};
                ::stat(QFile::encodeName(live).constData(), &st);
                return std::pair(st.st_mtim.tv_sec, st.st_mtim.tv_nsec);
            };
            const auto before = modified();
            QElapsedTimer clock;
            clock.start();
            while (modified() == before && clock.elapsed() < 30000 && helper.process().state() != QProcess::NotRunning)
                QThread::usleep(100);
            helper.killAfter(afterWriteMs);
        }
        checkSurvivor(folder);
    }

    void writerKeepsEveryRow_data()
    {
        QTest::addColumn<bool>("oneShot");
        QTest::newRow("dialog") << false;
        QTest::newRow("command line") << true;
    }

    void writerKeepsEveryRow()
    {
        QFETCH(bool, oneShot);
        TestSupport::Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        QVERIFY(QFile::copy(m_board, live));

        Helper writer({QStringLiteral("writer"), live, QString::number(m_compactMs * 3 + 3000)});
        QVERIFY(writer.waitForLine(QStringLiteral("committed")));
        QTest::qWait(300);
        if (oneShot) {
            QVERIFY(subOneShotRepair(QStringLiteral("REPAIR")));
        } else {
            subCompactDatabase();
            QVERIFY2(gbolRepairDone, qPrintable(Msg::transcript().value(0).text));
        }
        gdbMain.close();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        const qint64 committedByThen = writer.lines().filter(QStringLiteral("committed ")).size();
        QVERIFY(writer.finish());

        QStringList committed;
        for (const QString &line : writer.lines()) {
            QVERIFY2(!line.startsWith(QStringLiteral("error")), qPrintable(line));
            if (line.startsWith(QStringLiteral("committed ")))
                committed << line.mid(10);
        }
        // The writer went on writing into the same file after the compact.
        QVERIFY2(committed.size() > committedByThen, qPrintable(QString::number(committed.size())));
        QCOMPARE(integrity(live), QString("ok"));
        const QMap<QString, QString> rows = employeeRows(live);
        for (const QString &name : committed)
            QVERIFY2(rows.contains(name), qPrintable("lost: " + name));
        const QString backup = site.local(oneShot ? QStringLiteral("tavello.000") : NewestBackup);
        const qint64 inBackup = scalar(backup, "SELECT count(*) FROM EmployeeTable WHERE Name LIKE 'Writer %'").toLongLong();
        QVERIFY2(inBackup > 0 && inBackup < committed.size(),
                 qPrintable(QStringLiteral("%1 of %2 rows in the backup; last log line %3")
                                .arg(inBackup)
                                .arg(committed.size())
                                .arg(scalar(live, "SELECT Status FROM TransactionLogTable ORDER BY rowid DESC LIMIT 1").toString())));
    }

    void killedCreation_data()
    {
        QTest::addColumn<double>("atFraction");
        for (double f : {0.0, 0.1, 0.25, 0.4, 0.55, 0.7, 0.85, 1.0})
            QTest::newRow(qPrintable(QStringLiteral("at %1 of the run").arg(f))) << f;
    }

    void killedCreation()
    {
        QFETCH(double, atFraction);
        const QString folder = freshFolder(QStringLiteral("creation"));
        const QString live = folder + QLatin1Char('/') + Live;
        {
            Helper creator({QStringLiteral("create"), live});
            QVERIFY(creator.process().waitForStarted());
            creator.killAfter(int(atFraction * double(m_createMs)));
        }
        // No file, or a complete one: never a half-built database under the name.
        if (QFile::exists(live)) {
            QCOMPARE(integrity(live), QString("ok"));
            QCOMPARE(tableCounts(live), m_newFileCounts);
        }
        // The next creation is not disturbed by what the killed one left.
        if (!QFile::exists(live)) {
            QCOMPARE(CreateDatabase(live), 0);
            QCOMPARE(tableCounts(live), m_newFileCounts);
        }
    }
};

QTEST_MAIN(TestRepairProcesses)
#include "tst_repair_processes.moc"
