// A second program for the repair tests, run as a real process:
//
//   repair_helper compact <folder>   subCompactDatabase on <folder>/tavello.mdb
//   repair_helper create <file>      CreateDatabase
//   repair_helper writer <file> <ms> another board program adding rows for <ms>
//
// The first two are killed at chosen moments by the tests. The writer uses
// the bare SQLite library, as the user programs do, and prints
// "committed <name>" once each row's transaction is on the file.
#include "core/Global.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <sqlite3.h>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

int writer(const char *file, int milliseconds)
{
    sqlite3 *db = nullptr;
    sqlite3_stmt *insert = nullptr;
    sqlite3_open_v2(file, &db, SQLITE_OPEN_READWRITE, nullptr);
    // Long waits are the user programs' way; what still fails is tried again.
    sqlite3_busy_timeout(db, 20000);
    if (sqlite3_prepare_v2(db, "INSERT INTO EmployeeTable(Name, Status, UID) VALUES (?1, 'In', ?1)", -1, &insert,
                           nullptr) != SQLITE_OK) {
        std::printf("error %s\n", sqlite3_errmsg(db));
        return 2;
    }
    QElapsedTimer clock;
    clock.start();
    for (int n = 0; clock.elapsed() < milliseconds;) {
        const std::string name = "Writer " + std::to_string(::getpid()) + " row " + std::to_string(n);
        sqlite3_bind_text(insert, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        const int rc = sqlite3_step(insert) & 0xff;
        sqlite3_reset(insert);
        if (rc == SQLITE_DONE) {
            std::printf("committed %s\n", name.c_str());
            ++n;
        } else if (rc != SQLITE_BUSY && rc != SQLITE_LOCKED) {
            std::printf("error %d %s\n", rc, sqlite3_errmsg(db));
            return 3;
        }
        std::fflush(stdout);
        QThread::usleep(3000);  // a busy board: a few hundred changes a second
    }
    sqlite3_finalize(insert);
    sqlite3_close(db);
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 3)
        return 1;
    const std::string mode = argv[1];
    Msg::setScripted(true);
    gstrAppTitle = appTitleFor(gstrReleaseVersion);
    if (mode == "writer")
        return writer(argv[2], argc > 3 ? std::atoi(argv[3]) : 1000);
    if (mode == "create") {
        std::printf("created %d\n", CreateDatabase(QString::fromLocal8Bit(argv[2])));
        return 0;
    }
    if (mode != "compact")
        return 1;
    gstrDataPath = QString::fromLocal8Bit(argv[2]) + QLatin1Char('/');
    gstrDatabaseFile = gstrDataPath + QStringLiteral("tavello.mdb");
    std::printf("started\n");
    std::fflush(stdout);
    subCompactDatabase();
    std::printf("repair-done %d\n", gbolRepairDone ? 1 : 0);
    gdbMain.close();
    return 0;
}
