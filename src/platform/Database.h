#pragma once

#include "platform/StoreError.h"

#include <QByteArrayView>
#include <QHash>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;
class Database;

// Rows of a query. A recordset from Database::query walks forward through
// the rows as the store delivers them; one from Database::openTable holds a
// snapshot of the rows and can edit or delete the row it stands on. Field
// names are blind to case. A Null field reads as an invalid QVariant.
class Recordset {
public:
    Recordset() = default;
    Recordset(Recordset &&) noexcept = default;
    Recordset &operator=(Recordset &&) noexcept = default;

    bool eof() const;
    void moveNext();

    int fieldCount() const { return int(m_names.size()); }
    const QStringList &fieldNames() const { return m_names; }
    int fieldIndex(const QString &name) const;  // -1 when missing

    QVariant value(int index) const;
    QVariant value(const QString &name) const;  // 3265 when the field is missing
    bool isNull(const QString &name) const { return value(name).isNull(); }
    QString text(const QString &name) const { return value(name).toString(); }

    // Editing (openTable recordsets only). The row is addressed by its row
    // id: a row deleted by another program meanwhile gives 3167.
    void edit(const QVariantMap &changes);
    void remove();

    void close();

private:
    friend class Database;
    void fetch();

    Database *m_db = nullptr;
    QString m_table;
    QStringList m_names;
    QHash<QString, int> m_index;  // case-folded name -> column
    // Forward walk
    std::unique_ptr<QSqlQuery> m_query;
    bool m_eof = true;
    // Snapshot
    bool m_snapshot = false;
    QVector<QVector<QVariant>> m_rows;
    QVector<qint64> m_rowIds;
    qsizetype m_pos = 0;
};

// A statement prepared once and run many times with new values, for work
// that repeats one statement over many rows (the import). It goes with its
// Database, which must outlive it.
class Statement {
public:
    Statement() = default;
    Statement(Statement &&other) noexcept;
    Statement &operator=(Statement &&other) noexcept;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    ~Statement();

    // Runs it with `params` in place of its ?s; returns the rows changed.
    qint64 execute(const QVariantList &params);

private:
    friend class Database;
    Database *m_db = nullptr;
    sqlite3_stmt *m_statement = nullptr;
};

// One connection to the board's database file. All failures are thrown as
// StoreError with the numbers of platform/StoreError.h. Paths may be given in
// UNC form; they are resolved through UncPath.
class Database {
public:
    enum class Mode { Shared, Exclusive, ReadOnly };

    Database() = default;
    Database(Database &&other) noexcept;
    Database &operator=(Database &&other) noexcept;
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    ~Database();

    // Opens an existing file. Shared: other programs read and write at the
    // same time. Exclusive: the file is locked against every other program
    // until close. ReadOnly: nothing of the file is ever changed, for a file
    // not yet known to be a board. The file's journal is left as it is.
    static Database open(const QString &path, Mode mode = Mode::Shared);
    // Switches a WAL file to a rollback journal. Only for the board's own
    // file once it is known to be one: it rewrites the file's header.
    void useRollbackJournal();
    // Creates a new, empty file; an existing file is never touched (3204).
    static Database create(const QString &path);

    void close() noexcept;
    bool isOpen() const;
    const QString &localPath() const { return m_localPath; }

    qint64 execute(const QString &sql, const QVariantList &params = {});
    Recordset query(const QString &sql, const QVariantList &params = {});
    QVariant scalar(const QString &sql, const QVariantList &params = {});
    // Snapshot of the rows of a table (all fields), editable row by row.
    Recordset openTable(const QString &table, const QString &where = QString(),
                        const QVariantList &params = {}, const QString &orderBy = QString());
    // Adds a row; fields not given take their defaults. Returns the row id.
    qint64 addRow(const QString &table, const QVariantMap &values = {});

    Statement prepareStatement(const QString &sql);
    // Walks the rows of a query as UTF-8 texts, the quick way through very
    // many rows (the export): `row` gets each field's text, a null view for
    // Null, and returns false to stop. Returns the number of rows seen.
    using TextRow = std::function<bool(const QByteArrayView *fields, int count)>;
    qint64 forEachTextRow(const QString &sql, const QVariantList &params, const TextRow &row);

    void beginTrans();
    void commitTrans();
    void rollback() noexcept;
    bool inTransaction() const { return m_inTransaction; }

    QStringList tableNames();
    QStringList fieldNames(const QString &table);
    // `definition` is the column's type and constraints, e.g. "TEXT(250)".
    void addColumn(const QString &table, const QString &column, const QString &definition);
    void dropColumn(const QString &table, const QString &column);
    void renameColumn(const QString &table, const QString &from, const QString &to);

    sqlite3 *handle() const;

    static QString quoteIdentifier(const QString &name);

private:
    friend class Recordset;
    friend class Statement;
    enum class Access { ReadWrite, Create, ReadOnly };
    static Database connect(const QString &localPath, Access access);
    void configure();
    QSqlQuery prepare(const QString &sql, const QVariantList &params);
    void requireOpen() const;
    [[noreturn]] void fail(const QSqlError &error, bool writing) const;

    QString m_connection;
    QString m_localPath;
    bool m_inTransaction = false;
};

namespace Store {
// Resolves a (UNC) path for a store open, raising 3044/3055 as the open would.
QString resolvePath(const QString &path);
// Maps an SQLite result code and text to the console's numbers.
StoreError errorFromSqlite(int code, const QString &text, bool writing);
}  // namespace Store
