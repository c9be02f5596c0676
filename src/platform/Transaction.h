#pragma once

#include <functional>

class Database;
class StoreError;

namespace Store {

// Asked after a change failed and was rolled back: true runs the whole
// change again, false gives up.
using AskAgain = std::function<bool(const StoreError &error)>;

// Runs `change` as one transaction. When a statement or the commit fails,
// the transaction is rolled back before `ask` is called, so no lock of the
// console's stays on the file while a box waits for the administrator; on
// Retry the whole change runs again from its start. True when committed.
bool inTransaction(Database &db, const std::function<void()> &change, const AskAgain &ask);

}  // namespace Store
