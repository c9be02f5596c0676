#pragma once

#include <QString>

#include <functional>

namespace TestSupport {

// Runs `action` while another program holds the board at `localDbPath`, the
// hold timed by the console's own statements: "lock" (an uncommitted write
// of another process), "reader" (an open read transaction of another
// process) or "open read" (a second connection of this process with a read
// under way) is taken as the console's `nth` statement starting with `on`
// starts, and let go as its next such statement or a COMMIT after that
// starts (a Retry, or the next step); "moment" (another process holding the
// file to itself) is taken then and let go by its holder a second later;
// any other `hold` takes none. The
// console's connection is followed when it is opened afresh meanwhile.
//
// The store's wait for passing locks is short while it runs (but for a
// "moment", which it must outlast), and every box
// shown meanwhile is checked to leave the other programs reading: the test
// fails when a reader is locked out while a box waits.
void heldDuring(const QString &localDbPath, const QString &hold, const std::function<void()> &action, int nth = 1,
                const QString &on = QStringLiteral("BEGIN"));

}  // namespace TestSupport
