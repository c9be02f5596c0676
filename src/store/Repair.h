#pragma once

#include <QString>

class Database;

// Gets the file alone, rotates the ten backups tavello-database-backup.000
// (newest) .. .009, keeps the untouched file as .000 and compacts (or, for a
// damaged file, salvages) the live file. Sets gbolRepairDone; shows its own
// failure messages.
void subCompactDatabase();

// Every "Yes" in EmployeeTable.ActiveFlag becomes "No"; with none there,
// nothing is done and nothing shown.
void subResetActiveFlags(Database &db);

// The one-shot route of the command line: "REPAIR" (any case) rotates
// tavello.000 .. tavello.009, compacts and writes "REPAIR SUCCESSFUL" or
// "REPAIR FAILED. " + text to the transaction log. Shows nothing.
// Returns true when it was a repair command at all.
bool subOneShotRepair(const QString &commandLine);
