#include "platform/ReportPrinter.h"

#include "platform/Modal.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>
#include <QStandardPaths>
#include <QTextLayout>

#include <cmath>
#include <memory>

namespace {

// How often the progress bar moves and events run, in lines.
constexpr int ProgressStep = 256;

QString defaultPdfFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QDir::homePath();
    return folder;
}

// Everything one rendering needs to put lines on pages.
class PageWriter {
public:
    PageWriter(QPrinter &printer, QPainter &painter) : m_printer(printer), m_painter(painter)
    {
        const QRectF page = printer.pageRect(QPrinter::DevicePixel);
        m_width = page.width();
        m_height = page.height();
    }

    int pages() const { return m_pages; }
    bool failed() const { return m_failed; }
    qreal width() const { return m_width; }

    void setFont(const QFont &font)
    {
        m_font = font;
        m_painter.setFont(font);
        const QFontMetricsF fm(font, &m_printer);
        m_ascent = fm.ascent();
        m_lineSpacing = fm.lineSpacing();
        m_tabWidth = fm.horizontalAdvance(QLatin1Char(' ')) * 8;
    }

    // One printed row: on the next page when this one is full.
    void row(const QString &text)
    {
        if (m_failed)
            return;
        if (m_y > 0 && m_y + m_lineSpacing > m_height) {
            if (!m_printer.newPage()) {
                m_failed = true;
                return;
            }
            ++m_pages;
            m_y = 0;
        }
        if (text.contains(QLatin1Char('\t'))) {
            // Each tab moves on to the next stop, eight blanks apart.
            qreal x = 0;
            const QStringList parts = text.split(QLatin1Char('\t'));
            const QFontMetricsF fm(m_font, &m_printer);
            for (qsizetype i = 0; i < parts.size(); ++i) {
                if (i > 0)
                    x = (std::floor(x / m_tabWidth + 1e-9) + 1) * m_tabWidth;
                if (!parts[i].isEmpty())
                    m_painter.drawText(QPointF(x, m_y + m_ascent), parts[i]);
                x += fm.horizontalAdvance(parts[i]);
            }
        } else if (!text.isEmpty()) {
            m_painter.drawText(QPointF(0, m_y + m_ascent), text);
        }
        m_y += m_lineSpacing;
    }

    // A line that may be wider than the page: broken at word ends, or
    // wherever it must be, into several rows.
    void wrapped(const QString &text)
    {
        const QFontMetricsF fm(m_font, &m_printer);
        if (text.isEmpty() || fm.horizontalAdvance(text) <= m_width) {
            row(text);
            return;
        }
        QTextLayout layout(text, m_font, &m_printer);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTabStopDistance(m_tabWidth);
        layout.setTextOption(option);
        QStringList parts;
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(m_width);
            parts << text.mid(line.textStart(), line.textLength());
        }
        layout.endLayout();
        for (const QString &part : parts)
            row(part);
    }

private:
    QPrinter &m_printer;
    QPainter &m_painter;
    QFont m_font;
    qreal m_width = 0;
    qreal m_height = 0;
    qreal m_y = 0;
    qreal m_ascent = 0;
    qreal m_lineSpacing = 1;
    qreal m_tabWidth = 0;
    int m_pages = 1;
    bool m_failed = false;
};

// The body font, smaller where `columns` characters would not fit across.
QFont fittedBodyFont(const ReportPrinter::Report &report, QPrinter &printer, qreal pageWidth)
{
    QFont font = report.bodyFont;
    if (report.fitColumns <= 0)
        return font;
    const qreal width = QFontMetricsF(font, &printer).horizontalAdvance(QString(report.fitColumns, QLatin1Char('M')));
    if (width > pageWidth && width > 0)
        font.setPointSizeF(font.pointSizeF() * pageWidth / width * 0.995);
    return font;
}

}  // namespace

namespace ReportPrinter {

QFont fixedFont(qreal points)
{
    QFont font(QStringLiteral("Courier New"));
    font.setPointSizeF(points);
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    if (!QFontInfo(font).fixedPitch()) {
        const QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setFamily(system.family());
    }
    return font;
}

QPrinter &printer()
{
    static std::unique_ptr<QPrinter> shared;
    if (!shared) {
        shared = std::make_unique<QPrinter>(QPrinter::HighResolution);
        if (QPrinterInfo::availablePrinterNames().isEmpty()) {
            shared->setOutputFormat(QPrinter::PdfFormat);
            shared->setOutputFileName(QDir(defaultPdfFolder()).filePath(QStringLiteral("report.pdf")));
        }
    }
    return *shared;
}

bool setup(QWidget *parent)
{
    QPrintDialog dialog(&printer(), parent);
    return Modal::show(&dialog) == QDialog::Accepted;
}

bool preview(QWidget *parent, const Report &report)
{
    QPrinter &p = printer();
    p.setDocName(report.documentName);
    if (p.outputFormat() == QPrinter::PdfFormat && !report.documentName.isEmpty()) {
        // A PDF file is suggested under the report's name, beside the last one.
        const QString folder = p.outputFileName().isEmpty() ? defaultPdfFolder()
                                                            : QFileInfo(p.outputFileName()).absolutePath();
        p.setOutputFileName(QDir(folder).filePath(report.documentName + QStringLiteral(".pdf")));
    }
    QPrintPreviewDialog dialog(&p, parent);
    dialog.setObjectName(QStringLiteral("PrintPreview"));
    if (!report.caption.isEmpty())
        dialog.setWindowTitle(report.caption);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter *target) { print(*target, report, &dialog); });
    return Modal::show(&dialog) == QDialog::Accepted;
}

int print(QPrinter &printer, const Report &report, QWidget *parent)
{
    if (!report.documentName.isEmpty())
        printer.setDocName(report.documentName);
    QPainter painter;
    if (!painter.begin(&printer))
        return -1;

    std::unique_ptr<QProgressDialog> progress;
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        progress = std::make_unique<QProgressDialog>(parent);
        progress->setObjectName(QStringLiteral("PrintProgress"));
        progress->setWindowTitle(report.caption.isEmpty() ? report.documentName : report.caption);
        progress->setLabelText(QStringLiteral("Printing %1...").arg(report.documentName));
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(500);
        progress->setAutoReset(false);
        progress->setAutoClose(false);
        progress->setRange(0, report.lineCount > 0 && report.lineCount < INT_MAX ? int(report.lineCount) : 0);
        progress->setValue(0);
    }

    PageWriter writer(printer, painter);
    writer.setFont(report.titleFont);
    for (const QString &line : report.title.split(QLatin1Char('\n')))
        writer.row(line);
    writer.setFont(fittedBodyFont(report, printer, writer.width()));

    qint64 done = 0;
    bool cancelled = false;
    const bool wrap = report.fitColumns <= 0;
    const LineSink sink = [&](const QString &line) {
        if (cancelled || writer.failed())
            return false;
        if (wrap)
            writer.wrapped(line);
        else
            writer.row(line);
        if (++done % ProgressStep == 0 && progress) {
            if (progress->maximum() > 0)
                progress->setValue(int(std::min<qint64>(done, progress->maximum())));
            else
                QCoreApplication::processEvents();
            cancelled = progress->wasCanceled();
        }
        return !cancelled && !writer.failed();
    };
    if (report.body)
        report.body(sink);
    painter.end();
    if (progress)
        progress->close();
    if (writer.failed())
        return -1;
    return cancelled ? 0 : writer.pages();
}

}  // namespace ReportPrinter
