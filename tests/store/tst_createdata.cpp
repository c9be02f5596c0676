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

static QStringList folderListing(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

class TestCreateData : public QObject {
    Q_OBJECT

private slots:
    // What creation does with what is in the folder already. A file, or
    // anything else, under the name is refused and left as it is, and so is
    // a path that leads nowhere. Half-built files carry the machine's name and
    // the creating process's id; those of a creation that cannot be running
    // any more are removed. A new file holds its first rows.
    void creationBesideWhatIsThere_data()
    {
        QTest::addColumn<QString>("leaf");     // what is there already, under this name
        QTest::addColumn<QString>("content");  // "board", "folder", "link" or a file's text
        QTest::addColumn<int>("ageSeconds");
        QTest::addColumn<QString>("path");  // to create
        QTest::addColumn<int>("failure");
        QTest::addColumn<bool>("kept");
        QString here = QSysInfo::machineHostName();
        for (QChar &c : here)
            if (!c.isLetterOrNumber() && c != '.')
                c = '_';
        QProcess ended;
        ended.start("true", {});
        QVERIFY(ended.waitForFinished());
        const QString dead = QString::number(ended.processId()), share = "\\\\TESTSRV\\SHARE\\", file = share + "tavello.mdb";
        const QString live = "tavello.mdb", half = "tavello.mdb.new-";
        QTest::newRow("a board database") << live << "board" << 0 << file << 3204 << true;
        QTest::newRow("a text file") << live << "Name,Status\nAnn,In\n" << 0 << file << 3204 << true;
        QTest::newRow("an empty file") << live << "" << 0 << file << 3204 << true;
        QTest::newRow("a folder") << live << "folder" << 0 << file << 3204 << true;
        QTest::newRow("a link to nowhere") << live << "link" << 0 << file << 3204 << true;
        QTest::newRow("missing folder") << "" << "" << 0 << share + "nowhere\\tavello.mdb" << 3044 << false;
        QTest::newRow("bad file name") << "" << "" << 0 << share + "tav*ello.mdb" << 3055 << false;
        QTest::newRow("name too long") << "" << "" << 0 << share + QString(300, 'a') << 3055 << false;
        QTest::newRow("this machine, program gone") << half + here + "-" + dead << "half" << 0 << file << 0 << false;
        QTest::newRow("its journal") << half + here + "-" + dead + "-journal" << "half" << 0 << file << 0 << false;
        QTest::newRow("the name this run uses") << half + here + "-" + QString::number(::getpid()) << "half" << 0 << file << 0 << false;
        QTest::newRow("another machine, long ago") << half + "faraway-4242" << "half" << 7200 << file << 0 << false;
        QTest::newRow("another machine, creating now") << half + "faraway-4243" << "half" << 0 << file << 0 << true;
        QTest::newRow("another database's") << "other.mdb.new-" + here + "-" + dead << "half" << 0 << file << 0 << true;
    }
    void creationBesideWhatIsThere()
    {
        QFETCH(QString, leaf);
        QFETCH(QString, content);
        QFETCH(int, ageSeconds);
        QFETCH(QString, path);
        QFETCH(int, failure);
        QFETCH(bool, kept);
        TestSupport::Site site;
        const QString there = site.local(leaf);
        QFile f(there);
        if (content == "board") {
            QCOMPARE(CreateDatabase(there), 0);
            Database::open(there).addRow("GroupTable", {{"GroupName", "Sales"}});
        } else if (content == "folder") {
            QVERIFY(QDir().mkpath(there));
        } else if (content == "link") {
            QVERIFY(QFile::link(site.local("moved.mdb"), there));
        } else if (!leaf.isEmpty()) {
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write(content.toUtf8()) == content.size() && f.flush());
            QVERIFY(f.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
            f.close();
        }
        const QByteArray before = contentOf(there);
        QStringList listing = folderListing(site.shareFolder());
        if (failure)
            QCOMPARE(failureOf([&] { Database::create(path); }), failure);
        QCOMPARE(CreateDatabase(path), failure);
        QVERIFY(Msg::transcript().isEmpty());
        QCOMPARE(contentOf(there), kept ? before : QByteArray());
        QCOMPARE(QFileInfo(there).isSymLink(), content == "link");
        if (failure) {
            QCOMPARE(folderListing(site.shareFolder()), listing);
            return;
        }
        listing = folderListing(site.shareFolder());
        QCOMPARE(listing.removeAll(leaf) == 1, kept);
        QCOMPARE(listing, QStringList{"tavello.mdb"});  // nothing half-built left beside it
        Database db = Database::open(site.local("tavello.mdb"));
        QCOMPARE(column(db, "PRAGMA integrity_check") + column(db, "PRAGMA foreign_key_check"), QStringList{"ok"});
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
        before.sort();
        for (const QString &table : emptied)
            db.execute("DELETE FROM " + Database::quoteIdentifier(table));
        modCreateData(db);
        const auto shown = Msg::transcript();
        QCOMPARE(shown.size(), messages);
        for (const Msg::Shown &box : shown)
            QVERIFY2(box.text.startsWith("Error: 3022 - ") && box.buttons == Msg::Buttons::OK && box.icon == Msg::Icon::None,
                     qPrintable(box.text));
        QStringList after = dump(db).split('\n');
        after.sort();
        QCOMPARE(after, before);  // every row back, none doubled
    }
};

QTEST_MAIN(TestCreateData)
#include "tst_createdata.moc"
