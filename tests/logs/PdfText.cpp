#include "PdfText.h"

#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace PdfText {

namespace {
QString run(const QString &program, const QStringList &args)
{
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(120000) || p.exitCode() != 0)
        return QString();
    return QString::fromUtf8(p.readAllStandardOutput());
}
}  // namespace

QString layout(const QString &pdf) { return run("pdftotext", {"-layout", "-enc", "UTF-8", pdf, "-"}); }

int pages(const QString &pdf)
{
    const auto m = QRegularExpression("^Pages:\\s+(\\d+)$", QRegularExpression::MultilineOption)
                       .match(run("pdfinfo", {pdf}));
    return m.hasMatch() ? m.captured(1).toInt() : -1;
}

QStringList fixedPitchRows(const QString &pdf)
{
    struct Word {
        double x0, y0, x1;
        QString text;
        double pitch() const { return (x1 - x0) / std::max<qsizetype>(1, text.size()); }
    };
    QList<QList<Word>> pages;
    static const QRegularExpression word(
        "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" yMax=\"[\\d.]+\">(.*)</word>");
    for (const QString &line : run("pdftotext", {"-bbox", "-enc", "UTF-8", pdf, "-"}).split('\n')) {
        if (line.contains("<page "))
            pages.append(QList<Word>());
        const auto m = word.match(line);
        if (!m.hasMatch() || pages.isEmpty())
            continue;
        QString text = m.captured(4);
        text.replace("&lt;", "<").replace("&gt;", ">").replace("&quot;", "\"").replace("&apos;", "'").replace("&amp;", "&");
        pages.last().append({m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(), text});
    }
    // The body's pitch: what most words have.
    QList<double> pitches;
    for (const auto &page : pages)
        for (const Word &w : page)
            pitches << w.pitch();
    if (pitches.isEmpty())
        return {};
    std::sort(pitches.begin(), pitches.end());
    const double pitch = pitches[pitches.size() / 2];
    double left = 1e9;
    for (const auto &page : pages)
        for (const Word &w : page)
            if (w.pitch() < pitch * 1.2)
                left = std::min(left, w.x0);

    QStringList rows;
    for (QList<Word> page : pages) {
        std::stable_sort(page.begin(), page.end(), [](const Word &a, const Word &b) {
            return std::abs(a.y0 - b.y0) > 0.5 ? a.y0 < b.y0 : a.x0 < b.x0;
        });
        for (qsizetype i = 0; i < page.size();) {
            qsizetype end = i;
            while (end < page.size() && std::abs(page[end].y0 - page[i].y0) <= 0.5)
                ++end;
            QString row;
            for (qsizetype k = i; k < end; ++k) {
                const Word &w = page[k];
                if (w.pitch() >= pitch * 1.2) {
                    row += (row.isEmpty() ? "" : " ") + w.text;
                    continue;
                }
                const int column = int(std::lround((w.x0 - left) / pitch));
                if (row.size() < column)
                    row += QString(column - row.size(), ' ');
                else if (!row.isEmpty())
                    row += ' ';
                row += w.text;
            }
            rows << row;
            i = end;
        }
    }
    return rows;
}

QStringList lines(const QString &text)
{
    QStringList out;
    for (QString line : text.split('\n')) {
        line.remove('\f');
        while (line.endsWith(' '))
            line.chop(1);
        if (!line.isEmpty())
            out << line;
    }
    return out;
}

}  // namespace PdfText
