#pragma once

#include <QString>
#include <QVariant>

#include <optional>

class Database;

// What the system settings windows write, as plain functions on an open
// handle. Every value is a bound parameter.
namespace Settings {

// The one row of GlobalSettingsTable. Created with the database; a file that
// has lost it gets a row of defaults first, so what the administrator chose
// is never dropped.
void ensureGlobalSettingsRow(Database &db);

struct GlobalRules {
    std::optional<int> logoPosition;  // unset: the stored position stays
    bool allowStatusAlerts = false;
    bool allowMessaging = false;
    bool allowPresenceSensing = false;
    bool updateStatusOnLock = false;
    bool allowUserToAddTavelloToStartupFolder = false;
};
// The global settings window's OK. No change counter: users pick the rules
// up when they restart their program.
void saveGlobalRules(Database &db, const GlobalRules &rules);

// The security window's OK: the level (unset: left as stored), then
// SecurityCounter raised by one. Two writes, not one transaction.
void saveSecurityLevel(Database &db, std::optional<int> level);

// Company information as stored: blanks trimmed at both ends, each double
// quote turned into an apostrophe. An empty text is stored as Null, the
// column refusing a zero-length text.
QString companyInfoAsStored(const QString &typed);
void saveCompanyInfo(Database &db, const QString &typed);
QString readCompanyInfo(Database &db);  // Null and a missing row read as empty

// The stored photo path, trimmed; empty for none.
QString readPhotoPath(Database &db);
// Stores `path` as it is; an empty path is stored as one blank.
void savePhotoPath(Database &db, const QString &path);

// Whether a folder given in UNC (or local) form exists and can be entered.
// A share that is not mapped on this machine cannot.
bool folderExists(const QString &folder);

// AdminSettingsTable.AutoCheckForUpdates, the row added when missing.
void saveAutoCheckForUpdates(Database &db, bool on);

// forceshutdown.ini beside the database (local form); empty when the
// database folder cannot be reached from here.
QString forceShutdownFile();
// Writes "True" or "False". The result is not looked at: the user programs
// read the file, and a folder that cannot be written leaves it as it was.
void writeForceShutdown(bool on);

// Blanks trimmed at both ends, as typed texts always were; other white
// space stays.
QString trimBlanks(const QString &text);

}  // namespace Settings
