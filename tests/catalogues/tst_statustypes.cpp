// Status types: the typing rule of the name, the checks at OK in their
// order, a rename that leaves users on the old word, and deletion in one
// batch with Retry and Cancel while another program holds the file.
#include "CataloguesTest.h"

#include "catalogues/StatusTypeStore.h"
#include "catalogues/frmAddStatus.h"
#include "catalogues/frmModStatus.h"
#include "console/frmMain.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace CataloguesTest;

namespace {

const QString QuoteRefused = "Invalid Character In Status Type|Sorry, 'double quotes' are not allowed in a Status Type.";
const QString Another = "Add Status Type|Add another Status Type?";

// Lunch has stored button text and tool tip unlike what the name would
// give, so that a rewrite on opening shows. Cleo's status is empty, which
// only a program ignoring the schema's rules can write; Dan's is Null.
void seedBoard(Database &db)
{
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode, OnToolbar, ButtonText, ToolTipText, ProtectedStatus) "
               "VALUES ('Lunch', 5, 1, 'Eat', 'Gone for lunch', 1), ('Holiday', 3, 0, 'Away', 'On holiday', 0), "
               "('Tea', 2, 0, 'Tea', 'Tea', 0), ('Odd', 9, 0, 'Odd', 'Odd', 0), ('été', 2, 0, 'x', 'x', 0), "
               "('ÉTÉ', 6, 0, 'x', 'x', 0)");
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Dan=d1"});
    db.execute("UPDATE EmployeeTable SET Status = 'Lunch', StatusCode = 5 WHERE Name = 'Ann'");
    db.execute("UPDATE EmployeeTable SET Status = 'Holiday', StatusCode = 3 WHERE Name = 'Bob'");
    db.execute("UPDATE EmployeeTable SET Status = NULL, StatusCode = 1 WHERE Name = 'Dan'");
    db.execute("PRAGMA ignore_check_constraints = ON");
    db.execute("UPDATE EmployeeTable SET Status = '', StatusCode = 2 WHERE Name = 'Cleo'");
}

QString types(Database &db)
{
    return rows(db, "SELECT Status, StatusCode, OnToolbar, ButtonText, ToolTipText, ProtectedStatus FROM "
                    "StatusTypesTable ORDER BY rowid");
}

QString users(Database &db) { return rows(db, "SELECT Name, Status, StatusCode FROM EmployeeTable ORDER BY Name"); }

QLineEdit *edit(const QWidget *d, const QString &name) { return control<QLineEdit>(d, name); }

// Puts `input` into a field: "type:" keys typed, "paste:" the text set at once.
void enter(QLineEdit *field, const QString &input)
{
    if (input.startsWith("type:"))
        QTest::keyClicks(field, input.mid(5));
    else
        field->setText(input.mid(6));
}

}  // namespace

class TestStatusTypes : public QObject {
    Q_OBJECT

private slots:
    // The name field of both windows: a double quote costs the last
    // character; every change rewrites button text and tool tip; in Add, OK
    // follows whether the stripped name is empty.
    void typingRule_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<bool>("ok");  // Add: OK enabled afterwards
        QTest::newRow("a name") << "Add" << "type:Lunch break" << "Lunch break" << "Lunch brea" << 0 << true;
        QTest::newRow("quote typed, typing goes on") << "Add" << "type:ab\"c" << "abc" << "abc" << 1 << true;
        QTest::newRow("quote in the middle costs the rest") << "Add" << "paste:ab\"cd" << "ab" << "ab" << 3 << true;
        QTest::newRow("blanks leave OK off") << "Add" << "type:   " << "   " << "   " << 0 << false;
        QTest::newRow("quote alone") << "Add" << "type:\"" << "" << "" << 1 << false;
        QTest::newRow("Modify: typed over the selection") << "Mod" << "type:Tea time" << "Tea time" << "Tea time" << 0
                                                          << true;
        QTest::newRow("Modify: quote in the middle") << "Mod" << "paste:Te\"a" << "Te" << "Te" << 2 << true;
    }
    void typingRule()
    {
        QFETCH(QString, window);
        QFETCH(QString, input);
        QFETCH(QString, name);
        QFETCH(QString, button);
        QFETCH(int, refusals);
        QFETCH(bool, ok);
        Console c(seedBoard);
        SelectedStatusName = "Lunch";
        std::unique_ptr<QDialog> d;
        if (window == "Add")
            d = std::make_unique<frmAddStatus>();
        else
            d = std::make_unique<frmModStatus>();
        d->show();
        QLineEdit *field = edit(d.get(), window == "Add" ? "txtAddStatus" : "txtModifyStatus");
        field->setFocus();
        field->selectAll();
        enter(field, input);
        QCOMPARE(field->text(), name);
        QCOMPARE(edit(d.get(), "txtButtonText")->text(), button);
        QCOMPARE(edit(d.get(), "txtToolTipText")->text(), " Set status to " + name + " ");
        QCOMPARE(shown(), QStringList(refusals, QuoteRefused));
        if (window == "Add")
            QCOMPARE(control<QPushButton>(d.get(), "cmdButtons_0")->isEnabled(), ok);
    }

    // What the program puts into button text and tool tip stays whole;
    // typing holds them to 10 and 30 characters, but may shorten them.
    void typedLimits()
    {
        Console c(seedBoard);
        frmAddStatus d;
        d.show();
        edit(&d, "txtAddStatus")->setText("A status of 25 characters");
        QLineEdit *tip = edit(&d, "txtToolTipText");
        QCOMPARE(tip->text().size(), 41);
        tip->setFocus();
        tip->end(false);
        QTest::keyClicks(tip, "xy");
        QCOMPARE(tip->text().size(), 41);
        QTest::keyClick(tip, Qt::Key_Backspace);
        QCOMPARE(tip->text(), " Set status to A status of 25 characters");
        QLineEdit *button = edit(&d, "txtButtonText");
        button->clear();
        QTest::keyClicks(button, "0123456789AB");
        QCOMPARE(button->text(), QString("0123456789"));
    }

    // OK in Add: the checks in their order with their texts, or the row as
    // stored and the counter raised once.
    void addChecks_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("toolbar");
        QTest::addColumn<QString>("button");  // typed after the name; "=" leaves what the name gave
        QTest::addColumn<int>("colour");      // 0: as the window opened
        QTest::addColumn<QString>("box");     // the box OK shows
        QTest::addColumn<QString>("focus");   // the field then, or the row stored
        const QString error = "Add Status Error|";
        const QString exists = "Error - Status Type Exists|Sorry, '%1' Status Type already exists.\rPlease select a "
                               "different Status Type.";
        const QString command = error + "Sorry, %1 already exists as a 'Command Button' on the ToolBar. Please "
                                        "re-enter a different Status Type.";
        QTest::newRow("blanks") << "   " << false << "=" << 0 << error + "Please enter a new Status type" << "txtAddStatus";
        QTest::newRow("toolbar word in any case") << "new msg" << false << "=" << 0 << command.arg("new msg")
                                                  << "txtAddStatus";
        QTest::newRow("toolbar word before the button") << " Help " << true << "" << 0 << command.arg("Help")
                                                        << "txtAddStatus";
        QTest::newRow("toolbar ticked, button blank") << "Meeting" << true << "  " << 0
                                                      << error + "Please enter button text" << "txtButtonText";
        QTest::newRow("in with blanks: taken, in any case") << " in " << false << "=" << 0 << exists.arg("in")
                                                            << "txtAddStatus";
        QTest::newRow("a pattern matching another") << "L*" << false << "=" << 0 << exists.arg("L*") << "txtAddStatus";
        QTest::newRow("other case beyond ASCII") << "Été" << false << "=" << 0 << exists.arg("Été") << "txtAddStatus";
        QTest::newRow("two blanks: no toolbar word") << "new  msg" << false << "=" << 0 << Another
                                                     << "new  msg|4|0|new  msg|Set status to new  msg|0";
        QTest::newRow("no toolbar, no button text") << "Meeting" << false << "" << 0 << Another
                                                    << "Meeting|4|0|<null>|Set status to Meeting|0";
        QTest::newRow("long name: tool tip cut to its field") << "A status of 25 characters" << false << "=" << 0
                                                              << Another
                                                              << "A status of 25 characters|4|0|A status o|Set status to "
                                                                 "A status of 25 c|0";
        QTest::newRow("toolbar, colour, protection") << "Training" << true << " Train " << 3 << Another
                                                     << "Training|3|1|Train|Set status to Training|1";
        QTest::newRow("quote marks and brackets") << "O'Neil [x] 50%" << false << "=" << 6 << Another
                                                  << "O'Neil [x] 50%|6|0|O'Neil [x]|Set status to O'Neil [x] 50%|0";
    }
    void addChecks()
    {
        QFETCH(QString, name);
        QFETCH(bool, toolbar);
        QFETCH(QString, button);
        QFETCH(int, colour);
        QFETCH(QString, box);
        QFETCH(QString, focus);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = types(other);
        const long long counted = counterOf(other, "StatusTypeCounter");
        frmAddStatus d;
        d.show();
        edit(&d, "txtAddStatus")->setText(name);
        if (button != "=")
            edit(&d, "txtButtonText")->setText(button);
        control<QCheckBox>(&d, "chkOnToolBar")->setChecked(toolbar);
        control<QCheckBox>(&d, "chkProtectedStatus")->setChecked(focus.endsWith("|1"));
        if (colour)
            control<QAbstractButton>(&d, QString("optStatusCode_%1").arg(colour))->setChecked(true);
        Msg::queueAnswers({Msg::No});
        // Enter in the name field presses OK, also while OK is off.
        QTest::keyClick(edit(&d, "txtAddStatus"), Qt::Key_Return);
        QCOMPARE(shown(), QStringList{box});
        const bool added = box == Another;
        QCOMPARE(d.isVisible(), !added);
        QCOMPARE(counterOf(other, "StatusTypeCounter"), counted + added);
        if (added) {
            QCOMPARE(types(other), before + '\n' + focus);
        } else {
            QCOMPARE(types(other), before);
            QCOMPARE(d.focusWidget()->objectName(), focus);
        }
    }

    // Yes to "Add another": Blue again, the name empty with OK off, the
    // ticks as they were; each type raises the counter once.
    void addAnother()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long counted = counterOf(other, "StatusTypeCounter");
        frmAddStatus d;
        d.show();
        edit(&d, "txtAddStatus")->setText("Meeting");
        control<QCheckBox>(&d, "chkOnToolBar")->setChecked(true);
        control<QAbstractButton>(&d, "optStatusCode_1")->setChecked(true);
        Msg::queueAnswers({Msg::Yes, Msg::No});
        press(&d, 0);
        QCOMPARE(shownValue(&d, "optStatusCode"), QString("4"));
        QCOMPARE(shownValue(&d, "txtAddStatus"), QString());
        QCOMPARE(shownValue(&d, "chkOnToolBar"), QString("1"));
        QVERIFY(!control<QPushButton>(&d, "cmdButtons_0")->isEnabled());
        edit(&d, "txtAddStatus")->setText("Training");
        press(&d, 0);
        QCOMPARE(shown(), QStringList({Another, Another}));
        QCOMPARE(rows(other, "SELECT Status, StatusCode, OnToolbar FROM StatusTypesTable WHERE rowid > 9"),
                 QString("Meeting|1|1\nTraining|4|1"));
        QCOMPARE(counterOf(other, "StatusTypeCounter"), counted + 2);
    }

    // Modify, opened from the console on a type: the fields as stored; at OK
    // the checks, then one transaction for the row and the counter. A rename
    // touches no user; a clash with another type is refused by the store.
    void modify_data()
    {
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("name");       // typed over the name; "=" leaves it
        QTest::addColumn<QString>("button");     // typed into the button text; "=" leaves it
        QTest::addColumn<QString>("meanwhile");  // another program: "delete" the row, "lock" at OK
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("row");        // the type's row afterwards, by its rowid
        QTest::addColumn<int>("raised");
        const QString lunch = "Lunch|5|1|Eat|Gone for lunch|1";
        const QString clash = Msg::defaultTitle() + "|An error occured while trying to modify status 'Holiday'.";
        const QString command = "Modify Status Error|Sorry, %1 already exists as a 'Command Button' on the "
                                "ToolBar. Please re-enter a different Status Type.";
        QTest::newRow("blank") << "Lunch" << " " << "=" << "" << QList<int>{}
                               << QStringList{"Modify Status|Please enter the new Status text before pressing OK."}
                               << lunch << 0;
        QTest::newRow("toolbar word") << "Lunch" << "print" << "=" << "" << QList<int>{} << QStringList{command.arg("print")}
                                      << lunch << 0;
        QTest::newRow("button blank under Add's title") << "Lunch" << "=" << " " << "" << QList<int>{}
                                                        << QStringList{"Add Status Error|Please enter button text"}
                                                        << lunch << 0;
        QTest::newRow("unchanged: stored texts kept") << "Lunch" << "=" << "=" << "" << QList<int>{} << QStringList{}
                                                      << lunch << 1;
        QTest::newRow("renamed") << "Lunch" << "Dinner" << "=" << "" << QList<int>{} << QStringList{}
                                 << "Dinner|5|1|Dinner|Set status to Dinner|1" << 1;
        QTest::newRow("clash: Retry, then Cancel") << "Lunch" << "Holiday" << "=" << "" << QList<int>{Msg::Retry, Msg::Cancel}
                                                   << QStringList{clash, clash} << lunch << 0;
        QTest::newRow("deleted meanwhile: nothing written") << "Lunch" << "Dinner" << "=" << "delete" << QList<int>{}
                                                            << QStringList{} << "" << 1;
        QTest::newRow("read at the commit: Retry") << "Lunch" << "Dinner" << "=" << "reader" << QList<int>{Msg::Retry}
                                             << QStringList{Msg::defaultTitle() + "|An error occured while trying to "
                                                                                  "modify status 'Dinner'."}
                                             << "Dinner|5|1|Dinner|Set status to Dinner|1" << 1;
        QTest::newRow("colour beyond 1 to 6 kept") << "Odd" << "Odder" << "=" << "" << QList<int>{} << QStringList{}
                                                   << "Odder|9|0|Odder|Set status to Odder|0" << 1;
    }
    void modify()
    {
        QFETCH(QString, selected);
        QFETCH(QString, name);
        QFETCH(QString, button);
        QFETCH(QString, meanwhile);
        QFETCH(QList<int>, answers);
        QFETCH(QStringList, boxes);
        QFETCH(QString, row);
        QFETCH(int, raised);
        Console c(seedBoard);
        Database other = c.other();
        const QString people = users(other);
        const long long counted = counterOf(other, "StatusTypeCounter");
        const qint64 rowid = other.scalar("SELECT rowid FROM StatusTypesTable WHERE Status = ?", {selected}).toLongLong();
        bool open = false;
        Msg::queueAnswers(answers);
        QVERIFY(dispatch(c, "Status Types", {selected}, "Modify", [&](QDialog *d) {
            if (selected == "Lunch") {  // as stored, not as the name would give
                QCOMPARE(control<QLabel>(d, "lblCurrent")->text(), QString("Lunch"));
                QCOMPARE(shownValue(d, "txtButtonText"), QString("Eat"));
                QCOMPARE(shownValue(d, "txtToolTipText"), QString("Gone for lunch"));
                QCOMPARE(shownValue(d, "optStatusCode") + shownValue(d, "chkOnToolBar") +
                             shownValue(d, "chkProtectedStatus"), QString("511"));
            }
            if (name != "=")
                edit(d, "txtModifyStatus")->setText(name);
            if (button != "=")
                edit(d, "txtButtonText")->setText(button);
            if (meanwhile == "delete")
                other.execute("DELETE FROM StatusTypesTable WHERE Status = ?", {selected});
            heldDuring(c, meanwhile, [&] { press(d, 0); });
            open = d->isVisible();
        }));
        QCOMPARE(shown(), boxes);
        QCOMPARE(open, boxes.size() == 1 && answers.isEmpty());
        QCOMPARE(rows(other, "SELECT Status, StatusCode, OnToolbar, ButtonText, ToolTipText, ProtectedStatus FROM "
                             "StatusTypesTable WHERE rowid = ?", {rowid}), row);
        QCOMPARE(users(other), people);
        QCOMPARE(counterOf(other, "StatusTypeCounter"), counted + raised);
        QVERIFY(!gdbMain.inTransaction());
    }

    // Delete: the list from the console's selection without In, Out and
    // Busy; on OK one batch, the counter raised once. Users in a deleted
    // type keep its word; an empty status is repaired, a Null one is not.
    // Another program writing at OK costs the first type a box, one reading
    // at the commit costs the last one.
    void remove_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QString>("hold");
        QTest::addColumn<QList<int>>("answers");  // to the boxes after OK
        QTest::addColumn<QStringList>("kept");    // of the types listed
        QTest::addColumn<QStringList>("boxes");
        const QStringList three{"Holiday", "Lunch", "Tea"};
        const QString failed = Msg::defaultTitle() + "|An error occured while trying to delete the status ''%1''.";
        const QString refused = "Protected Status type|Sorry, the '%1' Status type cannot be deleted. It will not be "
                                "added to the deletion list.";
        QTest::newRow("three, Busy left out") << QStringList{"Busy", "Holiday", "Lunch", "Tea"} << three << ""
                                              << QList<int>{} << QStringList{} << QStringList{refused.arg("Busy")};
        QTest::newRow("locked at OK: Retry") << three << three << "lock" << QList<int>{Msg::Retry} << QStringList{}
                                             << QStringList{failed.arg("Holiday")};
        QTest::newRow("locked at OK: Cancel, the rest go") << three << three << "lock" << QList<int>{Msg::Cancel}
                                                           << QStringList{"Holiday"} << QStringList{failed.arg("Holiday")};
        QTest::newRow("read at the commit: Retry") << three << three << "reader" << QList<int>{Msg::Retry}
                                                   << QStringList{} << QStringList{failed.arg("Tea")};
        QTest::newRow("read at the commit: Cancel, the rest go") << three << three << "reader" << QList<int>{Msg::Cancel}
                                                                 << QStringList{"Tea"} << QStringList{failed.arg("Tea")};
    }
    void remove()
    {
        QFETCH(QStringList, selected);
        QFETCH(QStringList, listed);
        QFETCH(QString, hold);
        QFETCH(QList<int>, answers);
        QFETCH(QStringList, kept);
        QFETCH(QStringList, boxes);
        Console c(seedBoard);
        Database other = c.other();
        const long long counted = counterOf(other, "StatusTypeCounter");
        QVERIFY(dispatch(c, "Status Types", selected, "Delete", [&](QDialog *d) {
            QCOMPARE(CataloguesTest::listed(d, "lstDeleteStatus"), listed);
            Msg::queueAnswers(answers);
            heldDuring(c, hold, [&] { press(d, 0); });
            QVERIFY(!d->isVisible());
        }));
        QCOMPARE(shown(), boxes);
        QCOMPARE(rows(other, "SELECT Status FROM StatusTypesTable WHERE Status IN ('Holiday', 'Lunch', 'Tea') "
                             "ORDER BY Status"), kept.join('\n'));
        QCOMPARE(users(other), QString("Ann|Lunch|5\nBob|Holiday|3\nCleo|Please Set|4\nDan|<null>|1\nGuest|Please Set|4"));
        QCOMPARE(counterOf(other, "StatusTypeCounter"), counted + 1);
        QVERIFY(!gdbMain.inTransaction());
    }

    // Only In and Out selected: both refused, then the empty list is told
    // and the window closes itself; nothing is deleted or raised.
    void removeNothing()
    {
        Console c(seedBoard);
        Database other = c.other();
        const QString before = types(other);
        const long long counted = counterOf(other, "StatusTypeCounter");
        bool stayed = true;
        QVERIFY(dispatch(c, "Status Types", {"In", "Out"}, "Delete", [&](QDialog *d) {
            QCoreApplication::processEvents();
            stayed = d->isVisible();
        }));
        const QString refused = "Protected Status type|Sorry, the '%1' Status type cannot be deleted. It will not be "
                                "added to the deletion list.";
        QCOMPARE(shown(), QStringList({refused.arg("In"), refused.arg("Out"),
                                       Msg::defaultTitle() + "|No item selected to delete"}));
        QVERIFY(!stayed);
        QCOMPARE(types(other), before);
        QCOMPARE(counterOf(other, "StatusTypeCounter"), counted);
    }

    // The colour the user windows give a status: the last row matching in
    // upper case, Blue when none does.
    void statusCodeOfName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("code");
        QTest::newRow("as stored") << "Lunch" << 5;
        QTest::newRow("other case") << "lUNCH" << 5;
        QTest::newRow("two rows beyond ASCII: the last") << "été" << 6;
        QTest::newRow("no pattern") << "L*" << 4;
        QTest::newRow("unknown") << "Gone fishing" << 4;
        QTest::newRow("seeded") << "IN" << 3;
    }
    void statusCodeOfName()
    {
        QFETCH(QString, name);
        QFETCH(int, code);
        Console c(seedBoard);
        QCOMPARE(StatusCodeOfName(gdbMain, name), code);
    }
};

QTEST_MAIN(TestStatusTypes)
#include "tst_statustypes.moc"
