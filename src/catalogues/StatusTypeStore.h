#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

class Database;

// Colour code 1 to 6 of a status word, from the last row of
// StatusTypesTable whose Status matches it without regard to case; 4 (Blue)
// when none does. What a user's StatusCode is set from.
int StatusCodeOfName(Database &db, const QString &name);

// What the status-type windows write, as plain functions on an open handle.
namespace StatusTypes {

constexpr int Blue = 4;  // the default colour everywhere

// The captions of the user program's own toolbar commands, which no status
// may take: compared whole, in upper case, after stripping blanks.
bool isToolbarCommand(const QString &name);
// In, Out and Busy, by their upper-case name.
bool isProtected(const QString &name);

// The board's duplicate test: `name` is a `like` pattern, blind to case.
bool exists(Database &db, const QString &pattern);

struct StatusType {
    QString status;
    int statusCode = Blue;
    bool onToolbar = false;
    QString buttonText;
    QString toolTipText;
    bool protectedStatus = false;
};

// The row of that exact name; false when there is none.
bool read(Database &db, const QString &name, StatusType &out);

// The values of a row as written: texts stripped, the button text and tool
// tip cut to what their fields hold, an empty one as no text at all.
QVariantMap rowValues(const StatusType &type);

// Adds the row and raises StatusTypeCounter, together or not at all.
void add(Database &db, const StatusType &type);

// The first row named `oldName` takes the new values; nothing is written
// when it is gone. No other table is touched: users keep the old word.
void modifyRow(Database &db, const QString &oldName, const StatusType &type);

// The statements deleting one type: users with an empty Status become
// "Please Set" in Blue, then the type's rows go. Users standing in the
// deleted type keep its word.
void deleteRows(Database &db, const QString &name);

void raiseCounter(Database &db);

}  // namespace StatusTypes
