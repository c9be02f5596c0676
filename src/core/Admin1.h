#pragma once

#include <QString>

#include <functional>

// The first open of the database: reads tavello.ini (creating it when
// missing), sets gstrDataPath and gstrDatabaseFile, opens gdbMain and deals
// with a missing, damaged, foreign or locked file.
void InitializeLocalDatabase();

// An older data file in place: set it aside, create a blank database and
// offer to convert the old data.
void subCheckDBVersionForConversion();

// gbolTransactionLog from GlobalSettingsTable (message when that fails).
void subReadTransactionLogFlag();

// "SELECT COUNT(*) FROM EmployeeTable" into gintUserCount (0 when unreadable).
void subRefreshUserCount();

// Unloads the main window (its unload order) and ends the process. The main
// window registers what its unload does.
void setMainWindowUnloader(std::function<void()> unloader);
void unloadMainWindow(int exitCode = 0);

// The start goes no further without an open gdbMain: the Database Path
// window comes up until a path is saved that opens; Cancel ends the run
// (unload sequence, exit code ExitWithoutDatabase). Returns whether the
// start can go on.
bool subRequireDatabase();

// Local form of a folder in gstr...Path form (UNC or local), for plain files.
QString localFolder(const QString &folder);
