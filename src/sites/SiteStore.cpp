#include "sites/SiteStore.h"

#include "core/frmDataPath.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/JetLike.h"
#include "platform/MessageBox.h"

#include <QEventLoop>
#include <QSet>
#include <QVariant>

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>

namespace Sites {

namespace {

// A description is a text: an empty one is stored as such, never as a Null.
QVariant textValue(const QString &text)
{
    return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
}

}  // namespace

std::optional<StoreError> testOpen(const QString &file)
{
    try {
        Database db = Database::open(file);
        db.close();
    } catch (const StoreError &e) {
        return e;
    }
    return std::nullopt;
}

bool validityTest(const QString &folder)
{
    if (PathSelection::holds2005Database(folder))
        return true;
    Hourglass::set(0);
    Msg::box(QStringLiteral("Error: This is NOT a 2005 Tavello database."), Msg::Buttons::OK, Msg::Icon::Information,
             QStringLiteral("Not a valid 2005 Tavello Database"));
    return false;
}

bool serverListed(Database &db, const QString &path)
{
    Recordset rs = db.query(QStringLiteral("SELECT * FROM ServersTable WHERE UNCPath = ?"), {path});
    const bool found = !rs.eof();
    rs.close();
    return found;
}

bool otherServerListed(Database &db, const QString &newPath, const QString &oldPath)
{
    Recordset rs = db.query(QStringLiteral("SELECT * FROM ServersTable WHERE UNCPath = ? AND UNCPath <> ?"),
                            {newPath, oldPath});
    const bool found = !rs.eof();
    rs.close();
    return found;
}

std::function<void()> addServerChange(Database &db, const QString &path, const QString &description)
{
    return [&db, path, description] {
        db.execute(QStringLiteral("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)"),
                   {path, textValue(description)});
    };
}

std::function<void()> modifyServerChange(Database &db, const QString &oldPath, const QString &newPath,
                                         const QString &description)
{
    return [&db, oldPath, newPath, description] {
        Recordset entry = db.openTable(QStringLiteral("ServersTable"), QStringLiteral("UNCPath = ?"), {oldPath});
        entry.edit({{QStringLiteral("UNCPath"), newPath}, {QStringLiteral("Description"), textValue(description)}});
    };
}

std::function<void()> deleteServerChange(Database &db, const QString &path)
{
    return [&db, path] {
        Recordset rs = db.openTable(QStringLiteral("ServersTable"), QStringLiteral("UNCPath = ?"), {path});
        if (!rs.eof())
            rs.remove();
    };
}

SiteOutcome readSite(const QString &folder)
{
    SiteOutcome out;
    try {
        Database db = Database::open(folder + DatabaseName);
        out.opened = true;
        Recordset rs = db.query(QStringLiteral("SELECT UNCPath, Description FROM ServersTable ORDER BY UNCPath"));
        for (; !rs.eof(); rs.moveNext()) {
            if (rs.isNull(QStringLiteral("UNCPath")))
                continue;
            out.rows.append({rs.text(QStringLiteral("UNCPath")), rs.text(QStringLiteral("Description"))});
        }
    } catch (const StoreError &e) {
        out.failures.append(e);
    }
    return out;
}

namespace {

// The board's query joins the path between double quotes, so a path that
// holds one has never been a valid statement.
StoreError brokenQuery(const QString &candidate)
{
    return StoreError(3075, QStringLiteral("Syntax error in string in query expression 'UNCPath LIKE \"") + candidate +
                                QStringLiteral("\"'."));
}

// The paths a site holds, asked the board's `like` question. A pattern
// without wildcards matches exactly the texts equal to it letter for letter
// without regard to case, which a lookup answers; only a pattern with
// wildcards is tried against each path.
class StoredPaths {
public:
    void add(const QString &path)
    {
        m_paths.append(path);
        m_folded.insert(folded(path));
    }
    bool anyLike(const QString &pattern) const
    {
        static const QString wild = QStringLiteral("*?#[");
        if (std::none_of(pattern.cbegin(), pattern.cend(), [](QChar c) { return wild.contains(c); }))
            return m_folded.contains(folded(pattern));
        return std::any_of(m_paths.cbegin(), m_paths.cend(), [&](const QString &p) { return jetLike(p, pattern); });
    }

private:
    // Letter by letter, as `like` compares.
    static QString folded(const QString &text)
    {
        QString out(text.size(), Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            out[i] = text[i].toCaseFolded();
        return out;
    }
    QStringList m_paths;
    QSet<QString> m_folded;
};

bool updateOpenSite(Database &db, const QString &target, const QVector<ServerRow> &list, SiteOutcome &out)
{
    StoredPaths stored;
    try {
        Recordset rs = db.query(QStringLiteral("SELECT UNCPath FROM ServersTable"));
        for (; !rs.eof(); rs.moveNext())
            if (const QVariant path = rs.value(0); !path.isNull())
                stored.add(path.toString());
    } catch (const StoreError &e) {
        out.failures.append(e);
        return false;
    }
    for (const ServerRow &row : list) {
        const QString &candidate = row.path;
        if (candidate.contains(QLatin1Char('"'))) {
            out.failures.append(brokenQuery(candidate));
            continue;
        }
        if (candidate == target)
            continue;
        if (stored.anyLike(candidate))
            continue;
        try {
            if (!db.inTransaction())
                db.beginTrans();
        } catch (const StoreError &e) {
            out.failures.append(e);
            return false;
        }
        // A row the table refuses costs that row only.
        try {
            db.execute(QStringLiteral("SAVEPOINT AddServer"));
            db.execute(QStringLiteral("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)"),
                       {candidate, textValue(row.description)});
            db.execute(QStringLiteral("RELEASE AddServer"));
            stored.add(candidate);
            out.added.append(row);
        } catch (const StoreError &e) {
            out.failures.append(e);
            try {
                db.execute(QStringLiteral("ROLLBACK TO AddServer"));
                db.execute(QStringLiteral("RELEASE AddServer"));
            } catch (const StoreError &) {
                // The store has given up the whole transaction.
                db.rollback();
                out.added.clear();
                return false;
            }
            if (e.number() == err::PathNotFound) {
                db.rollback();
                out.added.clear();
                return false;
            }
        }
    }
    if (db.inTransaction()) {
        try {
            db.commitTrans();
        } catch (const StoreError &e) {
            out.failures.append(e);
            db.rollback();
            out.added.clear();
            return false;
        }
    }
    return true;
}

}  // namespace

SiteOutcome updateSite(const QString &target, const QVector<ServerRow> &list)
{
    SiteOutcome out;
    Database db;
    try {
        db = Database::open(target + DatabaseName);
        out.opened = true;
    } catch (const StoreError &e) {
        out.failures.append(e);
        return out;
    }
    updateOpenSite(db, target, list, out);
    db.close();
    return out;
}

void runAside(const std::function<void()> &work)
{
    QEventLoop loop;
    std::atomic<bool> done{false};
    std::exception_ptr failure;
    std::thread worker([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        done = true;
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    if (!done)
        loop.exec();
    worker.join();
    if (failure)
        std::rethrow_exception(failure);
}

}  // namespace Sites
