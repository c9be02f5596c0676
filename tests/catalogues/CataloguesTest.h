#pragma once

#include "../users/UsersTest.h"

#include <QDialog>
#include <QStringList>
#include <functional>

namespace CataloguesTest {

// Every box shown so far as "title|text", the text whole.
QStringList shown();

// A counter of StatusCounterTable.
long long counterOf(Database &db, const QString &field);

// The structure of the file as SQLite keeps it: every sqlite_master row.
QString schema(Database &db);

// Runs `action` while another program holds the file: "lock" (an
// uncommitted write of another process), "reader" (an open read
// transaction of another process) or "open read" (a second connection of
// this process with a read of EmployeeTable under way). The hold is taken as
// the console's `nth` statement starting with `on` starts, and let go as its
// next such statement or a COMMIT after that starts (a Retry, or the next
// step). The console's connection is followed when it is opened afresh
// during `action`.
void heldDuring(const ConsoleTest::Console &c, const QString &hold, const std::function<void()> &action, int nth = 1,
               const QString &on = "BEGIN");

// Selects the rows `selected` of `node` in the console (a click, then
// Ctrl+clicks) and runs the dispatcher `verb` ("Add", "Modify", "Delete")
// with `drive` handed the dialog it shows. False when none was shown.
bool dispatch(ConsoleTest::Console &c, const QString &node, const QStringList &selected, const QString &verb,
              const std::function<void(QDialog *)> &drive);

// Presses button `index` of the cmdButtons array.
void press(QDialog *d, int index);
// Texts of a list widget.
QStringList listed(const QDialog *d, const QString &list);

}  // namespace CataloguesTest
