// tavello-bench import [--quick] [--lines N] [--runs N]
//
// The user import of a file of N valid lines through both steps of the
// wizard (frmImport01 counting and previewing, Next, frmImport02's run in
// one transaction; offscreen, message boxes scripted), against inserting
// the same rows -- one EmployeeTable and one EmployeeSettingsTable row a
// line, same values -- through the bare SQLite C API with prepared
// statements in one transaction, in the same run and on copies of the same
// board. Then the peak memory of a process importing N lines and ten times
// N lines, each in a process of its own. Ends with "ratio <ours / reference>".
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "import/frmImport01.h"
#include "import/frmImport02.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/CreateDB.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
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

const char *const SettingsColumns =
    "AutoClearComments, AutoLogIn, AutoLogOut, AutoMinimize, RefreshRate, DefaultGroup, StatusColumnWidth, "
    "NameColumnWidth, PhoneColumnWidth, DueBackColumnWidth, CommentsColumnWidth, LastModifiedColumnWidth, SortOrder, "
    "SortKey, ScreenTop, ScreenLeft, ScreenWidth, ScreenHeight, ListViewPopUp, ChangeScreenPopUp, UserSecurityLevel, "
    "MinimizeSetting, IconSize, ToolBarText, MinimizeOnClose, DisplayTreeView, StatusColumnOrder, NameColumnOrder, "
    "PhoneColumnOrder, DueBackColumnOrder, CommentsColumnOrder, LastModifiedColumnOrder, FontBoldDisplay, "
    "FontSizeDisplay";

double peakMegabytes()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_maxrss) / 1024.0;
}

std::string field(const char *prefix, long long i) { return prefix + std::to_string(i); }

bool writeFile(const QString &path, long long lines)
{
    FILE *f = std::fopen(QFile::encodeName(path).constData(), "wb");
    if (!f)
        return false;
    for (long long i = 0; i < lines; ++i)
        std::fprintf(f, "U%lld,Name %lld,555-%lld\n", i, i, i);
    return std::fclose(f) == 0;
}

bool copyFile(const QString &from, const QString &to)
{
    QFile::remove(to);
    return QFile::copy(from, to);
}

// The reference: the rows straight in, values read once from the template.
double referenceMs(const QString &file, long long lines, long long *users)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(file).constData(), &db);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(db, sqlite3_close);
    sqlite3_exec(db, "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
    // The template's values, as the store holds them.
    std::vector<sqlite3_value *> defaults;
    {
        sqlite3_stmt *st = nullptr;
        const std::string sql = std::string("SELECT ") + SettingsColumns + " FROM NewUserDefaultsTable";
        sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr);
        if (sqlite3_step(st) == SQLITE_ROW)
            for (int c = 0; c < sqlite3_column_count(st); ++c)
                defaults.push_back(sqlite3_value_dup(sqlite3_column_value(st, c)));
        sqlite3_finalize(st);
    }
    const auto freeDefaults = qScopeGuard([&] {
        for (sqlite3_value *v : defaults)
            sqlite3_value_free(v);
    });
    std::vector<std::array<std::string, 3>> rows;
    rows.reserve(size_t(lines));
    for (long long i = 0; i < lines; ++i)
        rows.push_back({field("U", i), field("Name ", i), field("555-", i)});

    QElapsedTimer t;
    t.start();
    sqlite3_stmt *employee = nullptr, *settings = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeTable (UID, Name, Phone) VALUES (?, ?, ?)", -1, &employee, nullptr);
    std::string sql = std::string("INSERT INTO EmployeeSettingsTable (") + SettingsColumns + ", Name) VALUES (";
    for (int c = 0; c <= int(defaults.size()); ++c)
        sql += c ? ", ?" : "?";
    sql += ")";
    sqlite3_prepare_v2(db, sql.c_str(), -1, &settings, nullptr);
    sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    bool ok = true;
    for (const auto &row : rows) {
        for (int c = 0; c < 3; ++c)
            sqlite3_bind_text(employee, c + 1, row[c].data(), int(row[c].size()), SQLITE_STATIC);
        ok = ok && sqlite3_step(employee) == SQLITE_DONE;
        sqlite3_reset(employee);
        for (int c = 0; c < int(defaults.size()); ++c)
            sqlite3_bind_value(settings, c + 1, defaults[c]);
        sqlite3_bind_text(settings, int(defaults.size()) + 1, row[1].data(), int(row[1].size()), SQLITE_STATIC);
        ok = ok && sqlite3_step(settings) == SQLITE_DONE;
        sqlite3_reset(settings);
    }
    sqlite3_exec(db, ok ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_finalize(employee);
    sqlite3_finalize(settings);
    const double ms = double(t.nsecsElapsed()) / 1e6;
    sqlite3_stmt *count = nullptr;
    sqlite3_prepare_v2(db, "SELECT count(*) FROM EmployeeSettingsTable", -1, &count, nullptr);
    sqlite3_step(count);
    *users = sqlite3_column_int64(count, 0);
    sqlite3_finalize(count);
    return ok ? ms : -1;
}

// The console's way: both steps of the wizard on the file.
double consoleMs(const QString &database, const QString &file, long long *users)
{
    gstrDataPath.clear();
    gdbMain = Database::open(database);
    ImportFilePath = file;
    Msg::clearTranscript();
    Modal::setHandler([](QDialog *d) {
        if (auto *first = qobject_cast<frmImport01 *>(d))
            first->cmdButtons_Click(0);
        else if (auto *second = qobject_cast<frmImport02 *>(d))
            second->Form_Activate();
    });
    QElapsedTimer t;
    t.start();
    DialogRegistry::showModal(QStringLiteral("frmImport01"), nullptr);
    const double ms = double(t.nsecsElapsed()) / 1e6;
    Modal::setHandler({});
    *users = gdbMain.scalar(QStringLiteral("SELECT count(*) FROM EmployeeSettingsTable")).toLongLong();
    const QList<Msg::Shown> shown = Msg::transcript();
    if (shown.size() != 1 || !shown[0].text.contains(QStringLiteral("No errors were detected"))) {
        std::fprintf(stderr, "import: %s\n", shown.isEmpty() ? "no report" : qPrintable(shown.last().text));
        return -1;
    }
    gdbMain.close();
    return ms;
}

// The child's part: one import of `lines`, its peak memory printed.
int memoryChild(long long lines)
{
    QTemporaryDir dir;
    const QString database = dir.filePath(QStringLiteral("tavello.mdb"));
    const QString file = dir.filePath(QStringLiteral("staff.csv"));
    if (CreateDatabase(database) != 0 || !writeFile(file, lines))
        return 2;
    const double before = peakMegabytes();
    long long users = 0;
    const double ms = consoleMs(database, file, &users);
    if (ms < 0 || users != lines + 1)
        return 1;
    std::printf("%.1f %.1f %.0f\n", before, peakMegabytes(), ms);
    return 0;
}

QString memoryOf(long long lines)
{
    QProcess p;
    p.start(QStringLiteral("/proc/self/exe"), {QStringLiteral("import"), QStringLiteral("--memory-child"),
                                               QString::number(lines)});
    if (!p.waitForFinished(-1) || p.exitCode() != 0)
        return QStringLiteral("failed");
    const QStringList f = QString::fromUtf8(p.readAllStandardOutput()).trimmed().split(QLatin1Char(' '));
    if (f.size() != 3)
        return QStringLiteral("failed");
    return QStringLiteral("%1 MB (%2 MB before the import; %3 s)")
        .arg(f[1], f[0], QString::number(f[2].toDouble() / 1000.0, 'f', 1));
}

}  // namespace

int runImportBench(int argc, char **argv)
{
    long long lines = 100000;
    int runs = 3;
    bool quick = false;
    long long memoryChildLines = -1;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--lines") == 0 && i + 1 < argc)
            lines = std::max(1LL, std::atoll(argv[++i]));
        else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--memory-child") == 0 && i + 1 < argc)
            memoryChildLines = std::atoll(argv[++i]);
    }
    if (quick) {
        lines = 2000;
        runs = 1;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);
    DialogRegistry::registerAvailableWindows();
    if (memoryChildLines > 0)
        return memoryChild(memoryChildLines);

    QTemporaryDir dir;
    const QString board = dir.filePath(QStringLiteral("board.mdb"));
    const QString work = dir.filePath(QStringLiteral("tavello.mdb"));
    const QString file = dir.filePath(QStringLiteral("staff.csv"));
    if (CreateDatabase(board) != 0 || !writeFile(file, lines)) {
        std::fprintf(stderr, "import: could not build the board\n");
        return 2;
    }
    std::vector<double> ours, reference;
    for (int r = 0; r < runs; ++r) {
        // Each side goes first in turn, so neither always meets the
        // other's writes still on their way to the disk.
        long long refUsers = 0, ourUsers = 0;
        double ref = 0, our = 0;
        for (int side = 0; side < 2; ++side) {
            copyFile(board, work);
            if ((side + r) % 2 == 0)
                ref = referenceMs(work, lines, &refUsers);
            else
                our = consoleMs(work, file, &ourUsers);
        }
        if (ref < 0 || our < 0 || refUsers != lines + 1 || ourUsers != lines + 1) {
            std::fprintf(stderr, "import: users made: reference %lld, console %lld, expected %lld\n", refUsers,
                         ourUsers, lines + 1);
            return 1;
        }
        reference.push_back(ref);
        ours.push_back(our);
        std::printf("run %d: reference %.0f ms, console %.0f ms\n", r + 1, ref, our);
    }
    std::sort(ours.begin(), ours.end());
    std::sort(reference.begin(), reference.end());
    const double ourMedian = ours[ours.size() / 2], refMedian = reference[reference.size() / 2];
    std::printf("import: %lld lines, both steps of the wizard, one transaction\n", lines);
    std::printf("reference, bare SQLite C API, prepared inserts, one transaction: %.0f ms\n", refMedian);
    std::printf("console, frmImport01 and frmImport02:                           %.0f ms\n", ourMedian);
    const long long small = quick ? 2000 : lines, large = quick ? 20000 : lines * 10;
    std::printf("peak memory, import of %lld lines: %s\n", small, qPrintable(memoryOf(small)));
    std::printf("peak memory, import of %lld lines: %s\n", large, qPrintable(memoryOf(large)));
    std::printf("ratio %.2f\n", ourMedian / refMedian);
    return 0;
}
