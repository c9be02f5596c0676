// A second program for the repair tests, run as a real process:
//
//   repair_helper compact <file>     subCompactDatabase on <file>'s folder
//   repair_helper create <file>      CreateDatabase
//   repair_helper writer <file> <ms> another board program adding rows for <ms>
//
// The first two print "started", exit 0 on success and are killed at chosen
// moments by the tests. The writer uses the bare SQLite library, as the user
// programs do, and prints "committed <name>" once each row's transaction is
// on the file.
#include "core/Global.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>

#include <sqlite3.h>

#include <cstdio>

namespace {

int writer(const char *file, int milliseconds)
{
    sqlite3 *db = nullptr;
    sqlite3_stmt *insert = nullptr;
    sqlite3_open_v2(file, &db, SQLITE_OPEN_READWRITE, nullptr);
    // Long waits are the user programs' way; what still fails is tried again.
    sqlite3_busy_timeout(db, 20000);
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeTable(Name, Status, UID) VALUES (?1, 'In', ?1)", -1, &insert, nullptr);
    QElapsedTimer clock;
    clock.start();
    for (int n = 0; clock.elapsed() < milliseconds;) {
        const QByteArray name = "Writer row " + QByteArray::number(n);
        sqlite3_bind_text(insert, 1, name.constData(), -1, SQLITE_TRANSIENT);
        const int rc = sqlite3_step(insert) & 0xff;
        sqlite3_reset(insert);
        if (rc == SQLITE_DONE) {
            std::printf("committed %s\n", name.constData());
            ++n;
        } else if (rc != SQLITE_BUSY && rc != SQLITE_LOCKED) {
            std::printf("error %d %s\n", rc, sqlite3_errmsg(db));
            return 3;
        }
        QThread::usleep(3000);  // a busy board: a few hundred changes a second
    }
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // each line out as soon as it is printed
    const QByteArray mode = argc > 2 ? argv[1] : "";
    if (mode == "writer")
        return writer(argv[2], argc > 3 ? std::atoi(argv[3]) : 1000);
    const QString file = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    Msg::setScripted(true);
    std::printf("started\n");
    if (mode == "create")
        return CreateDatabase(file) == 0 ? 0 : 2;
    if (mode != "compact")
        return 1;
    gstrDataPath = QFileInfo(file).absolutePath() + QLatin1Char('/');
    subCompactDatabase();
    gdbMain.close();
    return gbolRepairDone ? 0 : 2;
}
