// The table store: its own exclusive open, another program's locks at an
// open, editing through recordsets. Opens refused for the file's content, and
// writes refused for a lock, are proven with their messages by the start,
// repair, user and console tests.
#include "../store/StoreFixtures.h"
#include "platform/LockWait.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

#include <optional>

using StoreFixtures::failureOf;
using TestSupport::ExternalHolder;

// Whether another process has taken SQLite's pending byte: a writer that
// waits for the readers to finish before it commits.
static bool pendingWriter(const QString &local)
{
    const int fd = ::open(QFile::encodeName(local).constData(), O_RDONLY);
    struct flock query {};
    query.l_type = F_RDLCK;
    query.l_whence = SEEK_SET;
    query.l_start = 0x40000000;
    query.l_len = 1;
    const bool taken = fd >= 0 && ::fcntl(fd, F_GETLK, &query) == 0 && query.l_type == F_WRLCK;
    ::close(fd);
    return taken;
}

static void makeSmallDatabase(const QString &local)
{
    Database db = Database::create(local);
    db.execute("CREATE TABLE T (Name TEXT COLLATE NOCASE NOT NULL, Note TEXT)");
    db.execute("CREATE UNIQUE INDEX \"T.PrimaryKey\" ON T(Name)");
    for (const char *name : {"name0", "name1", "name2"})
        db.addRow("T", {{"Name", name}, {"Note", "n"}});
}

class TestStore : public QObject {
    Q_OBJECT

private slots:
    // Our own exclusive open keeps every other program out until it closes.
    void exclusiveOpenKeepsOthersOut()
    {
        TestSupport::Site site;
        makeSmallDatabase(site.local("tavello.mdb"));
        Database mine = Database::open(site.shareUnc() + "tavello.mdb", Database::Mode::Exclusive);
        TestSupport::ExternalHolder other(site.local("tavello.mdb"), TestSupport::ExternalHolder::Hold::None);
        QVERIFY(other.run(".timeout 0\nSELECT count(*) FROM T;").contains("locked"));
        mine.close();
        QCOMPARE(other.run("SELECT count(*) FROM T;"), QString("3"));
    }

    // What another program's lock means at an open once the wait is over: a
    // program holding the file to itself all along (3045), or one whose lock
    // passes, readers in the way of a writer about to commit (3050). A hold
    // that ends within the wait is no failure at all.
    void locksAtOpen_data()
    {
        QTest::addColumn<QString>("other");
        QTest::addColumn<int>("shared");     // failure of a shared open, 0: opened
        QTest::addColumn<int>("exclusive");  // of an exclusive one
        QTest::newRow("holds it to itself") << "exclusive" << 3045 << 3045;
        QTest::newRow("holds it for a moment") << "moment" << 0 << 0;
        QTest::newRow("writer waiting for a reader") << "pending" << 3050 << 3050;
        QTest::newRow("write not yet committed") << "write" << 0 << 3050;
        QTest::newRow("reading") << "read" << 0 << 3050;
    }
    void locksAtOpen()
    {
        QFETCH(QString, other);
        QFETCH(int, shared);
        QFETCH(int, exclusive);
        TestSupport::Site site;
        Store::setLockWait(1500);
        const QString local = site.local("tavello.mdb");
        makeSmallDatabase(local);
        std::optional<ExternalHolder> reader, writer;
        if (other == "exclusive" || other == "moment") {
            QVERIFY(writer.emplace(local, ExternalHolder::Hold::Exclusive).started());
            if (other == "moment")
                writer->send(".shell sleep 0.4\nCOMMIT;");
        } else if (other == "pending") {
            QVERIFY(reader.emplace(local, ExternalHolder::Hold::Read).started());
            QVERIFY(writer.emplace(local, ExternalHolder::Hold::Write, "INSERT INTO T (Name) VALUES ('late');").started());
            writer->send("COMMIT;");  // waits for the reader, holding the pending byte meanwhile
            QElapsedTimer clock;
            clock.start();
            while (!pendingWriter(local) && clock.elapsed() < 5000)
                QThread::msleep(20);
            QVERIFY(pendingWriter(local));
        } else {
            QVERIFY(writer.emplace(local, other == "write" ? ExternalHolder::Hold::Write : ExternalHolder::Hold::Read).started());
        }
        QCOMPARE(failureOf([&] { Database::open(site.shareUnc() + "tavello.mdb").close(); }), shared);
        QCOMPARE(failureOf([&] { Database::open(site.shareUnc() + "tavello.mdb", Database::Mode::Exclusive).close(); }), exclusive);
        reader.reset();  // the waiting writer commits now
        if (other == "pending")
            QCOMPARE(writer->run("SELECT count(*) FROM T;"), QString("4"));
        writer.reset();
        QCOMPARE(failureOf([&] { Database::open(site.shareUnc() + "tavello.mdb", Database::Mode::Exclusive).close(); }), 0);
    }

    void writesAndRecordsets()
    {
        TestSupport::Site site;
        makeSmallDatabase(site.local("tavello.mdb"));
        QVERIFY(QDir().mkpath(site.local("folder.mdb")));
        QCOMPARE(failureOf([&] { Database::open(site.shareUnc() + "folder.mdb"); }), 3055);
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        QCOMPARE(failureOf([&] { db.addRow("T", {{"Name", "NAME1"}}); }), 3022);  // keys are blind to case
        Recordset rs = db.openTable("T", "Name LIKE ?", {"name#"}, "Name");
        QStringList seen;
        for (; !rs.eof(); rs.moveNext()) {
            seen << rs.text("NAME");
            rs.edit({{"Note", QVariant()}});
        }
        QCOMPARE(seen, QStringList({"name0", "name1", "name2"}));
        QCOMPARE(db.scalar("SELECT count(*) FROM T WHERE Note IS NULL AND Name LIKE ?", {"name#"}).toInt(), 3);

        // A row deleted by someone else between read and write.
        Recordset again = db.openTable("T", "Name = ?", {"name0"});
        {
            TestSupport::ExternalHolder other(site.local("tavello.mdb"), TestSupport::ExternalHolder::Hold::None);
            other.run("DELETE FROM T WHERE Name = 'name0';");
        }
        QCOMPARE(failureOf([&] { again.edit({{"Note", "late"}}); }), 3167);
        QCOMPARE(failureOf([&] { again.value("NoSuchField"); }), 3265);

        // Column names with spaces and brackets survive the quoting.
        db.addColumn("T", "New_Desk [2]", "TEXT(250)");
        db.renameColumn("T", "New_Desk [2]", "New_Room");
        QCOMPARE(db.fieldNames("T"), QStringList({"Name", "Note", "New_Room"}));
        db.dropColumn("T", "New_Room");
        QCOMPARE(db.fieldNames("T"), QStringList({"Name", "Note"}));

        db.close();
        QCOMPARE(failureOf([&] { db.execute("DELETE FROM T"); }), 3420);
    }
};

QTEST_MAIN(TestStore)
#include "tst_store.moc"
