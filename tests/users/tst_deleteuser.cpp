// Deleting users: the list taken from the console's selection, one
// transaction a name, and Retry or Cancel when another program holds the file.
#include "UsersTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/Modal.h"
#include "users/frmDeleteUser.h"

#include <QItemSelectionModel>
#include <QListWidget>
#include <QPushButton>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;
using Hold = TestSupport::ExternalHolder::Hold;

namespace {

const QString Odd = "O'Brien \"Jo\" [x]*?; %_";

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Dan=d1", Odd + "=o1", "O'Brien x=o2"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {"Sales"});
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES (?, ?, 0), (?, ?, 1), "
               "(?, ?, 0), (?, ?, 0)", {"Ann", "Sales", "Cleo", "Sales", "Cleo", "Everyone", "Dan", "Sales"});
    db.execute("INSERT INTO EmployeeStatusTracking (Tracker, Trackee, TrackeeStatus) VALUES (?, ?, ?), (?, ?, ?), "
               "(?, ?, ?)", {"Cleo", "Guest", "In", "Guest", "Cleo", "Out", "Dan", "Bob", "In"});
}

// Rows that still mention a user anywhere.
int traces(Database &db, const QString &name)
{
    return db.scalar("SELECT (SELECT count(*) FROM EmployeeTable WHERE Name = ?) + "
                     "(SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?) + "
                     "(SELECT count(*) FROM EmployeeGroupTable WHERE EmployeeName = ?) + "
                     "(SELECT count(*) FROM EmployeeStatusTracking WHERE Tracker = ? OR Trackee = ?)",
                     {name, name, name, name, name}).toInt();
}

QStringList names(Database &db)
{
    return db.scalar("SELECT group_concat(Name, '|') FROM (SELECT Name FROM EmployeeTable ORDER BY Name)")
        .toString().split('|');
}

// Opens the dialog from the console on the rows of `selected` (when given),
// notes what it lists and presses `button`.
QStringList deleteWith(Console &c, int button, const QStringList *selected = nullptr,
                       const std::function<void()> &meanwhile = {})
{
    if (selected) {
        c.clickNode("Users");
        c.list()->clearSelection();
        for (const QString &n : *selected)
            c.list()->selectionModel()->select(c.rows()->index(c.rowOf(n), 0),
                                               QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    QStringList listed;
    Modal::setHandler([&](QDialog *d) {
        auto *list = control<QListWidget>(d, "lstDeleteUser");
        for (int i = 0; i < list->count(); ++i)
            listed << list->item(i)->text();
        if (meanwhile)
            meanwhile();
        QTest::mouseClick(control<QPushButton>(d, QString("cmdButtons_%1").arg(button)), Qt::LeftButton);
    });
    c.w().DeleteDispatcher("Users");
    Modal::setHandler({});
    return listed;
}

}  // namespace

class TestDeleteUser : public QObject {
    Q_OBJECT

private slots:
    void deletesWhatIsSelected_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("vanishing");  // deleted by another program while the dialog is open
        QTest::addColumn<QString>("shown");      // text of the box shown
        QTest::newRow("a tracker and his trackee") << QStringList{"Bob", "Cleo", "Dan"} << "" << "";
        QTest::newRow("quotes, brackets, wildcards") << QStringList{Odd} << "" << "";
        QTest::newRow("one deleted meanwhile") << QStringList{"Bob", "Dan"} << "Bob" << "";
        QTest::newRow("nothing selected") << QStringList{} << "" << "No item selected to delete";
    }
    void deletesWhatIsSelected()
    {
        QFETCH(QStringList, selected);
        QFETCH(QString, vanishing);
        QFETCH(QString, shown);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        QStringList kept = names(other);
        QCOMPARE(deleteWith(c, 0, &selected, [&] {
            if (!vanishing.isEmpty())
                other.execute("DELETE FROM EmployeeTable WHERE Name = ?", {vanishing});
        }), selected);
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{Msg::defaultTitle() + '|' + shown});
        for (const QString &name : selected) {
            QVERIFY2(traces(other, name) == 0, qPrintable(name));
            kept.removeOne(name);
        }
        QCOMPARE(names(other), kept);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable").toInt(), kept.size());
        QCOMPARE(counter(other), before + !selected.isEmpty());
        QVERIFY(!gdbMain.inTransaction());
    }

    // Rows picked as a person does: Ctrl+click adds or drops one, Shift+click
    // takes the run between. Cancel deletes nothing.
    void picksSeveralRowsWithTheMouse()
    {
        Console c(seedBoard);
        Database other = c.other();
        const QStringList all = names(other);
        const long long before = counter(other);
        c.clickNode("Users");
        c.clickRow(c.rowOf("Ann"));
        for (const char *n : {"Cleo", "Guest", "Cleo"})
            c.clickRow(c.rowOf(n), Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(deleteWith(c, 1), (QStringList{"Ann", "Guest"}));
        c.clickRow(c.rowOf("Bob"));
        c.clickRow(c.rowOf("Dan"), Qt::LeftButton, Qt::ShiftModifier);
        QCOMPARE(deleteWith(c, 1), (QStringList{"Bob", "Cleo", "Dan"}));
        QCOMPARE(names(other), all);
        QCOMPARE(counter(other), before);
    }

    // Four users go; another program takes the file just as the third
    // begins, and lets go before the next statement after the answer.
    void thirdHeldByAnotherProgram_data()
    {
        QTest::addColumn<int>("hold");
        QTest::addColumn<bool>("retry");
        QTest::newRow("write lock at the start, Retry") << int(Hold::Write) << true;
        QTest::newRow("write lock at the start, Cancel") << int(Hold::Write) << false;
        QTest::newRow("reader at commit, Retry") << int(Hold::Read) << true;
        QTest::newRow("reader at commit, Cancel rolls back") << int(Hold::Read) << false;
    }
    void thirdHeldByAnotherProgram()
    {
        QFETCH(int, hold);
        QFETCH(bool, retry);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        const int cleoTraces = traces(other, "Cleo");
        const QStringList four{"Ann", "Bob", "Cleo", "Dan"};
        std::optional<TestSupport::ExternalHolder> holder;
        int begins = 0, commits = 0, goneWhenHeld = -1;
        Msg::queueAnswers({retry ? Msg::Retry : Msg::Cancel});
        const auto hook = onEachStatement(gdbMain, [&](const QString &sql) {
            begins += sql.startsWith("BEGIN");
            commits += sql.startsWith("COMMIT");
            if (sql.startsWith("BEGIN") && begins == 3) {
                goneWhenHeld = traces(other, "Ann") + traces(other, "Bob");
                holder.emplace(c.databaseFile(), Hold(hold));
                QVERIFY(holder->started());
            } else if (begins > 3 || commits > 3) {
                holder.reset();
            }
        });
        deleteWith(c, 0, &four);
        holder.reset();
        QCOMPARE(goneWhenHeld, 0);  // the first two were already gone
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|An error occured while trying to delete the user ''Cleo''."});
        QCOMPARE(Msg::transcript()[0].buttons, Msg::Buttons::RetryCancel);
        QCOMPARE(traces(other, "Ann") + traces(other, "Bob") + traces(other, "Dan"), 0);
        QCOMPARE(traces(other, "Cleo"), retry ? 0 : cleoTraces);
        if (!retry)  // her manager flag is back too
            QCOMPARE(other.scalar("SELECT GroupManager FROM EmployeeGroupTable WHERE EmployeeName = ? AND GroupName = ?",
                                  {"Cleo", "Sales"}).toInt(), 1);
        QCOMPARE(counter(other), before + 1);
        QVERIFY(!gdbMain.inTransaction());
    }
};

QTEST_MAIN(TestDeleteUser)
#include "tst_deleteuser.moc"
