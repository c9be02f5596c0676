#include "StoreFixtures.h"

#include "store/CreateDB.h"

#include <QRegularExpression>

#include <algorithm>

namespace StoreFixtures {

namespace {

// The tables as the board's field list gives them: name | type | size |
// required | zero length | default.
const char *const kListing = R"(
table AdminSettingsTable
  ScreenTop | Integer (16-bit signed) |  | no |  | 1200
  ScreenLeft | Integer (16-bit signed) |  | no |  | 1200
  ScreenWidth | Integer (16-bit signed) |  | no |  | 10710
  ScreenHeight | Integer (16-bit signed) |  | no |  | 7440
  TransactionLogPrintFontSize | Integer (16-bit signed) |  | no |  | 7
  TransactionLogPrintOrientation | Integer (16-bit signed) |  | no |  | 0
  AutoCheckForUpdates | Integer (16-bit signed) |  | no |  | 1
  LastSelectedNode | Text | 20 | no | no | the text "Users"
  AdminFontBoldDisplay | Integer (16-bit signed) |  | no |  | 0
  AdminFontSizeDisplay | Integer (16-bit signed) |  | no |  | 8
table DueBackTable
  DueBack | Text | 250 | no | yes |
  index DueBack on DueBack: unique
table EmployeeGroupTable
  EmployeeName | Text | 250 | no | no |
  GroupName | Text | 250 | no | no |
  GroupManager | Integer (16-bit signed) |  | no |  | 0
  index Employee_Name on EmployeeName
  index Group_Name on GroupName
  index PrimaryKey on EmployeeName, GroupName: primary, unique
table EmployeeSettingsTable
  Name | Text | 250 | no | no | the text "Guest"
  Phone | Text | 250 | no | yes |
  AutoClearComments | Integer (16-bit signed) |  | no |  | 0
  AutoLogIn | Integer (16-bit signed) |  | no |  | 0
  AutoLogOut | Integer (16-bit signed) |  | no |  | 0
  AutoMinimize | Integer (16-bit signed) |  | no |  | 0
  RefreshRate | Integer (16-bit signed) |  | no |  | 1
  DefaultGroup | Text | 250 | no | no | the text "Everyone"
  StatusColumnWidth | Integer (16-bit signed) |  | no |  | 2000
  NameColumnWidth | Integer (16-bit signed) |  | no |  | 1400
  PhoneColumnWidth | Integer (16-bit signed) |  | no |  | 1100
  DueBackColumnWidth | Integer (16-bit signed) |  | no |  | 1300
  CommentsColumnWidth | Integer (16-bit signed) |  | no |  | 1300
  LastModifiedColumnWidth | Integer (16-bit signed) |  | no |  | 4000
  SortOrder | Integer (16-bit signed) |  | no |  | 0
  SortKey | Integer (16-bit signed) |  | no |  | 2
  ScreenTop | Integer (16-bit signed) |  | no |  | 1200
  ScreenLeft | Integer (16-bit signed) |  | no |  | 1200
  ScreenWidth | Integer (16-bit signed) |  | no |  | 10710
  ScreenHeight | Integer (16-bit signed) |  | no |  | 7005
  ListViewPopUp | Integer (16-bit signed) |  | no |  | 1
  ChangeScreenPopUp | Integer (16-bit signed) |  | no |  | 0
  UserSecurityLevel | Integer (16-bit signed) |  | no |  | 0
  MinimizeSetting | Integer (16-bit signed) |  | no |  | 0
  Password | Text | 250 | no | no |
  IconSize | Integer (16-bit signed) |  | no |  | 0
  PictureFileName | Text | 250 | no | yes |
  StatusColumnOrder | Long (32-bit signed) |  | yes |  | 1
  NameColumnOrder | Long (32-bit signed) |  | yes |  | 2
  PhoneColumnOrder | Long (32-bit signed) |  | yes |  | 3
  DueBackColumnOrder | Long (32-bit signed) |  | yes |  | 4
  CommentsColumnOrder | Long (32-bit signed) |  | yes |  | 5
  LastModifiedColumnOrder | Long (32-bit signed) |  | yes |  | 6
  SortColumnName | Text | 250 | no | no | the text "Name"
  ToolBarText | Integer (16-bit signed) |  | no |  | 1
  MinimizeOnClose | Long (32-bit signed) |  | no |  | 0
  DisplayTreeView | Long (32-bit signed) |  | no |  | 1
  PhotoSizeToFit | Boolean |  | no |  | 0
  SplitterPositionVertical | Long (32-bit signed) |  | yes |  | 1860
  SplitterPositionHorizontal | Long (32-bit signed) |  | yes |  | 3600
  FontBoldDisplay | Integer (16-bit signed) |  | no |  | 0
  FontSizeDisplay | Integer (16-bit signed) |  | no |  | 8
  index EmployeeSettingsTableName on Name
  index Phone on Phone
  index PrimaryKey on Name: primary, unique
table EmployeeStatusTracking
  Tracker | Text | 250 | no | no |
  Trackee | Text | 250 | no | no |
  TrackeeStatus | Text | 250 | no | no |
  TrackeeLastUpdated | Double |  | no |  |
table EmployeeTable
  Name | Text | 250 | no | no | the text "Guest"
  Status | Text | 250 | no | no | the text "Please Set"
  StatusCode | Integer (16-bit signed) |  | no |  | 4
  Phone | Text | 250 | no | yes |
  DueBack | Text | 250 | no | yes |
  Comments | Text | 250 | no | yes |
  LastModified | Text | 250 | no | no |
  ActiveFlag | Text | 250 | no | no | the text "Not Set"
  UID | Text | 64 | no | no |
  NetWorkLogonID | Text | 64 | no | no |
  index Comments on Comments
  index DueBack on DueBack
  index Index_807D17CA_95EE_4516 on NetWorkLogonID: unique
  index LastModified on LastModified
  index Phone on Phone
  index PrimaryKey on Name: primary, unique
  index Status on Status
  index UID on UID: unique
table GlobalSettingsTable
  SystemSecurityLevel | Integer (16-bit signed) |  | no |  | 1
  TransactionLogFlag | Integer (16-bit signed) |  | no |  | 1
  LogoPosition | Integer (16-bit signed) |  | no |  | 5
  CompanyInfo | Memo |  | no | no |
  PhotoPath | Text | 255 | no | no |
  ForceShutDown | Boolean |  | no |  | 0
  DatabaseVersion | Integer (16-bit signed) |  | no |  | 2005
  DatabaseReleaseVersion | Text | 10 | yes | no | 2005
  AllowMessaging | Boolean |  | yes |  | 1
  AllowStatusAlerts | Boolean |  | yes |  | 1
  AllowPresenceSensing | Boolean |  | yes |  | 1
  AllowUserToAddTavelloToStartupFolder | Boolean |  | yes |  | 1
table GroupTable
  GroupName | Text | 250 | no | no | the text "Everyone"
  index PrimaryKey on GroupName: primary, unique
table ImportErrorLog
  ErrorDate | Date/Time |  | no |  |
  ErrorTime | Date/Time |  | no |  |
  ErrorText | Text | 250 | no | no |
table MessagesTable
  MessageID | Long (32-bit signed), auto-increment |  | no |  |
  SentFromRemoteUNC | Text | 255 | no | yes |
  SentFromName | Text | 250 | no | yes |
  SentToRemoteUNC | Text | 255 | no | yes |
  SentToName | Text | 250 | no | yes |
  MessageFrom | Text | 250 | no | yes |
  MessageSubject | Text | 250 | no | yes |
  MessageBody | Memo |  | no | no |
  SentDateTimeNum | Double |  | no |  |
  Category | Text | 50 | no | yes |
  LastUsedDateTimeNum | Double |  | no |  | 0
  index MessageID on MessageID: unique
table NewUserDefaultsTable
  AutoClearComments | Integer (16-bit signed) |  | no |  | 0
  AutoLogIn | Integer (16-bit signed) |  | no |  | 1
  AutoLogOut | Integer (16-bit signed) |  | no |  | 1
  AutoMinimize | Integer (16-bit signed) |  | no |  | 0
  RefreshRate | Integer (16-bit signed) |  | no |  | 5
  DefaultGroup | Text | 250 | no | no | the text "Everyone"
  StatusColumnWidth | Integer (16-bit signed) |  | no |  | 2000
  NameColumnWidth | Integer (16-bit signed) |  | no |  | 1400
  PhoneColumnWidth | Integer (16-bit signed) |  | no |  | 1100
  DueBackColumnWidth | Integer (16-bit signed) |  | no |  | 1300
  CommentsColumnWidth | Integer (16-bit signed) |  | no |  | 1300
  LastModifiedColumnWidth | Integer (16-bit signed) |  | no |  | 4000
  SortOrder | Integer (16-bit signed) |  | no |  | 0
  SortKey | Integer (16-bit signed) |  | no |  | 2
  ScreenTop | Integer (16-bit signed) |  | no |  | 1200
  ScreenLeft | Integer (16-bit signed) |  | no |  | 1200
  ScreenWidth | Integer (16-bit signed) |  | no |  | 10710
  ScreenHeight | Integer (16-bit signed) |  | no |  | 7005
  ListViewPopUp | Integer (16-bit signed) |  | no |  | 1
  ChangeScreenPopUp | Integer (16-bit signed) |  | no |  | 0
  UserSecurityLevel | Integer (16-bit signed) |  | no |  | 0
  MinimizeSetting | Integer (16-bit signed) |  | no |  | 0
  Password | Text | 250 | no | yes |
  IconSize | Integer (16-bit signed) |  | no |  | 0
  PictureFileName | Text | 250 | no | yes |
  StatusColumnOrder | Long (32-bit signed) |  | yes |  | 1
  NameColumnOrder | Long (32-bit signed) |  | yes |  | 2
  PhoneColumnOrder | Long (32-bit signed) |  | yes |  | 3
  DueBackColumnOrder | Long (32-bit signed) |  | yes |  | 4
  CommentsColumnOrder | Long (32-bit signed) |  | yes |  | 5
  LastModifiedColumnOrder | Long (32-bit signed) |  | yes |  | 6
  SortColumnName | Text | 250 | no | no | the text "Name"
  ToolBarText | Integer (16-bit signed) |  | no |  | 1
  MinimizeOnClose | Long (32-bit signed) |  | no |  | 0
  DisplayTreeView | Long (32-bit signed) |  | no |  | 1
  PhotoSizeToFit | Boolean |  | no |  | 0
  SplitterPositionVertical | Long (32-bit signed) |  | yes |  | 1860
  SplitterPositionHorizontal | Long (32-bit signed) |  | yes |  | 3600
  FontBoldDisplay | Integer (16-bit signed) |  | no |  | 0
  FontSizeDisplay | Integer (16-bit signed) |  | no |  | 8
table ServersTable
  UNCPath | Text | 250 | no | no |
  Description | Text | 250 | no | yes |
  index ixUNC on UNCPath: unique
table StatusCounterTable
  Counter | Long (32-bit signed) |  | no |  | 1
  GroupCounter | Long (32-bit signed) |  | no |  | 1
  StatusTypeCounter | Long (32-bit signed) |  | no |  | 1
  SecurityCounter | Long (32-bit signed) |  | no |  | 1
  ExtraColumnsCounter | Long (32-bit signed) |  | yes |  | 0
table StatusTypesTable
  Status | Text | 250 | yes | no | the text "NewStatus"
  StatusCode | Integer (16-bit signed) |  | no |  | 4
  OnToolbar | Integer (16-bit signed) |  | no |  | 0
  ButtonText | Text | 10 | no | no | the text "Not Set"
  ToolTipText | Text | 30 | no | no | the text "Not Set"
  ProtectedStatus | Long (32-bit signed) |  | no |  | 0
  index ixStatusType0 on Status: primary, unique
table TransactionLogTable
  Name | Text | 250 | yes | no | the text "Begin"
  Status | Text | 250 | yes | no | the text "Transaction"
  DueBack | Text | 250 | no | yes |
  Comments | Text | 250 | no | yes |
  LastModified | Text | 250 | yes | no | the text "Log"
  NetworkLogonID | Text | 250 | no | yes | the text "Unknown"
  index TransactionLogTableName on Name
table UserErrorLog
  DateTime | Text | 250 | no | no |
  Name | Text | 250 | no | no |
  FormName | Text | 250 | no | no |
  RoutineName | Text | 250 | no | no |
  ErrorNumber | Double |  | no |  | 0
  ErrorMessage | Text | 250 | no | no |
)";

struct Parsed {
    QStringList tables;
    QVector<FieldRow> fields;
    QVector<IndexRow> indexes;
};

QString typeWord(const QString &words)
{
    if (words.startsWith(QLatin1String("Integer")))
        return QStringLiteral("Integer");
    if (words.startsWith(QLatin1String("Long")))
        return QStringLiteral("Long");
    return words;
}

QString defaultExpression(const QString &words)
{
    static const QRegularExpression text(QStringLiteral("^the text \"(.*)\"$"));
    const auto m = text.match(words);
    return m.hasMatch() ? QLatin1Char('\'') + m.captured(1) + QLatin1Char('\'') : words;
}

Parsed parse()
{
    Parsed p;
    static const QRegularExpression index(QStringLiteral("^index (\\w+) on ([\\w, ]+?)(: (.*))?$"));
    for (const QString &raw : QString::fromLatin1(kListing).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QString line = raw.trimmed();
        if (line.startsWith(QLatin1String("table "))) {
            p.tables << line.mid(6);
        } else if (const auto m = index.match(line); m.hasMatch()) {
            IndexRow i{p.tables.last(), m.captured(1), m.captured(2).split(QStringLiteral(", ")),
                       m.captured(4).contains(QLatin1String("primary")), m.captured(4).contains(QLatin1String("unique"))};
            p.indexes << i;
        } else {
            const QStringList c = line.split(QLatin1Char('|'));
            FieldRow f;
            f.table = p.tables.last();
            f.name = c[0].trimmed();
            f.type = typeWord(c[1].trimmed());
            f.autoIncrement = c[1].contains(QLatin1String("auto-increment"));
            f.size = c[2].trimmed().toInt();
            f.required = c[3].trimmed() == QLatin1String("yes");
            f.zeroLength = c[4].trimmed() != QLatin1String("no");
            f.defaultValue = defaultExpression(c[5].trimmed());
            f.position = int(std::count_if(p.fields.cbegin(), p.fields.cend(),
                                           [&](const FieldRow &g) { return g.table == f.table; }));
            p.fields << f;
        }
    }
    for (FieldRow &f : p.fields)
        for (const IndexRow &i : p.indexes)
            if (i.primary && i.table == f.table && i.fields.contains(f.name))
                f.primary = true;
    return p;
}

const Parsed &parsed()
{
    static const Parsed p = parse();
    return p;
}

}  // namespace

QStringList expectedTableOrder() { return parsed().tables; }
QVector<FieldRow> expectedFields() { return parsed().fields; }
QVector<IndexRow> expectedIndexes() { return parsed().indexes; }

QString expectedDeclaredType(const FieldRow &f)
{
    if (f.type == QLatin1String("Text"))
        return QStringLiteral("TEXT(%1)").arg(f.size);
    if (f.type == QLatin1String("Memo"))
        return QStringLiteral("TEXT");
    if (f.type == QLatin1String("Integer"))
        return QStringLiteral("SMALLINT");
    if (f.type == QLatin1String("Long"))
        return QStringLiteral("INTEGER");
    if (f.type == QLatin1String("Boolean"))
        return QStringLiteral("BOOLEAN");
    return QStringLiteral("REAL");  // Double, Date/Time
}

int failureOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const StoreError &e) {
        return e.number();
    }
    return 0;
}

Database structureOnly(const QString &local)
{
    Database db = Database::create(local);
    createStructure(db);
    return db;
}

QStringList columnShapes(Database &db, const QString &table)
{
    QStringList shapes;
    Recordset rs = db.query(QStringLiteral("SELECT name, type, \"notnull\", quote(dflt_value) FROM pragma_table_info(?) ORDER BY cid"),
                            {table});
    for (; !rs.eof(); rs.moveNext())
        shapes << QStringList{rs.value(0).toString(), rs.value(1).toString(), rs.value(2).toString(), rs.value(3).toString()}
                      .join(QLatin1Char(' '));
    return shapes;
}

QStringList columnValues(Database &db, const QString &table, const QString &column)
{
    QStringList values;
    Recordset rs = db.query(QStringLiteral("SELECT quote(%1) FROM %2 ORDER BY rowid")
                                .arg(Database::quoteIdentifier(column), Database::quoteIdentifier(table)));
    for (; !rs.eof(); rs.moveNext())
        values << rs.value(0).toString();
    return values;
}

QString dump(Database &db)
{
    QStringList out;
    Recordset objects = db.query(QStringLiteral("SELECT type, name, sql FROM sqlite_master ORDER BY type, name"));
    QStringList tables;
    for (; !objects.eof(); objects.moveNext()) {
        out << objects.value(0).toString() + QLatin1Char(' ') + objects.value(1).toString() + QStringLiteral(": ") +
                   objects.value(2).toString();
        if (objects.value(0).toString() == QLatin1String("table"))
            tables << objects.value(1).toString();
    }
    for (const QString &table : tables) {
        QStringList quoted;
        for (const QString &column : db.fieldNames(table))
            quoted << QStringLiteral("quote(%1)").arg(Database::quoteIdentifier(column));
        Recordset rows = db.query(QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                      .arg(quoted.join(QStringLiteral(" || '|' || ")), Database::quoteIdentifier(table)));
        for (; !rows.eof(); rows.moveNext())
            out << table + QStringLiteral(" row: ") + rows.value(0).toString();
    }
    return out.join(QLatin1Char('\n'));
}

}  // namespace StoreFixtures
