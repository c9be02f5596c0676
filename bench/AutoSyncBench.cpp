// tavello-bench autosync [--quick] [--sites N] [--runs N]
//
// A home board listing N other boards, each of which lists 10 to 50 of the
// others (home among them), every one reached through a UNC path of the
// [Shares] section. Times the whole Auto Sync run (Begin: scan and update)
// of the real window against a reference through the bare SQLite C API that
// opens each site once, reads its ServersTable once and writes its missing
// rows in one transaction; and, to show the gain, the same run done a query
// per candidate and a write per row. Every run starts from the same files and
// must leave the same tables. Ends with "ratio <window / reference>".
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "sites/frmAutoSync.h"
#include "store/CreateDB.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

struct Layout {
    QString root;             // holds program/, and one folder per copy of the sites
    QStringList names;        // "home", "site01", ...
    QHash<QString, QString> uncOf;
};

QString siteFolder(const Layout &l, const QString &copy, const QString &name)
{
    return l.root + QLatin1Char('/') + copy + QLatin1Char('/') + name;
}

// Points every share at the folders of one copy of the sites.
void useCopy(const Layout &l, const QString &copy)
{
    const QString ini = UncPath::iniFile();
    QFile::remove(ini);
    for (const QString &name : l.names)
        IniFile::writeKey(ini, QStringLiteral("Shares"), l.uncOf.value(name).chopped(1), siteFolder(l, copy, name));
}

bool copySites(const Layout &l, const QString &from, const QString &to)
{
    for (const QString &name : l.names) {
        QDir().mkpath(siteFolder(l, to, name));
        const QString target = siteFolder(l, to, name) + QStringLiteral("/tavello.mdb");
        QFile::remove(target);
        if (!QFile::copy(siteFolder(l, from, name) + QStringLiteral("/tavello.mdb"), target))
            return false;
    }
    return true;
}

// The starting tables: home lists every site; each site 10 to 50 of the others.
bool buildSites(Layout &l, int sites)
{
    l.names << QStringLiteral("home");
    for (int i = 1; i <= sites; ++i)
        l.names << QStringLiteral("site%1").arg(i, 2, 10, QLatin1Char('0'));
    for (const QString &name : l.names)
        l.uncOf.insert(name, QStringLiteral("\\\\") + name.toUpper() + QStringLiteral("\\BOARD\\"));
    const QString pristine = QStringLiteral("pristine");
    const QString first = siteFolder(l, pristine, l.names.first()) + QStringLiteral("/tavello.mdb");
    QDir().mkpath(siteFolder(l, pristine, l.names.first()));
    if (CreateDatabase(first) != 0)
        return false;
    for (const QString &name : l.names.mid(1)) {
        QDir().mkpath(siteFolder(l, pristine, name));
        if (!QFile::copy(first, siteFolder(l, pristine, name) + QStringLiteral("/tavello.mdb")))
            return false;
    }
    QRandomGenerator rng(20060722);
    for (const QString &name : l.names) {
        QStringList others = l.names;
        others.removeOne(name);
        QStringList listed;
        if (name == QLatin1String("home")) {
            listed = others;
        } else {
            const int count = std::min(int(others.size()), 10 + int(rng.bounded(41)));
            std::shuffle(others.begin(), others.end(), std::mt19937(rng.generate()));
            listed = others.mid(0, count);
        }
        sqlite3 *db = nullptr;
        const QString file = siteFolder(l, pristine, name) + QStringLiteral("/tavello.mdb");
        if (sqlite3_open(file.toUtf8().constData(), &db) != SQLITE_OK)
            return false;
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db, "INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)", -1, &st, nullptr);
        for (const QString &other : listed) {
            const std::string path = l.uncOf.value(other).toStdString();
            const std::string description = "Office " + other.toStdString();
            sqlite3_bind_text(st, 1, path.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(st, 2, description.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_step(st);
            sqlite3_reset(st);
        }
        sqlite3_finalize(st);
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
    return true;
}

// Every site's ServersTable, in the order written, for comparing outcomes.
QString tables(const Layout &l, const QString &copy)
{
    QString out;
    for (const QString &name : l.names) {
        sqlite3 *db = nullptr;
        const QString file = siteFolder(l, copy, name) + QStringLiteral("/tavello.mdb");
        sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db, "SELECT UNCPath, Description FROM ServersTable ORDER BY rowid", -1, &st, nullptr);
        out += name + QLatin1Char(':');
        while (sqlite3_step(st) == SQLITE_ROW)
            out += QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0))) + QLatin1Char('|') +
                   QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 1))) + QLatin1Char(';');
        out += QLatin1Char('\n');
        sqlite3_finalize(st);
        sqlite3_close(db);
    }
    return out;
}

int countRows(const Layout &l, const QString &copy)
{
    return int(tables(l, copy).count(QLatin1Char(';')));
}

// The window: open it on the home database, press Begin, wait for the end.
double windowMs(const Layout &l, const QString &copy)
{
    useCopy(l, copy);
    gstrDataPath = l.uncOf.value(QStringLiteral("home"));
    gstrDatabaseFile = gstrDataPath + QStringLiteral("tavello.mdb");
    gdbMain = Database::open(gstrDatabaseFile);
    double ms = 0;
    {
        frmAutoSync dialog;
        dialog.show();
        QCoreApplication::processEvents();
        QElapsedTimer t;
        t.start();
        dialog.cmdBegin_Click();
        ms = double(t.nsecsElapsed()) / 1e6;
        dialog.cmdExit_Click();
    }
    gdbMain.close();
    return ms;
}

// The reference: the same merge with the least the store must do. Each site
// is opened once and its table read once; the rows are decided in memory
// and written in one transaction per site.
double referenceMs(const Layout &l, const QString &copy)
{
    useCopy(l, copy);
    struct Site {
        sqlite3 *db = nullptr;
        QStringList rows;
        QHash<QString, QString> descriptions;
        bool read = false;
    };
    QElapsedTimer t;
    t.start();
    QHash<QString, Site> open;  // by upper-cased path
    auto siteOf = [&](const QString &path) -> Site & {
        Site &s = open[path.toUpper()];
        if (!s.db) {
            const auto local = UncPath::toLocal(path + QStringLiteral("tavello.mdb"));
            sqlite3_open_v2(local->toUtf8().constData(), &s.db, SQLITE_OPEN_READWRITE, nullptr);
            sqlite3_busy_timeout(s.db, 250);
        }
        if (!s.read) {
            sqlite3_stmt *st = nullptr;
            sqlite3_prepare_v2(s.db, "SELECT UNCPath, Description FROM ServersTable ORDER BY UNCPath", -1, &st,
                               nullptr);
            while (sqlite3_step(st) == SQLITE_ROW) {
                const QString p = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)));
                s.rows << p;
                s.descriptions.insert(p, QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 1))));
            }
            sqlite3_finalize(st);
            s.read = true;
        }
        return s;
    };
    const QString home = l.uncOf.value(QStringLiteral("home"));
    QStringList list{home};
    QStringList descriptions{QString()};
    Site &h = siteOf(home);
    for (const QString &p : h.rows) {
        list << p;
        descriptions << h.descriptions.value(p);
    }
    QSet<QString> known;
    for (const QString &p : list)
        known.insert(p.toUpper());
    const int scanned = int(list.size());
    for (int i = 1; i < scanned; ++i) {
        const Site &s = siteOf(list[i]);
        for (const QString &p : s.rows)
            if (!known.contains(p.toUpper())) {
                known.insert(p.toUpper());
                list << p;
                descriptions << s.descriptions.value(p);
            }
    }
    for (const QString &target : list) {
        Site &s = siteOf(target);
        QSet<QString> have;
        for (const QString &p : s.rows)
            have.insert(p.toUpper());
        sqlite3_exec(s.db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(s.db, "INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)", -1, &st, nullptr);
        for (int i = 0; i < list.size(); ++i) {
            if (list[i] == target || have.contains(list[i].toUpper()))
                continue;
            const QByteArray p = list[i].toUtf8(), d = descriptions[i].toUtf8();
            sqlite3_bind_text(st, 1, p.constData(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(st, 2, d.constData(), -1, SQLITE_TRANSIENT);
            sqlite3_step(st);
            sqlite3_reset(st);
            have.insert(list[i].toUpper());
        }
        sqlite3_finalize(st);
        sqlite3_exec(s.db, "COMMIT", nullptr, nullptr, nullptr);
    }
    for (Site &s : open)
        sqlite3_close(s.db);
    return double(t.nsecsElapsed()) / 1e6;
}

// The run done as it has always been: the scan as above, then for every
// target one LIKE query per candidate over the network and one write per
// missing row, each committed by itself.
double legacyMs(const Layout &l, const QString &copy)
{
    useCopy(l, copy);
    const QString home = l.uncOf.value(QStringLiteral("home"));
    QElapsedTimer t;
    t.start();
    QStringList list{home};
    QStringList descriptions{QString()};
    {
        Database h = Database::open(home + QStringLiteral("tavello.mdb"));
        for (Recordset rs = h.query(QStringLiteral("SELECT * FROM ServersTable ORDER BY UNCPath")); !rs.eof();
             rs.moveNext()) {
            list << rs.text(QStringLiteral("UNCPath"));
            descriptions << rs.text(QStringLiteral("Description"));
        }
    }
    const int scanned = int(list.size());
    for (int i = 1; i < scanned; ++i) {
        Database db = Database::open(list[i] + QStringLiteral("tavello.mdb"));
        for (Recordset rs = db.query(QStringLiteral("SELECT * FROM ServersTable ORDER BY UNCPath")); !rs.eof();
             rs.moveNext()) {
            const QString p = rs.text(QStringLiteral("UNCPath"));
            bool found = false;
            for (const QString &row : list)
                if (row.toUpper() == p.toUpper())
                    found = true;
            if (!found) {
                list << p;
                descriptions << rs.text(QStringLiteral("Description"));
            }
        }
    }
    for (const QString &target : list) {
        Database db = Database::open(target + QStringLiteral("tavello.mdb"));
        for (int i = 0; i < list.size(); ++i) {
            Recordset rs = db.query(QStringLiteral("SELECT * FROM ServersTable WHERE UNCPath LIKE ?"), {list[i]});
            const bool none = rs.eof();
            rs.close();
            if (none && list[i] != target)
                db.execute(QStringLiteral("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)"),
                           {list[i], descriptions[i]});
        }
    }
    return double(t.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

}  // namespace

int runAutoSyncBench(int argc, char **argv)
{
    int sites = 50;
    int runs = 5;
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--sites") == 0 && i + 1 < argc)
            sites = std::max(2, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
    }
    if (quick) {
        sites = 12;
        runs = 1;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);  // a failure is counted, not waited on

    QTemporaryDir dir;
    Layout l;
    l.root = dir.path();
    QDir().mkpath(l.root + QStringLiteral("/program"));
    UncPath::setProgramFolder(l.root + QStringLiteral("/program"));
    if (!buildSites(l, sites)) {
        std::fprintf(stderr, "autosync: could not build the site databases\n");
        return 2;
    }
    const int rowsBefore = countRows(l, QStringLiteral("pristine"));

    std::vector<double> window, reference;
    QString windowTables, referenceTables, legacyTables;
    for (int r = 0; r < runs; ++r) {
        const QString w = QStringLiteral("window%1").arg(r), ref = QStringLiteral("reference%1").arg(r);
        if (!copySites(l, QStringLiteral("pristine"), w) || !copySites(l, QStringLiteral("pristine"), ref)) {
            std::fprintf(stderr, "autosync: could not copy the sites\n");
            return 2;
        }
        // In turn, so both meet the same state of the machine.
        reference.push_back(referenceMs(l, ref));
        window.push_back(windowMs(l, w));
        windowTables = tables(l, w);
        referenceTables = tables(l, ref);
    }
    if (!copySites(l, QStringLiteral("pristine"), QStringLiteral("legacy")))
        return 2;
    const double legacy = legacyMs(l, QStringLiteral("legacy"));
    legacyTables = tables(l, QStringLiteral("legacy"));

    const int rowsAfter = int(windowTables.count(QLatin1Char(';')));
    const bool same = windowTables == referenceTables && windowTables == legacyTables;
    std::printf("autosync: home and %d sites, %d ServersTable rows before, %d after\n", sites, rowsBefore, rowsAfter);
    std::printf("reference, bare SQLite C API, one open, one read, one transaction a site: %.1f ms\n",
                median(reference));
    std::printf("window, Begin to the end (scan and update):                           %.1f ms\n", median(window));
    std::printf("legacy way, a LIKE query per candidate and a write per row:           %.1f ms\n", legacy);
    std::printf("same rows in the same order in every site: %s\n", same ? "yes" : "NO");
    if (!same || !Msg::transcript().isEmpty() || rowsAfter != (sites + 1) * sites) {
        std::fprintf(stderr, "autosync: the runs did not leave the expected tables (%d boxes)\n",
                     int(Msg::transcript().size()));
        return 1;
    }
    std::printf("ratio %.2f\n", median(window) / median(reference));
    return 0;
}
