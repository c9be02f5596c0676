// Adding a user: the typing rule, the checks at OK with wildcard uniqueness,
// failures that leave nothing behind, and the rows taken from the template.
#include "UsersTest.h"

#include "users/frmAddUser.h"

#include <QLineEdit>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

const QString Another = "Add user|Add another user?";

// Settings a new user takes from the template, each given its own value
// there, so that a missed or swapped one shows.
const QStringList Copied = QString(
    "AutoClearComments AutoLogIn AutoLogOut AutoMinimize DisplayTreeView RefreshRate StatusColumnWidth NameColumnWidth "
    "PhoneColumnWidth DueBackColumnWidth CommentsColumnWidth LastModifiedColumnWidth SortOrder SortKey ScreenTop "
    "ScreenLeft ScreenWidth ScreenHeight ListViewPopUp ChangeScreenPopUp UserSecurityLevel MinimizeSetting IconSize "
    "ToolBarText MinimizeOnClose SplitterPositionVertical SplitterPositionHorizontal FontBoldDisplay FontSizeDisplay")
    .split(' ');

// Four users, and a template whose added columns hold one value to trim,
// one Null over a default, one missing in the live table and one too long
// for it, skipped without the rest.
void seedBoard(Database &db)
{
    addUsers(db, {"Ann Smith=asmith", "Bob=b01", "Axb=x7", "Émile Zola=ez"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {"Sales"});
    db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?, StatusColumnOrder = 6, SortColumnName = ?, "
               "Password = ?, PictureFileName = ?, PhotoSizeToFit = 1", {"  Sales ", "Phone", "pw", "x.jpg"});
    for (int i = 0; i < Copied.size(); ++i)
        db.execute("UPDATE NewUserDefaultsTable SET " + Copied[i] + " = ?", {i + 2});
    for (const char *column : {"New_Dept", "New_Desk", "New_Gone", "New_Code"})
        db.addColumn("NewUserDefaultsTable", column, "TEXT(250)");
    db.execute("UPDATE NewUserDefaultsTable SET New_Dept = ?, New_Gone = ?, New_Code = ?", {"  Accounts  ", "x", "toolong"});
    db.addColumn("EmployeeTable", "New_Dept", "TEXT(250)");
    db.addColumn("EmployeeTable", "New_Desk", "TEXT(250) DEFAULT 'D1'");
    db.addColumn("EmployeeTable", "New_Code", "TEXT(3) CHECK (length(New_Code) <= 3)");
}

QLineEdit *field(const QWidget *d, const QString &which) { return control<QLineEdit>(d, "txtAddUser" + which); }

}  // namespace

class TestAddUser : public QObject {
    Q_OBJECT

private slots:
    void typingRule_data()
    {
        QTest::addColumn<QString>("which");  // the field typed in; the other holds "x"
        QTest::addColumn<QString>("input");  // "type:" keys typed, "paste:" text set at once
        QTest::addColumn<QString>("left");
        QTest::addColumn<int>("refusals");   // invalid-character boxes shown
        QTest::newRow("quote typed in the ID") << "ID" << "type:ab\"" << "ab" << 1;
        QTest::newRow("typing goes on after #") << "Name" << "type:A#B" << "AB" << 1;
        QTest::newRow("paste cut back to before #") << "ID" << "paste:ab#cd" << "ab" << 3;
        QTest::newRow("# alone leaves OK off") << "Name" << "type:#" << "" << 1;
        QTest::newRow("blanks enable OK") << "ID" << "type:   " << "   " << 0;
        QTest::newRow("other marks allowed") << "Name" << "paste:O'Brien [*?%_;]" << "O'Brien [*?%_;]" << 0;
    }
    void typingRule()
    {
        QFETCH(QString, which);
        QFETCH(QString, input);
        QFETCH(QString, left);
        QFETCH(int, refusals);
        Console c;
        frmAddUser d;
        d.show();
        field(&d, which == "ID" ? "Name" : "ID")->setText("x");
        if (input.startsWith("type:"))
            QTest::keyClicks(field(&d, which), input.mid(5));
        else
            field(&d, which)->setText(input.mid(6));
        QCOMPARE(field(&d, which)->text(), left);
        const QString refusal = "Invalid Character In %1|Sorry, 'double quotes' & '#' symbol are not allowed in a %2.";
        QCOMPARE(boxes(), QStringList(refusals, which == "ID" ? refusal.arg("User ID", "user ID")
                                                              : refusal.arg("Name", "user name")));
        QCOMPARE(control<QPushButton>(&d, "cmdButtons_0")->isEnabled(), !left.isEmpty());
    }

    // Added when the box is "Add another user?", under the trimmed name cut
    // to 250, with the rows the template gives. A lock at OK, a reader at
    // commit or a template naming a group the board lacks: the store
    // refuses, and no half-added user stays.
    void okChecks_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("hold");  // another program at OK, or "group": the template's group is gone
        const QString uidExists = "Invalid UID|UID Exists", nameExists = "Invalid Name|Name Exists";
        const QString failed = Msg::defaultTitle() + "|Run-time error '%1':";
        QTest::newRow("name of blanks") << "c1" << "  " << "Add User Name Error|Please enter this user's full name." << "";
        QTest::newRow("both blank: the ID first") << " " << " " << "Add User ID Error|Please enter User ID (or Item "
                                                                   "Code number)." << "";
        QTest::newRow("ID and name taken: the ID first") << "ASMITH" << "Bob" << uidExists << "";
        QTest::newRow("name taken, other case beyond ASCII") << "c1" << "éMILE ZOLA" << nameExists << "";
        QTest::newRow("ID * matches any user") << "*" << "Carl" << uidExists << "";
        QTest::newRow("name B?b matches Bob") << "c1" << "B?b" << nameExists << "";
        QTest::newRow("ID [abx]0? matches b01") << "[abx]0?" << "Carl" << uidExists << "";
        QTest::newRow("name [!B]* matches another") << "c1" << "[!B]*" << nameExists << "";
        QTest::newRow("% and _ are no wildcards") << "%" << "A_b" << Another << "";
        QTest::newRow("brackets kept") << "[x]" << "[Team] Room" << Another << "";
        QTest::newRow("quote and semicolon, trimmed") << " o'b;1 " << " O'Brien; DROP TABLE EmployeeTable " << Another
                                                      << "";
        QTest::newRow("250 characters") << "c1" << QString(250, 'n') << Another << "";
        QTest::newRow("251 characters: 250 kept") << "c1" << QString(251, 'm') << Another << "";
        QTest::newRow("locked by another program") << "c1" << "Carl" << failed.arg(3260) << "lock";
        QTest::newRow("reader at commit") << "c1" << "Carl" << failed.arg(3260) << "reader";
        QTest::newRow("template group missing") << "c1" << "Carl" << failed.arg(787) << "group";
    }
    void okChecks()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, shown);
        QFETCH(QString, hold);
        Console c([&](Database &db) {
            seedBoard(db);
            if (hold == "group")
                db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?", {"Nowhere"});
        });
        Database other = c.other();
        const long long counted = counter(other);
        frmAddUser d;
        d.show();
        field(&d, "ID")->setText(id);
        field(&d, "Name")->setText(name);
        Msg::queueAnswers({Msg::No});  // to "Add another user?"
        whileHeld(c, hold, [&] { d.cmdButtons_Click(0); });
        const bool added = shown == Another;
        QCOMPARE(boxes(), QStringList{shown});
        QCOMPARE(d.isVisible(), !added);
        QCOMPARE(counter(other), counted + added);
        QCOMPARE(rows(other, "SELECT (SELECT count(*) FROM EmployeeTable), (SELECT count(*) FROM EmployeeSettingsTable)"),
                 QString(added ? "6|6" : "5|5"));
        QVERIFY(!gdbMain.inTransaction());
        if (!added)
            return;
        const QString stored = name.trimmed().left(250);
        QCOMPARE(rows(other, "SELECT UID, New_Dept, New_Desk, New_Code FROM EmployeeTable WHERE Name = ?", {stored}),
                 id.trimmed() + "|Accounts|<null>|<null>");
        const QMap<QString, QString> s = record(other, "SELECT * FROM EmployeeSettingsTable WHERE Name = ?", {stored});
        for (int i = 0; i < Copied.size(); ++i)
            QVERIFY2(s.value(Copied[i]) == QString::number(i + 2), qPrintable(Copied[i]));
        // Column orders and sort column are fixed; password and photo never copied.
        QCOMPARE(rows(other, "SELECT StatusColumnOrder, NameColumnOrder, PhoneColumnOrder, DueBackColumnOrder, "
                             "CommentsColumnOrder, LastModifiedColumnOrder, SortColumnName, Password, PictureFileName, "
                             "PhotoSizeToFit, DefaultGroup FROM EmployeeSettingsTable WHERE Name = ?", {stored}),
                 QString("1|2|3|4|5|6|Name|<null>|<null>|0|Sales"));
    }
};

QTEST_MAIN(TestAddUser)
#include "tst_adduser.moc"
