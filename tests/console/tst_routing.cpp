// Command routing: the enable table, the Edit pop-up's own rules, the
// dispatchers with their messages, keys, menus and tree commands.
#include "ConsoleFixture.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBox.h"

#include <QAction>
#include <QMenu>
#include <QTest>

using namespace ConsoleTest;

namespace {

const QString Unc = QStringLiteral("\\\\SRV\\SHARE\\");

void seedRouting(Database &db)
{
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')");
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES ('Lunch', 5)");
    db.execute("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, 'Head office')", {Unc});
    db.addColumn("EmployeeTable", "New_Dept", "TEXT(250)");
    db.addColumn("EmployeeTable", "New_DeptReadOnly", "INTEGER");
    db.execute("INSERT INTO MessagesTable (MessageID, SentToName, MessageBody) VALUES (1, 'Guest', 'hello')");
}

// Runs a setup step on the list: "select:X" clicks row X, "deselect"
// ctrl-clicks the selected row away, "clear" drops the selection from the
// code (no event), "current:X" makes X the current row, unselected.
void setUp(Console &c, const QString &step)
{
    if (step.startsWith("select:")) {
        c.clickRow(c.rowOf(step.mid(7)));
    } else if (step == "deselect") {
        for (int row : c.selectedRows())
            c.clickRow(row, Qt::LeftButton, Qt::ControlModifier);
    } else if (step == "clear") {
        c.list()->clearSelection();
    } else if (step.startsWith("current:")) {
        c.list()->setSelectedItem(c.rowOf(step.mid(8)));
        c.list()->clearSelection();
    }
}

using Flags = QList<bool>;

// A case of the enable table or the pop-up rules. click: "" for none,
// "below", "left below", "row:X" or "tree:X"; verbs: Add, Modify, Delete.
struct Verbs {
    QString node, change; QStringList steps; QString click; bool shown; Flags verbs;
};

// A case of the dispatchers. row "" calls Modify on an empty list; key 0
// is a double click.
struct Dispatch {
    QString node, change, row; int key; QString message, title, window;
};

}  // namespace

Q_DECLARE_METATYPE(Verbs)
Q_DECLARE_METATYPE(Dispatch)

class TestRouting : public QObject {
    Q_OBJECT

private slots:
    // The enable table (no click: toolbar and Edit entries) and the Edit
    // pop-up's own rules (a click in the list: the pop-up and Edit entries).
    void verbs_data()
    {
        QTest::addColumn<Verbs>("t");
        const Flags none(3, false), add{true, false, false}, all(3, true), del{false, false, true};
        const QString noServers = "DELETE FROM ServersTable", noColumns = "ALTER TABLE EmployeeTable DROP COLUMN New_Dept";
        const QString lowEveryone = "UPDATE GroupTable SET GroupName = 'everyone' WHERE GroupName = 'Everyone'";
        auto table = [](const char *name, const QString &node, const QString &step, Flags verbs, const QString &change = {}) {
            QTest::newRow(name) << Verbs{node, change, {step}, {}, false, verbs};
        };
        auto popup = [](const char *name, const QString &node, const QStringList &steps, const QString &click, bool shown,
                        Flags entries, const QString &change = {}) {
            QTest::newRow(name) << Verbs{node, change, steps, click, shown, entries};
        };
        table("Columns, none", "Columns", "deselect", add);
        table("Columns, a row", "Columns", "select:Dept", all);
        table("DueBack, none", "DueBack Types", "deselect", add);
        table("DueBack, a row", "DueBack Types", "select:09:00 am", all);
        table("Groups, none", "Groups", "deselect", add);
        table("Groups, Everyone", "Groups", "select:Everyone", add);
        table("Groups, everyone in other case passes", "Groups", "select:everyone", all, lowEveryone);
        table("Groups, Sales", "Groups", "select:Sales", all);
        table("Messages, none", "Messages", "deselect", none);
        table("Messages, a row: Delete only", "Messages", "select:1", del);
        table("Servers, none", "Servers", "", add, noServers);
        table("Servers, a row", "Servers", "select:" + Unc, all);
        table("Status Types, none", "Status Types", "deselect", add);
        for (const char *s : {"In", "Out", "Busy"})
            table(qPrintable(QString("Status Types, %1").arg(s)), "Status Types", QString("select:") + s, add);
        table("Status Types, Lunch", "Status Types", "select:Lunch", all);
        table("Users, none", "Users", "deselect", add);
        table("Users, a row", "Users", "select:Guest", all);
        table("Items: nothing", "Items", "", none);
        popup("windows not built yet: nothing", "Users", {"absent", "select:Guest"}, "", false, none);
        popup("left click, nothing selected: untouched, no pop-up", "Users", {"deselect"}, "left below", false, add);
        popup("Items: no pop-up", "Items", {}, "below", false, none);
        popup("Messages: Delete only", "Messages", {}, "row:1", true, del);
        popup("Messages without rows: no pop-up", "Messages", {}, "below", false, none, "DELETE FROM MessagesTable");
        popup("pop-up, Groups, Everyone", "Groups", {}, "row:Everyone", true, add);
        popup("pop-up, Groups, Sales", "Groups", {}, "row:Sales", true, all);
        popup("Groups, Everyone current but not selected", "Groups", {"current:Everyone"}, "below", true, add);
        popup("Servers without rows: Add only", "Servers", {}, "below", true, add, noServers);
        popup("pop-up, Servers, a row", "Servers", {}, "row:" + Unc, true, all);
        popup("Status Types, none after the table gave Add", "Status Types", {"deselect"}, "below", true, add);
        popup("Status Types, none: Modify and Delete as left before", "Status Types", {"select:Lunch", "clear"}, "below",
              true, all);
        popup("pop-up, Status Types, In", "Status Types", {"select:Lunch"}, "row:In", true, add);
        popup("pop-up, Status Types, Lunch", "Status Types", {"deselect"}, "row:Lunch", true, all);
        popup("DueBack, rows but none selected: all", "DueBack Types", {"deselect"}, "below", true, all);
        popup("Columns without rows: Add only", "Columns", {}, "below", true, add, noColumns);
        popup("tree: as the table left it, no node chosen", "Groups", {"select:Everyone"}, "tree:Users", true, add);
        popup("tree, Items: no pop-up", "Items", {}, "tree:Items", false, none);
    }
    void verbs()
    {
        QFETCH(Verbs, t);
        Console c(seedRouting);
        const bool absent = t.steps.contains("absent");
        WindowsPresent windows(absent ? QStringList() : WindowsPresent::verbWindows());
        WindowsAbsent gone(absent ? WindowsPresent::verbWindows() : QStringList());
        if (!t.change.isEmpty())
            c.other().execute(t.change);
        c.clickNode(t.node == "Users" ? "Groups" : "Users");
        c.clickNode(t.node);
        for (const QString &s : t.steps)
            setUp(c, s);
        if (t.click.isEmpty()) {
            QCOMPARE(c.toolbarVerbs(), t.verbs);
            QCOMPARE(c.editEntries(), t.verbs);
            emit c.w().mnuEdit()->aboutToShow();  // the Edit menu from the menu bar follows the table too
            QCOMPARE(c.editEntries(), t.verbs);
            if (t.node == "Items") {  // the root shows a hint, which Refresh leaves
                c.w().ToolbarMain_ButtonClick("Refresh");
                QCOMPARE(c.headers(), QStringList{"Please select Node from TreeView on left"});
                QCOMPARE(c.rows()->count(), 0);
            }
            return;
        }
        const QList<bool> toolbarBefore = c.toolbarVerbs();
        const Qt::MouseButton button = t.click.startsWith("left") ? Qt::LeftButton : Qt::RightButton;
        const Popup popup = popupDuring([&] {
            if (t.click.endsWith("below"))
                c.clickBelowRows(button);
            else if (t.click.startsWith("tree:"))
                c.clickNode(t.click.mid(5), button);
            else
                c.clickRow(c.rowOf(t.click.mid(4)), button);
        });
        QCOMPARE(c.w().selectedNodeText(), t.node);  // a click in the list or a right click chooses no node
        QCOMPARE(popup.shown, t.shown);
        if (t.shown)
            QCOMPARE(popup.entries, t.verbs);
        QCOMPARE(c.editEntries(), t.verbs);
        QCOMPARE(c.toolbarVerbs(), toolbarBefore);  // the pop-up rule leaves the toolbar alone
    }

    // The Modify dispatcher (double click, or the code on an empty list)
    // and the Insert and Delete keys.
    void dispatchers_data()
    {
        QTest::addColumn<Dispatch>("t");
        auto empty = [](const QString &node, const char *sql, const char *message, const char *title) {
            QTest::newRow(qPrintable(node + ", empty")) << Dispatch{node, sql, "", 0, message, title, ""};
        };
        auto opens = [](const QString &node, const QString &row, const char *window) {
            QTest::newRow(qPrintable(node + ", " + row)) << Dispatch{node, "", row, 0, "", "", window};
        };
        auto key = [](const char *name, const char *node, const char *row, Qt::Key key, const char *window) {
            QTest::newRow(name) << Dispatch{node, "", row, key, "", "", window};
        };
        const char *protectedGroup = "Sorry, the 'Everyone' Group cannot be modified.";
        empty("Users", "DELETE FROM EmployeeTable", "Please select a User to Modify.", "No User Selected");
        opens("Users", "Guest", "frmModUser");
        empty("Groups", "DELETE FROM GroupTable", "Please select a Group to Modify.", "No Group Selected");
        QTest::newRow("Groups, Everyone") << Dispatch{"Groups", "", "Everyone", 0, protectedGroup, "Protected Group Name", ""};
        QTest::newRow("Groups, everyone in other case")
            << Dispatch{"Groups", "UPDATE GroupTable SET GroupName = 'everyone' WHERE GroupName = 'Everyone'", "everyone", 0,
                        protectedGroup, "Protected Group Name", ""};
        opens("Groups", "Sales", "frmModGroup");
        empty("Status Types", "DELETE FROM StatusTypesTable", "Please select a Status Type to Modify.",
              "No Status Type Selected");
        for (const char *s : {"In", "Out", "Busy"})
            QTest::newRow(qPrintable(QString("Status Types, %1").arg(s)))
                << Dispatch{"Status Types", "", s, 0, "Sorry, the 'In', 'Out' and 'Busy' Status Types cannot be modified.",
                            "Protected Status Types", ""};
        opens("Status Types", "Lunch", "frmModStatus");
        empty("DueBack Types", "DELETE FROM DueBackTable", "Please select a DueBack Types to modify.",
              "No DueBack Type selected");
        opens("DueBack Types", "Late this Morning", "frmModDueBack");
        empty("Servers", "DELETE FROM ServersTable", "Please select a Server to Modify.", "No Message Type Selected");
        opens("Servers", Unc, "frmModServer");
        empty("Columns", "ALTER TABLE EmployeeTable DROP COLUMN New_Dept", "Please select a Column Name to modify.",
              "No Column Name selected");
        opens("Columns", "Dept", "frmModColumn");
        opens("Messages", "1", "frmMsgsPreview");  // the recipient's messages
        key("Insert on Users", "Users", "Guest", Qt::Key_Insert, "frmAddUser");
        key("Delete on Users", "Users", "Guest", Qt::Key_Delete, "frmDeleteUser");
        key("Delete on Everyone: off", "Groups", "Everyone", Qt::Key_Delete, "");
        key("Insert on Everyone", "Groups", "Everyone", Qt::Key_Insert, "frmAddGroup");
        key("Delete on Sales", "Groups", "Sales", Qt::Key_Delete, "frmDeleteGroup");
        key("Insert on Messages: off", "Messages", "1", Qt::Key_Insert, "");
        key("Delete on Messages", "Messages", "1", Qt::Key_Delete, "frmDeleteMessages");
    }
    void dispatchers()
    {
        QFETCH(Dispatch, t);
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        ShownWindows shown;
        for (QString *v : {&SelectedItemName, &SelectedGroupName, &SelectedStatusName, &SelectedDueBackName,
                           &SelectedServerPath, &SelectedServerDescription, &SelectedColumnName})
            v->clear();
        if (!t.change.isEmpty())
            c.other().execute(t.change);
        c.clickNode(t.node == "Users" ? "Groups" : "Users");
        c.clickNode(t.node);
        Msg::clearTranscript();
        // A row added meanwhile by another program shows once the list is
        // rebuilt: at once by Modify on every path and by Add, after Delete
        // only when the console is in front again.
        const QHash<QString, QString> addOne = {
            {"Users", "INSERT INTO EmployeeTable (Name, UID) VALUES ('Zoo', 'Z')"},
            {"Groups", "INSERT INTO GroupTable (GroupName) VALUES ('Zoo')"},
            {"Status Types", "INSERT INTO StatusTypesTable (Status) VALUES ('Zoo')"},
            {"Messages", "INSERT INTO MessagesTable (MessageID, MessageBody) VALUES (7, 'x')"}};
        const int before = c.rows()->count();
        const int added = !t.row.isEmpty() && addOne.contains(t.node) ? 1 : 0;
        if (added)
            c.other().execute(addOne.value(t.node));
        if (t.row.isEmpty()) {
            QCOMPARE(before, 0);
            c.w().ModifyDispatcher(t.node);
        } else if (t.key) {
            c.clickRow(c.rowOf(t.row));
            c.keyInList(Qt::Key(t.key));
        } else {
            c.doubleClickRow(c.rowOf(t.row));
        }
        const bool rebuiltNow = t.key != Qt::Key_Delete && (!t.key || !t.window.isEmpty());
        QCOMPARE(c.rows()->count(), before + (rebuiltNow ? added : 0));
        QCOMPARE(messageTexts(), t.message.isEmpty() ? QStringList() : QStringList{t.message});
        if (!t.message.isEmpty()) {
            QCOMPARE(Msg::transcript()[0].title, t.title);
            QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Exclamation);
        }
        QCOMPARE(shown.names, t.window.isEmpty() ? QStringList() : QStringList{t.window});
        // The row goes to the node's own variable only (all were cleared).
        const QString handedOver = SelectedItemName + SelectedGroupName + SelectedStatusName + SelectedDueBackName +
                                   SelectedServerPath + SelectedColumnName;
        if (!t.key)
            QCOMPARE(handedOver, t.node == "Messages" ? QString() : t.row);
        if (t.node == "Servers" && !t.row.isEmpty())
            QCOMPARE(SelectedServerDescription, QString("Head office"));
        c.w().Form_Activate();
        QCOMPARE(c.rows()->count(), before + added);
    }

    // Entries and buttons open their windows, or stay off until they exist.
    void windowsOfTheMenus_data()
    {
        QTest::addColumn<QString>("item");    // menu entry or toolbar button
        QTest::addColumn<QString>("absent");  // a window taken out for the test
        QTest::addColumn<QString>("window");  // "" when the item is off, "-" for a command without one
        QTest::newRow("Admin Options") << "mnuAdminOptions" << "" << "frmAdminOptions";
        QTest::newRow("Repair / Compact") << "mnuCompactDatabase" << "" << "frmRepair";
        QTest::newRow("Database Path") << "mnuDataPath" << "" << "frmDataPath";
        QTest::newRow("About") << "mnuAbout" << "" << "about";
        QTest::newRow("New User Defaults") << "mnuNewUserDefaults" << "" << "frmNewUser";
        QTest::newRow("Global Settings") << "mnuGlobalSettings" << "" << "frmGlobalSettings";
        QTest::newRow("System Security") << "mnuSystemSecurity" << "" << "frmSecurity";
        QTest::newRow("Company Info") << "mnuCompamyInfo" << "" << "frmCompany";
        QTest::newRow("Photo Path") << "mnuPhotoPath" << "" << "frmPhotoPath";
        QTest::newRow("Force Shutdown") << "mnuForceShutdown" << "" << "frmForceShutdown";
        QTest::newRow("Auto Check for Updates") << "mnuAutoCheckforUpdates" << "" << "frmAutoCheckForUpdates";
        QTest::newRow("Check For Updates: a command") << "mnuCheckForUpdates" << "" << "-";
        QTest::newRow("Import Error Log") << "mnuImportErrorLog" << "" << "frmImportErrors";
        QTest::newRow("Transaction Log") << "mnuTransactionLog" << "" << "frmTransLog";
        QTest::newRow("Transaction Log not built: off") << "mnuTransactionLog" << "frmTransLog" << "";
        QTest::newRow("Global Settings not built: off") << "mnuGlobalSettings" << "frmGlobalSettings" << "";
    }
    void windowsOfTheMenus()
    {
        QFETCH(QString, item);
        QFETCH(QString, absent);
        QFETCH(QString, window);
        Console c;
        WindowsAbsent windows(absent.isEmpty() ? QStringList() : QStringList{absent});
        ShownWindows shown;
        QAction *a = c.w().toolbarButton(item) ? c.w().toolbarButton(item) : c.w().menuItem(item);
        QVERIFY(a);
        QCOMPARE(a->isEnabled(), !window.isEmpty());
        a->trigger();
        QCOMPARE(shown.names, window.isEmpty() || window == "-" ? QStringList() : QStringList{window});
        QCOMPARE(messageTexts(), QStringList());
    }

    // The Import node asks for a file and opens its window, then hands the
    // selection back to Users; reached by keyboard it does nothing.
    void importFromTheTree_data()
    {
        QTest::addColumn<bool>("present");
        QTest::addColumn<QString>("answer");  // the file chosen, "key" to arrive by keyboard
        QTest::newRow("window not built: nothing asked") << false << "";
        QTest::newRow("file chosen") << true << "staff.csv";
        QTest::newRow("cancelled") << true << "";
        QTest::newRow("by keyboard: chosen, nothing asked, no verbs") << true << "key";
    }
    void importFromTheTree()
    {
        QFETCH(bool, present);
        QFETCH(QString, answer);
        Console c(seedRouting);
        WindowsAbsent absent(present ? QStringList() : QStringList{"frmImport01"});
        WindowsPresent windows(present ? WindowsPresent::verbWindows() + QStringList{"frmImport01"} : QStringList());
        ShownWindows shown;
        ImportFilePath.clear();
        const bool byKey = answer == "key";
        const QString file = answer.isEmpty() || byKey ? QString() : c.site().local(answer);
        FileDialogs::queueAnswers({file});
        c.clickRow(0);
        if (byKey)
            c.keyInTree(Qt::Key_Down);
        else
            c.clickNode("Import");
        QCOMPARE(c.w().selectedNodeText(), QString(byKey ? "Import" : "Users"));
        QCOMPARE(c.texts(), QStringList{"Guest"});  // on Import the list stays its parent's
        QCOMPARE(shown.names, file.isEmpty() ? QStringList() : QStringList{"frmImport01"});
        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), present && !byKey ? 1 : 0);
        if (!asked.isEmpty())
            QCOMPARE(asked[0].filter, QString("Import (*.txt;*.csv)|*.txt;*.csv"));
        if (present) {  // the table, run again for Users; nothing on Import
            QCOMPARE(c.toolbarVerbs(), Flags(3, !byKey));
            QCOMPARE(c.editEntries(), Flags(3, !byKey));
        }
        QCOMPARE(ImportFilePath, file);
        QCOMPARE(c.w().toolbarButton(1)->isEnabled(), present);
    }

    // Every active flag is cleared; with nobody active nothing is done and
    // nothing shown, with or without a Guest.
    void resetActiveFlags_data()
    {
        QTest::addColumn<QStringList>("active");  // users added with the flag set
        QTest::addColumn<bool>("guest");
        QTest::newRow("two active") << QStringList{"Ann", "Ben"} << true;
        QTest::newRow("nobody active") << QStringList() << true;
        QTest::newRow("nobody active, no Guest") << QStringList() << false;
    }
    void resetActiveFlags()
    {
        QFETCH(QStringList, active);
        QFETCH(bool, guest);
        Console c([&](Database &db) {
            if (!guest)
                db.execute("DELETE FROM EmployeeTable");
            for (const QString &name : active)
                db.execute("INSERT INTO EmployeeTable (Name, UID, ActiveFlag) VALUES (?, ?, 'Yes')", {name, name});
        });
        const int users = c.rows()->count();
        QCOMPARE(users, active.size() + (guest ? 1 : 0));
        QCOMPARE(c.icons().count("Warning"), active.size());
        c.w().menuItem("mnuResetActiveFlags")->trigger();
        QCOMPARE(c.icons(), QStringList(users, "Users"));
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable").toInt(), users);  // no row of defaults
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'Yes'").toInt(), 0);
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'No'").toInt(), active.size());
        QCOMPARE(messageTexts(), QStringList());
    }

};

QTEST_MAIN(TestRouting)
#include "tst_routing.moc"
