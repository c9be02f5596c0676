// Deleting users: the list taken from the console's selection, one
// transaction a name, Retry and Cancel when another program holds the file,
// and the counter raised once after the batch.
#include "UsersTest.h"

#include "console/AdminListView.h"
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Help.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "users/frmDeleteUser.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;
using Hold = TestSupport::ExternalHolder::Hold;

namespace {

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1", "Cleo=c1", "Dan=d1", "O'Brien \"Jo\" [x]*?; %_=o1", "O'Brien x=o2"});
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

// The rows' Selected flags, set as the list holds them.
void selectRows(Console &c, const QStringList &names)
{
    c.clickNode("Users");
    c.list()->clearSelection();
    for (const QString &n : names)
        c.list()->selectionModel()->select(c.rows()->index(c.rowOf(n), 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

QStringList listed(const QDialog *d)
{
    QStringList out;
    auto *list = control<QListWidget>(d, "lstDeleteUser");
    for (int i = 0; i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}

QString failureFor(const QString &name)
{
    return Msg::defaultTitle() + "|An error occured while trying to delete the user ''" + name + "''.";
}

}  // namespace

class TestDeleteUser : public QObject {
    Q_OBJECT

private slots:
    void deletesWhatIsSelected_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QStringList>("kept");
        const QString odd = "O'Brien \"Jo\" [x]*?; %_";
        QTest::newRow("one") << QStringList{"Cleo"} << QStringList{"Ann", "Bob", "Dan", "Guest", odd, "O'Brien x"};
        QTest::newRow("two apart") << QStringList{"Ann", "Cleo"} << QStringList{"Bob", "Dan", "Guest", odd, "O'Brien x"};
        QTest::newRow("a tracker and his trackee") << QStringList{"Bob", "Cleo", "Dan"}
                                                   << QStringList{"Ann", "Guest", odd, "O'Brien x"};
        QTest::newRow("quotes, brackets, wildcards") << QStringList{odd}
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
        QStringList shownList;
        QString caption;
        Modal::setHandler([&](QDialog *d) {
            shownList = listed(d);
            caption = d->windowTitle();
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.keyInList(Qt::Key_Delete);
        Modal::setHandler({});
        QCOMPARE(shownList, selected);
        QCOMPARE(caption, gstrAppTitle + "Delete Users or Items");
        QCOMPARE(boxes(), QStringList());
        for (const QString &name : selected)
            QVERIFY2(traces(other, name) == 0, qPrintable(name));
        QStringList left;
        Recordset rs = other.query("SELECT Name FROM EmployeeTable ORDER BY Name");
        for (; !rs.eof(); rs.moveNext())
            left << rs.text("Name");
        QCOMPARE(left, kept);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable").toInt(), kept.size());
        QCOMPARE(counter(other), before + 1);
        QVERIFY(!gdbMain.inTransaction());
        QVERIFY(!Hourglass::shown());
    }

    // Rows picked with the mouse as a person does: a click, Ctrl+click adds
    // one, Shift+click takes the run between.
    void picksSeveralRowsWithTheMouse()
    {
        Console c(seedBoard);
        c.clickNode("Users");
        c.clickRow(c.rowOf("Ann"));
        c.clickRow(c.rowOf("Cleo"), Qt::LeftButton, Qt::ControlModifier);
        c.clickRow(c.rowOf("Guest"), Qt::LeftButton, Qt::ControlModifier);
        c.clickRow(c.rowOf("Cleo"), Qt::LeftButton, Qt::ControlModifier);  // and drops one again
        QStringList shownList;
        Modal::setHandler([&](QDialog *d) {
            shownList = listed(d);
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_1"), Qt::LeftButton);
        });
        c.keyInList(Qt::Key_Delete);
        QCOMPARE(shownList, (QStringList{"Ann", "Guest"}));

        c.clickRow(c.rowOf("Bob"));
        c.clickRow(c.rowOf("Dan"), Qt::LeftButton, Qt::ShiftModifier);
        c.keyInList(Qt::Key_Delete);
        Modal::setHandler({});
        QCOMPARE(shownList, (QStringList{"Bob", "Cleo", "Dan"}));
    }

    void nothingSelected()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        c.clickNode("Users");
        c.list()->clearSelection();
        QStringList shownList{"not looked at"};
        bool closed = false;
        Modal::setHandler([&](QDialog *d) {
            shownList = listed(d);
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
            closed = !d->isVisible();
        });
        c.w().DeleteDispatcher("Users");
        Modal::setHandler({});
        QCOMPARE(shownList, QStringList());
        QVERIFY(closed);
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|No item selected to delete"});
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::None);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeTable").toInt(), 7);
        QCOMPARE(counter(other), before);
    }

    void vanishedMeanwhile()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        selectRows(c, {"Bob", "Dan"});
        Modal::setHandler([&](QDialog *d) {
            other.execute("DELETE FROM EmployeeTable WHERE Name = 'Bob'");
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.w().DeleteDispatcher("Users");
        Modal::setHandler({});
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(traces(other, "Dan"), 0);
        QCOMPARE(counter(other), before + 1);
    }

    void cancelDeletesNothing()
    {
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        selectRows(c, {"Ann"});
        Modal::setHandler([&](QDialog *d) {
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_1"), Qt::LeftButton);
        });
        c.w().DeleteDispatcher("Users");
        Modal::setHandler({});
        QCOMPARE(traces(other, "Ann"), 3);
        QCOMPARE(counter(other), before);
    }

    // Four users go; another program takes the file just as the third
    // begins. The first two are gone by then, each in its own transaction.
    void thirdHeldByAnotherProgram_data()
    {
        QTest::addColumn<int>("hold");         // what the other program holds
        QTest::addColumn<QString>("step");     // statement of the third user that meets it
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<bool>("cleoKept");
        QTest::newRow("write lock at the start, Retry after release")
            << int(Hold::Write) << "BEGIN" << QList<int>{Msg::Retry} << false;
        QTest::newRow("write lock at the start, Cancel") << int(Hold::Write) << "BEGIN" << QList<int>{Msg::Cancel} << true;
        QTest::newRow("reader at commit, Retry after release")
            << int(Hold::Read) << "COMMIT" << QList<int>{Msg::Retry} << false;
        QTest::newRow("reader at commit, Cancel rolls the deletes back")
            << int(Hold::Read) << "COMMIT" << QList<int>{Msg::Cancel} << true;
        QTest::newRow("Retry while still held, then Cancel")
            << int(Hold::Write) << "BEGIN" << QList<int>{Msg::Retry, Msg::Cancel} << true;
    }
    void thirdHeldByAnotherProgram()
    {
        QFETCH(int, hold);
        QFETCH(QString, step);
        QFETCH(QList<int>, answers);
        QFETCH(bool, cleoKept);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        const int cleoTraces = traces(other, "Cleo");
        selectRows(c, {"Ann", "Bob", "Cleo", "Dan"});

        // The other program takes its hold as the third user's BEGIN starts.
        // It lets go before the last Retry when the answers end in one, else
        // as the fourth user's BEGIN starts.
        const int retries = int(answers.count(Msg::Retry));
        const bool endsInRetry = answers.last() == Msg::Retry;
        const int fourthBegin = step == "BEGIN" ? 3 + retries + 1 : 4;
        std::optional<TestSupport::ExternalHolder> holder;
        int begins = 0;
        int commits = 0;
        QStringList goneWhenHeld;
        Msg::queueAnswers(answers);
        StatementHook hook(gdbMain, [&](const QString &sql) {
            if (sql.startsWith("BEGIN"))
                ++begins;
            if (sql.startsWith("COMMIT"))
                ++commits;
            if (sql.startsWith("BEGIN") && begins == 3) {
                for (const char *n : {"Ann", "Bob"})
                    if (traces(other, n) == 0)
                        goneWhenHeld << n;
                holder.emplace(c.databaseFile(), Hold(hold));
                QVERIFY(holder->started());
            }
            const int attempt = (step == "BEGIN" ? begins : commits) - 2;  // the third user's attempts
            if (sql.startsWith(step) && endsInRetry && attempt == int(answers.size()) + 1)
                holder.reset();
            if (sql.startsWith("BEGIN") && begins == fourthBegin)
                holder.reset();
        });
        Modal::setHandler([&](QDialog *d) {
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.w().DeleteDispatcher("Users");
        Modal::setHandler({});
        holder.reset();

        QCOMPARE(goneWhenHeld, (QStringList{"Ann", "Bob"}));
        QStringList expectedBoxes;
        for (int i = 0; i < answers.size(); ++i)
            expectedBoxes << failureFor("Cleo");
        QCOMPARE(boxes(), expectedBoxes);
        for (const Msg::Shown &s : Msg::transcript()) {
            QCOMPARE(s.icon, Msg::Icon::Exclamation);
            QCOMPARE(s.buttons, Msg::Buttons::RetryCancel);
        }
        QCOMPARE(traces(other, "Ann"), 0);
        QCOMPARE(traces(other, "Bob"), 0);
        QCOMPARE(traces(other, "Dan"), 0);
        QCOMPARE(traces(other, "Cleo"), cleoKept ? cleoTraces : 0);
        if (cleoKept) {
            // Whole, not half: her settings, memberships and manager flag are back.
            QCOMPARE(other.scalar("SELECT GroupManager FROM EmployeeGroupTable WHERE EmployeeName = 'Cleo' "
                                  "AND GroupName = 'Sales'").toInt(), 1);
            QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable WHERE Name = 'Cleo'").toInt(), 1);
        }
        QCOMPARE(counter(other), before + 1);
        QVERIFY(!gdbMain.inTransaction());
    }

    // Help of each user window: F1 from its Help button opens its own page,
    // and the window stays as it was.
    void help_data()
    {
        QTest::addColumn<QString>("window");
        for (const char *w : {"frmAddUser", "frmDeleteUser", "frmModUser", "frmNewUser"})
            QTest::newRow(w) << w;
    }
    void help()
    {
        QFETCH(QString, window);
        Help::install();
        Console c(seedBoard);
        selectRows(c, {"Ann"});
        SelectedItemName = "Ann";
        std::unique_ptr<QDialog> d(DialogRegistry::create(window, nullptr));
        QVERIFY(d);
        QCOMPARE(d->objectName(), window);
        d->show();
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdButtons_2"), Qt::LeftButton);
        QCOMPARE(Help::lastPage(), window);
        QVERIFY(d->isVisible());
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "HelpWindow")
                w->close();
        Database other = c.other();
        QCOMPARE(traces(other, "Ann"), 3);
    }
};

QTEST_MAIN(TestDeleteUser)
#include "tst_deleteuser.moc"
