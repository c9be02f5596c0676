#pragma once

// Brings a 2005-format database of an earlier release up to the present
// shape. Safe to run at every start: each added column is backfilled only by
// the run that really adds it. Works on gdbMain (opens and closes it itself).
void subUpdateDatabaseStructure();

class Database;
// The same steps on a given open handle (used by the routine above and tests).
void updateDatabaseStructure(Database &db);
