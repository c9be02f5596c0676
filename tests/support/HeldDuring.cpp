#include "support/HeldDuring.h"

#include "core/Global.h"
#include "platform/LockWait.h"
#include "platform/MessageBox.h"
#include "support/BusyBoard.h"
#include "support/TestSupport.h"

#include <QTest>

#include <optional>
#include <sqlite3.h>

namespace TestSupport {

namespace {

// The statement hook of the running heldDuring; null when none runs.
std::function<void(sqlite3 *, const QString &)> *g_hook = nullptr;

int trace(unsigned, void *, void *stmt, void *text)
{
    const QString sql = QString::fromUtf8(static_cast<const char *>(text));
    if (g_hook && !sql.startsWith(QLatin1String("--")))  // statements run by triggers arrive as comments
        (*g_hook)(sqlite3_db_handle(static_cast<sqlite3_stmt *>(stmt)), sql);
    return 0;
}

// Every connection opened in this process gets the hook: the console may
// open its connection afresh in the middle of an action.
int traceNewConnection(sqlite3 *db, const char **, const struct sqlite3_api_routines *)
{
    sqlite3_trace_v2(db, SQLITE_TRACE_STMT, trace, nullptr);
    return SQLITE_OK;
}

}  // namespace

void heldDuring(const QString &localDbPath, const QString &hold, const std::function<void()> &action, int nth,
                const QString &on)
{
    std::optional<ExternalHolder> holder;
    Database reading = Database::open(localDbPath);
    Recordset openRead;
    int begins = 0, commits = 0;
    std::function<void(sqlite3 *, const QString &)> hook = [&](sqlite3 *db, const QString &sql) {
        if (db != gdbMain.handle())
            return;
        begins += sql.startsWith(on);
        commits += sql.startsWith(QLatin1String("COMMIT"));
        if (sql.startsWith(on) && begins == nth) {
            if (hold == QLatin1String("lock") || hold == QLatin1String("reader")) {
                holder.emplace(localDbPath, hold == QLatin1String("lock") ? ExternalHolder::Hold::Write
                                                                           : ExternalHolder::Hold::Read);
            } else if (hold == QLatin1String("moment")) {
                holder.emplace(localDbPath, ExternalHolder::Hold::Exclusive);
                holder->send(QStringLiteral(".shell sleep 1\nCOMMIT;"));
            } else if (hold == QLatin1String("open read")) {
                openRead = reading.query(QStringLiteral("SELECT * FROM EmployeeTable"));
            }
        } else if (begins > nth || commits > nth) {
            holder.reset();
            openRead.close();
        }
    };
    // The other holds outlast the store's wait for passing locks; a short one keeps the test quick.
    const int wait = Store::lockWait();
    if (hold != QLatin1String("moment"))
        Store::setLockWait(300);
    QStringList lockedOut;
    Msg::setWhileShown([&](const Msg::Shown &box) {
        if (!BusyBoard::readPasses(localDbPath, 1000))
            lockedOut << box.text;
    });
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(traceNewConnection));
    if (gdbMain.handle())
        sqlite3_trace_v2(gdbMain.handle(), SQLITE_TRACE_STMT, trace, nullptr);
    g_hook = &hook;
    action();
    g_hook = nullptr;
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(traceNewConnection));
    if (gdbMain.handle())
        sqlite3_trace_v2(gdbMain.handle(), 0, nullptr, nullptr);
    Msg::setWhileShown({});
    Store::setLockWait(wait);
    QVERIFY2(lockedOut.isEmpty(), qPrintable("readers locked out while a box waited: " + lockedOut.join(" / ")));
}

}  // namespace TestSupport
