#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class Database;

// What the transaction log windows read and write, as plain functions on an
// open handle, so a test can run them without a window.
namespace TransLog {

// The seven fields of a log row the windows show, export and print, in order.
extern const QStringList Fields;

// The newest `limit` rows, newest first (LastModified as text), each as the
// seven fields, Null as an empty text.
QVector<QStringList> newestRows(Database &db, int limit = 500);

// GlobalSettingsTable.TransactionLogFlag of its first row: 1 on, 0 off.
bool loggingFlag(Database &db);
void setLoggingFlag(Database &db, bool on);

void clearLog(Database &db);

// "TAVELLO-EXPORT-" + yyyymmdd + ".CSV"
QString exportFileName(const QDate &day);

// Writes every row of the log to `localPath` as CSV: the seven fields each
// in double quotes (a quote inside doubled), separated by commas, CRLF after
// each row, no heading; UTF-8. The file is replaced only once it is whole.
// `progress` gets the rows written now and then. Returns the rows written.
// Store failures are thrown as StoreError, file failures as StoreError 75
// with the system's reason.
qint64 exportLog(Database &db, const QString &localPath, const std::function<void(qint64)> &progress = {});

// The printed report: the heading and each row set in fixed columns, each
// value padded with blanks to its column's width and cut there, one blank
// after each. Line breaks and tabs in a value print as blanks.
extern const int ReportWidths[7];
QString reportLine(const QStringList &values);
QString reportHeading();
int reportLineLength();

}  // namespace TransLog
