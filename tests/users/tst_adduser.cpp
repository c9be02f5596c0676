// Adding a user: the typing rule, the checks at OK with wildcard uniqueness,
// the rows taken from the template, and failures that leave nothing behind.
#include "UsersTest.h"

#include "users/frmAddUser.h"

#include <QLineEdit>
#include <QPushButton>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

const QString Another = "Add user|Add another user?";

QLineEdit *field(const QWidget *d, const QString &which) { return control<QLineEdit>(d, "txtAddUser" + which); }

// Fills both fields and presses OK, answering No to "Add another user?".
void add(frmAddUser &d, const QString &id, const QString &name)
{
    field(&d, "ID")->setText(id);
    field(&d, "Name")->setText(name);
    Msg::clearTranscript();
    Msg::queueAnswers({Msg::No});
    d.cmdButtons_Click(0);
}

int count(Database &db, const QString &table, const QString &name = {})
{
    if (name.isEmpty())
        return db.scalar("SELECT count(*) FROM " + table).toInt();
    return db.scalar("SELECT count(*) FROM " + table + " WHERE Name = ?", {name}).toInt();
}

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
        Msg::clearTranscript();
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

    void okChecks_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("storedName");  // empty: nothing added
        const QString uidExists = "Invalid UID|UID Exists", nameExists = "Invalid Name|Name Exists";
        QTest::newRow("name of blanks") << "c1" << "  " << "Add User Name Error|Please enter this user's full name." << "";
        QTest::newRow("both blank: the ID first") << " " << " " << "Add User ID Error|Please enter User ID (or Item "
                                                                   "Code number)." << "";
        QTest::newRow("ID and name taken: the ID first") << "ASMITH" << "Bob" << uidExists << "";
        QTest::newRow("name taken, other case beyond ASCII") << "c1" << "éMILE ZOLA" << nameExists << "";
        QTest::newRow("ID * matches any user") << "*" << "Carl" << uidExists << "";
        QTest::newRow("name B?b matches Bob") << "c1" << "B?b" << nameExists << "";
        QTest::newRow("ID [abx]0? matches b01") << "[abx]0?" << "Carl" << uidExists << "";
        QTest::newRow("name [!B]* matches another") << "c1" << "[!B]*" << nameExists << "";
        QTest::newRow("% is no wildcard") << "%" << "A%" << Another << "A%";
        QTest::newRow("_ is no wildcard") << "_0_" << "A_b" << Another << "A_b";
        QTest::newRow("brackets kept") << "[x]" << "[Team] Room" << Another << "[Team] Room";
        QTest::newRow("quote and semicolon, trimmed") << " o'b;1 " << " O'Brien; DROP TABLE EmployeeTable "
                                                      << Another << "O'Brien; DROP TABLE EmployeeTable";
        QTest::newRow("250 characters") << "c1" << QString(250, 'n') << Another << QString(250, 'n');
        QTest::newRow("251 characters: 250 kept") << "c1" << QString(251, 'm') << Another << QString(250, 'm');
    }
    void okChecks()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, shown);
        QFETCH(QString, storedName);
        Console c([](Database &db) { addUsers(db, {"Ann Smith=asmith", "Bob=b01", "Axb=x7", "Émile Zola=ez"}); });
        Database other = c.other();
        const long long before = counter(other);
        const int users = count(other, "EmployeeTable");
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        add(d, id, name);
        const bool added = !storedName.isEmpty();
        QCOMPARE(boxes(), QStringList{shown});
        QCOMPARE(d.isVisible(), !added);
        QCOMPARE(counter(other), before + added);
        QCOMPARE(count(other, "EmployeeTable"), users + added);
        QCOMPARE(count(other, "EmployeeSettingsTable"), users + added);
        if (added)
            QCOMPARE(other.scalar("SELECT UID FROM EmployeeTable WHERE Name = ?", {storedName}).toString(), id.trimmed());
    }

    // Each copied setting gets its own value, so a missed or swapped one
    // shows. Added columns: trimmed, Null over a default, missing in the live
    // table, and one too long for it, skipped without the rest.
    void rowsFromTheTemplate()
    {
        const QStringList copied = QString(
            "AutoClearComments AutoLogIn AutoLogOut AutoMinimize DisplayTreeView RefreshRate StatusColumnWidth "
            "NameColumnWidth PhoneColumnWidth DueBackColumnWidth CommentsColumnWidth LastModifiedColumnWidth SortOrder "
            "SortKey ScreenTop ScreenLeft ScreenWidth ScreenHeight ListViewPopUp ChangeScreenPopUp UserSecurityLevel "
            "MinimizeSetting IconSize ToolBarText MinimizeOnClose SplitterPositionVertical SplitterPositionHorizontal "
            "FontBoldDisplay FontSizeDisplay").split(' ');
        Console c([&](Database &db) {
            db.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {"Sales"});
            db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?, StatusColumnOrder = 6, SortColumnName = ?, "
                       "Password = ?, PictureFileName = ?, PhotoSizeToFit = 1", {"  Sales ", "Phone", "pw", "x.jpg"});
            for (int i = 0; i < copied.size(); ++i)
                db.execute("UPDATE NewUserDefaultsTable SET " + copied[i] + " = ?", {i + 2});
            for (const char *column : {"New_Dept", "New_Desk", "New_Gone", "New_Code"})
                db.addColumn("NewUserDefaultsTable", column, "TEXT(250)");
            db.execute("UPDATE NewUserDefaultsTable SET New_Dept = ?, New_Gone = ?, New_Code = ?",
                       {"  Accounts  ", "x", "toolong"});
            db.addColumn("EmployeeTable", "New_Dept", "TEXT(250)");
            db.addColumn("EmployeeTable", "New_Desk", "TEXT(250) DEFAULT 'D1'");
            db.addColumn("EmployeeTable", "New_Code", "TEXT(3) CHECK (length(New_Code) <= 3)");
        });
        frmAddUser d;
        d.show();
        add(d, "c1", "Carl");
        QCOMPARE(boxes(), QStringList{Another});
        Database other = c.other();
        Recordset s = other.query("SELECT * FROM EmployeeSettingsTable WHERE Name = ?", {"Carl"});
        QVERIFY(!s.eof());
        for (int i = 0; i < copied.size(); ++i)
            QVERIFY2(s.value(copied[i]).toInt() == i + 2, qPrintable(copied[i]));
        QCOMPARE(s.text("DefaultGroup"), QString("Sales"));
        // Column order and sort column are fixed; password and photo never copied.
        const QStringList order{"Status", "Name", "Phone", "DueBack", "Comments", "LastModified"};
        for (int i = 0; i < order.size(); ++i)
            QCOMPARE(s.value(order[i] + "ColumnOrder").toInt(), i + 1);
        QCOMPARE(s.text("SortColumnName"), QString("Name"));
        QVERIFY(s.isNull("Password") && s.isNull("PictureFileName") && s.value("PhotoSizeToFit").toInt() == 0);
        Recordset e = other.query("SELECT New_Dept, New_Desk, New_Code FROM EmployeeTable WHERE Name = ?", {"Carl"});
        QCOMPARE(e.text("New_Dept"), QString("Accounts"));
        QVERIFY(e.isNull("New_Desk") && e.isNull("New_Code"));
    }

    // A write lock at OK, or a template naming a group the board lacks: the
    // store refuses, and no half-added user stays behind.
    void failureAddsNothing_data()
    {
        QTest::addColumn<bool>("locked");
        QTest::newRow("locked by another program") << true;
        QTest::newRow("template group missing") << false;
    }
    void failureAddsNothing()
    {
        QFETCH(bool, locked);
        Console c([&](Database &db) {
            if (!locked)
                db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?", {"Nowhere"});
        });
        Database other = c.other();
        const long long before = counter(other);
        frmAddUser d;
        d.show();
        {
            std::optional<TestSupport::ExternalHolder> holder;
            if (locked)
                holder.emplace(c.databaseFile(), TestSupport::ExternalHolder::Hold::Write);
            add(d, "c1", "Carl");
        }
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY2(Msg::transcript()[0].text.startsWith(locked ? "Run-time error '3260'" : "Run-time error '"),
                 qPrintable(Msg::transcript()[0].text));
        QVERIFY(d.isVisible());
        QCOMPARE(count(other, "EmployeeTable", "Carl") + count(other, "EmployeeSettingsTable", "Carl"), 0);
        QCOMPARE(counter(other), before);
        QVERIFY(!gdbMain.inTransaction());
        if (!locked)
            return;
        // Once the other program lets go, the same OK goes through.
        add(d, "c1", "Carl");
        QCOMPARE(boxes(), QStringList{Another});
        QCOMPARE(counter(other), before + 1);
    }
};

QTEST_MAIN(TestAddUser)
#include "tst_adduser.moc"
