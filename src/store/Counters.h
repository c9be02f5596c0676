#pragma once

#include <QString>

class Database;

// The one row of StatusCounterTable tells the user programs what changed.
// Each raise adds exactly one to its field on gdbMain (or on `db`).
void subRaiseCounter();
void subRaiseGroupCounter();
void subRaiseStatusTypeCounter();
void subRaiseSecurityCounter();
void subRaiseExtraColumnsCounter();
void raiseCounterField(Database &db, const QString &field);
// ExtraColumnsCounter on `db`, first adding the field to a file that lacks it.
void raiseExtraColumnsCounter(Database &db);

// Makes the counter row well formed at start (row present, field present, no Nulls).
void subTestStatusCounterTable();

// The console's own rows of the transaction log: Name "Admin", Status = text.
void subWriteTransactionLog(Database &db, const QString &status);
