#include "PdfText.h"

#include <QProcess>
#include <QRegularExpression>

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
