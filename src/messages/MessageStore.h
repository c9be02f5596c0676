#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

class Database;

// What the message windows read and write, as plain functions on an open
// handle. Every value is a bound parameter.
namespace Messages {

// Date numbers as the board stores times: days since 30 December 1899, the
// time of day as the fraction.
double dateNumber(const QDateTime &local);
// A stored date number as the lists show it: the date, and the time unless
// it is midnight; empty for Null; a value that is no number as it stands.
QString dateNumberText(const QVariant &value);

// The key of an entry of the delete list: its text up to the first tab.
QString entryKey(const QString &entry);

// One row of the preview list.
struct PreviewRow {
    QString category;
    QString from;  // MessageFrom, or SentFromName where that is Null
    QString subject;
    QString body;
    QString sent;
    QString sentBy;
    QString id;
};
// The messages sent to `person` and the person's own drafts, less those
// marked deleted, in the order they were written.
QVector<PreviewRow> previewRows(Database &db, const QString &person);

// The preview's Delete: each message marked "Deleted" with the time of the
// marking, then Counter raised once. The rows stay in the table.
void markDeleted(Database &db, const QStringList &ids, const QDateTime &now);

// One message with every field, for the read-only view; empty when gone.
QVariantMap message(Database &db, const QString &id);
// Who a message of message() is from: the name typed by whoever took it,
// with the sender behind it, or the sender alone.
QString fromText(const QVariantMap &message);

}  // namespace Messages
