#pragma once

#include "platform/Database.h"

#include <QString>

// The process-wide values every window reads. They live for the run and
// carry no meaning outside it.
inline Database gdbMain;                 // the one shared handle on tavello.mdb
inline QString gstrSql;                  // statement about to be run
inline QString gstrMsg;                  // message about to be shown

inline QString gstrAppPath;              // program folder, UNC form, trailing separator
inline QString gstrDataPath;             // database folder, trailing separator
inline QString gstrDataPathUnc;
inline QString gstrDataPathCopy;
inline QString gstrDatabaseFile;         // gstrDataPath + "tavello.mdb"

inline const QString gstrReleaseDate = QStringLiteral("2006-07-22");
inline const QString gstrReleaseVersion = QStringLiteral("2006-07D");
inline QString gstrAppTitle;             // " TAVELLO Pro 2006-07D (Admin) - "
inline QString gstrCommandLine;

inline bool gbolIniFound = false;
inline bool gbolForceShutDown = false;
inline bool gbolTransactionLog = false;
inline bool gbolAutoCheckForUpdates = false;
inline QString gstrLastSelectedNode;
inline int gintCountryCode = 0;
inline int gintUserCount = 0;

inline bool gbolCloseDatabaseNow = false;  // subCloseDatabase really closes only when set
inline int gintRealCloseCount = 0;
inline bool gbolDataPathSaved = false;
inline bool gbolRepairDone = false;

inline int gintAdminFontBold = 0;
inline int gintAdminFontSize = 8;

// Set once the process has been told to end; long routines stop at their
// next step and the start-up sequence goes no further.
inline bool gbolEnding = false;

QString appTitleFor(const QString &version);

// Opens gdbMain afresh on gstrDataPath + "tavello.mdb". While another program
// holds the file it waits a second and tries again, without limit, keeping
// the window alive. Shows its own messages; a foreign file ends the run the
// way an ordinary exit does. Returns whether gdbMain is open.
bool subOpenDatabase();
// Gives the mouse pointer back; closes gdbMain only when gbolCloseDatabaseNow.
void subCloseDatabase();

// What a folder's tavello.mdb turned out to be. Older: it opened and read
// correctly and is not a 2005 database (no GlobalSettingsTable, or another
// DatabaseVersion). Unusable: it could not be opened or read for a reason
// other than a lock; that has been told.
enum class DatabaseCheck { Valid, Older, Unusable };

// Checks `folder` + "tavello.mdb", leaving gdbMain on that file. While the
// file is busy or held by another program it waits, as subOpenDatabase does.
DatabaseCheck subCheckDatabase(const QString &folder);

// "Error: This is NOT a 2005 Tavello database."
void subTellNotA2005Database();

// Whether `folder` holds a 2005 board database; an older one is told with
// "Error: This is NOT a 2005 Tavello database.". Leaves gdbMain on that file.
bool gbolIsValidDatabase(const QString &folder);

// Exit code of a run that ended without a usable database.
constexpr int ExitWithoutDatabase = 1;

// Ends the run: unloads the windows from the last to the first and leaves
// the event loop with `exitCode`. Safe to call before the loop runs.
void endProcess(int exitCode = 0);

// Lets pending events run (the console's DoEvents).
void yieldEvents();

// A pause that keeps the windows painting and answering.
void waitWithEvents(int ms);
