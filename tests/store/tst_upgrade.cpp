// Bringing files of earlier 2005 releases up to the present shape, at every
// start, without ever overwriting what the board already holds.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Schema.h"
#include "store/modCreateData.h"
#include "store/modUpdateDatabaseStructure.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QTest>

using namespace StoreFixtures;

namespace {

// Columns an earlier release did not have; the upgrade adds them.
const QMap<QString, QStringList> kLaterColumns = {
    {"GlobalSettingsTable", {"DatabaseReleaseVersion", "AllowMessaging", "AllowStatusAlerts", "AllowPresenceSensing",
                             "AllowUserToAddTavelloToStartupFolder"}},
    {"EmployeeSettingsTable",
     {"SplitterPositionVertical", "SplitterPositionHorizontal", "DisplayTreeView", "FontBoldDisplay", "FontSizeDisplay"}},
    {"NewUserDefaultsTable", {"SplitterPositionVertical", "SplitterPositionHorizontal", "FontBoldDisplay", "FontSizeDisplay"}},
    {"AdminSettingsTable", {"LastSelectedNode", "AdminFontBoldDisplay", "AdminFontSizeDisplay"}}};

// A partly upgraded file already has these, holding values of its own.
const QStringList kKeptInPartlyUpgraded = {"AllowMessaging", "DisplayTreeView", "LastSelectedNode"};

// Fields only the upgrade adds, to a new file too.
const QMap<QString, QStringList> kUpgradeOnly = {{"GlobalSettingsTable", {"UpdateStatusOnLock"}},
                                                 {"EmployeeSettingsTable", {"StatusAlertsOverride"}},
                                                 {"MessagesTable", {"MessageOwner"}},
                                                 {"TransactionLogTable", {"LogDateTime", "ComputerName", "IPAddress"}}};

// An older file: the creation shape without the later columns, and the
// tracking table with the misspelt TrackeeLastUpdate. Holds a small board.
void buildOlderFile(const QString &local, bool partlyUpgraded)
{
    Database db = Database::create(local);
    db.execute("PRAGMA synchronous = OFF");  // a fixture needs no flush per statement
    for (Schema::Table table : Schema::tables()) {
        table.fields.removeIf([&](const Schema::Field &f) {
            return kLaterColumns.value(table.name).contains(f.name) && !(partlyUpgraded && kKeptInPartlyUpgraded.contains(f.name));
        });
        for (Schema::Field &f : table.fields)
            if (f.name == "TrackeeLastUpdated")
                f.name = "TrackeeLastUpdate";
        db.execute(Schema::createTableStatement(table));
        for (const QString &sql : Schema::createIndexStatements(table))
            db.execute(sql);
    }
    modCreateData(db);
    db.execute("UPDATE GlobalSettingsTable SET SystemSecurityLevel = ?", {2});
    db.addRow("GroupTable", {{"GroupName", "Sales"}});
    db.addRow("EmployeeTable", {{"Name", "Ann"}, {"UID", "Ann"}});
    db.addRow("EmployeeSettingsTable", {{"Name", "Ann"}, {"DefaultGroup", "Sales"}});
    db.addRow("EmployeeStatusTracking", {{"Tracker", "Ann"}, {"Trackee", "Guest"}, {"TrackeeStatus", "In"}, {"TrackeeLastUpdate", 45000.5}});
    db.addRow("MessagesTable", {{"SentFromName", "Ann"}, {"SentToName", "Guest"}, {"MessageBody", "Lunch?"}});
    db.addRow("TransactionLogTable", {{"Name", "Ann"}, {"Status", "In"}, {"LastModified", "2005-06-01 09:00:00"}});
    db.addRow("TransactionLogTable", {{"Name", "Ann"}, {"Status", "Out"}, {"LastModified", "2005-06-01 17:00:00"}});
    if (partlyUpgraded) {
        db.execute("UPDATE GlobalSettingsTable SET AllowMessaging = ?", {0});
        db.execute("UPDATE EmployeeSettingsTable SET DisplayTreeView = ?", {0});
        db.execute("UPDATE AdminSettingsTable SET LastSelectedNode = ?", {"Groups"});
    }
}

// A file of the given kind at `local`, opened as the console opens it minus
// the flush per statement: "oldest", "partly upgraded" or "new". Each older
// kind is built once per run and copied.
Database openFile(const QString &local, const QString &kind)
{
    static QTemporaryDir models;
    const QString model = models.filePath(kind + ".mdb");
    if (kind != "new" && !QFileInfo::exists(model))
        buildOlderFile(model, kind == "partly upgraded");
    if (kind == "new")
        CreateDatabase(local);  // a file not made fails the open below
    else
        QFile::copy(model, local);
    Database db = Database::open(local);
    db.execute("PRAGMA synchronous = OFF");
    return db;
}

QStringList shapes(Database &db, const QString &table)
{
    return column(db, "SELECT name || ' ' || type || ' ' || \"notnull\" || ' ' || ifnull(dflt_value, '-') "
                      "FROM pragma_table_info(?) ORDER BY name", {table});
}

}  // namespace

class TestUpgrade : public QObject {
    Q_OBJECT

private slots:
    void upgradedOnceThenLeftAlone_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("values");  // as rowsOf() prints them
        QTest::newRow("oldest") << "oldest" << QStringList{
            "GlobalSettingsTable(DatabaseReleaseVersion, AllowMessaging, AllowStatusAlerts, AllowPresenceSensing, "
            "AllowUserToAddTavelloToStartupFolder, UpdateStatusOnLock, SystemSecurityLevel): '2005',1,1,1,1,0,2",
            "EmployeeSettingsTable(Name, SplitterPositionVertical, SplitterPositionHorizontal, DisplayTreeView, StatusAlertsOverride, "
            "FontBoldDisplay, FontSizeDisplay, DefaultGroup): 'Guest',1860,3600,1,0,0,8,'Everyone'; 'Ann',1860,3600,1,0,0,8,'Sales'",
            "NewUserDefaultsTable(SplitterPositionVertical, SplitterPositionHorizontal, FontBoldDisplay, FontSizeDisplay): 1860,3600,0,8",
            "AdminSettingsTable(LastSelectedNode, AdminFontBoldDisplay, AdminFontSizeDisplay): 'Users',0,8",
            // The misspelt column's values go with it.
            "EmployeeStatusTracking(Tracker, Trackee, TrackeeStatus, TrackeeLastUpdated): 'Ann','Guest','In',NULL",
            "MessagesTable(MessageBody, MessageOwner): 'Lunch?',NULL",
            "TransactionLogTable(Status, LogDateTime, ComputerName, IPAddress): 'In',NULL,NULL,NULL; 'Out',NULL,NULL,NULL"};
        // What a partly upgraded file holds already stays as it is.
        QTest::newRow("partly upgraded") << "partly upgraded" << QStringList{
            "GlobalSettingsTable(AllowMessaging, AllowStatusAlerts): 0,1", "EmployeeSettingsTable(DisplayTreeView, FontSizeDisplay): 0,8; 0,8",
            "AdminSettingsTable(LastSelectedNode, AdminFontSizeDisplay): 'Groups',8"};
        QTest::newRow("new") << "new" << QStringList{"GlobalSettingsTable(UpdateStatusOnLock, AllowMessaging): 0,1",
                                                     "EmployeeSettingsTable(StatusAlertsOverride, DisplayTreeView): 0,1"};
    }
    void upgradedOnceThenLeftAlone()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, values);
        TestSupport::Site site;
        Database db = openFile(site.local("tavello.mdb"), kind);
        updateDatabaseStructure(db);
        for (const QString &want : values)
            QCOMPARE(rowsOf(db, want), want);

        // The shape of a new file, plus the fields only the upgrade adds.
        QCOMPARE(CreateDatabase(site.local("reference.mdb")), 0);
        Database reference = Database::open(site.local("reference.mdb"));
        QMap<QString, QStringList> created;
        for (const QString &table : reference.tableNames())
            created.insert(table, reference.fieldNames(table));
        updateDatabaseStructure(reference);
        QCOMPARE(db.tableNames(), reference.tableNames());
        for (const QString &table : reference.tableNames()) {
            QCOMPARE(reference.fieldNames(table), created.value(table) + kUpgradeOnly.value(table));
            QCOMPARE(shapes(db, table), shapes(reference, table));
        }
        QCOMPARE(db.fieldNames("EmployeeStatusTracking"), (QStringList{"Tracker", "Trackee", "TrackeeStatus", "TrackeeLastUpdated"}));
        QCOMPARE(db.scalar("PRAGMA integrity_check").toString(), QString("ok"));
        QVERIFY(Msg::transcript().isEmpty());

        // The board's own choices since, none of them a backfill value, survive every later run.
        db.execute("UPDATE GlobalSettingsTable SET AllowMessaging = ?, UpdateStatusOnLock = ?, DatabaseReleaseVersion = ?", {0, 1, "2006"});
        db.execute("UPDATE EmployeeSettingsTable SET SplitterPositionVertical = ?, FontSizeDisplay = ?, StatusAlertsOverride = ?",
                   {999, 10, 1});
        db.execute("UPDATE AdminSettingsTable SET LastSelectedNode = ?", {"Status Types"});
        const QString before = dump(db);
        updateDatabaseStructure(db);
        QCOMPARE(dump(db), before);
        updateDatabaseStructure(db);
        QCOMPARE(dump(db), before);
    }

    // Added columns carry the same rules as in a new file.
    void addedColumnsKeepTheRules_data()
    {
        QTest::addColumn<QString>("column");  // Table.Column
        QTest::addColumn<QVariant>("accepted");
        QTest::addColumn<QVariant>("refused");
        QTest::newRow("release required") << "GlobalSettingsTable.DatabaseReleaseVersion" << QVariant("2005") << QVariant();
        QTest::newRow("lock rule 0 or 1") << "GlobalSettingsTable.UpdateStatusOnLock" << QVariant(1) << QVariant(5);
        QTest::newRow("splitter 32-bit") << "EmployeeSettingsTable.SplitterPositionVertical" << QVariant(100000) << QVariant(qint64(1) << 31);
        QTest::newRow("node of 20") << "AdminSettingsTable.LastSelectedNode" << QVariant(QString(20, 'n')) << QVariant(QString(21, 'n'));
        QTest::newRow("node not empty") << "AdminSettingsTable.LastSelectedNode" << QVariant() << QVariant("");
        QTest::newRow("address of 250") << "TransactionLogTable.IPAddress" << QVariant(QString(250, '1')) << QVariant(QString(251, '1'));
    }
    void addedColumnsKeepTheRules()
    {
        QFETCH(QString, column);
        QFETCH(QVariant, accepted);
        QFETCH(QVariant, refused);
        TestSupport::Site site;
        Database db = openFile(site.local("tavello.mdb"), "oldest");
        updateDatabaseStructure(db);
        const QString sql = QString("UPDATE %1 SET %2 = ?").arg(Database::quoteIdentifier(column.section('.', 0, 0)),
                                                                Database::quoteIdentifier(column.section('.', 1)));
        const QString want = column.section('.', 0, 0) + '(' + column.section('.', 1) + "):";
        const QString before = rowsOf(db, want);
        QVERIFY(failureOf([&] { db.execute(sql, {refused}); }) != 0);
        QCOMPARE(rowsOf(db, want), before);
        QCOMPARE(failureOf([&] { db.execute(sql, {accepted}); }), 0);
    }

    // A user program reading the file blocks every ALTER; the next start
    // catches up, backfill included.
    void heldFileIsUpgradedAtTheNextRun()
    {
        TestSupport::Site site;
        Database db = openFile(site.local("tavello.mdb"), "oldest");
        const QString before = dump(db);
        {
            TestSupport::ExternalHolder reader(site.local("tavello.mdb"), TestSupport::ExternalHolder::Hold::Read);
            QVERIFY(reader.started());
            updateDatabaseStructure(db);
            QCOMPARE(dump(db), before);
        }
        updateDatabaseStructure(db);
        const QString want = "EmployeeSettingsTable(SplitterPositionVertical, DisplayTreeView): 1860,1; 1860,1";
        QCOMPARE(rowsOf(db, want), want);
    }

    void runsOnTheSharedHandleSilently()
    {
        TestSupport::Site site;
        site.useShareAsDataPath();
        openFile(site.local("tavello.mdb"), "oldest").close();
        subUpdateDatabaseStructure();
        QVERIFY(Msg::transcript().isEmpty());
        QVERIFY(!Hourglass::shown());
        gdbMain.close();
        Database db = Database::open(site.local("tavello.mdb"));
        const QString want = "TransactionLogTable(Status, IPAddress): 'In',NULL; 'Out',NULL";
        QCOMPARE(rowsOf(db, want), want);
    }
};

QTEST_MAIN(TestUpgrade)
#include "tst_upgrade.moc"
