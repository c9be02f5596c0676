// tavello-bench export [--quick] [--rows N] [--runs N]
//
// Export Log of the transaction log window (frmTransLog, message boxes
// scripted, the overwrite question answered Yes) on a log of N rows, against
// reading the same rows through the bare SQLite C API and writing the same
// CSV with fwrite, in the same run. Ends with "ratio <ours / reference>".
#include "core/Global.h"
#include "logs/TransLogStore.h"
#include "logs/frmTransLog.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/modUpdateDatabaseStructure.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

bool fillLog(const QString &file, long long rows)
{
    {
        Database db = Database::open(file);
        updateDatabaseStructure(db);
    }
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(file).constData(), &db);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(db, sqlite3_close);
    sqlite3_exec(db, "PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO TransactionLogTable (Name, Status, DueBack, Comments, LastModified, NetworkLogonID, "
                       "ComputerName) VALUES (?, ?, ?, ?, ?, ?, ?)",
                       -1, &st, nullptr);
    const char *statuses[] = {"In", "Out", "Busy", "At Lunch", "In a Meeting"};
    bool ok = true;
    for (long long i = 0; i < rows && ok; ++i) {
        const std::string name = "Smith, Person " + std::to_string(i % 5000);
        const std::string due = i % 3 ? "Tomorrow 9:00" : "";
        const std::string comment = i % 11 ? "Visiting the \"north\" site, back later" : "";
        char when[32];
        std::snprintf(when, sizeof when, "2006-%02lld-%02lld %02lld:%02lld:%02lld", 1 + i % 12, 1 + i % 28, i % 24,
                      i % 60, (i / 60) % 60);
        const std::string logon = "user" + std::to_string(i % 5000);
        const std::string pc = "PC-" + std::to_string(i % 700);
        sqlite3_bind_text(st, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, statuses[i % 5], -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 3, due.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 4, comment.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 5, when, -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 6, logon.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 7, pc.c_str(), -1, SQLITE_TRANSIENT);
        ok = sqlite3_step(st) == SQLITE_DONE;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, ok ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    return ok;
}

// The reference: the rows read and written as the same CSV with fwrite.
double referenceMs(const QString &database, const QString &csv, long long *rows)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(QFile::encodeName(database).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(db, sqlite3_close);
    QFile::remove(csv);  // a fresh file, not one cut back to nothing
    QElapsedTimer t;
    t.start();
    FILE *out = std::fopen(QFile::encodeName(csv).constData(), "wb");
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db,
                       "SELECT Name, Status, DueBack, Comments, LastModified, NetworkLogonID, ComputerName "
                       "FROM TransactionLogTable",
                       -1, &st, nullptr);
    long long n = 0;
    while (sqlite3_step(st) == SQLITE_ROW) {
        for (int c = 0; c < 7; ++c) {
            if (c)
                std::fputc(',', out);
            std::fputc('"', out);
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
            const int size = sqlite3_column_bytes(st, c);
            // A quote inside is doubled: the text up to and with each quote,
            // then that quote once more.
            for (int from = 0; text && from < size;) {
                const auto *quote = static_cast<const char *>(std::memchr(text + from, '"', size_t(size - from)));
                const int upto = quote ? int(quote - text) + 1 : size;
                std::fwrite(text + from, 1, size_t(upto - from), out);
                if (quote)
                    std::fputc('"', out);
                from = upto;
            }
            std::fputc('"', out);
        }
        std::fwrite("\r\n", 1, 2, out);
        ++n;
    }
    sqlite3_finalize(st);
    std::fclose(out);
    *rows = n;
    return double(t.nsecsElapsed()) / 1e6;
}

double consoleMs(frmTransLog &window)
{
    Msg::clearTranscript();
    Msg::queueAnswers({Msg::Yes});
    QElapsedTimer t;
    t.start();
    window.cmdButtons_Click(4);
    const double ms = double(t.nsecsElapsed()) / 1e6;
    const QList<Msg::Shown> shown = Msg::transcript();
    if (shown.isEmpty() || !shown.last().text.endsWith(QStringLiteral(" complete."))) {
        std::fprintf(stderr, "export: %s\n", shown.isEmpty() ? "no message" : qPrintable(shown.last().text));
        return -1;
    }
    return ms;
}

}  // namespace

int runExportBench(int argc, char **argv)
{
    long long rows = 1000000;
    int runs = 3;
    bool quick = false;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--rows") == 0 && i + 1 < argc)
            rows = std::max(1LL, std::atoll(argv[++i]));
        else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
    }
    if (quick) {
        rows = 20000;
        runs = 1;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);

    QTemporaryDir dir;
    const QString database = dir.filePath(QStringLiteral("tavello.mdb"));
    if (CreateDatabase(database) != 0 || !fillLog(database, rows)) {
        std::fprintf(stderr, "export: could not build the log\n");
        return 2;
    }
    gstrDataPath = dir.path() + QLatin1Char('/');
    gdbMain = Database::open(database);
    const QString ourFile = dir.filePath(TransLog::exportFileName(QDate::currentDate()));
    const QString refFile = dir.filePath(QStringLiteral("reference.csv"));
    std::vector<double> ours, reference;
    {
        frmTransLog window;
        for (int r = 0; r < runs; ++r) {
            // Each side goes first in turn: the one after meets the other's
            // file still being written back to the disk.
            long long refRows = 0;
            double ref = 0, our = 0;
            if (r % 2 == 0) {
                ref = referenceMs(database, refFile, &refRows);
                our = consoleMs(window);
            } else {
                our = consoleMs(window);
                ref = referenceMs(database, refFile, &refRows);
            }
            if (our < 0 || refRows != rows)
                return 1;
            reference.push_back(ref);
            ours.push_back(our);
            std::printf("run %d: reference %.0f ms, console %.0f ms\n", r + 1, ref, our);
        }
    }
    QFile a(ourFile), b(refFile);
    if (!a.open(QIODevice::ReadOnly) || !b.open(QIODevice::ReadOnly) || a.size() != b.size() ||
        a.readAll() != b.readAll()) {
        std::fprintf(stderr, "export: the console's file differs from the reference's\n");
        return 1;
    }
    std::sort(ours.begin(), ours.end());
    std::sort(reference.begin(), reference.end());
    const double ourMedian = ours[ours.size() / 2], refMedian = reference[reference.size() / 2];
    std::printf("export: %lld rows, %.1f MB of CSV\n", rows, double(QFileInfo(ourFile).size()) / (1024.0 * 1024.0));
    std::printf("reference, bare SQLite C API and fwrite: %.0f ms\n", refMedian);
    std::printf("console, Export Log of frmTransLog:       %.0f ms\n", ourMedian);
    std::printf("ratio %.2f\n", ourMedian / refMedian);
    gdbMain.close();
    return 0;
}
