// Deleting users: the list taken from the console's selection, one
// transaction a name, and Retry or Cancel when another program holds the file.
#include "UsersTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/Modal.h"
#include "users/frmDeleteUser.h"

#include <QListWidget>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;

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

// Every row that still mentions a user.
QString traces(Database &db, const QString &name)
{
    return rows(db, "SELECT Name, UID FROM EmployeeTable WHERE Name = ? UNION ALL "
                    "SELECT Name, Phone FROM EmployeeSettingsTable WHERE Name = ? UNION ALL "
                    "SELECT GroupName, GroupManager FROM EmployeeGroupTable WHERE EmployeeName = ? UNION ALL "
                    "SELECT Tracker, Trackee FROM EmployeeStatusTracking WHERE ? IN (Tracker, Trackee)",
                {name, name, name, name});
}

QStringList names(Database &db) { return rows(db, "SELECT Name FROM EmployeeTable ORDER BY Name").split('\n'); }

// Selects the rows of `selected` with the mouse (a click, then Ctrl+clicks),
// opens the dialog from the console, notes what it lists and presses
// `button`, while another program deletes `vanishing`.
QStringList deleteWith(Console &c, const QStringList &selected, int button, const QString &vanishing)
{
    c.clickNode("Users");
    c.list()->clearSelection();
    for (int i = 0; i < selected.size(); ++i)
        c.clickRow(c.rowOf(selected[i]), Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
    QStringList listed;
    Modal::setHandler([&](QDialog *d) {
        auto *list = control<QListWidget>(d, "lstDeleteUser");
        for (int i = 0; i < list->count(); ++i)
            listed << list->item(i)->text();
        if (!vanishing.isEmpty())
            c.other().execute("DELETE FROM EmployeeTable WHERE Name = ?", {vanishing});
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
    // Each name goes in a transaction of its own. Another program may delete
    // one while the dialog is open, or take the file just as the third
    // begins and let go as the next step starts after the answer: the first
    // two stay gone, Retry deletes her, Cancel rolls hers back.
    void deletesWhatIsSelected_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("vanishing");  // deleted by another program while the dialog is open
        QTest::addColumn<QString>("hold");       // taken by another program as the third begins
        QTest::addColumn<bool>("retry");         // the answer to the box that follows
        QTest::addColumn<QString>("shown");      // text of the box shown
        const QStringList four{"Ann", "Bob", "Cleo", "Dan"};
        const QString error = "An error occured while trying to delete the user ''Cleo''.";
        QTest::newRow("a tracker and his trackee") << QStringList{"Bob", "Cleo", "Dan"} << 0 << "" << "" << false << "";
        QTest::newRow("quotes, brackets, wildcards") << QStringList{Odd} << 0 << "" << "" << false << "";
        QTest::newRow("one deleted meanwhile") << QStringList{"Bob", "Dan"} << 0 << "Bob" << "" << false << "";
        QTest::newRow("Cancel deletes nothing") << QStringList{"Ann", "Guest"} << 1 << "" << "" << false << "";
        QTest::newRow("nothing selected") << QStringList{} << 0 << "" << "" << false << "No item selected to delete";
        QTest::newRow("write lock at the start, Retry") << four << 0 << "" << "lock" << true << error;
        QTest::newRow("write lock at the start, Cancel") << four << 0 << "" << "lock" << false << error;
        QTest::newRow("reader at commit, Retry") << four << 0 << "" << "reader" << true << error;
        QTest::newRow("reader at commit, Cancel rolls back") << four << 0 << "" << "reader" << false << error;
    }
    void deletesWhatIsSelected()
    {
        QFETCH(QStringList, selected);
        QFETCH(int, button);
        QFETCH(QString, vanishing);
        QFETCH(QString, hold);
        QFETCH(bool, retry);
        QFETCH(QString, shown);
        Console c(seedBoard);
        Database other = c.other();
        const long long before = counter(other);
        QStringList kept = names(other);
        const QString cleo = traces(other, "Cleo");
        Msg::queueAnswers({retry ? Msg::Retry : Msg::Cancel});
        whileHeld(c, hold, [&] { QCOMPARE(deleteWith(c, selected, button, vanishing), selected); }, 3);
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{Msg::defaultTitle() + '|' + shown});
        QVERIFY(hold.isEmpty() || Msg::transcript()[0].buttons == Msg::Buttons::RetryCancel);
        QStringList gone = button ? QStringList() : selected;
        if (!hold.isEmpty() && !retry) {
            QCOMPARE(traces(other, "Cleo"), cleo);  // all of hers back, her manager flag too
            gone.removeOne("Cleo");
        }
        for (const QString &name : gone) {
            QVERIFY2(traces(other, name).isEmpty(), qPrintable(name));
            kept.removeOne(name);
        }
        QCOMPARE(names(other), kept);
        QCOMPARE(other.scalar("SELECT count(*) FROM EmployeeSettingsTable").toInt(), kept.size());
        QCOMPARE(counter(other), before + !gone.isEmpty());
        QVERIFY(!gdbMain.inTransaction());
    }
};

QTEST_MAIN(TestDeleteUser)
#include "tst_deleteuser.moc"
