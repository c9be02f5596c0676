// tavello-bench print [--quick] [--rows N]
//
// The complete transaction log of N rows printed from frmPrint: OK, the
// preview drawn, then Print to a PDF file (offscreen). Reports the time of
// the preview and of the print, and the pages of the PDF. The reference is
// the same report lines, already in memory, drawn onto a PDF through a bare
// QPdfWriter and QPainter with the same fonts and page breaks. Ends with
// "ratio <print to PDF / reference>".
#include "core/Global.h"
#include "logs/TransLogStore.h"
#include "logs/frmPrint.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/ReportPrinter.h"
#include "store/CreateDB.h"
#include "store/modUpdateDatabaseStructure.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace {

bool fillLog(const QString &file, long long rows)
{
    {
        Database db = Database::open(file);
        updateDatabaseStructure(db);
    }
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(file).constData(), &db);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(db, sqlite3_close);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO TransactionLogTable (Name, Status, DueBack, Comments, LastModified, NetworkLogonID, "
                       "ComputerName) VALUES (?, ?, 'Tomorrow', ?, ?, ?, ?)",
                       -1, &st, nullptr);
    bool ok = true;
    for (long long i = 0; i < rows && ok; ++i) {
        const std::string name = "Person " + std::to_string(i % 3000);
        const std::string comment = "Comment number " + std::to_string(i) + " for the printed report";
        char when[32];
        std::snprintf(when, sizeof when, "2006-%02lld-%02lld %02lld:%02lld:00", 1 + i % 12, 1 + i % 28, i % 24, i % 60);
        const std::string logon = "user" + std::to_string(i % 3000);
        const std::string pc = "PC-" + std::to_string(i % 400);
        sqlite3_bind_text(st, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, i % 2 ? "In" : "Out", -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 3, comment.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 4, when, -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 5, logon.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 6, pc.c_str(), -1, SQLITE_TRANSIENT);
        ok = sqlite3_step(st) == SQLITE_DONE;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, ok ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    return ok;
}

int pdfPages(const QString &pdf)
{
    QFile f(pdf);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray all = f.readAll();
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page[^s]"));
    return int(QString::fromLatin1(all).count(page));
}

// The reference: the lines drawn straight onto a PDF, a page when full.
double referenceMs(const QStringList &lines, const QString &pdf, const QFont &titleFont, const QFont &bodyFont)
{
    QElapsedTimer t;
    t.start();
    QPdfWriter writer(pdf);
    writer.setResolution(1200);
    writer.setPageSize(QPageSize(QPageSize::A4));
    QPainter p(&writer);
    const qreal height = writer.pageLayout().paintRectPixels(writer.resolution()).height();
    const qreal width = writer.pageLayout().paintRectPixels(writer.resolution()).width();
    QFont body = bodyFont;
    const qreal wide = QFontMetricsF(body, &writer).horizontalAdvance(QString(TransLog::reportLineLength(), QLatin1Char('M')));
    if (wide > width)
        body.setPointSizeF(body.pointSizeF() * width / wide * 0.995);
    p.setFont(titleFont);
    qreal y = QFontMetricsF(titleFont, &writer).lineSpacing();
    p.drawText(QPointF(0, QFontMetricsF(titleFont, &writer).ascent()), QStringLiteral("Transaction Log"));
    p.setFont(body);
    const QFontMetricsF fm(body, &writer);
    for (const QString &line : lines) {
        if (y + fm.lineSpacing() > height) {
            writer.newPage();
            y = 0;
        }
        p.drawText(QPointF(0, y + fm.ascent()), line);
        y += fm.lineSpacing();
    }
    p.end();
    return double(t.nsecsElapsed()) / 1e6;
}

}  // namespace

int runPrintBench(int argc, char **argv)
{
    long long rows = 100000;
    bool quick = false;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--rows") == 0 && i + 1 < argc)
            rows = std::max(1LL, std::atoll(argv[++i]));
    }
    if (quick)
        rows = 2000;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);

    QTemporaryDir dir;
    const QString database = dir.filePath(QStringLiteral("tavello.mdb"));
    if (CreateDatabase(database) != 0 || !fillLog(database, rows)) {
        std::fprintf(stderr, "print: could not build the log\n");
        return 2;
    }
    gdbMain = Database::open(database);
    const QString ourPdf = dir.filePath(QStringLiteral("report.pdf"));
    QPrinter &printer = ReportPrinter::printer();
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Portrait);

    double previewMs = -1, printMs = -1;
    int previewPages = -1;
    {
        frmPrint window;
        QElapsedTimer t;
        Modal::setHandler([&](QDialog *d) {
            auto *preview = d->findChild<QPrintPreviewWidget *>();
            if (!preview) {
                d->reject();
                return;
            }
            previewMs = double(t.nsecsElapsed()) / 1e6;
            previewPages = preview->pageCount();
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(ourPdf);
            QElapsedTimer p;
            p.start();
            preview->print();
            printMs = double(p.nsecsElapsed()) / 1e6;
            d->accept();
        });
        t.start();
        window.CommandPrintOK_Click();
        Modal::setHandler({});
    }
    const int pages = pdfPages(ourPdf);
    if (printMs < 0 || pages <= 0 || pages != previewPages || !Msg::transcript().isEmpty()) {
        std::fprintf(stderr, "print: the report was not printed (%d pages, preview %d)\n", pages, previewPages);
        return 1;
    }

    // The same lines, read beforehand, for the reference.
    QStringList lines{TransLog::reportHeading()};
    for (Recordset rs = gdbMain.query(QStringLiteral("SELECT %1 FROM TransactionLogTable ORDER BY Name, LastModified")
                                          .arg(TransLog::Fields.join(QStringLiteral(", "))));
         !rs.eof(); rs.moveNext()) {
        QStringList values;
        for (int i = 0; i < 7; ++i)
            values << rs.value(i).toString();
        lines << TransLog::reportLine(values);
    }
    const double ref = referenceMs(lines, dir.filePath(QStringLiteral("reference.pdf")),
                                   QFont(QApplication::font().family(), 15), ReportPrinter::fixedFont(7));
    std::printf("print: complete log of %lld rows, A4 portrait, 7 points\n", rows);
    std::printf("preview drawn in %.1f s, %d pages\n", previewMs / 1000.0, previewPages);
    std::printf("printed to PDF in %.1f s, %d pages, %.1f MB\n", printMs / 1000.0, pages,
                double(QFileInfo(ourPdf).size()) / (1024.0 * 1024.0));
    std::printf("reference, the lines drawn by a bare QPdfWriter: %.1f s\n", ref / 1000.0);
    std::printf("ratio %.2f\n", printMs / ref);
    gdbMain.close();
    return 0;
}
