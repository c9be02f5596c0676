// The system settings windows, each opened from its Tools entry against a
// real database: what they show, what OK stores, what Cancel leaves.
#include "users/UsersTest.h"

#include "console/frmMain.h"
#include "platform/FileDialogs.h"
#include "platform/IniFile.h"
#include "platform/Modal.h"
#include "settings/UpdateCheck.h"

#include <QAction>
#include <QAbstractButton>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QUrl>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

// Opens the window of a Tools entry and runs `drive` on it; false when no
// window opened.
bool openFromMenu(Console &c, const QString &item, const std::function<void(QDialog *)> &drive)
{
    bool opened = false;
    Modal::setHandler([&](QDialog *d) {
        opened = true;
        drive(d);
    });
    c.w().menuItem(item)->trigger();
    Modal::setHandler({});
    return opened;
}

void press(QDialog *d, const QString &button) { QTest::mouseClick(control<QPushButton>(d, button), Qt::LeftButton); }

// A click on a check box's or option's mark, where a person would click.
void tick(QAbstractButton *b) { QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(8, b->height() / 2)); }

QString globalRow(Database &db)
{
    return rows(db, "SELECT LogoPosition, AllowStatusAlerts, AllowMessaging, AllowPresenceSensing, UpdateStatusOnLock, "
                    "AllowUserToAddTavelloToStartupFolder FROM GlobalSettingsTable");
}

const QStringList GlobalChecks = {"chkAllowStatusALerts", "chkAllowMessaging", "chkAllowPresenceSensing",
                                  "chkUpdateStatusOnLock", "chkAllowUserToAddTavelloToStartupFolder"};

// "logo|checks|lock": the logo chosen, the five boxes, whether the lock
// option can be used.
QString globalShown(QDialog *d)
{
    QString checks;
    for (const QString &name : GlobalChecks)
        checks += shownValue(d, name);
    return shownValue(d, "optLogoPosition") + '|' + checks + '|' +
           (control<QCheckBox>(d, "chkUpdateStatusOnLock")->isEnabled() ? "on" : "off");
}

QString forceShutdownFile(const Console &c) { return c.site().local("forceshutdown.ini"); }

}  // namespace

class TestSystemSettings : public QObject {
    Q_OBJECT

private slots:
    void globalSettings_data()
    {
        QTest::addColumn<QString>("stored");   // SET clause before the start, "DELETE" for no row
        QTest::addColumn<QString>("shown");    // logo|checks|lock option usable
        QTest::addColumn<QString>("actions");  // click:<box>, logo:<n>, reset
        QTest::addColumn<QString>("after");    // shown after the actions
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("saved");    // the row afterwards
        QTest::addColumn<QString>("box");
        QTest::newRow("as created, OK") << "" << "5|11101|on" << "" << "5|11101|on" << 0 << "5|1|1|1|0|1" << "";
        QTest::newRow("each box from its own column")
            << "LogoPosition = 2, AllowStatusAlerts = 1, AllowMessaging = 0, AllowPresenceSensing = 1, "
               "UpdateStatusOnLock = 1, AllowUserToAddTavelloToStartupFolder = 0"
            << "2|10110|on" << "" << "2|10110|on" << 0 << "2|1|0|1|1|0" << "";
        QTest::newRow("no presence sensing at load: lock greyed, mark kept")
            << "AllowPresenceSensing = 0, UpdateStatusOnLock = 1" << "5|11011|off" << "" << "5|11011|off" << 0
            << "5|1|1|0|1|1" << "";
        QTest::newRow("presence unchecked: lock greyed and still saved")
            << "UpdateStatusOnLock = 1" << "5|11111|on" << "click:chkAllowPresenceSensing" << "5|11011|off" << 0
            << "5|1|1|0|1|1" << "";
        QTest::newRow("presence checked again: lock usable")
            << "AllowPresenceSensing = 0" << "5|11001|off" << "click:chkAllowPresenceSensing click:chkUpdateStatusOnLock"
            << "5|11111|on" << 0 << "5|1|1|1|1|1" << "";
        QTest::newRow("logo and a box changed") << "" << "5|11101|on" << "logo:0 click:chkAllowMessaging"
                                                << "0|10101|on" << 0 << "0|1|0|1|0|1" << "";
        QTest::newRow("Reset, Cancel: nothing stored") << "LogoPosition = 1" << "1|11101|on"
                                                       << "reset click:chkAllowStatusALerts" << "5|01101|on" << 1
                                                       << "1|1|1|1|0|1" << "";
        QTest::newRow("Reset, OK: only the logo") << "LogoPosition = 3, AllowMessaging = 0" << "3|10101|on" << "reset"
                                                  << "5|10101|on" << 0 << "5|1|0|1|0|1" << "";
        QTest::newRow("Null logo: none chosen, kept") << "LogoPosition = NULL" << "none|11101|on" << "" << "none|11101|on"
                                                      << 0 << "<null>|1|1|1|0|1" << "";
        QTest::newRow("no row: nothing shown, OK writes one") << "DELETE" << "none|00000|off" << "click:chkAllowMessaging"
                                                              << "none|01000|off" << 0 << "5|0|1|0|0|0" << "";
        for (const char *bad : {"6", "-1"})
            QTest::newRow(qPrintable(QString("logo %1: failure while loading").arg(bad)))
                << QString("LogoPosition = %1").arg(bad) << "" << "" << "" << 0 << QString("%1|1|1|1|0|1").arg(bad)
                << QString("Run-time error '340':\r\n\r\nControl array element '%1' doesn't exist (optLogoPosition).")
                       .arg(bad);
    }
    void globalSettings()
    {
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        QFETCH(QString, actions);
        QFETCH(QString, after);
        QFETCH(int, button);
        QFETCH(QString, saved);
        QFETCH(QString, box);
        // Set once the start has brought the table up to date.
        Console c;
        Database other = c.other();
        if (stored == "DELETE")
            other.execute("DELETE FROM GlobalSettingsTable");
        else if (!stored.isEmpty())
            other.execute("UPDATE GlobalSettingsTable SET " + stored);
        const long long before = counter(other);
        QString shownAtLoad, shownAfter;
        const bool opened = openFromMenu(c, "mnuGlobalSettings", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Global Settings");
            shownAtLoad = globalShown(d);
            for (const QString &a : actions.split(' ', Qt::SkipEmptyParts)) {
                if (a == "reset")
                    press(d, "cmdButtons_2");
                else if (a.startsWith("logo:"))
                    tick(control<QRadioButton>(d, "optLogoPosition_" + a.mid(5)));
                else
                    tick(control<QCheckBox>(d, a.mid(6)));
            }
            shownAfter = globalShown(d);
            press(d, QString("cmdButtons_%1").arg(button));
            QVERIFY(!d->isVisible());
        });
        QCOMPARE(opened, box.isEmpty());
        QCOMPARE(shownAtLoad, shown);
        QCOMPARE(shownAfter, after);
        QCOMPARE(globalRow(other), saved);
        QCOMPARE(messageTexts(), box.isEmpty() ? QStringList() : QStringList{box});
        QCOMPARE(counter(other), before);  // the users' programs read the rules at their next start
    }

    void security_data()
    {
        QTest::addColumn<QString>("stored");  // the level, "NULL", or "none" for no row
        QTest::addColumn<int>("click");       // -1 for none
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("shown");   // the option on at load
        QTest::addColumn<QString>("meaning"); // what level 0 users may, after the click
        QTest::addColumn<QString>("saved");
        QTest::addColumn<int>("raised");
        const QString medium = "Normal Users (level 0) can only change the Status of other Group Members.";
        QTest::newRow("unchanged OK still raises") << "1" << -1 << 0 << "1" << medium << "1" << 1;
        QTest::newRow("HIGH") << "1" << 2 << 0 << "1" << "Normal Users (level 0) cannot change anyone's Status." << "2"
                              << 1;
        QTest::newRow("LOW") << "2" << 0 << 0 << "2"
                             << "Normal Users (level 0) can change anyone's Status at any time." << "0" << 1;
        QTest::newRow("another level, Cancel") << "1" << 0 << 1 << "1"
                                               << "Normal Users (level 0) can change anyone's Status at any time." << "1"
                                               << 0;
        QTest::newRow("Null: nothing chosen, kept") << "NULL" << -1 << 0 << "none" << "" << "<null>" << 1;
        QTest::newRow("Null, MEDIUM chosen") << "NULL" << 1 << 0 << "none" << medium << "1" << 1;
        QTest::newRow("no row: one of defaults") << "none" << -1 << 0 << "none" << "" << "1" << 1;
        QTest::newRow("level 3: the window does not open") << "3" << -1 << 0 << "" << "" << "3" << 0;
    }
    void security()
    {
        QFETCH(QString, stored);
        QFETCH(int, click);
        QFETCH(int, button);
        QFETCH(QString, shown);
        QFETCH(QString, meaning);
        QFETCH(QString, saved);
        QFETCH(int, raised);
        Console c;
        Database other = c.other();
        if (stored == "none")
            other.execute("DELETE FROM GlobalSettingsTable");
        else
            other.execute("UPDATE GlobalSettingsTable SET SystemSecurityLevel = " + stored);
        const long long before = other.scalar("SELECT SecurityCounter FROM StatusCounterTable").toLongLong();
        QString shownAtLoad, meaningShown;
        const bool opened = openFromMenu(c, "mnuSystemSecurity", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "System Security");
            QVERIFY(control<QLabel>(d, "lblInfo")->text().endsWith("retain a high level of integrity."));
            shownAtLoad = shownValue(d, "OptionSecurity");
            if (click >= 0)
                tick(control<QRadioButton>(d, QString("OptionSecurity_%1").arg(click)));
            meaningShown = control<QLabel>(d, "lblUserLevel0")->isVisibleTo(d) ? control<QLabel>(d, "lblUserLevel0")->text()
                                                                               : QString();
            press(d, QString("cmdButtons_%1").arg(button));
        });
        QCOMPARE(opened, !shown.isEmpty());
        QCOMPARE(shownAtLoad, shown);
        QCOMPARE(meaningShown, meaning);
        QCOMPARE(rows(other, "SELECT SystemSecurityLevel FROM GlobalSettingsTable"), saved);
        QCOMPARE(other.scalar("SELECT SecurityCounter FROM StatusCounterTable").toLongLong(), before + raised);
        QCOMPARE(messageTexts().size(), opened ? 0 : 1);
    }

    void company_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("button");  // 0 OK, 1 Cancel
        QTest::addColumn<QVariant>("saved");
        const QString policy = QString("Line of company policy, kept whole.\n").repeated(1800);
        QTest::newRow("Null shows empty") << QVariant() << "" << "Phone 555 1234" << 0 << QVariant("Phone 555 1234");
        QTest::newRow("blanks trimmed both ways") << QVariant("  Fax 1  ") << "Fax 1" << "  Fax 2  " << 0 << QVariant("Fax 2");
        QTest::newRow("double quotes stored as apostrophes")
            << QVariant() << "" << "Call \"Reception\" on 0" << 0 << QVariant("Call 'Reception' on 0");
        QTest::newRow("every kind of quote: only the double quote changes")
            << QVariant() << "" << "'a' \"b\" \u201cc\u201d \u2018d\u2019 \u00abe\u00bb `f` \u2033g\u2033 \"\"" << 0
            << QVariant("'a' 'b' \u201cc\u201d \u2018d\u2019 \u00abe\u00bb `f` \u2033g\u2033 ''");
        QTest::newRow("a statement in the text is text")
            << QVariant() << "" << "x\"; DELETE FROM EmployeeTable; --" << 0 << QVariant("x'; DELETE FROM EmployeeTable; --");
        QTest::newRow("64 KB and line breaks kept") << QVariant() << "" << policy << 0 << QVariant(policy);
        QTest::newRow("empty clears") << QVariant("Old") << "Old" << "" << 0 << QVariant();
        QTest::newRow("blanks only clear") << QVariant("Old") << "Old" << "    " << 0 << QVariant();
        QTest::newRow("Cancel keeps") << QVariant("Old") << "Old" << "New" << 1 << QVariant("Old");
    }
    void company()
    {
        QFETCH(QVariant, stored);
        QFETCH(QString, shown);
        QFETCH(QString, typed);
        QFETCH(int, button);
        QFETCH(QVariant, saved);
        Console c([&](Database &db) { db.execute("UPDATE GlobalSettingsTable SET CompanyInfo = ?", {stored}); });
        Database other = c.other();
        QString shownAtLoad;
        QVERIFY(openFromMenu(c, "mnuCompamyInfo", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Company Information");
            auto *text = control<QPlainTextEdit>(d, "txtCompanyInfo");
            shownAtLoad = text->toPlainText();
            text->setPlainText(typed);
            press(d, button ? "cmdCancelCompanyInfo" : "cmdOKCompanyInfo");
            QVERIFY(!d->isVisible());
        }));
        QCOMPARE(shownAtLoad, shown);
        const QVariant after = other.scalar("SELECT CompanyInfo FROM GlobalSettingsTable");
        QCOMPARE(after.isNull(), saved.isNull());
        QCOMPARE(after.toString(), saved.toString());
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable").toInt(), 1);
        QCOMPARE(messageTexts(), QStringList());
        QVERIFY(gdbMain.isOpen());  // the console goes on with a fresh handle
    }

    void photoPath_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("current");  // "<app>" for the program's folder
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QVariant>("saved");
        QTest::addColumn<QString>("box");      // title|text; the window stays open after one
        const QString invalid = "TAVELLO - Invalid UNC|You have not entered a valid UNC path. A UNC path must begin with "
                                "\" \\\\ \"";
        const QString missing = "TAVELLO - Path Does NOT exist.|You have not entered an existing path.";
        const QString photos = "\\\\TESTSRV\\SHARE\\photos\\";
        QTest::newRow("Null shows the program folder; empty stores a blank") << QVariant() << "<app>" << "" << QVariant(" ")
                                                                             << "";
        QTest::newRow("a blank reads as none") << QVariant(" ") << "<app>" << "   " << QVariant(" ") << "";
        QTest::newRow("stored path shown; backslash added")
            << QVariant("  " + photos + "  ") << photos << "\\\\TESTSRV\\SHARE\\photos" << QVariant(photos) << "";
        QTest::newRow("with backslash and blanks") << QVariant() << "<app>" << "  " + photos + "  " << QVariant(photos)
                                                   << "";
        QTest::newRow("share root") << QVariant() << "<app>" << "\\\\testsrv\\share" << QVariant("\\\\testsrv\\share\\")
                                    << "";
        QTest::newRow("drive letter") << QVariant(photos) << photos << "C:\\Photos" << QVariant(photos) << invalid;
        QTest::newRow("local path") << QVariant(photos) << photos << "/srv/photos" << QVariant(photos) << invalid;
        QTest::newRow("missing folder") << QVariant(photos) << photos << "\\\\TESTSRV\\SHARE\\nothere" << QVariant(photos)
                                        << missing;
        QTest::newRow("unmapped share") << QVariant(photos) << photos << "\\\\NOSUCH\\SHARE\\photos" << QVariant(photos)
                                        << missing;
        QTest::newRow("a file, not a folder") << QVariant(photos) << photos << "\\\\TESTSRV\\SHARE\\tavello.mdb"
                                              << QVariant(photos) << missing;
    }
    void photoPath()
    {
        QFETCH(QVariant, stored);
        QFETCH(QString, current);
        QFETCH(QString, typed);
        QFETCH(QVariant, saved);
        QFETCH(QString, box);
        Console c([&](Database &db) { db.execute("UPDATE GlobalSettingsTable SET PhotoPath = ?", {stored}); });
        QVERIFY(QDir(c.site().shareFolder()).mkpath("photos"));
        Database other = c.other();
        QVERIFY(openFromMenu(c, "mnuPhotoPath", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Photo Path");
            QCOMPARE(control<QLabel>(d, "lblCurrentPath")->text(), current == "<app>" ? gstrAppPath : current);
            auto *text = control<QLineEdit>(d, "txtNewPath");
            QCOMPARE(text->text(), QString());
            text->setText(typed);
            press(d, "cmdButtons_0");
            QCOMPARE(d->isVisible(), !box.isEmpty());
            if (!box.isEmpty()) {
                QCOMPARE(text->selectedText(), typed);  // all of it, ready to be typed over
                press(d, "cmdButtons_1");
            }
        }));
        QCOMPARE(other.scalar("SELECT PhotoPath FROM GlobalSettingsTable"), saved);
        QCOMPARE(boxes(), box.isEmpty() ? QStringList() : QStringList{box});
    }

    // Browse fills the box with a folder on a share and refuses any other.
    void photoPathBrowse_data()
    {
        QTest::addColumn<QString>("chosen");  // relative to the share, "/..." absolute, "" cancelled
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        QTest::newRow("a share's folder") << "photos" << "\\\\TESTSRV\\SHARE\\photos" << "";
        QTest::newRow("cancelled") << "" << "typed before" << "";
        QTest::newRow("not on a share") << "/" << "typed before" << "/ is not a UNC path. Please reselect.";
    }
    void photoPathBrowse()
    {
        QFETCH(QString, chosen);
        QFETCH(QString, text);
        QFETCH(QString, box);
        Console c;
        QVERIFY(QDir(c.site().shareFolder()).mkpath("photos"));
        FileDialogs::queueAnswers({chosen.isEmpty() || chosen.startsWith('/') ? chosen : c.site().local(chosen)});
        QVERIFY(openFromMenu(c, "mnuPhotoPath", [&](QDialog *d) {
            control<QLineEdit>(d, "txtNewPath")->setText("typed before");
            press(d, "cmdBrowse");
            QCOMPARE(control<QLineEdit>(d, "txtNewPath")->text(), text);
            press(d, "cmdButtons_1");
        }));
        QCOMPARE(FileDialogs::transcript().size(), 1);
        QCOMPARE(FileDialogs::transcript()[0].title, QString("Please select a folder:"));
        QCOMPARE(messageTexts(), box.isEmpty() ? QStringList() : QStringList{box});
    }

    // The flag file round trip: what the window shows, writes, and what
    // the next start reads.
    void forceShutdown_data()
    {
        QTest::addColumn<QString>("before");  // the file's value, "" none, "<dir>" a folder in its place
        QTest::addColumn<bool>("check");
        QTest::addColumn<int>("button");      // 0 OK, 1 Cancel
        QTest::addColumn<QString>("after");   // the value in the file
        QTest::addColumn<bool>("on");         // the console's copy and the menu mark
        QTest::newRow("on: file created") << "" << true << 0 << "True" << true;
        QTest::newRow("off: file kept, False") << "True" << false << 0 << "False" << false;
        QTest::newRow("on again") << "False" << true << 0 << "True" << true;
        QTest::newRow("Cancel changes nothing") << "True" << false << 1 << "True" << true;
        QTest::newRow("unwritable: no message, shown on") << "<dir>" << true << 0 << "" << true;
    }
    void forceShutdown()
    {
        QFETCH(QString, before);
        QFETCH(bool, check);
        QFETCH(int, button);
        QFETCH(QString, after);
        QFETCH(bool, on);
        Console c([&](Database &db) {
            const QString file = QFileInfo(db.localPath()).absolutePath() + "/forceshutdown.ini";
            if (before == "<dir>")
                QDir().mkpath(file);
            else if (!before.isEmpty())
                IniFile::writeKey(file, "ForceShutDown", "ForceShutDown", before);
        });
        Msg::clearTranscript();
        QVERIFY(openFromMenu(c, "mnuForceShutdown", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Force Shutdown");
            auto *box = control<QCheckBox>(d, "chkForceShutdown");
            QCOMPARE(box->isChecked(), before == "True");
            box->setChecked(check);
            press(d, button ? "cmd_Cancel_Forced_Shutdown" : "cmd_OK_Forced_Shutdown");
        }));
        QCOMPARE(IniFile::readKey(forceShutdownFile(c), "ForceShutDown", "ForceShutDown"), after);
        QCOMPARE(gbolForceShutDown, on);
        QCOMPARE(c.w().menuItem("mnuForceShutdown")->isChecked(), on);
        QCOMPARE(messageTexts(), QStringList());
        if (after == "True") {
            QFile f(forceShutdownFile(c));
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(QString::fromUtf8(f.readAll()).split(QRegularExpression("\r?\n"), Qt::SkipEmptyParts),
                     (QStringList{"[ForceShutDown]", "ForceShutDown=True"}));
        }
        // The next start reads the file, not what the console last showed.
        c.restart();
        const bool nowOn = after == "True";
        QCOMPARE(gbolForceShutDown, nowOn);
        QCOMPARE(c.w().menuItem("mnuForceShutdown")->isChecked(), nowOn);
        QCOMPARE(messageTexts().size(), nowOn ? 1 : 0);
        if (nowOn)
            QVERIFY(messageTexts()[0].startsWith("REMINDER: On Admin Startup"));
    }

    void autoCheckOption_data()
    {
        QTest::addColumn<QString>("stored");  // AutoCheckForUpdates, or "none" for no row
        QTest::addColumn<bool>("check");
        QTest::addColumn<int>("button");      // 0 OK, 1 Cancel
        QTest::addColumn<int>("answer");      // to "check NOW ?"
        QTest::addColumn<QString>("saved");
        QTest::addColumn<bool>("checking");
        QTest::newRow("on, No: stored, no check") << "0" << true << 0 << int(Msg::No) << "1" << false;
        QTest::newRow("off, No (the start's own check runs)") << "1" << false << 0 << int(Msg::No) << "0" << true;
        QTest::newRow("on, Yes: a check starts") << "0" << true << 0 << int(Msg::Yes) << "1" << true;
        QTest::newRow("Cancel") << "0" << true << 1 << int(Msg::Yes) << "0" << false;
        QTest::newRow("no row: one added") << "none" << true << 0 << int(Msg::No) << "1" << false;
    }
    void autoCheckOption()
    {
        QFETCH(QString, stored);
        QFETCH(bool, check);
        QFETCH(int, button);
        QFETCH(int, answer);
        QFETCH(QString, saved);
        QFETCH(bool, checking);
        Console c([&](Database &db) {
            if (stored != "none")
                db.execute("UPDATE AdminSettingsTable SET AutoCheckForUpdates = ?", {stored.toInt()});
        });
        Database other = c.other();
        if (stored == "none")
            other.execute("DELETE FROM AdminSettingsTable");
        const QString server = IniFile::readKey(c.site().programFolder() + "/tavello.ini", "Update", "Server");
        Msg::clearTranscript();
        Msg::queueAnswers({answer});
        QVERIFY(openFromMenu(c, "mnuAutoCheckforUpdates", [&](QDialog *d) {
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Auto Check for Updates");
            QCOMPARE(control<QLabel>(d, "lblACFU")->text(),
                     "The Auto Check for Updates command allows ADMIN.EXE to check " + QUrl(server).authority() +
                         " for a later version of TAVELLO as Admin starts up. \r\n\r\nUSER.EXE will function as normal "
                         "and will NOT be affected by this command.");
            auto *box = control<QCheckBox>(d, "chkAutoCheckforUpdates");
            QCOMPARE(box->isChecked(), stored == "1");
            box->setChecked(check);
            press(d, button ? "cmd_Cancel_AutoCheckForUpdates" : "cmd_OK_AutoCheckForUpdates");
        }));
        QCOMPARE(rows(other, "SELECT AutoCheckForUpdates FROM AdminSettingsTable"), saved);
        QCOMPARE(gbolAutoCheckForUpdates, saved == "1");
        QCOMPARE(c.w().menuItem("mnuAutoCheckforUpdates")->isChecked(), saved == "1");
        QCOMPARE(boxes(), button ? QStringList() : QStringList{"TAVELLO Update|Would you like to check for updates NOW ?"});
        // The test site's server never answers: a check begun is still running.
        QCOMPARE(UpdateCheck::busy(), checking);
    }
};

QTEST_MAIN(TestSystemSettings)
#include "tst_systemsettings.moc"
