// The console's start and end: first start, the failure dispatch of the first
// open reached through real conditions, the older-file path, the reminders.
#include "console/frmMain.h"
#include "core/Admin1.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

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
        QTest::newRow("53 file not found") << "dangling" << Share
            << QStringList{dbErr + "File not found: '" + Share + "tavello.mdb' points to a file that does not exist.\r"
                                   "The database could not be found at the location specified in the tavello.ini file. "} << "frmDataPath" << false;
        QTest::newRow("3044 bad path") << "none" << Share + "nowhere\\" << badPath(Share + "nowhere\\") << "frmDataPath" << true;
        QTest::newRow("3044 unknown server") << "none" << "\\\\NOSERVER\\SHARE\\" << badPath("\\\\NOSERVER\\SHARE\\") << "frmDataPath" << true;
        QTest::newRow("3055 bad file name") << "none" << Share + "a|b\\" << badPath(Share + "a|b\\") << "frmDataPath" << true;
        QTest::newRow("3045 held by another program") << "exclusive" << Share
            << QStringList{App + "|Error (3045 ) in Admin - InitializeLocalDatabase event.\rCould not use '" + Share + "tavello.mdb'; "
                                 "file already in use by another program.\r"
                                 "Probable cause - Someone MAY have the database open using MS Access 2000."} << "" << true;
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
        std::unique_ptr<ExternalHolder> holder;
        if (condition == "dangling")
            QVERIFY(QFile::link(site.local("moved-away.mdb"), file));
        else if (condition == "foreign")
            overwrite(file, 0, QByteArray("This is a spreadsheet, not a board.\n").repeated(100));
        else if (condition != "none")
            QCOMPARE(CreateDatabase(file), 0);
        if (condition == "exclusive")
            holder = std::make_unique<ExternalHolder>(file, ExternalHolder::Hold::Exclusive);
        else if (condition == "damaged")
            overwrite(file, 100, QByteArray(3000, '\x33'));
        else if (condition == "newer")
            overwrite(file, 44, QByteArray("\x00\x00\x00\x09", 4));  // a schema format this store cannot read
        QFile f(file);
        const QByteArray before = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        f.close();
        gstrAppPath = site.programFolder() + "/";
        InitializeLocalDatabase();

        QCOMPARE(shown(), messages);
        QCOMPARE(m_dialogs, dialog.isEmpty() ? QStringList() : QStringList{dialog});
        QCOMPARE(gbolEnding, ends);
        holder.reset();
        if (!before.isEmpty()) {
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), before);  // never overwritten, truncated or replaced
        }
        if (condition == "none" && dataPath == Share)
            QCOMPARE(rowCount(file, "StatusTypesTable"), 3);
        if (dataPath.startsWith("G:"))
            QVERIFY(!gdbMain.isOpen() && gbolIniFound);
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
