// An import of 100 000 lines in a console process that is killed on the way:
// the database holds none of that run's rows, or, left to finish, all.
#include "support/TestSupport.h"

#include "platform/Database.h"
#include "store/CreateDB.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int Lines = 100000;

struct Board {
    QTemporaryDir dir;
    QString database() const { return dir.filePath("tavello.mdb"); }
    QString file() const { return dir.filePath("staff.csv"); }
};

void prepare(Board &b)
{
    QVERIFY(CreateDatabase(b.database()) == 0);
    QFile f(b.file());
    QVERIFY(f.open(QIODevice::WriteOnly));
    QByteArray content;
    for (int i = 0; i < Lines; ++i)
        content += "U" + QByteArray::number(i) + ",Name " + QByteArray::number(i) + ",555-" + QByteArray::number(i) + "\n";
    // A refused line too, so the log has a row of this run.
    content += "#\n";
    QVERIFY(f.write(content) == content.size());
}

QString counts(const QString &database)
{
    Database db = Database::open(database);
    QString out = QString::number(db.scalar("SELECT count(*) FROM EmployeeTable").toLongLong()) + '|' +
                  QString::number(db.scalar("SELECT count(*) FROM EmployeeSettingsTable").toLongLong()) + '|' +
                  QString::number(db.scalar("SELECT count(*) FROM ImportErrorLog").toLongLong()) + '|' +
                  db.scalar("PRAGMA integrity_check").toString();
    return out;
}

}  // namespace

class TestImportKill : public QObject {
    Q_OBJECT

private slots:
    void killedOrFinished_data()
    {
        QTest::addColumn<int>("killAfter");  // lines done when the process is killed; 0: never
        QTest::addColumn<QString>("counts");  // users | settings | log rows | integrity
        QTest::newRow("killed early") << 1000 << "1|1|0|ok";
        QTest::newRow("killed late") << 60000 << "1|1|0|ok";
        QTest::newRow("left to finish") << 0 << QString("%1|%1|1|ok").arg(Lines + 1);
    }
    void killedOrFinished()
    {
        QFETCH(int, killAfter);
        QFETCH(QString, counts);
        Board b;
        prepare(b);
        QProcess p;
        p.setProcessChannelMode(QProcess::SeparateChannels);
        p.start(IMPORT_HELPER, {b.database(), b.file()});
        QVERIFY(p.waitForStarted());
        qint64 seen = 0;
        bool done = false;
        const auto drain = [&] {
            while (p.canReadLine()) {
                const QByteArray line = p.readLine().trimmed();
                if (line.startsWith("progress "))
                    seen = line.mid(9).toLongLong();
                done = done || line.startsWith("done ");
            }
        };
        QElapsedTimer t;
        t.start();
        while (!done && !(killAfter > 0 && seen >= killAfter) && t.elapsed() < 120000) {
            if (!p.waitForReadyRead(1000) && p.state() != QProcess::Running) {
                drain();
                break;
            }
            drain();
        }
        if (killAfter > 0) {
            QVERIFY2(!done, "the import ended before it could be killed");
            QVERIFY(seen >= killAfter && seen < Lines);
            p.kill();
        }
        QVERIFY(p.state() == QProcess::NotRunning || p.waitForFinished(120000));
        drain();
        if (killAfter == 0) {
            QVERIFY2(done, p.readAllStandardError().constData());
            QCOMPARE(p.exitCode(), 0);
        }
        QCOMPARE(::counts(b.database()), counts);
    }
};

QTEST_MAIN(TestImportKill)
#include "tst_import_kill.moc"
