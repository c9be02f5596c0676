// A user program of the board, as far as the file sees it: it reads and
// writes at a person's pace with SQLite alone, none of the console's code.
//
//   busy_worker writer DB NAME SEED PATIENCE   its own row, a log row and the counter, every 10-50 ms
//   busy_worker reader DB SEED PATIENCE        reads between 10 and 30 ms apart
//   busy_worker holder DB SEED PATIENCE MIN MAX EVERY
//                                              the file to itself for MIN..MAX ms, about every EVERY ms
//   busy_worker read-once DB PATIENCE          one read; exit 0 when it got its rows
//
// It runs until its standard input closes. Lines on standard output:
//   W seq          write seq committed
//   F seq text     write seq refused (rolled back)
//   L ms text      a read refused after PATIENCE ms of waiting, ms after start
//   R count        reads done, at the end
//   H ms           an exclusive hold of ms ended
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
const Clock::time_point started = Clock::now();

long long sinceStart()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started).count();
}

// True once the test has closed our standard input.
bool told()
{
    pollfd p{0, POLLIN, 0};
    if (::poll(&p, 1, 0) <= 0)
        return false;
    char c;
    return ::read(0, &c, 1) <= 0;
}

void pause(std::mt19937 &random, int from, int to)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(std::uniform_int_distribution<int>(from, to)(random)));
}

sqlite3 *openBoard(const char *path, int patience)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(path, &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        std::printf("X cannot open %s\n", path);
        std::exit(3);
    }
    sqlite3_busy_timeout(db, patience);
    sqlite3_exec(db, "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
    return db;
}

bool exec(sqlite3 *db, const char *sql, const std::string &a = {}, const std::string &b = {},
          const std::string &c = {})
{
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK)
        return false;
    const std::string *values[] = {&a, &b, &c};
    for (int i = 0; i < sqlite3_bind_parameter_count(st) && i < 3; ++i)
        sqlite3_bind_text(st, i + 1, values[i]->c_str(), -1, SQLITE_TRANSIENT);
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
    }
    sqlite3_finalize(st);
    return rc == SQLITE_DONE;
}

// The reads a user program makes to refresh its board, in one snapshot.
// Empty when they went through, else the store's text.
std::string readBoard(sqlite3 *db)
{
    if (exec(db, "BEGIN") && exec(db, "SELECT Name, Status, DueBack, Comments FROM EmployeeTable") &&
        exec(db, "SELECT * FROM StatusCounterTable") && exec(db, "COMMIT"))
        return {};
    const std::string failure = sqlite3_errmsg(db);
    exec(db, "ROLLBACK");
    return failure;
}

int writer(const char *path, const std::string &name, unsigned seed, int patience)
{
    sqlite3 *db = openBoard(path, patience);
    std::mt19937 random(seed);
    const char *statuses[] = {"In", "Out", "Busy"};
    for (long seq = 1; !told(); ++seq) {
        pause(random, 10, 50);
        const long long before = sinceStart();
        if (const std::string failure = readBoard(db); !failure.empty())
            std::printf("L %lld %s after %lld ms\n", before, failure.c_str(), sinceStart() - before);
        const std::string status = statuses[seq % 3];
        const std::string mark = "busy " + name + " " + std::to_string(seq);
        const bool ok = exec(db, "BEGIN IMMEDIATE") &&
                        exec(db, "UPDATE EmployeeTable SET Status = ?, Comments = ? WHERE Name = ?", status, mark, name) &&
                        exec(db, "INSERT INTO TransactionLogTable (Name, Status, Comments) VALUES (?, ?, ?)", name,
                             status, mark) &&
                        exec(db, "UPDATE StatusCounterTable SET Counter = Counter + 1") && exec(db, "COMMIT");
        if (ok) {
            std::printf("W %ld\n", seq);
        } else {
            std::printf("F %ld %s\n", seq, sqlite3_errmsg(db));
            exec(db, "ROLLBACK");
        }
        std::fflush(stdout);
    }
    sqlite3_close(db);
    return 0;
}

int reader(const char *path, unsigned seed, int patience)
{
    sqlite3 *db = openBoard(path, patience);
    std::mt19937 random(seed);
    long reads = 0;
    while (!told()) {
        pause(random, 10, 30);
        const long long before = sinceStart();
        if (const std::string failure = readBoard(db); failure.empty())
            ++reads;
        else
            std::printf("L %lld %s after %lld ms\n", before, failure.c_str(), sinceStart() - before);
        std::fflush(stdout);
    }
    std::printf("R %ld\n", reads);
    sqlite3_close(db);
    return 0;
}

int holder(const char *path, unsigned seed, int patience, int shortest, int longest, int every)
{
    sqlite3 *db = openBoard(path, patience);
    std::mt19937 random(seed);
    for (;;) {
        // Sleep in small steps so that a stop is seen at once.
        const long long wake = sinceStart() + std::uniform_int_distribution<int>(every / 2, every * 3 / 2)(random);
        while (sinceStart() < wake && !told())
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (sinceStart() < wake)
            break;
        if (!exec(db, "BEGIN EXCLUSIVE"))
            continue;
        const long long from = sinceStart();
        pause(random, shortest, longest);
        exec(db, "COMMIT");
        std::printf("H %lld\n", sinceStart() - from);
        std::fflush(stdout);
    }
    sqlite3_close(db);
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 4)
        return 2;
    const std::string role = argv[1];
    const char *path = argv[2];
    if (role == "writer" && argc == 6)
        return writer(path, argv[3], unsigned(std::atoi(argv[4])), std::atoi(argv[5]));
    if (role == "reader" && argc == 5)
        return reader(path, unsigned(std::atoi(argv[3])), std::atoi(argv[4]));
    if (role == "holder" && argc == 8)
        return holder(path, unsigned(std::atoi(argv[3])), std::atoi(argv[4]), std::atoi(argv[5]), std::atoi(argv[6]),
                      std::atoi(argv[7]));
    if (role == "read-once") {
        sqlite3 *db = openBoard(path, std::atoi(argv[3]));
        const bool ok = readBoard(db).empty();
        sqlite3_close(db);
        return ok ? 0 : 1;
    }
    return 2;
}
