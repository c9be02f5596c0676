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

namespace {

// One single-row write with the collision protocol around it, as the
// server and due-back dialogs do it. Returns whether the row was written.
bool writeWithRetry(Database &db, const QString &dueBack)
{
    for (;;) {
        try {
            db.execute("INSERT INTO DueBackTable (DueBack) VALUES (?)", {dueBack});
            return true;
        } catch (const StoreError &e) {
            if (gintHandleUpdateError(e.number(), e.text()) != RetryStatement)
                return false;
        }
    }
}

}  // namespace

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
        QVERIFY(gdbMain.isOpen());
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
        QFile f(site.local("tavello.mdb"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(4096, 'x'));
        f.close();
        subOpenDatabase();
        QCOMPARE(Msg::transcript().size(), 1);
        QCOMPARE(Msg::transcript().first().title,
                 QString(" TAVELLO Pro 2006-07D (Admin) -  - Fatal Error in Global - subOpenDatabase event"));
        QVERIFY(Msg::transcript().first().text.endsWith("\rThe database is damaged and must be repaired."));
        QVERIFY(gbolEnding);
    }

    void collisionProtocol_data()
    {
        QTest::addColumn<QList<int>>("answers");   // answers to "retry ?" questions
        QTest::addColumn<int>("releaseAfterAsks"); // the other program lets go after so many questions
        QTest::addColumn<bool>("written");
        QTest::addColumn<int>("questions");
        QTest::newRow("No gives up") << QList<int>{Msg::No} << 99 << false << 1;
        QTest::newRow("Yes then released") << QList<int>{Msg::Yes, Msg::Yes} << 1 << true << 1;
        QTest::newRow("Yes, Yes, then No") << QList<int>{Msg::Yes, Msg::No} << 99 << false << 2;
    }
    void collisionProtocol()
    {
        QFETCH(QList<int>, answers);
        QFETCH(int, releaseAfterAsks);
        QFETCH(bool, written);
        QFETCH(int, questions);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        gintRetryCount() = 0;
        auto other = std::make_unique<ExternalHolder>(site.local("tavello.mdb"), ExternalHolder::Hold::Write,
                                                      "UPDATE DueBackTable SET DueBack = DueBack;");
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        Msg::queueAnswers(answers);
        // The other program lets go once the user has been asked often enough.
        QTimer watcher;
        QObject::connect(&watcher, &QTimer::timeout, [&] {
            if (other && Msg::transcript().size() >= releaseAfterAsks)
                other.reset();
        });
        watcher.start(10);
        QCOMPARE(writeWithRetry(db, "Back after lunch"), written);
        watcher.stop();
        other.reset();
        QCOMPARE(db.scalar("SELECT count(*) FROM DueBackTable WHERE DueBack = ?", {"Back after lunch"}).toInt(),
                 written ? 1 : 0);
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), questions);
        for (const Msg::Shown &s : shown) {
            QCOMPARE(s.text, QString("The database is currently updating.  Would you like to retry ?"));
            QCOMPARE(s.title, QString("TAVELLO"));
            QCOMPARE(s.icon, Msg::Icon::Question);
            QCOMPARE(s.buttons, Msg::Buttons::YesNo);
        }
    }

    void otherFailuresAreToldOnce()
    {
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        gintRetryCount() = 0;
        // The seed rows hold "07:00 am" already: the unique index refuses it.
        QVERIFY(!writeWithRetry(db, "07:00 AM"));
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript().first().text.startsWith("Error=3022 Error message="));
        QVERIFY(Msg::transcript().first().text.endsWith(". Update cancelled."));
        QCOMPARE(Msg::transcript().first().title, gstrAppTitle);
        QCOMPARE(gintRetryCount(), 0);
    }
};

QTEST_MAIN(TestFailures)
#include "tst_failures.moc"
