// Creating a new database: the rows it starts with, and a file that appears
// complete or not at all, never over an existing one.
#include "StoreFixtures.h"

#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/modCreateData.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

#include <unistd.h>

using namespace StoreFixtures;

namespace {

QByteArray contentOf(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QStringList folderListing(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

}  // namespace

class TestCreateData : public QObject {
    Q_OBJECT

private slots:
    void newDatabaseOnTheShare()
    {
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.shareUnc() + "tavello.mdb"), 0);
        QVERIFY(Msg::transcript().isEmpty());
        QCOMPARE(folderListing(site.shareFolder()), QStringList{"tavello.mdb"});  // nothing half-built left beside it
        {
            TestSupport::ExternalHolder shell(site.local("tavello.mdb"), TestSupport::ExternalHolder::Hold::None);
            QVERIFY(shell.started());
            QCOMPARE(shell.run("PRAGMA integrity_check; PRAGMA foreign_key_check;"), QString("ok"));
        }
        Database db = Database::open(site.local("tavello.mdb"));
        for (const char *want :
             {"DueBackTable(DueBack): '07:00 am'; '07:30 am'; '08:00 am'; '08:30 am'; '09:00 am'; '09:30 am'; '10:00 am'; "
              "'10:30 am'; '11:00 am'; '11:30 am'; '12:00 (Midday)'; '12:30 pm'; '13:00 (1 pm)'; '13:30 (1:30 pm)'; "
              "'14:00 (2 pm)'; '14:30 (2:30 pm)'; '15:00 (3 pm)'; '15:30 (3:30 pm)'; '16:00 (4 pm)'; '16:30 (4:30 pm)'; "
              "'17:00 (5 pm)'; '17:30 (5:30 pm)'; '18:00 (6 pm)'; '18:30 (6:30 pm)'; 'Late this Morning'; "
              "'Early this Afternoon'; 'Late this Afternoon'",
              "StatusTypesTable(Status, StatusCode, OnToolbar, ButtonText, ToolTipText, ProtectedStatus): 'Out',1,1,'Out',"
              "'Set status to Out',0; 'Busy',2,1,'Busy','Set status to Busy',0; 'In',3,1,'In','Set status to In',0",
              "GroupTable(GroupName): 'Everyone'",
              "EmployeeTable(Name, UID, Status, StatusCode, ActiveFlag): 'Guest','Guest','Please Set',4,'Not Set'",
              "EmployeeSettingsTable(Name, DefaultGroup, PictureFileName): 'Guest','Everyone','guest.jpg'",
              "GlobalSettingsTable(DatabaseVersion, DatabaseReleaseVersion): 2005,'2005'",
              "NewUserDefaultsTable(RefreshRate): 5", "AdminSettingsTable(LastSelectedNode): 'Users'",
              "StatusCounterTable(Counter, ExtraColumnsCounter): 1,0", "EmployeeGroupTable(GroupName):",
              "EmployeeStatusTracking(Tracker):", "ImportErrorLog(ErrorText):", "MessagesTable(MessageID):",
              "ServersTable(UNCPath):", "TransactionLogTable(Name):", "UserErrorLog(Name):"})
            QCOMPARE(rowsOf(db, want), QString(want));
    }

    // A refused creation shows nothing and leaves the folder as it was.
    void refusedCreationTouchesNothing_data()
    {
        QTest::addColumn<QString>("existing");  // what is there already
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("failure");
        const QString file = "\\\\TESTSRV\\SHARE\\tavello.mdb";
        QTest::newRow("a board database") << "board" << file << 3204;
        QTest::newRow("a text file") << "Name,Status\nAnn,In\n" << file << 3204;
        QTest::newRow("an empty file") << "" << file << 3204;
        QTest::newRow("a link to nowhere") << "link" << file << 3204;
        QTest::newRow("missing folder") << "none" << "\\\\TESTSRV\\SHARE\\nowhere\\tavello.mdb" << 3044;
        QTest::newRow("unknown share") << "none" << "\\\\ELSEWHERE\\SHARE\\tavello.mdb" << 3044;
        QTest::newRow("bad file name") << "none" << "\\\\TESTSRV\\SHARE\\tav*ello.mdb" << 3055;
    }
    void refusedCreationTouchesNothing()
    {
        QFETCH(QString, existing);
        QFETCH(QString, path);
        QFETCH(int, failure);
        TestSupport::Site site;
        const QString file = site.local("tavello.mdb");
        if (existing == "board") {
            QCOMPARE(CreateDatabase(file), 0);
            Database::open(file).addRow("GroupTable", {{"GroupName", "Sales"}});
        } else if (existing == "link") {
            QVERIFY(QFile::link(site.local("moved.mdb"), file));
        } else if (existing != "none") {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(existing.toUtf8());
        }
        const QByteArray before = contentOf(file);
        const QStringList listing = folderListing(site.shareFolder());
        QCOMPARE(CreateDatabase(path), failure);
        QCOMPARE(contentOf(file), before);
        QCOMPARE(folderListing(site.shareFolder()), listing);
        QCOMPARE(QFileInfo(file).isSymLink(), existing == "link");
        QVERIFY(Msg::transcript().isEmpty());
    }

    // Half-built files carry the machine's name and the creating process's id.
    void leftoversOfCrashedCreations_data()
    {
        QTest::addColumn<QString>("leaf");
        QTest::addColumn<int>("ageSeconds");
        QTest::addColumn<bool>("kept");
        QString here = QSysInfo::machineHostName();
        for (QChar &c : here)
            if (!c.isLetterOrNumber() && c != '.')
                c = '_';
        QProcess ended;
        ended.start("true", {});
        QVERIFY(ended.waitForFinished());
        const QString dead = QString::number(ended.processId());
        QTest::newRow("this machine, program gone") << "tavello.mdb.new-" + here + "-" + dead << 0 << false;
        QTest::newRow("its journal") << "tavello.mdb.new-" + here + "-" + dead + "-journal" << 0 << false;
        QTest::newRow("the name this run uses") << "tavello.mdb.new-" + here + "-" + QString::number(::getpid()) << 0 << false;
        QTest::newRow("another machine, long ago") << "tavello.mdb.new-faraway-4242" << 7200 << false;
        QTest::newRow("another machine, creating now") << "tavello.mdb.new-faraway-4243" << 0 << true;
        QTest::newRow("another database's") << "other.mdb.new-" + here + "-" + dead << 0 << true;
    }
    void leftoversOfCrashedCreations()
    {
        QFETCH(QString, leaf);
        QFETCH(int, ageSeconds);
        QFETCH(bool, kept);
        TestSupport::Site site;
        QFile leftover(site.local(leaf));
        QVERIFY(leftover.open(QIODevice::WriteOnly));
        leftover.write(QByteArray("SQLite format 3\0half", 20));
        leftover.flush();
        QVERIFY(leftover.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
        leftover.close();
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        QCOMPARE(leftover.exists(), kept);
        QCOMPARE(Database::open(site.local("tavello.mdb")).scalar("SELECT count(*) FROM DueBackTable").toInt(), 27);
    }

    // Seeding a file that has its rows already: every refused row is told
    // once, and the rows that are missing are still written.
    void seedingTellsEachFailureAndGoesOn_data()
    {
        QTest::addColumn<QStringList>("emptied");
        QTest::addColumn<int>("messages");
        QTest::newRow("nothing missing") << QStringList{} << 30;
        QTest::newRow("status types missing") << QStringList{"StatusTypesTable"} << 27;
        QTest::newRow("settings rows missing") << QStringList{"AdminSettingsTable", "GlobalSettingsTable", "StatusCounterTable"} << 30;
    }
    void seedingTellsEachFailureAndGoesOn()
    {
        QFETCH(QStringList, emptied);
        QFETCH(int, messages);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        Database db = Database::open(site.local("tavello.mdb"));
        QStringList before = dump(db).split('\n');
        for (const QString &table : emptied)
            db.execute("DELETE FROM " + Database::quoteIdentifier(table));
        modCreateData(db);
        const auto shown = Msg::transcript();
        QCOMPARE(shown.size(), messages);
        for (const Msg::Shown &box : shown) {
            QVERIFY2(box.text.startsWith("Error: 3022 - "), qPrintable(box.text));
            QCOMPARE(box.buttons, Msg::Buttons::OK);
            QCOMPARE(box.icon, Msg::Icon::None);
        }
        QStringList after = dump(db).split('\n');
        before.sort();
        after.sort();
        QCOMPARE(after, before);  // every row back, none doubled
    }
};

QTEST_MAIN(TestCreateData)
#include "tst_createdata.moc"
