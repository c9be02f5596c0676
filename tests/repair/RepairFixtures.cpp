#include "RepairFixtures.h"

#include "store/CreateDB.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRandomGenerator>
#include <QStringList>

#include <sqlite3.h>
#include <sys/stat.h>

namespace RepairFixtures {

namespace {

// One statement on its own connection, values bound.
struct Query {
    sqlite3 *db = nullptr;
    sqlite3_stmt *s = nullptr;
    int rc = SQLITE_OK;

    Query(const QString &local, const QString &sql, const QVariantList &args = {})
    {
        sqlite3_open_v2(QFile::encodeName(local).constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_busy_timeout(db, 5000);
        rc = sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &s, nullptr);
        for (int i = 0; s && i < args.size(); ++i) {
            if (args[i].typeId() == QMetaType::QString)
                sqlite3_bind_text(s, i + 1, args[i].toString().toUtf8().constData(), -1, SQLITE_TRANSIENT);
            else
                sqlite3_bind_int64(s, i + 1, args[i].toLongLong());
        }
    }
    ~Query() { sqlite3_finalize(s); sqlite3_close(db); }
    bool next() { return s && (rc = sqlite3_step(s)) == SQLITE_ROW; }
    QString failure() const
    {
        const bool ok = rc == SQLITE_OK || rc == SQLITE_ROW || rc == SQLITE_DONE;
        return ok ? QString() : QStringLiteral("error: ") + QString::fromUtf8(sqlite3_errmsg(db));
    }
    QString text(int c) const { return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(s, c))); }
    // The row's values with their types, so that 1 and '1' differ.
    QString row() const
    {
        QStringList values;
        for (int c = 0; c < sqlite3_column_count(s); ++c) {
            const int type = sqlite3_column_type(s, c);
            const QByteArray bytes(static_cast<const char *>(sqlite3_column_blob(s, c)), sqlite3_column_bytes(s, c));
            values << QString::number(type) + (type == SQLITE_BLOB ? QString::fromLatin1(bytes.toHex()) : text(c));
        }
        return values.join(QLatin1Char('|'));
    }
};

}  // namespace

void makeBoard(const QString &local, int users, int activeEvery)
{
    if (const int rc = CreateDatabase(local); rc != 0)
        qFatal("CreateDatabase failed with %d", rc);
    scalar(local,
           "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?1) "
           "INSERT INTO EmployeeTable(Name, Status, StatusCode, Phone, DueBack, Comments, LastModified, ActiveFlag, "
           "UID, NetWorkLogonID) SELECT printf('User %06d %s', i, hex(randomblob(4))), 'In', 1, 1000 + i % 9000, "
           "'Tomorrow', hex(randomblob(100)), printf('2006-07-%d 10:00:00', 10 + i % 18), "
           "CASE WHEN i % ?2 = 0 THEN 'Yes' ELSE 'No' END, 'uid-' || i, 'logon-' || i FROM n",
           {users, activeEvery});
    // Runs of fifty neighbours, so that whole pages fall free.
    scalar(local, "DELETE FROM EmployeeTable WHERE Name LIKE 'User %' AND "
                  "(CAST(substr(Name, 6, 6) AS INTEGER) / 50) % 5 = 0");
}

QVariant scalar(const QString &local, const QString &sql, const QVariantList &args)
{
    Query q(local, sql, args);
    if (!q.next())
        return q.failure().isEmpty() ? QVariant() : QVariant(q.failure());
    return sqlite3_column_type(q.s, 0) == SQLITE_INTEGER ? QVariant(sqlite3_column_int64(q.s, 0))
                                                         : QVariant(q.text(0));
}

QByteArray bytesOf(const QString &local)
{
    QFile f(local);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeBytes(const QString &local, const QByteArray &bytes)
{
    QFile f(local);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

quint64 inodeOf(const QString &local)
{
    struct stat st {};
    return ::stat(QFile::encodeName(local).constData(), &st) == 0 ? quint64(st.st_ino) : 0;
}

QString fingerprint(const QString &local)
{
    QStringList tables, rows;
    for (Query q(local, QStringLiteral("SELECT type = 'table', name, type, sql FROM sqlite_master")); q.next();) {
        rows << q.row();  // the schema too, without the pages where it lives
        if (sqlite3_column_int(q.s, 0))
            tables << q.text(1);
    }
    for (const QString &table : tables) {
        Query q(local, QStringLiteral("SELECT * FROM \"%1\"").arg(table));
        while (q.next())
            rows << table + QLatin1Char('|') + q.row();
        rows << q.failure();  // empty, unless the table could not be read to its end
    }
    rows.sort();
    const QByteArray hash = QCryptographicHash::hash(rows.join(QLatin1Char('\n')).toUtf8(), QCryptographicHash::Sha1);
    return QStringLiteral("%1 rows ").arg(rows.size()) + QString::fromLatin1(hash.toHex());
}

QVector<Leaf> leavesOf(const QString &local, const QString &btree)
{
    QVector<Leaf> leaves;
    QVector<int> cells;
    for (Query q(local, QStringLiteral("SELECT pageno, ncell FROM dbstat WHERE name = ?1 AND pagetype = 'leaf' "
                                       "ORDER BY path"), {btree});
         q.next();) {
        leaves.append(Leaf{sqlite3_column_int(q.s, 0), {}});
        cells << sqlite3_column_int(q.s, 1);
    }
    // A table's leaves hold its rows in key order, each leaf as many as it has cells.
    Query q(local, QStringLiteral("SELECT rowid FROM \"%1\" ORDER BY rowid").arg(btree));
    for (int i = 0; i < leaves.size(); ++i)
        while (leaves[i].rowids.size() < cells[i] && q.next())
            leaves[i].rowids << sqlite3_column_int64(q.s, 0);
    return leaves;
}

void damagePages(const QString &local, const QVector<int> &pages)
{
    const int size = scalar(local, QStringLiteral("PRAGMA page_size")).toInt();
    QFile f(local);
    f.open(QIODevice::ReadWrite);
    QRandomGenerator noise(4352);
    for (int page : pages) {
        QByteArray junk(size, Qt::Uninitialized);
        noise.fillRange(reinterpret_cast<quint32 *>(junk.data()), size / 4);
        f.seek(qint64(page - 1) * size);
        f.write(junk);
    }
}

}  // namespace RepairFixtures
