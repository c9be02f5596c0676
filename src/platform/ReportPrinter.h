#pragma once

#include <QFont>
#include <QString>

#include <functional>

class QPrinter;
class QWidget;

// The console's one way to print. A window describes its report: a title
// printed once at the top, and body lines that it produces on demand. The
// printer is shared for the run, as Printer Setup leaves it; Qt's printer
// dialog offers the system's printers and "Print to File (PDF)", so a
// report can always be kept as a PDF file. Long reports show a progress
// dialog that keeps the window alive and can cancel; pages break when full.
//
// From another window:
//
//     ReportPrinter::Report r;
//     r.caption = gstrAppTitle + "Print Messages";
//     r.title = "Messages";
//     r.bodyFont = ReportPrinter::fixedFont(8);  // any font will do
//     r.lineCount = rows;                        // the progress bar's end; 0 unknown
//     r.body = [&](const ReportPrinter::LineSink &line) {
//         for (Recordset rs = gdbMain.query(sql); !rs.eof(); rs.moveNext())
//             if (!line(rs.text("MessageBody")))
//                 return;                        // cancelled
//     };
//     ReportPrinter::preview(this, r);           // true once it was printed
//
// `body` runs once for each rendering (the preview, then the print from it),
// so it reads its rows afresh each time and keeps none. A line wider than
// the page wraps onto the next, unless `fitColumns` is set: then the body
// font is made smaller until that many characters fit across the page, for
// reports set in fixed columns. A "Printer Setup" button calls setup().
namespace ReportPrinter {

// One body line; false when the printing was cancelled and `body` should stop.
using LineSink = std::function<bool(const QString &line)>;

struct Report {
    QString caption;       // the preview window's caption
    QString documentName;  // the print job's name, and the PDF file's suggested name
    QString title;         // may hold tabs and line breaks
    QFont titleFont;
    QFont bodyFont;
    int fitColumns = 0;    // see above; 0: long lines wrap
    qint64 lineCount = 0;
    std::function<void(const LineSink &line)> body;
};

// Courier New at `points`, or the system's fixed-pitch font where it is missing.
QFont fixedFont(qreal points);

// The printer all reports go to. Where the system has no printer at all, it
// starts as a PDF file in the user's documents folder.
QPrinter &printer();

// Qt's printer dialog on printer(); true when it was accepted.
bool setup(QWidget *parent);

// Qt's print preview of the report on printer(); its Print button leads to
// the printer dialog and prints. True when the report was printed.
bool preview(QWidget *parent, const Report &report);

// Prints the report straight onto `printer` (a PDF file when its output
// format is PdfFormat), with a progress dialog over `parent`. Returns the
// number of pages, 0 when cancelled, -1 when the printer would not start.
int print(QPrinter &printer, const Report &report, QWidget *parent);

}  // namespace ReportPrinter
