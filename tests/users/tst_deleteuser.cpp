// Deleting users: the list taken from the console's selection, one
// transaction a name, and Retry or Cancel when another program holds the file.
#include "UsersTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "users/frmDeleteUser.h"

#include <QItemSelectionModel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;
using Hold = TestSupport::ExternalHolder::Hold;

namespace {

const QString Odd = "O'Brien \"Jo\" [x]*?; %_";

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Dan=d1", Odd + "=o1", "O'Brien x=o2"});
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')");
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES "
               "('Ann', 'Sales', 0), ('Cleo', 'Sales', 1), ('Cleo', 'Everyone', 0), ('Dan', 'Sales', 0)");
    db.execute("INSERT INTO EmployeeStatusTracking (Tracker, Trackee, TrackeeStatus) VALUES "
               "('Cleo', 'Guest', 'In'), ('Guest', 'Cleo', 'Out'), ('Dan', 'Bob', 'In')");
}

// Rows that still mention a user anywhere.
int traces(Database &db, const QString &name)
{
    return db.scalar("SELECT (SELECT count(*) FROM EmployeeTable WHERE Name = ?) + "
                     "(SELECT count(*) FROM EmployeeSettingsTable WHERE Name = ?) + "
                     "(SELECT count(*) FROM EmployeeGroupTable WHERE EmployeeName = ?) + "
                     "(SELECT count(*) FROM EmployeeStatusTracking WHERE Tracker = ? OR Trackee = ?)",
                     {name, name, name, name, name})
        .toInt();
}

void selectRows(Console &c, const QStringList &names)
{
    c.clickNode("Users");
    c.list()->clearSelection();
    for (const QString &n : names)
        c.list()->selectionModel()->select(c.rows()->index(c.rowOf(n), 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

// Opens the dialog from the console, notes what it lists and presses `button`.
QStringList deleteWith(Console &c, int button, const std::function<void()> &meanwhile = {})
{
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

QStringList names(Database &db)
{
    QStringList out;
    for (Recordset rs = db.query("SELECT Name FROM EmployeeTable ORDER BY Name"); !rs.eof(); rs.moveNext())
        out << rs.text("Name");
    return out;
}

}  // namespace

class TestDeleteUser : public QObject {
    Q_OBJECT

private slots:
    void deletesWhatIsSelected_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QStringList>("kept");
        QTest::newRow("a tracker and his trackee") << QStringList{"Bob", "Cleo", "Dan"}
                                                   << QStringList{"Ann", "Guest", Odd, "O'Brien x"};
        QTest::newRow("quotes, brackets, wildcards") << QStringList{Odd}
                                                     << QStringList{"Ann", "Bob", "Cleo", "Dan", "Guest", "O'Brien x"};
    }
    void deletesWhatIsSelected()
    {
        QFETCH(QStringList, selected);
        QFETCH(QStringList, kept);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        selectRows(c, selected);
        QCOMPARE(deleteWith(c, 0), selected);
        QCOMPARE(boxes(), QStringList());
        for (const QString &name : selected)
            QVERIFY2(traces(other, name) == 0, qPrintable(name));
        QCOMPARE(names(other), kept);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable").toInt(), kept.size());
        QCOMPARE(counter(other), before + 1);
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

    void nothingSelected()
    {
        Console c(seedBoard);
        const long long before = counter(gdbMain);
        c.clickNode("Users");
        c.list()->clearSelection();
        QCOMPARE(deleteWith(c, 0), QStringList());
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|No item selected to delete"});
        QCOMPARE(counter(gdbMain), before);
    }

    void vanishedMeanwhile()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        selectRows(c, {"Bob", "Dan"});
        deleteWith(c, 0, [&] { other.execute("DELETE FROM EmployeeTable WHERE Name = 'Bob'"); });
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(traces(other, "Dan"), 0);
        QCOMPARE(counter(other), before + 1);
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
        selectRows(c, {"Ann", "Bob", "Cleo", "Dan"});
        std::optional<TestSupport::ExternalHolder> holder;
        int begins = 0, commits = 0;
        QStringList goneWhenHeld;
        Msg::queueAnswers({retry ? Msg::Retry : Msg::Cancel});
        StatementHook hook(gdbMain, [&](const QString &sql) {
            begins += sql.startsWith("BEGIN");
            commits += sql.startsWith("COMMIT");
            if (sql.startsWith("BEGIN") && begins == 3) {
                for (const char *n : {"Ann", "Bob"})
                    if (traces(other, n) == 0)
                        goneWhenHeld << n;
                holder.emplace(c.databaseFile(), Hold(hold));
                QVERIFY(holder->started());
            } else if (begins > 3 || commits > 3) {
                holder.reset();
            }
        });
        deleteWith(c, 0);
        holder.reset();
        QCOMPARE(goneWhenHeld, (QStringList{"Ann", "Bob"}));
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|An error occured while trying to delete the user ''Cleo''."});
        QCOMPARE(Msg::transcript()[0].buttons, Msg::Buttons::RetryCancel);
        QCOMPARE(traces(other, "Ann") + traces(other, "Bob") + traces(other, "Dan"), 0);
        QCOMPARE(traces(other, "Cleo"), retry ? 0 : cleoTraces);
        if (!retry)  // her manager flag is back too
            QCOMPARE(other.scalar("SELECT GroupManager FROM EmployeeGroupTable WHERE EmployeeName = 'Cleo' "
                                  "AND GroupName = 'Sales'").toInt(), 1);
        QCOMPARE(counter(other), before + 1);
        QVERIFY(!gdbMain.inTransaction());
    }
};

QTEST_MAIN(TestDeleteUser)
#include "tst_deleteuser.moc"
