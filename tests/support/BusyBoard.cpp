#include "support/BusyBoard.h"

#include "platform/Database.h"

#include <QSet>

namespace TestSupport {

BusyBoard::BusyBoard(const QString &localDbPath) : BusyBoard(localDbPath, Pace()) {}

BusyBoard::BusyBoard(const QString &localDbPath, const Pace &pace) : m_path(localDbPath), m_pace(pace)
{
    {
        Database db = Database::open(localDbPath);
        for (int i = 1; i <= pace.writers; ++i) {
            db.execute(QStringLiteral("INSERT INTO EmployeeTable (Name) VALUES (?)"), {writerName(i)});
            db.execute(QStringLiteral("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)"), {writerName(i)});
        }
    }
    const QString patience = QString::number(pace.patienceMs);
    for (int i = 1; i <= pace.writers; ++i)
        start(writerName(i), {QStringLiteral("writer"), m_path, writerName(i), QString::number(i), patience});
    for (int i = 1; i <= pace.readers; ++i)
        start(QStringLiteral("reader"), {QStringLiteral("reader"), m_path, QString::number(100 + i), patience});
    if (pace.holds)
        start(QStringLiteral("holder"), {QStringLiteral("holder"), m_path, QStringLiteral("7"), patience,
                                         QString::number(pace.holdMinMs), QString::number(pace.holdMaxMs),
                                         QString::number(pace.holdEveryMs)});
}

BusyBoard::~BusyBoard()
{
    if (!m_stopped)
        stop();
}

QString BusyBoard::writerName(int i) { return QStringLiteral("Busy Writer %1").arg(i); }

QStringList BusyBoard::writerNames() const
{
    QStringList names;
    for (int i = 1; i <= m_pace.writers; ++i)
        names << writerName(i);
    return names;
}

void BusyBoard::start(const QString &role, const QStringList &args)
{
    auto program = std::make_unique<QProcess>();
    program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program->start(QStringLiteral(BUSY_WORKER), args);
    if (!program->waitForStarted(5000))
        qFatal("busy_worker did not start");
    m_programs.push_back(std::move(program));
    m_roles.push_back(role);
}

BusyBoard::Report BusyBoard::stop()
{
    Report report;
    m_stopped = true;
    for (auto &program : m_programs)
        program->closeWriteChannel();
    QHash<QString, QSet<QString>> committed;  // writer -> marks it saw committed
    QHash<QString, QString> last;             // writer -> its last committed mark
    for (size_t i = 0; i < m_programs.size(); ++i) {
        QProcess &program = *m_programs[i];
        if (!program.waitForFinished(m_pace.patienceMs + m_pace.holdMaxMs + 10000))
            program.kill();
        const QString role = m_roles[i];
        for (const QByteArray &raw : program.readAllStandardOutput().split('\n')) {
            const QString line = QString::fromUtf8(raw);
            const QString rest = line.mid(2);
            if (line.startsWith(QLatin1String("W "))) {
                const QString mark = QStringLiteral("busy %1 %2").arg(role, rest);
                committed[role].insert(mark);
                last[role] = mark;
                ++report.committed;
            } else if (line.startsWith(QLatin1String("F "))) {
                report.refused << role + QStringLiteral(": write ") + rest;
            } else if (line.startsWith(QLatin1String("L "))) {
                report.lockedOut << role + QStringLiteral(" at ms ") + rest;
            } else if (line.startsWith(QLatin1String("H "))) {
                ++report.holds;
            }
        }
    }
    m_programs.clear();

    Database db = Database::open(m_path, Database::Mode::ReadOnly);
    for (auto it = committed.cbegin(); it != committed.cend(); ++it) {
        QSet<QString> logged;
        Recordset rs = db.query(QStringLiteral("SELECT Comments FROM TransactionLogTable WHERE Name = ?"), {it.key()});
        for (; !rs.eof(); rs.moveNext())
            logged.insert(rs.text(QStringLiteral("Comments")));
        for (const QString &mark : it.value())
            if (!logged.contains(mark))
                report.lost << mark + QStringLiteral(" (log row)");
        const QVariant own =
            db.scalar(QStringLiteral("SELECT Comments FROM EmployeeTable WHERE Name = ?"), {it.key()});
        if (own.toString() != last.value(it.key()))
            report.lost << last.value(it.key()) + QStringLiteral(" (user row holds '") + own.toString() +
                               QStringLiteral("')");
    }
    return report;
}

bool BusyBoard::readPasses(int ms) const { return readPasses(m_path, ms); }

bool BusyBoard::readPasses(const QString &localDbPath, int ms)
{
    QProcess once;
    once.start(QStringLiteral(BUSY_WORKER), {QStringLiteral("read-once"), localDbPath, QString::number(ms)});
    return once.waitForFinished(ms + 5000) && once.exitStatus() == QProcess::NormalExit && once.exitCode() == 0;
}

QStringList BusyBoard::rowsBesideWriters(const QString &table, const QString &nameField) const
{
    const QStringList writers = writerNames();
    QStringList rows;
    Database db = Database::open(m_path, Database::Mode::ReadOnly);
    Recordset rs = db.query(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(Database::quoteIdentifier(table)));
    const int nameColumn = rs.fieldIndex(nameField);
    for (; !rs.eof(); rs.moveNext()) {
        if (nameColumn >= 0 && writers.contains(rs.value(nameColumn).toString()))
            continue;
        QStringList fields;
        for (int c = 0; c < rs.fieldCount(); ++c)
            fields << (rs.value(c).isNull() ? QStringLiteral("<null>") : rs.value(c).toString());
        rows << fields.join(QLatin1Char('|'));
    }
    return rows;
}

}  // namespace TestSupport
