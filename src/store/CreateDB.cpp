#include "store/CreateDB.h"

#include "platform/Database.h"
#include "store/Schema.h"
#include "store/modCreateData.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A creation takes well under a second; a half-built file this old on the
// share belongs to a program that is gone, whichever machine it ran on.
constexpr qint64 StaleAfterSeconds = 600;

QString hostTag()
{
    // The process id is the last '-'-separated part of the name, so the
    // host part must not contain one.
    QString host = QSysInfo::machineHostName();
    for (QChar &c : host)
        if (!c.isLetterOrNumber() && c != QLatin1Char('.'))
            c = QLatin1Char('_');
    return host.isEmpty() ? QStringLiteral("host") : host;
}

QString temporaryPrefix(const QString &target)
{
    return QFileInfo(target).fileName() + QStringLiteral(".new-");
}

bool processAlive(qint64 pid)
{
    return pid > 0 && (::kill(pid_t(pid), 0) == 0 || errno == EPERM);
}

// Half-built files (and their journals) left by creations that crashed.
// A file of a live creation on another machine is left alone unless it is old.
void removeLeftovers(const QString &target)
{
    const QFileInfo fi(target);
    const QString prefix = temporaryPrefix(target);
    const QString ourHost = hostTag();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QDir dir = fi.absoluteDir();
    const QStringList names = dir.entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (!name.startsWith(prefix))
            continue;
        QString tag = name.mid(prefix.size());
        if (tag.endsWith(QLatin1String("-journal")))
            tag.chop(8);
        bool numeric = false;
        const qint64 pid = tag.section(QLatin1Char('-'), -1).toLongLong(&numeric);
        const QString host = tag.section(QLatin1Char('-'), 0, -2);
        const QFileInfo entry(dir.filePath(name));
        const bool ours = host == ourHost && (!numeric || pid == ::getpid() || !processAlive(pid));
        const bool old = entry.lastModified().toUTC().secsTo(now) > StaleAfterSeconds;
        if (ours || old)
            QFile::remove(entry.filePath());
    }
}

void syncPath(const QString &path, int flags)
{
    const int fd = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

int failureOfErrno(int e)
{
    if (e == EEXIST)
        return err::AlreadyExists;
    if (e == EACCES || e == EPERM || e == EROFS)
        return err::PermissionDenied;
    return err::PathFileAccess;
}

// Gives the finished file its name in one step, and only if no file of that
// name exists: a database somebody made meanwhile is never replaced.
int publish(const QString &temporary, const QString &target)
{
    syncPath(temporary, O_RDONLY);  // the content is on disk before the name is
    const QByteArray from = QFile::encodeName(temporary);
    const QByteArray to = QFile::encodeName(target);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) != 0) {
        const int e = errno;
        if (e != EINVAL && e != ENOSYS && e != ENOTSUP && e != EOPNOTSUPP)
            return failureOfErrno(e);
        // File systems without the no-replace rename: a hard link refuses
        // an existing name just the same.
        if (::link(from.constData(), to.constData()) != 0)
            return failureOfErrno(errno);
        ::unlink(from.constData());
    }
    syncPath(QFileInfo(target).absolutePath(), O_RDONLY | O_DIRECTORY);
    return 0;
}

}  // namespace

void createStructure(Database &db)
{
    for (const Schema::Table &table : Schema::tables()) {
        db.execute(Schema::createTableStatement(table));
        for (const QString &statement : Schema::createIndexStatements(table))
            db.execute(statement);
    }
    // The relations stand in the definitions of the tables on their many
    // side (SQLite takes them nowhere else). Now that every table exists,
    // the store checks that each one points at a unique key.
    Recordset rs = db.query(QStringLiteral("PRAGMA foreign_key_check"));
    while (!rs.eof())
        rs.moveNext();
}

int CreateDatabase(const QString &path)
{
    QString target;
    try {
        target = Store::resolvePath(path);
    } catch (const StoreError &e) {
        return e.number();
    }
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink())
        return err::AlreadyExists;

    removeLeftovers(target);
    const QString temporary = QFileInfo(target).absolutePath() + QLatin1Char('/') + temporaryPrefix(target) +
                              hostTag() + QLatin1Char('-') + QString::number(::getpid());
    int result = 0;
    try {
        Database db = Database::create(temporary);
        // Nobody sees this file before it is complete, so it needs no
        // journal on disk and no flush per statement; publish() flushes once.
        db.execute(QStringLiteral("PRAGMA journal_mode = MEMORY"));
        db.execute(QStringLiteral("PRAGMA synchronous = OFF"));
        createStructure(db);
        modCreateData(db);
        db.close();
    } catch (const StoreError &e) {
        result = e.number();
    }
    if (result == 0)
        result = publish(temporary, target);
    if (result != 0) {
        QFile::remove(temporary);
        QFile::remove(temporary + QStringLiteral("-journal"));
    }
    return result;
}
