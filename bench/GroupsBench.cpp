// tavello-bench groups [--quick] [--users N] [--members N] [--moved N] [--runs N]
//
// Opens frmModGroup on a group of M members among N users, moves K names
// between its two lists (half out of the group, half into it) and presses OK;
// against the same reads and writes through the bare SQLite C API in the same
// run: the two list queries, the same moves on plain vectors, the group row
// and counter written in one transaction, the member rows read, deleted and
// added in another. Each side starts every run from a fresh copy of the same
// file. Prints the medians and ends with "ratio <ours / reference>".
#include "core/Global.h"
#include "console/frmMain.h"
#include "groups/TwoListEditor.h"
#include "groups/frmModGroup.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

const char *const Group = "Night Shift";

struct Sizes {
    int users = 10000;
    int members = 5000;
    int moved = 1000;
};

bool exec(sqlite3 *db, const char *sql)
{
    char *error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) == SQLITE_OK)
        return true;
    std::fprintf(stderr, "groups: %s: %s\n", sql, error ? error : "?");
    sqlite3_free(error);
    return false;
}

// N users (the seed's Guest among them) with their settings rows; the first
// M by insertion order, spread over the alphabet, are members of the group.
bool fillBoard(const QString &file, const Sizes &s)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open(file.toUtf8().constData(), &db) != SQLITE_OK)
        return false;
    bool ok = exec(db, "PRAGMA foreign_keys = ON") && exec(db, "BEGIN");
    sqlite3_stmt *user = nullptr, *settings = nullptr, *member = nullptr, *group = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)", -1, &user, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", -1, &settings, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)", -1, &member, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO GroupTable (GroupName) VALUES (?)", -1, &group, nullptr);
    sqlite3_bind_text(group, 1, Group, -1, SQLITE_STATIC);
    ok = ok && sqlite3_step(group) == SQLITE_DONE;
    static const char *const first[] = {"Anna", "Ben", "Carla", "Dirk", "Eva", "Felix", "Greta", "Hugo"};
    for (int i = 0; ok && i < s.users - 1; ++i) {
        // Names in an order of their own, unlike the order of insertion.
        const unsigned key = (unsigned(i) * 2654435761u) % 1000003u;
        const std::string name = "User" + std::to_string(key) + ", " + first[i % 8] + " " + std::to_string(i);
        const std::string uid = "U" + std::to_string(100000 + i);
        sqlite3_bind_text(user, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(user, 2, uid.c_str(), -1, SQLITE_TRANSIENT);
        ok = sqlite3_step(user) == SQLITE_DONE;
        sqlite3_reset(user);
        sqlite3_bind_text(settings, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        ok = ok && sqlite3_step(settings) == SQLITE_DONE;
        sqlite3_reset(settings);
        if (ok && i < s.members) {
            sqlite3_bind_text(member, 1, name.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(member, 2, Group, -1, SQLITE_STATIC);
            ok = sqlite3_step(member) == SQLITE_DONE;
            sqlite3_reset(member);
        }
    }
    for (sqlite3_stmt *st : {user, settings, member, group})
        sqlite3_finalize(st);
    ok = ok && exec(db, "COMMIT");
    sqlite3_close(db);
    return ok;
}

bool copyFile(const QString &from, const QString &to)
{
    QFile::remove(to);
    return QFile::copy(from, to);
}

// Which rows move: every so many of each list, the lists as they are at
// each move, half of them out of the group and half into it.
std::vector<int> movePlan(int listSize, int count)
{
    std::vector<int> rows;
    const int step = std::max(1, listSize / std::max(1, count));
    int size = listSize;
    for (int i = 0; i < count && size > 0; ++i) {
        rows.push_back((i * step) % size);
        --size;
    }
    return rows;
}

double ms(const QElapsedTimer &t) { return double(t.nsecsElapsed()) / 1e6; }

struct Phases {
    double open = 0, moves = 0, ok = 0;
};

// The window's way. Returns the time, or -1 when something went wrong.
double consoleRun(const QString &file, const Sizes &s, int *membersAfter, Phases *phases)
{
    gdbMain = Database::open(file);
    QElapsedTimer t;
    t.start();
    SelectedGroupName = QString::fromUtf8(Group);
    auto d = std::make_unique<frmModGroup>();
    d->show();
    QCoreApplication::processEvents();
    const double tOpen = ms(t);
    TwoListEditor *editor = d->editor();
    const std::vector<int> out = movePlan(editor->right()->rowCount(), s.moved / 2);
    // Those moved out go to the end of the left list: the rows picked to move
    // in stay among the names it started with.
    const std::vector<int> in = movePlan(editor->left()->rowCount(), s.moved - s.moved / 2);
    // As a click does: the press makes the item current, the release moves it.
    auto *left = d->findChild<QListView *>(QStringLiteral("ListView1"));
    auto *right = d->findChild<QListView *>(QStringLiteral("ListView2"));
    for (int row : out) {
        right->setCurrentIndex(editor->right()->index(row));
        editor->moveFromRight(row);
    }
    for (int row : in) {
        left->setCurrentIndex(editor->left()->index(row));
        editor->moveFromLeft(row);
    }
    QCoreApplication::processEvents();  // the lists repainted
    const double tMoves = ms(t);
    d->cmdButtons_Click(0);
    const double elapsed = ms(t);
    *phases = {tOpen, tMoves - tOpen, elapsed - tMoves};
    const bool closed = !d->isVisible();
    d.reset();
    *membersAfter = gdbMain.scalar(QStringLiteral("SELECT count(*) FROM EmployeeGroupTable WHERE GroupName = ?"),
                                   {QString::fromUtf8(Group)}).toInt();
    gdbMain.close();
    return closed && Msg::transcript().isEmpty() ? elapsed : -1;
}

std::vector<std::string> column(sqlite3 *db, const char *sql)
{
    std::vector<std::string> out;
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    sqlite3_bind_text(st, 1, Group, -1, SQLITE_STATIC);
    while (sqlite3_step(st) == SQLITE_ROW)
        out.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)), size_t(sqlite3_column_bytes(st, 0)));
    sqlite3_finalize(st);
    return out;
}

// The same reads and writes, by hand.
double referenceRun(const QString &file, const Sizes &s, int *membersAfter)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
    exec(db, "PRAGMA foreign_keys = ON");
    QElapsedTimer t;
    t.start();
    std::vector<std::string> left =
        column(db, "SELECT EmployeeTable.Name FROM EmployeeTable WHERE Name NOT IN (SELECT DISTINCT EmployeeName FROM "
                   "EmployeeGroupTable WHERE GroupName = ?) ORDER BY Name");
    std::vector<std::string> right = column(db, "SELECT Name FROM EmployeeTable, EmployeeGroupTable WHERE Name = "
                                                "EmployeeName AND GroupName = ? ORDER BY Name");
    const std::vector<int> out = movePlan(int(right.size()), s.moved / 2);
    const std::vector<int> in = movePlan(int(left.size()), s.moved - s.moved / 2);
    for (int row : out) {
        left.push_back(std::move(right[size_t(row)]));
        right.erase(right.begin() + row);
    }
    for (int row : in) {
        right.push_back(std::move(left[size_t(row)]));
        left.erase(left.begin() + row);
    }

    bool ok = exec(db, "BEGIN IMMEDIATE");
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, "SELECT rowid FROM GroupTable WHERE GroupName = ?", -1, &st, nullptr);
    sqlite3_bind_text(st, 1, Group, -1, SQLITE_STATIC);
    const sqlite3_int64 groupRow = sqlite3_step(st) == SQLITE_ROW ? sqlite3_column_int64(st, 0) : -1;
    sqlite3_finalize(st);
    sqlite3_prepare_v2(db, "UPDATE GroupTable SET GroupName = ? WHERE rowid = ?", -1, &st, nullptr);
    sqlite3_bind_text(st, 1, Group, -1, SQLITE_STATIC);
    sqlite3_bind_int64(st, 2, groupRow);
    ok = ok && sqlite3_step(st) == SQLITE_DONE;
    sqlite3_finalize(st);
    ok = ok && exec(db, "UPDATE StatusCounterTable SET GroupCounter = GroupCounter + 1 WHERE rowid = "
                        "(SELECT min(rowid) FROM StatusCounterTable)") && exec(db, "COMMIT");

    ok = ok && exec(db, "BEGIN IMMEDIATE");
    std::unordered_set<std::string> keep(right.begin(), right.end()), present;
    std::vector<sqlite3_int64> leaving;
    sqlite3_prepare_v2(db, "SELECT rowid, * FROM EmployeeGroupTable WHERE GroupName = ?", -1, &st, nullptr);
    sqlite3_bind_text(st, 1, Group, -1, SQLITE_STATIC);
    while (sqlite3_step(st) == SQLITE_ROW) {
        std::string name(reinterpret_cast<const char *>(sqlite3_column_text(st, 1)), size_t(sqlite3_column_bytes(st, 1)));
        if (!keep.count(name))
            leaving.push_back(sqlite3_column_int64(st, 0));
        present.insert(std::move(name));
    }
    sqlite3_finalize(st);
    sqlite3_prepare_v2(db, "DELETE FROM EmployeeGroupTable WHERE rowid = ?", -1, &st, nullptr);
    for (sqlite3_int64 row : leaving) {
        sqlite3_bind_int64(st, 1, row);
        ok = ok && sqlite3_step(st) == SQLITE_DONE;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, ?)", -1, &st, nullptr);
    for (const std::string &name : right) {
        if (present.count(name))
            continue;
        sqlite3_bind_text(st, 1, name.c_str(), int(name.size()), SQLITE_STATIC);
        sqlite3_bind_text(st, 2, Group, -1, SQLITE_STATIC);
        ok = ok && sqlite3_step(st) == SQLITE_DONE;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    ok = ok && exec(db, "COMMIT");
    const double elapsed = ms(t);
    *membersAfter = int(right.size());
    sqlite3_close(db);
    return ok ? elapsed : -1;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

}  // namespace

int runGroupsBench(int argc, char **argv)
{
    Sizes s;
    int runs = 7;
    for (int i = 1; i < argc; ++i) {
        auto next = [&](int &into) {
            if (i + 1 < argc)
                into = std::max(1, std::atoi(argv[++i]));
        };
        if (std::strcmp(argv[i], "--quick") == 0) {
            s = Sizes{1000, 500, 100};
            runs = 1;
        } else if (std::strcmp(argv[i], "--users") == 0) {
            next(s.users);
        } else if (std::strcmp(argv[i], "--members") == 0) {
            next(s.members);
        } else if (std::strcmp(argv[i], "--moved") == 0) {
            next(s.moved);
        } else if (std::strcmp(argv[i], "--runs") == 0) {
            next(runs);
        }
    }
    s.members = std::min(s.members, s.users - 1);
    s.moved = std::min(s.moved, 2 * std::min(s.members, s.users - s.members));

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);  // a failure is counted, not waited on

    QTemporaryDir dir;
    const QString master = dir.filePath(QStringLiteral("master.mdb"));
    const QString ours = dir.filePath(QStringLiteral("tavello.mdb"));
    const QString theirs = dir.filePath(QStringLiteral("reference.mdb"));
    if (CreateDatabase(master) != 0 || !fillBoard(master, s)) {
        std::fprintf(stderr, "groups: could not build the database\n");
        return 2;
    }
    gstrDataPath = dir.path() + QLatin1Char('/');
    gstrDatabaseFile = ours;

    std::vector<double> console, reference, opening, moving, pressing;
    for (int r = 0; r < runs; ++r) {
        int after = 0, expected = 0;
        if (!copyFile(master, theirs) || !copyFile(master, ours))
            return 2;
        const double ref = referenceRun(theirs, s, &expected);
        Phases phases;
        const double our = consoleRun(ours, s, &after, &phases);
        if (ref < 0 || our < 0 || after != expected) {
            std::fprintf(stderr, "groups: run %d failed (members after: %d, expected %d)\n", r, after, expected);
            for (const Msg::Shown &m : Msg::transcript())
                std::fprintf(stderr, "  box: %s\n", qPrintable(m.text));
            return 1;
        }
        reference.push_back(ref);
        console.push_back(our);
        opening.push_back(phases.open);
        moving.push_back(phases.moves);
        pressing.push_back(phases.ok);
    }
    const double ratio = median(console) / median(reference);
    std::printf("groups: %d users, a group of %d members, %d names moved (half out, half in), %d runs\n", s.users,
                s.members, s.moved, runs);
    std::printf("reference, bare SQLite C API, reads and writes: %.1f ms\n", median(reference));
    std::printf("console, frmModGroup opened, moves, OK:        %.1f ms\n", median(console));
    std::printf("  of which opening %.1f ms, moves %.1f ms, OK %.1f ms (medians each)\n", median(opening),
                median(moving), median(pressing));
    std::printf("ratio %.2f\n", ratio);
    return 0;
}
