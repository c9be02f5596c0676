#pragma once

#include <QString>

class Database;

// Builds a complete new board database at `path` (UNC or local): every table
// with its fields, indexes and relations, then the seed rows. The file shows
// under its name only once it is complete, so a crash never leaves a half-built
// database behind, and an existing file is never touched.
// Returns 0, or the failure number; shows no message of its own (seed rows
// that fail are told one by one, as modCreateData does).
int CreateDatabase(const QString &path);

// The structure alone (tables in order, then the relations) on an open, empty file.
void createStructure(Database &db);
