// tavello-bench compact [--quick] [--mb N] [--runs N]
//
// The dialog's repair and compact (subCompactDatabase: getting the file
// alone, rotating the ten backups, the copy of the untouched file, the
// compaction in place, the reopen and the reset of active flags; message
// boxes scripted) on a board of N megabytes with free pages in it and ten
// backups beside it, against
// VACUUM INTO of the same file through the bare SQLite C API in the same
// run. Prints the figures of every run and ends with
// "ratio <our median / reference median>".
#include "core/Global.h"
#include "platform/Compact.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

bool exec(sqlite3 *db, const char *sql)
{
    char *error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) == SQLITE_OK)
        return true;
    std::fprintf(stderr, "compact: %s: %s\n", sql, error);
    sqlite3_free(error);
    return false;
}

// A board of about `megabytes`: users with unique names (the key is blind to
// case) and all of EmployeeTable's indexes, then every fifth run of a
// hundred users deleted again, so that a fifth of the pages lie free; a
// hundred users are active.
bool buildBoard(const QString &file, qint64 megabytes, qint64 *users)
{
    if (CreateDatabase(file) != 0)
        return false;
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(file).constData(), &db);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(db, sqlite3_close);
    exec(db, "PRAGMA synchronous = OFF");
    exec(db, "PRAGMA cache_size = -200000");
    if (!exec(db, "BEGIN"))
        return false;
    sqlite3_stmt *insert = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO EmployeeTable(Name, Status, StatusCode, Phone, DueBack, Comments, LastModified, "
                       "ActiveFlag, UID, NetWorkLogonID) VALUES (?1, ?2, 1, ?3, 'Back at 14:00', ?4, ?5, 'No', ?6, ?7)",
                       -1, &insert, nullptr);
    QRandomGenerator random(2006);
    const char *statuses[] = {"In", "Out", "Busy", "At Lunch", "On Holiday", "In a Meeting"};
    qint64 i = 0;
    for (;;) {
        if (i % 5000 == 0) {
            sqlite3_stmt *size = nullptr;
            sqlite3_prepare_v2(db, "PRAGMA page_count", -1, &size, nullptr);
            sqlite3_step(size);
            const qint64 bytes = sqlite3_column_int64(size, 0) * 4096;
            sqlite3_finalize(size);
            if (bytes >= megabytes * 1024 * 1024)
                break;
        }
        ++i;
        // Names differ from each other in more than case only.
        const QByteArray name = "Employee " + QByteArray::number(random.generate(), 36) + " " + QByteArray::number(i);
        QByteArray comment;
        while (comment.size() < 160)
            comment += QByteArray::number(random.generate64(), 36) + ' ';
        comment.truncate(160);
        const QByteArray phone = "+44 20 7946 " + QByteArray::number(i % 10000).rightJustified(4, '0');
        const QByteArray modified = "2006-07-" + QByteArray::number(10 + i % 18) + " " +
                                    QByteArray::number(8 + i % 10).rightJustified(2, '0') + ":15:00";
        const QByteArray uid = QByteArray::number(random.generate64(), 16) + QByteArray::number(i);
        const QByteArray logon = "DOMAIN\\user" + QByteArray::number(i);
        sqlite3_bind_text(insert, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 2, statuses[i % 6], -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, 3, phone.constData(), int(phone.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 4, comment.constData(), int(comment.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 5, modified.constData(), int(modified.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 6, uid.constData(), int(uid.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 7, logon.constData(), int(logon.size()), SQLITE_TRANSIENT);
        if (sqlite3_step(insert) != SQLITE_DONE) {
            std::fprintf(stderr, "compact: insert: %s\n", sqlite3_errmsg(db));
            sqlite3_finalize(insert);
            return false;
        }
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    *users = i;
    return exec(db, "DELETE FROM EmployeeTable WHERE rowid % 500 >= 400") &&
           exec(db, "UPDATE EmployeeTable SET ActiveFlag = 'Yes' WHERE rowid IN "
                    "(SELECT rowid FROM EmployeeTable WHERE Name <> 'Guest' ORDER BY rowid LIMIT 100)") &&
           exec(db, "COMMIT");
}

double referenceSeconds(const QString &source, const QString &target)
{
    QFile::remove(target);
    QElapsedTimer clock;
    clock.start();
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(source).constData(), &db);
    const QByteArray sql = "VACUUM INTO '" + QFile::encodeName(target).replace('\'', "''") + "'";
    const bool ok = exec(db, sql.constData());
    sqlite3_close(db);
    const double s = clock.nsecsElapsed() / 1e9;
    QFile::remove(target);
    return ok ? s : -1;
}

double oursSeconds(const QString &folder)
{
    gstrDataPath = folder + QLatin1Char('/');
    gstrDatabaseFile = gstrDataPath + QStringLiteral("tavello.mdb");
    Msg::clearTranscript();
    QElapsedTimer clock;
    clock.start();
    subCompactDatabase();
    gdbMain.close();
    const double s = clock.nsecsElapsed() / 1e9;
    if (!gbolRepairDone || !Msg::transcript().isEmpty()) {
        std::fprintf(stderr, "compact: the repair failed: %s\n", qPrintable(Msg::transcript().value(0).text));
        return -1;
    }
    return s;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

double secondsOf(const std::function<void()> &work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return clock.nsecsElapsed() / 1e9;
}

}  // namespace

int runCompactBench(int argc, char **argv)
{
    qint64 megabytes = 200;
    int runs = 9;  // the disk of a shared machine varies from one run to the next
    bool quick = false;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--mb") == 0 && i + 1 < argc)
            megabytes = std::max<qint64>(1, std::atoll(argv[++i]));
        else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
    }
    if (quick) {
        megabytes = 4;
        runs = 1;
    }
    std::unique_ptr<QCoreApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QCoreApplication>(argc, argv);
    Msg::setScripted(true);

    QTemporaryDir dir;
    const QString pristine = dir.filePath(QStringLiteral("pristine.mdb"));
    qint64 users = 0;
    if (!buildBoard(pristine, megabytes, &users)) {
        std::fprintf(stderr, "compact: could not build the board\n");
        return 2;
    }
    const QString live = dir.filePath(QStringLiteral("share/tavello.mdb"));
    const QString referenceSource = dir.filePath(QStringLiteral("reference.mdb"));
    QDir().mkpath(dir.filePath(QStringLiteral("share")));
    qint64 freePages = 0;
    {
        sqlite3 *db = nullptr;
        sqlite3_open(QFile::encodeName(pristine).constData(), &db);
        sqlite3_stmt *s = nullptr;
        sqlite3_prepare_v2(db, "PRAGMA freelist_count", -1, &s, nullptr);
        if (sqlite3_step(s) == SQLITE_ROW)
            freePages = sqlite3_column_int64(s, 0);
        sqlite3_finalize(s);
        sqlite3_close(db);
    }
    std::printf("compact: board of %.1f MB, %lld users written and a fifth deleted again, %lld free pages\n",
                QFileInfo(pristine).size() / 1048576.0, users, freePages);

    if (!quick) {
        // The steady state of a site: ten generations present, the oldest to be deleted.
        for (int n = 0; n < 10; ++n)
            QFile::copy(pristine, dir.filePath(QStringLiteral("share/tavello-database-backup.00%1").arg(n)));
        ::sync();
    }

    // A first pair of runs on a disk still busy with writing the backups
    // above measures that disk, not the work: it is shown, not counted.
    const int warmUp = quick ? 0 : 1;
    std::vector<double> reference, ours;
    for (int run = -warmUp; run < runs; ++run) {
        QFile::remove(live);
        QFile::remove(referenceSource);
        if (!QFile::copy(pristine, live) || !QFile::copy(pristine, referenceSource)) {
            std::fprintf(stderr, "compact: could not copy the board\n");
            return 2;
        }
        ::sync();  // both start from clean pages
        double r = 0, o = 0;
        // Alternate which goes first, so neither always meets a busier disk.
        if ((run + warmUp) % 2 == 0) {
            r = referenceSeconds(referenceSource, dir.filePath(QStringLiteral("reference-out.mdb")));
            ::sync();
            o = oursSeconds(dir.filePath(QStringLiteral("share")));
        } else {
            o = oursSeconds(dir.filePath(QStringLiteral("share")));
            ::sync();
            r = referenceSeconds(referenceSource, dir.filePath(QStringLiteral("reference-out.mdb")));
        }
        if (r < 0 || o < 0)
            return 1;
        if (run < 0) {
            std::printf("warm-up: reference VACUUM INTO %.3f s, ours %.3f s (%.2f)\n", r, o, o / r);
            continue;
        }
        reference.push_back(r);
        ours.push_back(o);
        std::printf("run %d: reference VACUUM INTO %.3f s, ours %.3f s (%.2f); %.1f MB after\n", run + 1, r, o, o / r,
                    QFileInfo(live).size() / 1048576.0);
    }

    if (!quick) {
        // Where the time goes, once, on a fresh copy.
        QFile::remove(live);
        QFile::copy(pristine, live);
        ::sync();
        Compact::Connection held;
        const double open = secondsOf([&] { held = Compact::holdFile(live); });
        const double copy = secondsOf([&] { Compact::copyHeldFile(held.get(), dir.filePath(QStringLiteral("parts.000"))); });
        const double compact = secondsOf([&] { Compact::compactHeld(std::move(held)); });
        Database reopened;
        const double reopen = secondsOf([&] { reopened = Database::open(live); });
        const double flags = secondsOf([&] { subResetActiveFlags(reopened); });
        std::printf("parts, one after the other: exclusive hold %.3f s, copy of the untouched file %.3f s, "
                    "compaction in place with its flush and close %.3f s, reopen %.3f s, reset of 100 active flags %.3f s\n",
                    open, copy, compact, reopen, flags);
    }

    const double ratio = median(ours) / median(reference);
    std::printf("median: reference %.3f s, ours %.3f s\n", median(reference), median(ours));
    std::printf("ratio %.2f\n", ratio);
    return 0;
}
