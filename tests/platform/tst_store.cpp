// The table store: failure numbers raised by the real conditions, locks held
// by another process, editing through recordsets.
#include "core/Global.h"
#include "platform/Database.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTest>

using TestSupport::ExternalHolder;

namespace {

int failureOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const StoreError &e) {
        return e.number();
    }
    return 0;
}

void makeSmallDatabase(const QString &local, int rows = 50)
{
    Database db = Database::create(local);
    db.execute("CREATE TABLE T (Name TEXT COLLATE NOCASE NOT NULL, Note TEXT)");
    db.execute("CREATE UNIQUE INDEX \"T.PrimaryKey\" ON T(Name)");
    db.beginTrans();
    for (int i = 0; i < rows; ++i)
        db.execute("INSERT INTO T (Name, Note) VALUES (?, ?)", {QString("name%1").arg(i), QString(300, 'n')});
    db.commitTrans();
}

}  // namespace

class TestStore : public QObject {
    Q_OBJECT

private slots:
    void openFailures_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("number");
        QTest::newRow("missing file") << "" << "\\\\TESTSRV\\SHARE\\tavello.mdb" << 3024;
        QTest::newRow("missing folder") << "" << "\\\\TESTSRV\\SHARE\\nowhere\\tavello.mdb" << 3044;
        QTest::newRow("unknown share") << "" << "\\\\OTHERSRV\\SHARE\\tavello.mdb" << 3044;
        QTest::newRow("bad file name") << "" << "\\\\TESTSRV\\SHARE\\ta?vello.mdb" << 3055;
        QTest::newRow("name too long") << "" << "\\\\TESTSRV\\SHARE\\" + QString(300, 'a') << 3055;
        QTest::newRow("a folder, not a file") << "folder" << "\\\\TESTSRV\\SHARE\\tavello.mdb" << 3055;
        QTest::newRow("dangling link") << "dangling" << "\\\\TESTSRV\\SHARE\\tavello.mdb" << 53;
        QTest::newRow("foreign file") << "text" << "\\\\TESTSRV\\SHARE\\tavello.mdb" << 3343;
        QTest::newRow("damaged file") << "damaged" << "\\\\TESTSRV\\SHARE\\tavello.mdb" << 3049;
    }
    void openFailures()
    {
        QFETCH(QString, setup);
        QFETCH(QString, path);
        QFETCH(int, number);
        TestSupport::Site site;
        const QString file = site.local("tavello.mdb");
        if (setup == "folder") {
            QDir().mkpath(file);
        } else if (setup == "dangling") {
            QVERIFY(QFile::link(site.local("gone.mdb"), file));
        } else if (setup == "text") {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(QByteArray("Name,Status\nJane,In\n").repeated(200));
        } else if (setup == "damaged") {
            makeSmallDatabase(file);
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.seek(100);  // the schema page, behind the file header
            f.write(QByteArray(3000, '\x5a'));
        }
        const QByteArray before = QFile::exists(file) && !QFileInfo(file).isDir() ? [&] {
            QFile f(file);
            f.open(QIODevice::ReadOnly);
            return f.readAll();
        }() : QByteArray();
        QCOMPARE(failureOf([&] { Database::open(path); }), number);
        if (!before.isEmpty()) {
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), before);  // the open never changes a file it refuses
        }
        QVERIFY(!QFileInfo::exists(site.local("tavello.mdb-journal")));
    }

    void createNeverOverwrites()
    {
        TestSupport::Site site;
        makeSmallDatabase(site.local("tavello.mdb"));
        QCOMPARE(failureOf([&] { Database::create(site.shareUnc() + "tavello.mdb"); }), 3204);
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        QCOMPARE(db.scalar("SELECT count(*) FROM T").toInt(), 50);
    }

    void locksOfAnotherProgram()
    {
        TestSupport::Site site;
        const QString file = site.local("tavello.mdb");
        makeSmallDatabase(file);
        const QString unc = site.shareUnc() + "tavello.mdb";
        {
            ExternalHolder other(file, ExternalHolder::Hold::Exclusive);
            QVERIFY(other.started());
            QCOMPARE(failureOf([&] { Database::open(unc); }), 3045);
            QCOMPARE(failureOf([&] { Database::open(unc, Database::Mode::Exclusive); }), 3045);
        }
        {
            ExternalHolder reader(file, ExternalHolder::Hold::Read);
            QCOMPARE(failureOf([&] { Database::open(unc, Database::Mode::Exclusive); }), 3050);
            Database shared = Database::open(unc);
            QCOMPARE(shared.scalar("SELECT count(*) FROM T").toInt(), 50);
        }
        {
            ExternalHolder writer(file, ExternalHolder::Hold::Write, "UPDATE T SET Note = 'x' WHERE Name = 'name1';");
            Database db = Database::open(unc);
            QCOMPARE(db.scalar("SELECT count(*) FROM T").toInt(), 50);  // reading goes on
            QCOMPARE(failureOf([&] { db.execute("UPDATE T SET Note = 'y' WHERE Name = 'name2'"); }), 3260);
            QCOMPARE(failureOf([&] { db.beginTrans(); }), 3260);
            writer.release();
            db.execute("UPDATE T SET Note = 'y' WHERE Name = 'name2'");
        }
        {
            // Our own exclusive open keeps every other program out until it closes.
            Database mine = Database::open(unc, Database::Mode::Exclusive);
            ExternalHolder other(file, ExternalHolder::Hold::None);
            QVERIFY(other.run(".timeout 0\nSELECT count(*) FROM T;").contains("locked"));
            mine.close();
            QCOMPARE(other.run("SELECT count(*) FROM T;"), QString("50"));
        }
    }

    void writesAndRecordsets()
    {
        TestSupport::Site site;
        makeSmallDatabase(site.local("tavello.mdb"), 3);
        Database db = Database::open(site.shareUnc() + "tavello.mdb");
        QCOMPARE(failureOf([&] { db.addRow("T", {{"Name", "NAME1"}}); }), 3022);  // keys are blind to case
        db.addRow("T", {{"Name", "it's \"quoted\" [x] *?%_;"}});
        QCOMPARE(db.scalar("SELECT Name FROM T WHERE Name LIKE ?", {"IT'S*"}).toString(),
                 QString("it's \"quoted\" [x] *?%_;"));

        Recordset rs = db.openTable("T", "Name LIKE ?", {"name#"}, "Name");
        QStringList seen;
        for (; !rs.eof(); rs.moveNext()) {
            seen << rs.text("NAME");
            QVERIFY(rs.isNull("note") == false);
            rs.edit({{"Note", QVariant()}});
        }
        QCOMPARE(seen, QStringList({"name0", "name1", "name2"}));
        QCOMPARE(db.scalar("SELECT count(*) FROM T WHERE Note IS NULL AND Name LIKE 'name#'").toInt(), 3);

        // A row deleted by someone else between read and write.
        Recordset again = db.openTable("T", "Name = ?", {"name0"});
        {
            ExternalHolder other(site.local("tavello.mdb"), ExternalHolder::Hold::None);
            other.run("DELETE FROM T WHERE Name = 'name0';");
        }
        QCOMPARE(failureOf([&] { again.edit({{"Note", "late"}}); }), 3167);
        QCOMPARE(failureOf([&] { again.value("NoSuchField"); }), 3265);

        QCOMPARE(db.fieldNames("T"), QStringList({"Name", "Note"}));
        db.addColumn("T", "New_Desk [2]", "TEXT(250)");
        db.renameColumn("T", "New_Desk [2]", "New_Room");
        QCOMPARE(db.fieldNames("T"), QStringList({"Name", "Note", "New_Room"}));
        db.dropColumn("T", "New_Room");
        QCOMPARE(db.fieldNames("T"), QStringList({"Name", "Note"}));

        db.beginTrans();
        db.execute("DELETE FROM T");
        db.rollback();
        QCOMPARE(db.scalar("SELECT count(*) FROM T").toInt(), 3);  // name1, name2 and the quoted one

        db.close();
        QCOMPARE(failureOf([&] { db.execute("DELETE FROM T"); }), 3420);
    }
};

QTEST_MAIN(TestStore)
#include "tst_store.moc"
