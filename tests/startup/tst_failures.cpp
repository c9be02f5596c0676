// Reopening while another program holds the file, the collision protocol of
// single-row writers against a row really locked by another program, and the
// handle's close rule.
#include "core/ERRORS.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QTest>
#include <QTimer>

using TestSupport::ExternalHolder;

class TestFailures : public QObject {
    Q_OBJECT

private slots:
    void reopenWaitsForAnExclusiveHolder()
    {
        TestSupport::Site site;
        site.useShareAsDataPath();
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        auto holder = std::make_unique<ExternalHolder>(site.local("tavello.mdb"), ExternalHolder::Hold::Exclusive);
        int ticks = 0;
        bool hourglassWhileWaiting = false;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            ++ticks;  // the window's events keep running during the wait
            hourglassWhileWaiting = hourglassWhileWaiting || Hourglass::shown();
            if (ticks == 25)
                holder.reset();
        });
        ticker.start(100);
        subOpenDatabase();
        ticker.stop();
        QVERIFY(ticks >= 25);
        QVERIFY(hourglassWhileWaiting);
        QCOMPARE(gdbMain.scalar("SELECT count(*) FROM StatusTypesTable").toInt(), 3);
        QVERIFY(Msg::transcript().isEmpty());
        QVERIFY(Hourglass::shown());  // given back by subCloseDatabase, not by the open
        subCloseDatabase();
        QVERIFY(!Hourglass::shown());
        QVERIFY(gdbMain.isOpen());  // the ordinary close only gives the pointer back
        gbolCloseDatabaseNow = true;
        subCloseDatabase();
        QVERIFY(!gdbMain.isOpen());
        QCOMPARE(gintRealCloseCount, 1);
    }

    void reopenOfAForeignFileIsFatal()
    {
        TestSupport::Site site;
        site.useShareAsDataPath();
        const QByteArray foreign(4096, 'x');
        QFile f(site.local("tavello.mdb"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write(foreign) == foreign.size());
        f.close();
        subOpenDatabase();
        QCOMPARE(Msg::transcript().size(), 1);
        QCOMPARE(Msg::transcript().first().title + "|" + Msg::transcript().first().text,
                 gstrAppTitle + " - Fatal Error in Global - subOpenDatabase event|Unrecognized database format: "
                                "the file is not a database of this program.\rThe database is damaged and must be repaired.");
        QVERIFY(gbolEnding);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), foreign);  // never overwritten
    }

    // A single-row write with the collision protocol around it, as the server
    // and due-back dialogs do it.
    void collisionProtocol_data()
    {
        QTest::addColumn<QString>("dueBack");
        QTest::addColumn<QList<int>>("answers");    // answers to "retry ?" questions
        QTest::addColumn<int>("releaseAfterAsks");  // the other program lets go after so many; -1: nobody holds the row
        QTest::addColumn<bool>("written");
        QTest::addColumn<QStringList>("messages");  // exact, as "title|text"
        const QString retry = "TAVELLO|The database is currently updating.  Would you like to retry ?";
        QTest::newRow("No gives up") << "Back after lunch" << QList<int>{Msg::No} << 99 << false << QStringList{retry};
        QTest::newRow("Yes then released") << "Back after lunch" << QList<int>{Msg::Yes, Msg::Yes} << 1 << true << QStringList{retry};
        QTest::newRow("Yes, then No") << "Back after lunch" << QList<int>{Msg::Yes, Msg::No} << 99 << false << QStringList{retry, retry};
        // The seed rows hold "07:00 am" already: the unique index refuses it, and that is told once.
        QTest::newRow("other failure") << "07:00 AM" << QList<int>() << -1 << false
            << QStringList{" TAVELLO Pro 2006-07D (Admin) - |Error=3022 Error message=The change would create a duplicate value "
                           "in a unique index (UNIQUE constraint failed: DueBackTable.DueBack).. Update cancelled."};
    }
    void collisionProtocol()
    {
        QFETCH(QString, dueBack);
        QFETCH(QList<int>, answers);
        QFETCH(int, releaseAfterAsks);
        QFETCH(bool, written);
        QFETCH(QStringList, messages);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        gintRetryCount() = 0;
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        const int rows = db.scalar("SELECT count(*) FROM DueBackTable").toInt();
        std::unique_ptr<ExternalHolder> other;
        if (releaseAfterAsks >= 0)
            other = std::make_unique<ExternalHolder>(site.local("tavello.mdb"), ExternalHolder::Hold::Write,
                                                     "UPDATE DueBackTable SET DueBack = DueBack;");
        Msg::queueAnswers(answers);
        QTimer watcher;
        QObject::connect(&watcher, &QTimer::timeout, [&] {
            if (other && Msg::transcript().size() >= releaseAfterAsks)
                other.reset();
        });
        watcher.start(10);
        bool done = false, again = true;
        while (!done && again) {
            try {
                db.execute("INSERT INTO DueBackTable (DueBack) VALUES (?)", {dueBack});
                done = true;
            } catch (const StoreError &e) {
                again = gintHandleUpdateError(e.number(), e.text()) == RetryStatement;
            }
        }
        watcher.stop();
        other.reset();
        QCOMPARE(done, written);
        QCOMPARE(db.scalar("SELECT count(*) FROM DueBackTable").toInt(), rows + (written ? 1 : 0));
        QStringList shown;
        for (const Msg::Shown &s : Msg::transcript()) {
            shown << s.title + "|" + s.text;
            QCOMPARE(s.buttons, releaseAfterAsks >= 0 ? Msg::Buttons::YesNo : Msg::Buttons::OK);
        }
        QCOMPARE(shown, messages);
        if (releaseAfterAsks < 0)
            QCOMPARE(gintRetryCount(), 0);
    }
};

QTEST_MAIN(TestFailures)
#include "tst_failures.moc"
