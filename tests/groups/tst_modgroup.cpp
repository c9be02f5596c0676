// Modifying a group: the lists at opening, the checks at OK in their order,
// the rename carried into memberships and default groups, the member diff,
// the recovery with Retry and Cancel, and other programs at work.
#include "GroupsTest.h"

#include "console/frmMain.h"
#include "groups/frmAddGroup.h"
#include "groups/frmModGroup.h"
#include "platform/Modal.h"
#include "platform/Hourglass.h"
#include "users/frmModUser.h"

#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace GroupsTest;

namespace {

std::unique_ptr<frmModGroup> openOn(const QString &group)
{
    SelectedGroupName = group;
    auto d = std::make_unique<frmModGroup>();
    d->show();
    (void)QTest::qWaitForWindowActive(d.get());
    return d;
}

// Everything a group change may touch.
QString boardState(Database &db)
{
    return groupNames(db) + '\n' + rows(db, "SELECT * FROM EmployeeGroupTable ORDER BY EmployeeName, GroupName") +
           '\n' + defaultGroups(db) + '\n' + rows(db, "SELECT * FROM StatusCounterTable");
}

struct Ok {
    QString typed = "Sales";
    QStringList clicks = {};
    QString meanwhile = {};  // another program: "member", "delete", "lock", "reader"
    int answer = Msg::Retry;  // to the recovery's box
    QString shown = {};       // "title|text", "" for none
    QString members = "Ann=0 Bob=0 Cleo=1";  // of the group under its name afterwards, by name
    QString defaults = "Ann=Sales Bob=Support Cleo=Sales Dan=Everyone Eve=Everyone Guest=Everyone";
    int raised = 1;  // GroupCounter
    bool closes = true;
};

}  // namespace

Q_DECLARE_METATYPE(Ok)

class TestModGroup : public QObject {
    Q_OBJECT

private slots:
    // The members, managers among them, on the right; everyone else on the
    // left; each list by name.
    void opening()
    {
        Console c(seedBoard);
        auto d = openOn("Sales");
        QCOMPARE(control<QLineEdit>(d.get(), "txtModifyGroup")->text(), QString("Sales"));
        QCOMPARE(shown(control<QListView>(d.get(), "ListView1")), (QStringList{"Dan", "Eve", "Guest"}));
        QCOMPARE(shown(control<QListView>(d.get(), "ListView2")), (QStringList{"Ann", "Bob", "Cleo"}));
        QCOMPARE(d->windowTitle(), gstrAppTitle + "Modify Group");
        QCOMPARE(d->CurrentGroupName(), QString("Sales"));
        QVERIFY(!Hourglass::shown());
    }

    void pressOk_data()
    {
        QTest::addColumn<Ok>("t");
        const QString exists = Msg::defaultTitle() + "|The new Group name you selected already exists.";
        const QString failed = Msg::defaultTitle() + "|An error occured while trying to modify the group ''%1''.";
        const QString renamedDefaults = "Ann=Sales Team Bob=Support Cleo=Sales Team Dan=Everyone Eve=Everyone "
                                        "Guest=Everyone";
        QTest::newRow("nothing changed") << Ok{};
        QTest::newRow("blanks around the same name") << Ok{.typed = "  Sales "};
        QTest::newRow("emptied name") << Ok{.typed = "   ", .shown = Msg::defaultTitle() +
                                                  "|Please enter a new Group name or Cancel to exit",
                                            .raised = 0, .closes = false};
        QTest::newRow("case only") << Ok{.typed = "SALES", .shown = exists, .raised = 0, .closes = false};
        QTest::newRow("another group in other case")
            << Ok{.typed = "sUPPORT", .shown = exists, .raised = 0, .closes = false};
        QTest::newRow("beyond ASCII") << Ok{.typed = "émigrés", .shown = exists, .raised = 0, .closes = false};
        QTest::newRow("double quote") << Ok{.typed = "Sales \"A\"", .shown = "Modify Group|Sorry, I can't handle "
                                                                            "Double Quotes !",
                                            .raised = 0, .closes = false};
        // Here the test is equality: a star is a plain character.
        QTest::newRow("a star is plain") << Ok{.typed = "S*", .defaults = "Ann=S* Bob=Support Cleo=S* Dan=Everyone "
                                                                         "Eve=Everyone Guest=Everyone"};
        QTest::newRow("rename") << Ok{.typed = "Sales Team", .defaults = renamedDefaults};
        QTest::newRow("rename with moves, a manager moved out")
            << Ok{.typed = "Sales Team", .clicks = {"-Cleo", "+Eve", "-Ann", "+Dan"}, .members = "Bob=0 Dan=0 Eve=0",
                  .defaults = renamedDefaults};
        QTest::newRow("a manager moved out and back keeps the mark")
            << Ok{.clicks = {"-Cleo", "+Dan", "-Dan", "+Cleo"}};
        QTest::newRow("everyone moved out") << Ok{.clicks = {"-Ann", "-Bob", "-Cleo"}, .members = ""};
        // The lists were read at opening: OK takes the membership out again.
        QTest::newRow("membership added meanwhile") << Ok{.meanwhile = "member"};
        QTest::newRow("group deleted meanwhile")
            << Ok{.typed = "Sales Team", .meanwhile = "delete", .shown = Msg::defaultTitle() + "|Run-time error '3167':",
                  .members = "", .defaults = "Ann=- Bob=Support Cleo=- Dan=Everyone Eve=Everyone Guest=Everyone",
                  .raised = 0, .closes = false};
        QTest::newRow("locked at the members, Retry")
            << Ok{.typed = "Sales Team", .clicks = {"-Cleo", "+Eve"}, .meanwhile = "lock", .shown = failed.arg("Sales Team"),
                  .members = "Ann=0 Bob=0 Eve=0", .defaults = renamedDefaults};
        // Cancel: the window stays, the rename and the counter are kept, the
        // members are as they were.
        QTest::newRow("locked at the members, Cancel")
            << Ok{.typed = "Sales Team", .clicks = {"-Cleo", "+Eve"}, .meanwhile = "lock", .answer = Msg::Cancel,
                  .shown = failed.arg("Sales Team"), .defaults = renamedDefaults, .closes = false};
        QTest::newRow("reader at the commit, Retry")
            << Ok{.clicks = {"-Cleo", "+Eve"}, .meanwhile = "reader", .shown = failed.arg("Sales"),
                  .members = "Ann=0 Bob=0 Eve=0"};
        QTest::newRow("reader at the commit, Cancel")
            << Ok{.clicks = {"-Cleo", "+Eve"}, .meanwhile = "reader", .answer = Msg::Cancel, .shown = failed.arg("Sales"),
                  .closes = false};
    }
    void pressOk()
    {
        QFETCH(Ok, t);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = boardState(other);
        const long long grouped = groupCounter(other), counted = counter(other);
        const QString support = memberships(other, "Support");
        auto d = openOn("Sales");
        clickAll(d.get(), t.clicks);
        auto *field = control<QLineEdit>(d.get(), "txtModifyGroup");
        field->setText(t.typed);
        QCOMPARE(boardState(other), before);  // nothing before OK
        if (t.meanwhile == "member")
            other.execute("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName, GroupManager) VALUES ('Dan', 'Sales', 1)");
        if (t.meanwhile == "delete")
            other.execute("DELETE FROM GroupTable WHERE GroupName = 'Sales'");
        Msg::queueAnswers({t.answer});
        // The second transaction of OK is the members'.
        whileHeld(c, t.meanwhile, [&] { d->cmdButtons_Click(0); }, 2);
        QCOMPARE(boxes(), t.shown.isEmpty() ? QStringList() : QStringList{t.shown});
        QCOMPARE(d->isVisible(), !t.closes);
        QVERIFY(!gdbMain.inTransaction());
        QVERIFY(!Hourglass::shown());
        // The name written: by a closing OK, or by one whose members failed.
        const bool renamed = t.closes || t.shown.contains("An error occured");
        const QString now = renamed ? t.typed.trimmed() : QString("Sales");
        if (t.raised == 0 && t.meanwhile.isEmpty()) {
            QCOMPARE(boardState(other), before);
            QCOMPARE(field->text(), t.typed.trimmed().isEmpty() ? QString("Sales") : t.typed);
            QVERIFY(t.typed.trimmed().isEmpty() || field->selectedText() == field->text());
            return;
        }
        QString members = rows(other, "SELECT ifnull(group_concat(m, ' '), '') FROM (SELECT EmployeeName || '=' || GroupManager AS m "
                                      "FROM EmployeeGroupTable WHERE GroupName = ? ORDER BY EmployeeName)", {now});
        QCOMPARE(members, t.members);
        QCOMPARE(rows(other, "SELECT group_concat(d, ' ') FROM (SELECT Name || '=' || ifnull((SELECT DefaultGroup FROM "
                             "EmployeeSettingsTable s WHERE s.Name = e.Name), '-') AS d FROM EmployeeTable e ORDER BY Name)"),
                 t.defaults);
        QCOMPARE(memberships(other, "Support"), support);
        QCOMPARE(groupCounter(other), grouped + t.raised);
        QCOMPARE(counter(other), counted);
        QCOMPARE(d->CurrentGroupName(), t.meanwhile == "delete" ? QString("Sales") : now);
        if (!t.closes && t.meanwhile != "delete") {
            // A second OK, once the other program has let go, saves the
            // members under the name already written.
            Msg::clearTranscript();
            d->cmdButtons_Click(0);
            QCOMPARE(boxes(), QStringList());
            QVERIFY(!d->isVisible());
            QCOMPARE(groupCounter(other), grouped + 2);
            QCOMPARE(rows(other, "SELECT group_concat(EmployeeName, ' ') FROM (SELECT EmployeeName FROM "
                                 "EmployeeGroupTable WHERE GroupName = ? ORDER BY EmployeeName)", {now}),
                     QString("Ann Bob Eve"));
        }
    }

    // The console's Insert key and double click reach the real windows with
    // the row handed over, and its list shows what they wrote.
    void throughTheConsole()
    {
        Console c(seedBoard);
        c.clickNode("Groups");
        QStringList opened;
        Modal::setHandler([&](QDialog *d) {
            opened << d->metaObject()->className();
            auto *name = d->findChild<QLineEdit *>(opened.size() == 1 ? "txtAddGroup" : "txtModifyGroup");
            if (opened.size() == 2)
                QCOMPARE(name->text(), QString("Night"));
            name->setText(opened.size() == 1 ? "Night" : "Night Shift");
            clickAll(d, {opened.size() == 1 ? "+Eve" : "+Dan"});
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.keyInList(Qt::Key_Insert);
        c.doubleClickRow(c.rowOf("Night"));
        Modal::setHandler({});
        QCOMPARE(opened, (QStringList{"frmAddGroup", "frmModGroup"}));
        QVERIFY(c.rowOf("Night Shift") >= 0);
        QCOMPARE(memberships(gdbMain, "Night Shift"), QString("Eve=0 Dan=0"));
        QCOMPARE(boxes(), QStringList());
    }

    // Groups made and renamed here show on the user windows' managed-groups
    // page at once.
    void userWindowsSeeGroups()
    {
        Console c(seedBoard);
        auto add = std::make_unique<frmAddGroup>();
        add->show();
        QTest::keyClicks(control<QLineEdit>(add.get(), "txtAddGroup"), "Night");
        clickAll(add.get(), {"+Cleo"});
        add->cmdButtons_Click(0);
        auto mod = openOn("Sales");
        control<QLineEdit>(mod.get(), "txtModifyGroup")->setText("Sales Team");
        mod->cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        SelectedItemName = "Cleo";
        frmModUser user;
        auto texts = [&](const char *name) {
            QStringList out;
            auto *l = control<QListWidget>(&user, name);
            for (int i = 0; i < l->count(); ++i)
                out << l->item(i)->text();
            return out;
        };
        QCOMPARE(texts("ListView1"), (QStringList{"Everyone", "Night", "Support", "Team 7", "Vehicles Fleet", "Émigrés"}));
        QCOMPARE(texts("ListView2"), QStringList{"Sales Team"});
    }

};

QTEST_MAIN(TestModGroup)
#include "tst_modgroup.moc"
