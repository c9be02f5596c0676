// Creating a new database: the rows it starts with, and a file that appears
// complete or not at all, never over an existing one.
#include "StoreFixtures.h"

#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/modCreateData.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

#include <unistd.h>

using namespace StoreFixtures;
using TestSupport::ExternalHolder;

namespace {

QByteArray contentOf(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeFile(const QString &file, const QByteArray &content)
{
    QFile f(file);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(content);
}

QStringList folderListing(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

// The machine's name as half-built files carry it.
QString hostTag()
{
    QString host = QSysInfo::machineHostName();
    for (QChar &c : host)
        if (!c.isLetterOrNumber() && c != QLatin1Char('.'))
            c = QLatin1Char('_');
    return host;
}

// The id of a process that has ended.
qint64 deadProcessId()
{
    QProcess p;
    p.start(QStringLiteral("true"), {});
    p.waitForStarted();
    const qint64 pid = p.processId();
    p.waitForFinished();
    return pid;
}

QStringList quoted(const QStringList &texts)
{
    QStringList out;
    for (const QString &t : texts)
        out << QLatin1Char('\'') + t + QLatin1Char('\'');
    return out;
}

}  // namespace

class TestCreateData : public QObject {
    Q_OBJECT

private slots:
    void newDatabaseRowCounts_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("rows");
        QTest::newRow("AdminSettingsTable") << "AdminSettingsTable" << 1;
        QTest::newRow("DueBackTable") << "DueBackTable" << 27;
        QTest::newRow("EmployeeGroupTable") << "EmployeeGroupTable" << 0;  // Guest is in no group
        QTest::newRow("EmployeeSettingsTable") << "EmployeeSettingsTable" << 1;
        QTest::newRow("EmployeeStatusTracking") << "EmployeeStatusTracking" << 0;
        QTest::newRow("EmployeeTable") << "EmployeeTable" << 1;
        QTest::newRow("GlobalSettingsTable") << "GlobalSettingsTable" << 1;
        QTest::newRow("GroupTable") << "GroupTable" << 1;
        QTest::newRow("ImportErrorLog") << "ImportErrorLog" << 0;
        QTest::newRow("MessagesTable") << "MessagesTable" << 0;
        QTest::newRow("NewUserDefaultsTable") << "NewUserDefaultsTable" << 1;
        QTest::newRow("ServersTable") << "ServersTable" << 0;
        QTest::newRow("StatusCounterTable") << "StatusCounterTable" << 1;
        QTest::newRow("StatusTypesTable") << "StatusTypesTable" << 3;
        QTest::newRow("TransactionLogTable") << "TransactionLogTable" << 0;
        QTest::newRow("UserErrorLog") << "UserErrorLog" << 0;
    }
    void newDatabaseRowCounts()
    {
        QFETCH(QString, table);
        QFETCH(int, rows);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local(QStringLiteral("tavello.mdb"))), 0);
        QVERIFY(Msg::transcript().isEmpty());
        Database db = Database::open(site.local(QStringLiteral("tavello.mdb")));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(Database::quoteIdentifier(table))).toInt(), rows);
    }

    void newDatabaseValues_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QStringList>("values");  // in row order, as quote() prints them
        QTest::newRow("due backs in order")
            << "DueBackTable" << "DueBack"
            << quoted({"07:00 am", "07:30 am", "08:00 am", "08:30 am", "09:00 am", "09:30 am", "10:00 am", "10:30 am",
                       "11:00 am", "11:30 am", "12:00 (Midday)", "12:30 pm", "13:00 (1 pm)", "13:30 (1:30 pm)",
                       "14:00 (2 pm)", "14:30 (2:30 pm)", "15:00 (3 pm)", "15:30 (3:30 pm)", "16:00 (4 pm)",
                       "16:30 (4:30 pm)", "17:00 (5 pm)", "17:30 (5:30 pm)", "18:00 (6 pm)", "18:30 (6:30 pm)",
                       "Late this Morning", "Early this Afternoon", "Late this Afternoon"});
        QTest::newRow("status names") << "StatusTypesTable" << "Status" << quoted({"Out", "Busy", "In"});
        QTest::newRow("status colours") << "StatusTypesTable" << "StatusCode" << QStringList{"1", "2", "3"};
        QTest::newRow("status on toolbar") << "StatusTypesTable" << "OnToolbar" << QStringList{"1", "1", "1"};
        QTest::newRow("status buttons") << "StatusTypesTable" << "ButtonText" << quoted({"Out", "Busy", "In"});
        QTest::newRow("status tips") << "StatusTypesTable" << "ToolTipText"
                                     << quoted({"Set status to Out", "Set status to Busy", "Set status to In"});
        QTest::newRow("status unprotected") << "StatusTypesTable" << "ProtectedStatus" << QStringList{"0", "0", "0"};
        QTest::newRow("group") << "GroupTable" << "GroupName" << quoted({"Everyone"});
        QTest::newRow("user name") << "EmployeeTable" << "Name" << quoted({"Guest"});
        QTest::newRow("user UID") << "EmployeeTable" << "UID" << quoted({"Guest"});
        QTest::newRow("user status") << "EmployeeTable" << "Status" << quoted({"Please Set"});
        QTest::newRow("user colour") << "EmployeeTable" << "StatusCode" << QStringList{"4"};
        QTest::newRow("user active flag") << "EmployeeTable" << "ActiveFlag" << quoted({"Not Set"});
        QTest::newRow("settings name") << "EmployeeSettingsTable" << "Name" << quoted({"Guest"});
        QTest::newRow("settings picture") << "EmployeeSettingsTable" << "PictureFileName" << quoted({"guest.jpg"});
        QTest::newRow("settings group") << "EmployeeSettingsTable" << "DefaultGroup" << quoted({"Everyone"});
        QTest::newRow("format generation") << "GlobalSettingsTable" << "DatabaseVersion" << QStringList{"2005"};
        QTest::newRow("release") << "GlobalSettingsTable" << "DatabaseReleaseVersion" << quoted({"2005"});
        QTest::newRow("new user refresh") << "NewUserDefaultsTable" << "RefreshRate" << QStringList{"5"};
        QTest::newRow("console node") << "AdminSettingsTable" << "LastSelectedNode" << quoted({"Users"});
        QTest::newRow("user counter") << "StatusCounterTable" << "Counter" << QStringList{"1"};
        QTest::newRow("columns counter") << "StatusCounterTable" << "ExtraColumnsCounter" << QStringList{"0"};
    }
    void newDatabaseValues()
    {
        QFETCH(QString, table);
        QFETCH(QString, field);
        QFETCH(QStringList, values);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.local(QStringLiteral("tavello.mdb"))), 0);
        Database db = Database::open(site.local(QStringLiteral("tavello.mdb")));
        QCOMPARE(columnValues(db, table, field), values);
    }

    void otherProgramsReadTheNewFile()
    {
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(site.shareUnc() + QStringLiteral("tavello.mdb")), 0);
        QCOMPARE(folderListing(site.shareFolder()), QStringList{"tavello.mdb"});  // nothing half-built left beside it
        ExternalHolder shell(site.local(QStringLiteral("tavello.mdb")), ExternalHolder::Hold::None);
        QVERIFY(shell.started());
        QCOMPARE(shell.run(QStringLiteral("PRAGMA integrity_check; PRAGMA foreign_key_check; "
                                          "SELECT count(*) FROM DueBackTable; SELECT Status FROM StatusTypesTable ORDER BY StatusCode;")),
                 QStringLiteral("ok\n27\nOut\nBusy\nIn"));
    }

    void existingFileIsNeverTouched_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("a board database") << "board";
        QTest::newRow("a text file") << "text";
        QTest::newRow("an empty file") << "empty";
        QTest::newRow("a link to nowhere") << "dangling";
    }
    void existingFileIsNeverTouched()
    {
        QFETCH(QString, kind);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        if (kind == QLatin1String("board")) {
            QCOMPARE(CreateDatabase(file), 0);
            Database db = Database::open(file);
            db.addRow(QStringLiteral("GroupTable"), {{QStringLiteral("GroupName"), QStringLiteral("Sales")}});
        } else if (kind == QLatin1String("text")) {
            writeFile(file, "Name,Status\nAnn,In\n");
        } else if (kind == QLatin1String("empty")) {
            writeFile(file, QByteArray());
        } else {
            QVERIFY(QFile::link(site.local(QStringLiteral("moved.mdb")), file));
        }
        const QByteArray before = contentOf(file);
        const QStringList listing = folderListing(site.shareFolder());

        QCOMPARE(CreateDatabase(file), 3204);

        QCOMPARE(contentOf(file), before);
        QCOMPARE(folderListing(site.shareFolder()), listing);
        QCOMPARE(QFileInfo(file).isSymLink(), kind == QLatin1String("dangling"));
        QVERIFY(!QFileInfo::exists(site.local(QStringLiteral("moved.mdb"))));
        QVERIFY(Msg::transcript().isEmpty());
    }

    void leftoversOfCrashedCreations_data()
    {
        QTest::addColumn<QString>("leaf");
        QTest::addColumn<int>("ageSeconds");
        QTest::addColumn<bool>("kept");
        const QString here = hostTag();
        const QString dead = QString::number(deadProcessId());
        QTest::newRow("this machine, program gone") << "tavello.mdb.new-" + here + "-" + dead << 0 << false;
        QTest::newRow("its journal") << "tavello.mdb.new-" + here + "-" + dead + "-journal" << 0 << false;
        QTest::newRow("the name this run uses")
            << "tavello.mdb.new-" + here + "-" + QString::number(::getpid()) << 0 << false;
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
        const QString leftover = site.local(leaf);
        writeFile(leftover, QByteArray("SQLite format 3\0half", 20));
        if (ageSeconds) {
            QFile f(leftover);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
        }
        QCOMPARE(CreateDatabase(site.local(QStringLiteral("tavello.mdb"))), 0);
        QCOMPARE(QFileInfo::exists(leftover), kept);
        Database db = Database::open(site.local(QStringLiteral("tavello.mdb")));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM DueBackTable")).toInt(), 27);
    }

    void failuresAreReturnedNotShown_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("failure");
        QTest::newRow("missing folder") << "\\\\TESTSRV\\SHARE\\nowhere\\tavello.mdb" << 3044;
        QTest::newRow("unknown share") << "\\\\ELSEWHERE\\SHARE\\tavello.mdb" << 3044;
        QTest::newRow("bad file name") << "\\\\TESTSRV\\SHARE\\tav*ello.mdb" << 3055;
    }
    void failuresAreReturnedNotShown()
    {
        QFETCH(QString, path);
        QFETCH(int, failure);
        TestSupport::Site site;
        QCOMPARE(CreateDatabase(path), failure);
        QVERIFY(Msg::transcript().isEmpty());
        QCOMPARE(folderListing(site.shareFolder()), QStringList());
    }

    // Seeding a file that has its rows already: every refused row is told
    // once, and the rows that are missing are still written.
    void seedingTellsEachFailureAndGoesOn_data()
    {
        QTest::addColumn<QStringList>("removals");
        QTest::addColumn<int>("messages");
        QTest::newRow("nothing missing") << QStringList{} << 30;
        QTest::newRow("one due back and one status missing")
            << QStringList{"DELETE FROM DueBackTable WHERE DueBack = '12:00 (Midday)'", "DELETE FROM StatusTypesTable WHERE Status = 'Busy'"}
            << 28;
        QTest::newRow("settings rows missing")
            << QStringList{"DELETE FROM AdminSettingsTable", "DELETE FROM GlobalSettingsTable", "DELETE FROM StatusCounterTable"}
            << 30;
    }
    void seedingTellsEachFailureAndGoesOn()
    {
        QFETCH(QStringList, removals);
        QFETCH(int, messages);
        TestSupport::Site site;
        const QString file = site.local(QStringLiteral("tavello.mdb"));
        QCOMPARE(CreateDatabase(file), 0);
        Database db = Database::open(file);
        for (const QString &sql : removals)
            db.execute(sql);
        modCreateData(db);

        const auto shown = Msg::transcript();
        QCOMPARE(shown.size(), messages);
        for (const Msg::Shown &box : shown) {
            QVERIFY2(box.text.startsWith(QLatin1String("Error: 3022 - ")), qPrintable(box.text));
            QCOMPARE(box.buttons, Msg::Buttons::OK);
            QCOMPARE(box.icon, Msg::Icon::None);
        }
        for (const char *table : {"AdminSettingsTable", "GroupTable", "EmployeeTable", "EmployeeSettingsTable",
                                  "GlobalSettingsTable", "NewUserDefaultsTable", "StatusCounterTable"})
            QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(QLatin1String(table))).toInt(), 1);
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM DueBackTable")).toInt(), 27);
        QCOMPARE(columnValues(db, QStringLiteral("StatusTypesTable"), QStringLiteral("Status")).size(), 3);
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM DueBackTable WHERE DueBack = '12:00 (Midday)'")).toInt(), 1);
    }
};

QTEST_MAIN(TestCreateData)
#include "tst_createdata.moc"
