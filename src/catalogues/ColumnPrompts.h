#pragma once

#include <QString>

class StoreError;

// What the column windows tell when the store refuses a change of
// structure. The change has been rolled back by then: the structure is as
// it was.
namespace ColumnPrompts {

enum class Change { Add, Rename, Delete };

// Another program reading or writing the file: says so, and asks Retry or
// Cancel. Any other failure: its text, under `title`, with Retry and Cancel
// for a delete and OK otherwise. True when the operator chose Retry.
bool askAfterRefusal(Change change, const QString &column, const QString &newName, const StoreError &e,
                     const QString &title);

}  // namespace ColumnPrompts
