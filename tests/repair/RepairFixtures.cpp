#include "RepairFixtures.h"

#include "store/CreateDB.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRandomGenerator>
#include <QVariant>

#include <sqlite3.h>
#include <sys/stat.h>

namespace RepairFixtures {

namespace {

struct Handle {
    sqlite3 *db = nullptr;
    explicit Handle(const QString &local, bool writable = true)
    {
        sqlite3_open_v2(QFile::encodeName(local).constData(), &db,
                        writable ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY, nullptr);
        sqlite3_busy_timeout(db, 5000);
    }
    ~Handle() { sqlite3_close(db); }
};

QString text(sqlite3_stmt *s, int i)
{
    const auto *t = reinterpret_cast<const char *>(sqlite3_column_text(s, i));
    return t ? QString::fromUtf8(t, sqlite3_column_bytes(s, i)) : QString();
}

// A value with its type, so that 1 and '1' differ.
QString tagged(sqlite3_stmt *s, int i)
{
    switch (sqlite3_column_type(s, i)) {
    case SQLITE_NULL:
        return QStringLiteral("N");
    case SQLITE_INTEGER:
        return QStringLiteral("I") + QString::number(sqlite3_column_int64(s, i));
    case SQLITE_FLOAT:
        return QStringLiteral("F") + QString::number(sqlite3_column_double(s, i), 'g', 17);
    case SQLITE_BLOB:
        return QStringLiteral("B") + QString::fromLatin1(
                                         QByteArray(static_cast<const char *>(sqlite3_column_blob(s, i)),
                                                    sqlite3_column_bytes(s, i)).toHex());
    default:
        return QStringLiteral("T") + text(s, i);
    }
}

quint64 readVarint(const uchar *p, int *length)
{
    quint64 v = 0;
    for (int i = 0; i < 9; ++i) {
        if (i == 8) {
            v = (v << 8) | p[i];
            *length = 9;
            return v;
        }
        v = (v << 7) | (p[i] & 0x7f);
        if (!(p[i] & 0x80)) {
            *length = i + 1;
            return v;
        }
    }
    return v;
}

}  // namespace

void makeBoard(const QString &local, const BoardShape &shape)
{
    if (const int rc = CreateDatabase(local); rc != 0)
        qFatal("CreateDatabase failed with %d", rc);
    Handle h(local);
    sqlite3_exec(h.db, "BEGIN", nullptr, nullptr, nullptr);
    if (!shape.guest)
        sqlite3_exec(h.db, "DELETE FROM EmployeeTable WHERE Name = 'Guest'", nullptr, nullptr, nullptr);
    sqlite3_stmt *insert = nullptr;
    sqlite3_prepare_v2(h.db,
                       "INSERT INTO EmployeeTable(Name, Status, StatusCode, Phone, DueBack, Comments, LastModified, "
                       "ActiveFlag, UID, NetWorkLogonID) VALUES (?1, 'In', 1, ?2, 'Tomorrow', ?3, ?4, ?5, ?6, ?7)",
                       -1, &insert, nullptr);
    QRandomGenerator random(20060722);
    for (int i = 1; i <= shape.users; ++i) {
        const QByteArray name = "User " + QByteArray::number(i).rightJustified(6, '0') + " " +
                                QByteArray::number(random.generate(), 16);
        QByteArray comment;
        while (comment.size() < 200)
            comment += QByteArray::number(random.generate64(), 36);
        comment.truncate(200);
        const QByteArray phone = QByteArray::number(1000 + i % 9000);
        const QByteArray modified = "2006-07-" + QByteArray::number(10 + i % 18) + " 10:00:00";
        const QByteArray active = i % shape.activeEvery == 0 ? "Yes" : "No";
        const QByteArray uid = "uid-" + QByteArray::number(i);
        const QByteArray logon = "logon-" + QByteArray::number(i);
        const QByteArray *values[] = {&name, &phone, &comment, &modified, &active, &uid, &logon};
        for (int v = 0; v < 7; ++v)
            sqlite3_bind_text(insert, v + 1, values[v]->constData(), int(values[v]->size()), SQLITE_TRANSIENT);
        if (sqlite3_step(insert) != SQLITE_DONE)
            qFatal("insert failed: %s", sqlite3_errmsg(h.db));
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    if (shape.deleteEvery > 0) {
        // Runs of fifty neighbours, so that whole pages fall free.
        const QByteArray del = "DELETE FROM EmployeeTable WHERE Name LIKE 'User %' AND "
                               "(CAST(substr(Name, 6, 6) AS INTEGER) / 50) % " +
                               QByteArray::number(shape.deleteEvery) + " = 0";
        sqlite3_exec(h.db, del.constData(), nullptr, nullptr, nullptr);
    }
    if (sqlite3_exec(h.db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("commit failed: %s", sqlite3_errmsg(h.db));
}

QByteArray bytesOf(const QString &local)
{
    QFile f(local);
    if (!f.open(QIODevice::ReadOnly))
        return QByteArray();
    return f.readAll();
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
    Handle h(local);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QStringList tables;
    {
        sqlite3_stmt *s = nullptr;
        sqlite3_prepare_v2(h.db, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name", -1, &s, nullptr);
        while (s && sqlite3_step(s) == SQLITE_ROW)
            tables << text(s, 0);
        sqlite3_finalize(s);
    }
    if (tables.isEmpty())
        return QStringLiteral("no tables");
    qint64 rows = 0;
    for (const QString &table : tables) {
        sqlite3_stmt *s = nullptr;
        const QByteArray count = "SELECT count(*) FROM pragma_table_info('" + table.toUtf8() + "')";
        sqlite3_prepare_v2(h.db, count.constData(), -1, &s, nullptr);
        int columns = 0;
        if (s && sqlite3_step(s) == SQLITE_ROW)
            columns = sqlite3_column_int(s, 0);
        sqlite3_finalize(s);
        QByteArray order;
        for (int c = 1; c <= columns; ++c)
            order += (c > 1 ? ", " : "") + QByteArray::number(c);
        const QByteArray sql = "SELECT * FROM \"" + table.toUtf8() + "\" ORDER BY " + order;
        s = nullptr;
        if (sqlite3_prepare_v2(h.db, sql.constData(), -1, &s, nullptr) != SQLITE_OK)
            return QStringLiteral("unreadable: ") + QString::fromUtf8(sqlite3_errmsg(h.db));
        hash.addData(table.toUtf8());
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            ++rows;
            for (int c = 0; c < columns; ++c)
                hash.addData(tagged(s, c).toUtf8() + '\x1f');
            hash.addData("\n");
        }
        sqlite3_finalize(s);
        if (rc != SQLITE_DONE)
            return QStringLiteral("unreadable: ") + QString::fromUtf8(sqlite3_errmsg(h.db));
    }
    return QString::number(rows) + QStringLiteral(" rows ") + QString::fromLatin1(hash.result().toHex());
}

QString flagsResetFingerprint(const QString &local)
{
    const QString copy = local + QStringLiteral(".expected");
    QFile::remove(copy);
    QFile::copy(local, copy);
    scalar(copy, QStringLiteral("UPDATE EmployeeTable SET ActiveFlag = 'No' WHERE ActiveFlag = 'Yes'"));
    const QString fp = fingerprint(copy);
    QFile::remove(copy);
    return fp;
}

QMap<QString, QString> employeeRows(const QString &local)
{
    QMap<QString, QString> rows;
    Handle h(local);
    sqlite3_stmt *s = nullptr;
    sqlite3_prepare_v2(h.db, "SELECT * FROM EmployeeTable", -1, &s, nullptr);
    while (s && sqlite3_step(s) == SQLITE_ROW) {
        QStringList values;
        for (int c = 0; c < sqlite3_column_count(s); ++c)
            values << tagged(s, c);
        rows.insert(text(s, 0), values.join(QLatin1Char('|')));
    }
    sqlite3_finalize(s);
    return rows;
}

QVariant scalar(const QString &local, const QString &sql)
{
    Handle h(local);
    sqlite3_stmt *s = nullptr;
    if (sqlite3_prepare_v2(h.db, sql.toUtf8().constData(), -1, &s, nullptr) != SQLITE_OK)
        return QStringLiteral("error: ") + QString::fromUtf8(sqlite3_errmsg(h.db));
    QVariant v;
    const int rc = sqlite3_step(s);
    if (rc == SQLITE_ROW)
        v = sqlite3_column_type(s, 0) == SQLITE_INTEGER ? QVariant(sqlite3_column_int64(s, 0)) : QVariant(text(s, 0));
    else if (rc != SQLITE_DONE)
        v = QStringLiteral("error: ") + QString::fromUtf8(sqlite3_errmsg(h.db));
    sqlite3_finalize(s);
    return v;
}

QString integrity(const QString &local)
{
    return scalar(local, QStringLiteral("PRAGMA integrity_check")).toString();
}

QVector<int> pagesOf(const QString &local, const QString &btree, const QString &kind)
{
    QVector<int> pages;
    Handle h(local, false);
    sqlite3_stmt *s = nullptr;
    sqlite3_prepare_v2(h.db, "SELECT pageno FROM dbstat WHERE name = ?1 AND pagetype = ?2 ORDER BY path", -1, &s,
                       nullptr);
    const QByteArray name = btree.toUtf8(), type = kind.toUtf8();
    sqlite3_bind_text(s, 1, name.constData(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(s, 2, type.constData(), -1, SQLITE_TRANSIENT);
    while (s && sqlite3_step(s) == SQLITE_ROW)
        pages << sqlite3_column_int(s, 0);
    sqlite3_finalize(s);
    return pages;
}

int pageSize(const QString &local)
{
    return scalar(local, QStringLiteral("PRAGMA page_size")).toInt();
}

QStringList namesOnLeaf(const QString &local, int page)
{
    const int size = pageSize(local);
    QFile f(local);
    if (!f.open(QIODevice::ReadOnly) || !f.seek(qint64(page - 1) * size))
        return {};
    const QByteArray bytes = f.read(size);
    const auto *p = reinterpret_cast<const uchar *>(bytes.constData());
    const int header = page == 1 ? 100 : 0;
    if (p[header] != 0x0d)  // a table leaf
        return {};
    const int cells = (p[header + 3] << 8) | p[header + 4];
    QStringList names;
    for (int c = 0; c < cells; ++c) {
        const int at = (p[header + 8 + 2 * c] << 8) | p[header + 9 + 2 * c];
        int n = 0;
        int pos = at;
        readVarint(p + pos, &n);  // payload size
        pos += n;
        readVarint(p + pos, &n);  // rowid
        pos += n;
        const int recordStart = pos;
        const quint64 headerSize = readVarint(p + pos, &n);
        pos += n;
        const quint64 type = readVarint(p + pos, &n);  // the first column: Name
        if (type < 13 || type % 2 == 0)
            continue;
        names << QString::fromUtf8(bytes.constData() + recordStart + headerSize, int((type - 13) / 2));
    }
    return names;
}

QVector<qint64> rowidsOnLeaf(const QString &local, int page)
{
    const int size = pageSize(local);
    QFile f(local);
    if (!f.open(QIODevice::ReadOnly) || !f.seek(qint64(page - 1) * size))
        return {};
    const QByteArray bytes = f.read(size);
    const auto *p = reinterpret_cast<const uchar *>(bytes.constData());
    const int header = page == 1 ? 100 : 0;
    if (p[header] != 0x0d)
        return {};
    const int cells = (p[header + 3] << 8) | p[header + 4];
    QVector<qint64> ids;
    for (int c = 0; c < cells; ++c) {
        int pos = (p[header + 8 + 2 * c] << 8) | p[header + 9 + 2 * c];
        int n = 0;
        readVarint(p + pos, &n);  // payload size
        pos += n;
        ids << qint64(readVarint(p + pos, &n));
    }
    return ids;
}

void damagePages(const QString &local, const QVector<int> &pages)
{
    const int size = pageSize(local);
    QFile f(local);
    if (!f.open(QIODevice::ReadWrite))
        qFatal("cannot open %s", qPrintable(local));
    QRandomGenerator noise(4352);
    for (int page : pages) {
        QByteArray junk(size, Qt::Uninitialized);
        for (char &b : junk)
            b = char(noise.bounded(256));
        f.seek(qint64(page - 1) * size);
        f.write(junk);
    }
}

}  // namespace RepairFixtures
