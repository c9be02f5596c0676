#include "platform/Compact.h"

#include "platform/CompactVfs.h"
#include "platform/LockWait.h"
#include "platform/Database.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStringList>
#include <QVariant>

#include <sqlite3.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <condition_variable>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr qint64 CopyChunk = qint64(1) << 20;
constexpr qint64 MaxMapped = 0x7fff0000;  // the largest map this SQLite allows

// ------------------------------------------------------------ errors

bool isDamage(int code)
{
    const int primary = code & 0xff;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_TOOBIG;
}

[[noreturn]] void failSqlite(sqlite3 *db, int code, bool writing)
{
    throw Store::errorFromSqlite(code, QString::fromUtf8(db ? sqlite3_errmsg(db) : sqlite3_errstr(code)), writing);
}

void exec(sqlite3 *db, const QString &sql, bool writing = true)
{
    const int rc = sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
        failSqlite(db, sqlite3_extended_errcode(db), writing);
}

// Settings that only speed the work up: a file that refuses them is still worked on.
void tryExec(sqlite3 *db, const char *sql)
{
    sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
}

QString quoted(const QString &identifier)
{
    return Database::quoteIdentifier(identifier);
}

class Statement {
public:
    Statement(sqlite3 *db, const QString &sql) : m_db(db)
    {
        const QByteArray text = sql.toUtf8();
        m_rc = sqlite3_prepare_v2(db, text.constData(), int(text.size()), &m_stmt, nullptr);
        if (m_rc != SQLITE_OK)
            m_rc = sqlite3_extended_errcode(db);
    }
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool prepared() const { return m_stmt != nullptr; }
    int prepareCode() const { return m_rc; }
    operator sqlite3_stmt *() const { return m_stmt; }

    // The step's code, extended, with the statement reset after a failure.
    int step()
    {
        const int rc = sqlite3_step(m_stmt);
        if (rc == SQLITE_ROW || rc == SQLITE_DONE)
            return rc;
        const int code = sqlite3_extended_errcode(m_db);
        sqlite3_reset(m_stmt);
        return code;
    }
    void reset() { sqlite3_reset(m_stmt); }

private:
    sqlite3 *m_db;
    sqlite3_stmt *m_stmt = nullptr;
    int m_rc = SQLITE_OK;
};

// ------------------------------------------------------------ plain files

class Fd {
public:
    explicit Fd(int fd = -1) : m_fd(fd) {}
    ~Fd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
    int get() const { return m_fd; }
    int release()
    {
        const int fd = m_fd;
        m_fd = -1;
        return fd;
    }

private:
    int m_fd;
};

[[noreturn]] void failFile(const QString &what, const QString &path, int error)
{
    throw StoreError(err::PathFileAccess, QStringLiteral("Path/File access error: cannot %1 '%2' (%3).")
                                              .arg(what, path, QString::fromLocal8Bit(std::strerror(error))));
}

// At `offset`, or at the descriptor's own position when it is negative.
void writeAll(int fd, const char *data, qint64 size, const QString &path, qint64 offset = -1)
{
    while (size > 0) {
        const ssize_t n = offset < 0 ? ::write(fd, data, size_t(size)) : ::pwrite(fd, data, size_t(size), offset);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            failFile(QStringLiteral("write"), path, errno);
        }
        data += n;
        size -= n;
        if (offset >= 0)
            offset += n;
    }
}

void syncFolderOf(const QString &path)
{
    const Fd dir(::open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(),
                        O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() >= 0)
        ::fsync(dir.get());
}

// Writes a file under "<target>.tmp" and gives it the target's name once it
// is complete and on disk. `fill` writes the content into the descriptor.
void writeThenRename(const QString &target, mode_t mode, const std::function<void(int, const QString &)> &fill)
{
    const QString temporary = target + QStringLiteral(".tmp");
    const QByteArray tempName = QFile::encodeName(temporary);
    ::unlink(tempName.constData());  // a leftover of a run that was cut short
    Fd out(::open(tempName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (out.get() < 0)
        failFile(QStringLiteral("create"), temporary, errno);
    try {
        fill(out.get(), temporary);
        if (::fdatasync(out.get()) != 0)
            failFile(QStringLiteral("flush"), temporary, errno);
        if (::close(out.release()) != 0)
            failFile(QStringLiteral("close"), temporary, errno);
        if (::rename(tempName.constData(), QFile::encodeName(target).constData()) != 0)
            failFile(QStringLiteral("rename to"), target, errno);
    } catch (...) {
        ::unlink(tempName.constData());
        throw;
    }
    syncFolderOf(target);
}

mode_t modeOf(const QString &path)
{
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) == 0)
        return st.st_mode & 0777;
    return 0666;
}

sqlite3_file *mainFile(sqlite3 *db)
{
    sqlite3_file *file = nullptr;
    if (sqlite3_file_control(db, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file || !file->pMethods)
        throw StoreError(err::ObjectClosed, QStringLiteral("Object invalid or no longer set."));
    return file;
}

QString fileNameOf(sqlite3 *db)
{
    const char *name = sqlite3_db_filename(db, "main");
    return name ? QString::fromUtf8(name) : QString();
}

// A descriptor that SQLite already has open on the file. Reading through it
// needs no descriptor of our own, whose close would drop the process's locks.
int openDescriptorOf(const QString &path)
{
    struct stat target {};
    if (::stat(QFile::encodeName(path).constData(), &target) != 0)
        return -1;
    DIR *dir = ::opendir("/proc/self/fd");
    if (!dir)
        return -1;
    int found = -1;
    while (const dirent *entry = ::readdir(dir)) {
        char *end = nullptr;
        const long fd = std::strtol(entry->d_name, &end, 10);
        if (end == entry->d_name || *end || fd == ::dirfd(dir))
            continue;
        struct stat st {};
        if (::fstat(int(fd), &st) == 0 && S_ISREG(st.st_mode) && st.st_dev == target.st_dev && st.st_ino == target.st_ino) {
            found = int(fd);
            break;
        }
    }
    ::closedir(dir);
    return found;
}

// Copies `size` bytes of an open descriptor without moving its offset.
// A backup is written once and rarely read, so it goes past the page cache
// where the file system allows that: the copy then takes no memory from the
// compaction running beside it. Elsewhere the kernel copies on its own.
void copyDescriptor(int in, qint64 size, mode_t mode, const QString &target)
{
    writeThenRename(target, mode, [&](int out, const QString &temporary) {
        constexpr qint64 Step = qint64(8) << 20;
        constexpr qint64 Block = 4096;
        QByteArray buffer;
        const int flags = ::fcntl(out, F_GETFL);
        const std::unique_ptr<char, decltype(&std::free)> aligned(
            flags >= 0 && ::fcntl(out, F_SETFL, flags | O_DIRECT) == 0
                ? static_cast<char *>(std::aligned_alloc(size_t(Block), size_t(Step)))
                : nullptr,
            &std::free);
        if (!aligned && flags >= 0)
            ::fcntl(out, F_SETFL, flags);
        bool direct = bool(aligned);
        for (qint64 offset = 0; offset < size;) {
            const qint64 n = qMin(Step, size - offset);
            ssize_t done = -1;
            if (aligned) {
                done = ::pread(in, aligned.get(), size_t(n), offset);
                if (done > 0) {
                    // Whole blocks go direct; the odd bytes at the end, and
                    // everything on a file system that turns direct writes
                    // down after all, the plain way.
                    qint64 whole = direct ? done / Block * Block : 0;
                    if (whole > 0 && ::pwrite(out, aligned.get(), size_t(whole), offset) != whole) {
                        direct = false;
                        whole = 0;
                    }
                    if (whole < done) {
                        ::fcntl(out, F_SETFL, flags);
                        writeAll(out, aligned.get() + whole, done - whole, temporary, offset + whole);
                        if (direct)
                            ::fcntl(out, F_SETFL, flags | O_DIRECT);
                    }
                }
            } else {
                loff_t from = offset;
                done = ::copy_file_range(in, &from, out, nullptr, size_t(n), 0);
                if (done < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP)) {
                    if (buffer.isEmpty())
                        buffer.resize(int(Step));
                    done = ::pread(in, buffer.data(), size_t(n), offset);
                    if (done > 0)
                        writeAll(out, buffer.constData(), done, temporary);
                }
            }
            if (done < 0) {
                if (errno == EINTR)
                    continue;
                failFile(QStringLiteral("copy to"), temporary, errno);
            }
            if (done == 0)
                break;  // the file is shorter than it said
            if (!aligned)
                ::sync_file_range(out, offset, done, SYNC_FILE_RANGE_WRITE);
            offset += done;
        }
    });
}

// ------------------------------------------------------------ salvage

struct SchemaEntry {
    QString type;
    QString name;
    QString tableName;
    QString sql;
};

using RowSink = std::function<void(sqlite3_stmt *)>;

// Reads the rows of one table and hands each to a sink, stepping past pages
// that cannot be read. The walk goes by rowid: after a damaged page it looks
// for the first key that can be reached again, widening its step until a
// seek succeeds and then narrowing down to the edge of the damage.
class RowWalker {
public:
    RowWalker(sqlite3 *db, const QString &table, const QStringList &columns, const QString &rowidName)
        : m_db(db),
          m_rows(db, QStringLiteral("SELECT %1%2 FROM main.%3 WHERE %4 >= ?1 AND %4 <= ?2 ORDER BY %4")
                         .arg(rowidName, columnList(columns), quoted(table), rowidName)),
          m_probe(db, QStringLiteral("SELECT %1 FROM main.%2 WHERE %1 >= ?1 AND %1 <= ?2 ORDER BY %1 LIMIT 1")
                          .arg(rowidName, quoted(table)))
    {
    }

    bool prepared() const { return m_rows.prepared() && m_probe.prepared(); }
    int prepareCode() const { return m_rows.prepared() ? m_probe.prepareCode() : m_rows.prepareCode(); }

    // Column 0 of each row handed to the sink is the rowid.
    void run(const RowSink &sink, int *unreadableRuns)
    {
        qint64 lo = std::numeric_limits<qint64>::min();
        const qint64 hi = std::numeric_limits<qint64>::max();
        bool inDamage = false;
        for (;;) {
            std::optional<qint64> last;
            if (walk(lo, hi, sink, &last))
                return;
            if (last || !inDamage)
                ++*unreadableRuns;  // a new run of damage, not the same one met again
            inDamage = true;
            if (last && *last == hi)
                return;
            const qint64 start = last ? *last + 1 : lo;
            const std::optional<qint64> resume = resumePoint(start, hi);
            if (!resume)
                return;
            if (!last && *resume == lo) {
                // The key is readable but its row is not: leave that one row behind.
                if (lo == hi)
                    return;
                lo = lo + 1;
            } else {
                lo = *resume;
            }
        }
    }

private:
    static QString columnList(const QStringList &columns)
    {
        QString list;
        for (const QString &c : columns)
            list += QStringLiteral(", ") + quoted(c);
        return list;
    }

    // True when the range was read to its end.
    bool walk(qint64 from, qint64 to, const RowSink &sink, std::optional<qint64> *last)
    {
        sqlite3_bind_int64(m_rows, 1, from);
        sqlite3_bind_int64(m_rows, 2, to);
        for (;;) {
            const int rc = m_rows.step();
            if (rc == SQLITE_ROW) {
                sink(m_rows);
                *last = sqlite3_column_int64(m_rows, 0);
                continue;
            }
            m_rows.reset();
            if (rc == SQLITE_DONE)
                return true;
            if (isDamage(rc))
                return false;
            failSqlite(m_db, rc, false);
        }
    }

    struct Probe {
        bool readable = false;
        std::optional<qint64> key;
    };

    Probe probe(qint64 from, qint64 to)
    {
        sqlite3_bind_int64(m_probe, 1, from);
        sqlite3_bind_int64(m_probe, 2, to);
        const int rc = m_probe.step();
        Probe p;
        if (rc == SQLITE_ROW) {
            p.readable = true;
            p.key = sqlite3_column_int64(m_probe, 0);
        } else if (rc == SQLITE_DONE) {
            p.readable = true;
        } else if (!isDamage(rc)) {
            failSqlite(m_db, rc, false);
        }
        m_probe.reset();
        return p;
    }

    // The first key at or after `start` that a seek reaches without meeting
    // damage. Seeks are tried at widening steps from `start` and at the
    // powers of two either side of zero, where row ids usually live, in
    // rising order; the first that succeeds is narrowed down to the edge of
    // the damage.
    std::optional<qint64> resumePoint(qint64 start, qint64 hi)
    {
        using Wide = __int128;
        std::vector<Wide> points{start, hi, 0};
        for (int k = 0; k <= 64; ++k)
            points.push_back(Wide(start) + (Wide(1) << k));
        for (int k = 0; k <= 62; ++k) {
            points.push_back(Wide(1) << k);
            points.push_back(-(Wide(1) << k));
        }
        std::sort(points.begin(), points.end());
        points.erase(std::unique(points.begin(), points.end()), points.end());

        Wide failed = Wide(start) - 1;
        std::optional<Wide> reached;
        for (const Wide at : points) {
            if (at < start || at > hi)
                continue;
            if (probe(qint64(at), hi).readable) {
                reached = at;
                break;
            }
            failed = at;
        }
        if (!reached)
            return std::nullopt;
        while (*reached - failed > 1) {
            const Wide mid = failed + (*reached - failed) / 2;
            if (probe(qint64(mid), hi).readable)
                reached = mid;
            else
                failed = mid;
        }
        return probe(qint64(*reached), hi).key;
    }

    sqlite3 *m_db;
    Statement m_rows;
    Statement m_probe;
};

// The name under which a table's rowid can be selected, or empty when it
// has none that can be named (WITHOUT ROWID, or all three names taken).
QString rowidNameFor(sqlite3 *source, const QString &table, const QStringList &columns)
{
    for (const QString &candidate : {QStringLiteral("rowid"), QStringLiteral("_rowid_"), QStringLiteral("oid")}) {
        if (columns.contains(candidate, Qt::CaseInsensitive))
            continue;
        Statement s(source, QStringLiteral("SELECT %1 FROM main.%2 LIMIT 0").arg(candidate, quoted(table)));
        return s.prepared() ? candidate : QString();
    }
    return QString();
}

QStringList insertableColumns(sqlite3 *target, const QString &table)
{
    QStringList columns;
    Statement s(target, QStringLiteral("SELECT name FROM pragma_table_xinfo(?1) WHERE hidden = 0 ORDER BY cid"));
    const QByteArray name = table.toUtf8();
    sqlite3_bind_text(s, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
    while (s.step() == SQLITE_ROW)
        columns << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(s, 0)));
    return columns;
}

QString textAt(sqlite3_stmt *s, int column)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(s, column));
    return text ? QString::fromUtf8(text, sqlite3_column_bytes(s, column)) : QString();
}

std::vector<SchemaEntry> readSchema(sqlite3 *source, int *unreadableRuns)
{
    std::vector<SchemaEntry> entries;
    RowWalker walker(source, QStringLiteral("sqlite_master"),
                     {QStringLiteral("type"), QStringLiteral("name"), QStringLiteral("tbl_name"), QStringLiteral("sql")},
                     QStringLiteral("rowid"));
    if (!walker.prepared())
        failSqlite(source, walker.prepareCode(), false);
    walker.run([&](sqlite3_stmt *row) {
        entries.push_back({textAt(row, 1), textAt(row, 2), textAt(row, 3), textAt(row, 4)});
    }, unreadableRuns);
    return entries;
}

QVariant pragmaValue(sqlite3 *db, const char *pragma)
{
    Statement s(db, QStringLiteral("PRAGMA main.") + QLatin1String(pragma));
    if (s.prepared() && s.step() == SQLITE_ROW)
        return textAt(s, 0);
    return QVariant();
}

bool startsWithWords(const QString &sql, const QStringList &words)
{
    const QStringList parts = sql.simplified().split(QLatin1Char(' '));
    if (parts.size() < words.size())
        return false;
    for (int i = 0; i < words.size(); ++i)
        if (parts[i].compare(words[i], Qt::CaseInsensitive) != 0)
            return false;
    return true;
}

// Row ids listed by one index, read in the given order up to the first damaged page.
void collectIds(sqlite3 *source, const QString &sql, std::vector<qint64> &ids, bool *complete)
{
    *complete = false;
    Statement scan(source, sql);
    if (!scan.prepared())
        return;
    for (;;) {
        const int rc = scan.step();
        if (rc == SQLITE_ROW) {
            ids.push_back(sqlite3_column_int64(scan, 0));
            continue;
        }
        if (rc == SQLITE_DONE)
            *complete = true;
        else if (!isDamage(rc))
            failSqlite(source, rc, false);
        return;
    }
}

// Rows that the walk by rowid could not reach, because a damaged page lies
// on the way to them, are still listed in the table's indexes: every index
// entry ends with its row's id, and reading an index touches none of the
// table's own pages. Each such row is then fetched by its id.
void rescueThroughIndexes(sqlite3 *source, sqlite3 *target, const QString &table, const QStringList &columns,
                          const QString &rowidName, const QSet<qint64> &seen, const RowSink &sink)
{
    QStringList indexes;
    {
        Statement list(target, QStringLiteral("SELECT name FROM pragma_index_list(?1)"));
        const QByteArray name = table.toUtf8();
        sqlite3_bind_text(list, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        while (list.step() == SQLITE_ROW)
            indexes << textAt(list, 0);
    }
    std::vector<qint64> ids;
    for (const QString &index : indexes) {
        const QString from = QStringLiteral("SELECT %1 FROM main.%2 INDEXED BY %3").arg(rowidName, quoted(table), quoted(index));
        bool complete = false;
        collectIds(source, from, ids, &complete);
        if (complete)
            continue;
        // From the other end as well, up to the damage.
        QStringList order;
        Statement keys(target, QStringLiteral("SELECT name, desc, coll FROM pragma_index_xinfo(?1) WHERE key = 1 ORDER BY seqno"));
        const QByteArray name = index.toUtf8();
        sqlite3_bind_text(keys, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        bool usable = true;
        while (keys.step() == SQLITE_ROW) {
            if (sqlite3_column_type(keys, 0) == SQLITE_NULL) {
                usable = false;  // an expression: no column to order by
                break;
            }
            order << QStringLiteral("%1 COLLATE %2 %3")
                         .arg(quoted(textAt(keys, 0)), quoted(textAt(keys, 2)),
                              sqlite3_column_int(keys, 1) ? QStringLiteral("ASC") : QStringLiteral("DESC"));
        }
        if (usable && !order.isEmpty())
            collectIds(source, from + QStringLiteral(" ORDER BY ") + order.join(QStringLiteral(", ")), ids, &complete);
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());

    QString list;
    for (const QString &c : columns)
        list += QStringLiteral(", ") + quoted(c);
    Statement fetch(source, QStringLiteral("SELECT %1%2 FROM main.%3 WHERE %1 = ?1").arg(rowidName, list, quoted(table)));
    if (!fetch.prepared())
        return;
    for (const qint64 id : ids) {
        if (seen.contains(id))
            continue;
        sqlite3_bind_int64(fetch, 1, id);
        const int rc = fetch.step();
        if (rc == SQLITE_ROW)
            sink(fetch);
        else if (rc != SQLITE_DONE && !isDamage(rc))
            failSqlite(source, rc, false);
        fetch.reset();
    }
}

// Copies the rows of one table; returns false when nothing of it could be read.
bool copyTable(sqlite3 *source, sqlite3 *target, const QString &table, Compact::Result &result)
{
    const QStringList columns = insertableColumns(target, table);
    if (columns.isEmpty())
        return false;
    const QString rowidName = rowidNameFor(source, table, columns);

    // Rows keep their ids, so that the order they were added in stays.
    QStringList quotedTargets, marks;
    if (!rowidName.isEmpty()) {
        quotedTargets << rowidName;
        marks << QStringLiteral("?");
    }
    for (const QString &c : columns) {
        quotedTargets << quoted(c);
        marks << QStringLiteral("?");
    }
    Statement insert(target, QStringLiteral("INSERT OR IGNORE INTO main.%1(%2) VALUES (%3)")
                                 .arg(quoted(table), quotedTargets.join(QStringLiteral(", ")),
                                      marks.join(QStringLiteral(", "))));
    if (!insert.prepared())
        failSqlite(target, insert.prepareCode(), true);

    const int valueCount = int(quotedTargets.size());
    const RowSink sink = [&](sqlite3_stmt *row) {
        for (int i = 0; i < valueCount; ++i)
            sqlite3_bind_value(insert, i + 1, sqlite3_column_value(row, i));
        const int rc = insert.step();
        insert.reset();
        if (rc == SQLITE_DONE) {
            result.rowsCopied += sqlite3_changes(target);
            return;
        }
        // A row that the table's own rules refuse is left out; anything else ends the work.
        const int primary = rc & 0xff;
        if (primary != SQLITE_CONSTRAINT && primary != SQLITE_MISMATCH && primary != SQLITE_TOOBIG)
            failSqlite(target, rc, true);
    };

    if (!rowidName.isEmpty()) {
        RowWalker walker(source, table, columns, rowidName);
        if (!walker.prepared())
            return false;
        QSet<qint64> seen;
        const int runsBefore = result.unreadableRuns;
        walker.run([&](sqlite3_stmt *row) {
            seen.insert(sqlite3_column_int64(row, 0));
            sink(row);
        }, &result.unreadableRuns);
        if (result.unreadableRuns != runsBefore)
            rescueThroughIndexes(source, target, table, columns, rowidName, seen, sink);
        return true;
    }
    // Without a rowid there is no key to step over damage with: read up to the first damaged page.
    QStringList quotedColumns;
    for (const QString &c : columns)
        quotedColumns << quoted(c);
    Statement rows(source, QStringLiteral("SELECT %1 FROM main.%2").arg(quotedColumns.join(QStringLiteral(", ")), quoted(table)));
    if (!rows.prepared())
        return false;
    for (;;) {
        const int rc = rows.step();
        if (rc == SQLITE_ROW) {
            sink(rows);
            continue;
        }
        if (rc != SQLITE_DONE) {
            if (!isDamage(rc))
                failSqlite(source, rc, false);
            ++result.unreadableRuns;
        }
        return true;
    }
}

void copySequences(sqlite3 *source, sqlite3 *target, Compact::Result &result)
{
    Statement check(target, QStringLiteral("SELECT 1 FROM main.sqlite_sequence LIMIT 0"));
    if (!check.prepared())
        return;
    // Rows copied with their ids have already raised the targets' sequences;
    // a higher value kept by the source stays so no id is ever handed out twice.
    Statement update(target, QStringLiteral("UPDATE main.sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1"));
    Statement add(target, QStringLiteral("INSERT INTO main.sqlite_sequence(name, seq) VALUES (?1, ?2)"));
    if (!update.prepared() || !add.prepared())
        return;
    RowWalker walker(source, QStringLiteral("sqlite_sequence"), {QStringLiteral("name"), QStringLiteral("seq")},
                     QStringLiteral("rowid"));
    if (!walker.prepared())
        return;
    walker.run([&](sqlite3_stmt *row) {
        for (Statement *s : {&update, &add}) {
            sqlite3_bind_value(*s, 1, sqlite3_column_value(row, 1));
            sqlite3_bind_value(*s, 2, sqlite3_column_value(row, 2));
        }
        const int rc = update.step();
        update.reset();
        if (rc == SQLITE_DONE && sqlite3_changes(target) == 0) {
            add.step();
            add.reset();
        }
    }, &result.unreadableRuns);
}

// Writes the content of `source` into the file that `target` holds, under
// the target's journal: all of it or nothing.
void writeInto(sqlite3 *target, sqlite3 *source)
{
    sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
    if (!backup)
        failSqlite(target, sqlite3_extended_errcode(target), true);
    int rc = SQLITE_OK;
    do {
        rc = sqlite3_backup_step(backup, -1);
    } while (rc == SQLITE_OK);
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE)
        failSqlite(target, sqlite3_extended_errcode(target), true);
}

// The settings of a compaction. The new content is built in memory from a
// mapped file and written without a flush at each step: a crash of the
// whole machine could then damage the file, but a killed process cannot,
// since the journal and the pages reach the file in the order written. The
// untouched copy is on disk before the first write, and the file is flushed
// once at the end. The connection is closed after this, still without
// flushes, so that the journal it no longer needs is not flushed either.
void setForCompaction(sqlite3 *db)
{
    tryExec(db, "PRAGMA temp_store = MEMORY");
    tryExec(db, QStringLiteral("PRAGMA mmap_size = %1").arg(MaxMapped).toUtf8().constData());
    tryExec(db, "PRAGMA synchronous = OFF");
}

void flushFile(sqlite3 *db)
{
    sqlite3_file *file = mainFile(db);
    const int rc = file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
    if (rc != SQLITE_OK)
        failSqlite(db, rc, true);
}

}  // namespace

namespace Compact {

void CloseConnection::operator()(sqlite3 *db) const
{
    LockWait::forget(db);
    sqlite3_close_v2(db);
}

Connection holdFile(const QString &localPath)
{
    const QFileInfo fi(localPath);
    if (!fi.exists())
        throw StoreError(err::DatabaseMissing, QStringLiteral("Could not find file '%1'.").arg(localPath));
    if (fi.isDir())
        throw StoreError(err::BadFileName, QStringLiteral("'%1' is a folder, not a database file.").arg(localPath));
    QString path = QFileInfo(localPath).absoluteFilePath();
    path.replace(QLatin1Char('%'), QLatin1String("%25"));
    path.replace(QLatin1Char('?'), QLatin1String("%3f"));
    path.replace(QLatin1Char('#'), QLatin1String("%23"));
    const QString uri = QStringLiteral("file:") + path;
    sqlite3 *raw = nullptr;
    const int rc = sqlite3_open_v2(uri.toUtf8().constData(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                                   CompactVfs::name());
    Connection db(raw);
    if (rc != SQLITE_OK)
        failSqlite(raw, raw ? sqlite3_extended_errcode(raw) : rc, false);
    sqlite3_extended_result_codes(raw, 1);
    LockWait::install(raw, localPath);
    // Taking the lock reads no more than the file's header, so a file whose
    // tables are damaged can still be held.
    exec(raw, QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"), false);
    if (sqlite3_exec(raw, "BEGIN EXCLUSIVE; COMMIT;", nullptr, nullptr, nullptr) != SQLITE_OK) {
        const int code = sqlite3_extended_errcode(raw);
        if ((code & 0xff) != SQLITE_BUSY && (code & 0xff) != SQLITE_LOCKED)
            failSqlite(raw, code, false);
        // Still locked after the whole wait: held to itself by another
        // program all along, or only in use by others.
        if (LockWait::heldThroughout(raw))
            throw StoreError(err::FileInUse,
                             QStringLiteral("Could not use '%1'; file already in use by another program.").arg(localPath));
        throw StoreError(err::CannotLock,
                         QStringLiteral("Could not lock file '%1': other programs are using it.").arg(localPath));
    }
    // A shared folder cannot carry WAL's shared memory; the copy must also see every page in the file itself.
    if (pragmaValue(raw, "journal_mode").toString().compare(QLatin1String("wal"), Qt::CaseInsensitive) == 0)
        exec(raw, QStringLiteral("PRAGMA journal_mode = DELETE"));
    return db;
}

void copyHeldFile(sqlite3 *db, const QString &targetLocal)
{
    sqlite3_file *file = mainFile(db);
    const QString source = fileNameOf(db);
    sqlite3_int64 size = 0;
    if (file->pMethods->xFileSize(file, &size) != SQLITE_OK)
        failFile(QStringLiteral("read"), source, EIO);
    writeThenRename(targetLocal, modeOf(source), [&](int out, const QString &temporary) {
        QByteArray buffer(int(CopyChunk), Qt::Uninitialized);
        for (qint64 offset = 0; offset < size; offset += CopyChunk) {
            const int n = int(qMin<qint64>(CopyChunk, size - offset));
            if (file->pMethods->xRead(file, buffer.data(), n, offset) != SQLITE_OK)
                failFile(QStringLiteral("read"), source, EIO);
            writeAll(out, buffer.constData(), n, temporary);
            // Start the write to disk now; the flush at the end then has little left to wait for.
            ::sync_file_range(out, offset, n, SYNC_FILE_RANGE_WRITE);
        }
    });
}

void copyFile(const QString &sourceLocal, const QString &targetLocal)
{
    const Fd in(::open(QFile::encodeName(sourceLocal).constData(), O_RDONLY | O_CLOEXEC));
    if (in.get() < 0)
        failFile(QStringLiteral("read"), sourceLocal, errno);
    writeThenRename(targetLocal, modeOf(sourceLocal), [&](int out, const QString &temporary) {
        QByteArray buffer(int(CopyChunk), Qt::Uninitialized);
        for (qint64 offset = 0;;) {
            const ssize_t n = ::read(in.get(), buffer.data(), size_t(buffer.size()));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                failFile(QStringLiteral("read"), sourceLocal, errno);
            }
            if (n == 0)
                break;
            writeAll(out, buffer.constData(), n, temporary);
            ::sync_file_range(out, offset, n, SYNC_FILE_RANGE_WRITE);
            offset += n;
        }
    });
}

bool removeFile(const QString &localPath)
{
    return CompactVfs::removeFile(QFile::encodeName(localPath).constData()) == 0;
}

Result compactHeld(Connection held, const QString &backupLocal)
{
    sqlite3 *db = held.get();
    Result result;
    setForCompaction(db);

    // The copy of the untouched file, beside the building of the new content
    // where the layer allows it, else before it.
    CompactVfs::Gate gate;
    std::optional<StoreError> copyFailure;
    std::thread copier;
    const struct Finish {
        std::thread &copier;
        sqlite3 *db;
        ~Finish()
        {
            if (copier.joinable())
                copier.join();
            CompactVfs::setGate(db, nullptr);
        }
    } finish{copier, db};
    if (!backupLocal.isEmpty()) {
        const QString source = fileNameOf(db);
        sqlite3_file *file = mainFile(db);
        sqlite3_int64 size = 0;
        if (const int rc = file->pMethods->xFileSize(file, &size); rc != SQLITE_OK)
            failSqlite(db, rc, false);
        const int fd = openDescriptorOf(source);
        if (fd >= 0 && CompactVfs::setGate(db, &gate)) {
            const mode_t mode = modeOf(source);
            copier = std::thread([&gate, &copyFailure, fd, size, mode, backupLocal] {
                try {
                    copyDescriptor(fd, size, mode, backupLocal);
                    gate.open(true);
                } catch (const StoreError &e) {
                    copyFailure = e;
                    gate.open(false);
                } catch (...) {
                    copyFailure = StoreError(err::PathFileAccess, QStringLiteral("Path/File access error: the copy failed."));
                    gate.open(false);
                }
            });
        } else {
            copyHeldFile(db, backupLocal);
        }
    }

    const int rc = sqlite3_exec(db, "VACUUM", nullptr, nullptr, nullptr);
    const int code = rc == SQLITE_OK ? SQLITE_OK : sqlite3_extended_errcode(db);
    if (copier.joinable())
        copier.join();
    if (copyFailure)
        throw *copyFailure;  // the file was not touched
    if (rc == SQLITE_OK) {
        flushFile(db);
        return result;
    }
    if (!isDamage(code))
        failSqlite(db, code, true);

    // Damaged pages: build fresh content from whatever can still be read.
    sqlite3 *raw = nullptr;
    if (sqlite3_open_v2(":memory:", &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK) {
        const Connection gone(raw);
        throw StoreError(7, QStringLiteral("Out of memory."));
    }
    const Connection fresh(raw);
    sqlite3_extended_result_codes(raw, 1);
    result = salvage(db, raw);
    writeInto(db, raw);
    flushFile(db);
    return result;
}

Result salvage(sqlite3 *source, sqlite3 *target)
{
    Result result;
    result.salvaged = true;
    // A schema with a damaged entry still lets the rest be read.
    tryExec(source, "PRAGMA writable_schema = ON");
    struct SchemaGuard {
        sqlite3 *db;
        ~SchemaGuard() { tryExec(db, "PRAGMA writable_schema = OFF"); }
    } guard{source};

    // The file's own format settings, before the first table exists.
    for (const char *pragma : {"page_size", "encoding", "auto_vacuum"}) {
        const QVariant v = pragmaValue(source, pragma);
        if (v.isValid()) {
            const QString value = v.toString();
            const QString literal = QLatin1String(pragma) == QLatin1String("encoding")
                                        ? QLatin1Char('\'') + value + QLatin1Char('\'')
                                        : QString::number(value.toLongLong());
            tryExec(target, QStringLiteral("PRAGMA main.%1 = %2").arg(QLatin1String(pragma), literal).toUtf8().constData());
        }
    }
    tryExec(target, "PRAGMA journal_mode = OFF");
    tryExec(target, "PRAGMA synchronous = OFF");

    const std::vector<SchemaEntry> schema = readSchema(source, &result.unreadableRuns);
    bool anyTable = false;
    QStringList tables;
    for (const SchemaEntry &e : schema) {
        if (e.type != QLatin1String("table") || e.sql.isEmpty() || e.name.startsWith(QLatin1String("sqlite_"), Qt::CaseInsensitive))
            continue;
        anyTable = true;
        if (!startsWithWords(e.sql, {QStringLiteral("CREATE"), QStringLiteral("TABLE")}))
            continue;  // virtual tables need their module; their rows live in tables of their own
        if (sqlite3_exec(target, e.sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
            tables << e.name;
        else
            ++result.tablesLost;
    }
    if (schema.empty() || (!anyTable && result.unreadableRuns > 0))
        throw StoreError(err::Damaged, QStringLiteral("The database file is damaged: not even its list of tables can be read."));

    // Indexes first, so that rows are checked against the unique ones as they come.
    for (const SchemaEntry &e : schema)
        if (e.type == QLatin1String("index") && !e.sql.isEmpty())
            tryExec(target, e.sql.toUtf8().constData());

    exec(target, QStringLiteral("BEGIN"));
    for (const QString &table : tables)
        if (!copyTable(source, target, table, result))
            ++result.tablesLost;
    copySequences(source, target, result);
    exec(target, QStringLiteral("COMMIT"));

    // Triggers last: they must not fire for the rows copied above.
    for (const SchemaEntry &e : schema)
        if ((e.type == QLatin1String("view") || e.type == QLatin1String("trigger")) && !e.sql.isEmpty())
            tryExec(target, e.sql.toUtf8().constData());

    for (const char *pragma : {"user_version", "application_id"}) {
        const QVariant v = pragmaValue(source, pragma);
        if (v.isValid())
            tryExec(target, QStringLiteral("PRAGMA main.%1 = %2").arg(QLatin1String(pragma)).arg(v.toString().toLongLong()).toUtf8().constData());
    }
    return result;
}

}  // namespace Compact
