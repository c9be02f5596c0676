// tavello-bench list-users [--quick] [--users N]
//
// Builds the Users list of the main window (gRefreshListView("Users") and the
// paint that shows it) on a database of N users, against reading the same
// query's rows into plain strings through the bare SQLite C API in the same
// run. Prints the figures and ends with "ratio <ours / reference>".
#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sqlite3.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

const char *const UsersQuery =
    "SELECT EmployeeTable.UID,  EmployeeTable.Name, EmployeeTable.ActiveFlag FROM EmployeeTable ORDER BY EmployeeTable.Name";

double peakMegabytes()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

double currentMegabytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> parts = statm.readAll().split(' ');
    return parts.size() > 1 ? double(parts[1].toLongLong()) * 4096.0 / (1024.0 * 1024.0) : 0;
}

// Fills EmployeeTable with `count` users in random name order, one in ten
// with ActiveFlag "Yes".
bool fillUsers(const QString &file, int count)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open(file.toUtf8().constData(), &db) != SQLITE_OK)
        return false;
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeTable (Name, UID, ActiveFlag) VALUES (?, ?, ?)", -1, &st, nullptr);
    QRandomGenerator rng(20060722);
    static const char *const first[] = {"Anna", "Ben", "Carla", "Dirk", "Eva", "Felix", "Greta", "Hugo",
                                        "Ines", "Jonas", "Karin", "Lars", "Mia", "Nils", "Olga", "Paul"};
    bool ok = true;
    for (int i = 0; i < count && ok; ++i) {
        std::string surname;
        for (int k = 0; k < 8; ++k)
            surname += char((k == 0 ? 'A' : 'a') + rng.bounded(26));
        const std::string name = surname + ", " + first[rng.bounded(16)] + " " + std::to_string(i);
        const std::string uid = "U" + std::to_string(100000 + i);
        sqlite3_bind_text(st, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, uid.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 3, i % 10 == 0 ? "Yes" : "No", -1, SQLITE_STATIC);
        ok = sqlite3_step(st) == SQLITE_DONE;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, ok ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return ok;
}

// The reference: the same query, every row's three values into strings.
double referenceMs(const QString &file, size_t *rowsRead)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    QElapsedTimer t;
    t.start();
    std::vector<std::array<std::string, 3>> rows;
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, UsersQuery, -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW) {
        std::array<std::string, 3> row;
        for (int c = 0; c < 3; ++c) {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
            if (text)
                row[c].assign(text, size_t(sqlite3_column_bytes(st, c)));
        }
        rows.push_back(std::move(row));
    }
    sqlite3_finalize(st);
    const double ms = double(t.nsecsElapsed()) / 1e6;
    sqlite3_close(db);
    *rowsRead = rows.size();
    return ms;
}

// The console's way: rebuild the list and let the window paint it.
double consoleMs(frmMain &w, int *shown)
{
    QElapsedTimer t;
    t.start();
    gRefreshListView(QStringLiteral("Users"));
    w.ListViewMain()->repaint();
    QCoreApplication::processEvents();
    const double ms = double(t.nsecsElapsed()) / 1e6;
    *shown = w.ListViewMain()->list()->count();
    return ms;
}

struct Run {
    double reference = 0;
    double console = 0;
};

// Best of `rounds`, each side measured in turn so both meet the same cache.
Run measure(frmMain &w, const QString &file, int users, int rounds)
{
    Run best{1e300, 1e300};
    for (int r = 0; r < rounds; ++r) {
        size_t read = 0;
        best.reference = std::min(best.reference, referenceMs(file, &read));
        int shown = 0;
        best.console = std::min(best.console, consoleMs(w, &shown));
        if (int(read) != users || shown != users) {
            std::fprintf(stderr, "list-users: read %zu rows, list shows %d, expected %d\n", read, shown, users);
            return {};
        }
    }
    return best;
}

}  // namespace

int runListUsersBench(int argc, char **argv)
{
    int users = 100000;
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--users") == 0 && i + 1 < argc)
            users = std::max(1, std::atoi(argv[++i]));
    }
    if (quick)
        users = 2000;

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        std::fprintf(stderr, "list-users needs a widget application\n");
        return 2;
    }
    Msg::setScripted(true);  // a failure is counted, not waited on

    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("tavello.mdb"));
    const int sizes[] = {std::min(users, 10000), users};
    Run small, large;
    double memoryBefore = 0, memoryHolding = 0;
    {
        if (CreateDatabase(file) != 0 || !fillUsers(file, users - 1)) {  // the seed's Guest is one
            std::fprintf(stderr, "list-users: could not build the database\n");
            return 2;
        }
        gstrDataPath = dir.path() + QLatin1Char('/');
        gstrDatabaseFile = file;
        gdbMain = Database::open(file);

        frmMain w;
        w.resize(900, 700);
        w.show();
        QCoreApplication::processEvents();
        memoryBefore = currentMegabytes();
        // The list's own memory first, before the reference's strings have
        // passed through the heap.
        int shown = 0;
        consoleMs(w, &shown);
        memoryHolding = currentMegabytes();
        if (sizes[0] < users && !quick) {
            // The smaller list, from a file of its own.
            QTemporaryDir smallDir;
            const QString smallFile = smallDir.filePath(QStringLiteral("tavello.mdb"));
            CreateDatabase(smallFile);
            fillUsers(smallFile, sizes[0] - 1);
            gdbMain = Database::open(smallFile);
            small = measure(w, smallFile, sizes[0], quick ? 2 : 5);
            gdbMain = Database::open(file);
        }
        large = measure(w, file, users, quick ? 2 : 5);
        if (large.console == 0 || !Msg::transcript().isEmpty()) {
            std::fprintf(stderr, "list-users: the list was not built\n");
            return 1;
        }
        gdbMain.close();
    }

    const double ratio = large.console / large.reference;
    std::printf("list-users: %d users in EmployeeTable\n", users);
    std::printf("reference, bare SQLite C API, rows into strings: %.1f ms\n", large.reference);
    std::printf("console, gRefreshListView(\"Users\") and paint:   %.1f ms\n", large.console);
    if (small.console > 0)
        std::printf("console, %d users shown in:                   %.1f ms (reference %.1f ms)\n", sizes[0],
                    small.console, small.reference);
    std::printf("memory of the console holding the list: %.1f MB (%.1f MB before the list)\n", memoryHolding,
                memoryBefore);
    std::printf("peak memory of the process: %.1f MB\n", peakMegabytes());
    std::printf("ratio %.2f\n", ratio);
    return 0;
}
