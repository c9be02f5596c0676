#include "store/modCreateData.h"

#include "platform/Database.h"
#include "platform/MessageBox.h"

namespace {

// One failed row costs one message; the next step still runs.
template <typename Step>
void step(Step &&run)
{
    try {
        run();
    } catch (const StoreError &e) {
        Msg::box(QStringLiteral("Error: ") + QString::number(e.number()) + QStringLiteral(" - ") + e.text(),
                 Msg::Buttons::OK);
    }
}

// A settings row is added only to an empty table, so seeding an existing
// file never doubles it. Fields not given take their defaults.
void addRowIfEmpty(Database &db, const QString &table, const QVariantMap &values = {})
{
    step([&] {
        const qint64 rows =
            db.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(Database::quoteIdentifier(table))).toLongLong();
        if (rows == 0)
            db.addRow(table, values);
    });
}

const char *const kDueBacks[] = {
    "07:00 am",           "07:30 am",         "08:00 am",         "08:30 am",           "09:00 am",
    "09:30 am",           "10:00 am",         "10:30 am",         "11:00 am",           "11:30 am",
    "12:00 (Midday)",     "12:30 pm",         "13:00 (1 pm)",     "13:30 (1:30 pm)",    "14:00 (2 pm)",
    "14:30 (2:30 pm)",    "15:00 (3 pm)",     "15:30 (3:30 pm)",  "16:00 (4 pm)",       "16:30 (4:30 pm)",
    "17:00 (5 pm)",       "17:30 (5:30 pm)",  "18:00 (6 pm)",     "18:30 (6:30 pm)",    "Late this Morning",
    "Early this Afternoon", "Late this Afternoon",
};

struct StatusType {
    const char *status;
    int statusCode;  // the colour: 1 red, 2 yellow, 3 green
    int onToolbar;
    const char *buttonText;
    const char *toolTipText;
    int protectedStatus;
};

const StatusType kStatusTypes[] = {
    {"Out", 1, 1, "Out", "Set status to Out", 0},
    {"Busy", 2, 1, "Busy", "Set status to Busy", 0},
    {"In", 3, 1, "In", "Set status to In", 0},
};

}  // namespace

void modCreateData(Database &db)
{
    addRowIfEmpty(db, QStringLiteral("AdminSettingsTable"));
    for (const char *dueBack : kDueBacks)
        step([&] {
            db.execute(QStringLiteral("INSERT INTO DueBackTable (DueBack) VALUES (?)"), {QString::fromLatin1(dueBack)});
        });
    addRowIfEmpty(db, QStringLiteral("GroupTable"));  // "Everyone"
    addRowIfEmpty(db, QStringLiteral("EmployeeTable"),
                  {{QStringLiteral("Name"), QStringLiteral("Guest")}, {QStringLiteral("UID"), QStringLiteral("Guest")}});
    addRowIfEmpty(db, QStringLiteral("EmployeeSettingsTable"),
                  {{QStringLiteral("PictureFileName"), QStringLiteral("guest.jpg")}});
    addRowIfEmpty(db, QStringLiteral("GlobalSettingsTable"));
    addRowIfEmpty(db, QStringLiteral("NewUserDefaultsTable"));
    addRowIfEmpty(db, QStringLiteral("StatusCounterTable"));
    for (const StatusType &t : kStatusTypes)
        step([&] {
            db.execute(QStringLiteral("INSERT INTO StatusTypesTable "
                                      "(Status, StatusCode, OnToolbar, ButtonText, ToolTipText, ProtectedStatus) "
                                      "VALUES (?, ?, ?, ?, ?, ?)"),
                       {QString::fromLatin1(t.status), t.statusCode, t.onToolbar, QString::fromLatin1(t.buttonText),
                        QString::fromLatin1(t.toolTipText), t.protectedStatus});
        });
}
