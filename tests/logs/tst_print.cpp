// Printing the transaction log: the dialog's rules, and the report printed
// from the preview into a real PDF and read back.
#include "LogsTest.h"
#include "PdfText.h"

#include "logs/TransLogStore.h"
#include "logs/frmPrint.h"
#include "platform/Modal.h"
#include "platform/ReportPrinter.h"

#include <QComboBox>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace LogsTest;

namespace {

struct Preview {
    QStringList windows;
    int pagesShown = -1;
    QString pdf;
};

// OK pressed with the preview driven as a person would: look, then print
// to a PDF file (or close it when `print` is false).
Preview pressOk(frmPrint &d, const QString &pdf, bool print = true)
{
    Preview p;
    Modal::setHandler([&](QDialog *dialog) {
        p.windows << dialog->objectName();
        auto *widget = dialog->findChild<QPrintPreviewWidget *>();
        if (!widget) {
            dialog->reject();
            return;
        }
        p.pagesShown = widget->pageCount();
        if (!print) {
            dialog->reject();
            return;
        }
        ReportPrinter::printer().setOutputFormat(QPrinter::PdfFormat);
        ReportPrinter::printer().setOutputFileName(pdf);
        widget->print();
        dialog->accept();
    });
    d.CommandPrintOK_Click();
    Modal::setHandler({});
    p.pdf = pdf;
    return p;
}

void choose(frmPrint &d, bool forUser, const QString &user, const QString &size)
{
    control<QRadioButton>(&d, forUser ? "OptionPrintReportType_1" : "OptionPrintReportType_0")->setChecked(true);
    if (!user.isEmpty())
        control<QComboBox>(&d, "ComboUserNames")->setCurrentText(user);
    if (!size.isEmpty())
        control<QComboBox>(&d, "comboFontSize")->setCurrentText(size);
}

QString rightTrimmed(QString s)
{
    while (s.endsWith(' '))
        s.chop(1);
    return s;
}

}  // namespace

class TestPrint : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Printed on A4, upright, as a site without a printer set up would.
        ReportPrinter::printer().setPageSize(QPageSize(QPageSize::A4));
        ReportPrinter::printer().setPageOrientation(QPageLayout::Portrait);
    }

    // The user list and sizes offered, and when OK may be pressed.
    void okEnabling_data()
    {
        QTest::addColumn<bool>("forUser");
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("listEnabled");
        QTest::addColumn<bool>("okEnabled");
        QTest::newRow("complete log") << false << "" << false << true;
        QTest::newRow("for a user, none chosen") << true << "" << true << false;
        QTest::newRow("for a user, Bob chosen") << true << "Bob" << true << true;
        QTest::newRow("for a user, back to the first entry") << true << "Select User Name" << true << false;
        QTest::newRow("back to the complete log") << false << "Select User Name" << false << true;
    }
    void okEnabling()
    {
        QFETCH(bool, forUser);
        QFETCH(QString, user);
        QFETCH(bool, listEnabled);
        QFETCH(bool, okEnabled);
        Console c([](Database &db) { addUsers(db, {"bob=1", "Ann=2"}); });
        frmPrint d;
        auto *users = control<QComboBox>(&d, "ComboUserNames");
        QStringList offered;
        for (int i = 0; i < users->count(); ++i)
            offered << users->itemText(i);
        QCOMPARE(offered, (QStringList{"Select User Name", "Ann", "bob", "Guest"}));
        auto *sizes = control<QComboBox>(&d, "comboFontSize");
        QCOMPARE(sizes->count(), 9);
        QCOMPARE(sizes->itemText(0), QString("Select Font Point Size"));
        QCOMPARE(sizes->itemText(8), QString("10"));
        if (!user.isEmpty() && user != "Select User Name") {
            choose(d, true, "bob", "");
            QCOMPARE(control<QPushButton>(&d, "CommandPrintOK")->isEnabled(), true);
        }
        choose(d, forUser, user, "");
        QCOMPARE(users->isEnabled(), listEnabled);
        QCOMPARE(control<QPushButton>(&d, "CommandPrintOK")->isEnabled(), okEnabled);
    }

    // An empty board gets a row of defaults before the list is filled.
    void emptyBoardGetsAGuest()
    {
        Console c;
        Database other = c.other();
        other.execute("DELETE FROM EmployeeTable");
        frmPrint d;
        QCOMPARE(control<QComboBox>(&d, "ComboUserNames")->itemText(1), QString("Guest"));
        QCOMPARE(rows(other, "SELECT Name, Status FROM EmployeeTable"), QString("Guest|Please Set"));
    }

    // No rows to print: the message, the dialog stays, no preview.
    void nothingToPrint_data()
    {
        QTest::addColumn<bool>("forUser");
        QTest::addColumn<QString>("message");
        QTest::newRow("complete log") << false << "There are no records in the Transaction Log.";
        QTest::newRow("a user without rows") << true << "There are no records in the Transaction Log for the selected user.";
    }
    void nothingToPrint()
    {
        QFETCH(bool, forUser);
        QFETCH(QString, message);
        Console c([&](Database &db) {
            addUsers(db, {"Ann=1"});
            seedLog(db, forUser ? generatedRows(3, {"Bob"}) : QList<LogRow>());
        });
        frmPrint d;
        d.show();
        choose(d, forUser, "Ann", "");
        const Preview p = pressOk(d, QString());
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + '|' + message});
        QCOMPARE(p.windows, QStringList());
        QVERIFY(d.isVisible());
    }

    // The report in the PDF: title, the heading once, each field in its
    // column, cut at its width; one user's rows in order of LastModified.
    void printedReport_data()
    {
        QTest::addColumn<bool>("forUser");
        QTest::addColumn<QString>("size");
        QTest::addColumn<QStringList>("names");  // Name of each printed row, in order
        QTest::newRow("complete log, default size") << false << "" << QStringList{"Ann", "Ann", "Ann", "Bob", "bob"};
        // "Bob" is "bob" to the store, as it was to the board's engine.
        QTest::newRow("one user, 10 points") << true << "10" << QStringList{"Bob", "bob"};
    }
    void printedReport()
    {
        QFETCH(bool, forUser);
        QFETCH(QString, size);
        QFETCH(QStringList, names);
        const QString longComment = QString("c").repeated(49) + "XYZ";  // cut after 50
        const QList<LogRow> log{
            {"bob", "Out", "Tomorrow", "second of bob", "2006-07-02 09:00:00", "net1", "PC1"},
            {"Ann", "In", "<null>", longComment, "2006-07-03 08:00:00", "net2", "PC2"},
            {"Ann", "Busy", "3 pm", "first of Ann", "2006-07-01 08:00:00", "net3", "PC3"},
            {"Bob", "In", "", "first of bob", "2006-07-01 09:00:00", "n", "<null>"},
            {"Ann", "Out", "", "middle, with\r\na break", "2006-07-02 08:00:00", "net5", "PC5"},
        };
        Console c([&](Database &db) {
            addUsers(db, {"bob=1", "Ann=2"});
            seedLog(db, log);
        });
        frmPrint d;
        d.show();
        choose(d, forUser, forUser ? "bob" : "", size);
        QCOMPARE(d.fontSize(), size.isEmpty() ? 7 : size.toInt());
        QTemporaryDir dir;
        const Preview p = pressOk(d, dir.filePath("report.pdf"));
        QCOMPARE(p.windows, QStringList{"PrintPreview"});
        QCOMPARE(p.pagesShown, 1);
        QCOMPARE(PdfText::pages(p.pdf), 1);
        QVERIFY(!d.isVisible());  // printed: the dialog is done

        QStringList lines = PdfText::fixedPitchRows(p.pdf);
        QVERIFY(lines.size() >= 2);
        QVERIFY2(QRegularExpression("^Transaction Log \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$").match(lines[0]).hasMatch(),
                 qPrintable(lines[0]));
        lines.removeFirst();
        QCOMPARE(lines.count(rightTrimmed(TransLog::reportHeading())), 1);
        QCOMPARE(lines[0], rightTrimmed(TransLog::reportHeading()));
        lines.removeFirst();
        QStringList printedNames;
        for (const QString &l : lines)
            printedNames << l.left(30).trimmed();
        QCOMPARE(printedNames, names);
        // Each row exactly as the fixed columns set it.
        QList<LogRow> expected;
        for (const LogRow &row : log)
            if (!forUser || row[0].compare("bob", Qt::CaseInsensitive) == 0)
                expected << row;
        std::stable_sort(expected.begin(), expected.end(), [](const LogRow &a, const LogRow &b) {
            const int byName = a[0].compare(b[0], Qt::CaseInsensitive);
            return byName != 0 ? byName < 0 : a[4] < b[4];
        });
        for (int i = 0; i < expected.size(); ++i) {
            LogRow values = expected[i];
            for (QString &v : values)
                if (v == "<null>")
                    v.clear();
            QCOMPARE(lines[i], rightTrimmed(TransLog::reportLine(values)));
        }
        if (!forUser) {
            const QString cut = lines.filter("cccc").value(0);
            QVERIFY(cut.contains(QString("c").repeated(49) + "X "));
            QVERIFY(!cut.contains("XYZ"));
        }
    }

    // Closing the preview prints nothing and leaves the dialog open.
    void previewClosed()
    {
        Console c([&](Database &db) { seedLog(db, generatedRows(3)); });
        frmPrint d;
        d.show();
        QTemporaryDir dir;
        const Preview p = pressOk(d, dir.filePath("never.pdf"), false);
        QCOMPARE(p.pagesShown, 1);
        QVERIFY(!QFile::exists(dir.filePath("never.pdf")));
        QVERIFY(d.isVisible());
    }

    // Printer Setup is Qt's printer dialog on the printer reports go to.
    void printerSetup()
    {
        Console c;
        frmPrint d;
        QPrinter *seen = nullptr;
        Modal::setHandler([&](QDialog *dialog) {
            if (auto *setup = qobject_cast<QPrintDialog *>(dialog))
                seen = setup->printer();
            dialog->reject();
        });
        d.CommandPrintSetup_Click();
        Modal::setHandler({});
        QCOMPARE(seen, &ReportPrinter::printer());
    }
};

QTEST_MAIN(TestPrint)
#include "tst_print.moc"
