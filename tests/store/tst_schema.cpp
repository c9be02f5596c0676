// The shape of a new database, compared field by field with the board's
// field list, and the rules the store itself enforces on every program.
#include "StoreFixtures.h"

#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QTest>


using namespace StoreFixtures;

// A user's settings, the same fields as the defaults for new users but for
// %1 automatic log in and out, %2 the refresh rate and %3 the password's rule.
const QString kUserSettings = QStringList{"AutoClearComments I = 0", "AutoLogIn I = %1", "AutoLogOut I = %1",
    "AutoMinimize I = 0", "RefreshRate I = %2", "DefaultGroup T250 nz = 'Everyone'", "StatusColumnWidth I = 2000",
    "NameColumnWidth I = 1400", "PhoneColumnWidth I = 1100", "DueBackColumnWidth I = 1300", "CommentsColumnWidth I = 1300",
    "LastModifiedColumnWidth I = 4000", "SortOrder I = 0", "SortKey I = 2", "ScreenTop I = 1200", "ScreenLeft I = 1200",
    "ScreenWidth I = 10710", "ScreenHeight I = 7005", "ListViewPopUp I = 1", "ChangeScreenPopUp I = 0",
    "UserSecurityLevel I = 0", "MinimizeSetting I = 0", "Password T250%3", "IconSize I = 0", "PictureFileName T250",
    "StatusColumnOrder L req = 1", "NameColumnOrder L req = 2", "PhoneColumnOrder L req = 3", "DueBackColumnOrder L req = 4",
    "CommentsColumnOrder L req = 5", "LastModifiedColumnOrder L req = 6", "SortColumnName T250 nz = 'Name'",
    "ToolBarText I = 1", "MinimizeOnClose L = 0", "DisplayTreeView L = 1", "PhotoSizeToFit B = 0",
    "SplitterPositionVertical L req = 1860", "SplitterPositionHorizontal L req = 3600", "FontBoldDisplay I = 0",
    "FontSizeDisplay I = 8"}.join('\n');

// Per table in creation order: its fields in order, "Name Type [req] [nz] [auto] [= default]"
// (I 16-bit, L 32-bit, B yes/no, D double, DT date, M memo, Tn text of n characters;
// req: required; nz: no zero-length text; the default as the store prints it),
// its indexes, and the relations it holds, each cascading renames and deletes.
// Written apart from the code under test, so a slip in either shows.
const QList<QPair<QString, QStringList>> kShape = {
    {"AdminSettingsTable", {"ScreenTop I = 1200", "ScreenLeft I = 1200", "ScreenWidth I = 10710", "ScreenHeight I = 7440",
     "TransactionLogPrintFontSize I = 7", "TransactionLogPrintOrientation I = 0", "AutoCheckForUpdates I = 1",
     "LastSelectedNode T20 nz = 'Users'", "AdminFontBoldDisplay I = 0", "AdminFontSizeDisplay I = 8"}},
    {"DueBackTable", {"DueBack T250", "index DueBack(DueBack) unique"}},
    {"EmployeeGroupTable", {"EmployeeName T250 nz", "GroupName T250 nz", "GroupManager I = 0",
     "index Employee_Name(EmployeeName)", "index Group_Name(GroupName)", "index PrimaryKey(EmployeeName,GroupName) primary",
     "fk EmployeeName -> EmployeeTable.Name", "fk GroupName -> GroupTable.GroupName"}},
    {"EmployeeSettingsTable",
     QStringList{"Name T250 nz = 'Guest'", "Phone T250"} + kUserSettings.arg("0", "1", " nz").split('\n') +
         QStringList{"index EmployeeSettingsTableName(Name)", "index Phone(Phone)", "index PrimaryKey(Name) primary",
                     "fk DefaultGroup -> GroupTable.GroupName", "fk Name -> EmployeeTable.Name"}},
    {"EmployeeStatusTracking", {"Tracker T250 nz", "Trackee T250 nz", "TrackeeStatus T250 nz", "TrackeeLastUpdated D",
     "fk Trackee -> EmployeeTable.Name", "fk Tracker -> EmployeeTable.Name"}},
    // Its DueBack relation is not enforced: the list only suggests values.
    {"EmployeeTable", {"Name T250 nz = 'Guest'", "Status T250 nz = 'Please Set'", "StatusCode I = 4", "Phone T250",
     "DueBack T250", "Comments T250", "LastModified T250 nz", "ActiveFlag T250 nz = 'Not Set'", "UID T64 nz",
     "NetWorkLogonID T64 nz", "index Comments(Comments)", "index DueBack(DueBack)",
     "index Index_807D17CA_95EE_4516(NetWorkLogonID) unique", "index LastModified(LastModified)", "index Phone(Phone)",
     "index PrimaryKey(Name) primary", "index Status(Status)", "index UID(UID) unique"}},
    {"GlobalSettingsTable", {"SystemSecurityLevel I = 1", "TransactionLogFlag I = 1", "LogoPosition I = 5",
     "CompanyInfo M nz", "PhotoPath T255 nz", "ForceShutDown B = 0", "DatabaseVersion I = 2005",
     "DatabaseReleaseVersion T10 req nz = 2005", "AllowMessaging B req = 1", "AllowStatusAlerts B req = 1",
     "AllowPresenceSensing B req = 1", "AllowUserToAddTavelloToStartupFolder B req = 1"}},
    {"GroupTable", {"GroupName T250 nz = 'Everyone'", "index PrimaryKey(GroupName) primary"}},
    {"ImportErrorLog", {"ErrorDate DT", "ErrorTime DT", "ErrorText T250 nz"}},
    {"MessagesTable", {"MessageID L auto", "SentFromRemoteUNC T255", "SentFromName T250", "SentToRemoteUNC T255",
     "SentToName T250", "MessageFrom T250", "MessageSubject T250", "MessageBody M nz", "SentDateTimeNum D", "Category T50",
     "LastUsedDateTimeNum D = 0", "index MessageID(MessageID) unique"}},
    {"NewUserDefaultsTable", kUserSettings.arg("1", "5", "").split('\n')},
    {"ServersTable", {"UNCPath T250 nz", "Description T250", "index ixUNC(UNCPath) unique"}},
    {"StatusCounterTable", {"Counter L = 1", "GroupCounter L = 1", "StatusTypeCounter L = 1", "SecurityCounter L = 1",
     "ExtraColumnsCounter L req = 0"}},
    {"StatusTypesTable", {"Status T250 req nz = 'NewStatus'", "StatusCode I = 4", "OnToolbar I = 0",
     "ButtonText T10 nz = 'Not Set'", "ToolTipText T30 nz = 'Not Set'", "ProtectedStatus L = 0",
     "index ixStatusType0(Status) primary"}},
    {"TransactionLogTable", {"Name T250 req nz = 'Begin'", "Status T250 req nz = 'Transaction'", "DueBack T250",
     "Comments T250", "LastModified T250 req nz = 'Log'", "NetworkLogonID T250 = 'Unknown'",
     "index TransactionLogTableName(Name)"}},
    {"UserErrorLog", {"DateTime T250 nz", "Name T250 nz", "FormName T250 nz", "RoutineName T250 nz", "ErrorNumber D = 0",
     "ErrorMessage T250 nz"}},
};

// A field of kShape; a key's fields are required too. `declared` is its type as the file declares it.
struct Field {
    QString table, name, type, declared, defaultValue;
    int size;  // Text only
    bool notNull, zeroLength, autoIncrement;
};

static const QVector<Field> &fields()
{
    static const QMap<QChar, QString> types = {{'I', "SMALLINT"}, {'L', "INTEGER"}, {'B', "BOOLEAN"}, {'D', "REAL"}, {'M', "TEXT"}};
    static const QVector<Field> all = [] {
        QVector<Field> out;
        for (const auto &[table, items] : kShape) {
            QStringList primary;
            for (const QString &item : items)
                if (item.endsWith(" primary"))
                    primary = item.section('(', 1).section(')', 0, 0).split(',');
            for (const QString &item : items) {
                const QStringList w = item.section(" = ", 0, 0).split(' ');
                const int size = w[1].startsWith('T') ? w[1].mid(1).toInt() : 0;
                if (w[0] != "index" && w[0] != "fk")
                    out << Field{table, w[0], w[1], size ? QString("TEXT(%1)").arg(size) : types.value(w[1][0]), item.section(" = ", 1),
                                 size, w.contains("req") || primary.contains(w[0]), !w.contains("nz"), w.contains("auto")};
            }
        }
        return out;
    }();
    return all;
}

// Adds a row holding `value` in the field (and what else the table needs)
// and takes it back. Returns 0, the failure number, or -1 if the row is not
// found again by the field equal to `findAs`.
static int probe(Database &db, const Field &field, const QVariant &value, const QVariant &findAs = {})
{
    QVariantMap row;
    for (const Field &f : fields())
        if (f.table == field.table && f.notNull && f.defaultValue.isEmpty())
            row.insert(f.name, f.size ? QVariant("x") : QVariant(1));
    row.insert(field.name, value);
    qint64 found = 1;
    db.beginTrans();
    const int failure = failureOf([&] {
        const qint64 id = db.addRow(field.table, row);
        if (findAs.isValid())
            found = db.scalar("SELECT count(*) FROM " + field.table + " WHERE rowid = ? AND " + field.name + " = ?", {id, findAs})
                        .toLongLong();
    });
    db.rollback();
    return failure ? failure : found == 1 ? 0 : -1;
}

class TestSchema : public QObject {
    Q_OBJECT

    TestSupport::Site m_site;
    Database m_empty;  // structure only, relations off: each probe looks at one table

private slots:
    void initTestCase()
    {
        m_empty = Database::create(m_site.local("empty.mdb"));
        createStructure(m_empty);
        m_empty.execute("PRAGMA foreign_keys = OFF");
    }

    void tableShape_data()
    {
        QTest::addColumn<int>("t");
        for (int t = 0; t < kShape.size(); ++t)
            QTest::newRow(qPrintable(kShape[t].first)) << t;
    }
    void tableShape()
    {
        QFETCH(int, t);
        const auto &[table, items] = kShape.at(t);
        QCOMPARE(m_empty.tableNames().size(), kShape.size());
        QCOMPARE(m_empty.tableNames().value(t), table);  // in creation order
        QStringList expected;
        for (const Field &f : fields())
            if (f.table == table)
                expected << QStringLiteral("%1 %2 %3").arg(f.name, f.declared).arg(int(f.notNull)) +
                                (f.defaultValue.isEmpty() ? QString() : " = " + f.defaultValue);
        for (QString item : items)  // a primary index is a unique one of NOT NULL fields
            if (item.startsWith("index "))
                expected << item.replace(" primary", " unique").insert(6, table + '.');
            else if (item.startsWith("fk "))
                expected << item + " on update CASCADE on delete CASCADE";
        const QStringList actual =
            column(m_empty, "SELECT name || ' ' || type || ' ' || \"notnull\" || ifnull(' = ' || dflt_value, '') "
                            "FROM pragma_table_info(?) ORDER BY cid", {table}) +
            column(m_empty, "SELECT 'index ' || l.name || '(' || (SELECT group_concat(name, ',') FROM pragma_index_info(l.name))"
                            " || ')' || CASE l.\"unique\" WHEN 1 THEN ' unique' ELSE '' END "
                            "FROM pragma_index_list(?) l ORDER BY l.name", {table}) +
            column(m_empty, "SELECT 'fk ' || \"from\" || ' -> ' || \"table\" || '.' || \"to\" || ' on update ' || on_update "
                            "|| ' on delete ' || on_delete FROM pragma_foreign_key_list(?) ORDER BY \"from\"", {table});
        QCOMPARE(actual, expected);
    }

    // Sizes, required fields, zero-length text, case and number ranges are
    // rules the file enforces, field by field.
    void fieldRules_data()
    {
        QTest::addColumn<int>("i");
        for (int i = 0; i < fields().size(); ++i)
            QTest::newRow(qPrintable(fields()[i].table + '.' + fields()[i].name)) << i;
    }
    void fieldRules()
    {
        QFETCH(int, i);
        const Field f = fields().at(i);
        const auto accepts = [&](const QVariant &v) { return probe(m_empty, f, v) == 0; };
        QCOMPARE(accepts(QVariant()), !f.notNull);
        if (f.size) {
            QVERIFY(accepts(QString(f.size, 'x')));
            QVERIFY(!accepts(QString(f.size + 1, 'x')));
            QVERIFY(accepts(QString(f.size, QChar(0x00e9))));  // characters, not bytes
        }
        if (f.type == "M")
            QVERIFY(accepts(QString(100000, 'm')));
        if (f.size || f.type == "M") {
            QCOMPARE(accepts(""), f.zeroLength);
            QCOMPARE(probe(m_empty, f, "MiXed", "mIxED"), 0);  // every text compares blind to case, not only keys
        }
        const QMap<QString, QList<QPair<QVariant, bool>>> numbers = {  // value, accepted
            {"I", {{32767, true}, {-32768, true}, {32768, false}, {-32769, false}, {"12", true}, {"twelve", false}, {2.5, false}}},
            {"L", {{2147483647, true}, {qint64(-2147483648LL), true}, {qint64(2147483648LL), false},
                   {qint64(-2147483649LL), false}, {"twelve", false}}},
            {"B", {{0, true}, {1, true}, {true, true}, {-1, true}, {2, false}, {-2, false}, {"yes", false}}},
            {"D", {{2.5, true}, {-45000.25, true}}}};
        for (const auto &[value, accepted] : numbers.value(f.type == "DT" ? "D" : f.type))
            if (!f.autoIncrement || value.toLongLong() >= 1)  // a message's row id is never below 1
                QVERIFY2(accepts(value) == accepted, qPrintable(value.toString()));
    }

    // The relations work on the file as the console opens it: renames and
    // deletes reach every row that names the user or group.
    void relationsCarryRenamesAndDeletes()
    {
        QCOMPARE(CreateDatabase(m_site.local("board.mdb")), 0);
        Database db = Database::open(m_site.local("board.mdb"));
        db.addRow("GroupTable", {{"GroupName", "Sales"}});
        db.addRow("EmployeeTable", {{"Name", "Ann"}, {"UID", "Ann"}});
        db.addRow("EmployeeSettingsTable", {{"Name", "Ann"}, {"DefaultGroup", "Sales"}});
        db.addRow("EmployeeGroupTable", {{"EmployeeName", "Ann"}, {"GroupName", "Sales"}});
        db.addRow("EmployeeGroupTable", {{"EmployeeName", "Guest"}, {"GroupName", "Sales"}});
        const auto held = [&] {  // memberships "/" and settings ":"
            return column(db, "SELECT EmployeeName || '/' || GroupName FROM EmployeeGroupTable UNION ALL "
                              "SELECT Name || ':' || DefaultGroup FROM EmployeeSettingsTable ORDER BY 1").join(", ");
        };
        db.execute("UPDATE EmployeeTable SET Name = ? WHERE Name = ?", {"Anna", "Ann"});
        QCOMPARE(held(), QString("Anna/Sales, Anna:Sales, Guest/Sales, Guest:Everyone"));
        db.execute("DELETE FROM EmployeeTable WHERE Name = ?", {"anna"});
        QCOMPARE(held(), QString("Guest/Sales, Guest:Everyone"));
        db.execute("DELETE FROM GroupTable WHERE GroupName = ?", {"Sales"});
        QCOMPARE(held(), QString("Guest:Everyone"));
    }

    // The rules hold for any program: the sqlite3 shell writes the file with
    // none of our code loaded. Last here: its accepted row stays in the file.
    void storeEnforcesForOtherPrograms_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("refusal");  // empty: accepted
        const QString n250(250, 'n');
        QTest::newRow("user name of 250") << "INSERT INTO EmployeeTable (Name) VALUES ('" + n250 + "');" << "";
        QTest::newRow("user name of 251") << "INSERT INTO EmployeeTable (Name) VALUES ('" + n250 + "n');"
                                          << "CHECK constraint failed: EmployeeTable.Name: at most 250 characters";
        QTest::newRow("Yes/No field, True of the older engine")
            << "INSERT INTO GlobalSettingsTable (AllowMessaging, AllowStatusAlerts) VALUES (-1, -1);" << "";
        QTest::newRow("Yes/No field, 2") << "INSERT INTO GlobalSettingsTable (AllowMessaging) VALUES (2);"
                                         << "CHECK constraint failed: GlobalSettingsTable.AllowMessaging: -1, 0 or 1";
        QTest::newRow("32-bit overflow") << "INSERT INTO StatusCounterTable (Counter) VALUES (2147483648);"
                                         << "CHECK constraint failed: StatusCounterTable.Counter: whole number";
        QTest::newRow("key blind to case") << "INSERT INTO GroupTable (GroupName) VALUES ('Sales'), ('SALES');"
                                           << "UNIQUE constraint failed: GroupTable.GroupName";
        QTest::newRow("member of no user") << "PRAGMA foreign_keys = ON; INSERT INTO EmployeeGroupTable "
                                              "(EmployeeName, GroupName) VALUES ('Nobody', 'Nowhere');"
                                           << "FOREIGN KEY constraint failed";
    }
    void storeEnforcesForOtherPrograms()
    {
        QFETCH(QString, sql);
        QFETCH(QString, refusal);
        TestSupport::ExternalHolder shell(m_site.local("empty.mdb"), TestSupport::ExternalHolder::Hold::None);
        QVERIFY(shell.started());
        const QString printed = shell.run(sql);
        QVERIFY2(refusal.isEmpty() ? printed.isEmpty() : printed.contains(refusal), qPrintable(printed));
        QCOMPARE(shell.run("SELECT total_changes();"), QString(refusal.isEmpty() ? "1" : "0"));  // a refusal leaves nothing
    }
};

QTEST_MAIN(TestSchema)
#include "tst_schema.moc"
