// The console's start and end: first start, the failure dispatch of the first
// open reached through real conditions, the older-file path, the reminders.
#include "console/frmMain.h"
#include "core/Admin1.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/CreateDB.h"
#include "support/HeldDuring.h"
#include "support/TestSupport.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <optional>
#include <unistd.h>

using TestSupport::ExternalHolder;

namespace {

const QString Share = QStringLiteral("\\\\TESTSRV\\SHARE\\");
const QString App = QStringLiteral(" TAVELLO Pro 2006-07D (Admin) - ");

// Every message shown, as "title|text".
QStringList shown()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + "|" + s.text;
    return out;
}

int rowCount(const QString &localFile, const QString &table)
{
    Database db = Database::open(localFile);
    return db.scalar("SELECT count(*) FROM " + Database::quoteIdentifier(table)).toInt();
}

void overwrite(const QString &file, qint64 at, const QByteArray &bytes)
{
    QFile f(file);
    QVERIFY(f.open(QIODevice::ReadWrite));  // made if missing
    f.seek(at);
    f.write(bytes);
}

}  // namespace

class TestStartup : public QObject {
    Q_OBJECT

    QStringList m_dialogs;  // shown modally, each closed with Cancel

private slots:
    void init()
    {
        m_dialogs.clear();
        Modal::setHandler([this](QDialog *d) {
            m_dialogs << QString::fromLatin1(d->metaObject()->className());
            d->reject();
        });
    }

    // Each row of the first open's dispatch, reached through its real condition.
    void firstOpenDispatch_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("dataPath");
        QTest::addColumn<QStringList>("messages");  // exact, as "title|text"
        QTest::addColumn<QString>("dialog");        // dialog shown modally, if any
        QTest::addColumn<bool>("ends");
        const QString dbErr = App + " - Database Error|";
        const auto badPath = [](const QString &path) {
            return QStringList{"Database Not Found|The path " + path + " appears to be incorrect.\rPress OK to edit the Database Path."};
        };
        QTest::newRow("3024 missing file: created silently") << "none" << Share << QStringList() << "" << false;
        QTest::newRow("53 file not found, path window cancelled") << "dangling" << Share
            << QStringList{dbErr + "File not found: '" + Share + "tavello.mdb' points to a file that does not exist.\r"
                                   "The database could not be found at the location specified in the tavello.ini file. "} << "frmDataPath" << true;
        QTest::newRow("3044 bad path") << "none" << Share + "nowhere\\" << badPath(Share + "nowhere\\") << "frmDataPath" << true;
        QTest::newRow("3044 unknown server") << "none" << "\\\\NOSERVER\\SHARE\\" << badPath("\\\\NOSERVER\\SHARE\\") << "frmDataPath" << true;
        QTest::newRow("3055 bad file name") << "none" << Share + "a|b\\" << badPath(Share + "a|b\\") << "frmDataPath" << true;
        QTest::newRow("3024, folder cannot be written") << "unchangeable" << ""
            << QStringList{dbErr + "The database <program>/tavello.mdb could not be created (error 3044).\r"
                                   "Make sure that the folder exists and can be written to, or choose another database path."}
            << "" << false;
        QTest::newRow("3049 damaged") << "damaged" << Share
            << QStringList{dbErr + "The database file is damaged (database disk image is malformed).\r"
                                   "The database is damaged and must be repaired.  Probable cause - someone switched off or crashed "
                                   "their PC whilst updating the database on the server."} << "" << true;
        QTest::newRow("3343 foreign file, repair cancelled") << "foreign" << Share
            << QStringList{dbErr + "Unrecognized database format: the file is not a database of this program.\r"
                                   "This error indicates an immediate database rebuild / repair is required. "
                                   "Please ensure all users are logged OUT, & press OK to begin the repair.",
                           dbErr + "Unable to continue. The database must be repaired first."} << "frmRepair" << true;
        QTest::newRow("other: written by a newer store") << "newer" << Share
            << QStringList{App + " - Database Init Error|Err: 1 - unsupported file format"} << "" << true;
        // A drive-letter path is warned about, and the console carries on without a database.
        QTest::newRow("drive letter") << "none" << "G:\\Apps\\Tavello"
            << QStringList{App + "|The UNC path is missing from the tavello.ini file on the server. \r"
                                 "Please select the File / DataPath menu item to rectify this problem."} << "" << false;
    }
    void firstOpenDispatch()
    {
        QFETCH(QString, condition);
        QFETCH(QString, dataPath);
        QFETCH(QStringList, messages);
        QFETCH(QString, dialog);
        QFETCH(bool, ends);
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", dataPath));
        const QString file = site.local("tavello.mdb");
        std::optional<TestSupport::Unchangeable> readOnly;
        if (condition == "unchangeable" && !readOnly.emplace(site.programFolder()).ok())
            QSKIP("no way to make a folder unchangeable here");
        if (condition == "dangling")
            QVERIFY(QFile::link(site.local("moved-away.mdb"), file));
        else if (condition == "foreign")
            overwrite(file, 0, QByteArray("This is a spreadsheet, not a board.\n").repeated(100));
        else if (condition != "none" && condition != "unchangeable")
            QCOMPARE(CreateDatabase(file), 0);
        if (condition == "damaged")
            overwrite(file, 100, QByteArray(3000, '\x33'));
        else if (condition == "newer")
            overwrite(file, 44, QByteArray("\x00\x00\x00\x09", 4));  // a schema format this store cannot read
        QFile f(file);
        const QByteArray before = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        f.close();
        gstrAppPath = site.programFolder() + "/";
        InitializeLocalDatabase();

        for (QString &m : messages)
            m.replace("<program>", site.programFolder());
        QCOMPARE(shown(), messages);
        QCOMPARE(m_dialogs, dialog.isEmpty() ? QStringList() : QStringList{dialog});
        QCOMPARE(gbolEnding, ends);
        if (!before.isEmpty()) {
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), before);  // never overwritten, truncated or replaced
        }
        if (condition == "none" && dataPath == Share)
            QCOMPARE(rowCount(file, "StatusTypesTable"), 3);
        if (condition == "unchangeable")
            QVERIFY(!gdbMain.isOpen() && !QFile::exists(site.programFolder() + "/tavello.mdb"));
        if (dataPath.startsWith("G:"))
            QVERIFY(!gdbMain.isOpen() && gbolIniFound);
    }

    // Whatever goes wrong with the database path, a start ends: after the
    // failure the Database Path window, and with Cancel there the console's
    // unload and a failure exit code. Run as a real process, which a start
    // that never ends would leave running.
    void startAlwaysEnds_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("dataPath");  // in tavello.ini
        QTest::addColumn<QString>("typed");     // into the Database Path window, "" = Cancel
        QTest::addColumn<QStringList>("lines"); // what the run showed, in order
        QTest::addColumn<int>("exitCode");
        const QString unc = "box " + App + "|The UNC path is missing from the tavello.ini file on the server. \\r"
                                           "Please select the File / DataPath menu item to rectify this problem.";
        const QString window = "window frmDataPath";
        QTest::newRow("drive letter, cancelled") << "database" << "G:\\Apps\\Tavello" << "" << QStringList{unc, window} << 1;
        QTest::newRow("drive letter, mended") << "database" << "G:\\Apps\\Tavello" << Share
                                              << QStringList{unc, window, "up"} << 0;
        QTest::newRow("program folder cannot be written") << "unchangeable" << "" << ""
            << QStringList{"box " + App + " - Database Error|The database <program>/tavello.mdb could not be created (error 3044).\\r"
                                          "Make sure that the folder exists and can be written to, or choose another database path.",
                           window} << 1;
        QTest::newRow("file missing behind its link, cancelled") << "dangling" << Share << ""
            << QStringList{"box " + App + " - Database Error|File not found: '" + Share + "tavello.mdb' points to a file that "
                                          "does not exist.\\rThe database could not be found at the location specified in the "
                                          "tavello.ini file. ",
                           window,
                           // the unload's own reminder: forceshutdown.ini was read before the open
                           "box " + App + "|REMINDER: on Admin Exit\\r\\n\\r\\nForce Shut Down has been activated and is still in "
                                          "effect.\\r\\n\\r\\nTo deactivate Force Shut Down,\\r\\nUse menu item Tools | Force Shut "
                                          "Down (when you restart ADMIN)."} << 1;
    }
    void startAlwaysEnds()
    {
        QFETCH(QString, condition);
        QFETCH(QString, dataPath);
        QFETCH(QString, typed);
        QFETCH(QStringList, lines);
        QFETCH(int, exitCode);
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", dataPath));
        if (condition == "dangling")
            QVERIFY(IniFile::writeKey(site.local("forceshutdown.ini"), "ForceShutDown", "ForceShutDown", "True"));
        std::optional<TestSupport::Unchangeable> readOnly;
        if (condition == "unchangeable" && !readOnly.emplace(site.programFolder()).ok())
            QSKIP("no way to make a folder unchangeable here");
        if (condition == "dangling")
            QVERIFY(QFile::link(site.local("moved-away.mdb"), site.local("tavello.mdb")));
        if (condition == "database")
            QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);

        QProcess console;
        console.start(STARTUP_HELPER, {site.programFolder(), typed});
        QVERIFY(console.waitForStarted());
        if (!console.waitForFinished(60000)) {
            console.kill();
            console.waitForFinished();
            QFAIL("the start never ended");
        }
        QCOMPARE(console.exitStatus(), QProcess::NormalExit);
        QStringList printed = QString::fromUtf8(console.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        for (QString &line : lines)
            line.replace("<program>", site.programFolder());
        QCOMPARE(printed, lines);
        QCOMPARE(console.exitCode(), exitCode);
        if (!typed.isEmpty())  // the mended path is kept
            QCOMPARE(IniFile::readKey(site.iniFile(), "DataPath", "DataPath"), typed);
    }

    // Another console's repair holds the file to itself for three seconds
    // while this one starts: the start waits, and comes up on the same
    // file with every row.
    void busyFileAcrossTheStart()
    {
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Share));
        const QString file = site.local("tavello.mdb");
        QCOMPARE(CreateDatabase(file), 0);
        {
            Database db = Database::open(file);
            for (const QString name : {"Ann", "Ben", "Cy"})
                db.execute("INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)", {name, name});
        }
        auto holder = std::make_unique<ExternalHolder>(file, ExternalHolder::Hold::Exclusive);
        QTimer release;
        release.setSingleShot(true);
        QObject::connect(&release, &QTimer::timeout, [&] { holder.reset(); });
        release.start(3000);
        QElapsedTimer clock;
        clock.start();
        frmMain w;
        QVERIFY(w.load());
        QVERIFY(clock.elapsed() >= 2900);
        QCOMPARE(shown(), QStringList());
        QCOMPARE(QDir(site.shareFolder()).entryList(QDir::Files), QStringList{"tavello.mdb"});  // nothing renamed
        QCOMPARE(QFileInfo(gdbMain.localPath()).canonicalFilePath(), QFileInfo(file).canonicalFilePath());
        QCOMPARE(w.userCountText(), QString(" 4 "));
        w.close();
        QCOMPARE(rowCount(file, "EmployeeTable"), 4);
    }

    // A user program holds the file for a moment just as the start reads
    // the global settings: the read waits for it; no box, logging stays on.
    void momentaryHoldAtStart()
    {
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Share));
        const QString file = site.local("tavello.mdb");
        QCOMPARE(CreateDatabase(file), 0);
        frmMain w;
        bool loaded = false;
        TestSupport::heldDuring(file, "moment", [&] { loaded = w.load(); }, 1, "SELECT * FROM GlobalSettingsTable");
        QVERIFY(loaded);
        QCOMPARE(shown(), QStringList());
        QVERIFY(gbolTransactionLog);
        w.close();
    }

    // Only a file that opened and read correctly and is no 2005 database is
    // set aside as older data; a busy one is waited for, an unreadable one
    // stays where it is.
    void olderDataOnlyWhenReadable_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QStringList>("messages");  // exact, as "title|text"
        QTest::addColumn<bool>("setAside");
        const QString cannot = App + " - Database Error|The database " + Share + "tavello.mdb could not be opened or read (error ";
        QTest::newRow("held by another program") << "exclusive" << QStringList() << false;
        QTest::newRow("writer waiting for a reader") << "pending" << QStringList() << false;
        QTest::newRow("damaged") << "damaged"
            << QStringList{cannot + "3049):\rThe database file is damaged (database disk image is malformed).\r\r"
                                    "The file has been left where it is."} << false;
        QTest::newRow("cannot be opened") << "unopenable"
            << QStringList{cannot + "3051):\rCannot open the file '<file>'. You may not have permission to use it.\r\r"
                                    "The file has been left where it is."} << false;
        QTest::newRow("no GlobalSettingsTable") << "no settings table"
            << QStringList{"Not a valid 2005 Tavello Database|Error: This is NOT a 2005 Tavello database."} << true;
    }
    void olderDataOnlyWhenReadable()
    {
        QFETCH(QString, condition);
        QFETCH(QStringList, messages);
        QFETCH(bool, setAside);
        TestSupport::Site site;
        site.useShareAsDataPath();
        const QString file = site.local("tavello.mdb");
        std::optional<ExternalHolder> reader, writer;
        QLocalServer socket;
        if (condition == "unopenable" && ::geteuid() == 0) {
            // Permissions do not stop root: a socket cannot be opened by anyone.
            QVERIFY(socket.listen(file));
        } else {
            QCOMPARE(CreateDatabase(file), 0);
        }
        if (condition == "unopenable" && ::geteuid() != 0)
            QVERIFY(QFile::setPermissions(file, {}));
        if (condition == "no settings table")
            Database::open(file).execute("DROP TABLE GlobalSettingsTable");
        if (condition == "damaged")
            overwrite(file, 100, QByteArray(3000, '\x33'));
        if (condition == "exclusive")
            QVERIFY(writer.emplace(file, ExternalHolder::Hold::Exclusive).started());
        if (condition == "pending") {
            QVERIFY(reader.emplace(file, ExternalHolder::Hold::Read).started());
            QVERIFY(writer.emplace(file, ExternalHolder::Hold::Write, "UPDATE GroupTable SET GroupName = GroupName;").started());
            writer->send("COMMIT;");  // holds the pending byte, waiting for the reader
            QTest::qWait(300);
        }
        QTimer release;  // the other program lets go while the check waits
        release.setSingleShot(true);
        QObject::connect(&release, &QTimer::timeout, [&] {
            reader.reset();
            if (condition == "exclusive")
                writer.reset();
        });
        release.start(2000);
        bool hourglassWhileWaiting = false;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] { hourglassWhileWaiting = hourglassWhileWaiting || Hourglass::shown(); });
        watch.start(100);
        if (setAside)
            Msg::queueAnswers({Msg::OK, Msg::No});  // no conversion: a blank database
        subCheckDBVersionForConversion();
        watch.stop();

        const QStringList older = QDir(site.shareFolder()).entryList({"tavello2002or2003backup*.mdb"});
        QCOMPARE(older.size(), setAside ? 1 : 0);
        QStringList expected = messages;
        for (QString &m : expected)
            m.replace("<file>", file);
        QCOMPARE(shown().mid(0, expected.size()), expected);
        if (condition == "exclusive" || condition == "pending") {
            QVERIFY(!release.isActive());  // the check lasted until the other program let go
            QVERIFY(hourglassWhileWaiting);
            QVERIFY(gdbMain.isOpen());
            QCOMPARE(gdbMain.scalar("SELECT count(*) FROM GroupTable").toInt(), 1);
        }
        gdbMain.close();
        writer.reset();
        if (condition == "unopenable" && ::geteuid() != 0)
            QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    }

    // A file that turns foreign while the console runs ends it, with the
    // unload of an ordinary exit: the settings are tried and the reminder shown.
    void foreignFileWhileRunning()
    {
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Share));
        QVERIFY(IniFile::writeKey(site.local("forceshutdown.ini"), "ForceShutDown", "ForceShutDown", "True"));
        const QString file = site.local("tavello.mdb");
        QCOMPARE(CreateDatabase(file), 0);
        frmMain w;
        QVERIFY(w.load());
        Msg::clearTranscript();
        overwrite(file, 0, QByteArray("This is a spreadsheet, not a board.\n").repeated(200));
        gRefreshListView("Groups");  // the list that opens the file afresh
        const QString foreign = "Unrecognized database format: the file is not a database of this program.";
        QCOMPARE(shown(), QStringList({
            App + " - Fatal Error in Global - subOpenDatabase event|" + foreign + "\rThe database is damaged and must be repaired.",
            App + "|Error (3343 ) in frmMain - subSaveAdminSettings event.\r" + foreign +
                "\r\rUnable to save Admin settings at this time. Press OK to exit.",
            App + "|REMINDER: on Admin Exit\r\n\r\nForce Shut Down has been activated and is still in effect.\r\n\r\n"
                  "To deactivate Force Shut Down,\r\nUse menu item Tools | Force Shut Down (when you restart ADMIN).",
        }));
        QVERIFY(gbolEnding);
        QVERIFY(!gdbMain.isOpen());
        QVERIFY(m_dialogs.isEmpty());
    }

    void olderFileConversionOffer_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("withConverter");
        QTest::addColumn<QStringList>("after");  // the exact texts after the offer
        const QString chosen = "You have chosen to convert your data.\r\n\r\nAdmin will now run the conversion program.\r\n\r\n"
                               "Once convertsion has finished, Admin will restart.";
        QTest::newRow("No: blank database")
            << int(Msg::No) << false << QStringList{"You've chosen NOT to convert your old data and just run Admin on a blank database."};
        QTest::newRow("Yes, converter missing")
            << int(Msg::Yes) << false
            << QStringList{chosen, "The conversion program <program>/tavello-convert could not be started, so the old data has not been "
                                   "converted.\r\n\r\nAdmin will run on the blank 2005 database. The old data is kept in " + Share + "<backup>."};
        QTest::newRow("Yes, converter started") << int(Msg::Yes) << true << QStringList{chosen};
    }
    void olderFileConversionOffer()
    {
        QFETCH(int, answer);
        QFETCH(bool, withConverter);
        QFETCH(QStringList, after);
        TestSupport::Site site;
        site.useShareAsDataPath();
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        {
            Database old = Database::open(site.local("tavello.mdb"));
            old.execute("UPDATE GlobalSettingsTable SET DatabaseVersion = ?", {2003});
            old.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {"Sales"});
        }
        const QString argsFile = site.programFolder() + "/converter-args.txt";
        if (withConverter) {
            QFile script(site.programFolder() + "/tavello-convert");
            QVERIFY(script.open(QIODevice::WriteOnly));
            script.write(QString("#!/bin/sh\nprintf '%s' \"$1\" > '%1'\n").arg(argsFile).toUtf8());
            script.close();
            script.setPermissions(script.permissions() | QFile::ExeOwner);
        }
        Msg::queueAnswers({Msg::OK, answer});
        subCheckDBVersionForConversion();

        const QStringList backups = QDir(site.shareFolder()).entryList({"tavello2002or2003backup*.mdb"});
        QCOMPARE(backups.size(), 1);
        QVERIFY(QRegularExpression("^tavello2002or2003backup\\d{4} \\d\\d \\d\\d \\d{6}\\.mdb$").match(backups[0]).hasMatch());
        QCOMPARE(rowCount(site.local(backups[0]), "GroupTable"), 2);  // the old data is kept whole
        QCOMPARE(rowCount(site.local("tavello.mdb"), "GroupTable"), 1);  // a blank 2005 database
        QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 2 + after.size());
        QCOMPARE(shown[1].title, App + " Database Conversion.");
        QVERIFY(shown[1].text.startsWith("Old (TAVELLO 2002/2003) database detected.\r\n\r\nWould you like"));
        QCOMPARE(shown[1].buttons, Msg::Buttons::YesNo);
        for (int i = 0; i < after.size(); ++i)
            QCOMPARE(shown[2 + i].text, after[i].replace("<program>", site.programFolder()).replace("<backup>", backups[0]));
        QCOMPARE(gbolEnding, withConverter);
        if (withConverter) {
            QTRY_VERIFY(QFile::exists(argsFile));
            QFile f(argsFile);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(QString::fromUtf8(f.readAll()), Share + backups[0] + "|" + Share + "tavello.mdb");
        }
    }

    // A whole run of the console: start, reminders, the repair switch, end.
    void consoleRun_data()
    {
        QTest::addColumn<bool>("freshFolder");      // no tavello.ini and no database yet
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<QString>("forceShutDown");  // the value in forceshutdown.ini, "" = none
        QTest::addColumn<QStringList>("atStart");   // exact messages, as "title|text"
        QTest::addColumn<QStringList>("atExit");
        QTest::addColumn<bool>("repairs");
        const QString undo = "\r\n\r\nTo deactivate Force Shut Down,\r\nUse menu item Tools | Force Shut Down";
        QTest::newRow("first start in an empty folder") << true << "" << "" << QStringList() << QStringList() << false;
        QTest::newRow("command line of blanks") << false << "   " << "" << QStringList() << QStringList() << false;
        QTest::newRow("repair, lower case") << false << " repair " << "" << QStringList() << QStringList() << true;
        QTest::newRow("other command line text") << false << "hello" << "" << QStringList() << QStringList() << false;
        QTest::newRow("force shut down True") << false << "" << "True"
            << QStringList{App + "|REMINDER: On Admin Startup\r\n\r\nForce Shut Down has been activated, and is still in effect." + undo + "."}
            << QStringList{App + "|REMINDER: on Admin Exit\r\n\r\nForce Shut Down has been activated and is still in effect." + undo
                           + " (when you restart ADMIN)."}
            << false;
        QTest::newRow("force shut down, lower case true") << false << "" << "true" << QStringList() << QStringList() << false;
    }
    void consoleRun()
    {
        QFETCH(bool, freshFolder);
        QFETCH(QString, commandLine);
        QFETCH(QString, forceShutDown);
        QFETCH(QStringList, atStart);
        QFETCH(QStringList, atExit);
        QFETCH(bool, repairs);
        TestSupport::Site site;
        const QString db = freshFolder ? site.programFolder() + "/tavello.mdb" : site.local("tavello.mdb");
        if (freshFolder) {
            QVERIFY(QFile::remove(site.iniFile()));
        } else {
            QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Share));
            QCOMPARE(CreateDatabase(db), 0);
        }
        if (!forceShutDown.isEmpty())
            QVERIFY(IniFile::writeKey(site.local("forceshutdown.ini"), "ForceShutDown", "ForceShutDown", forceShutDown));
        gstrCommandLine = commandLine;
        const bool runs = commandLine.trimmed().isEmpty();  // any other text ends the run, repaired or not
        {
            frmMain w;
            QCOMPARE(w.load(), runs);
            QCOMPARE(w.isVisible(), runs);
            QCOMPARE(gbolEnding, !runs);
            QCOMPARE(shown(), atStart);
            Msg::clearTranscript();
            if (runs) {
                QCOMPARE(gbolForceShutDown, !atStart.isEmpty());
                QCOMPARE(w.userCountText(), QString(" 1 "));
                w.close();
                QVERIFY(!gdbMain.isOpen());
            }
        }
        QCOMPARE(shown(), atExit);
        QVERIFY(m_dialogs.isEmpty());
        QCOMPARE(IniFile::readKey(site.iniFile(), "DataPath", "DataPath", "absent"), freshFolder ? QString() : Share);
        QCOMPARE(rowCount(db, "EmployeeTable"), 1);
        QCOMPARE(rowCount(db, "DueBackTable"), 27);
        const QVariant logged = Database::open(db).scalar("SELECT count(*) FROM TransactionLogTable WHERE Name = ? AND Status = ?",
                                                          {"Admin", "REPAIR SUCCESSFUL"});
        QCOMPARE(logged.toInt(), repairs ? 1 : 0);
        QCOMPARE(QFile::exists(site.local("tavello.000")), repairs);
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
