#pragma once

#include "platform/Database.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <array>
#include <optional>

// What the import writes, as plain functions and one class on an open
// handle, so a test can run it without a window. The caller holds the
// transaction around a run.
namespace Import {

// The texts of the column combos.
inline const QString NotUsed = QStringLiteral("< Not Used >");
inline const QString UserID = QStringLiteral("User ID");
inline const QString UserName = QStringLiteral("User Name");
inline const QString PhoneNumber = QStringLiteral("Phone Number");

// Blanks off both ends; tabs and other white space stay.
QString stripBlanks(const QString &text);
// At most `count` characters, never half of a character outside the BMP.
QString leftCharacters(const QString &text, int count);

// Dates as the board keeps them: days since 30 December 1899, the time of
// day as the fraction.
double dateNumber(const QDate &date);
double timeNumber(const QTime &time);
// A stored date number as text: the date alone at midnight, the time alone
// on day 0, else both. Null gives an empty text.
QString dateNumberText(const QVariant &value);

// One run through a file: the skip rules, the row import and the error log.
class ImportRun {
public:
    ImportRun(Database &db, const std::array<QString, 3> &columnMap, QChar separator);

    // One line of the file, as read.
    void take(const QString &line);

    // Adds a row to ImportErrorLog stamped with now, and counts it.
    void LogImportError(const QString &text);

    qint64 linesDone() const { return m_linesDone; }
    qint64 errorCount() const { return m_errorCount; }

private:
    void importRow(const QString &line);
    const QVariantList &defaults();

    Database &m_db;
    std::array<QString, 3> m_map;
    QChar m_separator;
    Statement m_addEmployee;
    Statement m_addSettings;
    Statement m_addError;
    std::optional<QVariantList> m_defaults;  // the settings row, Name left for last
    qint64 m_linesDone = 0;
    qint64 m_errorCount = 0;
};

// The error log, in the table's own order.
struct ErrorRow {
    QString date;
    QString time;
    QString text;
};
QVector<ErrorRow> readImportErrors(Database &db);
void clearImportErrors(Database &db);

}  // namespace Import
