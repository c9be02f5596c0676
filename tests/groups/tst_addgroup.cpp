// Adding a group: the name field's enable rule, the checks at OK in their
// order, the two-list editor, the rows written, and other programs at work.
#include "GroupsTest.h"

#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "groups/frmAddGroup.h"
#include "groups/TwoListEditor.h"
#include "platform/Help.h"

#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStatusBar>

#include <sqlite3.h>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace GroupsTest;

namespace {

std::unique_ptr<frmAddGroup> open()
{
    auto d = std::make_unique<frmAddGroup>();
    d->show();
    (void)QTest::qWaitForWindowActive(d.get());
    return d;
}

QString tableState(Database &db)
{
    return groupNames(db) + '\n' + rows(db, "SELECT * FROM EmployeeGroupTable ORDER BY rowid") + '\n' +
           rows(db, "SELECT * FROM StatusCounterTable");
}

// Runs `action` with `step` done by another program just before the first
// statement of gdbMain that starts with `before`.
void meanwhile(const QString &before, const std::function<void()> &step, const std::function<void()> &action)
{
    bool done = false;
    std::function<void(const QString &)> onStatement = [&](const QString &sql) {
        if (!done && sql.startsWith(before)) {
            done = true;
            step();
        }
    };
    sqlite3_trace_v2(
        gdbMain.handle(), SQLITE_TRACE_STMT,
        [](unsigned, void *hook, void *, void *text) {
            (*static_cast<decltype(onStatement) *>(hook))(QString::fromUtf8(static_cast<const char *>(text)));
            return 0;
        },
        &onStatement);
    action();
    sqlite3_trace_v2(gdbMain.handle(), 0, nullptr, nullptr);
}

}  // namespace

class TestAddGroup : public QObject {
    Q_OBJECT

private slots:
    // Each check refuses with its text, leaves the dialog open with the whole
    // name selected, and writes nothing; a name that passes is written with
    // its members in the order they were clicked, as plain members, and
    // GroupCounter alone goes up by one.
    void pressOk_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("shown");  // "" when accepted
        const QString exists = "Add Group|Sorry, the '%1' Group already exists.\rPlease select another Group Name.";
        QTest::newRow("blanks enable OK but are no name")
            << "   " << QStringList{} << "Add Group|Please enter a name for this Group.";
        QTest::newRow("double quote") << "Sa\"les" << QStringList{"+Ann"} << "Add Group|Sorry, I can't handle Double Quotes !";
        QTest::newRow("other case") << " sALES " << QStringList{} << exists.arg("sALES");
        QTest::newRow("other case beyond ASCII") << "ÉMIGRÉS" << QStringList{} << exists.arg("ÉMIGRÉS");
        QTest::newRow("star matches a group") << "Sal*" << QStringList{} << exists.arg("Sal*");
        QTest::newRow("suffix star, a group starts so") << "Vehicles *" << QStringList{} << exists.arg("Vehicles *");
        QTest::newRow("lone star, any group") << "*" << QStringList{} << exists.arg("*");
        QTest::newRow("question mark") << "S?les" << QStringList{} << exists.arg("S?les");
        QTest::newRow("hash matches a digit") << "Team #" << QStringList{} << exists.arg("Team #");
        QTest::newRow("suffix star, no group starts so") << "Sales Desk *" << QStringList{"+Eve"} << "";
        QTest::newRow("brackets are a list") << "[Sales]" << QStringList{} << "";
        QTest::newRow("hash and quotes of SQL") << "#2 O'Brien; --" << QStringList{"+Dan"} << "";
        QTest::newRow("no members") << "  Night  " << QStringList{} << "";
        QTest::newRow("members in click order")
            << "Night" << QStringList{"+Eve", "+Ann", "+Guest", "-Ann", "+Cleo"} << "";
        QTest::newRow("250 characters") << QString(250, 'n') << QStringList{"+Bob"} << "";
    }
    void pressOk()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, clicks);
        QFETCH(QString, shown);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = tableState(other);
        const long long counted = counter(other), grouped = groupCounter(other);
        auto d = open();
        QTest::keyClicks(control<QLineEdit>(d.get(), "txtAddGroup"), typed);
        QVERIFY(control<QPushButton>(d.get(), "cmdButtons_0")->isEnabled());
        clickAll(d.get(), clicks);
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdButtons_0"), Qt::LeftButton);
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{shown});
        QCOMPARE(d->isVisible(), !shown.isEmpty());
        if (!shown.isEmpty()) {
            QCOMPARE(tableState(other), before);
            auto *field = control<QLineEdit>(d.get(), "txtAddGroup");
            QCOMPARE(QApplication::focusWidget(), field);
            QCOMPARE(field->selectedText(), field->text());
            QVERIFY(!field->text().isEmpty());
            return;
        }
        const QString name = typed.trimmed();
        QStringList members;
        for (const QString &click : clicks) {
            if (click[0] == '+')
                members.append(click.mid(1) + "=0");
            else
                members.removeOne(click.mid(1) + "=0");
        }
        QVERIFY(rows(other, "SELECT GroupName FROM GroupTable WHERE GroupName = ?", {name}) == name);
        QCOMPARE(memberships(other, name), members.join(' '));
        QCOMPARE(groupCounter(other), grouped + 1);
        QCOMPARE(counter(other), counted);
        QCOMPARE(memberships(other, "Sales"), QString("Ann=0 Bob=0 Cleo=1"));
    }

    // OK and both lists follow the raw text of the name field; Enter in the
    // field neither saves nor closes.
    void nameFieldRules()
    {
        Console c(seedBoard);
        auto d = open();
        auto *field = control<QLineEdit>(d.get(), "txtAddGroup");
        const QList<QWidget *> gated{control<QPushButton>(d.get(), "cmdButtons_0"),
                                     control<QListView>(d.get(), "ListView1"), control<QListView>(d.get(), "ListView2")};
        auto states = [&] {
            QString s;
            for (QWidget *w : gated)
                s += w->isEnabled() ? '1' : '0';
            return s;
        };
        QCOMPARE(states(), QString("000"));
        QTest::keyClick(field, Qt::Key_Space);
        QCOMPARE(states(), QString("111"));
        QTest::keyClick(field, Qt::Key_Backspace);
        QCOMPARE(states(), QString("000"));
        QTest::keyClicks(field, "Night");
        QTest::keyClick(field, Qt::Key_Return);
        QTest::keyClick(field, Qt::Key_Enter);
        QVERIFY(d->isVisible());
        QCOMPARE(boxes(), QStringList());
        QCOMPARE(rows(gdbMain, "SELECT count(*) FROM GroupTable WHERE GroupName = 'Night'"), QString("0"));
        // The hints of the status bar.
        d->support()->clearHint();
        QEvent enter(QEvent::Enter);
        QApplication::sendEvent(gated[1], &enter);
        QCOMPARE(d->support()->hint(), QString(" Select one or more users to ADD to this Group"));
        QCOMPARE(d->windowTitle(), gstrAppTitle + "Add Group");
    }

    // The available list holds every user in the store's order (here that of
    // its key on the name). A click
    // moves one item to the end of the other list, a click below the items
    // does nothing, and Space moves the current item for the keyboard.
    void twoListEditor()
    {
        Console c(seedBoard);
        auto d = open();
        QTest::keyClicks(control<QLineEdit>(d.get(), "txtAddGroup"), "Night");
        auto *left = control<QListView>(d.get(), "ListView1");
        auto *right = control<QListView>(d.get(), "ListView2");
        QCOMPARE(shown(left), (QStringList{"Ann", "Bob", "Cleo", "Dan", "Eve", "Guest"}));
        QCOMPARE(shown(right), QStringList());
        QTest::mouseClick(right->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
        clickAll(d.get(), {"+Dan", "+Ann", "+Eve", "-Ann"});
        QCOMPARE(shown(left), (QStringList{"Bob", "Cleo", "Guest", "Ann"}));
        QCOMPARE(shown(right), (QStringList{"Dan", "Eve"}));
        QTest::mouseClick(left->viewport(), Qt::LeftButton, {}, QPoint(20, left->viewport()->height() - 5));
        QCOMPARE(shown(left).size(), 4);
        left->setFocus();
        left->setCurrentIndex(left->model()->index(1, 0));
        QTest::keyClick(left, Qt::Key_Space);
        QTest::keyClick(left, Qt::Key_Space);  // the next item has taken its place
        QCOMPARE(shown(right), (QStringList{"Dan", "Eve", "Cleo", "Guest"}));
        QCOMPARE(shown(left), (QStringList{"Bob", "Ann"}));
        QVERIFY(right->model()->index(0, 0).data(Qt::DecorationRole).isValid());
        QCOMPARE(rows(gdbMain, "SELECT count(*) FROM EmployeeGroupTable WHERE GroupName = 'Night'"), QString("0"));
    }

    // Another program at work between opening and OK: nothing half written.
    void otherPrograms_data()
    {
        QTest::addColumn<QString>("before");  // the statement of ours it acts before, or "open": as soon as the window is
        QTest::addColumn<QString>("sql");     // what it does
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("members");  // of Night afterwards, "-" when there is no group
        // A user who was offered but has gone fails the whole group.
        QTest::newRow("a chosen user deleted")
            << "open" << "DELETE FROM EmployeeTable WHERE Name = 'Bob'" << "Run-time error '787':" << "-";
        // The same name added after the check: the store's key refuses it.
        QTest::newRow("the same group added after the check")
            << "BEGIN" << "INSERT INTO GroupTable (GroupName) VALUES ('NIGHT')" << "Run-time error '3022':" << "";
        QTest::newRow("a user added is not offered")
            << "open" << "INSERT INTO EmployeeTable (Name, UID) VALUES ('Zoe', 'z1')" << "" << "Ann=0 Bob=0";
    }
    void otherPrograms()
    {
        QFETCH(QString, before);
        QFETCH(QString, sql);
        QFETCH(QString, shown);
        QFETCH(QString, members);
        Console c(seedBoard);
        Database other = c.other();
        const long long grouped = groupCounter(other);
        auto d = open();
        if (before == "open")
            other.execute(sql);
        QTest::keyClicks(control<QLineEdit>(d.get(), "txtAddGroup"), "Night");
        clickAll(d.get(), {"+Ann", "+Bob"});
        QCOMPARE(GroupsTest::shown(control<QListView>(d.get(), "ListView1")).contains("Zoe"), false);
        meanwhile(before, [&] { other.execute(sql); }, [&] { d->cmdButtons_Click(0); });
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{Msg::defaultTitle() + '|' + shown});
        QCOMPARE(d->isVisible(), !shown.isEmpty());
        QCOMPARE(memberships(other, "Night"), members == "-" ? QString() : members);
        QCOMPARE(rows(other, "SELECT count(*) FROM EmployeeGroupTable WHERE GroupName = 'Night'"),
                 QString::number(members.count('=')));
        QCOMPARE(groupCounter(other), grouped + shown.isEmpty());
        QVERIFY(!gdbMain.inTransaction());
    }

    // Help and F1 show each window's own page; Cancel closes and writes
    // nothing.
    void helpAndCancel_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("helpText");
        QTest::newRow("add") << "frmAddGroup" << "&Help";
        QTest::newRow("modify") << "frmModGroup" << "Help";
        QTest::newRow("delete") << "frmDeleteGroup" << "Help";
    }
    void helpAndCancel()
    {
        QFETCH(QString, window);
        QFETCH(QString, helpText);
        Console c(seedBoard);
        Help::install();
        const QString before = tableState(gdbMain);
        SelectedGroupName = "Sales";
        c.clickNode("Groups");
        c.clickRow(c.rowOf("Sales"));
        std::unique_ptr<QDialog> d(DialogRegistry::create(window, &c.w()));
        d->show();
        (void)QTest::qWaitForWindowActive(d.get());
        if (window == "frmAddGroup")
            QTest::keyClicks(control<QLineEdit>(d.get(), "txtAddGroup"), "Night");
        if (window != "frmDeleteGroup")
            clickAll(d.get(), {"+Eve"});
        QTest::keyClick(d->focusWidget() ? d->focusWidget() : d.get(), Qt::Key_F1);
        QCOMPARE(Help::lastPage(), window);
        Help::showFor(&c.w());
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdButtons_2"), Qt::LeftButton);
        QCOMPARE(Help::lastPage(), window);
        QCOMPARE(control<QPushButton>(d.get(), "cmdButtons_2")->text(), helpText);
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdButtons_1"), Qt::LeftButton);
        QVERIFY(!d->isVisible());
        QCOMPARE(tableState(gdbMain), before);
        QCOMPARE(boxes(), QStringList());
    }
};

QTEST_MAIN(TestAddGroup)
#include "tst_addgroup.moc"
