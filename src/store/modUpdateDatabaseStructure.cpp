#include "store/modUpdateDatabaseStructure.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "store/Schema.h"

namespace {

// Every step may fail (column already there, table held by a user program):
// that is the normal case, and the step is tried again at the next start.
template <typename Step>
bool attempt(Step &&run)
{
    try {
        run();
        return true;
    } catch (const StoreError &) {
        return false;
    }
}

// Adds a column defined exactly as a new file defines it. SQLite refuses a
// column that is already there, and that refusal is the guard of the pair.
bool addColumn(Database &db, const QString &table, const QString &column)
{
    const Schema::Field *field = Schema::field(table, column);
    if (!field)
        return false;
    return attempt([&] { db.addColumn(table, field->name, Schema::columnDefinition(table, *field)); });
}

bool dropColumn(Database &db, const QString &table, const QString &column)
{
    return attempt([&] { db.dropColumn(table, column); });
}

struct GuardedPair {
    const char *table;
    const char *column;
    QVariant backfill;  // written only by the run that adds the column
};

}  // namespace

void updateDatabaseStructure(Database &db)
{
    const GuardedPair pairs[] = {
        {"GlobalSettingsTable", "DatabaseReleaseVersion", 2005},
        {"GlobalSettingsTable", "AllowMessaging", 1},
        {"GlobalSettingsTable", "AllowStatusAlerts", 1},
        {"GlobalSettingsTable", "AllowPresenceSensing", 1},
        {"GlobalSettingsTable", "AllowUserToAddTavelloToStartupFolder", 1},
        {"GlobalSettingsTable", "UpdateStatusOnLock", 0},
        {"EmployeeSettingsTable", "SplitterPositionVertical", 1860},
        {"EmployeeSettingsTable", "SplitterPositionHorizontal", 3600},
        {"EmployeeSettingsTable", "DisplayTreeView", 1},
        {"EmployeeSettingsTable", "StatusAlertsOverride", 0},
        {"EmployeeSettingsTable", "FontBoldDisplay", 0},
        {"EmployeeSettingsTable", "FontSizeDisplay", 8},
        {"NewUserDefaultsTable", "SplitterPositionVertical", 1860},
        {"NewUserDefaultsTable", "SplitterPositionHorizontal", 3600},
        {"NewUserDefaultsTable", "FontBoldDisplay", 0},
        {"NewUserDefaultsTable", "FontSizeDisplay", 8},
        {"AdminSettingsTable", "LastSelectedNode", QStringLiteral("Users")},
        {"AdminSettingsTable", "AdminFontBoldDisplay", 0},
        {"AdminSettingsTable", "AdminFontSizeDisplay", 8},
    };
    for (const GuardedPair &p : pairs) {
        const QString table = QString::fromLatin1(p.table);
        const QString column = QString::fromLatin1(p.column);
        if (addColumn(db, table, column))
            attempt([&] {
                db.execute(QStringLiteral("UPDATE %1 SET %2 = ?")
                               .arg(Database::quoteIdentifier(table), Database::quoteIdentifier(column)),
                           {p.backfill});
            });
    }

    // The mistyped column of older files gives way to the right one. A file
    // without the old name has the new one already.
    if (dropColumn(db, QStringLiteral("EmployeeStatusTracking"), QStringLiteral("TrackeeLastUpdate")))
        addColumn(db, QStringLiteral("EmployeeStatusTracking"), QStringLiteral("TrackeeLastUpdated"));

    // Never a column of MessagesTable; both runs fail harmlessly.
    dropColumn(db, QStringLiteral("MessagesTable"), QStringLiteral("TrackeeLastUpdate"));
    dropColumn(db, QStringLiteral("MessagesTable"), QStringLiteral("TrackeeLastUpdate"));

    addColumn(db, QStringLiteral("MessagesTable"), QStringLiteral("MessageOwner"));
    addColumn(db, QStringLiteral("TransactionLogTable"), QStringLiteral("LogDateTime"));
    addColumn(db, QStringLiteral("TransactionLogTable"), QStringLiteral("ComputerName"));
    addColumn(db, QStringLiteral("TransactionLogTable"), QStringLiteral("IPAddress"));
}

void subUpdateDatabaseStructure()
{
    subOpenDatabase();
    updateDatabaseStructure(gdbMain);
    subCloseDatabase();
}
