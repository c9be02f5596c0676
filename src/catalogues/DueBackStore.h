#pragma once

#include <QString>

class Database;

// What the due-back windows write. No change counter: the user programs
// read the phrases afresh each time they offer them.
namespace DueBackTypes {

// The board's duplicate test of Add: `pattern` is a `like` pattern, blind to case.
bool exists(Database &db, const QString &pattern);
// Modify's test: the same text, by plain comparison.
bool equalExists(Database &db, const QString &text);

void add(Database &db, const QString &text);
// The first row of `current` becomes `text`. A row gone meanwhile is a
// failure (3021, no current record).
void rename(Database &db, const QString &current, const QString &text);
void deleteRows(Database &db, const QString &text);

}  // namespace DueBackTypes
