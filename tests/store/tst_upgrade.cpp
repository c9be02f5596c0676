// Bringing files of earlier 2005 releases up to the present shape, at every
// start, without ever overwriting what the board already holds.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/LockWait.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Schema.h"
#include "store/modCreateData.h"
#include "store/modUpdateDatabaseStructure.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace StoreFixtures;

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
const QMap<QString, QStringList> kUpgradeOnly = {
    {"GlobalSettingsTable", {"UpdateStatusOnLock"}}, {"EmployeeSettingsTable", {"StatusAlertsOverride"}},
    {"MessagesTable", {"MessageOwner"}}, {"TransactionLogTable", {"LogDateTime", "ComputerName", "IPAddress"}}};

// An older file: the creation shape without the later columns, and the
// tracking table with the misspelt TrackeeLastUpdate. Holds a small board.
static void buildOlderFile(const QString &local, bool partlyUpgraded)
{
    Database db = Database::create(local);
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
    if (partlyUpgraded) {
        db.execute("UPDATE GlobalSettingsTable SET AllowMessaging = ?", {0});
        db.execute("UPDATE EmployeeSettingsTable SET DisplayTreeView = ?", {0});
        db.execute("UPDATE AdminSettingsTable SET LastSelectedNode = ?", {"Groups"});
    }
}

// A file of the given kind at `local`: "oldest", "partly upgraded" or "new",
// opened as the console opens it minus the flush per statement.
static Database openFile(const QString &local, const QString &kind)
{
    if (kind == "new")
        CreateDatabase(local);  // a file not made fails the open below
    else
        buildOlderFile(local, kind == "partly upgraded");
    Database db = Database::open(local);
    db.execute("PRAGMA synchronous = OFF");
    return db;
}

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
            "TransactionLogTable(Status, LogDateTime, ComputerName, IPAddress): 'In',NULL,NULL,NULL"};
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
        site.useShareAsDataPath();
        Database db = openFile(site.local("tavello.mdb"), kind);
        if (kind == "oldest") {  // a user program reading the file blocks every ALTER: nothing changes
            const QString held = dump(db);
            TestSupport::ExternalHolder reader(site.local("tavello.mdb"), TestSupport::ExternalHolder::Hold::Read);
            QVERIFY(reader.started());
            Store::setLockWait(200);  // each refused change waits this long
            subUpdateDatabaseStructure();
            Store::setLockWait(Store::DefaultLockWaitMs);
            QCOMPARE(dump(db), held);
        }
        subUpdateDatabaseStructure();  // as at start, on the console's handle
        QVERIFY(!Hourglass::shown());
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
        const QString shape = "SELECT group_concat(name || ' ' || type || ' ' || \"notnull\" || ' ' || ifnull(dflt_value, '-'), ', ') "
                              "FROM (SELECT * FROM pragma_table_info(?) ORDER BY name)";
        for (const QString &table : reference.tableNames()) {
            QCOMPARE(reference.fieldNames(table), created.value(table) + kUpgradeOnly.value(table));
            QCOMPARE(db.scalar(shape, {table}).toString(), reference.scalar(shape, {table}).toString());
        }
        QCOMPARE(db.scalar("PRAGMA integrity_check").toString(), QString("ok"));
        QVERIFY(Msg::transcript().isEmpty());

        // The board's own choices since, none of them a backfill value, survive every later run.
        db.execute("UPDATE GlobalSettingsTable SET AllowMessaging = ?, UpdateStatusOnLock = ?, DatabaseReleaseVersion = ?", {0, 1, "2006"});
        db.execute("UPDATE EmployeeSettingsTable SET SplitterPositionVertical = ?, StatusAlertsOverride = ?", {100000, 1});
        db.execute("UPDATE AdminSettingsTable SET LastSelectedNode = ?", {QString("Status Types").leftJustified(20, '.')});
        const QString before = dump(db);
        // Added columns carry the rules of a new file: each of these is refused, and nothing changes.
        const QList<std::tuple<QString, QString, QVariant>> refused = {
            {"GlobalSettingsTable", "DatabaseReleaseVersion", QVariant()}, {"GlobalSettingsTable", "UpdateStatusOnLock", 5},
            {"EmployeeSettingsTable", "SplitterPositionVertical", qint64(1) << 31},
            {"AdminSettingsTable", "LastSelectedNode", QString(21, 'n')}, {"AdminSettingsTable", "LastSelectedNode", ""}};
        for (const auto &[table, field, value] : refused)
            QVERIFY2(failureOf([&] { db.execute("UPDATE " + table + " SET " + field + " = ?", {value}); }) != 0, qPrintable(field));
        updateDatabaseStructure(db);
        QCOMPARE(dump(db), before);
    }
};

QTEST_MAIN(TestUpgrade)
#include "tst_upgrade.moc"
