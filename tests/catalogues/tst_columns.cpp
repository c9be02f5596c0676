// Added columns: the name test, names that must not break a statement, a
// column added, renamed and dropped with the users' values kept across the
// rename, each change all or nothing while other programs use the file, and
// the user windows picking up what was made here.
#include "CataloguesTest.h"

#include "catalogues/frmAddColumn.h"
#include "console/frmMain.h"
#include "users/frmAddUser.h"
#include "users/frmModUser.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace CataloguesTest;

namespace {

const QString AnotherColumn = "Add Column|Add another Column?";
const QString Exists = "|Sorry - Column Name already exists.";

// A box as shown() gives it; "|text" stands for the default title.
QString titled(const QString &box) { return box.startsWith('|') ? Msg::defaultTitle() + box : box; }

// Room and DeskReadOnly exist (made the way the console makes them), and
// three users, two of whom have a room.
void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1"});
    for (const char *name : {"Room", "DeskReadOnly"}) {
        const QString n = name;
        db.addColumn("EmployeeTable", "New_" + n, "TEXT(250)");
        db.addColumn("EmployeeTable", "New_" + n + "ReadOnly", "BOOLEAN NOT NULL DEFAULT 0");
        db.addColumn("EmployeeSettingsTable", "New_" + n + "ColumnWidth", "REAL");
        db.addColumn("EmployeeSettingsTable", "New_" + n + "ColumnOrder", "REAL");
        db.addColumn("NewUserDefaultsTable", "New_" + n, "TEXT(250)");
        db.addColumn("NewUserDefaultsTable", "New_" + n + "ReadOnly", "BOOLEAN NOT NULL DEFAULT 0");
    }
    db.execute("UPDATE EmployeeTable SET New_Room = 'R' || UID, New_RoomReadOnly = 1 WHERE Name <> 'Cleo'");
    db.execute("UPDATE EmployeeSettingsTable SET New_RoomColumnWidth = 900, New_RoomColumnOrder = 7 WHERE Name = 'Ann'");
    db.execute("UPDATE NewUserDefaultsTable SET New_Room = 'Lobby', New_RoomReadOnly = 1");
}

// The six fields of a column as "table.field" where present.
QStringList fieldsOf(Database &db, const QString &name)
{
    QStringList out;
    for (const char *table : {"EmployeeTable", "EmployeeSettingsTable", "NewUserDefaultsTable"})
        for (const QString &f : db.fieldNames(table))
            if (f.startsWith("New_" + name))
                out << QString(table) + '.' + f;
    return out;
}

QStringList sixFields(const QString &name)
{
    const QString n = "New_" + name;
    return {"EmployeeTable." + n, "EmployeeTable." + n + "ReadOnly", "EmployeeSettingsTable." + n + "ColumnWidth",
            "EmployeeSettingsTable." + n + "ColumnOrder", "NewUserDefaultsTable." + n,
            "NewUserDefaultsTable." + n + "ReadOnly"};
}

// One column's values on the board: users' values, flags, widths and orders,
// and the new-user defaults.
QString valuesOf(Database &db, const QString &name)
{
    const QString v = Database::quoteIdentifier("New_" + name), f = Database::quoteIdentifier("New_" + name + "ReadOnly");
    return rows(db, QString("SELECT e.Name, e.%1, e.%2, s.%3, s.%4 FROM EmployeeTable e JOIN EmployeeSettingsTable s "
                            "USING (Name) ORDER BY e.Name")
                        .arg(v, f, Database::quoteIdentifier("New_" + name + "ColumnWidth"),
                             Database::quoteIdentifier("New_" + name + "ColumnOrder"))) +
           '\n' + rows(db, QString("SELECT %1, %2 FROM NewUserDefaultsTable").arg(v, f));
}

// Adds a column through frmAddColumn opened by the console; "No" to "Add another".
void addColumn(Console &c, const QString &name, bool readOnly, const QList<int> &answers = {})
{
    Msg::queueAnswers(answers + QList<int>{Msg::No});
    dispatch(c, "Columns", {}, "Add", [&](QDialog *d) {
        control<QLineEdit>(d, "txtAddColumn")->setText(name);
        control<QCheckBox>(d, "chkReadOnly")->setChecked(readOnly);
        press(d, 0);
    });
}

}  // namespace

class TestColumns : public QObject {
    Q_OBJECT

private slots:
    // OK in Add: the name test against every field of EmployeeTable, blind
    // to case, and against the fields the column would have; or the six
    // fields added with the flag on every row, listed by the console, and
    // ExtraColumnsCounter raised once. Blanks, brackets, quote marks,
    // percent, 250 characters and any letters all work.
    void add_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("field");  // the value field to find afterwards
        QTest::newRow("blanks") << "   " << false << "Add Column Error|Please enter Column name." << "";
        QTest::newRow("a built-in field, other case") << "status" << false << Exists << "";
        QTest::newRow("a column, other case") << " ROOM " << false << Exists << "";
        QTest::newRow("another column's flag") << "roomreadonly" << false << Exists << "";
        QTest::newRow("its flag is another column") << "Desk" << false << Exists << "";
        QTest::newRow("ReadOnly") << "ReadOnly" << true << AnotherColumn << "ReadOnly";
        QTest::newRow("blanks and brackets") << "Room [2] ]x[" << false << AnotherColumn << "Room [2] ]x[";
        QTest::newRow("quote marks, percent, semicolon") << "O'Neil's 50%; DROP TABLE EmployeeTable" << true
                                                         << AnotherColumn << "O'Neil's 50%; DROP TABLE EmployeeTable";
        QTest::newRow("letters beyond ASCII") << "Büro Nº 名前" << false << AnotherColumn << "Büro Nº 名前";
        QTest::newRow("250 characters") << QString(250, QChar(0x00e9)) << true << AnotherColumn
                                        << QString(250, QChar(0x00e9));
    }
    void add()
    {
        QFETCH(QString, name);
        QFETCH(bool, readOnly);
        QFETCH(QString, box);
        QFETCH(QString, field);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = schema(other);
        const long long counted = counterOf(other, "ExtraColumnsCounter");
        addColumn(c, name, readOnly);
        QCOMPARE(shown(), QStringList{titled(box)});
        if (field.isEmpty()) {
            QCOMPARE(schema(other), before);
            QCOMPARE(counterOf(other, "ExtraColumnsCounter"), counted);
            return;
        }
        QCOMPARE(fieldsOf(other, field), sixFields(field));
        const QString flag = readOnly ? "1" : "0";
        QCOMPARE(valuesOf(other, field), QString("Ann|<null>|%1|<null>|<null>\nBob|<null>|%1|<null>|<null>\n"
                                                 "Cleo|<null>|%1|<null>|<null>\nGuest|<null>|%1|<null>|<null>\n<null>|%1")
                                             .arg(flag));
        QCOMPARE(counterOf(other, "ExtraColumnsCounter"), counted + 1);
        // The console lists no field with ReadOnly in its name.
        c.clickNode("Columns");
        QCOMPARE(c.texts().contains(field), !field.contains("ReadOnly"));
        // The new field takes a user's value of 250 characters, and refuses more.
        other.execute(QString("UPDATE EmployeeTable SET %1 = ? WHERE Name = 'Ann'").arg(Database::quoteIdentifier("New_" + field)),
                      {QString(250, 'v')});
        QVERIFY_THROWS_EXCEPTION(StoreError, other.execute(QString("UPDATE EmployeeTable SET %1 = ? WHERE Name = 'Ann'")
                                                               .arg(Database::quoteIdentifier("New_" + field)),
                                                           {QString(251, 'v')}));
        QCOMPARE(other.scalar("PRAGMA integrity_check").toString(), QString("ok"));
    }

    // A column added, renamed and dropped through the console: the users'
    // values, widths, orders and defaults travel with the rename, the flag
    // is set afresh under the new name, the unchanged name is refused, and
    // the counter rises once per change, once for a batch of two.
    void addRenameDrop()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long counted = counterOf(other, "ExtraColumnsCounter");
        addColumn(c, "Extension", false);
        other.execute("UPDATE EmployeeTable SET New_Extension = '2231' WHERE Name = 'Bob'");
        const QString room = valuesOf(other, "Room");

        bool ticked = false;
        Msg::queueAnswers({});
        QVERIFY(dispatch(c, "Columns", {"Room"}, "Modify", [&](QDialog *d) {
            QCOMPARE(control<QLabel>(d, "lblCurrentColumnName")->text(), QString("Room"));
            ticked = control<QCheckBox>(d, "chkReadOnly")->isChecked();  // the list reads "Yes"
            press(d, 0);  // the name unchanged: its own field clashes
            QCOMPARE(shown(), QStringList({AnotherColumn, titled(Exists)}));
            control<QLineEdit>(d, "txtNewColumnName")->setText(" Office [1] ");
            control<QCheckBox>(d, "chkReadOnly")->setChecked(false);
            press(d, 0);
            QVERIFY(!d->isVisible());
        }));
        QVERIFY(ticked);
        QVERIFY(fieldsOf(other, "Room").isEmpty());
        QCOMPARE(fieldsOf(other, "Office [1]"), sixFields("Office [1]"));
        QString renamed = room;
        renamed.replace("|1|", "|0|").replace(QRegularExpression("1$"), "0");  // the flags, cleared
        QCOMPARE(valuesOf(other, "Office [1]"), renamed);
        QCOMPARE(counterOf(other, "ExtraColumnsCounter"), counted + 2);

        QVERIFY(dispatch(c, "Columns", {"Extension", "Office [1]"}, "Delete", [&](QDialog *d) {
            QCOMPARE(CataloguesTest::listed(d, "lstDeleteColumn"), QStringList({"Extension", "Office [1]"}));
            press(d, 0);
        }));
        QVERIFY(fieldsOf(other, "Extension").isEmpty());
        QVERIFY(fieldsOf(other, "Office").isEmpty());
        QCOMPARE(fieldsOf(other, "DeskReadOnly"), sixFields("DeskReadOnly"));
        QCOMPARE(counterOf(other, "ExtraColumnsCounter"), counted + 3);
        QCOMPARE(shown(), QStringList({AnotherColumn, titled(Exists)}));
        c.clickNode("Columns");
        QCOMPARE(c.texts(), QStringList());  // DeskReadOnly is never listed
    }

    // Another program reading or writing the file refuses the change of
    // structure: the box says so, and after Cancel the structure is what it
    // was, byte for byte, counter field included; Retry once the other has
    // let go makes the change.
    void refusedChange_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("hold");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("box");
        const QString inUse = "Database In Use|Column '%1' could not be %2, because another program is reading or "
                              "writing the board's database at this moment. Columns can only change while no other "
                              "program is using the tables. %3\r\n\r\nPress Retry to try again, or Cancel.";
        const QString added = inUse.arg("Desk No", "added", "Nothing has been added.");
        const QString renamed = inUse.arg("Room", "renamed to 'Desk No'", "Its name and values are as they were.");
        const QString dropped = inUse.arg("Room", "deleted", "It has been left as it was, with its values.");
        QTest::newRow("add, a read of EmployeeTable open: Cancel") << "Add" << "open read" << int(Msg::Cancel) << added;
        QTest::newRow("add, a read of EmployeeTable open: Retry") << "Add" << "open read" << int(Msg::Retry) << added;
        QTest::newRow("add, a write under way: Cancel") << "Add" << "lock" << int(Msg::Cancel) << added;
        QTest::newRow("rename, a reader: Cancel") << "Modify" << "reader" << int(Msg::Cancel) << renamed;
        QTest::newRow("rename, a write under way: Retry") << "Modify" << "lock" << int(Msg::Retry) << renamed;
        QTest::newRow("delete, a reader: Cancel") << "Delete" << "reader" << int(Msg::Cancel) << dropped;
        QTest::newRow("delete, a read of EmployeeTable open: Retry") << "Delete" << "open read" << int(Msg::Retry)
                                                                     << dropped;
        QTest::newRow("delete, a write under way: Cancel") << "Delete" << "lock" << int(Msg::Cancel) << dropped;
    }
    void refusedChange()
    {
        QFETCH(QString, verb);
        QFETCH(QString, hold);
        QFETCH(int, answer);
        QFETCH(QString, box);
        // A file of an older shape without ExtraColumnsCounter (taken away
        // after the start, which would add it): the change adds it too.
        Console c(seedBoard);
        Database other = c.other();
        other.execute("ALTER TABLE StatusCounterTable DROP COLUMN ExtraColumnsCounter");
        const QString before = schema(other), room = valuesOf(other, "Room");
        const QString counters = rows(other, "SELECT * FROM StatusCounterTable");
        Msg::queueAnswers({answer, Msg::No});
        QVERIFY(dispatch(c, "Columns", verb == "Add" ? QStringList{} : QStringList{"Room"}, verb, [&](QDialog *d) {
            if (verb == "Add")
                control<QLineEdit>(d, "txtAddColumn")->setText("Desk No");
            if (verb == "Modify")
                control<QLineEdit>(d, "txtNewColumnName")->setText("Desk No");
            heldDuring(c, hold, [&] { press(d, 0); });
        }));
        QCOMPARE(shown().value(0), box);
        if (answer == Msg::Cancel) {
            QCOMPARE(shown().size(), 1);
            QCOMPARE(schema(other), before);
            QCOMPARE(valuesOf(other, "Room"), room);
            QCOMPARE(rows(other, "SELECT * FROM StatusCounterTable"), counters);
            return;
        }
        QVERIFY(schema(other) != before);
        QCOMPARE(fieldsOf(other, "Room").isEmpty(), verb != "Add");
        QCOMPARE(fieldsOf(other, "Desk No"), verb == "Delete" ? QStringList{} : sixFields("Desk No"));
        // The counter field made with the change, its first value raised once.
        QCOMPARE(counterOf(other, "ExtraColumnsCounter"), 1);
        QVERIFY(!gdbMain.inTransaction());
    }

    // What is made here reaches the user windows: frmAddUser copies the
    // column's new-user default, frmModUser's grid shows the column with
    // the user's value and saves it, also under a renamed column.
    void userWindowsSeeColumns()
    {
        Console c(seedBoard);
        Database other = c.other();
        addColumn(c, "Badge Nº", false);
        other.execute("UPDATE NewUserDefaultsTable SET \"New_Badge Nº\" = ' B-7 '");
        frmAddUser add;
        add.show();
        control<QLineEdit>(&add, "txtAddUserID")->setText("z1");
        control<QLineEdit>(&add, "txtAddUserName")->setText("Zed");
        Msg::queueAnswers({Msg::No});
        add.cmdButtons_Click(0);
        QCOMPARE(rows(other, "SELECT \"New_Badge Nº\", New_Room FROM EmployeeTable WHERE Name = 'Zed'"), QString("B-7|Lobby"));

        auto grid = [](const QDialog &d) {
            QStringList out;
            const auto *g = control<QTableWidget>(&d, "msFlexGridChange");
            for (int r = 0; r < g->rowCount(); ++r)
                out << g->item(r, 0)->text() + '=' + g->item(r, 1)->text();
            return out;
        };
        SelectedItemName = "Zed";
        {
            frmModUser mod;
            mod.show();
            QCOMPARE(grid(mod), QStringList({"Room=Lobby", "Badge Nº=B-7"}));
            mod.msFlexGridChange_Pick(1);
            control<QLineEdit>(&mod, "txtChangeFieldValue")->setText("B-8");
            mod.cmdButtons_Click(0);
        }
        QCOMPARE(rows(other, "SELECT \"New_Badge Nº\" FROM EmployeeTable WHERE Name = 'Zed'"), QString("B-8 "));
        QVERIFY(dispatch(c, "Columns", {"Badge Nº"}, "Modify", [&](QDialog *d) {
            control<QLineEdit>(d, "txtNewColumnName")->setText("Badge");
            press(d, 0);
        }));
        frmModUser mod;
        mod.show();
        QCOMPARE(grid(mod), QStringList({"Room=Lobby ", "Badge=B-8 "}));  // a blank more each save
    }
};

QTEST_MAIN(TestColumns)
#include "tst_columns.moc"
