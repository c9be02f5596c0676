#include "users/UserStore.h"

#include "catalogues/StatusTypeStore.h"
#include "platform/Database.h"
#include "store/Counters.h"

#include <QRegularExpression>

#include <cmath>

namespace Users {

namespace {

const QString EmployeeTable = QStringLiteral("EmployeeTable");
const QString EmployeeSettingsTable = QStringLiteral("EmployeeSettingsTable");
const QString EmployeeGroupTable = QStringLiteral("EmployeeGroupTable");
const QString NewUserDefaultsTable = QStringLiteral("NewUserDefaultsTable");
const QString AddedPrefix = QStringLiteral("New_");

// Settings a new user takes from the template, in the order they are set.
// The column orders and the sort column are fixed values instead: the
// template's own columns of those names are deliberately not consulted.
const char *const TemplateSettingsBeforeOrders[] = {
    "AutoClearComments", "AutoLogIn", "AutoLogOut", "AutoMinimize", "DisplayTreeView", "RefreshRate",
    "DefaultGroup", "StatusColumnWidth", "NameColumnWidth", "PhoneColumnWidth", "DueBackColumnWidth",
    "CommentsColumnWidth", "LastModifiedColumnWidth", "SortOrder", "SortKey", "ScreenTop", "ScreenLeft",
    "ScreenWidth", "ScreenHeight", "ListViewPopUp", "ChangeScreenPopUp", "UserSecurityLevel", "MinimizeSetting",
    "IconSize", "ToolBarText",
};
const char *const TemplateSettingsAfterOrders[] = {
    "MinimizeOnClose", "SplitterPositionVertical", "SplitterPositionHorizontal", "FontBoldDisplay", "FontSizeDisplay",
};

// A template value as it is copied: its text without surrounding blanks;
// the store turns it back into the column's type.
QVariant trimmedText(const QVariant &v, bool nullAsEmpty)
{
    if (v.isNull())
        return nullAsEmpty ? textValue(QString()) : QVariant();
    return textValue(v.toString().trimmed());
}

template <typename Step>
void passOver(bool on, Step &&step)
{
    if (!on) {
        step();
        return;
    }
    try {
        step();
    } catch (const StoreError &) {
    }
}

}  // namespace

QVariant textValue(const QString &text)
{
    // An unset string would be bound as Null.
    return text.isNull() ? QStringLiteral("") : text;
}

QVariant wholeNumberAtStart(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral("^[ \\t\\r\\n]*([+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eEdD][+-]?\\d+)?)"));
    const auto m = number.match(text);
    if (!m.hasMatch())
        return qint64(0);
    QString digits = m.captured(1);
    digits.replace(QLatin1Char('d'), QLatin1Char('e')).replace(QLatin1Char('D'), QLatin1Char('e'));
    const double value = digits.toDouble();
    // Beyond 2^53 a double no longer holds every whole number: hand it on
    // unconverted for the column's range check to refuse.
    if (!std::isfinite(value) || std::fabs(value) >= 9007199254740992.0)
        return value;
    return qint64(std::nearbyint(value));
}

bool uidTaken(Database &db, const QString &pattern)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM EmployeeTable WHERE UID LIKE ?"), {pattern}).toLongLong() != 0;
}

bool nameTaken(Database &db, const QString &pattern)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM EmployeeTable WHERE Name LIKE ?"), {pattern}).toLongLong() != 0;
}

Recordset openNewUserDefaults(Database &db)
{
    Recordset rs = db.openTable(NewUserDefaultsTable);
    if (!rs.eof())
        return rs;
    db.addRow(NewUserDefaultsTable);
    return db.openTable(NewUserDefaultsTable);
}

void addUser(Database &db, const QString &id, const QString &name)
{
    db.beginTrans();
    try {
        Recordset defaults = openNewUserDefaults(db);

        const qint64 row = db.addRow(EmployeeTable, {{QStringLiteral("UID"), id}, {QStringLiteral("Name"), name}});
        for (const QString &column : defaults.fieldNames()) {
            if (!column.contains(AddedPrefix))
                continue;
            // A column the live table lacks, or a value it will not take, is
            // skipped: the user is added without it.
            try {
                db.execute(QStringLiteral("UPDATE EmployeeTable SET %1 = ? WHERE rowid = ?")
                               .arg(Database::quoteIdentifier(column)),
                           {trimmedText(defaults.value(column), false), row});
            } catch (const StoreError &) {
            }
        }

        QVariantMap settings{{QStringLiteral("Name"), name}};
        for (const char *column : TemplateSettingsBeforeOrders)
            settings.insert(QLatin1String(column), trimmedText(defaults.value(QLatin1String(column)), true));
        settings.insert(QStringLiteral("StatusColumnOrder"), 1);
        settings.insert(QStringLiteral("NameColumnOrder"), 2);
        settings.insert(QStringLiteral("PhoneColumnOrder"), 3);
        settings.insert(QStringLiteral("DueBackColumnOrder"), 4);
        settings.insert(QStringLiteral("CommentsColumnOrder"), 5);
        settings.insert(QStringLiteral("LastModifiedColumnOrder"), 6);
        settings.insert(QStringLiteral("SortColumnName"), QStringLiteral("Name"));
        for (const char *column : TemplateSettingsAfterOrders)
            settings.insert(QLatin1String(column), trimmedText(defaults.value(QLatin1String(column)), true));
        db.addRow(EmployeeSettingsTable, settings);
        defaults.close();

        raiseCounterField(db, QStringLiteral("Counter"));
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
}

QString normalisedStatus(const QString &typed)
{
    const QString upper = typed.toUpper();
    if (upper == QLatin1String("IN"))
        return QStringLiteral("In");
    if (upper == QLatin1String("OUT"))
        return QStringLiteral("Out");
    if (upper == QLatin1String("BUSY"))
        return QStringLiteral("Busy");
    return typed;
}

void saveUser(Database &db, const UserChanges &c)
{
    const QString newName = c.name.trimmed();
    const QString status = normalisedStatus(c.status.trimmed());

    db.beginTrans();
    try {
        const int code = StatusCodeOfName(db, status);

        // The row is found by its key, not by a pattern: a name holding
        // [ ] * ? or # must find itself and nobody else.
        Recordset user = db.openTable(EmployeeTable, QStringLiteral("Name = ?"), {c.oldName}, QStringLiteral("Name"));
        if (!user.eof()) {
            QVariantMap row{
                {QStringLiteral("UID"), textValue(c.uid.trimmed())},
                {QStringLiteral("Name"), textValue(newName)},
                {QStringLiteral("Status"), textValue(status)},
                {QStringLiteral("StatusCode"), code},
                {QStringLiteral("Phone"), textValue(c.phone.trimmed())},
                {QStringLiteral("DueBack"), textValue(c.dueBack.trimmed())},
                {QStringLiteral("Comments"), textValue(c.comments.trimmed())},
            };
            // The trailing blank is what the user program expects to find;
            // it is not taken off on loading, so each save adds one.
            for (const auto &[column, text] : c.addedColumns)
                if (!column.trimmed().isEmpty())
                    row.insert(AddedPrefix + column, text + QLatin1Char(' '));
            user.edit(row);
        }
        user.close();

        // By now the cascades have carried the new name into the settings row.
        Recordset settings =
            db.openTable(EmployeeSettingsTable, QStringLiteral("Name = ?"), {newName}, QStringLiteral("Name"));
        if (!settings.eof()) {
            QVariantMap values;
            for (const auto &[column, value] : c.settings)
                values.insert(column, value.userType() == QMetaType::QString ? textValue(value.toString()) : value);
            settings.edit(values);
        }
        settings.close();

        // Managed groups are looked up under the old name. After a rename
        // the cascades have moved them, so nothing is found: the old managed
        // rows stay, and adding one that is already there fails on the key
        // and is passed over. This order is the board's, and is kept.
        Recordset managed = db.openTable(EmployeeGroupTable, QStringLiteral("EmployeeName = ? AND GroupManager > 0"),
                                         {c.oldName}, QStringLiteral("GroupName"));
        for (; !managed.eof(); managed.moveNext())
            managed.remove();
        managed.close();

        bool passingOver = false;
        for (const QString &group : c.managedGroups) {
            try {
                Recordset member = db.openTable(EmployeeGroupTable, QStringLiteral("EmployeeName = ? AND GroupName = ?"),
                                                {c.oldName, group});
                if (!member.eof()) {
                    member.edit({{QStringLiteral("GroupManager"), 1}});
                    continue;
                }
                passingOver = true;
                db.addRow(EmployeeGroupTable, {{QStringLiteral("EmployeeName"), newName},
                                               {QStringLiteral("GroupName"), group},
                                               {QStringLiteral("GroupManager"), 1}});
            } catch (const StoreError &) {
                if (!passingOver)
                    throw;
            }
        }
        passOver(passingOver, [&] { raiseCounterField(db, QStringLiteral("Counter")); });
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
}

}  // namespace Users
