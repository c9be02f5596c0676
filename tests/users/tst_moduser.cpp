// Modifying a user: load and save, the checks at OK, a rename carried into
// every related row, managed groups searched under the old name, Reset from
// the template, the photo page, and other programs at work on the same rows.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "platform/FileDialogs.h"
#include "users/frmModUser.h"

#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;
using Hold = TestSupport::ExternalHolder::Hold;

namespace {

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Émile=e1", "A[1]=x1", "A1=x2"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?), (?), (?), (?)", {"Sales", "Support", "Managers", "Night"});
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES (?, ?, 1), (?, ?, 0), "
               "(?, ?, 2), (?, ?, 1)", {"Bob", "Sales", "Bob", "Support", "Bob", "Managers", "Ann", "Sales"});
    db.execute("INSERT INTO EmployeeStatusTracking (Tracker, Trackee, TrackeeStatus) VALUES (?, ?, ?), (?, ?, ?)",
               {"Bob", "Ann", "In", "Ann", "Bob", "Out"});
    db.execute("INSERT INTO TransactionLogTable (Name, Status, LastModified) VALUES (?, ?, ?)", {"Bob", "In", "2006-07-01"});
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES (?, 5)", {"Lunch"});
    for (const char *column : {"New_Dept TEXT(250)", "New_DeptReadOnly INTEGER", "New_Room TEXT(250)"})
        db.addColumn("EmployeeTable", QString(column).section(' ', 0, 0), QString(column).section(' ', 1));
    db.execute("UPDATE EmployeeTable SET Status = ?, Phone = ?, New_Dept = ?, New_DeptReadOnly = 1 WHERE Name = ?",
               {"Out", "2231", "Accounts", "Bob"});
    db.execute("UPDATE EmployeeSettingsTable SET Phone = ?, AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 1, "
               "ListViewPopUp = 0, ChangeScreenPopUp = 1, DisplayTreeView = 0, RefreshRate = 15, DefaultGroup = ?, "
               "SortKey = 4, SortOrder = 1, UserSecurityLevel = 2, MinimizeSetting = 1, AutoMinimize = 1, "
               "MinimizeOnClose = 1, IconSize = 1, ToolBarText = 0, ScreenTop = -600, ScreenLeft = 300, "
               "ScreenWidth = 9000, ScreenHeight = 7000, StatusColumnWidth = 2100, NameColumnWidth = 1500, "
               "PhoneColumnWidth = 1200, DueBackColumnWidth = 1400, CommentsColumnWidth = 1600, "
               "LastModifiedColumnWidth = 4100, Password = ?, PhotoSizeToFit = 1 WHERE Name = ?",
               {"9999", "Sales", "pw", "Bob"});
}

std::unique_ptr<frmModUser> openOn(const QString &name)
{
    SelectedItemName = name;
    auto d = std::make_unique<frmModUser>();
    d->show();
    if (!QTest::qWaitForWindowActive(d.get()))
        qWarning("the window did not become active");
    return d;
}

void click(const QWidget *d, const QString &list, const QString &text)
{
    auto *l = control<QListWidget>(d, list);
    const auto found = l->findItems(text, Qt::MatchExactly);
    QVERIFY2(!found.isEmpty(), qPrintable(text));
    QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, l->visualItemRect(found[0]).center());
}

// A user's memberships as "Group=GroupManager ...".
QString memberships(Database &db, const QString &name)
{
    return db.scalar("SELECT group_concat(g, ' ') FROM (SELECT GroupName || '=' || GroupManager AS g FROM "
                     "EmployeeGroupTable WHERE EmployeeName = ? ORDER BY GroupName)", {name}).toString();
}

// Everything the board holds on its users, to show that nothing moved.
QString snapshot(Database &db)
{
    QString out;
    for (const char *t : {"EmployeeTable", "EmployeeSettingsTable", "EmployeeGroupTable", "EmployeeStatusTracking",
                          "StatusCounterTable"})
        for (Recordset rs = db.query(QString("SELECT * FROM %1 ORDER BY 1, 2").arg(t)); !rs.eof(); rs.moveNext())
            for (int i = 0; i < rs.fieldCount(); ++i)
                out += rs.value(i).toString() + (i + 1 < rs.fieldCount() ? "|" : "\n");
    return out;
}

QString value(Database &db, const QString &table, const QString &name, const QString &column)
{
    const QVariant v = db.scalar("SELECT " + column + " FROM " + table + " WHERE Name = ?", {name});
    return v.isNull() ? QString("<null>") : v.toString();
}

// A user's settings row, less what the window neither shows nor writes.
QMap<QString, QString> settings(Database &db, const QString &name)
{
    QMap<QString, QString> out;
    Recordset rs = db.query("SELECT * FROM EmployeeSettingsTable WHERE Name = ?", {name});
    for (int i = 0; i < rs.fieldCount(); ++i)
        out.insert(rs.fieldNames()[i], rs.value(i).toString());
    out.remove("Password");
    out.remove("DefaultGroup");
    return out;
}

}  // namespace

class TestModUser : public QObject {
    Q_OBJECT

private slots:
    // What the window loaded goes back on OK, even when another program has
    // reset the settings row meanwhile: a setting not loaded or not saved
    // shows. Added columns get a trailing blank, one more each OK.
    void savesWhatItLoaded()
    {
        Console c(seedBoard);
        Database other = c.other();
        QMap<QString, QString> expected = settings(other, "Bob");
        expected["Phone"] = "2231";  // the board's own, not the settings copy
        auto d = openOn("Bob");
        setValue(d.get(), "comboStatusTypes", "lunch");
        d->msFlexGridChange_Pick(0);  // an editor still open at OK is committed
        control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText("Finance");
        other.execute("DELETE FROM EmployeeSettingsTable WHERE Name = ?", {"Bob"});
        other.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", {"Bob"});
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(settings(other, "Bob"), expected);
        QCOMPARE(value(other, "EmployeeTable", "Bob", "Status") + value(other, "EmployeeTable", "Bob", "StatusCode"),
                 QString("lunch5"));
        openOn("Bob")->cmdButtons_Click(0);
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_Dept"), QString("Finance  "));
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_Room"), QString("  "));
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_DeptReadOnly"), QString("1"));
        // A name that is a pattern for another finds its own row.
        QCOMPARE(shownValue(openOn("A[1]").get(), "txtID"), QString("x1"));
    }

    void checksAtOk_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("shown");  // title|text, empty: saved
        const QString exists = "Error - User Exists|Sorry, %1 already exists.\rPlease select a different user name "
                               "or add the user's middle initial.";
        const QString idExists = "Error - User ID Exists|Sorry, %1 already exists.\rPlease select a different User ID.";
        QTest::newRow("both empty: the name first") << "Bob" << "" << "" << "Modify User Error|Please enter this "
                                                                            "user's name (Using your preferred format).";
        QTest::newRow("empty ID") << "Bob" << "Bob" << "  " << "Modify User Error|Please enter this user's ID.";
        QTest::newRow("case-only rename") << "Bob" << "bob" << "b1" << exists.arg("bob");
        QTest::newRow("case-only rename beyond ASCII") << "Émile" << "émile" << "e1" << exists.arg("émile");
        QTest::newRow("wildcard name matching another") << "Bob" << "C*" << "b1" << exists.arg("C*");
        QTest::newRow("case-only ID change") << "Bob" << "Bob" << "B1" << idExists.arg("B1");
        QTest::newRow("rename travels") << "Bob" << "  Robert  " << "r1" << "";
        QTest::newRow("blanks around the same name") << "Bob" << " Bob " << " b1 " << "";
        QTest::newRow("% and _ are plain") << "Bob" << "A_" << "a%" << "";
        QTest::newRow("quotes and semicolons") << "Bob" << "O'Bob \"B\"; --" << "b'1" << "";
        QTest::newRow("251 characters: 250 kept") << "Bob" << QString(251, 'y') << "b1" << "";
    }
    void checksAtOk()
    {
        QFETCH(QString, user);
        QFETCH(QString, name);
        QFETCH(QString, id);
        QFETCH(QString, shown);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        const long long counted = counter(other);
        auto d = openOn(user);
        setValue(d.get(), "txtName", name);
        setValue(d.get(), "txtID", id);
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{shown});
        QCOMPARE(d->isVisible(), !shown.isEmpty());
        if (!shown.isEmpty()) {
            QCOMPARE(snapshot(other), before);
            QCOMPARE(QApplication::focusWidget()->objectName(), QString("txtName"));
            return;
        }
        // The settings row, the memberships and the tracking rows travel;
        // the log is no related row and keeps the old name.
        const QString now = name.trimmed().left(250);
        QCOMPARE(value(other, "EmployeeTable", now, "UID"), id.trimmed());
        QCOMPARE(value(other, "EmployeeSettingsTable", now, "Password"), QString("pw"));
        QCOMPARE(memberships(other, now), QString("Managers=%1 Sales=1 Support=0").arg(now == "Bob" ? 1 : 2));
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeStatusTracking WHERE Tracker = ? AND Trackee = ? OR "
                              "Tracker = ? AND Trackee = ?", {now, "Ann", "Ann", now}).toInt(), 2);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable").toString() + value(other, "TransactionLogTable",
                 "Bob", "Status"), QString("7In"));
        QCOMPARE(counter(other), counted + 1);
    }

    // Moves between the lists are written at OK only. A lock at OK, or a
    // reader at commit, fails the whole OK; once let go, the same OK goes
    // through.
    void managedGroups_data()
    {
        QTest::addColumn<QString>("rename");       // new name, empty: none
        QTest::addColumn<QStringList>("moveOff");  // clicked in the managed list
        QTest::addColumn<QStringList>("moveOn");   // clicked in the available list
        QTest::addColumn<QString>("meanwhile");    // another program: "lock", "reader", "delete" (the user)
        QTest::addColumn<QString>("expected");     // the user's memberships afterwards
        QTest::newRow("nothing moved") << "" << QStringList{} << QStringList{} << "" << "Managers=1 Sales=1 Support=0";
        QTest::newRow("moves") << "" << QStringList{"Sales"} << QStringList{"Support", "Night"} << ""
                               << "Managers=1 Night=1 Support=1";
        QTest::newRow("moved off and on again") << "" << QStringList{"Sales"} << QStringList{"Sales"} << ""
                                                << "Managers=1 Sales=1 Support=0";
        // Searched under the old name, nothing is found: the old managed rows
        // stay, a plain membership is not raised, a new group is added.
        const QString renamed = "Managers=2 Night=1 Sales=1 Support=0";
        QTest::newRow("rename with moves") << "Robert" << QStringList{"Sales"} << QStringList{"Support", "Night"}
                                           << "" << renamed;
        QTest::newRow("rename, locked at OK") << "Robert" << QStringList{} << QStringList{"Night"} << "lock" << renamed;
        QTest::newRow("rename, reader at commit") << "Robert" << QStringList{} << QStringList{"Night"} << "reader"
                                                  << renamed;
        QTest::newRow("user deleted meanwhile") << "" << QStringList{} << QStringList{"Night"} << "delete" << "";
    }
    void managedGroups()
    {
        QFETCH(QString, rename);
        QFETCH(QStringList, moveOff);
        QFETCH(QStringList, moveOn);
        QFETCH(QString, meanwhile);
        QFETCH(QString, expected);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        QCOMPARE(control<QListWidget>(d.get(), "ListView2")->count(), 2);  // Managers, Sales
        for (const QString &g : moveOff)
            click(d.get(), "ListView2", g);
        for (const QString &g : moveOn)
            click(d.get(), "ListView1", g);
        QCOMPARE(snapshot(other), before);  // nothing before OK
        if (!rename.isEmpty())
            setValue(d.get(), "txtName", rename);
        if (meanwhile == "delete")
            other.execute("DELETE FROM EmployeeTable WHERE Name = ?", {"Bob"});
        if (meanwhile == "lock" || meanwhile == "reader") {
            std::optional<TestSupport::ExternalHolder> holder;
            if (meanwhile == "lock")
                holder.emplace(c.databaseFile(), Hold::Write);
            auto hook = onEachStatement(gdbMain, [&](const QString &sql) {
                if (!holder && sql.startsWith("COMMIT"))
                    holder.emplace(c.databaseFile(), Hold::Read);
            });
            d->cmdButtons_Click(0);
            hook.reset();
            holder.reset();
            QCOMPARE(Msg::transcript().size(), 1);
            QVERIFY2(Msg::transcript()[0].text.startsWith("Run-time error '3260'"), qPrintable(Msg::transcript()[0].text));
            QVERIFY(d->isVisible());
            QCOMPARE(snapshot(other), before);  // nothing half written
            QVERIFY(!gdbMain.inTransaction());
            Msg::clearTranscript();
        }
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QVERIFY(!d->isVisible());
        QCOMPARE(memberships(other, rename.isEmpty() ? "Bob" : rename), expected);
        QCOMPARE(memberships(other, "Ann"), QString("Sales=1"));
    }

    void resetFromTheTemplate_data()
    {
        QTest::addColumn<QString>("rate");    // the template's RefreshRate
        QTest::addColumn<int>("button");      // pressed after Reset
        QTest::addColumn<QString>("chosen");  // refresh choice after Reset, empty: the Reset fails
        QTest::addColumn<QString>("saved");   // RefreshRate afterwards
        QTest::newRow("5, OK") << "5" << 0 << "2" << "5";
        QTest::newRow("10 shows as 15, OK") << "10" << 0 << "3" << "15";
        QTest::newRow("60 has no choice: a failure") << "60" << 0 << "" << "15";
        QTest::newRow("Cancel writes nothing") << "5" << 1 << "2" << "15";
    }
    void resetFromTheTemplate()
    {
        QFETCH(QString, rate);
        QFETCH(int, button);
        QFETCH(QString, chosen);
        QFETCH(QString, saved);
        Console c([&](Database &db) {
            seedBoard(db);
            db.execute("UPDATE NewUserDefaultsTable SET RefreshRate = ?, DefaultGroup = ?, ScreenTop = 21, "
                       "MinimizeSetting = 2", {rate.toInt(), "Night"});
        });
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtComments", "typed");
        d->cmdButtons_Click(3);
        QCOMPARE(snapshot(other), before);  // not saved (yet)
        if (chosen.isEmpty()) {
            QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '340'"));
            return;
        }
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Values have been reset to 'New User' defaults, but not saved (yet)."});
        // The first page is left alone.
        QCOMPARE(shownValue(d.get(), "optionRefreshRate") + shownValue(d.get(), "ComboLastGroup") +
                 shownValue(d.get(), "optSysTrayTaskBar") + shownValue(d.get(), "txtComments"), chosen + "Night2typed");
        QTest::mouseClick(control<QPushButton>(d.get(), QString("cmdButtons_%1").arg(button)), Qt::LeftButton);
        QVERIFY(!d->isVisible());
        if (button == 1)
            QCOMPARE(snapshot(other), before);
        // The default group is never written.
        QCOMPARE(other.scalar("SELECT RefreshRate || '/' || ScreenTop || '/' || DefaultGroup FROM EmployeeSettingsTable "
                              "WHERE Name = ?", {"Bob"}).toString(), saved + (button ? "/-600" : "/21") + "/Sales");
    }

    // Only JPG files are listed and taken, in any case of the name.
    void photoPage()
    {
        Console c(seedBoard);
        const QString folder = c.site().local("photos");
        QImage img(50, 40, QImage::Format_RGB32);
        img.fill(Qt::red);
        QVERIFY(QDir().mkpath(folder) && img.save(folder + "/Small.JPG", "JPG") && img.save(folder + "/other.png", "PNG"));
        Database other = c.other();
        other.execute("UPDATE GlobalSettingsTable SET PhotoPath = ?", {c.site().shareUnc() + "photos\\"});
        other.execute("UPDATE EmployeeSettingsTable SET PictureFileName = ? WHERE Name = ?", {"small.jpg", "Bob"});
        auto d = openOn("Bob");
        auto *files = control<QListWidget>(d.get(), "File1");
        const auto picked = files->selectedItems();
        QCOMPARE(files->count() == 1 && picked.size() == 1 ? picked[0]->text() : QString(), QString("Small.JPG"));
        QCOMPARE(d->picture().size(), QSize(50, 40));
        FileDialogs::queueAnswers({folder + "/other.png", folder + "/Small.JPG"});
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(boxes(), QStringList{".JPG Not Found|Invalid file selected"});
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        d->cmdButtons_Click(0);
        QCOMPARE(value(other, "EmployeeSettingsTable", "Bob", "PictureFileName"), QString("Small.JPG"));
    }
};

QTEST_MAIN(TestModUser)
#include "tst_moduser.moc"
