// The import wizard end to end, from the toolbar's Import to the users made,
// the error log and the report; and the error log's window.
#include "ImportTest.h"

#include "console/frmMain.h"
#include "import/ImportStore.h"
#include "import/frmImport01.h"
#include "import/frmImport02.h"
#include "import/frmImportErrors.h"
#include "platform/Modal.h"

#include <QDir>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace ImportTest;

namespace {

const QString Blank = "Blank line (skipped)";
const QString Duplicate = "Duplicate name not imported - ";
const QString NoCommas = "Commas expected in Import File.|The Comma Seperated File does NOT Contain Commas.";
const QString NotText = "Text file expected.|The Import File is not a plain text file: it contains NUL characters.";
const QString Refused = "The value was refused: ";

// The board before an import: Guest and one more user with an ID.
void seedBoard(Database &db, const QString &board)
{
    addUsers(db, {"Existing=E1"});
    if (board == "group gone")
        db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?", {"Nowhere"});
}

QByteArray binaryContent()
{
    QByteArray b("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    for (int i = 0; i < 4000; ++i)
        b += char((i * 7919 + 13) % 256);
    return b;
}

}  // namespace

class TestImport : public QObject {
    Q_OBJECT

private slots:
    // File content, map and separator against the users made, the log rows
    // and the message shown.
    void run_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("map");   // see ImportTest::comboText
        QTest::addColumn<bool>("tab");
        QTest::addColumn<QString>("board");
        QTest::addColumn<QStringList>("users");  // UID|Name|Phone|settings rows
        QTest::addColumn<QStringList>("log");
        QTest::addColumn<QString>("box");

        const QByteArray n97(97, 'n'), m98(98, 'm');
        QTest::newRow("a,b,c and two blank lines") << QByteArray("a,b,c\n\n\n") << "INP" << false << ""
                                                   << QStringList{"a|b|c|1"} << QStringList{Blank, Blank} << results(3, 2);
        QTest::newRow("blank lines alone: no commas") << QByteArray("\n\n   \n") << "INP" << false << ""
                                                      << QStringList() << QStringList() << NoCommas;
        QTest::newRow("empty file") << QByteArray() << "INP" << false << "" << QStringList() << QStringList()
                                    << "Import File Empty|Nothing to Import!";
        QTest::newRow("99 characters taken, 100 too long")
            << QByteArray("1," + n97 + "\n2," + m98 + "\n") << "IN-" << false << ""
            << QStringList{"1|" + n97 + "||1"} << QStringList{"Line too long - 2," + m98} << results(2, 1);
        QTest::newRow("one character is a blank line") << QByteArray("X\n1,Ann\n") << "IN-" << false << ""
                                                       << QStringList{"1|Ann||1"} << QStringList{Blank} << results(2, 1);
        QTest::newRow("quote before hash")
            << QByteArray("1,A#n\n2,\"Bo\"\n3,C#\"x\n") << "IN-" << false << "" << QStringList()
            << QStringList{"Hash symbol (#) in name (skipped) - 1,A#n", "Double quote in name (skipped) - 2,\"Bo\"",
                           "Double quote in name (skipped) - 3,C#\"x"}
            << results(3, 3);
        QTest::newRow("tab inside a comma field stays") << QByteArray("1,Ann\tLee,5\n") << "INP" << false << ""
                                                        << QStringList{"1|Ann\tLee|5|1"} << QStringList() << results(1, 0);
        QTest::newRow("tabs only, Comma chosen") << QByteArray("1\tAnn\t5\n") << "INP" << false << "" << QStringList()
                                                 << QStringList() << NoCommas;
        QTest::newRow("single names, Comma chosen") << QByteArray("Ann\nBob\n") << "-N-" << false << ""
                                                    << QStringList() << QStringList() << NoCommas;
        QTest::newRow("single names, Tab chosen")
            << QByteArray("Ann\nBob\n") << "N--" << true << "" << QStringList() << QStringList()
            << "Tabs expected in Import File.|The Tab Delimited File does NOT Contain Tabs.";
        QTest::newRow("name alone from column 2") << QByteArray("a,b\n") << "-N-" << false << ""
                                                  << QStringList{"<null>|b||1"} << QStringList() << results(1, 0);
        QTest::newRow("two columns named: the later wins") << QByteArray("a,b,c\n") << "NNP" << false << ""
                                                           << QStringList{"<null>|b|c|1"} << QStringList() << results(1, 0);
        QTest::newRow("duplicates in the file, on the board, of an ID")
            << QByteArray("1,Ann,5\n2,ANN,6\n3,guest,7\nE1,Zed,8\n") << "INP" << false << ""
            << QStringList{"1|Ann|5|1"}
            << QStringList{Duplicate + "2,ANN,6", Duplicate + "3,guest,7", Duplicate + "E1,Zed,8"} << results(4, 3);
        QTest::newRow("blanks stripped from the line, not the fields")
            << QByteArray("   1,Ann,5  \n2,Bo b ,6\n") << "INP" << false << ""
            << QStringList{"1|Ann|5|1", "2|Bo b |6|0"} << QStringList{Refused + "FOREIGN KEY constraint failed."}
            << results(2, 1);
        QTest::newRow("trailing tab: an empty last field") << QByteArray("1\tAnn\t\n") << "INP" << true << ""
                                                           << QStringList{"1|Ann||1"} << QStringList() << results(1, 0);
        QTest::newRow("a column the line lacks") << QByteArray("1,Ann\n2,Bob,5\n") << "INP" << false << ""
                                                 << QStringList{"2|Bob|5|1"} << QStringList{"Subscript out of range"}
                                                 << results(2, 1);
        QTest::newRow("empty name field")
            << QByteArray("1,,5\n") << "INP" << false << "" << QStringList()
            << QStringList{Refused + "CHECK constraint failed: EmployeeTable.Name: zero-length text not allowed."}
            << results(1, 1);
        QTest::newRow("Windows line ends, none after the last")
            << QByteArray("1,Ann,5\r\n2,Bob,6\r\n3,Cy,7") << "INP" << false << ""
            << QStringList{"1|Ann|5|1", "2|Bob|6|1", "3|Cy|7|1"} << QStringList() << results(3, 0);
        QTest::newRow("carriage returns alone") << QByteArray("1,Ann,5\r2,Bob,6\r") << "INP" << false << ""
                                                << QStringList{"1|Ann|5|1", "2|Bob|6|1"} << QStringList() << results(2, 0);
        QTest::newRow("UTF-8 and Latin-1 lines in one file")
            << QByteArray("\xEF\xBB\xBF" "1,Jos\xC3\xA9,5\n2,Zo\xEB,6\n3,\x93Q\x94 Ltd,7\n4,\xC3\x28x,8\n") << "INP"
            << false << ""
            << QStringList{"1|José|5|1", "2|Zoë|6|1", "3|“Q” Ltd|7|1", "4|Ã(x|8|1"} << QStringList() << results(4, 0);
        QTest::newRow("NUL bytes") << QByteArray("1,Ann,5\n2,B\0ob,6\n", 17) << "INP" << false << "" << QStringList()
                                   << QStringList() << NotText;
        QTest::newRow("binary file") << binaryContent() << "INP" << false << "" << QStringList() << QStringList()
                                     << NotText;
        const QByteArray x10k = "2," + QByteArray(9998, 'x');
        QTest::newRow("line of 10 000 characters")
            << QByteArray("1,Ann,5\n" + x10k + "\n") << "INP" << false << "" << QStringList{"1|Ann|5|1"}
            << QStringList{QString("Line too long - " + x10k).left(250)} << results(2, 1);
        const QByteArray huge = QByteArray(99990, 'x') + ",y";
        QTest::newRow("line beyond 64 KiB, its comma at the end")
            << QByteArray("Ann\n" + huge) << "N--" << false << "" << QStringList{"<null>|Ann||1"}
            << QStringList{QString("Line too long - " + huge).left(250)} << results(2, 1);
        const QByteArray n250(250, 'n'), m251(251, 'm');
        QTest::newRow("names of 250 and 251 characters")
            << QByteArray("1," + n250 + "\n2," + m251 + "\n") << "IN-" << false << "" << QStringList()
            << QStringList{QString("Line too long - 1," + n250).left(250), QString("Line too long - 2," + m251).left(250)}
            << results(2, 2);
        QTest::newRow("no column chosen") << QByteArray("1,Ann,5\n") << "___" << false << "" << QStringList()
                                          << QStringList()
                                          << "TAVELLO - No Import Columns Selected|Please select the Import Columns for this file.";
        QTest::newRow("no user name column") << QByteArray("1,Ann,5\n") << "IP-" << false << "" << QStringList()
                                             << QStringList() << "User Name is Required.|User Name is a required field";
        QTest::newRow("template's group gone: user rows stay without settings")
            << QByteArray("1,Ann,5\n2,Bob,6\n") << "INP" << false << "group gone"
            << QStringList{"1|Ann|5|0", "2|Bob|6|0"}
            << QStringList{Refused + "FOREIGN KEY constraint failed.", Refused + "FOREIGN KEY constraint failed."}
            << results(2, 2);
    }
    void run()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, map);
        QFETCH(bool, tab);
        QFETCH(QString, board);
        QFETCH(QStringList, users);
        QFETCH(QStringList, log);
        QFETCH(QString, box);
        Console c([&](Database &db) { seedBoard(db, board); });
        const QString file = c.site().local("staff.csv");
        writeFile(file, content);
        Database other = c.other();
        const long long counted = UsersTest::counter(other);
        const Run r = runImport(c, file, map, tab);
        QCOMPARE(newUsers(other), users);
        QCOMPARE(logTexts(other), log);
        QCOMPARE(r.boxes, QStringList{box});
        const bool ran = box.startsWith("Import Results");
        QCOMPARE(r.windows, ran ? (QStringList{"frmImport01", "frmImport02"}) : QStringList{"frmImport01"});
        QCOMPARE(UsersTest::counter(other), counted);  // an import raises no counter
        QVERIFY(!gdbMain.inTransaction());
        if (ran) {
            const int lines = box.section(" - ", 1).section(' ', 0, 0).toInt();
            QCOMPARE(r.barMaximum, lines);
            QCOMPARE(r.barValue, lines);
            QCOMPARE(rows(other, "SELECT count(*) FROM ImportErrorLog WHERE ErrorDate = ? AND ErrorTime < 1",
                          {Import::dateNumber(QDate::currentDate())}),
                     QString::number(log.size()));
        }
    }

    // A new user's settings: the template's, stripped, in their columns;
    // fixed column orders; the rest as the schema gives them.
    void settingsFromTheTemplate_data()
    {
        QTest::addColumn<bool>("withTemplate");
        QTest::newRow("template with values") << true;
        QTest::newRow("no template row") << false;
    }
    void settingsFromTheTemplate()
    {
        QFETCH(bool, withTemplate);
        const QStringList copied = QString("AutoClearComments AutoLogIn AutoLogOut AutoMinimize RefreshRate "
                                           "StatusColumnWidth NameColumnWidth PhoneColumnWidth DueBackColumnWidth "
                                           "CommentsColumnWidth LastModifiedColumnWidth SortOrder SortKey ScreenTop "
                                           "ScreenLeft ScreenWidth ScreenHeight ListViewPopUp ChangeScreenPopUp "
                                           "UserSecurityLevel MinimizeSetting IconSize ToolBarText MinimizeOnClose "
                                           "DisplayTreeView FontBoldDisplay FontSizeDisplay")
                                       .split(' ');
        Console c([&](Database &db) {
            if (!withTemplate) {
                db.execute("DELETE FROM NewUserDefaultsTable");
                return;
            }
            db.execute("INSERT INTO GroupTable (GroupName) VALUES (?)", {"Sales"});
            db.execute("UPDATE NewUserDefaultsTable SET DefaultGroup = ?, StatusColumnOrder = 6, SortColumnName = ?, "
                       "SplitterPositionVertical = 11, SplitterPositionHorizontal = 12, Password = ?",
                       {"  Sales ", "Phone", "pw"});
            for (int i = 0; i < copied.size(); ++i)
                db.execute("UPDATE NewUserDefaultsTable SET " + copied[i] + " = ?", {i + 2});
        });
        const QString file = c.site().local("staff.txt");
        writeFile(file, "U1,Ann,555\n");
        runImport(c, file, "INP", false);
        Database other = c.other();
        const QMap<QString, QString> s = record(other, "SELECT * FROM EmployeeSettingsTable WHERE Name = 'Ann'");
        const QMap<QString, QString> d = record(other, "SELECT * FROM NewUserDefaultsTable");
        for (int i = 0; i < copied.size(); ++i)
            QVERIFY2(s.value(copied[i]) == (withTemplate ? QString::number(i + 2) : d.value(copied[i])),
                     qPrintable(copied[i]));
        QCOMPARE(rows(other, "SELECT DefaultGroup, StatusColumnOrder, NameColumnOrder, PhoneColumnOrder, "
                             "DueBackColumnOrder, CommentsColumnOrder, LastModifiedColumnOrder, SortColumnName, "
                             "SplitterPositionVertical, SplitterPositionHorizontal, Password, Phone "
                             "FROM EmployeeSettingsTable WHERE Name = 'Ann'"),
                 QString(withTemplate ? "Sales" : "Everyone") + "|1|2|3|4|5|6|Name|1860|3600|<null>|<null>");
        QCOMPARE(rows(other, "SELECT Status, StatusCode, ActiveFlag FROM EmployeeTable WHERE Name = 'Ann'"),
                 QString("Please Set|4|Not Set"));
        QCOMPARE(rows(other, "SELECT count(*) FROM NewUserDefaultsTable"), QString("1"));
    }

    // The file as it is when Next is pressed may not be the file counted.
    void fileChangedBeforeTheRun_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("users");
        QTest::addColumn<int>("barValue");  // the bar's maximum starts at the 2 lines counted
        QTest::addColumn<QString>("box");
        QTest::newRow("deleted") << "deleted" << QStringList() << 0 << "Import File Error|The Import File could not be opened:";
        QTest::newRow("grown: the bar makes room")
            << "grown" << QStringList{"1|Ann|5|1", "2|Bob|6|1", "3|Cy|7|1"} << 3 << results(3, 0);
        QTest::newRow("emptied") << "emptied" << QStringList() << 0 << results(0, 0);
    }
    void fileChangedBeforeTheRun()
    {
        QFETCH(QString, change);
        QFETCH(QStringList, users);
        QFETCH(int, barValue);
        QFETCH(QString, box);
        Console c;
        const QString file = c.site().local("staff.csv");
        writeFile(file, "1,Ann,5\n2,Bob,6\n");
        const Run r = runImport(c, file, "INP", false, [&] {
            if (change == "deleted")
                QFile::remove(file);
            else
                writeFile(file, change == "grown" ? "1,Ann,5\n2,Bob,6\n3,Cy,7\n" : "");
        });
        Database other = c.other();
        QCOMPARE(newUsers(other), users);
        QCOMPARE(r.barMaximum, 2);
        QCOMPARE(r.barValue, barValue);
        QCOMPARE(r.boxes.size(), 1);
        QCOMPARE(r.boxes[0].section("\r\n", 0, 0), box);
        QCOMPARE(logTexts(other), QStringList());
        QVERIFY(!gdbMain.inTransaction());
    }

    // A million lines: counted in full, the first five shown, the bar's end.
    void millionLines()
    {
        Console c;
        const QString file = c.site().local("big.txt");
        QByteArray content;
        content.reserve(12 * 1000000);
        for (int i = 0; i < 1000000; ++i)
            content += "U" + QByteArray::number(i) + ",N" + QByteArray::number(i) + '\n';
        writeFile(file, content);
        ImportFilePath = file;
        frmImport01 first;
        QCOMPARE(first.scan().lineTotal, 1000000);
        QVERIFY(first.scan().commaSeen && !first.scan().tabSeen && !first.scan().nulSeen);
        auto *preview = control<QListWidget>(&first, "ListViewImport");
        QCOMPARE(preview->count(), 5);
        QCOMPARE(preview->item(4)->text(), QString("U4,N4"));
        frmImport02 second;
        second.prepare(file, first.columnMap(), first.separator(), first.scan().lineTotal);
        QCOMPARE(control<QProgressBar>(&second, "ProgressBar")->maximum(), 1000000);
    }

    // Yes at the results shows the log, with the rows of earlier runs too.
    void resultsOfferTheLog()
    {
        Console c([](Database &db) {
            db.execute("INSERT INTO ImportErrorLog (ErrorDate, ErrorTime, ErrorText) VALUES (?, ?, ?)",
                       {38920.0, 0.5, "from before"});
        });
        const QString file = c.site().local("staff.csv");
        writeFile(file, "1,Ann,5\nX\n");
        const Run r = runImport(c, file, "INP", false, {}, {Msg::Yes});
        QCOMPARE(r.windows, (QStringList{"frmImport01", "frmImport02", "frmImportErrors"}));
        QCOMPARE(r.errorList.size(), 2);
        QCOMPARE(r.errorList[0], QString("2006-07-22|12:00:00|from before"));
        QVERIFY(r.errorList[1].endsWith("|" + Blank));
        QVERIFY(r.errorList[1].startsWith(QDate::currentDate().toString("yyyy-MM-dd") + "|"));
    }

    // The viewer: the log as the table holds it, Clear Log without a question.
    void errorLogViewer_data()
    {
        QTest::addColumn<QStringList>("stored");  // date|time|text, "null" for a Null
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("empty") << QStringList() << QStringList();
        QTest::newRow("two runs, a Null time and date")
            << QStringList{"38920|0.25|first run", "38921|null|second run", "null|0.5|third"}
            << QStringList{"2006-07-22|06:00:00|first run", "2006-07-23||second run", "|12:00:00|third"};
    }
    void errorLogViewer()
    {
        QFETCH(QStringList, stored);
        QFETCH(QStringList, shown);
        Console c([&](Database &db) {
            for (const QString &row : stored) {
                QVariantList values;
                for (const QString &v : row.split('|'))
                    values << (v == "null" ? QVariant() : QVariant(v));
                db.execute("INSERT INTO ImportErrorLog (ErrorDate, ErrorTime, ErrorText) VALUES (?, ?, ?)", values);
            }
        });
        frmImportErrors d;
        d.show();
        auto *list = control<QTreeWidget>(&d, "lvImpErrors");
        QStringList listed;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            listed << list->topLevelItem(i)->text(0) + '|' + list->topLevelItem(i)->text(1) + '|' +
                          list->topLevelItem(i)->text(2);
        QCOMPARE(listed, shown);
        d.cmdButtons_Click(1);
        QCOMPARE(list->topLevelItemCount(), 0);
        QVERIFY(d.isVisible());
        Database other = c.other();
        QCOMPARE(rows(other, "SELECT count(*) FROM ImportErrorLog"), QString("0"));
        QCOMPARE(Msg::transcript().size(), 0);
        d.cmdButtons_Click(0);
        QVERIFY(!d.isVisible());
    }
};

QTEST_MAIN(TestImport)
#include "tst_import.moc"
