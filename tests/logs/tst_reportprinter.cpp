// The shared print path: a report printed into a real PDF and read back.
#include "PdfText.h"

#include "platform/ReportPrinter.h"

#include <QApplication>
#include <QPrinter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Printed {
    int result = 0;  // what print() returned
    int pages = 0;   // what pdfinfo counts
    QString text;
};

Printed printToPdf(ReportPrinter::Report r, const QStringList &body, QPageLayout::Orientation orientation)
{
    static QTemporaryDir dir;
    const QString pdf = dir.filePath(QString("r%1.pdf").arg(QRandomGenerator::global()->generate()));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdf);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
    r.lineCount = body.size();
    r.body = [&](const ReportPrinter::LineSink &line) {
        for (const QString &l : body)
            if (!line(l))
                return;
    };
    Printed out;
    out.result = ReportPrinter::print(printer, r, nullptr);
    out.pages = PdfText::pages(pdf);
    out.text = PdfText::layout(pdf);
    return out;
}

}  // namespace

class TestReportPrinter : public QObject {
    Q_OBJECT

private slots:
    // Lines that fill several pages: the title once at the top, every line
    // once and in order, the pages as many as the lines need.
    void pagesBreakCleanly_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("points");
        QTest::addColumn<bool>("landscape");
        QTest::newRow("one page") << 12 << 10 << false;
        QTest::newRow("several pages, small print") << 700 << 7 << false;
        QTest::newRow("several pages, landscape") << 300 << 10 << true;
    }
    void pagesBreakCleanly()
    {
        QFETCH(int, lines);
        QFETCH(int, points);
        QFETCH(bool, landscape);
        ReportPrinter::Report r;
        r.documentName = "test";
        r.title = "\t Report Title ";
        r.titleFont = QFont(QApplication::font().family(), 15);
        r.bodyFont = ReportPrinter::fixedFont(points);
        QStringList body;
        for (int i = 0; i < lines; ++i)
            body << QString("line %1 end").arg(i, 5, 10, QChar('0'));
        const Printed p = printToPdf(r, body, landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
        QCOMPARE(p.result, p.pages);
        QStringList found = PdfText::lines(p.text);
        for (QString &l : found)
            l = l.trimmed();
        QCOMPARE(found.value(0), QString("Report Title"));
        QCOMPARE(found.count("Report Title"), 1);
        found.removeFirst();
        QCOMPARE(found, body);
        // Each page but the last is full: as many rows as the first page
        // holds after the title, give or take that one row.
        const QStringList perPage = p.text.split('\f', Qt::SkipEmptyParts);
        QVERIFY(perPage.size() >= p.pages);
        if (p.pages > 2) {
            const int second = PdfText::lines(perPage[1]).size();
            for (int i = 2; i < p.pages - 1; ++i)
                QCOMPARE(PdfText::lines(perPage[i]).size(), second);
            // The title takes the room of about one row.
            QVERIFY(PdfText::lines(perPage[0]).size() <= second + 1);
            QVERIFY(PdfText::lines(perPage[0]).size() >= second - 2);
        }
    }

    // Fixed columns are set smaller until the widest line fits; prose wraps
    // at word ends and loses nothing.
    void tooWideLines_data()
    {
        QTest::addColumn<int>("fitColumns");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("expected");
        const QString columns = QString("A").repeated(100) + " " + QString("B").repeated(100) + " END";
        QTest::newRow("fixed columns fit on one row") << columns.size() << columns << QStringList{columns};
        QStringList words;
        for (int i = 0; i < 60; ++i)
            words << QString("word%1").arg(i);
        QTest::newRow("prose wraps") << 0 << words.join(' ') << words;
    }
    void tooWideLines()
    {
        QFETCH(int, fitColumns);
        QFETCH(QString, line);
        QFETCH(QStringList, expected);
        ReportPrinter::Report r;
        r.titleFont = QFont(QApplication::font().family(), 15);
        r.bodyFont = ReportPrinter::fixedFont(10);
        r.fitColumns = fitColumns;
        const Printed p = printToPdf(r, {line}, QPageLayout::Portrait);
        QCOMPARE(p.pages, 1);
        const QStringList found = PdfText::lines(p.text);
        if (fitColumns > 0) {
            QCOMPARE(found.size(), 1);
            QCOMPARE(found[0].simplified(), line);
        } else {
            QVERIFY(found.size() > 1);
            QCOMPARE(found.join(' ').simplified().split(' '), expected);
        }
    }

    // A printer that cannot start (a PDF in a folder that is not there).
    void printerFails()
    {
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName("/nonexistent-folder/x.pdf");
        ReportPrinter::Report r;
        r.body = [](const ReportPrinter::LineSink &line) { line("x"); };
        QCOMPARE(ReportPrinter::print(printer, r, nullptr), -1);
    }
};

QTEST_MAIN(TestReportPrinter)
#include "tst_reportprinter.moc"
