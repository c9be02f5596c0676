#include "CataloguesTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/Modal.h"

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

#include <optional>
#include <sqlite3.h>

namespace CataloguesTest {

namespace {

// The statement hook of the running whileHeld; null when none runs.
std::function<void(sqlite3 *, const QString &)> *g_hook = nullptr;

int trace(unsigned, void *, void *stmt, void *text)
{
    const QString sql = QString::fromUtf8(static_cast<const char *>(text));
    if (g_hook && !sql.startsWith("--"))  // statements run by triggers arrive as comments
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

QStringList shown()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + '|' + s.text;
    return out;
}

long long counterOf(Database &db, const QString &field)
{
    return db.scalar("SELECT " + Database::quoteIdentifier(field) + " FROM StatusCounterTable").toLongLong();
}

QString schema(Database &db)
{
    return UsersTest::rows(db, "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY rowid");
}

void heldDuring(const ConsoleTest::Console &c, const QString &hold, const std::function<void()> &action, int nth,
               const QString &on)
{
    std::optional<TestSupport::ExternalHolder> holder;
    Database reading = c.other();
    Recordset openRead;
    int begins = 0, commits = 0;
    std::function<void(sqlite3 *, const QString &)> hook = [&](sqlite3 *db, const QString &sql) {
        if (db != gdbMain.handle())
            return;
        begins += sql.startsWith(on);
        commits += sql.startsWith("COMMIT");
        if (sql.startsWith(on) && begins == nth) {
            if (hold == "lock" || hold == "reader")
                holder.emplace(c.databaseFile(), hold == "lock" ? TestSupport::ExternalHolder::Hold::Write
                                                                : TestSupport::ExternalHolder::Hold::Read);
            else if (hold == "open read")
                openRead = reading.query("SELECT * FROM EmployeeTable");
        } else if (begins > nth || commits > nth) {
            holder.reset();
            openRead.close();
        }
    };
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(traceNewConnection));
    sqlite3_trace_v2(gdbMain.handle(), SQLITE_TRACE_STMT, trace, nullptr);
    g_hook = &hook;
    action();
    g_hook = nullptr;
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(traceNewConnection));
    if (gdbMain.handle())
        sqlite3_trace_v2(gdbMain.handle(), 0, nullptr, nullptr);
}

bool dispatch(ConsoleTest::Console &c, const QString &node, const QStringList &selected, const QString &verb,
              const std::function<void(QDialog *)> &drive)
{
    c.clickNode(node);
    c.list()->clearSelection();
    for (int i = 0; i < selected.size(); ++i) {
        const int row = c.rowOf(selected[i]);
        if (row < 0)
            qFatal("no row %s", qPrintable(selected[i]));
        c.clickRow(row, Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
    }
    bool shownDialog = false;
    Modal::setHandler([&](QDialog *d) {
        shownDialog = true;
        drive(d);
    });
    if (verb == "Add")
        c.w().AddDispatcher(node);
    else if (verb == "Modify")
        c.w().ModifyDispatcher(node);
    else
        c.w().DeleteDispatcher(node);
    Modal::setHandler({});
    return shownDialog;
}

void press(QDialog *d, int index)
{
    QTest::mouseClick(UsersTest::control<QPushButton>(d, QString("cmdButtons_%1").arg(index)), Qt::LeftButton);
}

QStringList listed(const QDialog *d, const QString &list)
{
    QStringList out;
    auto *l = UsersTest::control<QListWidget>(d, list);
    for (int i = 0; i < l->count(); ++i)
        out << l->item(i)->text();
    return out;
}

}  // namespace CataloguesTest
