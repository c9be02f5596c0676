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

QStringList texts()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.text;
    return out;
}

// Records which dialogs were shown modally and closes each with Cancel.
struct DialogLog {
    QStringList shown;
    DialogLog()
    {
        Modal::setHandler([this](QDialog *d) {
            shown << QString::fromLatin1(d->metaObject()->className());
            d->reject();
        });
    }
};

void writeDataPath(const TestSupport::Site &site, const QString &value)
{
    QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", value));
}

int rowCount(const QString &localFile, const QString &table)
{
    Database db = Database::open(localFile);
    return db.scalar("SELECT count(*) FROM " + Database::quoteIdentifier(table)).toInt();
}

void makeDatabaseWithVersion(const QString &localFile, int version)
{
    QCOMPARE(CreateDatabase(localFile), 0);
    Database db = Database::open(localFile);
    db.execute("UPDATE GlobalSettingsTable SET DatabaseVersion = ?", {version});
}

}  // namespace

class TestStartup : public QObject {
    Q_OBJECT

private slots:
    void firstStartInAnEmptyFolder()
    {
        TestSupport::Site site;
        QFile::remove(site.iniFile());  // a brand-new program folder
        DialogLog dialogs;
        frmMain w;
        QVERIFY(w.load());
        QVERIFY(w.isVisible());
        QCOMPARE(w.windowTitle(), QString(" TAVELLO Pro 2006-07D (Admin) - Main Screen"));
        QCOMPARE(gstrAppTitle, QString(" TAVELLO Pro 2006-07D (Admin) - "));
        QVERIFY(QFile::exists(site.iniFile()));
        QCOMPARE(IniFile::readKey(site.iniFile(), "DataPath", "DataPath", "absent"), QString());
        const QString db = site.programFolder() + "/tavello.mdb";
        QVERIFY(QFile::exists(db));
        QCOMPARE(rowCount(db, "EmployeeTable"), 1);
        QCOMPARE(rowCount(db, "DueBackTable"), 27);
        QCOMPARE(texts(), QStringList());
        QVERIFY(dialogs.shown.isEmpty());
        QCOMPARE(w.userCountText(), QString(" 1 "));
        QVERIFY(gstrDataPath.endsWith('/'));
        QCOMPARE(gstrDatabaseFile, gstrDataPath + "tavello.mdb");
        QVERIFY(!gbolEnding);
    }

    // Each row of the first open's dispatch, reached through its real condition.
    void firstOpenDispatch_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("dataPath");
        QTest::addColumn<QString>("message");  // start of the first message; empty: none
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("dialog");   // dialog shown modally, if any
        QTest::addColumn<bool>("ends");
        const QString dbErr = " TAVELLO Pro 2006-07D (Admin) -  - Database Error";
        QTest::newRow("3024 missing file: created silently") << "none" << Share << "" << "" << "" << false;
        QTest::newRow("53 file not found") << "dangling" << Share << "File not found" << dbErr << "frmDataPath" << false;
        QTest::newRow("3044 bad path") << "none" << Share + "nowhere\\"
                                       << "The path \\\\TESTSRV\\SHARE\\nowhere\\ appears to be incorrect.\rPress OK to edit the Database Path."
                                       << "Database Not Found" << "frmDataPath" << true;
        QTest::newRow("3044 unknown server") << "none" << "\\\\NOSERVER\\SHARE\\"
                                             << "The path \\\\NOSERVER\\SHARE\\ appears to be incorrect."
                                             << "Database Not Found" << "frmDataPath" << true;
        QTest::newRow("3055 bad file name") << "none" << Share + "a|b\\"
                                            << "The path \\\\TESTSRV\\SHARE\\a|b\\ appears to be incorrect."
                                            << "Database Not Found" << "frmDataPath" << true;
        QTest::newRow("3045 held by another program") << "exclusive" << Share
                                                      << "Error (3045 ) in Admin - InitializeLocalDatabase event.\r"
                                                      << " TAVELLO Pro 2006-07D (Admin) - " << "" << true;
        QTest::newRow("3049 damaged") << "damaged" << Share << "The database file is damaged" << dbErr << "" << true;
        QTest::newRow("3343 foreign file, repair cancelled") << "foreign" << Share << "Unrecognized database format"
                                                             << dbErr << "frmRepair" << true;
        QTest::newRow("other: written by a newer store") << "newer" << Share << "Err: 1 - "
                                                         << " TAVELLO Pro 2006-07D (Admin) -  - Database Init Error"
                                                         << "" << true;
    }
    void firstOpenDispatch()
    {
        QFETCH(QString, condition);
        QFETCH(QString, dataPath);
        QFETCH(QString, message);
        QFETCH(QString, title);
        QFETCH(QString, dialog);
        QFETCH(bool, ends);
        TestSupport::Site site;
        writeDataPath(site, dataPath);
        const QString file = site.local("tavello.mdb");
        std::unique_ptr<ExternalHolder> holder;
        if (condition == "dangling") {
            QVERIFY(QFile::link(site.local("moved-away.mdb"), file));
        } else if (condition == "exclusive") {
            QCOMPARE(CreateDatabase(file), 0);
            holder = std::make_unique<ExternalHolder>(file, ExternalHolder::Hold::Exclusive);
        } else if (condition == "damaged") {
            QCOMPARE(CreateDatabase(file), 0);
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.seek(100);
            f.write(QByteArray(3000, '\x33'));
        } else if (condition == "foreign") {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(QByteArray("This is a spreadsheet, not a board.\n").repeated(100));
        } else if (condition == "newer") {
            QCOMPARE(CreateDatabase(file), 0);
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.seek(44);  // schema format number: one this store cannot read
            f.write(QByteArray("\x00\x00\x00\x09", 4));
        }
        QByteArray before;
        if (QFileInfo(file).isFile() && !QFileInfo(file).isSymLink()) {
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadOnly));
            before = f.readAll();
        }
        DialogLog dialogs;
        gstrAppPath = site.programFolder() + "/";
        gstrAppTitle = appTitleFor(gstrReleaseVersion);
        InitializeLocalDatabase();

        const QList<Msg::Shown> shown = Msg::transcript();
        if (message.isEmpty()) {
            QCOMPARE(texts(), QStringList());
            QVERIFY(gdbMain.isOpen() || QFile::exists(file));
        } else {
            QVERIFY2(!shown.isEmpty(), "no message shown");
            QVERIFY2(shown.first().text.startsWith(message), qPrintable(shown.first().text));
            QCOMPARE(shown.first().title, title);
        }
        QCOMPARE(dialogs.shown, dialog.isEmpty() ? QStringList() : QStringList{dialog});
        QCOMPARE(gbolEnding, ends);
        if (!before.isEmpty()) {
            holder.reset();
            QFile f(file);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), before);  // never overwritten, truncated or replaced
        }
        if (condition == "none" && dataPath == Share)
            QCOMPARE(rowCount(file, "StatusTypesTable"), 3);
    }

    void exactTextsOfTheDispatch()
    {
        TestSupport::Site site;
        writeDataPath(site, Share);
        QVERIFY(QFile::link(site.local("moved-away.mdb"), site.local("tavello.mdb")));
        DialogLog dialogs;
        gstrAppPath = site.programFolder() + "/";
        InitializeLocalDatabase();
        QVERIFY(texts().first().endsWith("\rThe database could not be found at the location specified in the tavello.ini file. "));
        QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Exclamation);

        Msg::clearTranscript();
        QFile::remove(site.local("tavello.mdb"));
        QFile f(site.local("tavello.mdb"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not a database at all, just some text that is long enough to have a header");
        f.close();
        gbolEnding = false;
        InitializeLocalDatabase();
        QCOMPARE(texts().size(), 2);
        QVERIFY(texts()[0].endsWith("\rThis error indicates an immediate database rebuild / repair is required. "
                                    "Please ensure all users are logged OUT, & press OK to begin the repair."));
        QCOMPARE(texts()[1], QString("Unable to continue. The database must be repaired first."));
    }

    void driveLetterPathWarnsAndCarriesOn()
    {
        TestSupport::Site site;
        writeDataPath(site, "G:\\Apps\\Tavello");
        gstrAppPath = site.programFolder() + "/";
        InitializeLocalDatabase();
        QCOMPARE(texts(), QStringList{"The UNC path is missing from the tavello.ini file on the server. \r"
                                      "Please select the File / DataPath menu item to rectify this problem."});
        QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Critical);
        QVERIFY(!gdbMain.isOpen());
        QVERIFY(!gbolEnding);
        QVERIFY(gbolIniFound);
    }

    void validityTestOnAnOlderFile()
    {
        TestSupport::Site site;
        makeDatabaseWithVersion(site.local("tavello.mdb"), 2003);
        QVERIFY(!gbolIsValidDatabase(Share));
        QCOMPARE(Msg::transcript().size(), 1);
        QCOMPARE(Msg::transcript().first().text, QString("Error: This is NOT a 2005 Tavello database."));
        QCOMPARE(Msg::transcript().first().title, QString("Not a valid 2005 Tavello Database"));
        QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Information);
        QVERIFY(gdbMain.isOpen());
        QCOMPARE(gdbMain.localPath(), QFileInfo(site.local("tavello.mdb")).absoluteFilePath());
    }

    void olderFileConversionOffer_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("withConverter");
        QTest::newRow("No: blank database") << int(Msg::No) << false;
        QTest::newRow("Yes, converter missing") << int(Msg::Yes) << false;
        QTest::newRow("Yes, converter started") << int(Msg::Yes) << true;
    }
    void olderFileConversionOffer()
    {
        QFETCH(int, answer);
        QFETCH(bool, withConverter);
        TestSupport::Site site;
        site.useShareAsDataPath();
        makeDatabaseWithVersion(site.local("tavello.mdb"), 2003);
        {
            Database old = Database::open(site.local("tavello.mdb"));
            old.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')");
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
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown[1].title, QString(" TAVELLO Pro 2006-07D (Admin) -  Database Conversion."));
        QVERIFY(shown[1].text.startsWith("Old (TAVELLO 2002/2003) database detected.\r\n\r\nWould you like"));
        QCOMPARE(shown[1].buttons, Msg::Buttons::YesNo);
        if (answer == Msg::No) {
            QCOMPARE(shown.size(), 3);
            QCOMPARE(shown[2].text, QString("You've chosen NOT to convert your old data and just run Admin on a blank database."));
            QVERIFY(!gbolEnding);
        } else if (!withConverter) {
            QCOMPARE(shown.size(), 4);
            QVERIFY(shown[2].text.startsWith("You have chosen to convert your data.\r\n\r\nAdmin will now run the conversion program.\r\n\r\nOnce convertsion has finished"));
            QVERIFY(shown[3].text.contains("could not be started"));
            QVERIFY(shown[3].text.contains(backups[0]));
            QVERIFY(!gbolEnding);
        } else {
            QVERIFY(gbolEnding);
            QTRY_VERIFY(QFile::exists(argsFile));
            QFile f(argsFile);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(QString::fromUtf8(f.readAll()), Share + backups[0] + "|" + Share + "tavello.mdb");
        }
    }

    void forceShutDownReminders_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("reminds");
        QTest::newRow("True") << "True" << true;
        QTest::newRow("lower case true") << "true" << false;
        QTest::newRow("missing") << "" << false;
    }
    void forceShutDownReminders()
    {
        QFETCH(QString, value);
        QFETCH(bool, reminds);
        TestSupport::Site site;
        writeDataPath(site, Share);
        if (!value.isEmpty())
            QVERIFY(IniFile::writeKey(site.local("forceshutdown.ini"), "ForceShutDown", "ForceShutDown", value));
        DialogLog dialogs;
        {
            frmMain w;
            QVERIFY(w.load());
            QCOMPARE(gbolForceShutDown, reminds);
            if (reminds) {
                QCOMPARE(texts(), QStringList{"REMINDER: On Admin Startup\r\n\r\nForce Shut Down has been activated, and is still in effect."
                                              "\r\n\r\nTo deactivate Force Shut Down,\r\nUse menu item Tools | Force Shut Down."});
            } else {
                QCOMPARE(texts(), QStringList());
            }
            Msg::clearTranscript();
            w.close();
            QVERIFY(!gdbMain.isOpen());
        }
        if (reminds) {
            QCOMPARE(texts(), QStringList{"REMINDER: on Admin Exit\r\n\r\nForce Shut Down has been activated and is still in effect."
                                          "\r\n\r\nTo deactivate Force Shut Down,\r\nUse menu item Tools | Force Shut Down (when you restart ADMIN)."});
            QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Information);
        } else {
            QCOMPARE(texts(), QStringList());
        }
    }

    void commandLine_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<bool>("repairs");
        QTest::newRow("blanks only") << "   " << false;
        QTest::newRow("repair, lower case") << " repair " << true;
        QTest::newRow("other text") << "hello" << false;
    }
    void commandLine()
    {
        QFETCH(QString, commandLine);
        QFETCH(bool, repairs);
        TestSupport::Site site;
        writeDataPath(site, Share);
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        gstrCommandLine = commandLine;
        frmMain w;
        const bool running = w.load();
        const bool blank = commandLine.trimmed().isEmpty();
        QCOMPARE(running, blank);
        QCOMPARE(gbolEnding, !blank);
        Database db = Database::open(site.local("tavello.mdb"));
        QCOMPARE(db.scalar("SELECT count(*) FROM TransactionLogTable WHERE Name = 'Admin' AND Status = 'REPAIR SUCCESSFUL'").toInt(),
                 repairs ? 1 : 0);
        QCOMPARE(QFile::exists(site.local("tavello.000")), repairs);
        QCOMPARE(texts(), QStringList());
    }

    void minimumSizeAndRescue()
    {
        TestSupport::Site site;
        writeDataPath(site, Share);
        frmMain w;
        QVERIFY(w.load());
        w.resize(10, 10);
        QVERIFY(w.width() >= w.minimumWidth());
        QVERIFY(w.minimumWidth() > 0 && w.minimumHeight() > 0);
        w.move(5000, 5000);
        QTest::keyClick(&w, Qt::Key_Home, Qt::AltModifier);
        QCOMPARE(w.pos(), QPoint(0, 0));
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
