#pragma once

class Database;

// Fills in the rows without which the console and the user programs cannot
// run. A failed row costs one message ("Error: n - text") and the rest are
// still written.
void modCreateData(Database &db);
