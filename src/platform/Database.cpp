#include "platform/Database.h"

#include "platform/JetLike.h"
#include "platform/LockWait.h"
#include "platform/UncPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <QVarLengthArray>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace {

// Connections may be opened on worker threads too.
std::atomic<int> g_connectionSerial{0};

// `mode`: SQLite's open mode, "rw", "rwc" or "ro".
QString uriFor(const QString &localPath, const char *mode)
{
    QString p = QFileInfo(localPath).absoluteFilePath();
    p.replace(QLatin1Char('%'), QLatin1String("%25"));
    p.replace(QLatin1Char('?'), QLatin1String("%3f"));
    p.replace(QLatin1Char('#'), QLatin1String("%23"));
    return QStringLiteral("file:") + p + QStringLiteral("?mode=") + QLatin1String(mode);
}

// The board's `like`: SQL "x LIKE y" calls like(y, x).
void likeFunction(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto pattern = QString::fromUtf16(static_cast<const char16_t *>(sqlite3_value_text16(argv[0])),
                                            sqlite3_value_bytes16(argv[0]) / 2);
    const auto text = QString::fromUtf16(static_cast<const char16_t *>(sqlite3_value_text16(argv[1])),
                                         sqlite3_value_bytes16(argv[1]) / 2);
    sqlite3_result_int(ctx, jetLike(text, pattern) ? 1 : 0);
}

bool hasBadNameCharacters(const QString &path)
{
    for (QChar c : path) {
        if (c.unicode() < 0x20 || c == QLatin1Char('"') || c == QLatin1Char('<') || c == QLatin1Char('>') ||
            c == QLatin1Char('|') || c == QLatin1Char('?') || c == QLatin1Char('*'))
            return true;
    }
    return false;
}

// A lock that outlasted the whole wait at open: held to itself by another
// program all along, or only in use by others.
StoreError lockFailure(sqlite3 *handle, const QString &path)
{
    if (LockWait::heldThroughout(handle))
        return StoreError(err::FileInUse,
                          QStringLiteral("Could not use '%1'; file already in use by another program.").arg(path));
    return StoreError(err::CannotLock, QStringLiteral("Could not lock file '%1': other programs are using it.").arg(path));
}

int nativeCode(const QSqlError &e)
{
    bool ok = false;
    const int code = e.nativeErrorCode().toInt(&ok);
    return ok ? code : SQLITE_ERROR;
}

}  // namespace

namespace Store {

QString resolvePath(const QString &path)
{
    if (path.isEmpty() || hasBadNameCharacters(path))
        throw StoreError(err::BadFileName, QStringLiteral("'%1' is not a valid file name.").arg(path));
    const auto local = UncPath::toLocal(path);
    if (!local)
        throw StoreError(err::PathNotFound,
                         QStringLiteral("'%1' is not a valid path. The share is not known on this computer.").arg(path));
    const QFileInfo fi(*local);
    for (const QString &part : fi.absoluteFilePath().split(QLatin1Char('/')))
        if (part.toUtf8().size() > 255)
            throw StoreError(err::BadFileName, QStringLiteral("'%1' is not a valid file name.").arg(path));
    if (!QFileInfo(fi.absolutePath()).isDir())
        throw StoreError(err::PathNotFound,
                         QStringLiteral("'%1' is not a valid path. Make sure that the path is spelled correctly and that you are connected to the server on which the file resides.")
                             .arg(path));
    return fi.absoluteFilePath();
}

StoreError errorFromSqlite(int code, const QString &text, bool writing)
{
    const int primary = code & 0xff;
    switch (primary) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StoreError(err::RowLocked,
                          writing ? QStringLiteral("Could not update; currently locked by another program.")
                                  : QStringLiteral("Could not read; currently locked by another program."));
    case SQLITE_CORRUPT:
        if (code == SQLITE_CORRUPT_INDEX)
            return StoreError(err::DamagedIndex, QStringLiteral("An index of the database is damaged (%1).").arg(text));
        return StoreError(err::Damaged, QStringLiteral("The database file is damaged (%1).").arg(text));
    case SQLITE_NOTADB:
        return StoreError(err::NotThisStore, QStringLiteral("Unrecognized database format: the file is not a database of this program."));
    case SQLITE_CONSTRAINT:
        if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY)
            return StoreError(err::DuplicateKey,
                              QStringLiteral("The change would create a duplicate value in a unique index (%1).").arg(text));
        return StoreError(code, QStringLiteral("The value was refused: %1.").arg(text));
    case SQLITE_CANTOPEN:
        return StoreError(err::PathNotFound, QStringLiteral("The database file cannot be reached (%1).").arg(text));
    default:
        return StoreError(code, text.isEmpty() ? QString::fromUtf8(sqlite3_errstr(code)) : text);
    }
}

}  // namespace Store

// ---------------------------------------------------------------- Recordset

void Recordset::fetch()
{
    if (m_snapshot) {
        m_eof = m_pos >= m_rows.size();
        return;
    }
    if (!m_query) {
        m_eof = true;
        return;
    }
    if (m_query->next()) {
        m_eof = false;
        return;
    }
    const QSqlError e = m_query->lastError();
    m_eof = true;
    m_query->finish();  // gives the read lock back at once
    if (e.isValid())
        throw Store::errorFromSqlite(nativeCode(e), e.databaseText(), false);
}

bool Recordset::eof() const { return m_eof; }

void Recordset::moveNext()
{
    if (m_eof)
        throw StoreError(3021, QStringLiteral("No current record."));
    if (m_snapshot)
        ++m_pos;
    fetch();
}

int Recordset::fieldIndex(const QString &name) const
{
    return m_index.value(name.toCaseFolded(), -1);
}

QVariant Recordset::value(int index) const
{
    if (m_eof)
        throw StoreError(3021, QStringLiteral("No current record."));
    if (m_snapshot)
        return m_rows[m_pos].value(index);
    return m_query->value(index);
}

QVariant Recordset::value(const QString &name) const
{
    const int i = fieldIndex(name);
    if (i < 0)
        throw StoreError(3265, QStringLiteral("Item '%1' not found in this collection.").arg(name));
    return value(i);
}

void Recordset::edit(const QVariantMap &changes)
{
    if (!m_snapshot || !m_db)
        throw StoreError(3027, QStringLiteral("Cannot update. Database or object is read-only."));
    if (m_eof)
        throw StoreError(3021, QStringLiteral("No current record."));
    if (changes.isEmpty())
        return;
    QStringList sets;
    QVariantList params;
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        if (fieldIndex(it.key()) < 0)
            throw StoreError(3265, QStringLiteral("Item '%1' not found in this collection.").arg(it.key()));
        sets << Database::quoteIdentifier(it.key()) + QStringLiteral(" = ?");
        params << it.value();
    }
    params << m_rowIds[m_pos];
    const qint64 n = m_db->execute(QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                                       .arg(Database::quoteIdentifier(m_table), sets.join(QStringLiteral(", "))),
                                   params);
    if (n == 0)
        throw StoreError(err::RowDeleted, QStringLiteral("The record has been deleted by another program."));
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        m_rows[m_pos][fieldIndex(it.key())] = it.value();
}

void Recordset::remove()
{
    if (!m_snapshot || !m_db)
        throw StoreError(3027, QStringLiteral("Cannot update. Database or object is read-only."));
    if (m_eof)
        throw StoreError(3021, QStringLiteral("No current record."));
    const qint64 n = m_db->execute(
        QStringLiteral("DELETE FROM %1 WHERE rowid = ?").arg(Database::quoteIdentifier(m_table)), {m_rowIds[m_pos]});
    if (n == 0)
        throw StoreError(err::RowDeleted, QStringLiteral("The record has been deleted by another program."));
}

void Recordset::close()
{
    if (m_query)
        m_query->finish();
    m_query.reset();
    m_rows.clear();
    m_rowIds.clear();
    m_eof = true;
}

// ----------------------------------------------------------------- Database

Database::Database(Database &&other) noexcept
    : m_connection(std::move(other.m_connection)), m_localPath(std::move(other.m_localPath)),
      m_inTransaction(other.m_inTransaction)
{
    other.m_connection.clear();
    other.m_inTransaction = false;
}

Database &Database::operator=(Database &&other) noexcept
{
    if (this != &other) {
        close();
        m_connection = std::move(other.m_connection);
        m_localPath = std::move(other.m_localPath);
        m_inTransaction = other.m_inTransaction;
        other.m_connection.clear();
        other.m_inTransaction = false;
    }
    return *this;
}

Database::~Database() { close(); }

QString Database::quoteIdentifier(const QString &name)
{
    QString q = name;
    q.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

Database Database::connect(const QString &localPath, Access access)
{
    Database db;
    db.m_connection = QStringLiteral("tavello-%1").arg(++g_connectionSerial);
    db.m_localPath = localPath;
    {
        QSqlDatabase q = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), db.m_connection);
        static const char *const modes[] = {"rw", "rwc", "ro"};
        q.setDatabaseName(uriFor(localPath, modes[int(access)]));
        q.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI"));
        if (!q.open()) {
            const QSqlError e = q.lastError();
            db.close();
            const StoreError mapped = Store::errorFromSqlite(nativeCode(e), e.databaseText(), false);
            if (mapped.number() == err::PathNotFound && QFileInfo(localPath).exists())
                throw StoreError(err::CannotOpenFile,
                                 QStringLiteral("Cannot open the file '%1'. You may not have permission to use it.").arg(localPath));
            throw mapped;
        }
    }
    db.configure();
    return db;
}

void Database::configure()
{
    sqlite3 *h = handle();
    if (!h)
        throw StoreError(3420, QStringLiteral("Object invalid or no longer set."));
    sqlite3_extended_result_codes(h, 1);
    LockWait::install(h, m_localPath);
    sqlite3_create_function_v2(h, "like", 2, SQLITE_UTF16 | SQLITE_DETERMINISTIC, nullptr, likeFunction,
                               nullptr, nullptr, nullptr);
    execute(QStringLiteral("PRAGMA foreign_keys = ON"));
}

Database Database::open(const QString &path, Mode mode)
{
    const QString local = Store::resolvePath(path);
    const QFileInfo fi(local);
    if (fi.isSymLink() && !fi.exists())
        throw StoreError(err::FileNotFound, QStringLiteral("File not found: '%1' points to a file that does not exist.").arg(path));
    if (!fi.exists())
        throw StoreError(err::DatabaseMissing, QStringLiteral("Could not find file '%1'.").arg(path));
    if (fi.isDir())
        throw StoreError(err::BadFileName, QStringLiteral("'%1' is a folder, not a database file.").arg(path));

    Database db = connect(local, mode == Mode::ReadOnly ? Access::ReadOnly : Access::ReadWrite);
    // Touch the file's header: a foreign or damaged file, or one that another
    // program holds to itself, shows here rather than at the first query.
    try {
        db.scalar(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    } catch (const StoreError &e) {
        const StoreError failure = e.number() == err::RowLocked ? lockFailure(db.handle(), path) : e;
        db.close();
        throw failure;
    }
    if (mode == Mode::Exclusive) {
        try {
            db.execute(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
            db.execute(QStringLiteral("BEGIN EXCLUSIVE"));
            db.execute(QStringLiteral("COMMIT"));
        } catch (const StoreError &e) {
            const StoreError failure = e.number() == err::RowLocked ? lockFailure(db.handle(), path) : e;
            db.close();
            throw failure;
        }
    }
    return db;
}

void Database::useRollbackJournal()
{
    // A shared folder on a file server cannot carry WAL's shared memory.
    if (scalar(QStringLiteral("PRAGMA journal_mode")).toString().compare(QLatin1String("wal"), Qt::CaseInsensitive) == 0)
        execute(QStringLiteral("PRAGMA journal_mode = DELETE"));
}

Database Database::create(const QString &path)
{
    const QString local = Store::resolvePath(path);
    if (QFileInfo::exists(local) || QFileInfo(local).isSymLink())
        throw StoreError(err::AlreadyExists, QStringLiteral("Database '%1' already exists.").arg(path));
    Database db = connect(local, Access::Create);
    db.execute(QStringLiteral("PRAGMA journal_mode = DELETE"));
    return db;
}

void Database::close() noexcept
{
    if (m_connection.isEmpty())
        return;
    {
        LockWait::forget(handle());
        QSqlDatabase q = QSqlDatabase::database(m_connection, false);
        if (m_inTransaction && q.isOpen())
            q.exec(QStringLiteral("ROLLBACK"));
        q.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
    m_inTransaction = false;
}

bool Database::isOpen() const
{
    return !m_connection.isEmpty() && QSqlDatabase::database(m_connection, false).isOpen();
}

sqlite3 *Database::handle() const
{
    if (m_connection.isEmpty())
        return nullptr;
    const QVariant v = QSqlDatabase::database(m_connection, false).driver()->handle();
    if (v.isValid() && qstrcmp(v.typeName(), "sqlite3*") == 0)
        return *static_cast<sqlite3 *const *>(v.data());
    return nullptr;
}

void Database::requireOpen() const
{
    if (!isOpen())
        throw StoreError(err::ObjectClosed, QStringLiteral("Object invalid or no longer set."));
}

void Database::fail(const QSqlError &error, bool writing) const
{
    int code = nativeCode(error);
    // Qt may report the primary code only; the handle still knows the extended one.
    if (sqlite3 *h = handle(); h && (sqlite3_extended_errcode(h) & 0xff) == code)
        code = sqlite3_extended_errcode(h);
    throw Store::errorFromSqlite(code, error.databaseText(), writing);
}

QSqlQuery Database::prepare(const QString &sql, const QVariantList &params)
{
    requireOpen();
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        fail(q.lastError(), false);
    for (const QVariant &p : params)
        q.addBindValue(p);
    return q;
}

qint64 Database::execute(const QString &sql, const QVariantList &params)
{
    QSqlQuery q = prepare(sql, params);
    if (!q.exec())
        fail(q.lastError(), true);
    const qint64 n = q.numRowsAffected();
    q.finish();
    return n;
}

QVariant Database::scalar(const QString &sql, const QVariantList &params)
{
    QSqlQuery q = prepare(sql, params);
    if (!q.exec())
        fail(q.lastError(), false);
    QVariant v;
    if (q.next())
        v = q.value(0);
    else if (q.lastError().isValid())
        fail(q.lastError(), false);
    q.finish();
    return v;
}

Recordset Database::query(const QString &sql, const QVariantList &params)
{
    Recordset rs;
    rs.m_db = this;
    rs.m_query = std::make_unique<QSqlQuery>(prepare(sql, params));
    if (!rs.m_query->exec())
        fail(rs.m_query->lastError(), false);
    const QSqlRecord rec = rs.m_query->record();
    for (int i = 0; i < rec.count(); ++i) {
        rs.m_names << rec.fieldName(i);
        rs.m_index.insert(rec.fieldName(i).toCaseFolded(), i);
    }
    rs.fetch();
    return rs;
}

Recordset Database::openTable(const QString &table, const QString &where, const QVariantList &params,
                              const QString &orderBy)
{
    QString sql = QStringLiteral("SELECT rowid, * FROM %1").arg(quoteIdentifier(table));
    if (!where.isEmpty())
        sql += QStringLiteral(" WHERE ") + where;
    if (!orderBy.isEmpty())
        sql += QStringLiteral(" ORDER BY ") + orderBy;
    QSqlQuery q = prepare(sql, params);
    if (!q.exec())
        fail(q.lastError(), false);
    Recordset rs;
    rs.m_db = this;
    rs.m_table = table;
    rs.m_snapshot = true;
    const QSqlRecord rec = q.record();
    for (int i = 1; i < rec.count(); ++i) {
        rs.m_names << rec.fieldName(i);
        rs.m_index.insert(rec.fieldName(i).toCaseFolded(), i - 1);
    }
    while (q.next()) {
        rs.m_rowIds << q.value(0).toLongLong();
        QVector<QVariant> row(rec.count() - 1);
        for (int i = 1; i < rec.count(); ++i)
            row[i - 1] = q.value(i);
        rs.m_rows << std::move(row);
    }
    if (q.lastError().isValid())
        fail(q.lastError(), false);
    q.finish();
    rs.fetch();
    return rs;
}

qint64 Database::addRow(const QString &table, const QVariantMap &values)
{
    QString sql;
    QVariantList params;
    if (values.isEmpty()) {
        sql = QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(quoteIdentifier(table));
    } else {
        QStringList cols, marks;
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            cols << quoteIdentifier(it.key());
            marks << QStringLiteral("?");
            params << it.value();
        }
        sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                  .arg(quoteIdentifier(table), cols.join(QStringLiteral(", ")), marks.join(QStringLiteral(", ")));
    }
    execute(sql, params);
    return sqlite3_last_insert_rowid(handle());
}

namespace {

// Binds a value the way Qt SQL would: Null, whole numbers, reals, text.
int bindValue(sqlite3_stmt *st, int index, const QVariant &v)
{
    if (v.isNull())
        return sqlite3_bind_null(st, index);
    switch (v.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(st, index, v.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return sqlite3_bind_double(st, index, v.toDouble());
    case QMetaType::QString: {
        // The text stays alive in `v` until the step is done.
        const QString &text = *static_cast<const QString *>(v.constData());
        return sqlite3_bind_text16(st, index, text.isNull() ? static_cast<const void *>(u"") : static_cast<const void *>(text.utf16()), int(text.size() * 2), SQLITE_STATIC);
    }
    default: {
        const QByteArray bytes = v.toString().toUtf8();
        return sqlite3_bind_text(st, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
    }
    }
}

}  // namespace

Statement::Statement(Statement &&other) noexcept : m_db(other.m_db), m_statement(other.m_statement)
{
    other.m_statement = nullptr;
}

Statement &Statement::operator=(Statement &&other) noexcept
{
    if (this != &other) {
        if (m_statement)
            sqlite3_finalize(m_statement);
        m_db = other.m_db;
        m_statement = other.m_statement;
        other.m_statement = nullptr;
    }
    return *this;
}

Statement::~Statement()
{
    if (m_statement)
        sqlite3_finalize(m_statement);
}

Statement Database::prepareStatement(const QString &sql)
{
    requireOpen();
    sqlite3 *h = handle();
    Statement st;
    st.m_db = this;
    const QByteArray text = sql.toUtf8();
    const int rc = sqlite3_prepare_v2(h, text.constData(), int(text.size()), &st.m_statement, nullptr);
    if (rc != SQLITE_OK)
        throw Store::errorFromSqlite(sqlite3_extended_errcode(h), QString::fromUtf8(sqlite3_errmsg(h)), false);
    return st;
}

qint64 Statement::execute(const QVariantList &params)
{
    if (!m_statement)
        throw StoreError(err::ObjectClosed, QStringLiteral("Object invalid or no longer set."));
    sqlite3 *h = sqlite3_db_handle(m_statement);
    sqlite3_reset(m_statement);
    for (int i = 0; i < params.size(); ++i)
        bindValue(m_statement, i + 1, params[i]);
    const int rc = sqlite3_step(m_statement);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) {
        const StoreError e = Store::errorFromSqlite(sqlite3_extended_errcode(h), QString::fromUtf8(sqlite3_errmsg(h)), true);
        sqlite3_reset(m_statement);
        throw e;
    }
    const qint64 changed = sqlite3_changes64(h);
    sqlite3_reset(m_statement);
    return changed;
}

qint64 Database::forEachTextRow(const QString &sql, const QVariantList &params, const TextRow &row)
{
    requireOpen();
    sqlite3 *h = handle();
    const auto failure = [h](int code) {
        return Store::errorFromSqlite(sqlite3_extended_errcode(h) ? sqlite3_extended_errcode(h) : code,
                                      QString::fromUtf8(sqlite3_errmsg(h)), false);
    };
    sqlite3_stmt *st = nullptr;
    const QByteArray text = sql.toUtf8();
    int rc = sqlite3_prepare_v2(h, text.constData(), int(text.size()), &st, nullptr);
    if (rc != SQLITE_OK)
        throw failure(rc);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> guard(st, sqlite3_finalize);
    for (int i = 0; i < params.size(); ++i) {
        const QVariant &v = params[i];
        if (v.isNull()) {
            sqlite3_bind_null(st, i + 1);
        } else if (v.userType() == QMetaType::Int || v.userType() == QMetaType::LongLong) {
            sqlite3_bind_int64(st, i + 1, v.toLongLong());
        } else if (v.userType() == QMetaType::Double) {
            sqlite3_bind_double(st, i + 1, v.toDouble());
        } else {
            const QByteArray bytes = v.toString().toUtf8();
            sqlite3_bind_text(st, i + 1, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        }
    }
    const int columns = sqlite3_column_count(st);
    QVarLengthArray<QByteArrayView, 16> fields(columns);
    qint64 seen = 0;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        for (int c = 0; c < columns; ++c) {
            const auto *t = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
            fields[c] = t ? QByteArrayView(t, sqlite3_column_bytes(st, c)) : QByteArrayView();
        }
        ++seen;
        if (!row(fields.constData(), columns))
            return seen;
    }
    if (rc != SQLITE_DONE)
        throw failure(rc);
    return seen;
}

void Database::beginTrans()
{
    execute(QStringLiteral("BEGIN IMMEDIATE"));
    m_inTransaction = true;
}

void Database::commitTrans()
{
    execute(QStringLiteral("COMMIT"));
    m_inTransaction = false;
}

void Database::rollback() noexcept
{
    if (!isOpen())
        return;
    try {
        execute(QStringLiteral("ROLLBACK"));
    } catch (const StoreError &) {
    }
    m_inTransaction = false;
}

QStringList Database::tableNames()
{
    QStringList names;
    Recordset rs = query(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' "
                                        "AND name NOT LIKE 'sqlite[_]*' ORDER BY rowid"));
    for (; !rs.eof(); rs.moveNext())
        names << rs.value(0).toString();
    return names;
}

QStringList Database::fieldNames(const QString &table)
{
    QStringList names;
    Recordset rs = query(QStringLiteral("SELECT name FROM pragma_table_info(?) ORDER BY cid"), {table});
    for (; !rs.eof(); rs.moveNext())
        names << rs.value(0).toString();
    if (names.isEmpty())
        throw StoreError(3078, QStringLiteral("Cannot find the input table '%1'.").arg(table));
    return names;
}

void Database::addColumn(const QString &table, const QString &column, const QString &definition)
{
    execute(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                .arg(quoteIdentifier(table), quoteIdentifier(column), definition));
}

void Database::dropColumn(const QString &table, const QString &column)
{
    execute(QStringLiteral("ALTER TABLE %1 DROP COLUMN %2").arg(quoteIdentifier(table), quoteIdentifier(column)));
}

void Database::renameColumn(const QString &table, const QString &from, const QString &to)
{
    execute(QStringLiteral("ALTER TABLE %1 RENAME COLUMN %2 TO %3")
                .arg(quoteIdentifier(table), quoteIdentifier(from), quoteIdentifier(to)));
}
