// Modifying a user: load and save, the checks at OK, a rename carried into
// every related row, managed groups searched under the old name, Reset from
// the template, the photo page, and other programs at work on the same rows.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBox.h"
#include "users/frmModUser.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;
using Hold = TestSupport::ExternalHolder::Hold;

namespace {

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", QString::fromUtf8("Émile=e1"), "A[1]=x1", "A1=x2"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales'), ('Support'), ('Managers'), ('Night')");
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES "
               "('Bob', 'Sales', 1), ('Bob', 'Support', 0), ('Bob', 'Managers', 2), ('Ann', 'Sales', 1)");
    db.execute("INSERT INTO EmployeeStatusTracking (Tracker, Trackee, TrackeeStatus) VALUES "
               "('Bob', 'Ann', 'In'), ('Ann', 'Bob', 'Out')");
    db.execute("INSERT INTO TransactionLogTable (Name, Status, LastModified) VALUES ('Bob', 'In', '2006-07-01')");
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES ('Lunch', 5)");
    db.addColumn("EmployeeTable", "New_Dept", "TEXT(250)");
    db.addColumn("EmployeeTable", "New_DeptReadOnly", "INTEGER");
    db.addColumn("EmployeeTable", "New_Room", "TEXT(250)");
    db.execute("UPDATE EmployeeTable SET Status = 'Out', Phone = '2231', DueBack = 'Monday', Comments = 'Away', "
               "New_Dept = 'Accounts', New_DeptReadOnly = 1 WHERE Name = 'Bob'");
    db.execute("UPDATE EmployeeSettingsTable SET Phone = '9999', AutoClearComments = 1, AutoLogIn = 0, "
               "AutoLogOut = 1, ListViewPopUp = 0, ChangeScreenPopUp = 1, DisplayTreeView = 0, RefreshRate = 15, "
               "DefaultGroup = 'Sales', SortKey = 4, SortOrder = 1, UserSecurityLevel = 2, MinimizeSetting = 1, "
               "AutoMinimize = 1, MinimizeOnClose = 1, IconSize = 1, ToolBarText = 0, ScreenTop = -600, "
               "ScreenLeft = 300, ScreenWidth = 9000, ScreenHeight = 7000, StatusColumnWidth = 2100, "
               "NameColumnWidth = 1500, PhoneColumnWidth = 1200, DueBackColumnWidth = 1400, "
               "CommentsColumnWidth = 1600, LastModifiedColumnWidth = 4100, Password = 'pw', "
               "PhotoSizeToFit = 1 WHERE Name = 'Bob'");
}

std::unique_ptr<frmModUser> openOn(const QString &name)
{
    SelectedItemName = name;
    auto d = std::make_unique<frmModUser>();
    d->show();
    return d;
}

QStringList items(const QWidget *d, const QString &list)
{
    QStringList out;
    auto *l = control<QListWidget>(d, list);
    for (int i = 0; i < l->count(); ++i)
        out << l->item(i)->text();
    return out;
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
    QStringList out;
    Recordset rs = db.query("SELECT GroupName, GroupManager FROM EmployeeGroupTable WHERE EmployeeName = ? "
                            "ORDER BY GroupName", {name});
    for (; !rs.eof(); rs.moveNext())
        out << rs.text("GroupName") + "=" + rs.text("GroupManager");
    return out.join(' ');
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

const QString NameError = "Modify User Error|Please enter this user's name (Using your preferred format).";

}  // namespace

class TestModUser : public QObject {
    Q_OBJECT

private slots:
    // What the window loaded goes back on OK, even when another program has
    // reset the row meanwhile: a setting not loaded or not saved shows.
    void savesWhatItLoaded()
    {
        Console c(seedBoard);
        Database other = c.other();
        QMap<QString, QString> expected = settings(other, "Bob");
        expected["Phone"] = "2231";
        auto d = openOn("Bob");
        QCOMPARE(shownValue(d.get(), "txtPhone"), QString("2231"));  // the board's own, not the settings copy
        other.execute("DELETE FROM EmployeeSettingsTable WHERE Name = 'Bob'");
        other.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES ('Bob')");
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(settings(other, "Bob"), expected);
    }

    void loadReadsOddValues()
    {
        Console c(seedBoard);
        c.other().execute("UPDATE EmployeeSettingsTable SET RefreshRate = 10, SortKey = 7, ToolBarText = NULL "
                          "WHERE Name = 'Bob'");
        c.other().execute("UPDATE EmployeeTable SET Phone = NULL WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QCOMPARE(shownValue(d.get(), "optionRefreshRate"), QString("2"));  // 10 reads as 5
        QCOMPARE(shownValue(d.get(), "optSortKey"), QString("2"));         // 7 as Name
        QCOMPARE(shownValue(d.get(), "optToolBarText"), QString("1"));
        QCOMPARE(shownValue(d.get(), "txtPhone"), QString("9999"));  // the settings copy when the board has none
        // A name that is a pattern for another finds its own row.
        QCOMPARE(shownValue(openOn("A[1]").get(), "txtID"), QString("x1"));
        QCOMPARE(boxes(), QStringList());
    }

    void renameTravelsWithTheUser()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtName", "  Robert  ");
        setValue(d.get(), "txtID", "r1");
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(value(other, "EmployeeTable", "Robert", "UID"), QString("r1"));
        QCOMPARE(value(other, "EmployeeTable", "Bob", "UID"), QString("<null>"));
        QCOMPARE(value(other, "EmployeeSettingsTable", "Robert", "Password"), QString("pw"));
        QCOMPARE(memberships(other, "Robert"), QString("Managers=2 Sales=1 Support=0"));
        QCOMPARE(memberships(other, "Bob"), QString());
        QCOMPARE(other.scalar("SELECT group_concat(Tracker || '>' || Trackee, ' ') FROM "
                              "(SELECT * FROM EmployeeStatusTracking ORDER BY Tracker)").toString(),
                 QString("Ann>Robert Robert>Ann"));
        // The log is no related row: it keeps the old name.
        QCOMPARE(value(other, "TransactionLogTable", "Bob", "Status"), QString("In"));
        QCOMPARE(counter(other), before + 1);
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
        QTest::newRow("both empty: the name first") << "Bob" << "" << "" << NameError;
        QTest::newRow("empty ID") << "Bob" << "Bob" << "  " << "Modify User Error|Please enter this user's ID.";
        QTest::newRow("case-only rename") << "Bob" << "bob" << "b1" << exists.arg("bob");
        QTest::newRow("case-only rename beyond ASCII") << QString::fromUtf8("Émile") << QString::fromUtf8("émile")
                                                       << "e1" << exists.arg(QString::fromUtf8("émile"));
        QTest::newRow("wildcard name matching another") << "Bob" << "C*" << "b1" << exists.arg("C*");
        QTest::newRow("case-only ID change") << "Bob" << "Bob" << "B1" << idExists.arg("B1");
        QTest::newRow("wildcard ID") << "Bob" << "Bob" << "?1" << idExists.arg("?1");
        QTest::newRow("blanks around the same name") << "Bob" << " Bob " << " b1 " << "";
        QTest::newRow("% and _ are plain") << "Bob" << "A_" << "a%" << "";
        QTest::newRow("quotes and semicolons") << "Bob" << "O'Bob \"B\"; --" << "b'1" << "";
        QTest::newRow("250 characters") << "Bob" << QString(250, 'z') << "b1" << "";
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
        auto d = openOn(user);
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        setValue(d.get(), "txtName", name);
        setValue(d.get(), "txtID", id);
        d->cmdButtons_Click(0);
        QCOMPARE(d->isVisible(), !shown.isEmpty());
        if (!shown.isEmpty()) {
            QCOMPARE(boxes(), QStringList{shown});
            QCOMPARE(snapshot(other), before);
            QCOMPARE(QApplication::focusWidget()->objectName(), QString("txtName"));
            return;
        }
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(value(other, "EmployeeTable", name.trimmed().left(250), "UID"), id.trimmed());
        QCOMPARE(value(other, "EmployeeSettingsTable", name.trimmed().left(250), "Password"), QString("pw"));
    }

    void statusAndItsCode()
    {
        Console c(seedBoard);
        Database other = c.other();
        // Typed, stored, and the status whose code it takes (or the code itself).
        for (const auto &[typed, status, code] : {std::tuple{"  OUT ", "Out", "Out"}, {"lunch", "lunch", "Lunch"},
                                                  {"Holiday", "Holiday", "4"}}) {
            const QVariant known = other.scalar("SELECT StatusCode FROM StatusTypesTable WHERE Status = ?", {code});
            auto d = openOn("Bob");
            setValue(d.get(), "comboStatusTypes", typed);
            d->cmdButtons_Click(0);
            QCOMPARE(value(other, "EmployeeTable", "Bob", "Status"), QString(status));
            QCOMPARE(value(other, "EmployeeTable", "Bob", "StatusCode"), known.isNull() ? code : known.toString());
        }
    }

    // Added columns are written with a trailing blank, one more each OK; an
    // editor still open at OK is committed.
    void addedColumnsKeepATrailingBlank()
    {
        Console c(seedBoard);
        Database other = c.other();
        for (bool edit : {true, false}) {
            auto d = openOn("Bob");
            QVERIFY(QTest::qWaitForWindowActive(d.get()));
            if (edit) {
                d->msFlexGridChange_Pick(0);
                control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText("Finance");
            }
            d->cmdButtons_Click(0);
        }
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_Dept"), QString("Finance  "));
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_Room"), QString("  "));
        QCOMPARE(value(other, "EmployeeTable", "Bob", "New_DeptReadOnly"), QString("1"));
    }

    void managedGroups_data()
    {
        QTest::addColumn<QString>("rename");       // new name, empty: none
        QTest::addColumn<QStringList>("moveOff");  // clicked in the managed list
        QTest::addColumn<QStringList>("moveOn");   // clicked in the available list
        QTest::addColumn<QString>("expected");     // the user's memberships afterwards
        QTest::newRow("nothing moved") << "" << QStringList{} << QStringList{} << "Managers=1 Sales=1 Support=0";
        QTest::newRow("moves") << "" << QStringList{"Sales"} << QStringList{"Support", "Night"}
                               << "Managers=1 Night=1 Support=1";
        QTest::newRow("moved off and on again") << "" << QStringList{"Sales"} << QStringList{"Sales"}
                                                << "Managers=1 Sales=1 Support=0";
        // Searched under the old name, nothing is found: the old managed rows
        // stay, a plain membership is not raised, a new group is added.
        QTest::newRow("rename with moves") << "Robert" << QStringList{"Sales"} << QStringList{"Support", "Night"}
                                           << "Managers=2 Night=1 Sales=1 Support=0";
    }
    void managedGroups()
    {
        QFETCH(QString, rename);
        QFETCH(QStringList, moveOff);
        QFETCH(QStringList, moveOn);
        QFETCH(QString, expected);
        Console c(seedBoard);
        Database other = c.other();
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        QCOMPARE(items(d.get(), "ListView2"), (QStringList{"Managers", "Sales"}));
        for (const QString &g : moveOff)
            click(d.get(), "ListView2", g);
        for (const QString &g : moveOn)
            click(d.get(), "ListView1", g);
        QCOMPARE(memberships(other, "Bob"), QString("Managers=2 Sales=1 Support=0"));  // nothing before OK
        if (!rename.isEmpty())
            setValue(d.get(), "txtName", rename);
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
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
            db.execute("UPDATE NewUserDefaultsTable SET RefreshRate = " + rate + ", DefaultGroup = 'Night', "
                       "ScreenTop = 21, MinimizeSetting = 2");
        });
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtComments", "typed");
        click(d.get(), "ListView2", "Sales");
        d->cmdButtons_Click(3);
        QCOMPARE(snapshot(other), before);  // not saved (yet)
        if (chosen.isEmpty()) {
            QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '340'"));
            return;
        }
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Values have been reset to 'New User' defaults, but not saved (yet)."});
        QCOMPARE(shownValue(d.get(), "optionRefreshRate"), chosen);
        QCOMPARE(shownValue(d.get(), "ComboLastGroup"), QString("Night"));
        QCOMPARE(shownValue(d.get(), "optSysTrayTaskBar"), QString("2"));
        QCOMPARE(shownValue(d.get(), "txtComments"), QString("typed"));  // page 1 left alone
        QTest::mouseClick(control<QPushButton>(d.get(), QString("cmdButtons_%1").arg(button)), Qt::LeftButton);
        QVERIFY(!d->isVisible());
        if (button == 1)
            QCOMPARE(snapshot(other), before);
        QCOMPARE(value(other, "EmployeeSettingsTable", "Bob", "RefreshRate"), saved);
        QCOMPARE(value(other, "EmployeeSettingsTable", "Bob", "ScreenTop"), QString(button ? "-600" : "21"));
        QCOMPARE(value(other, "EmployeeSettingsTable", "Bob", "DefaultGroup"), QString("Sales"));  // never written
    }

    // A rename and a new managed group in one OK that fails: nothing is
    // half written. After a lock is let go, the same OK goes through.
    void failureAtOkWritesNothing_data()
    {
        QTest::addColumn<QString>("cause");
        QTest::newRow("write lock at OK") << "lock";
        QTest::newRow("reader at commit") << "reader";
        QTest::newRow("added value too long with its blank") << "long";
    }
    void failureAtOkWritesNothing()
    {
        QFETCH(QString, cause);
        Console c([&](Database &db) {
            seedBoard(db);
            db.addColumn("EmployeeTable", "New_Code", "TEXT(250) CHECK (length(New_Code) <= 250)");
        });
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        setValue(d.get(), "txtName", "Robert");
        click(d.get(), "ListView1", "Night");
        if (cause == "long") {
            auto *grid = control<QTableWidget>(d.get(), "msFlexGridChange");
            for (int r = 0; r < grid->rowCount(); ++r)
                if (grid->item(r, 0)->text() == "Code")
                    d->msFlexGridChange_Pick(r);
            control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText(QString(250, 'c'));
        }
        std::optional<TestSupport::ExternalHolder> holder;
        if (cause == "lock")
            holder.emplace(c.databaseFile(), Hold::Write);
        {
            StatementHook hook(gdbMain, [&](const QString &sql) {
                if (cause == "reader" && !holder && sql.startsWith("COMMIT"))
                    holder.emplace(c.databaseFile(), Hold::Read);
            });
            d->cmdButtons_Click(0);
        }
        holder.reset();
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY2(Msg::transcript()[0].text.startsWith(cause == "long" ? "Run-time error '" : "Run-time error '3260'"),
                 qPrintable(Msg::transcript()[0].text));
        QVERIFY(d->isVisible());
        QCOMPARE(snapshot(other), before);
        QVERIFY(!gdbMain.inTransaction());
        if (cause == "long")
            return;
        Msg::clearTranscript();
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(memberships(other, "Robert"), QString("Managers=2 Night=1 Sales=1 Support=0"));
    }

    void deletedMeanwhile()
    {
        Console c(seedBoard);
        Database other = c.other();
        auto d = openOn("Bob");
        click(d.get(), "ListView1", "Night");
        other.execute("DELETE FROM EmployeeTable WHERE Name = 'Bob'");
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QVERIFY(!d->isVisible());
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Bob'").toInt(), 0);
        QCOMPARE(memberships(other, "Bob"), QString());
    }

    void photoPage()
    {
        Console c(seedBoard);
        const QString folder = c.site().local("photos");
        QVERIFY(QDir().mkpath(folder));
        QImage img(50, 40, QImage::Format_RGB32);
        img.fill(Qt::red);
        QVERIFY(img.save(folder + "/Small.JPG", "JPG") && img.save(folder + "/other.png", "PNG"));
        QFile broken(folder + "/broken.jpg");
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write("not a picture") > 0);
        broken.close();
        Database other = c.other();
        other.execute("UPDATE GlobalSettingsTable SET PhotoPath = ?", {c.site().shareUnc() + "photos\\"});
        other.execute("UPDATE EmployeeSettingsTable SET PictureFileName = 'small.jpg' WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        auto *files = control<QListWidget>(d.get(), "File1");
        QCOMPARE(items(d.get(), "File1"), (QStringList{"broken.jpg", "Small.JPG"}));
        QVERIFY(files->selectedItems().size() == 1 && files->selectedItems()[0]->text() == "Small.JPG");
        QCOMPARE(d->picture().size(), QSize(50, 40));
        click(d.get(), "File1", "broken.jpg");
        QVERIFY(d->picture().isNull());
        QCOMPARE(boxes(), QStringList());
        // Browse: a file that is no JPG is refused and empties the name.
        FileDialogs::queueAnswers({folder + "/other.png", folder + "/Small.JPG"});
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(boxes(), QStringList{".JPG Not Found|Invalid file selected"});
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString("Small.JPG"));
        d->cmdButtons_Click(0);
        QCOMPARE(value(other, "EmployeeSettingsTable", "Bob", "PictureFileName"), QString("Small.JPG"));
    }
};

QTEST_MAIN(TestModUser)
#include "tst_moduser.moc"
