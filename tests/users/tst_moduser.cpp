// Modifying a user: what loading shows, the checks at OK, the write sequence
// (the rename carried by the cascades, managed groups searched under the old
// name, the trailing blank on added columns), Reset from the template,
// Cancel, the photo page, and other programs at work on the same rows.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/Hourglass.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/CreateDB.h"
#include "store/modUpdateDatabaseStructure.h"
#include "users/UserStore.h"
#include "users/frmModUser.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;

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
               "New_Dept = 'Accounts', New_DeptReadOnly = 1, ActiveFlag = 'Yes' WHERE Name = 'Bob'");
    db.execute("UPDATE EmployeeSettingsTable SET Phone = '9999', AutoClearComments = 1, AutoLogIn = 0, "
               "AutoLogOut = 1, ListViewPopUp = 0, ChangeScreenPopUp = 1, DisplayTreeView = 0, RefreshRate = 15, "
               "DefaultGroup = 'Sales', SortKey = 4, SortOrder = 1, UserSecurityLevel = 2, MinimizeSetting = 1, "
               "AutoMinimize = 1, MinimizeOnClose = 1, IconSize = 1, ToolBarText = 0, ScreenTop = -600, "
               "ScreenLeft = 300, ScreenWidth = 9000, ScreenHeight = 7000, StatusColumnWidth = 2100, "
               "NameColumnWidth = 1500, PhoneColumnWidth = 1200, DueBackColumnWidth = 1400, "
               "CommentsColumnWidth = 1600, LastModifiedColumnWidth = 4100, Password = 'pw', "
               "PhotoSizeToFit = 1, FontSizeDisplay = 11 WHERE Name = 'Bob'");
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
    for (int i = 0; i < l->count(); ++i)
        if (l->item(i)->text() == text) {
            QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, l->visualItemRect(l->item(i)).center());
            return;
        }
    qFatal("no %s in %s", qPrintable(text), qPrintable(list));
}

QStringList gridRows(const QWidget *d)
{
    QStringList out;
    auto *g = control<QTableWidget>(d, "msFlexGridChange");
    for (int r = 0; r < g->rowCount(); ++r)
        out << g->item(r, 0)->text() + "=" + g->item(r, 1)->text();
    return out;
}

// Group -> GroupManager of a user's membership rows.
QMap<QString, int> memberships(Database &db, const QString &name)
{
    QMap<QString, int> out;
    Recordset rs = db.query("SELECT GroupName, GroupManager FROM EmployeeGroupTable WHERE EmployeeName = ?", {name});
    for (; !rs.eof(); rs.moveNext())
        out.insert(rs.text("GroupName"), rs.value("GroupManager").toInt());
    return out;
}

// Everything the board holds on its users, as text, to show that nothing moved.
QString snapshot(Database &db)
{
    QString out;
    for (const char *sql : {"SELECT * FROM EmployeeTable ORDER BY Name", "SELECT * FROM EmployeeSettingsTable ORDER BY Name",
                            "SELECT * FROM EmployeeGroupTable ORDER BY EmployeeName, GroupName",
                            "SELECT * FROM EmployeeStatusTracking ORDER BY Tracker, Trackee",
                            "SELECT * FROM NewUserDefaultsTable", "SELECT * FROM StatusCounterTable"}) {
        Recordset rs = db.query(sql);
        for (; !rs.eof(); rs.moveNext()) {
            for (int i = 0; i < rs.fieldCount(); ++i)
                out += rs.value(i).toString() + '|';
            out += '\n';
        }
    }
    return out;
}

QString settingOf(Database &db, const QString &name, const QString &column)
{
    const QVariant v = db.scalar("SELECT " + column + " FROM EmployeeSettingsTable WHERE Name = ?", {name});
    return v.isNull() ? QString("<null>") : v.toString();
}

const QString ResetDone = "|Values have been reset to 'New User' defaults, but not saved (yet).";

}  // namespace

class TestModUser : public QObject {
    Q_OBJECT

private slots:
    void loadShowsTheUser()
    {
        Console c(seedBoard);
        auto d = openOn("Bob");
        QCOMPARE(d->windowTitle(), gstrAppTitle + "Modify User or Item Details  [ Bob ]");
        QCOMPARE(shownValue(d.get(), "txtID"), QString("b1"));
        QCOMPARE(SelectedItemID, QString("b1"));
        QCOMPARE(shownValue(d.get(), "txtName"), QString("Bob"));
        QCOMPARE(control<QLineEdit>(d.get(), "txtName")->selectedText(), QString("Bob"));
        QCOMPARE(shownValue(d.get(), "comboStatusTypes"), QString("Out"));
        QCOMPARE(control<QComboBox>(d.get(), "comboStatusTypes")->currentIndex(),
                 control<QComboBox>(d.get(), "comboStatusTypes")->findText("Out"));
        QCOMPARE(shownValue(d.get(), "txtPhone"), QString("2231"));  // the board's own, not the settings copy
        QCOMPARE(shownValue(d.get(), "ComboDueBack"), QString("Monday"));
        QCOMPARE(shownValue(d.get(), "txtComments"), QString("Away"));
        QCOMPARE(shownValue(d.get(), "ComboLastGroup"), QString("Sales"));
        QCOMPARE(gridRows(d.get()), (QStringList{"Dept=Accounts", "Room="}));
        QCOMPARE(items(d.get(), "ListView1"), (QStringList{"Everyone", "Night", "Support"}));
        QCOMPARE(items(d.get(), "ListView2"), (QStringList{"Managers", "Sales"}));
        const QMap<QString, QString> expected = {
            {"chkAutoClearComments", "1"}, {"chkAutoLogIn", "0"}, {"chkAutoLogOut", "1"}, {"chkListViewPopUp", "0"},
            {"chkChangeScreenPopUp", "1"}, {"chkDisplayTreeView", "0"}, {"optionRefreshRate", "3"},
            {"optSortKey", "4"}, {"optSortOrder", "1"}, {"OptionSecurity", "2"}, {"optSysTrayTaskBar", "1"},
            {"chkAutoMinimize", "1"}, {"chkMinimizeOnClose", "1"}, {"optIconSize", "1"}, {"optToolBarText", "0"},
            {"txtScreenTop", "-600"}, {"txtScreenLeft", "300"}, {"txtScreenWidth", "9000"},
            {"txtScreenHeight", "7000"}, {"txtStatusColumnWidth", "2100"}, {"txtNameColumnWidth", "1500"},
            {"txtPhoneColumnWidth", "1200"}, {"txtDueBackColumnWidth", "1400"}, {"txtCommentsColumnWidth", "1600"},
            {"txtLastModifiedColumnWidth", "4100"}, {"chkPhotoSizeToFit", "1"}, {"chkStatusAlertsOverride", "0"},
            {"chkActiveFlag", "0"}, {"txtPassword", ""}};
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(shownValue(d.get(), it.key()) == it.value(), qPrintable(it.key() + ": " + shownValue(d.get(), it.key())));
        auto *tabs = control<QTabWidget>(d.get(), "TabStrip1");
        QCOMPARE(tabs->count(), 9);
        QCOMPARE(tabs->currentIndex(), 0);
        QCOMPARE(control<QStatusBar>(d.get(), "StatusBar")->currentMessage(),
                 QString(" Adds a colored button to the users ToolBar."));
        tabs->setCurrentIndex(4);
        QCOMPARE(control<QStatusBar>(d.get(), "StatusBar")->currentMessage(), QString());
    }

    void loadReadsEachValue_data()
    {
        QTest::addColumn<QString>("column");  // EmployeeSettingsTable column of Bob
        QTest::addColumn<QString>("value");   // SQL literal
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("shown");
        const QStringList rates{"0", "1", "5", "15", "30", "60"};
        for (int i = 0; i < rates.size(); ++i)
            QTest::newRow(qPrintable("rate " + rates[i])) << "RefreshRate" << rates[i] << "optionRefreshRate"
                                                          << QString::number(i);
        QTest::newRow("rate 10 reads as 5") << "RefreshRate" << "10" << "optionRefreshRate" << "2";
        QTest::newRow("rate Null reads as 5") << "RefreshRate" << "NULL" << "optionRefreshRate" << "2";
        QTest::newRow("sort key 0") << "SortKey" << "0" << "optSortKey" << "2";
        QTest::newRow("sort key below 0") << "SortKey" << "-3" << "optSortKey" << "2";
        QTest::newRow("sort key 7 loads as Name") << "SortKey" << "7" << "optSortKey" << "2";
        QTest::newRow("sort key 6") << "SortKey" << "6" << "optSortKey" << "6";
        QTest::newRow("security Null") << "UserSecurityLevel" << "NULL" << "OptionSecurity" << "0";
        QTest::newRow("toolbar text Null") << "ToolBarText" << "NULL" << "optToolBarText" << "1";
        QTest::newRow("tree view Null") << "DisplayTreeView" << "NULL" << "chkDisplayTreeView" << "0";
        QTest::newRow("photo fit Null") << "PhotoSizeToFit" << "NULL" << "chkPhotoSizeToFit" << "0";
        QTest::newRow("status alerts on") << "StatusAlertsOverride" << "1" << "chkStatusAlertsOverride" << "1";
        QTest::newRow("picture name") << "PictureFileName" << "'me.jpg'" << "txtFileName" << "me.jpg";
    }
    void loadReadsEachValue()
    {
        QFETCH(QString, column);
        QFETCH(QString, value);
        QFETCH(QString, control);
        QFETCH(QString, shown);
        Console c(seedBoard);
        c.other().execute("UPDATE EmployeeSettingsTable SET " + column + " = " + value + " WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QCOMPARE(shownValue(d.get(), control), shown);
        QCOMPARE(boxes(), QStringList());
    }

    void valueOfNoChoiceStopsTheOpening()
    {
        Console c(seedBoard);
        c.other().execute("UPDATE EmployeeSettingsTable SET IconSize = 5 WHERE Name = 'Bob'");
        c.clickNode("Users");
        ShownWindows shown;
        c.doubleClickRow(c.rowOf("Bob"));
        QCOMPARE(shown.names, QStringList());
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '340'"));
        QVERIFY(!Hourglass::shown());
    }

    void phoneFromTheSettingsWhenTheBoardHasNone()
    {
        Console c(seedBoard);
        c.other().execute("UPDATE EmployeeTable SET Phone = NULL WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QCOMPARE(shownValue(d.get(), "txtPhone"), QString("9999"));
    }

    void nameWithPatternCharactersFindsItself()
    {
        // "A[1]" as a pattern would match "A1"; the window opens on its own row.
        Console c(seedBoard);
        auto d = openOn("A[1]");
        QCOMPARE(shownValue(d.get(), "txtID"), QString("x1"));
        setValue(d.get(), "txtComments", "mine");
        d->cmdButtons_Click(0);
        Database other = c.other();
        QCOMPARE(other.scalar("SELECT Comments FROM EmployeeTable WHERE Name = 'A[1]'").toString(), QString("mine"));
        QCOMPARE(other.scalar("SELECT Comments FROM EmployeeTable WHERE Name = 'A1'").toString(), QString());
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
        QVERIFY(!d->isVisible());
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Bob'").toInt(), 0);
        QCOMPARE(other.scalar("SELECT UID FROM EmployeeTable WHERE Name = 'Robert'").toString(), QString("r1"));
        // The settings row moved and took the window's values.
        QCOMPARE(settingOf(other, "Robert", "Password"), QString("pw"));
        QCOMPARE(settingOf(other, "Robert", "RefreshRate"), QString("15"));
        QCOMPARE(memberships(other, "Robert"), (QMap<QString, int>{{"Sales", 1}, {"Support", 0}, {"Managers", 2}}));
        QCOMPARE(memberships(other, "Bob"), (QMap<QString, int>{}));
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeStatusTracking WHERE Tracker = 'Robert' AND Trackee = 'Ann'").toInt(), 1);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeStatusTracking WHERE Trackee = 'Robert' AND Tracker = 'Ann'").toInt(), 1);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeStatusTracking WHERE 'Bob' IN (Tracker, Trackee)").toInt(), 0);
        // The log is not related: old rows keep the old name.
        QCOMPARE(other.scalar("SELECT count(*) FROM TransactionLogTable WHERE Name = 'Bob'").toInt(), 1);
        QCOMPARE(counter(other), before + 1);
        QCOMPARE(SelectedItemName, QString("Bob"));
        QVERIFY(!Hourglass::shown());
    }

    void checksAtOk_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("shown");  // title|text, empty: saved
        const QString exists = "Error - User Exists|Sorry, %1 already exists.\rPlease select a different user name or add the user's middle initial.";
        const QString idExists = "Error - User ID Exists|Sorry, %1 already exists.\rPlease select a different User ID.";
        QTest::newRow("empty name") << "Bob" << "   " << "b1" << "Modify User Error|Please enter this user's name (Using your preferred format).";
        QTest::newRow("empty ID") << "Bob" << "Bob" << "  " << "Modify User Error|Please enter this user's ID.";
        QTest::newRow("both empty: the name first") << "Bob" << "" << "" << "Modify User Error|Please enter this user's name (Using your preferred format).";
        QTest::newRow("case-only rename") << "Bob" << "bob" << "b1" << exists.arg("bob");
        QTest::newRow("case-only rename, upper") << "Bob" << "BOB" << "b1" << exists.arg("BOB");
        QTest::newRow("case-only rename beyond ASCII") << QString::fromUtf8("Émile") << QString::fromUtf8("émile") << "e1"
                                                       << exists.arg(QString::fromUtf8("émile"));
        QTest::newRow("name of another user") << "Bob" << "ann" << "b1" << exists.arg("ann");
        QTest::newRow("wildcard name matching another") << "Bob" << "C*" << "b1" << exists.arg("C*");
        QTest::newRow("ID of another user") << "Bob" << "Bob" << "A1" << idExists.arg("A1");
        QTest::newRow("case-only ID change") << "Bob" << "Bob" << "B1" << idExists.arg("B1");
        QTest::newRow("wildcard ID") << "Bob" << "Bob" << "?1" << idExists.arg("?1");
        QTest::newRow("unchanged: no check") << "Bob" << "Bob" << "b1" << "";
        QTest::newRow("blanks around the same name") << "Bob" << " Bob " << " b1 " << "";
        QTest::newRow("% and _ are plain") << "Bob" << "B%b_" << "b%" << "";
        QTest::newRow("quotes and semicolons") << "Bob" << "Bob \"The Builder\"; --" << "b'1" << "";
        QTest::newRow("250 characters") << "Bob" << QString(250, 'z') << "b1" << "";
        QTest::newRow("251 characters: the field takes 250") << "Bob" << QString(251, 'y') << "b1" << "";
        QTest::newRow("65-character ID: the field takes 64") << "Bob" << "Bob" << QString(65, '9') << "";
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
        if (!shown.isEmpty()) {
            QCOMPARE(boxes(), QStringList{shown});
            QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Critical);
            QVERIFY(d->isVisible());
            QCOMPARE(snapshot(other), before);
            // The name field, also when the fault is in the ID.
            QCOMPARE(QApplication::focusWidget()->objectName(), QString("txtName"));
            QCOMPARE(control<QLineEdit>(d.get(), "txtName")->selectedText(), name);
            return;
        }
        QCOMPARE(boxes(), QStringList());
        QVERIFY(!d->isVisible());
        const QString storedName = shownValue(d.get(), "txtName").trimmed();
        const QString storedId = shownValue(d.get(), "txtID").trimmed();
        QCOMPARE(storedName, name.trimmed().left(250));
        QCOMPARE(storedId, id.trimmed().left(64));
        QCOMPARE(other.scalar("SELECT UID FROM EmployeeTable WHERE Name = ?", {storedName}).toString(), storedId);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?", {storedName}).toInt(), 1);
    }

    void addedValueTooLongForItsColumn()
    {
        // The trailing blank takes a 250-character value past a column that
        // holds 250: the store refuses it, and the rename made in the same OK
        // is undone with it.
        Console c([](Database &db) {
            seedBoard(db);
            db.addColumn("EmployeeTable", "New_Code", "TEXT(250) CHECK (length(New_Code) <= 250)");
        });
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        setValue(d.get(), "txtName", "Robert");
        auto *grid = control<QTableWidget>(d.get(), "msFlexGridChange");
        int codeRow = -1;
        for (int r = 0; r < grid->rowCount(); ++r)
            if (grid->item(r, 0)->text() == "Code")
                codeRow = r;
        QVERIFY(codeRow >= 0);
        d->msFlexGridChange_Pick(codeRow);
        control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText(QString(250, 'c'));
        d->cmdButtons_Click(0);
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '"));
        QVERIFY(d->isVisible());
        QCOMPARE(snapshot(other), before);
    }

    void statusAndItsCode_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("status");
        QTest::addColumn<int>("code");
        QTest::newRow("in") << "in" << "In" << 1;
        QTest::newRow("blanks and upper case") << "  OUT " << "Out" << 2;
        QTest::newRow("bUsY") << "bUsY" << "Busy" << 3;
        QTest::newRow("another status in other case") << "lunch" << "lunch" << 5;
        QTest::newRow("in no list") << "Holiday" << "Holiday" << 4;
    }
    void statusAndItsCode()
    {
        QFETCH(QString, typed);
        QFETCH(QString, status);
        QFETCH(int, code);
        Console c(seedBoard);
        Database other = c.other();
        const int inCode = other.scalar("SELECT StatusCode FROM StatusTypesTable WHERE Status = 'In'").toInt();
        const int outCode = other.scalar("SELECT StatusCode FROM StatusTypesTable WHERE Status = 'Out'").toInt();
        const int busyCode = other.scalar("SELECT StatusCode FROM StatusTypesTable WHERE Status = 'Busy'").toInt();
        const int expected = code == 1 ? inCode : code == 2 ? outCode : code == 3 ? busyCode : code;
        auto d = openOn("Bob");
        setValue(d.get(), "comboStatusTypes", typed);
        d->cmdButtons_Click(0);
        QCOMPARE(other.scalar("SELECT Status FROM EmployeeTable WHERE Name = 'Bob'").toString(), status);
        QCOMPARE(other.scalar("SELECT StatusCode FROM EmployeeTable WHERE Name = 'Bob'").toInt(), expected);
    }

    void everySettingIsSaved()
    {
        // Each control set away from what was loaded: a swapped or missed
        // column shows.
        Console c(seedBoard);
        Database other = c.other();
        auto d = openOn("Bob");
        const QList<std::tuple<QString, QString, QString>> changes = {
            {"txtPhone", " 4455 ", "4455"}, {"chkStatusAlertsOverride", "1", "1"},
            {"chkAutoClearComments", "0", "0"}, {"chkAutoLogIn", "1", "1"}, {"chkAutoLogOut", "0", "0"},
            {"chkListViewPopUp", "1", "1"}, {"chkChangeScreenPopUp", "0", "0"}, {"chkDisplayTreeView", "1", "1"},
            {"optSortKey", "5", "5"}, {"optSortOrder", "0", "0"}, {"OptionSecurity", "1", "1"},
            {"optionRefreshRate", "5", "60"}, {"chkAutoMinimize", "0", "0"}, {"optSysTrayTaskBar", "2", "2"},
            {"chkMinimizeOnClose", "0", "0"}, {"optIconSize", "0", "0"}, {"optToolBarText", "1", "1"},
            {"txtScreenTop", "-1200", "-1200"}, {"txtScreenLeft", "abc", "0"}, {"txtScreenWidth", "8000.5", "8000"},
            {"txtScreenHeight", "6000 twips", "6000"}, {"txtStatusColumnWidth", "1", "1"},
            {"txtNameColumnWidth", "2", "2"}, {"txtPhoneColumnWidth", "3", "3"}, {"txtDueBackColumnWidth", "4", "4"},
            {"txtCommentsColumnWidth", "5", "5"}, {"txtLastModifiedColumnWidth", "6", "6"},
            {"chkPhotoSizeToFit", "0", "0"}, {"ComboLastGroup", "Night", "Sales"}, {"chkActiveFlag", "1", ""},
        };
        for (const auto &[control, value, stored] : changes)
            setValue(d.get(), control, value);
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        const QMap<QString, QString> columns = {
            {"txtPhone", "Phone"}, {"chkStatusAlertsOverride", "StatusAlertsOverride"},
            {"chkAutoClearComments", "AutoClearComments"}, {"chkAutoLogIn", "AutoLogIn"},
            {"chkAutoLogOut", "AutoLogOut"}, {"chkListViewPopUp", "ListViewPopUp"},
            {"chkChangeScreenPopUp", "ChangeScreenPopUp"}, {"chkDisplayTreeView", "DisplayTreeView"},
            {"optSortKey", "SortKey"}, {"optSortOrder", "SortOrder"}, {"OptionSecurity", "UserSecurityLevel"},
            {"optionRefreshRate", "RefreshRate"}, {"chkAutoMinimize", "AutoMinimize"},
            {"optSysTrayTaskBar", "MinimizeSetting"}, {"chkMinimizeOnClose", "MinimizeOnClose"},
            {"optIconSize", "IconSize"}, {"optToolBarText", "ToolBarText"}, {"txtScreenTop", "ScreenTop"},
            {"txtScreenLeft", "ScreenLeft"}, {"txtScreenWidth", "ScreenWidth"}, {"txtScreenHeight", "ScreenHeight"},
            {"txtStatusColumnWidth", "StatusColumnWidth"}, {"txtNameColumnWidth", "NameColumnWidth"},
            {"txtPhoneColumnWidth", "PhoneColumnWidth"}, {"txtDueBackColumnWidth", "DueBackColumnWidth"},
            {"txtCommentsColumnWidth", "CommentsColumnWidth"}, {"txtLastModifiedColumnWidth", "LastModifiedColumnWidth"},
            {"chkPhotoSizeToFit", "PhotoSizeToFit"}, {"ComboLastGroup", "DefaultGroup"}};
        for (const auto &[control, value, stored] : changes)
            if (columns.contains(control))
                QVERIFY2(settingOf(other, "Bob", columns[control]) == stored,
                         qPrintable(control + ": " + settingOf(other, "Bob", columns[control])));
        QCOMPARE(other.scalar("SELECT Phone FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString("4455"));
        // Neither shown nor written.
        QCOMPARE(other.scalar("SELECT ActiveFlag FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString("Yes"));
        QCOMPARE(settingOf(other, "Bob", "Password"), QString("pw"));
        QCOMPARE(settingOf(other, "Bob", "FontSizeDisplay"), QString("11"));
    }

    void addedColumnsKeepATrailingBlank()
    {
        Console c(seedBoard);
        Database other = c.other();
        {
            auto d = openOn("Bob");
            QVERIFY(QTest::qWaitForWindowActive(d.get()));
            d->msFlexGridChange_Pick(0);
            auto *editor = control<QLineEdit>(d.get(), "txtChangeFieldValue");
            QVERIFY(editor->isVisible());
            QCOMPARE(editor->text(), QString("Accounts"));
            editor->setText("Finance");
            // Leaving the editor puts its text into the cell.
            control<QLineEdit>(d.get(), "txtComments")->setFocus();
            QVERIFY(!editor->isVisible());
            QCOMPARE(gridRows(d.get()), (QStringList{"Dept=Finance", "Room="}));
            d->cmdButtons_Click(0);
        }
        QCOMPARE(other.scalar("SELECT New_Dept FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString("Finance "));
        QCOMPARE(other.scalar("SELECT New_Room FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString(" "));
        QCOMPARE(other.scalar("SELECT New_DeptReadOnly FROM EmployeeTable WHERE Name = 'Bob'").toInt(), 1);
        {
            // Shown as stored, and one blank longer for each OK.
            auto d = openOn("Bob");
            QCOMPARE(gridRows(d.get()), (QStringList{"Dept=Finance ", "Room= "}));
            d->cmdButtons_Click(0);
        }
        QCOMPARE(other.scalar("SELECT New_Dept FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString("Finance  "));
    }

    void editorOpenAtOkIsCommitted()
    {
        Console c(seedBoard);
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        d->msFlexGridChange_Pick(1);
        control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText("B12");
        d->cmdButtons_Click(0);
        QCOMPARE(c.other().scalar("SELECT New_Room FROM EmployeeTable WHERE Name = 'Bob'").toString(), QString("B12 "));
    }

    void scrollingTheGridClosesTheEditor()
    {
        Console c([](Database &db) {
            seedBoard(db);
            for (int i = 0; i < 30; ++i)
                db.addColumn("EmployeeTable", QString("New_C%1").arg(i, 2, 10, QChar('0')), "TEXT(250)");
        });
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        d->msFlexGridChange_Pick(0);
        auto *editor = control<QLineEdit>(d.get(), "txtChangeFieldValue");
        editor->setText("Changed");
        auto *grid = control<QTableWidget>(d.get(), "msFlexGridChange");
        QVERIFY(grid->verticalScrollBar()->maximum() > 0);
        grid->verticalScrollBar()->setValue(5);
        QVERIFY(!editor->isVisible());
        QCOMPARE(grid->item(0, 1)->text(), QString("Changed"));
    }

    void gridWithoutAddedColumns()
    {
        Console c([](Database &db) {
            addUsers(db, {"Bob=b1"});
            db.addColumn("EmployeeTable", "New_DeptReadOnly", "INTEGER");
        });
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        QCOMPARE(gridRows(d.get()), QStringList{"="});
        d->msFlexGridChange_Pick(0);
        QVERIFY(!control<QLineEdit>(d.get(), "txtChangeFieldValue")->isVisible());
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QVERIFY(c.other().scalar("SELECT New_DeptReadOnly FROM EmployeeTable WHERE Name = 'Bob'").isNull());
    }

    void managedGroups_data()
    {
        QTest::addColumn<QString>("rename");          // new name, empty: none
        QTest::addColumn<QStringList>("moveOff");     // clicked in the managed list
        QTest::addColumn<QStringList>("moveOn");      // clicked in the available list
        QTest::addColumn<QStringList>("managedList"); // the managed list at OK, in order
        QTest::addColumn<QString>("expected");        // group=GroupManager of the user's rows afterwards
        QTest::newRow("nothing moved") << "" << QStringList{} << QStringList{} << QStringList{"Managers", "Sales"}
                                       << "Managers=1 Sales=1 Support=0";
        QTest::newRow("moves, no rename") << "" << QStringList{"Sales"} << QStringList{"Support", "Night"}
                                          << QStringList{"Managers", "Support", "Night"}
                                          << "Managers=1 Night=1 Support=1";
        QTest::newRow("moved off and on again") << "" << QStringList{"Sales"} << QStringList{"Sales"}
                                                << QStringList{"Managers", "Sales"} << "Managers=1 Sales=1 Support=0";
        QTest::newRow("rename, nothing moved") << "Robert" << QStringList{} << QStringList{}
                                               << QStringList{"Managers", "Sales"} << "Managers=2 Sales=1 Support=0";
        // Searched under the old name, nothing is found: the old managed rows
        // stay, a plain membership is not raised, a new group is added.
        QTest::newRow("rename with moves") << "Robert" << QStringList{"Sales"} << QStringList{"Support", "Night"}
                                           << QStringList{"Managers", "Support", "Night"}
                                           << "Managers=2 Night=1 Sales=1 Support=0";
    }
    void managedGroups()
    {
        QFETCH(QString, rename);
        QFETCH(QStringList, moveOff);
        QFETCH(QStringList, moveOn);
        QFETCH(QStringList, managedList);
        QFETCH(QString, expected);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        control<QTabWidget>(d.get(), "TabStrip1")->setCurrentIndex(4);
        for (const QString &g : moveOff)
            click(d.get(), "ListView2", g);
        for (const QString &g : moveOn)
            click(d.get(), "ListView1", g);
        QCOMPARE(items(d.get(), "ListView2"), managedList);
        // Nothing is written before OK.
        QCOMPARE(memberships(other, "Bob"), (QMap<QString, int>{{"Sales", 1}, {"Support", 0}, {"Managers", 2}}));
        if (!rename.isEmpty())
            setValue(d.get(), "txtName", rename);
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QStringList rows;
        const QMap<QString, int> m = memberships(other, rename.isEmpty() ? "Bob" : rename);
        for (auto it = m.cbegin(); it != m.cend(); ++it)
            rows << it.key() + "=" + QString::number(it.value());
        QCOMPARE(rows.join(' '), expected);
        // Another user's management of the same group is not touched.
        QCOMPARE(memberships(other, "Ann"), (QMap<QString, int>{{"Sales", 1}}));
        QCOMPARE(counter(other), before + 1);
    }

    void emptyListIgnoresTheClick()
    {
        Console c([](Database &db) { addUsers(db, {"Bob=b1"}); });
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        control<QTabWidget>(d.get(), "TabStrip1")->setCurrentIndex(4);
        QCOMPARE(items(d.get(), "ListView2"), QStringList());
        auto *managed = control<QListWidget>(d.get(), "ListView2");
        QTest::mouseClick(managed->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
        QCOMPARE(items(d.get(), "ListView1"), QStringList{"Everyone"});
        click(d.get(), "ListView1", "Everyone");
        QCOMPARE(items(d.get(), "ListView1"), QStringList());
        QCOMPARE(items(d.get(), "ListView2"), QStringList{"Everyone"});
    }

    void cancelWritesNothing()
    {
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        setValue(d.get(), "txtName", "Robert");
        setValue(d.get(), "optionRefreshRate", "0");
        click(d.get(), "ListView2", "Sales");
        d->msFlexGridChange_Pick(0);
        control<QLineEdit>(d.get(), "txtChangeFieldValue")->setText("x");
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdButtons_1"), Qt::LeftButton);
        QVERIFY(!d->isVisible());
        QCOMPARE(d->result(), int(QDialog::Rejected));
        QCOMPARE(snapshot(other), before);
    }

    void resetFromTheTemplate_data()
    {
        QTest::addColumn<QString>("rate");     // the template's RefreshRate
        QTest::addColumn<QString>("chosen");   // refresh choice afterwards, empty: the reset failed
        QTest::addColumn<QString>("saved");    // RefreshRate after OK
        QTest::newRow("0") << "0" << "0" << "0";
        QTest::newRow("1") << "1" << "1" << "1";
        QTest::newRow("5") << "5" << "2" << "5";
        QTest::newRow("10 shows as 15") << "10" << "3" << "15";
        QTest::newRow("15 shows as 30") << "15" << "4" << "30";
        QTest::newRow("30 shows as 60") << "30" << "5" << "60";
        QTest::newRow("60 has no choice: a failure") << "60" << "" << "";
        QTest::newRow("7: the choice stays") << "7" << "3" << "15";
    }
    void resetFromTheTemplate()
    {
        QFETCH(QString, rate);
        QFETCH(QString, chosen);
        QFETCH(QString, saved);
        Console c([&](Database &db) {
            seedBoard(db);
            db.execute("UPDATE NewUserDefaultsTable SET RefreshRate = " + rate + ", AutoClearComments = 0, "
                       "AutoLogIn = 1, AutoLogOut = 0, AutoMinimize = 0, MinimizeOnClose = 0, DefaultGroup = 'Night', "
                       "StatusColumnWidth = 11, NameColumnWidth = 12, PhoneColumnWidth = 13, DueBackColumnWidth = 14, "
                       "CommentsColumnWidth = 15, LastModifiedColumnWidth = 16, SortOrder = 0, SortKey = 0, "
                       "ScreenTop = 21, ScreenLeft = 22, ScreenWidth = 23, ScreenHeight = 24, ListViewPopUp = 1, "
                       "ChangeScreenPopUp = 0, DisplayTreeView = NULL, UserSecurityLevel = 0, MinimizeSetting = 2, "
                       "IconSize = 0, ToolBarText = 1");
        });
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtComments", "typed");
        d->cmdButtons_Click(3);
        if (chosen.isEmpty()) {
            QCOMPARE(Msg::transcript().size(), 1);
            QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '340'"));
            QVERIFY(d->isVisible());
            QCOMPARE(snapshot(other), before);
            return;
        }
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + ResetDone});
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::None);
        const QMap<QString, QString> expected = {
            {"optionRefreshRate", chosen}, {"chkAutoClearComments", "0"}, {"chkAutoLogIn", "1"},
            {"chkAutoLogOut", "0"}, {"chkAutoMinimize", "0"}, {"chkMinimizeOnClose", "0"},
            {"ComboLastGroup", "Night"}, {"txtStatusColumnWidth", "11"}, {"txtNameColumnWidth", "12"},
            {"txtPhoneColumnWidth", "13"}, {"txtDueBackColumnWidth", "14"}, {"txtCommentsColumnWidth", "15"},
            {"txtLastModifiedColumnWidth", "16"}, {"optSortOrder", "0"}, {"optSortKey", "2"},
            {"txtScreenTop", "21"}, {"txtScreenLeft", "22"}, {"txtScreenWidth", "23"}, {"txtScreenHeight", "24"},
            {"chkListViewPopUp", "1"}, {"chkChangeScreenPopUp", "0"}, {"chkDisplayTreeView", "0"},
            {"OptionSecurity", "0"}, {"optSysTrayTaskBar", "2"}, {"optIconSize", "0"}, {"optToolBarText", "1"},
            // Left alone: page 1 but the last group, and the photo.
            {"txtName", "Bob"}, {"txtPhone", "2231"}, {"txtComments", "typed"}, {"chkPhotoSizeToFit", "1"},
            {"chkStatusAlertsOverride", "0"}};
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(shownValue(d.get(), it.key()) == it.value(), qPrintable(it.key() + ": " + shownValue(d.get(), it.key())));
        QCOMPARE(items(d.get(), "ListView2"), (QStringList{"Managers", "Sales"}));
        // Not saved (yet).
        QCOMPARE(snapshot(other), before);
        d->cmdButtons_Click(0);
        QCOMPARE(settingOf(other, "Bob", "RefreshRate"), saved);
        QCOMPARE(settingOf(other, "Bob", "ScreenTop"), QString("21"));
        QCOMPARE(settingOf(other, "Bob", "DefaultGroup"), QString("Sales"));  // never written
    }

    void resetThenCancel()
    {
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        d->cmdButtons_Click(3);
        QCOMPARE(shownValue(d.get(), "txtScreenTop"), QString("1200"));
        d->cmdButtons_Click(1);
        QCOMPARE(snapshot(other), before);
    }

    void resetOnAnEmptyTemplateAddsItsRow()
    {
        Console c([](Database &db) {
            seedBoard(db);
            db.execute("DELETE FROM NewUserDefaultsTable");
        });
        auto d = openOn("Bob");
        d->cmdButtons_Click(3);
        QCOMPARE(c.other().scalar("SELECT count(*) FROM NewUserDefaultsTable").toInt(), 1);
        QCOMPARE(shownValue(d.get(), "optionRefreshRate"), QString("2"));  // the template's default 5
    }

    void lockedByAnotherProgramAtOk()
    {
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtName", "Robert");
        click(d.get(), "ListView1", "Night");
        {
            TestSupport::ExternalHolder holder(c.databaseFile(), TestSupport::ExternalHolder::Hold::Write);
            QVERIFY(holder.started());
            d->cmdButtons_Click(0);
            QCOMPARE(Msg::transcript().size(), 1);
            QVERIFY2(Msg::transcript()[0].text.startsWith("Run-time error '3260'"), qPrintable(Msg::transcript()[0].text));
            QVERIFY(d->isVisible());
            QVERIFY(!Hourglass::shown());
        }
        QCOMPARE(snapshot(other), before);
        QVERIFY(!gdbMain.inTransaction());
        Msg::clearTranscript();
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(memberships(other, "Robert"),
                 (QMap<QString, int>{{"Sales", 1}, {"Support", 0}, {"Managers", 2}, {"Night", 1}}));
    }

    void lockTakenMidwayLeavesNothingHalfWritten()
    {
        // Another program starts reading just as the writes are to be
        // committed: all of them are undone, and the message says so.
        Console c(seedBoard);
        Database other = c.other();
        const QString before = snapshot(other);
        auto d = openOn("Bob");
        setValue(d.get(), "txtName", "Robert");
        std::optional<TestSupport::ExternalHolder> holder;
        {
            StatementHook hook(gdbMain, [&](const QString &sql) {
                if (!holder && sql.startsWith("COMMIT"))
                    holder.emplace(c.databaseFile(), TestSupport::ExternalHolder::Hold::Read);
            });
            d->cmdButtons_Click(0);
        }
        holder.reset();
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '3260'"));
        QCOMPARE(snapshot(other), before);
        QVERIFY(!gdbMain.inTransaction());
    }

    void deletedMeanwhile()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        auto d = openOn("Bob");
        click(d.get(), "ListView1", "Night");
        other.execute("DELETE FROM EmployeeTable WHERE Name = 'Bob'");
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        QVERIFY(!d->isVisible());
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Bob'").toInt(), 0);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeGroupTable WHERE EmployeeName = 'Bob'").toInt(), 0);
        QCOMPARE(counter(other), before + 1);
    }

    void vanishedBeforeOpeningLoadsEmpty()
    {
        Console c(seedBoard);
        c.other().execute("DELETE FROM EmployeeTable WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QCOMPARE(shownValue(d.get(), "txtID"), QString());
        QCOMPARE(shownValue(d.get(), "txtName"), QString());
        QCOMPARE(gridRows(d.get()), (QStringList{"Dept=", "Room="}));
        d->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList{"Modify User Error|Please enter this user's name (Using your preferred format)."});
    }

    void photoPage()
    {
        Console c(seedBoard);
        const QString folder = c.site().local("photos");
        QVERIFY(QDir().mkpath(folder));
        QImage big(500, 400, QImage::Format_RGB32);
        big.fill(Qt::blue);
        QVERIFY(big.save(folder + "/big.jpg", "JPG"));
        QImage small(50, 40, QImage::Format_RGB32);
        small.fill(Qt::red);
        QVERIFY(small.save(folder + "/Small.JPG", "JPG"));
        QVERIFY(small.save(folder + "/other.png", "PNG"));
        Database other = c.other();
        other.execute("UPDATE GlobalSettingsTable SET PhotoPath = ?", {c.site().shareUnc() + "photos\\"});
        other.execute("UPDATE EmployeeSettingsTable SET PictureFileName = 'small.jpg', PhotoSizeToFit = 0 WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        control<QTabWidget>(d.get(), "TabStrip1")->setCurrentIndex(8);
        QCOMPARE(d->photoFolder(), QDir(folder).absolutePath());
        QCOMPARE(items(d.get(), "File1"), (QStringList{"big.jpg", "Small.JPG"}));
        auto *files = control<QListWidget>(d.get(), "File1");
        QCOMPARE(files->selectedItems().size(), 1);
        QCOMPARE(files->selectedItems()[0]->text(), QString("Small.JPG"));
        QCOMPARE(d->picture().size(), QSize(50, 40));
        auto *h = control<QScrollBar>(d.get(), "HScroll1");
        auto *v = control<QScrollBar>(d.get(), "VScroll1");
        QVERIFY(!h->isVisible() && !v->isVisible());

        // A picture larger than the panel gets scroll bars over its excess.
        click(d.get(), "File1", "big.jpg");
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString("big.jpg"));
        QCOMPARE(d->picture().size(), QSize(500, 400));
        auto *portal = control<QWidget>(d.get(), "picPortal");
        QVERIFY(h->isVisible() && v->isVisible());
        QCOMPARE(h->maximum(), 500 - portal->width());
        QCOMPARE(v->maximum(), 400 - portal->height());
        h->setValue(30);
        QCOMPARE(control<QLabel>(d.get(), "picPhoto")->x(), -30);

        // Size to fit: the stretched image alone.
        setValue(d.get(), "chkPhotoSizeToFit", "1");
        QVERIFY(control<QLabel>(d.get(), "imgPhoto")->isVisible());
        QVERIFY(!portal->isVisible() && !h->isVisible() && !v->isVisible());
        setValue(d.get(), "chkPhotoSizeToFit", "0");
        QVERIFY(portal->isVisible() && h->isVisible());

        // Browse: a file that is no JPG is refused and empties the name.
        FileDialogs::queueAnswers({folder + "/other.png", "", folder + "/Small.JPG"});
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(boxes(), QStringList{".JPG Not Found|Invalid file selected"});
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Exclamation);
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);  // cancelled
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString("Small.JPG"));
        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), 3);
        QCOMPARE(asked[0].title, QString("Locate Users Photo"));
        QCOMPARE(asked[0].filter, QString("Pictures (*.jpg)|*.jpg"));
        QCOMPARE(asked[0].initialFolder, QDir(folder).absolutePath());
        d->cmdButtons_Click(0);
        QCOMPARE(settingOf(other, "Bob", "PictureFileName"), QString("Small.JPG"));
        QCOMPARE(settingOf(other, "Bob", "PhotoSizeToFit"), QString("0"));
    }

    void clearImage()
    {
        Console c(seedBoard);
        Database other = c.other();
        QImage img(300, 300, QImage::Format_RGB32);
        img.fill(Qt::green);
        QVERIFY(img.save(c.site().local("me.jpg"), "JPG"));  // no photo path: the database's folder
        other.execute("UPDATE EmployeeSettingsTable SET PictureFileName = 'me.jpg', PhotoSizeToFit = 0 WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        control<QTabWidget>(d.get(), "TabStrip1")->setCurrentIndex(8);
        QCOMPARE(d->picture().size(), QSize(300, 300));
        control<QScrollBar>(d.get(), "VScroll1")->setValue(20);
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdClearImage"), Qt::LeftButton);
        QCOMPARE(shownValue(d.get(), "txtFileName"), QString());
        QVERIFY(control<QListWidget>(d.get(), "File1")->selectedItems().isEmpty());
        QVERIFY(d->picture().isNull());
        QCOMPARE(control<QScrollBar>(d.get(), "VScroll1")->value(), 0);
        d->cmdButtons_Click(0);
        QCOMPARE(settingOf(other, "Bob", "PictureFileName"), QString());
    }

    void unreadablePictureLeavesThePanelEmpty()
    {
        Console c(seedBoard);
        QFile broken(c.site().local("broken.jpg"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a picture");
        broken.close();
        c.other().execute("UPDATE EmployeeSettingsTable SET PictureFileName = 'broken.jpg' WHERE Name = 'Bob'");
        auto d = openOn("Bob");
        QVERIFY(d->picture().isNull());
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(items(d.get(), "File1"), QStringList{"broken.jpg"});
    }

    void fromTheConsole()
    {
        Console c(seedBoard);
        c.clickNode("Users");
        QString caption;
        Modal::setHandler([&](QDialog *d) {
            caption = d->windowTitle();
            setValue(d, "txtName", "Robert");
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.doubleClickRow(c.rowOf("Bob"));
        Modal::setHandler({});
        QCOMPARE(caption, gstrAppTitle + "Modify User or Item Details  [ Bob ]");
        QCOMPARE(SelectedItemName, QString("Bob"));
        QVERIFY(c.texts().contains("Robert"));
        QVERIFY(!c.texts().contains("Bob"));
    }

    void hints_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<int>("tab");
        QTest::addColumn<QString>("hint");
        QTest::newRow("name") << "txtName" << 0 << " Enter users NAME in this field.";
        QTest::newRow("phone") << "txtPhone" << 0 << " Enter users Phone number or Extension in this field.";
        QTest::newRow("status image") << "imgDropDown_0" << 0 << " Select new Status Type for this user";
        QTest::newRow("last group image") << "imgDropDown_2" << 0 << " Select last Group Accesssed for this user";
        QTest::newRow("available") << "ListView1" << 4 << " Select Groups that you want this user to Manage";
        QTest::newRow("managed") << "ListView2" << 4 << " Select Groups you do NOT want this user to Manage";
        QTest::newRow("options frame") << "FrameModUser_2" << 1
                                       << " These options are set by the user from the main TAVELLO program";
        QTest::newRow("Reset") << "cmdButtons_3" << 0 << " Reset ALL options to 'New User' defaults.";
    }
    void hints()
    {
        QFETCH(QString, control);
        QFETCH(int, tab);
        QFETCH(QString, hint);
        TestSupport::Site site;  // the dialog alone under the pointer
        site.useShareAsDataPath();
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        {
            Database db = Database::open(site.local("tavello.mdb"));
            updateDatabaseStructure(db);
        }
        gdbMain = Database::open(site.local("tavello.mdb"));
        auto d = openOn("Guest");
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        UsersTest::control<QTabWidget>(d.get(), "TabStrip1")->setCurrentIndex(tab);
        auto *bar = UsersTest::control<QStatusBar>(d.get(), "StatusBar");
        auto *target = UsersTest::control<QWidget>(d.get(), control);
        QTest::mouseMove(target, QPoint(4, 4));
        QTRY_COMPARE(bar->currentMessage(), hint);
        d.reset();
        gdbMain.close();
    }
};

QTEST_MAIN(TestModUser)
#include "tst_moduser.moc"
