// Modifying a user: load and save, the checks at OK, a rename carried into
// every related row, managed groups searched under the old name, Reset from
// the template, the photo page, and other programs at work on the same rows.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "platform/FileDialogs.h"
#include "users/frmModUser.h"

#include <QCheckBox>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Émile=e1", "A[1]=x1", "A1=x2"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?), (?), (?), (?)", {"Sales", "Support", "Managers", "Night"});
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES (?, ?, 1), (?, ?, 0), "
               "(?, ?, 2), (?, ?, 1)", {"Bob", "Sales", "Bob", "Support", "Bob", "Managers", "Ann", "Sales"});
    db.execute("INSERT INTO EmployeeStatusTracking (Tracker, Trackee, TrackeeStatus) VALUES (?, ?, ?), (?, ?, ?)",
               {"Bob", "Ann", "In", "Ann", "Bob", "Out"});
    db.execute("INSERT INTO TransactionLogTable (Name, Status) VALUES (?, ?)", {"Bob", "In"});
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES (?, 5)", {"Lunch"});
    db.addColumn("EmployeeTable", "New_Dept", "TEXT(250)");
    db.addColumn("EmployeeTable", "New_DeptReadOnly", "INTEGER");
    db.addColumn("EmployeeTable", "New_Room", "TEXT(250)");
    db.execute("UPDATE EmployeeTable SET Status = ?, Phone = ?, New_Dept = ?, New_DeptReadOnly = 1 WHERE Name = ?",
               {"Out", "2231", "Accounts", "Bob"});
    db.execute("UPDATE EmployeeSettingsTable SET Phone = ?, AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 1, "
               "ListViewPopUp = 0, ChangeScreenPopUp = 1, DisplayTreeView = 0, RefreshRate = 15, DefaultGroup = ?, "
               "SortKey = 4, SortOrder = 1, UserSecurityLevel = 2, MinimizeSetting = 1, AutoMinimize = 1, "
               "MinimizeOnClose = 1, IconSize = 1, ToolBarText = 0, ScreenTop = -600, ScreenLeft = 300, "
               "ScreenWidth = 9000, ScreenHeight = 7000, StatusColumnWidth = 2100, NameColumnWidth = 1500, "
               "PhoneColumnWidth = 1200, DueBackColumnWidth = 1400, CommentsColumnWidth = 1600, "
               "LastModifiedColumnWidth = 4100, Password = ?, PictureFileName = ?, PhotoSizeToFit = 1 WHERE Name = ?",
               {"9999", "Sales", "pw", "small.jpg", "Bob"});
    db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?, ScreenTop = 21, MinimizeSetting = 2", {"Night"});
}

std::unique_ptr<frmModUser> openOn(const QString &name)
{
    SelectedItemName = name;
    auto d = std::make_unique<frmModUser>();
    d->show();
    (void)QTest::qWaitForWindowActive(d.get());  // for the focus checks
    return d;
}

// "-Group" clicked in the managed list, "+Group" in the available one.
void click(const QWidget *d, const QString &group)
{
    auto *l = control<QListWidget>(d, group[0] == '-' ? "ListView2" : "ListView1");
    const QRect item = l->visualItemRect(l->findItems(group.mid(1), Qt::MatchExactly).value(0));
    QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, item.center());
}

// A user's memberships as "Group=GroupManager ...".
QString memberships(Database &db, const QString &name)
{
    return rows(db, "SELECT group_concat(g, ' ') FROM (SELECT GroupName || '=' || GroupManager AS g FROM "
                    "EmployeeGroupTable WHERE EmployeeName = ? ORDER BY GroupName)", {name});
}

// Everything the board holds on its users, to show that nothing moved.
QString snapshot(Database &db)
{
    QString out;
    for (const char *t : {"EmployeeTable", "EmployeeSettingsTable", "EmployeeGroupTable", "EmployeeStatusTracking",
                          "StatusCounterTable"})
        out += rows(db, QString("SELECT * FROM %1 ORDER BY 1, 2").arg(t)) + '\n';
    return out;
}

// An edit of a user and OK (or `button`): the box that refuses it,
// or the user's memberships and some settings afterwards.
struct Ok {
    QString name = "Bob", id = "b1", shown = {}, groups = "Managers=1 Sales=1 Support=0";
    QStringList clicks = {};  // see click()
    QString meanwhile = {};   // another program: "lock", "reader", "delete" (the user)
    QString user = "Bob";     // the one the window is opened on
    int rate = 0;               // when set, the template's RefreshRate, and Reset pressed first
    QString afterReset = {};    // refresh choice, last group, tray choice and comments then
    int button = 0;
    QString saved = "15|-600|Sales";  // RefreshRate, ScreenTop and DefaultGroup afterwards
};

}  // namespace

Q_DECLARE_METATYPE(Ok)

class TestModUser : public QObject {
    Q_OBJECT

private slots:
    // What the window loaded goes back on OK, even when another program has
    // reset the settings row meanwhile: a setting not loaded or not saved
    // shows. Added columns get a trailing blank, one more each OK. Only JPG
    // files are listed and taken, in any case of the name.
    void savesWhatItLoaded()
    {
        Console c(seedBoard);
        const QString folder = c.site().local("photos");
        QImage img(50, 40, QImage::Format_RGB32);
        img.fill(Qt::red);
        QVERIFY(QDir().mkpath(folder) && img.save(folder + "/Small.JPG", "JPG") && img.save(folder + "/other.png"));
        Database other = c.other();
        other.execute("UPDATE GlobalSettingsTable SET PhotoPath = ?", {c.site().shareUnc() + "photos\\"});
        QMap<QString, QString> expected = record(other, "SELECT * FROM EmployeeSettingsTable WHERE Name = ?", {"Bob"});
        expected["Phone"] = "2231";  // the board's own, not the settings copy
        expected["PictureFileName"] = "Small.JPG";
        expected["Password"] = "<null>";  // neither shown nor written: the fresh row's own
        expected["DefaultGroup"] = "Everyone";
        auto d = openOn("Bob");
        QCOMPARE(control<QListWidget>(d.get(), "File1")->count(), 1);  // no PNG
        QCOMPARE(d->picture().size(), QSize(50, 40));  // "small.jpg" found as Small.JPG
        FileDialogs::queueAnswers({folder + "/other.png", folder + "/Small.JPG"});
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(boxes(), QStringList{".JPG Not Found|Invalid file selected"});
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        setValue(d.get(), "comboStatusTypes", "lunch");
        d->msFlexGridChange_Pick(0);  // an editor still open at OK is committed
        control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText("Finance");
        other.execute("DELETE FROM EmployeeSettingsTable WHERE Name = ?", {"Bob"});
        other.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", {"Bob"});
        d->cmdButtons_Click(0);
        QCOMPARE(record(other, "SELECT * FROM EmployeeSettingsTable WHERE Name = ?", {"Bob"}), expected);
        openOn("Bob")->cmdButtons_Click(0);
        QCOMPARE(rows(other, "SELECT Status, StatusCode, New_Dept, New_Room, New_DeptReadOnly FROM EmployeeTable "
                             "WHERE Name = ?", {"Bob"}), QString("lunch|5|Finance  |  |1"));
        // A name that is a pattern for another finds its own row.
        QCOMPARE(shownValue(openOn("A[1]").get(), "txtID"), QString("x1"));
    }

    // A site tool may write the older engine's True, -1: it shows as set
    // and goes back as 1.
    void trueOfTheOlderEngine()
    {
        Console c(seedBoard);
        Database other = c.other();
        other.execute("UPDATE EmployeeSettingsTable SET StatusAlertsOverride = -1, PhotoSizeToFit = -1 WHERE Name = ?", {"Bob"});
        auto d = openOn("Bob");
        QVERIFY(control<QCheckBox>(d.get(), "chkStatusAlertsOverride")->isChecked());
        QVERIFY(control<QCheckBox>(d.get(), "chkPhotoSizeToFit")->isChecked());
        d->cmdButtons_Click(0);
        QCOMPARE(rows(other, "SELECT StatusAlertsOverride, PhotoSizeToFit FROM EmployeeSettingsTable WHERE Name = ?", {"Bob"}),
                 QString("1|1"));
    }

    // Moves between the lists are written at OK only. A lock at OK, or a
    // reader at commit, fails the whole OK; once let go, the same OK goes
    // through. Reset takes the template's settings but not the first page's.
    void pressOk_data()
    {
        QTest::addColumn<Ok>("t");
        const QString exists = "Error - User Exists|Sorry, %1 already exists.\rPlease select a different user name "
                               "or add the user's middle initial.";
        const QString renamed = "Managers=2 Sales=1 Support=0";
        QTest::newRow("both empty: the name first") << Ok{"", "", "Modify User Error|Please enter this user's name "
                                                                  "(Using your preferred format)."};
        QTest::newRow("empty ID") << Ok{"Bob", "  ", "Modify User Error|Please enter this user's ID."};
        QTest::newRow("case-only rename") << Ok{"bob", "b1", exists.arg("bob")};
        QTest::newRow("case-only rename beyond ASCII") << Ok{.name = "émile", .id = "e1", .shown = exists.arg("émile"),
                                                             .user = "Émile"};
        QTest::newRow("wildcard name matching another") << Ok{"C*", "b1", exists.arg("C*")};
        QTest::newRow("case-only ID change") << Ok{"Bob", "B1", "Error - User ID Exists|Sorry, B1 already exists.\r"
                                                                "Please select a different User ID."};
        QTest::newRow("blanks around the same name") << Ok{" Bob ", " b1 "};
        QTest::newRow("% and _ are plain") << Ok{"A_", "a%", "", renamed};
        QTest::newRow("quotes and semicolons") << Ok{"O'Bob \"B\"; --", "b'1", "", renamed};
        QTest::newRow("251 characters: 250 kept") << Ok{QString(251, 'y'), "b1", "", renamed};
        QTest::newRow("moves") << Ok{.groups = "Managers=1 Night=1 Support=1", .clicks = {"-Sales", "+Support", "+Night"}};
        QTest::newRow("moved off and on again") << Ok{.clicks = {"-Sales", "+Sales"}};
        // Searched under the old name, nothing is found: the old managed rows
        // stay, a plain membership is not raised, a new group is added.
        const QString night = "Managers=2 Night=1 Sales=1 Support=0";
        QTest::newRow("rename with moves") << Ok{"  Robert  ", "r1", "", night, {"-Sales", "+Support", "+Night"}};
        QTest::newRow("rename, locked at OK") << Ok{"Robert", "b1", "", night, {"+Night"}, "lock"};
        QTest::newRow("rename, reader at commit") << Ok{"Robert", "b1", "", night, {"+Night"}, "reader"};
        QTest::newRow("user deleted meanwhile") << Ok{"Bob", "b1", "", "<null>", {"+Night"}, "delete"};
        QTest::newRow("Reset: 5") << Ok{.rate = 5, .afterReset = "2Night2typed", .saved = "5|21|Sales"};
        QTest::newRow("Reset: 10 shows as 15") << Ok{.rate = 10, .afterReset = "3Night2typed", .saved = "15|21|Sales"};
        QTest::newRow("Reset: 60 has no choice, a failure") << Ok{.rate = 60, .afterReset = "3Sales1typed"};
        QTest::newRow("Reset, Cancel writes nothing") << Ok{.rate = 5, .afterReset = "2Night2typed", .button = 1};
    }
    void pressOk()
    {
        QFETCH(Ok, t);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        const long long counted = counter(other);
        auto d = openOn(t.user);
        for (const QString &g : t.clicks)
            click(d.get(), g);
        setValue(d.get(), "txtName", t.name);
        setValue(d.get(), "txtID", t.id);
        if (t.rate) {
            other.execute("UPDATE NewUserDefaultsTable SET RefreshRate = ?", {t.rate});
            setValue(d.get(), "txtComments", "typed");
            d->cmdButtons_Click(3);
            QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + (t.rate == 60 ? "|Run-time error '340':"
                              : "|Values have been reset to 'New User' defaults, but not saved (yet).")});
            QCOMPARE(shownValue(d.get(), "optionRefreshRate") + shownValue(d.get(), "ComboLastGroup") +
                     shownValue(d.get(), "optSysTrayTaskBar") + shownValue(d.get(), "txtComments"), t.afterReset);
            Msg::clearTranscript();
        }
        QCOMPARE(snapshot(other), before);  // nothing before OK
        if (t.meanwhile == "delete")
            other.execute("DELETE FROM EmployeeTable WHERE Name = ?", {"Bob"});
        if (t.meanwhile == "lock" || t.meanwhile == "reader") {
            whileHeld(c, t.meanwhile, [&] { d->cmdButtons_Click(0); });
            QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Run-time error '3260':"});
            QVERIFY(d->isVisible());
            QCOMPARE(snapshot(other), before);  // nothing half written
            QVERIFY(!gdbMain.inTransaction());
            Msg::clearTranscript();
        }
        d->cmdButtons_Click(t.button);
        QCOMPARE(boxes(), t.shown.isEmpty() ? QStringList() : QStringList{t.shown});
        QCOMPARE(d->isVisible(), !t.shown.isEmpty());
        if (!t.shown.isEmpty() || t.button == 1) {
            QCOMPARE(snapshot(other), before);
            QVERIFY(t.button || QApplication::focusWidget()->objectName() == "txtName");
            return;
        }
        const QString now = t.name.trimmed().left(250);
        QCOMPARE(memberships(other, now), t.groups);
        QCOMPARE(memberships(other, "Ann"), QString("Sales=1"));
        if (t.meanwhile == "delete")
            return;
        // The settings row and the tracking rows travel too (the default
        // group is never written); the log is no related row and keeps the
        // old name.
        QCOMPARE(rows(other, "SELECT UID, Password, RefreshRate, ScreenTop, DefaultGroup FROM EmployeeTable JOIN "
                             "EmployeeSettingsTable USING (Name) WHERE Name = ?", {now}), t.id.trimmed() + "|pw|" + t.saved);
        QCOMPARE(rows(other, "SELECT count(*), (SELECT Name FROM TransactionLogTable), (SELECT group_concat(t, ' ') FROM "
                             "(SELECT Tracker || '>' || Trackee AS t FROM EmployeeStatusTracking ORDER BY rowid)) "
                             "FROM EmployeeTable"), QString("7|Bob|%1>Ann Ann>%1").arg(now));
        QCOMPARE(counter(other), counted + 1);
    }
};

QTEST_MAIN(TestModUser)
#include "tst_moduser.moc"
