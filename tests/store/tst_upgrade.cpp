// Bringing files of earlier 2005 releases up to the present shape, at every
// start, without ever overwriting what the board already holds.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Schema.h"
#include "store/modCreateData.h"
#include "store/modUpdateDatabaseStructure.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace StoreFixtures;
using TestSupport::ExternalHolder;

namespace {

// Columns an earlier release did not have; the upgrade's pairs add them.
const QMap<QString, QStringList> kLaterColumns = {
    {"GlobalSettingsTable",
     {"DatabaseReleaseVersion", "AllowMessaging", "AllowStatusAlerts", "AllowPresenceSensing",
      "AllowUserToAddTavelloToStartupFolder"}},
    {"EmployeeSettingsTable",
     {"SplitterPositionVertical", "SplitterPositionHorizontal", "DisplayTreeView", "FontBoldDisplay", "FontSizeDisplay"}},
    {"NewUserDefaultsTable", {"SplitterPositionVertical", "SplitterPositionHorizontal", "FontBoldDisplay", "FontSizeDisplay"}},
    {"AdminSettingsTable", {"LastSelectedNode", "AdminFontBoldDisplay", "AdminFontSizeDisplay"}},
};

// A partly upgraded file already has these, holding values of its own.
const QMap<QString, QStringList> kKeptInPartlyUpgraded = {
    {"GlobalSettingsTable", {"AllowMessaging"}},
    {"EmployeeSettingsTable", {"DisplayTreeView"}},
    {"AdminSettingsTable", {"LastSelectedNode"}},
};

// An older file: the creation shape without the later columns, and the
// tracking table with the misspelt TrackeeLastUpdate. Holds a small board.
void buildOlderFile(const QString &local, bool partlyUpgraded)
{
    Database db = Database::create(local);
    db.execute(QStringLiteral("PRAGMA synchronous = OFF"));  // a fixture needs no flush per statement
    for (Schema::Table table : Schema::tables()) {
        const QStringList later = kLaterColumns.value(table.name);
        const QStringList kept = partlyUpgraded ? kKeptInPartlyUpgraded.value(table.name) : QStringList();
        table.fields.removeIf([&](const Schema::Field &f) { return later.contains(f.name) && !kept.contains(f.name); });
        for (Schema::Field &f : table.fields)
            if (f.name == QLatin1String("TrackeeLastUpdated"))
                f.name = QStringLiteral("TrackeeLastUpdate");
        db.execute(Schema::createTableStatement(table));
        for (const QString &sql : Schema::createIndexStatements(table))
            db.execute(sql);
    }
    modCreateData(db);
    db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET SystemSecurityLevel = 2"));
    db.addRow(QStringLiteral("GroupTable"), {{"GroupName", "Sales"}});
    db.addRow(QStringLiteral("EmployeeTable"), {{"Name", "Ann"}, {"UID", "Ann"}});
    db.addRow(QStringLiteral("EmployeeSettingsTable"), {{"Name", "Ann"}, {"DefaultGroup", "Sales"}});
    db.addRow(QStringLiteral("EmployeeStatusTracking"),
              {{"Tracker", "Ann"}, {"Trackee", "Guest"}, {"TrackeeStatus", "In"}, {"TrackeeLastUpdate", 45000.5}});
    db.addRow(QStringLiteral("MessagesTable"), {{"SentFromName", "Ann"}, {"SentToName", "Guest"}, {"MessageBody", "Lunch?"}});
    db.addRow(QStringLiteral("TransactionLogTable"), {{"Name", "Ann"}, {"Status", "In"}, {"LastModified", "2005-06-01 09:00:00"}});
    db.addRow(QStringLiteral("TransactionLogTable"), {{"Name", "Ann"}, {"Status", "Out"}, {"LastModified", "2005-06-01 17:00:00"}});
    if (partlyUpgraded) {
        db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET AllowMessaging = 0"));
        db.execute(QStringLiteral("UPDATE EmployeeSettingsTable SET DisplayTreeView = 0"));
        db.execute(QStringLiteral("UPDATE AdminSettingsTable SET LastSelectedNode = 'Groups'"));
    }
}

// Each kind is built once per run and copied for every test that needs it.
void makeOlderFile(const QString &local, bool partlyUpgraded)
{
    static QTemporaryDir templates;
    const QString model = templates.filePath(partlyUpgraded ? QStringLiteral("partly.mdb") : QStringLiteral("oldest.mdb"));
    if (!QFileInfo::exists(model))
        buildOlderFile(model, partlyUpgraded);
    QVERIFY(QFile::copy(model, local));
}

// The file opened as the console opens it, minus the flush per statement.
Database openQuickly(const QString &local)
{
    Database db = Database::open(local);
    db.execute(QStringLiteral("PRAGMA synchronous = OFF"));
    return db;
}

// A file of the given kind at `local`: "oldest", "partly upgraded" or "new".
void makeFile(const QString &local, const QString &kind)
{
    if (kind == QLatin1String("new"))
        QCOMPARE(CreateDatabase(local), 0);
    else
        makeOlderFile(local, kind == QLatin1String("partly upgraded"));
}

QStringList sortedShapes(Database &db, const QString &table)
{
    QStringList shapes = columnShapes(db, table);
    shapes.sort();
    return shapes;
}

}  // namespace

class TestUpgrade : public QObject {
    Q_OBJECT

private slots:
    void columnsAddedAndFilledOnce_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QStringList>("values");  // rows in order, as quote() prints them
        const QList<QStringList> filled = {
            {"GlobalSettingsTable", "DatabaseReleaseVersion", "'2005'"},
            {"GlobalSettingsTable", "AllowMessaging", "1"},
            {"GlobalSettingsTable", "AllowStatusAlerts", "1"},
            {"GlobalSettingsTable", "AllowPresenceSensing", "1"},
            {"GlobalSettingsTable", "AllowUserToAddTavelloToStartupFolder", "1"},
            {"GlobalSettingsTable", "UpdateStatusOnLock", "0"},
            {"GlobalSettingsTable", "SystemSecurityLevel", "2"},
            {"EmployeeSettingsTable", "SplitterPositionVertical", "1860,1860"},
            {"EmployeeSettingsTable", "SplitterPositionHorizontal", "3600,3600"},
            {"EmployeeSettingsTable", "DisplayTreeView", "1,1"},
            {"EmployeeSettingsTable", "StatusAlertsOverride", "0,0"},
            {"EmployeeSettingsTable", "FontBoldDisplay", "0,0"},
            {"EmployeeSettingsTable", "FontSizeDisplay", "8,8"},
            {"EmployeeSettingsTable", "DefaultGroup", "'Everyone','Sales'"},
            {"NewUserDefaultsTable", "SplitterPositionVertical", "1860"},
            {"NewUserDefaultsTable", "SplitterPositionHorizontal", "3600"},
            {"NewUserDefaultsTable", "FontBoldDisplay", "0"},
            {"NewUserDefaultsTable", "FontSizeDisplay", "8"},
            {"AdminSettingsTable", "LastSelectedNode", "'Users'"},
            {"AdminSettingsTable", "AdminFontBoldDisplay", "0"},
            {"AdminSettingsTable", "AdminFontSizeDisplay", "8"},
            {"EmployeeStatusTracking", "Tracker", "'Ann'"},
            {"EmployeeStatusTracking", "TrackeeLastUpdated", "NULL"},  // the misspelt column's values go with it
            {"MessagesTable", "MessageBody", "'Lunch?'"},
            {"MessagesTable", "MessageOwner", "NULL"},
            {"TransactionLogTable", "LogDateTime", "NULL,NULL"},
            {"TransactionLogTable", "ComputerName", "NULL,NULL"},
            {"TransactionLogTable", "IPAddress", "NULL,NULL"},
            {"TransactionLogTable", "Status", "'In','Out'"},
        };
        for (const QStringList &f : filled)
            QTest::newRow(qPrintable("oldest: " + f[0] + "." + f[1])) << "oldest" << f[0] << f[1] << f[2].split(',');
        // What a partly upgraded file holds already stays as it is.
        QTest::newRow("partly: AllowMessaging kept") << "partly upgraded" << "GlobalSettingsTable" << "AllowMessaging"
                                                     << QStringList{"0"};
        QTest::newRow("partly: AllowStatusAlerts filled") << "partly upgraded" << "GlobalSettingsTable"
                                                          << "AllowStatusAlerts" << QStringList{"1"};
        QTest::newRow("partly: DisplayTreeView kept") << "partly upgraded" << "EmployeeSettingsTable" << "DisplayTreeView"
                                                      << QStringList{"0", "0"};
        QTest::newRow("partly: FontSizeDisplay filled") << "partly upgraded" << "EmployeeSettingsTable" << "FontSizeDisplay"
                                                        << QStringList{"8", "8"};
        QTest::newRow("partly: LastSelectedNode kept") << "partly upgraded" << "AdminSettingsTable" << "LastSelectedNode"
                                                       << QStringList{"'Groups'"};
    }
    void columnsAddedAndFilledOnce()
    {
        QFETCH(QString, kind);
        QFETCH(QString, table);
        QFETCH(QString, column);
        QFETCH(QStringList, values);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        makeFile(file, kind);
        Database db = openQuickly(file);
        updateDatabaseStructure(db);
        QCOMPARE(columnValues(db, table, column), values);
    }

    void endsInTheShapeOfANewFile_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("oldest") << "oldest";
        QTest::newRow("partly upgraded") << "partly upgraded";
        QTest::newRow("new") << "new";
    }
    void endsInTheShapeOfANewFile()
    {
        QFETCH(QString, kind);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        makeFile(file, kind);
        Database db = openQuickly(file);
        updateDatabaseStructure(db);

        QCOMPARE(CreateDatabase(site.local(QStringLiteral("reference.mdb"))), 0);
        Database reference = Database::open(site.local(QStringLiteral("reference.mdb")));
        updateDatabaseStructure(reference);

        QCOMPARE(db.tableNames(), reference.tableNames());
        for (const QString &table : reference.tableNames())
            QCOMPARE(sortedShapes(db, table), sortedShapes(reference, table));
        QCOMPARE(db.fieldNames(QStringLiteral("EmployeeStatusTracking")),
                 (QStringList{"Tracker", "Trackee", "TrackeeStatus", "TrackeeLastUpdated"}));
        QCOMPARE(db.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        QVERIFY(Msg::transcript().isEmpty());
    }

    // Added columns carry the same rules as in a new file.
    void addedColumnsKeepTheRules_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QVariant>("accepted");
        QTest::addColumn<QVariant>("refused");
        QTest::newRow("release text of 10") << "GlobalSettingsTable" << "DatabaseReleaseVersion" << QVariant("2006-07D")
                                            << QVariant("2006-07D-01");
        QTest::newRow("release required") << "GlobalSettingsTable" << "DatabaseReleaseVersion" << QVariant("2005")
                                          << QVariant();
        QTest::newRow("messaging 0 or 1") << "GlobalSettingsTable" << "AllowMessaging" << QVariant(0) << QVariant(2);
        QTest::newRow("lock rule required") << "GlobalSettingsTable" << "UpdateStatusOnLock" << QVariant(1) << QVariant();
        QTest::newRow("lock rule 0 or 1") << "GlobalSettingsTable" << "UpdateStatusOnLock" << QVariant(1) << QVariant(5);
        QTest::newRow("alerts override required") << "EmployeeSettingsTable" << "StatusAlertsOverride" << QVariant(1)
                                                  << QVariant();
        QTest::newRow("splitter 32-bit") << "EmployeeSettingsTable" << "SplitterPositionVertical" << QVariant(100000)
                                         << QVariant(qint64(1) << 31);
        QTest::newRow("splitter required") << "EmployeeSettingsTable" << "SplitterPositionVertical" << QVariant(0)
                                           << QVariant();
        QTest::newRow("font size 16-bit") << "EmployeeSettingsTable" << "FontSizeDisplay" << QVariant(12) << QVariant(40000);
        QTest::newRow("console font text refused") << "AdminSettingsTable" << "AdminFontSizeDisplay" << QVariant(10)
                                                    << QVariant("big");
        QTest::newRow("node of 20") << "AdminSettingsTable" << "LastSelectedNode" << QVariant(QString(20, 'n'))
                                    << QVariant(QString(21, 'n'));
        QTest::newRow("node not empty") << "AdminSettingsTable" << "LastSelectedNode" << QVariant() << QVariant("");
        QTest::newRow("owner of 250") << "MessagesTable" << "MessageOwner" << QVariant(QString(250, 'o'))
                                      << QVariant(QString(251, 'o'));
        QTest::newRow("address of 250") << "TransactionLogTable" << "IPAddress" << QVariant(QString(250, '1'))
                                        << QVariant(QString(251, '1'));
    }
    void addedColumnsKeepTheRules()
    {
        QFETCH(QString, table);
        QFETCH(QString, column);
        QFETCH(QVariant, accepted);
        QFETCH(QVariant, refused);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        makeOlderFile(file, false);
        Database db = openQuickly(file);
        updateDatabaseStructure(db);
        const QString sql = QStringLiteral("UPDATE %1 SET %2 = ?").arg(Database::quoteIdentifier(table), Database::quoteIdentifier(column));
        const QStringList before = columnValues(db, table, column);
        QVERIFY(failureOf([&] { db.execute(sql, {refused}); }) != 0);
        QCOMPARE(columnValues(db, table, column), before);
        QCOMPARE(failureOf([&] { db.execute(sql, {accepted}); }), 0);
    }

    void secondRunChangesNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("oldest") << "oldest";
        QTest::newRow("partly upgraded") << "partly upgraded";
        QTest::newRow("new") << "new";
    }
    void secondRunChangesNothing()
    {
        QFETCH(QString, kind);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        makeFile(file, kind);
        Database db = openQuickly(file);
        updateDatabaseStructure(db);
        // The board's own choices since the upgrade, none of them a backfill value.
        db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET AllowMessaging = 0, UpdateStatusOnLock = 1, "
                                  "DatabaseReleaseVersion = '2006'"));
        db.execute(QStringLiteral("UPDATE EmployeeSettingsTable SET SplitterPositionVertical = 999, FontSizeDisplay = 10, "
                                  "StatusAlertsOverride = 1"));
        db.execute(QStringLiteral("UPDATE AdminSettingsTable SET LastSelectedNode = 'Status Types'"));
        const QString before = dump(db);

        updateDatabaseStructure(db);
        QCOMPARE(dump(db), before);
        updateDatabaseStructure(db);
        QCOMPARE(dump(db), before);
    }

    void newFileGetsOnlyTheUpgradeFields()
    {
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = openQuickly(file);
        QMap<QString, QStringList> before;
        for (const QString &table : db.tableNames())
            before.insert(table, db.fieldNames(table));
        updateDatabaseStructure(db);
        const QMap<QString, QStringList> added = {
            {"GlobalSettingsTable", {"UpdateStatusOnLock"}},
            {"EmployeeSettingsTable", {"StatusAlertsOverride"}},
            {"MessagesTable", {"MessageOwner"}},
            {"TransactionLogTable", {"LogDateTime", "ComputerName", "IPAddress"}},
        };
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QCOMPARE(db.fieldNames(it.key()), it.value() + added.value(it.key()));
    }

    // A user program reading the file blocks every ALTER; the next start
    // (the next run) catches up, backfill included.
    void heldFileIsUpgradedAtTheNextRun()
    {
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        makeOlderFile(file, false);
        Database db = openQuickly(file);
        const QString before = dump(db);
        {
            ExternalHolder reader(file, ExternalHolder::Hold::Read);
            QVERIFY(reader.started());
            updateDatabaseStructure(db);
            QCOMPARE(dump(db), before);
        }
        updateDatabaseStructure(db);
        QCOMPARE(columnValues(db, QStringLiteral("GlobalSettingsTable"), QStringLiteral("AllowMessaging")), QStringList{"1"});
        QCOMPARE(columnValues(db, QStringLiteral("EmployeeSettingsTable"), QStringLiteral("SplitterPositionVertical")),
                 (QStringList{"1860", "1860"}));
    }

    void runsOnTheSharedHandleSilently()
    {
        TestSupport::Site site;
        site.useShareAsDataPath();
        makeOlderFile(site.local(QStringLiteral("tavello.mdb")), false);
        subUpdateDatabaseStructure();
        QVERIFY(Msg::transcript().isEmpty());
        QVERIFY(!Hourglass::shown());
        gdbMain.close();
        Database db = Database::open(site.local(QStringLiteral("tavello.mdb")));
        QCOMPARE(columnValues(db, QStringLiteral("AdminSettingsTable"), QStringLiteral("LastSelectedNode")),
                 QStringList{"'Users'"});
        QVERIFY(db.fieldNames(QStringLiteral("TransactionLogTable")).contains(QStringLiteral("IPAddress")));
    }
};

QTEST_MAIN(TestUpgrade)
#include "tst_upgrade.moc"
