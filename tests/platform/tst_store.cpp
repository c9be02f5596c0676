// The table store: its own exclusive open, editing through recordsets.
// Opens refused for another program's lock or for the file's content, and
// writes refused for a lock, are proven with their messages by the start,
// repair, user and console tests.
#include "../store/StoreFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTest>

using StoreFixtures::failureOf;

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
