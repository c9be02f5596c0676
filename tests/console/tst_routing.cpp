// Command routing: the enable table, the Edit pop-up's own rules, the three
// dispatchers with their messages, keys, toolbar, tree commands and hints.
#include "ConsoleFixture.h"

#include "console/AdminListView.h"
#include "console/AdminTreeView.h"
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/Help.h"
#include "platform/MessageBox.h"

#include <QAction>
#include <QMenu>
#include <QMouseEvent>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>

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
        const QList<int> sel = c.selectedRows();
        if (!sel.isEmpty())
            c.clickRow(sel.first(), Qt::LeftButton, Qt::ControlModifier);
    } else if (step == "clear") {
        c.list()->clearSelection();
    } else if (step.startsWith("current:")) {
        c.list()->setSelectedItem(c.rowOf(step.mid(8)));
        c.list()->clearSelection();
    }
}

using Flags = QList<bool>;

}  // namespace

class TestRouting : public QObject {
    Q_OBJECT

private slots:
    void enableTable_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("change");  // SQL by another program before the click
        QTest::addColumn<QString>("step");
        QTest::addColumn<bool>("present");    // the verb windows exist
        QTest::addColumn<Flags>("verbs");     // Add, Modify, Delete
        const Flags none{false, false, false}, add{true, false, false}, all{true, true, true};
        QTest::newRow("Columns, none") << "Columns" << "" << "deselect" << true << add;
        QTest::newRow("Columns, a row") << "Columns" << "" << "select:Dept" << true << all;
        QTest::newRow("DueBack, none") << "DueBack Types" << "" << "deselect" << true << add;
        QTest::newRow("DueBack, a row") << "DueBack Types" << "" << "select:09:00 am" << true << all;
        QTest::newRow("Groups, none") << "Groups" << "" << "deselect" << true << add;
        QTest::newRow("Groups, Everyone") << "Groups" << "" << "select:Everyone" << true << add;
        QTest::newRow("Groups, everyone in other case passes")
            << "Groups" << "UPDATE GroupTable SET GroupName = 'everyone' WHERE GroupName = 'Everyone'"
            << "select:everyone" << true << all;
        QTest::newRow("Groups, Sales") << "Groups" << "" << "select:Sales" << true << all;
        QTest::newRow("Messages, none") << "Messages" << "" << "deselect" << true << none;
        QTest::newRow("Messages, a row: Delete only") << "Messages" << "" << "select:1" << true << Flags{false, false, true};
        QTest::newRow("Servers, none") << "Servers" << "DELETE FROM ServersTable" << "" << true << add;
        QTest::newRow("Servers, a row") << "Servers" << "" << "select:" + Unc << true << all;
        QTest::newRow("Status Types, none") << "Status Types" << "" << "deselect" << true << add;
        QTest::newRow("Status Types, In") << "Status Types" << "" << "select:In" << true << add;
        QTest::newRow("Status Types, Out") << "Status Types" << "" << "select:Out" << true << add;
        QTest::newRow("Status Types, Busy") << "Status Types" << "" << "select:Busy" << true << add;
        QTest::newRow("Status Types, Lunch") << "Status Types" << "" << "select:Lunch" << true << all;
        QTest::newRow("Users, none") << "Users" << "" << "deselect" << true << add;
        QTest::newRow("Users, a row") << "Users" << "" << "select:Guest" << true << all;
        QTest::newRow("Items: nothing") << "Items" << "" << "" << true << none;
        QTest::newRow("windows not built yet: nothing") << "Users" << "" << "select:Guest" << false << none;
    }
    void enableTable()
    {
        QFETCH(QString, node);
        QFETCH(QString, change);
        QFETCH(QString, step);
        QFETCH(bool, present);
        QFETCH(Flags, verbs);
        Console c(seedRouting);
        WindowsPresent windows(present ? WindowsPresent::verbWindows() : QStringList());
        WindowsAbsent absent(present ? QStringList() : WindowsPresent::verbWindows());
        if (!change.isEmpty())
            c.other().execute(change);
        c.clickNode(node == "Users" ? "Groups" : "Users");
        c.clickNode(node);
        setUp(c, step);
        QCOMPARE(c.toolbarVerbs(), verbs);
        QCOMPARE(c.editEntries(), verbs);
        // The Edit menu opened from the menu bar follows the same table.
        emit c.w().mnuEdit()->aboutToShow();
        QCOMPARE(c.editEntries(), verbs);
    }

    void keyboardSelectionOfImportOffersNothing()
    {
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows() + QStringList{"frmImport01"});
        c.clickRow(0);
        QCOMPARE(c.toolbarVerbs(), (Flags{true, true, true}));
        c.keyInTree(Qt::Key_Down);
        QCOMPARE(c.w().selectedNodeText(), QString("Import"));
        QCOMPARE(c.toolbarVerbs(), (Flags{false, false, false}));
        QCOMPARE(c.editEntries(), (Flags{false, false, false}));
        QCOMPARE(c.texts(), QStringList{"Guest"});  // the list is its parent's
        QVERIFY(FileDialogs::transcript().isEmpty());
    }

    void popupRules_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("click");   // "row:X" or "below", with the button
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<Flags>("entries");
        const int L = Qt::LeftButton, R = Qt::RightButton;
        const Flags none{false, false, false}, add{true, false, false}, all{true, true, true};
        QTest::newRow("left click, nothing selected: untouched, no pop-up")
            << "Users" << "" << QStringList{"deselect"} << "below" << L << false << add;
        QTest::newRow("Items: no pop-up") << "Items" << "" << QStringList{} << "below" << R << false << none;
        QTest::newRow("Messages: Delete only") << "Messages" << "" << QStringList{} << "row:1" << R << true
                                               << Flags{false, false, true};
        QTest::newRow("Messages without rows: no pop-up") << "Messages" << "DELETE FROM MessagesTable"
                                                          << QStringList{} << "below" << R << false << none;
        QTest::newRow("Groups, Everyone") << "Groups" << "" << QStringList{} << "row:Everyone" << R << true << add;
        QTest::newRow("Groups, Sales") << "Groups" << "" << QStringList{} << "row:Sales" << R << true << all;
        QTest::newRow("Groups, Everyone current but not selected")
            << "Groups" << "" << QStringList{"current:Everyone"} << "below" << R << true << add;
        QTest::newRow("Servers without rows: Add only") << "Servers" << "DELETE FROM ServersTable" << QStringList{}
                                                       << "below" << R << true << add;
        QTest::newRow("Servers, a row") << "Servers" << "" << QStringList{} << "row:" + Unc << R << true << all;
        QTest::newRow("Status Types, none after the table gave Add")
            << "Status Types" << "" << QStringList{"deselect"} << "below" << R << true << add;
        QTest::newRow("Status Types, none: Modify and Delete as left before")
            << "Status Types" << "" << QStringList{"select:Lunch", "clear"} << "below" << R << true << all;
        QTest::newRow("Status Types, In") << "Status Types" << "" << QStringList{"select:Lunch"} << "row:In" << R
                                          << true << add;
        QTest::newRow("Status Types, Lunch") << "Status Types" << "" << QStringList{"deselect"} << "row:Lunch" << R
                                             << true << all;
        QTest::newRow("DueBack, rows but none selected: all")
            << "DueBack Types" << "" << QStringList{"deselect"} << "below" << R << true << all;
        QTest::newRow("Columns without rows: Add only")
            << "Columns" << "ALTER TABLE EmployeeTable DROP COLUMN New_Dept" << QStringList{} << "below" << R << true << add;
    }
    void popupRules()
    {
        QFETCH(QString, node);
        QFETCH(QString, change);
        QFETCH(QStringList, steps);
        QFETCH(QString, click);
        QFETCH(int, button);
        QFETCH(bool, shown);
        QFETCH(Flags, entries);
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        if (!change.isEmpty())
            c.other().execute(change);
        c.clickNode(node == "Users" ? "Groups" : "Users");
        c.clickNode(node);
        for (const QString &s : steps)
            setUp(c, s);
        const QList<bool> toolbarBefore = c.toolbarVerbs();
        const Popup popup = popupDuring([&] {
            if (click == "below")
                c.clickBelowRows(Qt::MouseButton(button));
            else
                c.clickRow(c.rowOf(click.mid(4)), Qt::MouseButton(button));
        });
        QCOMPARE(popup.shown, shown);
        if (shown)
            QCOMPARE(popup.entries, entries);
        if (button == Qt::RightButton) {
            QCOMPARE(c.editEntries(), entries);
            QCOMPARE(c.toolbarVerbs(), toolbarBefore);  // the rule leaves the toolbar alone
        } else {
            QCOMPARE(c.editEntries(), entries);
        }
    }

    void rightClickInTheTree()
    {
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        c.clickNode("Groups");
        c.clickRow(c.rowOf("Everyone"));
        Popup popup = popupDuring([&] { c.clickNode("Users", Qt::RightButton); });
        QVERIFY(popup.shown);
        QCOMPARE(popup.entries, (Flags{true, false, false}));  // as the table left it, for Groups
        QCOMPARE(c.w().selectedNodeText(), QString("Groups"));   // a right click chooses no node
        c.clickNode("Items");
        popup = popupDuring([&] { c.clickNode("Items", Qt::RightButton); });
        QVERIFY(!popup.shown);
    }

    void rootClickShowsTheHint()
    {
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        c.clickRow(0);
        c.clickNode("Items");
        QCOMPARE(c.rows()->count(), 0);
        QCOMPARE(c.headers(), QStringList{"Please select Node from TreeView on left"});
        QVERIFY(qAbs(c.headerWidths().first() - (c.list()->widthTwips() - 60)) <= 15);
        QCOMPARE(c.toolbarVerbs(), (Flags{false, false, false}));
        QCOMPARE(c.editEntries(), (Flags{false, false, false}));
        // Refresh on the root does nothing at all.
        c.w().ToolbarMain_ButtonClick("Refresh");
        QCOMPARE(c.headers(), QStringList{"Please select Node from TreeView on left"});
    }

    void modifyDispatcher_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("row");      // double-clicked row; "" calls the dispatcher on an empty list
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("handedOver");
        QTest::newRow("Users, empty") << "Users" << "DELETE FROM EmployeeTable" << "" << "Please select a User to Modify."
                                      << "No User Selected" << "" << "";
        QTest::newRow("Users, Guest") << "Users" << "" << "Guest" << "" << "" << "frmModUser" << "Guest";
        QTest::newRow("Groups, empty") << "Groups" << "DELETE FROM GroupTable" << "" << "Please select a Group to Modify."
                                       << "No Group Selected" << "" << "";
        QTest::newRow("Groups, Everyone") << "Groups" << "" << "Everyone"
                                          << "Sorry, the 'Everyone' Group cannot be modified."
                                          << "Protected Group Name" << "" << "Everyone";
        QTest::newRow("Groups, everyone in other case")
            << "Groups" << "UPDATE GroupTable SET GroupName = 'everyone' WHERE GroupName = 'Everyone'" << "everyone"
            << "Sorry, the 'Everyone' Group cannot be modified." << "Protected Group Name" << "" << "everyone";
        QTest::newRow("Groups, Sales") << "Groups" << "" << "Sales" << "" << "" << "frmModGroup" << "Sales";
        QTest::newRow("Status Types, empty") << "Status Types" << "DELETE FROM StatusTypesTable" << ""
                                             << "Please select a Status Type to Modify." << "No Status Type Selected"
                                             << "" << "";
        for (const char *s : {"In", "Out", "Busy"})
            QTest::newRow(qPrintable(QString("Status Types, %1").arg(s)))
                << "Status Types" << "" << s
                << "Sorry, the 'In', 'Out' and 'Busy' Status Types cannot be modified." << "Protected Status Types"
                << "" << s;
        QTest::newRow("Status Types, Lunch") << "Status Types" << "" << "Lunch" << "" << "" << "frmModStatus" << "Lunch";
        QTest::newRow("DueBack, empty") << "DueBack Types" << "DELETE FROM DueBackTable" << ""
                                        << "Please select a DueBack Types to modify." << "No DueBack Type selected" << ""
                                        << "";
        QTest::newRow("DueBack, a row") << "DueBack Types" << "" << "Late this Morning" << "" << "" << "frmModDueBack"
                                        << "Late this Morning";
        QTest::newRow("Servers, empty") << "Servers" << "DELETE FROM ServersTable" << ""
                                        << "Please select a Server to Modify." << "No Message Type Selected" << "" << "";
        QTest::newRow("Servers, a row") << "Servers" << "" << Unc << "" << "" << "frmModServer" << Unc;
        QTest::newRow("Columns, empty") << "Columns" << "ALTER TABLE EmployeeTable DROP COLUMN New_Dept" << ""
                                        << "Please select a Column Name to modify." << "No Column Name selected" << ""
                                        << "";
        QTest::newRow("Columns, Dept") << "Columns" << "" << "Dept" << "" << "" << "frmModColumn" << "Dept";
        QTest::newRow("Messages: no branch") << "Messages" << "" << "1" << "" << "" << "" << "";
    }
    void modifyDispatcher()
    {
        QFETCH(QString, node);
        QFETCH(QString, change);
        QFETCH(QString, row);
        QFETCH(QString, message);
        QFETCH(QString, title);
        QFETCH(QString, window);
        QFETCH(QString, handedOver);
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        ShownWindows shown;
        for (QString *v : {&SelectedItemName, &SelectedGroupName, &SelectedStatusName, &SelectedDueBackName,
                           &SelectedServerPath, &SelectedServerDescription, &SelectedColumnName})
            v->clear();
        if (!change.isEmpty())
            c.other().execute(change);
        c.clickNode(node == "Users" ? "Groups" : "Users");
        c.clickNode(node);
        Msg::clearTranscript();
        const int before = c.rows()->count();
        if (row.isEmpty()) {
            QCOMPARE(before, 0);
            c.w().ModifyDispatcher(node);
        } else {
            c.doubleClickRow(c.rowOf(row));
        }
        const QList<Msg::Shown> boxes = Msg::transcript();
        if (message.isEmpty()) {
            QCOMPARE(messageTexts(), QStringList());
        } else {
            QCOMPARE(boxes.size(), 1);
            QCOMPARE(boxes[0].text, message);
            QCOMPARE(boxes[0].title, title);
            QCOMPARE(boxes[0].icon, Msg::Icon::Exclamation);
            QCOMPARE(boxes[0].buttons, Msg::Buttons::OK);
        }
        QCOMPARE(shown.names, window.isEmpty() ? QStringList() : QStringList{window});
        const QHash<QString, QString> variables = {
            {"Users", SelectedItemName},      {"Groups", SelectedGroupName},
            {"Status Types", SelectedStatusName}, {"DueBack Types", SelectedDueBackName},
            {"Servers", SelectedServerPath},  {"Columns", SelectedColumnName}};
        QCOMPARE(variables.value(node), handedOver);
        if (node == "Servers" && !row.isEmpty())
            QCOMPARE(SelectedServerDescription, QString("Head office"));
    }

    void modifyRebuildsTheListOnEveryPath_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("insert");
        QTest::addColumn<QString>("added");
        QTest::newRow("protected status") << "Status Types" << "In"
                                          << "INSERT INTO StatusTypesTable (Status) VALUES ('Zed')" << "Zed";
        QTest::newRow("messages, no branch") << "Messages" << "1"
                                             << "INSERT INTO MessagesTable (MessageID, MessageBody) VALUES (7, 'x')" << "7";
        QTest::newRow("window shown") << "Groups" << "Sales" << "INSERT INTO GroupTable (GroupName) VALUES ('Zoo')"
                                      << "Zoo";
    }
    void modifyRebuildsTheListOnEveryPath()
    {
        QFETCH(QString, node);
        QFETCH(QString, row);
        QFETCH(QString, insert);
        QFETCH(QString, added);
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        ShownWindows shown;
        c.clickNode(node);
        c.other().execute(insert);
        QVERIFY(!c.texts().contains(added));
        c.doubleClickRow(c.rowOf(row));
        QVERIFY(c.texts().contains(added));
    }

    void keys_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("row");
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("present");
        QTest::addColumn<QStringList>("windows");
        QTest::newRow("Insert on Users") << "Users" << "Guest" << int(Qt::Key_Insert) << true << QStringList{"frmAddUser"};
        QTest::newRow("Delete on Users") << "Users" << "Guest" << int(Qt::Key_Delete) << true << QStringList{"frmDeleteUser"};
        QTest::newRow("Delete on Everyone: off") << "Groups" << "Everyone" << int(Qt::Key_Delete) << true << QStringList{};
        QTest::newRow("Insert on Everyone") << "Groups" << "Everyone" << int(Qt::Key_Insert) << true << QStringList{"frmAddGroup"};
        QTest::newRow("Insert on Messages: off") << "Messages" << "1" << int(Qt::Key_Insert) << true << QStringList{};
        QTest::newRow("Delete on Messages") << "Messages" << "1" << int(Qt::Key_Delete) << true
                                            << QStringList{"frmDeleteMessages"};
        QTest::newRow("Insert while the window is not built") << "Users" << "Guest" << int(Qt::Key_Insert) << false
                                                              << QStringList{};
    }
    void keys()
    {
        QFETCH(QString, node);
        QFETCH(QString, row);
        QFETCH(int, key);
        QFETCH(bool, present);
        QFETCH(QStringList, windows);
        Console c(seedRouting);
        WindowsPresent present_(present ? WindowsPresent::verbWindows() : QStringList());
        WindowsAbsent absent(present ? QStringList() : WindowsPresent::verbWindows());
        ShownWindows shown;
        c.clickNode(node == "Users" ? "Groups" : "Users");
        c.clickNode(node);
        c.clickRow(c.rowOf(row));
        c.keyInList(Qt::Key(key));
        QCOMPARE(shown.names, windows);
        QCOMPARE(messageTexts(), QStringList());
    }

    void addDispatcherWithoutAWindowLeavesTheVerbsOff()
    {
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        ShownWindows shown;
        c.clickRow(0);
        QCOMPARE(c.toolbarVerbs(), (Flags{true, true, true}));
        c.w().AddDispatcher("Messages");
        QCOMPARE(shown.names, QStringList());
        QCOMPARE(c.toolbarVerbs(), (Flags{false, false, false}));
        QCOMPARE(c.editEntries(), (Flags{true, true, true}));  // only the toolbar's three
        c.clickRow(0);
        QCOMPARE(c.toolbarVerbs(), (Flags{true, true, true}));
    }

    void deleteDispatcherRebuildsNothingItself()
    {
        Console c(seedRouting);
        WindowsPresent windows(WindowsPresent::verbWindows());
        ShownWindows shown;
        c.clickNode("Groups");
        c.other().execute("INSERT INTO GroupTable (GroupName) VALUES ('Zoo')");
        c.w().DeleteDispatcher("Groups");
        QCOMPARE(shown.names, QStringList{"frmDeleteGroup"});
        QVERIFY(!c.texts().contains("Zoo"));
        c.w().Form_Activate();  // the console is in front again
        QVERIFY(c.texts().contains("Zoo"));
    }

    void toolbarHints_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<QString>("hint");
        const QString add = " Add new User, Group, Status, Message Type or Server.";
        QTest::newRow("none held") << 0 << add;
        QTest::newRow("left") << int(Qt::LeftButton) << " Modify a User, Group, Status, Message Type or Server.";
        QTest::newRow("right") << int(Qt::RightButton) << " Delete a User, Group, Status, Message Type or Server.";
        QTest::newRow("left and right: text left") << int(Qt::LeftButton | Qt::RightButton) << add;
        QTest::newRow("middle") << int(Qt::MiddleButton) << " Display the errors (if any) that occurred during IMPORT.";
        QTest::newRow("left and middle") << int(Qt::LeftButton | Qt::MiddleButton)
                                         << " Repair/Compact database and remove deleted records.";
        QTest::newRow("right and middle") << int(Qt::RightButton | Qt::MiddleButton) << " Display Help.";
        QTest::newRow("three") << int(Qt::LeftButton | Qt::RightButton | Qt::MiddleButton) << " Exit TAVELLO Administrator.";
        QTest::newRow("back button") << int(Qt::XButton1) << " Display the errors occurring on each users system.";
    }
    void toolbarHints()
    {
        QFETCH(int, buttons);
        QFETCH(QString, hint);
        Console c;
        QWidget *button = c.w().ToolbarMain()->widgetForAction(c.w().toolbarButton("Refresh"));
        auto move = [&](Qt::MouseButtons held) {
            QMouseEvent e(QEvent::MouseMove, QPointF(5, 5), button->mapToGlobal(QPointF(5, 5)), Qt::NoButton, held,
                          Qt::NoModifier);
            QCoreApplication::sendEvent(button, &e);
        };
        move(Qt::NoButton);
        move(Qt::MouseButtons(buttons));
        QCOMPARE(c.w().simpleText(), hint);
        // Over the bare form the hints go.
        QMouseEvent bare(QEvent::MouseMove, QPointF(2, 2), c.w().centralWidget()->mapToGlobal(QPointF(2, 2)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(c.w().centralWidget(), &bare);
        QCOMPARE(c.w().simpleText(), QString());
    }

    void mouseHints_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("over");
        QTest::addColumn<QString>("hint");
        QTest::newRow("list on Users") << "Users" << "list"
                                       << " Warning Triangle indicates users Active Flag set. See Help for more info";
        QTest::newRow("list elsewhere") << "Groups" << "list" << " TAVELLO Listview";
        QTest::newRow("tree") << "Groups" << "tree" << "Admin Items";
        QTest::newRow("banner") << "Groups" << "banner" << "Tavello? Logo";
    }
    void mouseHints()
    {
        QFETCH(QString, node);
        QFETCH(QString, over);
        QFETCH(QString, hint);
        Console c(seedRouting);
        c.clickNode(node);
        QWidget *target = over == "list"   ? c.list()->viewport()
                          : over == "tree" ? c.tree()->viewport()
                                           : c.w().findChild<QWidget *>("imgPlannerBanner");
        QMouseEvent e(QEvent::MouseMove, QPointF(4, 4), target->mapToGlobal(QPointF(4, 4)), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
        QCoreApplication::sendEvent(target, &e);
        QCOMPARE(c.w().hint(), hint);
    }

    // Entries and buttons open their windows, or stay off until they exist.
    void windowsOfTheMenus_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QString>("window");
        QTest::newRow("Admin Options") << "mnuAdminOptions" << true << "frmAdminOptions";
        QTest::newRow("Repair / Compact") << "mnuCompactDatabase" << true << "frmRepair";
        QTest::newRow("Database Path") << "mnuDataPath" << true << "frmDataPath";
        QTest::newRow("About") << "mnuAbout" << true << "about";
        QTest::newRow("toolbar About") << "About" << true << "about";
        QTest::newRow("toolbar Repair") << "Repair" << true << "frmRepair";
        QTest::newRow("New User Defaults") << "mnuNewUserDefaults" << true << "frmNewUser";
        for (const char *item : {"mnuGlobalSettings", "mnuImportErrorLog", "mnuSystemSecurity",
                                 "mnuTransactionLog", "mnuCompamyInfo", "mnuPhotoPath", "mnuForceShutdown",
                                 "mnuAutoCheckforUpdates", "mnuCheckForUpdates"})
            QTest::newRow(item) << item << false << "";
        QTest::newRow("toolbar Import") << "Import" << false << "";
    }
    void windowsOfTheMenus()
    {
        QFETCH(QString, item);
        QFETCH(bool, enabled);
        QFETCH(QString, window);
        Console c;
        ShownWindows shown;
        QAction *a = c.w().toolbarButton(item);
        if (!a)
            a = c.w().menuItem(item);
        QVERIFY(a);
        QCOMPARE(a->isEnabled(), enabled);
        a->trigger();
        QCOMPARE(shown.names, enabled ? QStringList{window} : QStringList());
        QCOMPARE(messageTexts(), QStringList());
    }

    void laterWindowsSwitchOn()
    {
        Console c;
        QAction *a = c.w().menuItem("mnuGlobalSettings");
        QVERIFY(!a->isEnabled());
        {
            WindowsPresent windows({"frmGlobalSettings"});
            QVERIFY(a->isEnabled());
            ShownWindows shown;
            a->trigger();
            QCOMPARE(shown.names, QStringList{"frmGlobalSettings"});
        }
        QVERIFY(!a->isEnabled());
    }

    void aboutFromTheBanner()
    {
        Console c;
        ShownWindows shown;
        QWidget *banner = c.w().findChild<QWidget *>("imgPlannerBanner");
        QTest::mouseClick(banner, Qt::LeftButton, {}, QPoint(10, 10));
        QCOMPARE(shown.names, QStringList{"about"});
    }

    void helpFromToolbarAndMenu()
    {
        Console c;
        c.w().toolbarButton("Help")->trigger();
        QCOMPARE(Help::lastPage(), QString("frmMain"));
        c.w().menuItem("mnuHelpContents")->trigger();
        QCOMPARE(Help::lastPage(), QString("frmMain"));
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "HelpWindow")
                w->close();
    }

    void importFromTheTree_data()
    {
        QTest::addColumn<bool>("present");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("windows");
        QTest::newRow("window not built: nothing asked") << false << "" << QStringList{};
        QTest::newRow("file chosen") << true << "staff.csv" << QStringList{"frmImport01"};
        QTest::newRow("cancelled") << true << "" << QStringList{};
    }
    void importFromTheTree()
    {
        QFETCH(bool, present);
        QFETCH(QString, answer);
        QFETCH(QStringList, windows);
        Console c(seedRouting);
        WindowsPresent windows_(present ? WindowsPresent::verbWindows() + QStringList{"frmImport01"} : QStringList());
        ShownWindows shown;
        ImportFilePath.clear();
        const QString file = answer.isEmpty() ? QString() : c.site().local(answer);
        FileDialogs::queueAnswers({file});
        c.clickNode("Import");
        QCOMPARE(c.w().selectedNodeText(), QString("Users"));
        QCOMPARE(shown.names, windows);
        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), present ? 1 : 0);
        if (present) {
            QCOMPARE(asked[0].title, QString("Select File to Import"));
            QCOMPARE(asked[0].filter, QString("Import (*.txt;*.csv)|*.txt;*.csv"));
            QCOMPARE(gstrMsg, QString("IMPORTANT: TAVELLO will only import users from a .TXT or .CSV file."));
            QCOMPARE(c.toolbarVerbs(), (Flags{true, true, true}));  // the table, run again for Users
        }
        QCOMPARE(ImportFilePath, file);
        QCOMPARE(c.w().toolbarButton(1)->isEnabled(), present);
    }

    void resetActiveFlags()
    {
        Console c([](Database &db) {
            db.execute("INSERT INTO EmployeeTable (Name, UID, ActiveFlag) VALUES ('Ann', 'A', 'Yes'), ('Ben', 'B', 'Yes')");
        });
        QCOMPARE(c.icons(), (QStringList{"Warning", "Warning", "Users"}));
        c.w().menuItem("mnuResetActiveFlags")->trigger();
        QCOMPARE(c.icons(), (QStringList{"Users", "Users", "Users"}));
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'No'").toInt(), 2);
        QCOMPARE(messageTexts(), QStringList());
    }

    void resetWithNobodyActive()
    {
        // The row of defaults it then tries is refused by the Guest already
        // there; the failure is told and the console carries on.
        Console c;
        c.w().menuItem("mnuResetActiveFlags")->trigger();
        const QStringList texts = messageTexts();
        QCOMPARE(texts.size(), 1);
        QVERIFY2(texts[0].startsWith("Run-time error '3022':\r\n\r\n"), qPrintable(texts[0]));
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Critical);
        QCOMPARE(c.texts(), QStringList{"Guest"});
        QCOMPARE(c.other().scalar("SELECT count(*) FROM EmployeeTable").toInt(), 1);
    }

    void exitClosesAndSaves()
    {
        Console c(seedRouting);
        c.clickNode("Status Types");
        c.w().menuItem("mnuFile_Exit")->trigger();
        QVERIFY(gbolEnding);
        QVERIFY(!c.w().isVisible());
        QCOMPARE(c.other().scalar("SELECT LastSelectedNode FROM AdminSettingsTable").toString(), QString("Status Types"));
    }

    void menuTree_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("checkable");
        const QList<std::tuple<const char *, const char *, bool>> items = {
            {"mnuFile", "&File", false}, {"mnuFile_Exit", "E&xit", false}, {"mnuEdit", "&Edit", false},
            {"mnuTools", "&Tools", false}, {"mnuAdminOptions", "&Admin Options", false},
            {"mnuCompactDatabase", "Repair / &Compact Database...", false}, {"mnuDataPath", "&Database Path...", false},
            {"mnuGlobalSettings", "&Global Settings...", false}, {"mnuImportErrorLog", "&Import Error Log...", false},
            {"mnuNewUserDefaults", "&New User Defaults...", false}, {"mnuResetActiveFlags", "Reset &Active Flags", false},
            {"mnuSystemSecurity", "&System Security...", false}, {"mnuTransactionLog", "&Transaction Log...", false},
            {"mnuCompamyInfo", "&Company Info...", false}, {"mnuPhotoPath", "&Photo Path", false},
            {"mnuForceShutdown", "&Force Shutdown...", true}, {"mnuAutoCheckforUpdates", "&Auto Check for Updates", true},
            {"mnuHelp", "&Help", false}, {"mnuHelpContents", "&Contents", false},
            {"mnuCheckForUpdates", "Check For Updates (in background)", false}, {"mnuAbout", "&About TAVELLO...", false}};
        for (const auto &[item, caption, checkable] : items)
            QTest::newRow(item) << item << caption << checkable;
    }
    void menuTree()
    {
        QFETCH(QString, item);
        QFETCH(QString, caption);
        QFETCH(bool, checkable);
        Console c;
        QAction *a = c.w().menuItem(item);
        if (!a)
            if (QMenu *m = c.w().findChild<QMenu *>(item))
                a = m->menuAction();
        QVERIFY(a);
        QCOMPARE(a->text(), caption);
        QCOMPARE(a->isCheckable(), checkable);
        QVERIFY(a->shortcut().isEmpty());
    }

    void editEntriesAndToolbar()
    {
        Console c;
        QCOMPARE(c.w().mnuEditSub(0)->text(), QString("&Add..."));
        QCOMPARE(c.w().mnuEditSub(1)->text(), QString("&Modify..."));
        QCOMPARE(c.w().mnuEditSub(2)->text(), QString("&Delete..."));
        const QStringList keys{"Import", "Add", "Modify", "Delete", "Repair", "Refresh", "About", "Help", "ExitAdmin"};
        const QStringList tips{" Import User Names and Phone Numbers ", " Add Users, Groups, Status Types etc ",
                               " Modify Users, Groups, Status Types etc ", " Delete Users, Groups, Status Types etc ",
                               " Repair / Compact Database ", " Refresh List ", "", " Display Help for Main Screen ",
                               " Shut down TAVELLO "};
        const QList<QAction *> shown = c.w().ToolbarMain()->actions();
        QCOMPARE(shown.size(), 9);
        for (int i = 0; i < 9; ++i) {
            QCOMPARE(shown[i]->objectName(), keys[i]);
            QCOMPARE(c.w().toolbarButton(i + 1), shown[i]);
            if (!tips[i].isEmpty())
                QCOMPARE(shown[i]->toolTip(), tips[i]);
            for (QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Disabled})
                QVERIFY(!shown[i]->icon().pixmap(QSize(24, 24), mode).isNull());
        }
        QCOMPARE(c.w().ToolbarMain()->widgetForAction(shown[8])->objectName(), QString("ExitAdmin"));
    }
};

QTEST_MAIN(TestRouting)
#include "tst_routing.moc"
