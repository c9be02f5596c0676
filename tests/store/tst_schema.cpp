// The shape of a new database: tables, fields, indexes and relations, and the
// rules the store itself enforces on every program that writes the file.
#include "StoreFixtures.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QTest>

#include <algorithm>
#include <memory>

using namespace StoreFixtures;
using TestSupport::ExternalHolder;

namespace {

// Values for the fields a row cannot do without (required or key, no default),
// so a probe can insert a row while it looks at one other field.
QVariantMap fillersFor(const QString &table, const QString &except = QString())
{
    QVariantMap values;
    for (const FieldRow &f : expectedFields()) {
        if (f.table != table || f.name == except || !(f.required || f.primary) || !f.defaultValue.isEmpty())
            continue;
        values.insert(f.name, f.type == QLatin1String("Text") ? QVariant(QStringLiteral("x")) : QVariant(1));
    }
    return values;
}

// Inserts a row and takes it back again; returns 0 or the failure number.
int probeInsert(Database &db, const QString &table, const QVariantMap &values)
{
    db.execute(QStringLiteral("SAVEPOINT probe"));
    QVariantMap row = fillersFor(table);
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        row.insert(it.key(), it.value());
    const int failure = failureOf([&] { db.addRow(table, row); });
    db.execute(QStringLiteral("ROLLBACK TO probe"));
    db.execute(QStringLiteral("RELEASE probe"));
    return failure;
}

int probeValue(Database &db, const FieldRow &f, const QVariant &value)
{
    return probeInsert(db, f.table, {{f.name, value}});
}

// What a row added without the field holds in it, as quote() prints it.
QString defaultHeld(Database &db, const FieldRow &f)
{
    db.execute(QStringLiteral("SAVEPOINT probe"));
    QString held;
    const int failure = failureOf([&] {
        const qint64 id = db.addRow(f.table, fillersFor(f.table, f.name));
        held = db.scalar(QStringLiteral("SELECT quote(%1) FROM %2 WHERE rowid = ?")
                             .arg(Database::quoteIdentifier(f.name), Database::quoteIdentifier(f.table)),
                         {id})
                   .toString();
    });
    db.execute(QStringLiteral("ROLLBACK TO probe"));
    db.execute(QStringLiteral("RELEASE probe"));
    return failure ? QStringLiteral("refused") : held;
}

// Text compares blind to case in every text field, not only in keys.
bool comparesBlindToCase(Database &db, const FieldRow &f)
{
    db.execute(QStringLiteral("SAVEPOINT probe"));
    QVariantMap row = fillersFor(f.table);
    row.insert(f.name, QStringLiteral("MiXed"));
    qint64 found = -1;
    failureOf([&] {
        const qint64 id = db.addRow(f.table, row);
        found = db.scalar(QStringLiteral("SELECT count(*) FROM %1 WHERE rowid = ? AND %2 = ?")
                              .arg(Database::quoteIdentifier(f.table), Database::quoteIdentifier(f.name)),
                          {id, QStringLiteral("mIxED")})
                    .toLongLong();
    });
    db.execute(QStringLiteral("ROLLBACK TO probe"));
    db.execute(QStringLiteral("RELEASE probe"));
    return found == 1;
}

QString expectedDefaultHeld(const FieldRow &f)
{
    if (f.autoIncrement)
        return QStringLiteral("1");
    if (f.defaultValue.isEmpty())
        return f.required || f.primary ? QStringLiteral("refused") : QStringLiteral("NULL");
    const bool text = f.type == QLatin1String("Text") || f.type == QLatin1String("Memo");
    if (text && !f.defaultValue.startsWith(QLatin1Char('\'')))
        return QLatin1Char('\'') + f.defaultValue + QLatin1Char('\'');  // a number default in a text field
    if (f.type == QLatin1String("Double"))
        return f.defaultValue + QStringLiteral(".0");
    return f.defaultValue;
}

QString listing(Database &db, const QString &sql)
{
    QStringList rows;
    Recordset rs = db.query(sql);
    for (; !rs.eof(); rs.moveNext())
        rows << rs.value(0).toString();
    return rows.join(QStringLiteral(", "));
}

// Users Ann (Sales and Everyone) and Bob (Everyone) beside the seeded Guest,
// each with settings; Ann and Bob track each other, Guest tracks Ann and Bob
// tracks Guest.
void addBoard(Database &db)
{
    db.addRow(QStringLiteral("GroupTable"), {{QStringLiteral("GroupName"), QStringLiteral("Sales")}});
    const QList<QStringList> users = {{QStringLiteral("Ann"), QStringLiteral("Sales")},
                                      {QStringLiteral("Bob"), QStringLiteral("Everyone")}};
    for (const QStringList &u : users) {
        db.addRow(QStringLiteral("EmployeeTable"), {{QStringLiteral("Name"), u[0]}, {QStringLiteral("UID"), u[0]}});
        db.addRow(QStringLiteral("EmployeeSettingsTable"),
                  {{QStringLiteral("Name"), u[0]}, {QStringLiteral("DefaultGroup"), u[1]}});
        db.addRow(QStringLiteral("EmployeeGroupTable"),
                  {{QStringLiteral("EmployeeName"), u[0]}, {QStringLiteral("GroupName"), QStringLiteral("Everyone")}});
    }
    db.addRow(QStringLiteral("EmployeeGroupTable"),
              {{QStringLiteral("EmployeeName"), QStringLiteral("Ann")}, {QStringLiteral("GroupName"), QStringLiteral("Sales")}});
    const QList<QStringList> tracking = {{QStringLiteral("Ann"), QStringLiteral("Bob")},
                                         {QStringLiteral("Bob"), QStringLiteral("Ann")},
                                         {QStringLiteral("Guest"), QStringLiteral("Ann")},
                                         {QStringLiteral("Bob"), QStringLiteral("Guest")}};
    for (const QStringList &t : tracking)
        db.addRow(QStringLiteral("EmployeeStatusTracking"), {{QStringLiteral("Tracker"), t[0]},
                                                             {QStringLiteral("Trackee"), t[1]},
                                                             {QStringLiteral("TrackeeStatus"), QStringLiteral("In")}});
}

}  // namespace

class TestSchema : public QObject {
    Q_OBJECT

    std::unique_ptr<TestSupport::Site> m_site;
    Database m_db;  // structure only, relations off: each probe looks at one table

private slots:
    void initTestCase()
    {
        m_site = std::make_unique<TestSupport::Site>();
        m_db = structureOnly(m_site->local(QStringLiteral("shape.mdb")));
        m_db.execute(QStringLiteral("PRAGMA foreign_keys = OFF"));
    }

    void cleanupTestCase()
    {
        m_db.close();
        m_site.reset();
    }

    void tablesInCreationOrder()
    {
        QCOMPARE(m_db.tableNames(), expectedTableOrder());
    }

    void tableHasNoOtherFieldsOrIndexes_data()
    {
        QTest::addColumn<QString>("table");
        for (const QString &t : expectedTableOrder())
            QTest::newRow(qPrintable(t)) << t;
    }
    void tableHasNoOtherFieldsOrIndexes()
    {
        QFETCH(QString, table);
        const auto fields = expectedFields();
        const auto indexes = expectedIndexes();
        const auto inTable = [&](const auto &row) { return row.table == table; };
        QCOMPARE(m_db.fieldNames(table).size(), int(std::count_if(fields.cbegin(), fields.cend(), inTable)));
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT count(*) FROM pragma_index_list(?)"), {table}).toInt(),
                 int(std::count_if(indexes.cbegin(), indexes.cend(), inTable)));
    }

    void fieldShape_data()
    {
        QTest::addColumn<int>("row");
        const auto fields = expectedFields();
        for (int i = 0; i < fields.size(); ++i)
            QTest::newRow(qPrintable(fields[i].table + QLatin1Char('.') + fields[i].name)) << i;
    }
    void fieldShape()
    {
        QFETCH(int, row);
        const FieldRow f = expectedFields().at(row);
        Recordset rs = m_db.query(QStringLiteral("SELECT name, type, \"notnull\", dflt_value FROM pragma_table_info(?) "
                                                 "WHERE cid = ?"),
                                  {f.table, f.position});
        QVERIFY(!rs.eof());
        QCOMPARE(rs.text(QStringLiteral("name")), f.name);
        QCOMPARE(rs.text(QStringLiteral("type")), expectedDeclaredType(f));
        QCOMPARE(rs.value(QStringLiteral("notnull")).toInt(), f.required || f.primary ? 1 : 0);
        QCOMPARE(rs.text(QStringLiteral("dflt_value")), f.defaultValue);
        rs.close();

        QCOMPARE(defaultHeld(m_db, f), expectedDefaultHeld(f));
        QCOMPARE(probeValue(m_db, f, QVariant()) != 0, f.required || f.primary);

        if (f.type == QLatin1String("Text")) {
            QCOMPARE(probeValue(m_db, f, QString(f.size, QLatin1Char('x'))), 0);
            QVERIFY(probeValue(m_db, f, QString(f.size + 1, QLatin1Char('x'))) != 0);
            QCOMPARE(probeValue(m_db, f, QString(f.size, QChar(0x00e9))), 0);  // characters, not bytes
        }
        if (f.type == QLatin1String("Memo"))
            QCOMPARE(probeValue(m_db, f, QString(100000, QLatin1Char('m'))), 0);
        if (f.type == QLatin1String("Text") || f.type == QLatin1String("Memo")) {
            QCOMPARE(probeValue(m_db, f, QStringLiteral("")) == 0, f.zeroLength);
            QVERIFY(comparesBlindToCase(m_db, f));
        }

        QList<QPair<QVariant, bool>> numbers;  // value, accepted
        if (f.type == QLatin1String("Integer"))
            numbers = {{32767, true}, {-32768, true}, {32768, false}, {-32769, false}, {QStringLiteral("12"), true},
                       {QStringLiteral("twelve"), false}, {2.5, false}};
        if (f.type == QLatin1String("Long"))
            numbers = {{2147483647, true}, {qint64(-2147483648LL), true}, {qint64(2147483648LL), false},
                       {qint64(-2147483649LL), false}, {QStringLiteral("twelve"), false}};
        if (f.type == QLatin1String("Boolean"))
            numbers = {{0, true}, {1, true}, {true, true}, {2, false}, {-1, false}, {QStringLiteral("yes"), false}};
        if (f.type == QLatin1String("Double") || f.type == QLatin1String("Date/Time"))
            numbers = {{2.5, true}, {-45000.25, true}};
        for (const auto &[value, accepted] : numbers) {
            if (f.autoIncrement && value.toLongLong() < 1)
                continue;  // the row id of a message is never below 1
            QVERIFY2((probeValue(m_db, f, value) == 0) == accepted, qPrintable(value.toString()));
        }
    }

    void indexShape_data()
    {
        QTest::addColumn<int>("row");
        const auto indexes = expectedIndexes();
        for (int i = 0; i < indexes.size(); ++i)
            QTest::newRow(qPrintable(indexes[i].table + QLatin1Char('.') + indexes[i].name)) << i;
    }
    void indexShape()
    {
        QFETCH(int, row);
        const IndexRow i = expectedIndexes().at(row);
        const QString name = i.table + QLatin1Char('.') + i.name;
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT tbl_name FROM sqlite_master WHERE type = 'index' AND name = ?"), {name})
                     .toString(),
                 i.table);
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT \"unique\" FROM pragma_index_list(?) WHERE name = ?"), {i.table, name})
                     .toInt(),
                 i.unique || i.primary ? 1 : 0);
        QStringList fields;
        Recordset rs = m_db.query(QStringLiteral("SELECT name FROM pragma_index_info(?) ORDER BY seqno"), {name});
        for (; !rs.eof(); rs.moveNext())
            fields << rs.value(0).toString();
        QCOMPARE(fields, i.fields);
    }

    void keysAreBlindToCase_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QVariantMap>("first");
        QTest::addColumn<QVariantMap>("second");
        QTest::addColumn<int>("failure");
        const auto one = [](const char *field, const QVariant &v) { return QVariantMap{{QString::fromLatin1(field), v}}; };
        QTest::newRow("user name") << "EmployeeTable" << one("Name", "Guest") << one("Name", "guest") << 3022;
        QTest::newRow("user UID") << "EmployeeTable" << QVariantMap{{"Name", "a"}, {"UID", "Guest"}}
                                  << QVariantMap{{"Name", "b"}, {"UID", "GUEST"}} << 3022;
        QTest::newRow("logon id") << "EmployeeTable" << QVariantMap{{"Name", "a"}, {"NetWorkLogonID", "dom\\ann"}}
                                  << QVariantMap{{"Name", "b"}, {"NetWorkLogonID", "DOM\\Ann"}} << 3022;
        QTest::newRow("users without logon id") << "EmployeeTable" << one("Name", "a") << one("Name", "b") << 0;
        QTest::newRow("status is no key") << "EmployeeTable" << QVariantMap{{"Name", "a"}, {"Status", "In"}}
                                          << QVariantMap{{"Name", "b"}, {"Status", "in"}} << 0;
        QTest::newRow("group") << "GroupTable" << one("GroupName", "Everyone") << one("GroupName", "EVERYONE") << 3022;
        QTest::newRow("status type") << "StatusTypesTable" << one("Status", "In") << one("Status", "iN") << 3022;
        QTest::newRow("due back") << "DueBackTable" << one("DueBack", "Late") << one("DueBack", "LATE") << 3022;
        QTest::newRow("empty due back, once") << "DueBackTable" << one("DueBack", "") << one("DueBack", "Late") << 0;
        QTest::newRow("empty due back, twice") << "DueBackTable" << one("DueBack", "") << one("DueBack", "") << 3022;
        QTest::newRow("server") << "ServersTable" << one("UNCPath", "\\\\SRV\\BOARD\\") << one("UNCPath", "\\\\srv\\board\\")
                                << 3022;
        QTest::newRow("message id") << "MessagesTable" << one("MessageID", 5) << one("MessageID", 5) << 3022;
        QTest::newRow("membership pair") << "EmployeeGroupTable" << QVariantMap{{"EmployeeName", "Ann"}, {"GroupName", "Sales"}}
                                         << QVariantMap{{"EmployeeName", "ANN"}, {"GroupName", "sales"}} << 3022;
        QTest::newRow("user in two groups") << "EmployeeGroupTable"
                                            << QVariantMap{{"EmployeeName", "Ann"}, {"GroupName", "Sales"}}
                                            << QVariantMap{{"EmployeeName", "Ann"}, {"GroupName", "Support"}} << 0;
        QTest::newRow("settings of one user") << "EmployeeSettingsTable" << one("Name", "Ann") << one("Name", "ann") << 3022;
        QTest::newRow("log names repeat") << "TransactionLogTable" << one("Name", "Ann") << one("Name", "Ann") << 0;
    }
    void keysAreBlindToCase()
    {
        QFETCH(QString, table);
        QFETCH(QVariantMap, first);
        QFETCH(QVariantMap, second);
        QFETCH(int, failure);
        m_db.execute(QStringLiteral("SAVEPOINT pair"));
        QVariantMap a = fillersFor(table), b = fillersFor(table);
        a.insert(first);
        b.insert(second);
        const int firstFailure = failureOf([&] { m_db.addRow(table, a); });
        const int secondFailure = failureOf([&] { m_db.addRow(table, b); });
        m_db.execute(QStringLiteral("ROLLBACK TO pair"));
        m_db.execute(QStringLiteral("RELEASE pair"));
        QCOMPARE(firstFailure, 0);
        QCOMPARE(secondFailure, failure);
    }

    // Rules hold for any program: the sqlite3 shell writes the file with
    // none of our code loaded.
    void storeEnforcesForOtherPrograms_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("refusal");  // empty: accepted
        const QString n250(250, QLatin1Char('n')), n251(251, QLatin1Char('n'));
        const QString u64(64, QLatin1Char('u')), u65(65, QLatin1Char('u'));
        QTest::newRow("user name of 250") << "INSERT INTO EmployeeTable (Name) VALUES ('" + n250 + "');" << "";
        QTest::newRow("user name of 251") << "INSERT INTO EmployeeTable (Name) VALUES ('" + n251 + "');"
                                          << "CHECK constraint failed: EmployeeTable.Name: at most 250 characters";
        QTest::newRow("group of 250") << "INSERT INTO GroupTable (GroupName) VALUES ('" + n250 + "');" << "";
        QTest::newRow("group of 251") << "INSERT INTO GroupTable (GroupName) VALUES ('" + n251 + "');"
                                      << "CHECK constraint failed: GroupTable.GroupName: at most 250 characters";
        QTest::newRow("status of 251") << "INSERT INTO StatusTypesTable (Status) VALUES ('" + n251 + "');"
                                       << "CHECK constraint failed: StatusTypesTable.Status: at most 250 characters";
        QTest::newRow("due back of 251") << "INSERT INTO DueBackTable (DueBack) VALUES ('" + n251 + "');"
                                         << "CHECK constraint failed: DueBackTable.DueBack: at most 250 characters";
        QTest::newRow("server of 251") << "INSERT INTO ServersTable (UNCPath) VALUES ('" + n251 + "');"
                                       << "CHECK constraint failed: ServersTable.UNCPath: at most 250 characters";
        QTest::newRow("UID of 64") << "INSERT INTO EmployeeTable (Name, UID) VALUES ('a', '" + u64 + "');" << "";
        QTest::newRow("UID of 65") << "INSERT INTO EmployeeTable (Name, UID) VALUES ('a', '" + u65 + "');"
                                   << "CHECK constraint failed: EmployeeTable.UID: at most 64 characters";
        QTest::newRow("empty status") << "INSERT INTO EmployeeTable (Name, Status) VALUES ('a', '');"
                                      << "CHECK constraint failed: EmployeeTable.Status: zero-length text not allowed";
        QTest::newRow("text in a number") << "INSERT INTO EmployeeTable (Name, StatusCode) VALUES ('a', 'red');"
                                          << "CHECK constraint failed: EmployeeTable.StatusCode: whole number";
        QTest::newRow("16-bit overflow") << "INSERT INTO EmployeeTable (Name, StatusCode) VALUES ('a', 32768);"
                                         << "CHECK constraint failed: EmployeeTable.StatusCode: whole number";
        QTest::newRow("32-bit overflow") << "INSERT INTO StatusCounterTable (Counter) VALUES (2147483648);"
                                         << "CHECK constraint failed: StatusCounterTable.Counter: whole number";
        QTest::newRow("boolean 2") << "INSERT INTO GlobalSettingsTable (AllowMessaging) VALUES (2);"
                                   << "CHECK constraint failed: GlobalSettingsTable.AllowMessaging: 0 or 1";
        QTest::newRow("required Null") << "INSERT INTO GlobalSettingsTable (DatabaseReleaseVersion) VALUES (NULL);"
                                       << "NOT NULL constraint failed: GlobalSettingsTable.DatabaseReleaseVersion";
        QTest::newRow("key blind to case") << "INSERT INTO GroupTable (GroupName) VALUES ('Sales'), ('SALES');"
                                           << "UNIQUE constraint failed: GroupTable.GroupName";
        QTest::newRow("member of no user") << "PRAGMA foreign_keys = ON; "
                                              "INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES ('Nobody', 'Nowhere');"
                                           << "FOREIGN KEY constraint failed";
    }
    void storeEnforcesForOtherPrograms()
    {
        QFETCH(QString, sql);
        QFETCH(QString, refusal);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        structureOnly(file).close();
        QString printed;
        {
            ExternalHolder shell(file, ExternalHolder::Hold::None);
            QVERIFY(shell.started());
            printed = shell.run(sql);
        }
        Database db = Database::open(file);
        const qint64 rows = db.scalar(QStringLiteral("SELECT (SELECT count(*) FROM EmployeeTable) + "
                                                     "(SELECT count(*) FROM StatusTypesTable) + (SELECT count(*) FROM DueBackTable) + "
                                                     "(SELECT count(*) FROM ServersTable) + (SELECT count(*) FROM StatusCounterTable) + "
                                                     "(SELECT count(*) FROM GlobalSettingsTable) + (SELECT count(*) FROM EmployeeGroupTable) + "
                                                     "(SELECT count(*) FROM GroupTable)"))
                                .toLongLong();
        if (refusal.isEmpty()) {
            QCOMPARE(printed, QString());
            QCOMPARE(rows, 1);
        } else {
            QVERIFY2(printed.contains(refusal), qPrintable(printed));
            QCOMPARE(rows, 0);
        }
    }

    void relationsCarryRenamesAndDeletes_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariantList>("params");
        QTest::addColumn<QString>("memberships");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("tracking");
        QTest::newRow("nothing changed") << "SELECT 1" << QVariantList{}
                                         << "Ann/Everyone, Ann/Sales, Bob/Everyone"
                                         << "Ann/Sales, Bob/Everyone, Guest/Everyone"
                                         << "Ann>Bob, Bob>Ann, Bob>Guest, Guest>Ann";
        QTest::newRow("rename a user") << "UPDATE EmployeeTable SET Name = ? WHERE Name = ?" << QVariantList{"Anna", "Ann"}
                                       << "Anna/Everyone, Anna/Sales, Bob/Everyone"
                                       << "Anna/Sales, Bob/Everyone, Guest/Everyone"
                                       << "Anna>Bob, Bob>Anna, Bob>Guest, Guest>Anna";
        QTest::newRow("delete a user") << "DELETE FROM EmployeeTable WHERE Name = ?" << QVariantList{"ann"}
                                       << "Bob/Everyone" << "Bob/Everyone, Guest/Everyone" << "Bob>Guest";
        QTest::newRow("delete the tracked and tracking") << "DELETE FROM EmployeeTable WHERE Name = ?" << QVariantList{"Bob"}
                                                         << "Ann/Everyone, Ann/Sales" << "Ann/Sales, Guest/Everyone"
                                                         << "Guest>Ann";
        QTest::newRow("rename a group") << "UPDATE GroupTable SET GroupName = ? WHERE GroupName = ?"
                                        << QVariantList{"Field Sales", "Sales"}
                                        << "Ann/Everyone, Ann/Field Sales, Bob/Everyone"
                                        << "Ann/Field Sales, Bob/Everyone, Guest/Everyone"
                                        << "Ann>Bob, Bob>Ann, Bob>Guest, Guest>Ann";
        // A default group is a relation too: its settings rows go with it.
        QTest::newRow("delete a group") << "DELETE FROM GroupTable WHERE GroupName = ?" << QVariantList{"Sales"}
                                        << "Ann/Everyone, Bob/Everyone" << "Bob/Everyone, Guest/Everyone"
                                        << "Ann>Bob, Bob>Ann, Bob>Guest, Guest>Ann";
    }
    void relationsCarryRenamesAndDeletes()
    {
        QFETCH(QString, sql);
        QFETCH(QVariantList, params);
        QFETCH(QString, memberships);
        QFETCH(QString, settings);
        QFETCH(QString, tracking);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = Database::open(file);
        addBoard(db);
        QCOMPARE(failureOf([&] { db.execute(sql, params); }), 0);
        QCOMPARE(listing(db, "SELECT EmployeeName || '/' || GroupName FROM EmployeeGroupTable ORDER BY 1"), memberships);
        QCOMPARE(listing(db, "SELECT Name || '/' || DefaultGroup FROM EmployeeSettingsTable ORDER BY 1"), settings);
        QCOMPARE(listing(db, "SELECT Tracker || '>' || Trackee FROM EmployeeStatusTracking ORDER BY 1"), tracking);
    }

    void relationsRefuseOrphans_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QVariantMap>("values");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("membership of an unknown user")
            << "EmployeeGroupTable" << QVariantMap{{"EmployeeName", "Nobody"}, {"GroupName", "Everyone"}} << false;
        QTest::newRow("membership of an unknown group")
            << "EmployeeGroupTable" << QVariantMap{{"EmployeeName", "Guest"}, {"GroupName", "Nowhere"}} << false;
        QTest::newRow("settings of an unknown user") << "EmployeeSettingsTable" << QVariantMap{{"Name", "Nobody"}} << false;
        QTest::newRow("settings with an unknown group")
            << "EmployeeSettingsTable" << QVariantMap{{"Name", "Guest"}, {"DefaultGroup", "Nowhere"}} << false;
        QTest::newRow("tracking an unknown user")
            << "EmployeeStatusTracking" << QVariantMap{{"Tracker", "Guest"}, {"Trackee", "Nobody"}} << false;
        QTest::newRow("tracked by an unknown user")
            << "EmployeeStatusTracking" << QVariantMap{{"Tracker", "Nobody"}, {"Trackee", "Guest"}} << false;
        QTest::newRow("a due back the list lacks")
            << "EmployeeTable" << QVariantMap{{"Name", "Ann"}, {"DueBack", "Next Tuesday"}} << true;
    }
    void relationsRefuseOrphans()
    {
        QFETCH(QString, table);
        QFETCH(QVariantMap, values);
        QFETCH(bool, accepted);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = Database::open(file);
        if (table == QLatin1String("EmployeeSettingsTable"))
            db.execute(QStringLiteral("DELETE FROM EmployeeSettingsTable"));  // room for Guest's one row
        QCOMPARE(failureOf([&] { db.addRow(table, values); }) == 0, accepted);
    }

    void dueBackListIsNotEnforced()
    {
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = Database::open(file);
        db.execute(QStringLiteral("UPDATE EmployeeTable SET DueBack = ? WHERE Name = ?"), {"Late this Morning", "Guest"});
        db.execute(QStringLiteral("DELETE FROM DueBackTable WHERE DueBack = ?"), {"Late this Morning"});
        QCOMPARE(db.scalar(QStringLiteral("SELECT DueBack FROM EmployeeTable WHERE Name = 'Guest'")).toString(),
                 QStringLiteral("Late this Morning"));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM DueBackTable")).toInt(), 26);
    }
};

QTEST_MAIN(TestSchema)
#include "tst_schema.moc"
