// Repair and compact against other processes: a board program that keeps
// writing while the console compacts, and a console killed at chosen
// moments of a compact and of the creation of a new file.
#include "RepairFixtures.h"

#include "core/Global.h"
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

// The helper program, started and told when to die.
struct Helper {
    QProcess p;
    QString out;

    explicit Helper(const QStringList &arguments)
    {
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(QStringLiteral(REPAIR_HELPER), arguments);
    }
    ~Helper()
    {
        p.kill();
        p.waitForFinished(5000);
    }
    // Its first line: "started" (compact) or the first "committed" (writer).
    bool started() { return p.waitForReadyRead(20000); }
    QString output() { return out += QString::fromUtf8(p.readAll()); }
    void killAfter(int ms)
    {
        QThread::msleep(ms);
        p.kill();  // SIGKILL: no handler runs, nothing is flushed by the program
        p.waitForFinished(10000);
    }
    bool finish()
    {
        const bool done = p.waitForFinished(60000);
        output();
        return done && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    }
};

}  // namespace

class TestRepairProcesses : public QObject {
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_board;
    QByteArray m_boardBytes;
    QString m_expected;      // the board's data with the active flags reset
    qint64 m_compactMs = 0;  // an undisturbed compact in the helper
    QString m_newFile;       // the data of a complete new file
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
        QCOMPARE(integrity(live), QString("ok"));  // the next reader rolls back what the killed one left
        QCOMPARE(fingerprint(live, true), m_expected);
        // A backup that has its name is complete.
        const QString backup = folder + QStringLiteral("/tavello-database-backup.000");
        if (QFile::exists(backup))
            QVERIFY(bytesOf(backup) == m_boardBytes);

        // The next repair is not disturbed by anything left behind. (With
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
        QCOMPARE(fingerprint(live, true), m_expected);
    }

private slots:
    void initTestCase()
    {
        m_board = m_work.filePath(QStringLiteral("board.mdb"));
        // A hundred at work: the time goes to the compaction, not the flags.
        makeBoard(m_board, BoardShape{40000, 400, true});
        m_boardBytes = bytesOf(m_board);
        m_expected = fingerprint(m_board, true);
        QVERIFY(m_boardBytes.size() > 20 * 1024 * 1024);

        // How long an undisturbed compact and creation take, to spread the kills over.
        const QString folder = freshFolder(QStringLiteral("timing"));
        QVERIFY(QFile::copy(m_board, folder + QLatin1Char('/') + Live));
        Helper helper({QStringLiteral("compact"), folder});
        QVERIFY(helper.started());
        QElapsedTimer clock;
        clock.start();
        QVERIFY(helper.finish());
        m_compactMs = clock.elapsed();
        QVERIFY2(helper.out.contains(QStringLiteral("repair-done 1")), qPrintable(helper.out));

        const QString created = m_work.filePath(QStringLiteral("created.mdb"));
        clock.restart();
        Helper creator({QStringLiteral("create"), created});
        QVERIFY(creator.finish());
        m_createMs = clock.elapsed();
        QVERIFY2(creator.out == QStringLiteral("created 0\n"), qPrintable(creator.out));
        m_newFile = fingerprint(created);
        qInfo("compact of %lld MB: %lld ms; creation: %lld ms", qint64(m_boardBytes.size()) >> 20, m_compactMs,
              m_createMs);
    }

    void cleanupTestCase()
    {
        // Some kills must have struck while the file itself was being rewritten.
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
        QVERIFY(helper.started());
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
            while (modified() == before && clock.elapsed() < 30000 && helper.p.state() != QProcess::NotRunning)
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
        QVERIFY(writer.started());
        QTest::qWait(300);
        if (oneShot)
            QVERIFY(subOneShotRepair(QStringLiteral("REPAIR")));
        else
            subCompactDatabase();
        gdbMain.close();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        QVERIFY(oneShot || gbolRepairDone);
        const qint64 committedByThen = writer.output().count(QStringLiteral("committed "));
        QVERIFY2(writer.finish(), qPrintable(writer.out.right(200)));
        QStringList committed;
        for (const QString &line : writer.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            committed << line.mid(10);  // all lines are "committed <name>": an error ends the run
        // The writer went on writing into the same file after the compact.
        QVERIFY2(committed.size() > committedByThen, qPrintable(QString::number(committed.size())));
        QCOMPARE(integrity(live), QString("ok"));
        const QMap<QString, QString> rows = employeeRows(live);
        for (const QString &name : committed)
            QVERIFY2(rows.contains(name), qPrintable("lost: " + name));
        // And it wrote before the compact too: the backup holds some of its rows.
        const QString backup = site.local(oneShot ? QStringLiteral("tavello.000") : QStringLiteral("tavello-database-backup.000"));
        const qint64 inBackup = scalar(backup, "SELECT count(*) FROM EmployeeTable WHERE Name LIKE 'Writer %'").toLongLong();
        QVERIFY2(inBackup > 0 && inBackup < committed.size(), qPrintable(QString::number(inBackup)));
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
        const QString live = freshFolder(QStringLiteral("creation")) + QLatin1Char('/') + Live;
        {
            Helper creator({QStringLiteral("create"), live});
            QVERIFY(creator.p.waitForStarted());
            creator.killAfter(int(atFraction * double(m_createMs)));
        }
        // No file, or a complete one: never a half-built database under the
        // name. Nor does what the killed one left disturb the next creation.
        if (!QFile::exists(live))
            QCOMPARE(CreateDatabase(live), 0);
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(fingerprint(live), m_newFile);
    }
};

QTEST_MAIN(TestRepairProcesses)
#include "tst_repair_processes.moc"
