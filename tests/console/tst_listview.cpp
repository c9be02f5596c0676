// The main list: each kind's headers, widths, panel text, rows, images and
// order; the selection memory; the column rule; failures while reading.
#include "ConsoleFixture.h"

#include "console/AdminListView.h"
#include "console/AdminTreeView.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace ConsoleTest;

namespace {

const QString UncA = QStringLiteral("\\\\a\\S\\");
const QString UncB = QStringLiteral("\\\\B\\S\\");
const QString UncC = QStringLiteral("\\\\C\\S\\");

// One database with rows of every kind.
void seedAll(Database &db)
{
    db.execute("INSERT INTO EmployeeTable (Name, UID, ActiveFlag) VALUES ('bob', 'B1', 'Yes'), ('Alice', 'A1', 'No'), "
               "('charlie', 'C1', 'Not Set'), ('dora', 'D1', 'yes')");
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('sales'), ('Admins')");
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode, OnToolbar) VALUES ('Lunch', 5, 0), ('Gone', 0, 0), "
               "('Away', 7, 1), ('Meeting', 6, 0), ('Remote', 4, 0), ('Holiday', NULL, 0)");
    db.execute("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, 'Bravo'), (?, NULL), ('   ', 'blank'), (?, '')",
               {UncB, UncA, UncC});
    for (const char *col : {"New_Phone2", "New_Dept", "New_MyReadOnlyNote", "new_lower"})
        db.addColumn("EmployeeTable", col, "TEXT(250)");
    db.addColumn("EmployeeTable", "New_Phone2ReadOnly", "INTEGER");
    db.addColumn("EmployeeTable", "New_DeptReadOnly", "INTEGER");
    db.execute("UPDATE EmployeeTable SET New_Phone2ReadOnly = 1, New_DeptReadOnly = 0");
    db.execute("INSERT INTO MessagesTable (MessageID, SentToName, SentDateTimeNum, SentFromName, MessageFrom, Category, "
               "LastUsedDateTimeNum, MessageSubject, MessageBody) VALUES "
               "(10, 'Ann', 36526.75, 'Bob', 'Bob B', 'Work', 0, 'Hi', ?), (2, NULL, NULL, 'Cy', 'Cy C', NULL, 1.0, 'Re', ?), "
               "(3, 'Dee', 2.5, 'Ed', 'Ed E', 'Home', -1.5, 'Lo', ?), (4, NULL, NULL, NULL, NULL, NULL, NULL, NULL, ?), "
               "(5, NULL, NULL, NULL, NULL, NULL, NULL, NULL, ?)",
               {QStringLiteral("  line one\r\nline two  "), QString(31, 'x'), QStringLiteral("a\nb"), QString(30, 'y'),
                QStringLiteral("   ") + QString(30, 'z') + QStringLiteral("\r\n")});
}

// Expected header widths for a rule, from the list's width W (twips).
QList<int> expectedWidths(const QString &rule, int W)
{
    const QHash<QString, QList<int>> rules = {{"half", {W / 2, W / 2}},          {"half-70", {(W - 70) / 2, (W - 70) / 2}},
                                              {"minus60", {W - 60}},             {"minus300", {W - 300}},
                                              {"default,rest", {1440, W - 60 - 1440}}, {"default x9", QList<int>(9, 1440)}};
    return rules.value(rule);
}

void compareWidths(const QList<int> &actual, const QList<int> &expected)
{
    QCOMPARE(actual.size(), expected.size());
    for (int i = 0; i < actual.size(); ++i)
        QVERIFY2(qAbs(actual[i] - expected[i]) <= 15,  // one pixel of rounding
                 qPrintable(QString("header %1: %2 twips, expected %3").arg(i).arg(actual[i]).arg(expected[i])));
}

// One kind on the list; widths and resized name a rule of expectedWidths
// ("" for resized: not checked).
struct Kind {
    QString node; QStringList headers; QString widths, resized, panel; QStringList texts, sub1, icons;
};

}  // namespace

Q_DECLARE_METATYPE(Kind)

class TestListView : public QObject {
    Q_OBJECT

private slots:
    void eachKind_data()
    {
        QTest::addColumn<Kind>("k");
        const QStringList dueBacks{
            "07:00 am", "07:30 am", "08:00 am", "08:30 am", "09:00 am", "09:30 am", "10:00 am", "10:30 am", "11:00 am",
            "11:30 am", "12:00 (Midday)", "12:30 pm", "13:00 (1 pm)", "13:30 (1:30 pm)", "14:00 (2 pm)",
            "14:30 (2:30 pm)", "15:00 (3 pm)", "15:30 (3:30 pm)", "16:00 (4 pm)", "16:30 (4:30 pm)", "17:00 (5 pm)",
            "17:30 (5:30 pm)", "18:00 (6 pm)", "18:30 (6:30 pm)", "Early this Afternoon", "Late this Afternoon",
            "Late this Morning"};
        const QStringList servers{UncA, UncB, UncC}, serverDescs{"", "Bravo", ""}, serverHeads{"UNC Path", "Description"};
        QTest::newRow("Users: case-blind order, warning only for Yes")
            << Kind{"Users", {" User Names", " User ID"}, "half", "half", " Users", {"Alice", "bob", "charlie", "dora", "Guest"},
                    {"A1", "B1", "C1", "D1", "Guest"}, {"Users", "Warning", "Users", "Users", "Users"}};
        QTest::newRow("Groups") << Kind{"Groups", {" Groups"}, "minus60", "minus60", " Group Names",
                                        {"Admins", "Everyone", "sales"}, QStringList(3), QStringList(3, "Groups")};
        QTest::newRow("Status Types: colour by code, none for 0, 7 and Null")
            << Kind{"Status Types", {" Status Types"}, "minus60", "", " Status Types",
                    {"Away", "Busy", "Gone", "Holiday", "In", "Lunch", "Meeting", "Out", "Remote"}, QStringList(9),
                    {"", "2Yellow", "", "", "3Green", "5Cyan", "6Magenta", "1Red", "4Blue"}};
        QTest::newRow("DueBack Types: last column W - 60 after a resize")
            << Kind{"DueBack Types", {" DueBack Types"}, "minus300", "minus60", " DueBack Types", dueBacks,
                    QStringList(27), QStringList(27, "DueBack")};
        QTest::newRow("Servers: blank path left out, halves after a resize")
            << Kind{"Servers", serverHeads, "half-70", "half", " Remote Servers", servers, serverDescs, QStringList(3, "Servers")};
        QTest::newRow("Auto Sync builds the Servers list")
            << Kind{"Auto Sync", serverHeads, "half-70", "", " Remote Servers", servers, serverDescs, QStringList(3, "Servers")};
        QTest::newRow("Columns: added fields only, read-only flag")
            << Kind{"Columns", {" Added Columns", " Read Only"}, "default,rest", "default,rest", " Added Columns",
                    {"Dept", "Phone2"}, {"", "Yes"}, QStringList(2, "Columns")};
        QTest::newRow("Messages: query order, not text order, widths left alone")
            << Kind{"Messages",
                    {"MessageID", "Recipient", "Originally Sent", "Sent From", "Message From", "Category", "Last Used",
                     "Subject", "Body"},
                    "default x9", "default x9", " Messages", {"2", "3", "4", "5", "10"}, {"", "Dee", "", "", "Ann"},
                    QStringList(5, "Messages")};
    }
    void eachKind()
    {
        QFETCH(Kind, k);
        Console c(seedAll);
        WindowsPresent present({"frmImport01"});
        ShownWindows shown;  // "Auto Sync" opens its window
        c.clickNode(k.node);
        QCOMPARE(c.headers(), k.headers);
        compareWidths(c.headerWidths(), expectedWidths(k.widths, c.list()->widthTwips()));
        QCOMPARE(c.w().hint(), k.panel);
        QCOMPARE(c.texts(), k.texts);
        QCOMPARE(c.column(1), k.sub1);
        QCOMPARE(c.icons(), k.icons);
        QCOMPARE(c.w().toolbarButton(1)->isEnabled(), k.node == "Users");  // Import
        // Only Status Types carry a check box: the toolbar mark.
        QStringList marked;
        for (int i = 0; i < c.rows()->count(); ++i) {
            const QVariant mark = c.rows()->data(c.rows()->index(i, 0), Qt::CheckStateRole);
            QCOMPARE(mark.isValid(), k.node == "Status Types");
            if (mark.toInt() == Qt::Checked)
                marked << c.rows()->text(i);
        }
        QCOMPARE(marked, k.node == "Status Types" ? QStringList({"Away", "Busy", "In", "Out"}) : QStringList());
        QCOMPARE(messageTexts(), QStringList());
        QVERIFY(!Hourglass::shown());
        if (!k.resized.isEmpty()) {
            c.w().resize(c.w().width() + 150, c.w().height() + 40);
            QCoreApplication::processEvents();
            compareWidths(c.headerWidths(), expectedWidths(k.resized, c.list()->widthTwips()));
        }
    }

    void messageCells_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QStringList>("cells");  // sub-items 1 .. 8
        QTest::newRow("dates with time, line breaks to blanks, trimmed")
            << "10" << QStringList{"Ann", "2000-01-01 18:00:00", "Bob", "Bob B", "Work", "00:00:00", "Hi", "line one line two"};
        QTest::newRow("Null fields empty, 31 characters cut to 30")
            << "2" << QStringList{"", "", "Cy", "Cy C", "", "1899-12-31", "Re", QString(30, 'x')};
        QTest::newRow("day fractions, negative dates, a lone line feed stays")
            << "3" << QStringList{"Dee", "1900-01-01 12:00:00", "Ed", "Ed E", "Home", "1899-12-29 12:00:00", "Lo", "a\nb"};
        QTest::newRow("exactly 30 stays") << "4" << QStringList{"", "", "", "", "", "", "", QString(30, 'y')};
        QTest::newRow("30 after trimming stays") << "5" << QStringList{"", "", "", "", "", "", "", QString(30, 'z')};
    }
    void messageCells()
    {
        QFETCH(QString, id);
        QFETCH(QStringList, cells);
        Console c(seedAll);
        c.clickNode("Messages");
        const int row = c.rowOf(id);
        QVERIFY(row >= 0);
        QStringList actual;
        for (int n = 1; n <= 8; ++n)
            actual << c.rows()->subItem(row, n);
        QCOMPARE(actual, cells);
    }

    void nullFirstRecordGivesNoRows()
    {
        Console c([](Database &db) { db.execute("INSERT INTO DueBackTable (DueBack) VALUES (NULL)"); });
        c.clickNode("DueBack Types");
        QCOMPARE(c.rows()->count(), 0);
        QCOMPARE(c.headers(), QStringList{" DueBack Types"});
        QCOMPARE(messageTexts(), QStringList());
    }

    void aColumnJustAddedShows()
    {
        Console c;
        c.clickNode("Columns");
        QCOMPARE(c.texts(), QStringList());
        c.other().addColumn("EmployeeTable", "New_Room", "TEXT(250)");
        c.other().addColumn("EmployeeTable", "New_RoomReadOnly", "INTEGER");
        c.w().ToolbarMain_ButtonClick("Refresh");
        QCOMPARE(c.texts(), QStringList{"Room"});
        QCOMPARE(c.column(1), QStringList{""});
    }

    // What the list selects when it is rebuilt, after a change by someone else.
    void selectionMemory_data()
    {
        QTest::addColumn<QString>("clicked");  // the row the user clicks first ("" none)
        QTest::addColumn<QString>("change");   // SQL run by another program meanwhile
        QTest::addColumn<QString>("selected"); // the row selected after the rebuild ("" none)
        QTest::addColumn<QString>("memory");   // LastSelectedUser afterwards
        QTest::newRow("empty memory: first row after sorting") << "" << "" << "Alice" << "Alice";
        QTest::newRow("remembered across kinds") << "charlie" << "" << "charlie" << "charlie";
        QTest::newRow("deleted: nothing selected, memory kept")
            << "charlie" << "DELETE FROM EmployeeTable WHERE Name = 'charlie'" << "" << "charlie";
        QTest::newRow("renamed: nothing selected")
            << "bob" << "UPDATE EmployeeTable SET Name = 'Bobby' WHERE Name = 'bob'" << "" << "bob";
        QTest::newRow("added before it: the same row stays chosen")
            << "dora" << "INSERT INTO EmployeeTable (Name, UID) VALUES ('Aaron', 'AA')" << "dora" << "dora";
    }
    void selectionMemory()
    {
        QFETCH(QString, clicked);
        QFETCH(QString, change);
        QFETCH(QString, selected);
        QFETCH(QString, memory);
        Console c(seedAll);
        if (clicked.isEmpty()) {
            QCOMPARE(c.selectedRows(), QList<int>{0});  // a fresh console remembers nothing
        } else {
            c.clickRow(c.rowOf(clicked));
            QCOMPARE(LastSelectedUser, clicked);
        }
        c.clickNode("Groups");
        QCOMPARE(LastSelectedGroup, QString("Admins"));  // the first row, chosen for an empty memory
        if (!change.isEmpty())
            c.other().execute(change);
        c.clickNode("Users");
        const QList<int> sel = c.selectedRows();
        QCOMPARE(sel.size(), selected.isEmpty() ? 0 : 1);
        if (!selected.isEmpty())
            QCOMPARE(c.rows()->text(sel.first()), selected);
        QCOMPARE(LastSelectedUser, memory);
    }

    void twoUsersOfOneNameLastOneKept()
    {
        // A table written by another tool without the unique key.
        Console c([](Database &db) {
            db.execute("CREATE TABLE Loose AS SELECT * FROM EmployeeTable");
            db.execute("PRAGMA foreign_keys = OFF");
            db.execute("DROP TABLE EmployeeTable");
            db.execute("ALTER TABLE Loose RENAME TO EmployeeTable");
            db.execute("INSERT INTO EmployeeTable (Name, UID, ActiveFlag) VALUES ('Smith', 'S1', 'No'), "
                       "('Smith', 'S2', 'No'), ('Adams', 'AD', 'No')");
        });
        LastSelectedUser = "Smith";
        c.w().ToolbarMain_ButtonClick("Refresh");
        QCOMPARE(c.texts(), (QStringList{"Adams", "Guest", "Smith", "Smith"}));
        QCOMPARE(c.selectedRows(), QList<int>{3});
    }

    // The Auto Sync node shows whether there is any server to work on; a
    // click on it opens its window if built and hands the selection back.
    void autoSyncFollowsTheServers()
    {
        Console c;
        ShownWindows shown;
        QTreeWidgetItem *autoSync = c.tree()->node("Auto Sync");
        QVERIFY(c.w().isGrey(autoSync));  // grey from the start
        c.clickNode("Servers");
        QVERIFY(c.w().isGrey(autoSync));
        QCOMPARE(c.headers(), (QStringList{"UNC Path", "Description"}));  // an empty table: headers only
        QCOMPARE(c.rows()->count(), 0);
        c.other().execute("INSERT INTO ServersTable (UNCPath, Description) VALUES ('\\\\X\\Y\\', 'first')");
        c.w().ToolbarMain_ButtonClick("Refresh");
        QVERIFY(!c.w().isGrey(autoSync));
        {
            WindowsAbsent absent({"frmAutoSync"});
            c.clickNode("Auto Sync");  // its window not built
        }
        QCOMPARE(c.w().selectedNodeText(), QString("Servers"));
        QCOMPARE(c.texts(), QStringList{"\\\\X\\Y\\"});
        WindowsPresent present({"frmAutoSync"});
        c.clickNode("Auto Sync");
        QCOMPARE(shown.names, QStringList{"frmAutoSync"});
        QCOMPARE(c.w().selectedNodeText(), QString("Servers"));
        QVERIFY(!c.w().isGrey(autoSync));
        c.other().execute("DELETE FROM ServersTable");
        c.w().ToolbarMain_ButtonClick("Refresh");
        QVERIFY(c.w().isGrey(autoSync));
        c.clickNode("Auto Sync");  // grey: nothing opens
        QCOMPARE(c.w().selectedNodeText(), QString("Servers"));
        QVERIFY(c.w().isGrey(autoSync));
        QCOMPARE(shown.names, QStringList{"frmAutoSync"});
        QCOMPARE(messageTexts(), QStringList());
    }

    void lockedByAnotherProgram()
    {
        Console c(seedAll);
        TestSupport::ExternalHolder holder(c.databaseFile(), TestSupport::ExternalHolder::Hold::Exclusive);
        QVERIFY(holder.started());
        gRefreshListView("Users");
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith("error: 3260 - "), qPrintable(shown[0].text));
        QCOMPARE(shown[0].title, QString("Admin1 - gRefreshListView"));
        QCOMPARE(shown[0].icon, Msg::Icon::Critical);
        QCOMPARE(c.rows()->count(), 0);
        QVERIFY(Hourglass::shown());  // left for the next caller
    }

    // Groups retry their query, Columns reopen the database: three tries a
    // second apart, then one report.
    void retryThreeTimesThenReport_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("error");  // the report's start
        QTest::newRow("Groups, table gone") << "Groups" << "error: ";
        QTest::newRow("Columns, database moved") << "Columns" << "error: 3024 - ";
    }
    void retryThreeTimesThenReport()
    {
        QFETCH(QString, node);
        QFETCH(QString, error);
        Console c([&](Database &db) {
            if (node == "Groups") {
                db.execute("PRAGMA foreign_keys = OFF");
                db.execute("DROP TABLE GroupTable");
            }
        });
        if (node == "Columns")
            QVERIFY(QFile::rename(c.databaseFile(), c.site().local("moved.mdb")));
        QElapsedTimer t;
        t.start();
        gRefreshListView(node);
        QVERIFY2(t.elapsed() >= 1900, "two pauses of a second between the three tries");
        const QStringList texts = messageTexts();
        QCOMPARE(texts.size(), 1);
        QVERIFY2(texts[0].startsWith(error) && (node != "Groups" || texts[0].contains("GroupTable")), qPrintable(texts[0]));
    }

    void deletedUnderTheReaderAsksForRepair()
    {
        Console c;
        c.w().reportRefreshFailure(StoreError(3167, "The record has been deleted by another program."));
        QCOMPARE(messageTexts(), QStringList{"The  TAVELLO Pro 2006-07D (Admin) -  database appears to be damaged and "
                                             "must be repaired/compacted immediately."});
        // The repair window stands beside the console, not modal.
        QDialog *repair = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->inherits("frmRepair") && w->isVisible())
                repair = qobject_cast<QDialog *>(w);
        QVERIFY(repair);
        QVERIFY(!repair->isModal());
        repair->close();
    }
};

QTEST_MAIN(TestListView)
#include "tst_listview.moc"
