// Adding a user: the typing rule, the checks at OK and their order, the
// wildcard uniqueness tests, the two rows taken from the template, the
// counter, and what a lock held by another program does to OK.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "users/frmAddUser.h"

#include <QAction>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

void seedUsers(Database &db)
{
    addUsers(db, {"Ann Smith=asmith", "Bob=b01", "Axb=x7", QString::fromUtf8("Émile Zola=ez")});
}

QLineEdit *idField(const QWidget *d) { return control<QLineEdit>(d, "txtAddUserID"); }
QLineEdit *nameField(const QWidget *d) { return control<QLineEdit>(d, "txtAddUserName"); }
QPushButton *ok(const QWidget *d) { return control<QPushButton>(d, "cmdButtons_0"); }

const QString IdChar = "Invalid Character In User ID|Sorry, 'double quotes' & '#' symbol are not allowed in a user ID.";
const QString NameChar = "Invalid Character In Name|Sorry, 'double quotes' & '#' symbol are not allowed in a user name.";
const QString Another = "Add user|Add another user?";

// Settings a new user copies from the template.
const QStringList CopiedSettings = {
    "AutoClearComments", "AutoLogIn", "AutoLogOut", "AutoMinimize", "DisplayTreeView", "RefreshRate",
    "DefaultGroup", "StatusColumnWidth", "NameColumnWidth", "PhoneColumnWidth", "DueBackColumnWidth",
    "CommentsColumnWidth", "LastModifiedColumnWidth", "SortOrder", "SortKey", "ScreenTop", "ScreenLeft",
    "ScreenWidth", "ScreenHeight", "ListViewPopUp", "ChangeScreenPopUp", "UserSecurityLevel", "MinimizeSetting",
    "IconSize", "ToolBarText", "MinimizeOnClose", "SplitterPositionVertical", "SplitterPositionHorizontal",
    "FontBoldDisplay", "FontSizeDisplay"};

}  // namespace

class TestAddUser : public QObject {
    Q_OBJECT

private slots:
    void typingRule_data()
    {
        QTest::addColumn<QString>("field");  // "id" or "name"
        QTest::addColumn<QString>("input");  // "type:" keys typed, "paste:" text set at once
        QTest::addColumn<QString>("other");  // text of the other field
        QTest::addColumn<QString>("left");   // what the field holds afterwards
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<bool>("okEnabled");
        QTest::newRow("quote typed in the ID") << "id" << "type:ab\"" << "" << "ab" << QStringList{IdChar} << false;
        QTest::newRow("# typed in the name") << "name" << "type:Jo#" << "x" << "Jo" << QStringList{NameChar} << true;
        QTest::newRow("typing goes on after the refusal")
            << "name" << "type:A#B" << "x" << "AB" << QStringList{NameChar} << true;
        QTest::newRow("pasted in the middle: cut back to before it")
            << "id" << "paste:ab#cd" << "x" << "ab" << QStringList{IdChar, IdChar, IdChar} << true;
        QTest::newRow("quote at the end of a paste") << "name" << "paste:Ann \"Jo\"" << "x" << "Ann "
                                                     << QStringList{NameChar, NameChar, NameChar, NameChar} << true;
        QTest::newRow("blanks enable OK") << "id" << "type:   " << " " << "   " << QStringList{} << true;
        QTest::newRow("one field empty") << "name" << "type:Ann" << "" << "Ann" << QStringList{} << false;
        QTest::newRow("other marks are allowed") << "name" << "paste:O'Brien [*?%_;]" << "x" << "O'Brien [*?%_;]"
                                                 << QStringList{} << true;
    }
    void typingRule()
    {
        QFETCH(QString, field);
        QFETCH(QString, input);
        QFETCH(QString, other);
        QFETCH(QString, left);
        QFETCH(QStringList, shown);
        QFETCH(bool, okEnabled);
        Console c;
        frmAddUser d;
        d.show();
        QLineEdit *target = field == "id" ? idField(&d) : nameField(&d);
        QLineEdit *second = field == "id" ? nameField(&d) : idField(&d);
        second->setText(other);
        Msg::clearTranscript();
        if (input.startsWith("type:"))
            QTest::keyClicks(target, input.mid(5));
        else
            target->setText(input.mid(6));
        QCOMPARE(target->text(), left);
        QCOMPARE(boxes(), shown);
        for (const Msg::Shown &s : Msg::transcript())
            QCOMPARE(s.icon, Msg::Icon::Exclamation);
        QCOMPARE(ok(&d)->isEnabled(), okEnabled);
        if (!shown.isEmpty())
            QCOMPARE(target->cursorPosition(), int(left.size()));
    }

    void okChecks_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QString>("storedName");  // empty: nothing added
        QTest::addColumn<QString>("focus");       // field with the focus and its text selected; empty: untouched
        const QString noId = "Add User ID Error|Please enter User ID (or Item Code number).";
        const QString noName = "Add User Name Error|Please enter this user's full name.";
        const QString uidExists = "Invalid UID|UID Exists";
        const QString nameExists = "Invalid Name|Name Exists";
        QTest::newRow("ID of blanks") << "   " << "Carl" << QStringList{noId} << "" << "txtAddUserID";
        QTest::newRow("name of blanks") << "c1" << "  " << QStringList{noName} << "" << "txtAddUserName";
        QTest::newRow("both blank: the ID first") << " " << " " << QStringList{noId} << "" << "txtAddUserID";
        QTest::newRow("ID taken, other case") << "ASMITH" << "Carl" << QStringList{uidExists} << "" << "";
        QTest::newRow("ID and name taken: the ID first") << "b01" << "Bob" << QStringList{uidExists} << "" << "";
        QTest::newRow("name taken, other case") << "c1" << "ann smith" << QStringList{nameExists} << "" << "";
        QTest::newRow("name taken, other case beyond ASCII")
            << "c1" << QString::fromUtf8("éMILE ZOLA") << QStringList{nameExists} << "" << "";
        QTest::newRow("ID * matches any user") << "*" << "Carl" << QStringList{uidExists} << "" << "";
        QTest::newRow("name A* matches Ann Smith") << "c1" << "A*" << QStringList{nameExists} << "" << "";
        QTest::newRow("name B?b matches Bob") << "c1" << "B?b" << QStringList{nameExists} << "" << "";
        QTest::newRow("ID [abx]0? matches b01") << "[abx]0?" << "Carl" << QStringList{uidExists} << "" << "";
        QTest::newRow("name [!B]* matches another") << "c1" << "[!B]*" << QStringList{nameExists} << "" << "";
        QTest::newRow("% is no wildcard") << "c1" << "A%" << QStringList{Another} << "A%" << "";
        QTest::newRow("_ is no wildcard") << "c1" << "A_b" << QStringList{Another} << "A_b" << "";
        QTest::newRow("brackets kept in the name") << "c1" << "[Team] Room" << QStringList{Another} << "[Team] Room"
                                                   << "";
        QTest::newRow("apostrophe and semicolon")
            << "o'b;1" << "O'Brien; DROP TABLE EmployeeTable" << QStringList{Another}
            << "O'Brien; DROP TABLE EmployeeTable" << "";
        QTest::newRow("trimmed") << "  c1  " << "  Carl Jones  " << QStringList{Another} << "Carl Jones" << "";
        QTest::newRow("non-ASCII letters") << QString::fromUtf8("zoë") << QString::fromUtf8("Zoë Ødegård")
                                           << QStringList{Another} << QString::fromUtf8("Zoë Ødegård") << "";
        QTest::newRow("250 characters") << "c1" << QString(250, 'n') << QStringList{Another} << QString(250, 'n') << "";
        QTest::newRow("251 characters: the field takes 250")
            << "c1" << QString(251, 'm') << QStringList{Another} << QString(250, 'm') << "";
    }
    void okChecks()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QStringList, shown);
        QFETCH(QString, storedName);
        QFETCH(QString, focus);
        Console c(seedUsers);
        Database other = c.other();
        const long long before = counter(other);
        const int users = other.scalar("SELECT count(*) FROM EmployeeTable").toInt();
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        idField(&d)->setText(id);
        nameField(&d)->setText(name);
        Msg::clearTranscript();
        Msg::queueAnswers({Msg::No});
        QTest::mouseClick(ok(&d), Qt::LeftButton);
        QCOMPARE(boxes(), shown);
        if (storedName.isEmpty()) {
            QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable").toInt(), users);
            QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable").toInt(), users);
            QCOMPARE(counter(other), before);
            QVERIFY(d.isVisible());
            if (!focus.isEmpty()) {
                QCOMPARE(QApplication::focusWidget()->objectName(), focus);
                auto *f = control<QLineEdit>(&d, focus);
                QCOMPARE(f->selectedText(), f->text());
            }
            return;
        }
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable").toInt(), users + 1);
        QCOMPARE(other.scalar("SELECT UID FROM EmployeeTable WHERE Name = ?", {storedName}).toString(), id.trimmed());
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?", {storedName}).toInt(), 1);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeGroupTable WHERE EmployeeName = ?", {storedName}).toInt(), 0);
        QCOMPARE(counter(other), before + 1);
        QCOMPARE(other.scalar("SELECT count(*) FROM sqlite_master WHERE name = 'EmployeeTable'").toInt(), 1);
        QCOMPARE(Msg::transcript().last().icon, Msg::Icon::Question);
        QCOMPARE(Msg::transcript().last().buttons, Msg::Buttons::YesNo);
        QCOMPARE(d.result(), int(QDialog::Accepted));
        QVERIFY(!d.isVisible());
        QVERIFY(!Hourglass::shown());
    }

    void rowsFromTheTemplate()
    {
        Console c([](Database &db) {
            db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')");
            db.execute("UPDATE NewUserDefaultsTable SET AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 0, "
                       "AutoMinimize = 1, DisplayTreeView = 0, RefreshRate = 15, DefaultGroup = '  Sales ', "
                       "StatusColumnWidth = 2100, NameColumnWidth = 1500, PhoneColumnWidth = 1200, "
                       "DueBackColumnWidth = 1400, CommentsColumnWidth = 1600, LastModifiedColumnWidth = 4100, "
                       "SortOrder = 1, SortKey = 5, ScreenTop = -600, ScreenLeft = 300, ScreenWidth = 9000, "
                       "ScreenHeight = 7000, ListViewPopUp = 0, ChangeScreenPopUp = 1, UserSecurityLevel = 2, "
                       "MinimizeSetting = 2, IconSize = 1, ToolBarText = 0, MinimizeOnClose = 1, "
                       "SplitterPositionVertical = 2000, SplitterPositionHorizontal = 3700, FontBoldDisplay = 1, "
                       "FontSizeDisplay = 12, StatusColumnOrder = 6, NameColumnOrder = 5, PhoneColumnOrder = 4, "
                       "DueBackColumnOrder = 3, CommentsColumnOrder = 2, LastModifiedColumnOrder = 1, "
                       "SortColumnName = 'Phone', Password = 'secret', PictureFileName = 'x.jpg', PhotoSizeToFit = 1");
        });
        frmAddUser d;
        d.show();
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::No});
        d.cmdButtons_Click(0);
        Database other = c.other();
        Recordset t = other.query("SELECT * FROM NewUserDefaultsTable");
        Recordset s = other.query("SELECT * FROM EmployeeSettingsTable WHERE Name = 'Carl'");
        QVERIFY(!s.eof());
        for (const QString &column : CopiedSettings) {
            const QVariant expected = column == "DefaultGroup" ? QVariant("Sales") : t.value(column);
            QVERIFY2(s.value(column) == expected, qPrintable(column));
        }
        // Fixed values, not the template's.
        QCOMPARE(s.value("StatusColumnOrder").toInt(), 1);
        QCOMPARE(s.value("NameColumnOrder").toInt(), 2);
        QCOMPARE(s.value("PhoneColumnOrder").toInt(), 3);
        QCOMPARE(s.value("DueBackColumnOrder").toInt(), 4);
        QCOMPARE(s.value("CommentsColumnOrder").toInt(), 5);
        QCOMPARE(s.value("LastModifiedColumnOrder").toInt(), 6);
        QCOMPARE(s.text("SortColumnName"), QString("Name"));
        // Never copied.
        QVERIFY(s.isNull("Password"));
        QVERIFY(s.isNull("PictureFileName"));
        QCOMPARE(s.value("PhotoSizeToFit").toInt(), 0);
        QCOMPARE(s.text("Phone"), QString());
        Recordset e = other.query("SELECT * FROM EmployeeTable WHERE Name = 'Carl'");
        QCOMPARE(e.text("Status"), QString("Please Set"));
        QCOMPARE(e.value("StatusCode").toInt(), 4);
        QCOMPARE(e.text("ActiveFlag"), QString("Not Set"));
        QCOMPARE(e.text("NetWorkLogonID"), QString());
    }

    void addedColumns_data()
    {
        QTest::addColumn<QString>("templateColumn");  // name and type in NewUserDefaultsTable; empty: none
        QTest::addColumn<QString>("liveColumn");      // name and type in EmployeeTable; empty: none
        QTest::addColumn<QString>("templateValue");   // SQL literal
        QTest::addColumn<QString>("column");          // EmployeeTable column read back
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("text, trimmed") << "New_Dept TEXT(250)" << "New_Dept TEXT(250)" << "'  Sales  '" << "New_Dept"
                                       << QVariant("Sales");
        QTest::newRow("number") << "New_Floor INTEGER" << "New_Floor INTEGER" << "3" << "New_Floor" << QVariant(3);
        QTest::newRow("read-only companion is copied too") << "New_DeptReadOnly INTEGER" << "New_DeptReadOnly INTEGER"
                                                           << "1" << "New_DeptReadOnly" << QVariant(1);
        QTest::newRow("Null stays Null over a default") << "New_Desk TEXT(250)" << "New_Desk TEXT(250) DEFAULT 'D1'"
                                                        << "NULL" << "New_Desk" << QVariant();
        QTest::newRow("missing in the live table: skipped") << "New_Gone TEXT(250)" << "" << "'x'" << "" << QVariant();
        QTest::newRow("does not fit: skipped") << "New_Code TEXT(250)"
                                               << "New_Code TEXT(3) CHECK (length(New_Code) <= 3)" << "'toolong'"
                                               << "New_Code" << QVariant();
        QTest::newRow("prefix in other case: not copied") << "new_lower TEXT(250)" << "new_lower TEXT(250)" << "'x'"
                                                          << "new_lower" << QVariant();
        QTest::newRow("prefix inside the name counts") << "XNew_Mid TEXT(250)" << "XNew_Mid TEXT(250)" << "'m'"
                                                       << "XNew_Mid" << QVariant("m");
        QTest::newRow("live column alone stays as it is") << "" << "New_Only TEXT(250) DEFAULT 'd'" << "" << "New_Only"
                                                          << QVariant("d");
    }
    void addedColumns()
    {
        QFETCH(QString, templateColumn);
        QFETCH(QString, liveColumn);
        QFETCH(QString, templateValue);
        QFETCH(QString, column);
        QFETCH(QVariant, stored);
        Console c([&](Database &db) {
            if (!templateColumn.isEmpty()) {
                db.execute("ALTER TABLE NewUserDefaultsTable ADD COLUMN " + templateColumn);
                db.execute("UPDATE NewUserDefaultsTable SET " + templateColumn.section(' ', 0, 0) + " = " +
                           templateValue);
            }
            if (!liveColumn.isEmpty())
                db.execute("ALTER TABLE EmployeeTable ADD COLUMN " + liveColumn);
        });
        frmAddUser d;
        d.show();
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::No});
        d.cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList{Another});
        Database other = c.other();
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = 'Carl'").toInt(), 1);
        if (!column.isEmpty()) {
            const QVariant v = other.scalar("SELECT " + column + " FROM EmployeeTable WHERE Name = 'Carl'");
            QCOMPARE(v.isNull(), stored.isNull());
            if (!stored.isNull())
                QCOMPARE(v.toString(), stored.toString());
        }
    }

    void emptyTemplateGetsItsRow()
    {
        Console c([](Database &db) { db.execute("DELETE FROM NewUserDefaultsTable"); });
        frmAddUser d;
        d.show();
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::No});
        d.cmdButtons_Click(0);
        Database other = c.other();
        QCOMPARE(other.scalar("SELECT count(*) FROM NewUserDefaultsTable").toInt(), 1);
        // The template's own defaults, not those of the settings table.
        QCOMPARE(other.scalar("SELECT RefreshRate FROM EmployeeSettingsTable WHERE Name = 'Carl'").toInt(), 5);
        QCOMPARE(other.scalar("SELECT AutoLogIn FROM EmployeeSettingsTable WHERE Name = 'Carl'").toInt(), 1);
    }

    void addAnotherKeepsTheDialogOpen()
    {
        Console c(seedUsers);
        Database other = c.other();
        const long long before = counter(other);
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::Yes, Msg::No});
        d.cmdButtons_Click(0);
        QVERIFY(d.isVisible());
        QCOMPARE(idField(&d)->text(), QString());
        QCOMPARE(nameField(&d)->text(), QString());
        QVERIFY(!ok(&d)->isEnabled());
        QCOMPARE(QApplication::focusWidget(), idField(&d));
        idField(&d)->setText("d1");
        nameField(&d)->setText("Dora");
        d.cmdButtons_Click(0);
        QVERIFY(!d.isVisible());
        QCOMPARE(boxes(), (QStringList{Another, Another}));
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name IN ('Carl', 'Dora')").toInt(), 2);
        QCOMPARE(counter(other), before + 2);
    }

    void enterKey_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("added");
        QTest::newRow("in the name: OK") << "txtAddUserName" << true;
        QTest::newRow("in the ID: nothing") << "txtAddUserID" << false;
    }
    void enterKey()
    {
        QFETCH(QString, field);
        QFETCH(bool, added);
        Console c;
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::No});
        QTest::keyClick(control<QLineEdit>(&d, field), Qt::Key_Return);
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Carl'").toInt(), added ? 1 : 0);
        QCOMPARE(d.isVisible(), !added);
    }

    void lockedByAnotherProgramAtOk()
    {
        Console c(seedUsers);
        Database other = c.other();
        const long long before = counter(other);
        frmAddUser d;
        d.show();
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        {
            TestSupport::ExternalHolder holder(c.databaseFile(), TestSupport::ExternalHolder::Hold::Write);
            QVERIFY(holder.started());
            Msg::clearTranscript();
            d.cmdButtons_Click(0);
            QCOMPARE(Msg::transcript().size(), 1);
            QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Critical);
            QVERIFY2(Msg::transcript()[0].text.startsWith("Run-time error '3260'"),
                     qPrintable(Msg::transcript()[0].text));
            QVERIFY(d.isVisible());
            QVERIFY(!Hourglass::shown());
        }
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Carl'").toInt(), 0);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = 'Carl'").toInt(), 0);
        QCOMPARE(counter(other), before);
        QVERIFY(!gdbMain.inTransaction());
        // Once the other program lets go, the same OK goes through.
        Msg::clearTranscript();
        Msg::queueAnswers({Msg::No});
        d.cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList{Another});
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = 'Carl'").toInt(), 1);
        QCOMPARE(counter(other), before + 1);
    }

    void templateThatBreaksTheSettingsRowAddsNothing()
    {
        // A group the template names but the board lacks: the settings row is
        // refused, and the user's own row must not stay behind alone.
        Console c([](Database &db) { db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = 'Nowhere'"); });
        Database other = c.other();
        const long long before = counter(other);
        frmAddUser d;
        d.show();
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        d.cmdButtons_Click(0);
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '"));
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable WHERE Name = 'Carl'").toInt(), 0);
        QCOMPARE(counter(other), before);
    }

    void fromTheConsole()
    {
        Console c(seedUsers);
        c.clickNode("Users");
        Modal::setHandler([&](QDialog *d) {
            QCOMPARE(d->objectName(), QString("frmAddUser"));
            QCOMPARE(d->windowTitle(), gstrAppTitle + "Add User or Item");
            QVERIFY(!ok(d)->isEnabled());
            QTest::keyClicks(idField(d), "c1");
            QTest::keyClicks(nameField(d), "Carl");
            Msg::queueAnswers({Msg::No});
            QTest::mouseClick(ok(d), Qt::LeftButton);
        });
        c.w().toolbarButton(2)->trigger();
        Modal::setHandler({});
        QVERIFY(c.texts().contains("Carl"));
        QCOMPARE(boxes(), QStringList{Another});
    }

    void hints_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("hint");
        QTest::newRow("ID") << "txtAddUserID"
                            << " Enter new User ID. (Normally the Network Logon ID) or code number for an Item";
        QTest::newRow("name") << "txtAddUserName" << "  Enter your new user's full name. (and initial if required)";
        QTest::newRow("OK") << "cmdButtons_0" << " Save New User details.";
        QTest::newRow("Cancel") << "cmdButtons_1" << " Exit without saving New User details.";
        QTest::newRow("Help") << "cmdButtons_2" << " Display Help.";
    }
    void hints()
    {
        QFETCH(QString, control);
        QFETCH(QString, hint);
        TestSupport::Site site;  // no main window: the pointer meets the dialog alone
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        auto *bar = UsersTest::control<QStatusBar>(&d, "StatusBar");
        auto *target = UsersTest::control<QWidget>(&d, control);
        QTest::mouseMove(target, target->rect().center());
        QTRY_COMPARE(bar->currentMessage(), hint);
        QTest::mouseMove(&d, QPoint(2, 2));
        QTRY_COMPARE(bar->currentMessage(), QString());
    }
};

QTEST_MAIN(TestAddUser)
#include "tst_adduser.moc"
