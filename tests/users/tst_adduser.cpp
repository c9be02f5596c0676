// Adding a user: the typing rule, the checks at OK, wildcard uniqueness, the
// rows taken from the template, and failures that must leave nothing behind.
#include "UsersTest.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "users/frmAddUser.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

const QString IdChar = "Invalid Character In User ID|Sorry, 'double quotes' & '#' symbol are not allowed in a user ID.";
const QString NameChar = "Invalid Character In Name|Sorry, 'double quotes' & '#' symbol are not allowed in a user name.";
const QString Another = "Add user|Add another user?";

void seedUsers(Database &db)
{
    addUsers(db, {"Ann Smith=asmith", "Bob=b01", "Axb=x7", QString::fromUtf8("Émile Zola=ez")});
}

QLineEdit *idField(const QWidget *d) { return control<QLineEdit>(d, "txtAddUserID"); }
QLineEdit *nameField(const QWidget *d) { return control<QLineEdit>(d, "txtAddUserName"); }

// Fills both fields and presses OK, answering No to "Add another user?".
void add(frmAddUser &d, const QString &id, const QString &name)
{
    idField(&d)->setText(id);
    nameField(&d)->setText(name);
    Msg::clearTranscript();
    Msg::queueAnswers({Msg::No});
    d.cmdButtons_Click(0);
}

// A count about Carl, the user every test adds.
int count(Database &db, const QString &sql)
{
    return db.scalar(sql, sql.contains('?') ? QVariantList{"Carl"} : QVariantList{}).toInt();
}

}  // namespace

class TestAddUser : public QObject {
    Q_OBJECT

private slots:
    void typingRule_data()
    {
        QTest::addColumn<QString>("field");  // "id" or "name"
        QTest::addColumn<QString>("input");  // "type:" keys typed, "paste:" text set at once
        QTest::addColumn<QString>("other");  // text of the other field
        QTest::addColumn<QString>("left");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<bool>("okEnabled");
        QTest::newRow("quote typed in the ID") << "id" << "type:ab\"" << "" << "ab" << QStringList{IdChar} << false;
        QTest::newRow("typing goes on after #") << "name" << "type:A#B" << "x" << "AB" << QStringList{NameChar} << true;
        QTest::newRow("paste cut back to before #")
            << "id" << "paste:ab#cd" << "x" << "ab" << QStringList{IdChar, IdChar, IdChar} << true;
        QTest::newRow("blanks enable OK") << "id" << "type:   " << " " << "   " << QStringList{} << true;
        QTest::newRow("other marks allowed") << "name" << "paste:O'Brien [*?%_;]" << "x" << "O'Brien [*?%_;]"
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
        (field == "id" ? nameField(&d) : idField(&d))->setText(other);
        Msg::clearTranscript();
        if (input.startsWith("type:"))
            QTest::keyClicks(target, input.mid(5));
        else
            target->setText(input.mid(6));
        QCOMPARE(target->text(), left);
        QCOMPARE(boxes(), shown);
        QCOMPARE(control<QPushButton>(&d, "cmdButtons_0")->isEnabled(), okEnabled);
    }

    void okChecks_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("storedName");  // empty: nothing added
        QTest::addColumn<QString>("focus");       // field given the focus on a refusal
        const QString noId = "Add User ID Error|Please enter User ID (or Item Code number).";
        const QString noName = "Add User Name Error|Please enter this user's full name.";
        const QString uidExists = "Invalid UID|UID Exists";
        const QString nameExists = "Invalid Name|Name Exists";
        QTest::newRow("name of blanks") << "c1" << "  " << noName << "" << "txtAddUserName";
        QTest::newRow("both blank: the ID first") << " " << " " << noId << "" << "txtAddUserID";
        QTest::newRow("ID and name taken: the ID first") << "ASMITH" << "Bob" << uidExists << "" << "";
        QTest::newRow("name taken, other case beyond ASCII")
            << "c1" << QString::fromUtf8("éMILE ZOLA") << nameExists << "" << "";
        QTest::newRow("ID * matches any user") << "*" << "Carl" << uidExists << "" << "";
        QTest::newRow("name B?b matches Bob") << "c1" << "B?b" << nameExists << "" << "";
        QTest::newRow("ID [abx]0? matches b01") << "[abx]0?" << "Carl" << uidExists << "" << "";
        QTest::newRow("name [!B]* matches another") << "c1" << "[!B]*" << nameExists << "" << "";
        QTest::newRow("% is no wildcard") << "%" << "A%" << Another << "A%" << "";
        QTest::newRow("_ is no wildcard") << "_0_" << "A_b" << Another << "A_b" << "";
        QTest::newRow("brackets kept") << "[x]" << "[Team] Room" << Another << "[Team] Room" << "";
        QTest::newRow("quote and semicolon, trimmed") << " o'b;1 " << " O'Brien; DROP TABLE EmployeeTable "
                                                      << Another << "O'Brien; DROP TABLE EmployeeTable" << "";
        QTest::newRow("250 characters") << "c1" << QString(250, 'n') << Another << QString(250, 'n') << "";
        QTest::newRow("251 characters: 250 kept") << "c1" << QString(251, 'm') << Another << QString(250, 'm') << "";
    }
    void okChecks()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, shown);
        QFETCH(QString, storedName);
        QFETCH(QString, focus);
        Console c(seedUsers);
        Database other = c.other();
        const long long before = counter(other);
        const int users = count(other, "SELECT count(*) FROM EmployeeTable");
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        add(d, id, name);
        QCOMPARE(boxes(), QStringList{shown});
        QCOMPARE(d.isVisible(), storedName.isEmpty());
        QCOMPARE(counter(other), before + (storedName.isEmpty() ? 0 : 1));
        QCOMPARE(count(other, "SELECT count(*) FROM EmployeeTable"), users + !storedName.isEmpty());
        QCOMPARE(count(other, "SELECT count(*) FROM EmployeeSettingsTable"), users + !storedName.isEmpty());
        if (!storedName.isEmpty())
            QCOMPARE(other.scalar("SELECT UID FROM EmployeeTable WHERE Name = ?", {storedName}).toString(), id.trimmed());
        if (!focus.isEmpty())
            QCOMPARE(QApplication::focusWidget()->objectName(), focus);
    }

    void rowsFromTheTemplate()
    {
        // Each copied column gets its own value, so a missed or swapped one shows.
        const QStringList copied{
            "AutoClearComments", "AutoLogIn", "AutoLogOut", "AutoMinimize", "DisplayTreeView", "RefreshRate",
            "StatusColumnWidth", "NameColumnWidth", "PhoneColumnWidth", "DueBackColumnWidth", "CommentsColumnWidth",
            "LastModifiedColumnWidth", "SortOrder", "SortKey", "ScreenTop", "ScreenLeft", "ScreenWidth",
            "ScreenHeight", "ListViewPopUp", "ChangeScreenPopUp", "UserSecurityLevel", "MinimizeSetting", "IconSize",
            "ToolBarText", "MinimizeOnClose", "SplitterPositionVertical", "SplitterPositionHorizontal",
            "FontBoldDisplay", "FontSizeDisplay"};
        Console c([&](Database &db) {
            db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')");
            QString set = "DefaultGroup = '  Sales ', StatusColumnOrder = 6, SortColumnName = 'Phone', "
                          "Password = 'pw', PictureFileName = 'x.jpg', PhotoSizeToFit = 1";
            for (int i = 0; i < copied.size(); ++i)
                set += QString(", %1 = %2").arg(copied[i]).arg(i + 2);
            db.execute("UPDATE NewUserDefaultsTable SET " + set);
        });
        frmAddUser d;
        d.show();
        add(d, "c1", "Carl");
        Database other = c.other();
        Recordset s = other.query("SELECT * FROM EmployeeSettingsTable WHERE Name = 'Carl'");
        QVERIFY(!s.eof());
        for (int i = 0; i < copied.size(); ++i)
            QVERIFY2(s.value(copied[i]).toInt() == i + 2, qPrintable(copied[i]));
        QCOMPARE(s.text("DefaultGroup"), QString("Sales"));
        // Column order and sort column are fixed; password and photo never copied.
        const QStringList order{"Status", "Name", "Phone", "DueBack", "Comments", "LastModified"};
        for (int i = 0; i < order.size(); ++i)
            QCOMPARE(s.value(order[i] + "ColumnOrder").toInt(), i + 1);
        QCOMPARE(s.text("SortColumnName"), QString("Name"));
        QVERIFY(s.isNull("Password") && s.isNull("PictureFileName"));
        QCOMPARE(s.value("PhotoSizeToFit").toInt(), 0);
        Recordset e = other.query("SELECT * FROM EmployeeTable WHERE Name = 'Carl'");
        QCOMPARE(e.text("Status") + "/" + e.text("StatusCode") + "/" + e.text("ActiveFlag"),
                 QString("Please Set/4/Not Set"));
    }

    void addedColumns_data()
    {
        QTest::addColumn<QString>("templateColumn");  // name and type in NewUserDefaultsTable
        QTest::addColumn<QString>("liveColumn");      // name and type in EmployeeTable; empty: none
        QTest::addColumn<QString>("templateValue");   // SQL literal
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("text, trimmed") << "New_Dept TEXT(250)" << "New_Dept TEXT(250)" << "'  Sales  '"
                                       << QVariant("Sales");
        QTest::newRow("read-only companion") << "New_DeptReadOnly INTEGER" << "New_DeptReadOnly INTEGER" << "1"
                                             << QVariant(1);
        QTest::newRow("Null over a default") << "New_Desk TEXT(250)" << "New_Desk TEXT(250) DEFAULT 'D1'" << "NULL"
                                             << QVariant();
        QTest::newRow("missing in the live table") << "New_Gone TEXT(250)" << "" << "'x'" << QVariant();
        QTest::newRow("does not fit: skipped") << "New_Code TEXT(250)"
                                               << "New_Code TEXT(3) CHECK (length(New_Code) <= 3)" << "'toolong'"
                                               << QVariant();
        QTest::newRow("prefix in other case") << "new_lower TEXT(250)" << "new_lower TEXT(250)" << "'x'" << QVariant();
        QTest::newRow("prefix inside the name") << "XNew_Mid TEXT(250)" << "XNew_Mid TEXT(250)" << "'m'"
                                                << QVariant("m");
    }
    void addedColumns()
    {
        QFETCH(QString, templateColumn);
        QFETCH(QString, liveColumn);
        QFETCH(QString, templateValue);
        QFETCH(QVariant, stored);
        const QString column = templateColumn.section(' ', 0, 0);
        Console c([&](Database &db) {
            db.execute("ALTER TABLE NewUserDefaultsTable ADD COLUMN " + templateColumn);
            db.execute("UPDATE NewUserDefaultsTable SET " + column + " = " + templateValue);
            if (!liveColumn.isEmpty())
                db.execute("ALTER TABLE EmployeeTable ADD COLUMN " + liveColumn);
        });
        frmAddUser d;
        d.show();
        add(d, "c1", "Carl");
        QCOMPARE(boxes(), QStringList{Another});
        Database other = c.other();
        QCOMPARE(count(other, "SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?"), 1);
        if (!liveColumn.isEmpty())
            QCOMPARE(other.scalar("SELECT " + column + " FROM EmployeeTable WHERE Name = 'Carl'").toString(),
                     stored.toString());
    }

    void addAnotherKeepsTheDialogOpen()
    {
        Console c(seedUsers);
        frmAddUser d;
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        idField(&d)->setText("c1");
        nameField(&d)->setText("Carl");
        Msg::queueAnswers({Msg::Yes, Msg::No});
        QTest::keyClick(idField(&d), Qt::Key_Return);  // Enter in the ID does nothing
        QVERIFY(boxes().isEmpty());
        QTest::keyClick(nameField(&d), Qt::Key_Return);
        QVERIFY(d.isVisible());
        QCOMPARE(idField(&d)->text() + nameField(&d)->text(), QString());
        QCOMPARE(QApplication::focusWidget(), idField(&d));
        idField(&d)->setText("d1");
        nameField(&d)->setText("Dora");
        d.cmdButtons_Click(0);
        QVERIFY(!d.isVisible());
        QCOMPARE(boxes(), (QStringList{Another, Another}));
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable WHERE Name IN ('Carl', 'Dora')").toInt(), 2);
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
                db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = 'Nowhere'");
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
        QCOMPARE(count(other, "SELECT count(*) FROM EmployeeTable WHERE Name = ?"), 0);
        QCOMPARE(count(other, "SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?"), 0);
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
