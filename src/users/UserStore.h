#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <utility>

class Database;
class Recordset;

// What the user windows write, as plain functions on an open handle, so a
// test can run them without a window. Every value is a bound parameter;
// column names reach SQL only through Database::quoteIdentifier.
namespace Users {

// The number a typed text starts with, the way the board has always read
// typed numbers: leading blanks skipped, then sign, digits, point and
// exponent; no leading number gives 0. Whole-number columns take it rounded
// half to even. A value beyond any whole number is handed on as it is, so
// the store refuses it rather than a wrong number being saved.
QVariant wholeNumberAtStart(const QString &text);

// A text for the store: empty stays an empty text, never a Null.
QVariant textValue(const QString &text);

// Uniqueness tests compare with the board's `like`: the typed text is the
// pattern, so * ? # [..] in it act as wildcards, and case is ignored.
bool uidTaken(Database &db, const QString &pattern);
bool nameTaken(Database &db, const QString &pattern);

// The one row of NewUserDefaultsTable, added with the schema's defaults
// when the table is empty.
Recordset openNewUserDefaults(Database &db);

// A new board entry: the EmployeeTable row (UID, Name and every `New_`
// column of the template, a failing one skipped), the EmployeeSettingsTable
// row from the template, and Counter raised once. One transaction: a failure
// leaves no part of the user behind, and is thrown on.
void addUser(Database &db, const QString &id, const QString &name);

// In, Out and Busy in any case become their proper spelling.
QString normalisedStatus(const QString &typed);

// Everything the Modify window writes for one user.
struct UserChanges {
    QString oldName;  // the name the window was opened on
    QString uid;
    QString name;
    QString status;
    QString phone;
    QString dueBack;
    QString comments;
    // Added columns: the name after "New_" and the text of the cell.
    QVector<std::pair<QString, QString>> addedColumns;
    // EmployeeSettingsTable columns and values.
    QVector<std::pair<QString, QVariant>> settings;
    // Groups the user is to manage, in the order shown.
    QStringList managedGroups;
};

// The Modify window's OK, in its fixed order: the EmployeeTable row under the
// old name (the rename travels into settings, memberships and tracking by
// the store's cascades), the settings row under the new name, the managed
// groups searched under the old name, Counter. Added-column values get one
// trailing blank. Once a managed-group row has had to be added, failures of
// the remaining steps are passed over. One transaction.
void saveUser(Database &db, const UserChanges &changes);

}  // namespace Users
