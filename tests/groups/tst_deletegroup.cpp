// Deleting groups: the list taken from the console's selection without
// Everyone, one transaction a group, what the cascades take along, Retry or
// Cancel when another program holds the file, and GroupCounter once a batch.
#include "GroupsTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "groups/frmDeleteGroup.h"
#include "platform/Modal.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace GroupsTest;

namespace {

const QString Odd = "S[a]* \"x\"";  // brackets, star and quotes: a pattern for others, never one here

void seedOdd(Database &db)
{
    seedBoard(db);
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {Odd});
    db.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)", {"Eve", Odd});
}

// Every row that still mentions a group.
QString traces(Database &db, const QString &group)
{
    return rows(db, "SELECT GroupName, '' FROM GroupTable WHERE GroupName = ? UNION ALL "
                    "SELECT EmployeeName, GroupManager FROM EmployeeGroupTable WHERE GroupName = ? UNION ALL "
                    "SELECT Name, DefaultGroup FROM EmployeeSettingsTable WHERE DefaultGroup = ?",
                {group, group, group});
}

// Selects `selected` in the console's list, opens the dialog, notes what it
// lists and presses `button`, while another program deletes `vanishing` and
// takes `hold` as the second group begins (see whileHeld).
QStringList deleteWith(Console &c, const QStringList &selected, int button, const QString &vanishing,
                       const QString &hold)
{
    // The Groups list opens the database afresh: select before watching it.
    c.clickNode("Groups");
    c.list()->clearSelection();
    for (int i = 0; i < selected.size(); ++i)
        c.clickRow(c.rowOf(selected[i]), Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
    QStringList listed;
    Modal::setHandler([&](QDialog *d) {
        auto *list = control<QListWidget>(d, "lstDeleteGroup");
        for (int i = 0; i < list->count(); ++i)
            listed << list->item(i)->text();
        if (!vanishing.isEmpty())
            c.other().execute("DELETE FROM GroupTable WHERE GroupName = ?", {vanishing});
        QTest::mouseClick(control<QPushButton>(d, QString("cmdButtons_%1").arg(button)), Qt::LeftButton);
    });
    whileHeld(c, hold, [&] { c.w().DeleteDispatcher("Groups"); }, 2);
    Modal::setHandler({});
    return listed;
}

}  // namespace

class TestDeleteGroup : public QObject {
    Q_OBJECT

private slots:
    // Another program may delete a group while the dialog is open, or take
    // the file just as the second group begins (a write lock) or hold a read
    // at its commit, and let go as the next step starts after the answer:
    // Retry deletes it, Cancel leaves it whole and the third still goes.
    void deletesWhatIsSelected_data()
    {
        QTest::addColumn<QString>("everyone");   // the protected group's spelling on this board
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("vanishing");  // deleted by another program while the dialog is open
        QTest::addColumn<QString>("hold");       // taken by another program as the second begins
        QTest::addColumn<bool>("retry");         // the answer to the box that follows
        QTest::addColumn<QStringList>("shown");
        const QString protectedBox = "Protected group name|Sorry, the 'Everyone' group cannot be deleted. It will not be "
                                     "added to the deletion list.";
        const QString none = "|No item selected to delete";  // the default title
        const QString error = "|An error occured while trying to delete the group ''Support''.";
        const QStringList three{"Sales", "Support", "Team 7"};
        QTest::newRow("members, managers and default groups")
            << "Everyone" << QStringList{"Sales"} << QStringList{"Sales"} << 0 << "" << "" << false << QStringList{};
        QTest::newRow("Everyone and another")
            << "Everyone" << QStringList{"Everyone", "Support"} << QStringList{"Support"} << 0 << "" << "" << false
            << QStringList{protectedBox};
        QTest::newRow("only Everyone: both boxes, the counter still raised")
            << "Everyone" << QStringList{"Everyone"} << QStringList{} << 0 << "" << "" << false
            << QStringList{protectedBox, none};
        QTest::newRow("EVERYONE is protected too")
            << "EVERYONE" << QStringList{"EVERYONE", "Sales"} << QStringList{"Sales"} << 0 << "" << "" << false
            << QStringList{protectedBox};
        QTest::newRow("everyone is protected too")
            << "everyone" << QStringList{"everyone"} << QStringList{} << 0 << "" << "" << false
            << QStringList{protectedBox, none};
        QTest::newRow("a name that is a pattern deletes itself alone")
            << "Everyone" << QStringList{Odd} << QStringList{Odd} << 0 << "" << "" << false << QStringList{};
        QTest::newRow("one deleted meanwhile")
            << "Everyone" << three << three << 0 << "Support" << "" << false << QStringList{};
        QTest::newRow("Cancel deletes nothing")
            << "Everyone" << three << three << 1 << "" << "" << false << QStringList{};
        QTest::newRow("write lock, Retry") << "Everyone" << three << three << 0 << "" << "lock" << true << QStringList{error};
        QTest::newRow("write lock, Cancel") << "Everyone" << three << three << 0 << "" << "lock" << false << QStringList{error};
        QTest::newRow("reader at commit, Retry")
            << "Everyone" << three << three << 0 << "" << "reader" << true << QStringList{error};
        QTest::newRow("reader at commit, Cancel rolls back")
            << "Everyone" << three << three << 0 << "" << "reader" << false << QStringList{error};
    }
    void deletesWhatIsSelected()
    {
        QFETCH(QString, everyone);
        QFETCH(QStringList, selected);
        QFETCH(QStringList, listed);
        QFETCH(int, button);
        QFETCH(QString, vanishing);
        QFETCH(QString, hold);
        QFETCH(bool, retry);
        QFETCH(QStringList, shown);
        Console c([&](Database &db) {
            seedOdd(db);
            db.execute("UPDATE GroupTable SET GroupName = ? WHERE GroupName = 'Everyone'", {everyone});
        });
        Database other = c.other();
        const long long grouped = groupCounter(other), counted = counter(other);
        const QString users = rows(other, "SELECT * FROM EmployeeTable ORDER BY Name");
        const QString support = traces(other, "Support");
        QStringList kept = groupNames(other).split('|');
        Msg::queueAnswers({retry ? Msg::Retry : Msg::Cancel});
        QCOMPARE(deleteWith(c, selected, button, vanishing, hold), listed);
        for (QString &box : shown)
            box.prepend(box.startsWith('|') ? Msg::defaultTitle() : QString());
        QCOMPARE(boxes(), shown);
        QVERIFY(hold.isEmpty() || Msg::transcript().last().buttons == Msg::Buttons::RetryCancel);
        QStringList gone = button ? QStringList() : listed;
        if (!hold.isEmpty() && !retry) {
            QCOMPARE(traces(other, "Support"), support);  // members, manager mark, settings row: all back
            gone.removeOne("Support");
        }
        for (const QString &name : gone) {
            QVERIFY2(traces(other, name).isEmpty(), qPrintable(name));
            kept.removeOne(name);
        }
        QCOMPARE(groupNames(other).split('|'), kept);
        // The users stay, but the settings rows of those whose default group
        // went are gone with it.
        QCOMPARE(rows(other, "SELECT * FROM EmployeeTable ORDER BY Name"), users);
        QStringList withSettings{"Dan", "Eve", "Guest"};
        if (!gone.contains("Sales"))
            withSettings << "Ann" << "Cleo";
        if (!gone.contains("Support"))
            withSettings << "Bob";
        withSettings.sort();
        QCOMPARE(rows(other, "SELECT group_concat(Name, ' ') FROM (SELECT Name FROM EmployeeSettingsTable ORDER BY Name)"),
                 withSettings.join(' '));
        QCOMPARE(groupCounter(other), grouped + (button == 0));
        QCOMPARE(counter(other), counted);
        QVERIFY(!gdbMain.inTransaction());
    }

    // The warnings say what goes.
    void warnings()
    {
        Console c(seedBoard);
        frmDeleteGroup d;
        QCOMPARE(d.windowTitle(), gstrAppTitle + "Delete Group");
        QCOMPARE(control<QLabel>(&d, "lblWarning")->text(),
                 QString(" WARNING - Deleting a Group will also delete all members of that Group."));
        QVERIFY(control<QLabel>(&d, "lblWarningSettings")->text().contains("default group"));
    }
};

QTEST_MAIN(TestDeleteGroup)
#include "tst_deletegroup.moc"
