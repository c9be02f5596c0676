#include "store/Schema.h"

#include "platform/Database.h"

namespace Schema {

namespace {

using enum Type;
constexpr bool Req = true;
constexpr bool Opt = false;
constexpr bool ZeroOk = true;
constexpr bool NoZero = false;

// One line per field, in the words of the board's field list: name, size,
// required, zero length allowed, default expression.
Field txt(const char *name, int size, bool required, bool zeroLength, const char *def)
{
    return Field{name, Text, size, required, zeroLength, def ? QString::fromLatin1(def) : QString(), false};
}

Field memo(const char *name, bool required, bool zeroLength)
{
    return Field{name, Memo, 0, required, zeroLength, QString(), false};
}

Field num(const char *name, Type type, bool required, const char *def)
{
    return Field{name, type, 0, required, true, def ? QString::fromLatin1(def) : QString(), false};
}

Field counter(const char *name)
{
    return Field{name, Long, 0, false, true, QString(), true};
}

const QVector<Table> kTables = {
    {"AdminSettingsTable",
     {
         num("ScreenTop", Integer, Opt, "1200"),
         num("ScreenLeft", Integer, Opt, "1200"),
         num("ScreenWidth", Integer, Opt, "10710"),
         num("ScreenHeight", Integer, Opt, "7440"),
         num("TransactionLogPrintFontSize", Integer, Opt, "7"),
         num("TransactionLogPrintOrientation", Integer, Opt, "0"),
         num("AutoCheckForUpdates", Integer, Opt, "1"),
         txt("LastSelectedNode", 20, Opt, NoZero, "'Users'"),
         num("AdminFontBoldDisplay", Integer, Opt, "0"),
         num("AdminFontSizeDisplay", Integer, Opt, "8"),
     },
     {}},
    {"DueBackTable",
     {
         txt("DueBack", 250, Opt, ZeroOk, nullptr),
     },
     {
         {"DueBack", {"DueBack"}, false, true},
     }},
    {"EmployeeGroupTable",
     {
         txt("EmployeeName", 250, Opt, NoZero, nullptr),
         txt("GroupName", 250, Opt, NoZero, nullptr),
         num("GroupManager", Integer, Opt, "0"),
     },
     {
         {"Employee_Name", {"EmployeeName"}, false, false},
         {"Group_Name", {"GroupName"}, false, false},
         {"PrimaryKey", {"EmployeeName", "GroupName"}, true, true},
     }},
    {"EmployeeSettingsTable",
     {
         txt("Name", 250, Opt, NoZero, "'Guest'"),
         txt("Phone", 250, Opt, ZeroOk, nullptr),
         num("AutoClearComments", Integer, Opt, "0"),
         num("AutoLogIn", Integer, Opt, "0"),
         num("AutoLogOut", Integer, Opt, "0"),
         num("AutoMinimize", Integer, Opt, "0"),
         num("RefreshRate", Integer, Opt, "1"),
         txt("DefaultGroup", 250, Opt, NoZero, "'Everyone'"),
         num("StatusColumnWidth", Integer, Opt, "2000"),
         num("NameColumnWidth", Integer, Opt, "1400"),
         num("PhoneColumnWidth", Integer, Opt, "1100"),
         num("DueBackColumnWidth", Integer, Opt, "1300"),
         num("CommentsColumnWidth", Integer, Opt, "1300"),
         num("LastModifiedColumnWidth", Integer, Opt, "4000"),
         num("SortOrder", Integer, Opt, "0"),
         num("SortKey", Integer, Opt, "2"),
         num("ScreenTop", Integer, Opt, "1200"),
         num("ScreenLeft", Integer, Opt, "1200"),
         num("ScreenWidth", Integer, Opt, "10710"),
         num("ScreenHeight", Integer, Opt, "7005"),
         num("ListViewPopUp", Integer, Opt, "1"),
         num("ChangeScreenPopUp", Integer, Opt, "0"),
         num("UserSecurityLevel", Integer, Opt, "0"),
         num("MinimizeSetting", Integer, Opt, "0"),
         txt("Password", 250, Opt, NoZero, nullptr),
         num("IconSize", Integer, Opt, "0"),
         txt("PictureFileName", 250, Opt, ZeroOk, nullptr),
         num("StatusColumnOrder", Long, Req, "1"),
         num("NameColumnOrder", Long, Req, "2"),
         num("PhoneColumnOrder", Long, Req, "3"),
         num("DueBackColumnOrder", Long, Req, "4"),
         num("CommentsColumnOrder", Long, Req, "5"),
         num("LastModifiedColumnOrder", Long, Req, "6"),
         txt("SortColumnName", 250, Opt, NoZero, "'Name'"),
         num("ToolBarText", Integer, Opt, "1"),
         num("MinimizeOnClose", Long, Opt, "0"),
         num("DisplayTreeView", Long, Opt, "1"),
         num("PhotoSizeToFit", Boolean, Opt, "0"),
         num("SplitterPositionVertical", Long, Req, "1860"),
         num("SplitterPositionHorizontal", Long, Req, "3600"),
         num("FontBoldDisplay", Integer, Opt, "0"),
         num("FontSizeDisplay", Integer, Opt, "8"),
     },
     {
         {"EmployeeSettingsTableName", {"Name"}, false, false},
         {"Phone", {"Phone"}, false, false},
         {"PrimaryKey", {"Name"}, true, true},
     }},
    {"EmployeeStatusTracking",
     {
         txt("Tracker", 250, Opt, NoZero, nullptr),
         txt("Trackee", 250, Opt, NoZero, nullptr),
         txt("TrackeeStatus", 250, Opt, NoZero, nullptr),
         num("TrackeeLastUpdated", Double, Opt, nullptr),
     },
     {}},
    {"EmployeeTable",
     {
         txt("Name", 250, Opt, NoZero, "'Guest'"),
         txt("Status", 250, Opt, NoZero, "'Please Set'"),
         num("StatusCode", Integer, Opt, "4"),
         txt("Phone", 250, Opt, ZeroOk, nullptr),
         txt("DueBack", 250, Opt, ZeroOk, nullptr),
         txt("Comments", 250, Opt, ZeroOk, nullptr),
         txt("LastModified", 250, Opt, NoZero, nullptr),
         txt("ActiveFlag", 250, Opt, NoZero, "'Not Set'"),
         txt("UID", 64, Opt, NoZero, nullptr),
         txt("NetWorkLogonID", 64, Opt, NoZero, nullptr),
     },
     {
         {"Comments", {"Comments"}, false, false},
         {"DueBack", {"DueBack"}, false, false},
         {"Index_807D17CA_95EE_4516", {"NetWorkLogonID"}, false, true},
         {"LastModified", {"LastModified"}, false, false},
         {"Phone", {"Phone"}, false, false},
         {"PrimaryKey", {"Name"}, true, true},
         {"Status", {"Status"}, false, false},
         {"UID", {"UID"}, false, true},
     }},
    {"GlobalSettingsTable",
     {
         num("SystemSecurityLevel", Integer, Opt, "1"),
         num("TransactionLogFlag", Integer, Opt, "1"),
         num("LogoPosition", Integer, Opt, "5"),
         memo("CompanyInfo", Opt, NoZero),
         txt("PhotoPath", 255, Opt, NoZero, nullptr),
         num("ForceShutDown", Boolean, Opt, "0"),
         num("DatabaseVersion", Integer, Opt, "2005"),
         txt("DatabaseReleaseVersion", 10, Req, NoZero, "2005"),
         num("AllowMessaging", Boolean, Req, "1"),
         num("AllowStatusAlerts", Boolean, Req, "1"),
         num("AllowPresenceSensing", Boolean, Req, "1"),
         num("AllowUserToAddTavelloToStartupFolder", Boolean, Req, "1"),
     },
     {}},
    {"GroupTable",
     {
         txt("GroupName", 250, Opt, NoZero, "'Everyone'"),
     },
     {
         {"PrimaryKey", {"GroupName"}, true, true},
     }},
    {"ImportErrorLog",
     {
         num("ErrorDate", DateTime, Opt, nullptr),
         num("ErrorTime", DateTime, Opt, nullptr),
         txt("ErrorText", 250, Opt, NoZero, nullptr),
     },
     {}},
    {"MessagesTable",
     {
         counter("MessageID"),
         txt("SentFromRemoteUNC", 255, Opt, ZeroOk, nullptr),
         txt("SentFromName", 250, Opt, ZeroOk, nullptr),
         txt("SentToRemoteUNC", 255, Opt, ZeroOk, nullptr),
         txt("SentToName", 250, Opt, ZeroOk, nullptr),
         txt("MessageFrom", 250, Opt, ZeroOk, nullptr),
         txt("MessageSubject", 250, Opt, ZeroOk, nullptr),
         memo("MessageBody", Opt, NoZero),
         num("SentDateTimeNum", Double, Opt, nullptr),
         txt("Category", 50, Opt, ZeroOk, nullptr),
         num("LastUsedDateTimeNum", Double, Opt, "0"),
     },
     {
         {"MessageID", {"MessageID"}, false, true},
     }},
    {"NewUserDefaultsTable",
     {
         num("AutoClearComments", Integer, Opt, "0"),
         num("AutoLogIn", Integer, Opt, "1"),
         num("AutoLogOut", Integer, Opt, "1"),
         num("AutoMinimize", Integer, Opt, "0"),
         num("RefreshRate", Integer, Opt, "5"),
         txt("DefaultGroup", 250, Opt, NoZero, "'Everyone'"),
         num("StatusColumnWidth", Integer, Opt, "2000"),
         num("NameColumnWidth", Integer, Opt, "1400"),
         num("PhoneColumnWidth", Integer, Opt, "1100"),
         num("DueBackColumnWidth", Integer, Opt, "1300"),
         num("CommentsColumnWidth", Integer, Opt, "1300"),
         num("LastModifiedColumnWidth", Integer, Opt, "4000"),
         num("SortOrder", Integer, Opt, "0"),
         num("SortKey", Integer, Opt, "2"),
         num("ScreenTop", Integer, Opt, "1200"),
         num("ScreenLeft", Integer, Opt, "1200"),
         num("ScreenWidth", Integer, Opt, "10710"),
         num("ScreenHeight", Integer, Opt, "7005"),
         num("ListViewPopUp", Integer, Opt, "1"),
         num("ChangeScreenPopUp", Integer, Opt, "0"),
         num("UserSecurityLevel", Integer, Opt, "0"),
         num("MinimizeSetting", Integer, Opt, "0"),
         txt("Password", 250, Opt, ZeroOk, nullptr),
         num("IconSize", Integer, Opt, "0"),
         txt("PictureFileName", 250, Opt, ZeroOk, nullptr),
         num("StatusColumnOrder", Long, Req, "1"),
         num("NameColumnOrder", Long, Req, "2"),
         num("PhoneColumnOrder", Long, Req, "3"),
         num("DueBackColumnOrder", Long, Req, "4"),
         num("CommentsColumnOrder", Long, Req, "5"),
         num("LastModifiedColumnOrder", Long, Req, "6"),
         txt("SortColumnName", 250, Opt, NoZero, "'Name'"),
         num("ToolBarText", Integer, Opt, "1"),
         num("MinimizeOnClose", Long, Opt, "0"),
         num("DisplayTreeView", Long, Opt, "1"),
         num("PhotoSizeToFit", Boolean, Opt, "0"),
         num("SplitterPositionVertical", Long, Req, "1860"),
         num("SplitterPositionHorizontal", Long, Req, "3600"),
         num("FontBoldDisplay", Integer, Opt, "0"),
         num("FontSizeDisplay", Integer, Opt, "8"),
     },
     {}},
    {"ServersTable",
     {
         txt("UNCPath", 250, Opt, NoZero, nullptr),
         txt("Description", 250, Opt, ZeroOk, nullptr),
     },
     {
         {"ixUNC", {"UNCPath"}, false, true},
     }},
    {"StatusCounterTable",
     {
         num("Counter", Long, Opt, "1"),
         num("GroupCounter", Long, Opt, "1"),
         num("StatusTypeCounter", Long, Opt, "1"),
         num("SecurityCounter", Long, Opt, "1"),
         num("ExtraColumnsCounter", Long, Req, "0"),
     },
     {}},
    {"StatusTypesTable",
     {
         txt("Status", 250, Req, NoZero, "'NewStatus'"),
         num("StatusCode", Integer, Opt, "4"),
         num("OnToolbar", Integer, Opt, "0"),
         txt("ButtonText", 10, Opt, NoZero, "'Not Set'"),
         txt("ToolTipText", 30, Opt, NoZero, "'Not Set'"),
         num("ProtectedStatus", Long, Opt, "0"),
     },
     {
         {"ixStatusType0", {"Status"}, true, true},
     }},
    {"TransactionLogTable",
     {
         txt("Name", 250, Req, NoZero, "'Begin'"),
         txt("Status", 250, Req, NoZero, "'Transaction'"),
         txt("DueBack", 250, Opt, ZeroOk, nullptr),
         txt("Comments", 250, Opt, ZeroOk, nullptr),
         txt("LastModified", 250, Req, NoZero, "'Log'"),
         txt("NetworkLogonID", 250, Opt, ZeroOk, "'Unknown'"),
     },
     {
         {"TransactionLogTableName", {"Name"}, false, false},
     }},
    {"UserErrorLog",
     {
         txt("DateTime", 250, Opt, NoZero, nullptr),
         txt("Name", 250, Opt, NoZero, nullptr),
         txt("FormName", 250, Opt, NoZero, nullptr),
         txt("RoutineName", 250, Opt, NoZero, nullptr),
         num("ErrorNumber", Double, Opt, "0"),
         txt("ErrorMessage", 250, Opt, NoZero, nullptr),
     },
     {}},
};

const QVector<Relation> kRelations = {
    {"DueBackTableEmployeeTable", "DueBackTable", "EmployeeTable", "DueBack", "DueBack", NotEnforced},
    {"EmployeeTableEmployeeGroupTable", "EmployeeTable", "EmployeeGroupTable", "Name", "EmployeeName", CascadeUpdateDelete},
    {"EmployeeTableEmployeeSettingsTable", "EmployeeTable", "EmployeeSettingsTable", "Name", "Name", CascadeOneToOne},
    {"GroupTableEmployeeGroupTable", "GroupTable", "EmployeeGroupTable", "GroupName", "GroupName", CascadeUpdateDelete},
    {"GroupTableEmployeeSettingsTable", "GroupTable", "EmployeeSettingsTable", "GroupName", "DefaultGroup", CascadeUpdateDelete},
    {"TrackeeRelation", "EmployeeTable", "EmployeeStatusTracking", "Name", "Trackee", CascadeUpdateDelete},
    {"TrackerRelation", "EmployeeTable", "EmployeeStatusTracking", "Name", "Tracker", CascadeUpdateDelete},
};

// SQLite adds a NOT NULL column only with a default; 0 is also the value
// the upgrade writes into the rows it finds.
const QVector<AddedField> kUpgradeFields = {
    {"GlobalSettingsTable", num("UpdateStatusOnLock", Boolean, Req, "0")},
    {"EmployeeSettingsTable", num("StatusAlertsOverride", Boolean, Req, "0")},
    {"MessagesTable", txt("MessageOwner", 250, Opt, ZeroOk, nullptr)},
    {"TransactionLogTable", txt("LogDateTime", 250, Opt, ZeroOk, nullptr)},
    {"TransactionLogTable", txt("ComputerName", 250, Opt, ZeroOk, nullptr)},
    {"TransactionLogTable", txt("IPAddress", 250, Opt, ZeroOk, nullptr)},
};

QString q(const QString &identifier) { return Database::quoteIdentifier(identifier); }

bool inPrimaryIndex(const Table *t, const QString &field)
{
    if (!t)
        return false;
    for (const Index &i : t->indexes)
        if (i.primary && i.fields.contains(field, Qt::CaseInsensitive))
            return true;
    return false;
}

QString check(const QString &table, const Field &f, const QString &rule, const QString &expression)
{
    return QStringLiteral(" CONSTRAINT %1 CHECK (%2)").arg(q(table + QLatin1Char('.') + f.name + QStringLiteral(": ") + rule), expression);
}

QString wholeNumberCheck(const QString &table, const Field &f, qint64 low, qint64 high)
{
    // typeof() refuses text that is no number: the column's affinity has
    // already turned "12" into 12, so only real junk is left as text.
    const QString c = q(f.name);
    return check(table, f, QStringLiteral("whole number from %1 to %2").arg(low).arg(high),
                 QStringLiteral("%1 IS NULL OR (typeof(%1) = 'integer' AND %1 BETWEEN %2 AND %3)").arg(c).arg(low).arg(high));
}

}  // namespace

const QVector<Table> &tables() { return kTables; }
const QVector<Relation> &relations() { return kRelations; }
const QVector<AddedField> &upgradeFields() { return kUpgradeFields; }

const Table *table(const QString &name)
{
    for (const Table &t : kTables)
        if (t.name.compare(name, Qt::CaseInsensitive) == 0)
            return &t;
    return nullptr;
}

const Field *field(const QString &tableName, const QString &name)
{
    if (const Table *t = table(tableName))
        for (const Field &f : t->fields)
            if (f.name.compare(name, Qt::CaseInsensitive) == 0)
                return &f;
    for (const AddedField &a : kUpgradeFields)
        if (a.table.compare(tableName, Qt::CaseInsensitive) == 0 && a.field.name.compare(name, Qt::CaseInsensitive) == 0)
            return &a.field;
    return nullptr;
}

QString indexName(const QString &tableName, const QString &index)
{
    return tableName + QLatin1Char('.') + index;
}

QString columnDefinition(const QString &tableName, const Field &f)
{
    QString def;
    switch (f.type) {
    case Boolean:
        def = QStringLiteral("BOOLEAN");
        break;
    case Integer:
        def = QStringLiteral("SMALLINT");
        break;
    case Long:
        def = QStringLiteral("INTEGER");
        break;
    case Double:
    case DateTime:  // days since 1899-12-30, as the board has always kept them
        def = QStringLiteral("REAL");
        break;
    case Text:
        def = QStringLiteral("TEXT(%1) COLLATE NOCASE").arg(f.size);
        break;
    case Memo:
        def = QStringLiteral("TEXT COLLATE NOCASE");
        break;
    }
    if (f.autoIncrement)
        def += QStringLiteral(" PRIMARY KEY AUTOINCREMENT");
    // A primary key never holds Null, whether or not the field says required.
    if (f.required || inPrimaryIndex(table(tableName), f.name))
        def += QStringLiteral(" NOT NULL");
    if (!f.defaultValue.isEmpty())
        def += QStringLiteral(" DEFAULT ") + f.defaultValue;

    // Column-level constraints only: a column can then be dropped later.
    switch (f.type) {
    case Boolean:
        // 1 is written for true; -1 is the True of the board's older engine,
        // which site tools and user programs may still write.
        def += check(tableName, f, QStringLiteral("-1, 0 or 1"), QStringLiteral("%1 IN (-1, 0, 1)").arg(q(f.name)));
        break;
    case Integer:
        def += wholeNumberCheck(tableName, f, -32768, 32767);
        break;
    case Long:
        def += wholeNumberCheck(tableName, f, -2147483648LL, 2147483647LL);
        break;
    case Text:
        def += check(tableName, f, QStringLiteral("at most %1 characters").arg(f.size),
                     QStringLiteral("length(%1) <= %2").arg(q(f.name)).arg(f.size));
        [[fallthrough]];
    case Memo:
        if (!f.allowZeroLength)
            def += check(tableName, f, QStringLiteral("zero-length text not allowed"),
                         QStringLiteral("%1 <> ''").arg(q(f.name)));
        break;
    case Double:
    case DateTime:
        break;
    }

    // A relation lives in the table on its many side. SQLite looks the other
    // table up only when rows change, so the order of creation does not matter.
    for (const Relation &r : kRelations) {
        if (!r.enforced() || r.foreignTable.compare(tableName, Qt::CaseInsensitive) != 0 ||
            r.foreignField.compare(f.name, Qt::CaseInsensitive) != 0)
            continue;
        def += QStringLiteral(" CONSTRAINT %1 REFERENCES %2 (%3) ON UPDATE CASCADE ON DELETE CASCADE")
                   .arg(q(r.name), q(r.table), q(r.field));
    }
    return def;
}

QString createTableStatement(const Table &t)
{
    QStringList columns;
    for (const Field &f : t.fields)
        columns << QStringLiteral("  ") + q(f.name) + QLatin1Char(' ') + columnDefinition(t.name, f);
    return QStringLiteral("CREATE TABLE %1 (\n%2\n)").arg(q(t.name), columns.join(QStringLiteral(",\n")));
}

QStringList createIndexStatements(const Table &t)
{
    QStringList statements;
    for (const Index &i : t.indexes) {
        QStringList fields;
        for (const QString &f : i.fields)
            fields << q(f);
        statements << QStringLiteral("CREATE %1INDEX %2 ON %3 (%4)")
                          .arg(i.unique || i.primary ? QStringLiteral("UNIQUE ") : QString(), q(indexName(t.name, i.name)),
                               q(t.name), fields.join(QStringLiteral(", ")));
    }
    return statements;
}

}  // namespace Schema
