#include "logs/TransLogStore.h"

#include "platform/Database.h"

#include <QFileInfo>
#include <QSaveFile>

namespace TransLog {

const QStringList Fields{
    QStringLiteral("Name"),     QStringLiteral("Status"),       QStringLiteral("DueBack"),
    QStringLiteral("Comments"), QStringLiteral("LastModified"), QStringLiteral("NetworkLogonID"),
    QStringLiteral("ComputerName"),
};

const int ReportWidths[7] = {30, 15, 30, 50, 40, 20, 20};

namespace {

const QStringList Headings{
    QStringLiteral("Name"),          QStringLiteral("Status"),           QStringLiteral("Due Back"),
    QStringLiteral("Comments"),      QStringLiteral("Last Modified"),    QStringLiteral("Network Logon ID"),
    QStringLiteral("Computer Name"),
};

constexpr qsizetype FlushAt = 1 << 20;
constexpr qint64 ProgressEvery = 4096;

QString fieldList() { return Fields.join(QStringLiteral(", ")); }

[[noreturn]] void fileFailure(const QString &path, const QString &reason)
{
    throw StoreError(err::PathFileAccess, QStringLiteral("Could not write '%1': %2").arg(path, reason));
}

}  // namespace

QVector<QStringList> newestRows(Database &db, int limit)
{
    QVector<QStringList> rows;
    Recordset rs = db.query(
        QStringLiteral("SELECT %1 FROM TransactionLogTable ORDER BY LastModified DESC LIMIT ?").arg(fieldList()),
        {limit});
    for (; !rs.eof(); rs.moveNext()) {
        QStringList row;
        for (int i = 0; i < Fields.size(); ++i)
            row << rs.value(i).toString();  // Null: an empty text
        rows << row;
    }
    return rows;
}

bool loggingFlag(Database &db)
{
    return db.scalar(QStringLiteral("SELECT TransactionLogFlag FROM GlobalSettingsTable ORDER BY rowid LIMIT 1")).toInt() != 0;
}

void setLoggingFlag(Database &db, bool on)
{
    Recordset rs = db.openTable(QStringLiteral("GlobalSettingsTable"), QString(), {}, QStringLiteral("rowid"));
    rs.edit({{QStringLiteral("TransactionLogFlag"), on ? 1 : 0}});
    rs.close();
}

void clearLog(Database &db) { db.execute(QStringLiteral("DELETE FROM TransactionLogTable")); }

QString exportFileName(const QDate &day)
{
    return QStringLiteral("TAVELLO-EXPORT-") + day.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".CSV");
}

qint64 exportLog(Database &db, const QString &localPath, const std::function<void(qint64)> &progress)
{
    QSaveFile file(localPath);
    if (!file.open(QIODevice::WriteOnly))
        fileFailure(localPath, file.errorString());
    QByteArray out;
    out.reserve(FlushAt + 64 * 1024);
    bool writeFailed = false;
    qint64 seen = 0;
    const qint64 rows = db.forEachTextRow(
        QStringLiteral("SELECT %1 FROM TransactionLogTable").arg(fieldList()), {},
        [&](const QByteArrayView *fields, int count) {
            for (int i = 0; i < count; ++i) {
                if (i > 0)
                    out += ',';
                out += '"';
                const QByteArrayView v = fields[i];
                if (v.contains('"')) {
                    for (const char c : v) {
                        if (c == '"')
                            out += '"';
                        out += c;
                    }
                } else {
                    out.append(v);
                }
                out += '"';
            }
            out += "\r\n";
            if (out.size() >= FlushAt) {
                if (file.write(out) != out.size()) {
                    writeFailed = true;
                    return false;
                }
                out.clear();
            }
            ++seen;
            if (progress && seen % ProgressEvery == 0)
                progress(seen);
            return true;
        });
    if (!writeFailed && !out.isEmpty() && file.write(out) != out.size())
        writeFailed = true;
    if (writeFailed) {
        const QString reason = file.errorString();
        file.cancelWriting();
        fileFailure(localPath, reason);
    }
    if (!file.commit())
        fileFailure(localPath, file.errorString());
    return rows;
}

QString reportLine(const QStringList &values)
{
    QString line;
    line.reserve(reportLineLength());
    for (int i = 0; i < 7; ++i) {
        QString v = values.value(i).left(ReportWidths[i]);
        for (QChar &c : v)
            if (c == QLatin1Char('\r') || c == QLatin1Char('\n') || c == QLatin1Char('\t'))
                c = QLatin1Char(' ');
        line += v;
        line += QString(ReportWidths[i] - v.size() + 1, QLatin1Char(' '));
    }
    return line;
}

QString reportHeading() { return reportLine(Headings); }

int reportLineLength()
{
    int n = 0;
    for (int w : ReportWidths)
        n += w + 1;
    return n;
}

}  // namespace TransLog
