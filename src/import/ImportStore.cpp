#include "import/ImportStore.h"

#include <cmath>

namespace Import {

namespace {

// Settings a user takes from NewUserDefaultsTable, in the order they are
// set, each stripped of blanks; then the fixed column orders; then the
// two font settings as they stand.
const char *const CopiedSettings[] = {
    "AutoClearComments", "AutoLogIn", "AutoLogOut", "AutoMinimize", "RefreshRate", "DefaultGroup",
    "StatusColumnWidth", "NameColumnWidth", "PhoneColumnWidth", "DueBackColumnWidth", "CommentsColumnWidth",
    "LastModifiedColumnWidth", "SortOrder", "SortKey", "ScreenTop", "ScreenLeft", "ScreenWidth", "ScreenHeight",
    "ListViewPopUp", "ChangeScreenPopUp", "UserSecurityLevel", "MinimizeSetting", "IconSize", "ToolBarText",
    "MinimizeOnClose", "DisplayTreeView",
};
const char *const ColumnOrders[] = {
    "StatusColumnOrder", "NameColumnOrder", "PhoneColumnOrder", "DueBackColumnOrder", "CommentsColumnOrder",
    "LastModifiedColumnOrder",
};
const char *const FontSettings[] = {"FontBoldDisplay", "FontSizeDisplay"};

constexpr int MaxLine = 99;
constexpr int LogTextSize = 250;

QString settingsInsert()
{
    QStringList columns;
    for (const char *c : CopiedSettings)
        columns << QLatin1String(c);
    for (const char *c : ColumnOrders)
        columns << QLatin1String(c);
    for (const char *c : FontSettings)
        columns << QLatin1String(c);
    columns << QStringLiteral("Name");
    QStringList marks;
    for (int i = 0; i < columns.size(); ++i)
        marks << QStringLiteral("?");
    return QStringLiteral("INSERT INTO EmployeeSettingsTable (%1) VALUES (%2)")
        .arg(columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", ")));
}

int characterCount(const QString &text)
{
    int n = 0;
    for (const QChar c : text)
        n += !c.isLowSurrogate();
    return n;
}

// A template value as it is copied: its text without blanks at the ends. A
// whole number in plain digits goes as that number, which is what any
// column makes of the text, and saves the store converting it each row.
QVariant storedText(const QVariant &v)
{
    if (v.isNull())
        return QVariant();
    const QString text = stripBlanks(v.toString());
    bool isNumber = false;
    const qint64 n = text.toLongLong(&isNumber);
    if (isNumber && QString::number(n) == text)
        return n;
    return text;
}

// The failure of a mapped column the line does not have.
StoreError subscriptFailure() { return StoreError(9, QStringLiteral("Subscript out of range")); }

}  // namespace

QString stripBlanks(const QString &text)
{
    qsizetype from = 0, to = text.size();
    while (from < to && text[from] == QLatin1Char(' '))
        ++from;
    while (to > from && text[to - 1] == QLatin1Char(' '))
        --to;
    return from == 0 && to == text.size() ? text : text.mid(from, to - from);
}

QString leftCharacters(const QString &text, int count)
{
    int seen = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isLowSurrogate())
            continue;
        if (seen++ == count)
            return text.left(i);
    }
    return text;
}

double dateNumber(const QDate &date) { return double(QDate(1899, 12, 30).daysTo(date)); }

double timeNumber(const QTime &time) { return time.msecsSinceStartOfDay() / 1000 / 86400.0; }

QString dateNumberText(const QVariant &value)
{
    if (value.isNull())
        return QString();
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (!ok || !std::isfinite(d) || std::fabs(d) > 2958465.0)
        return value.toString();
    double days = std::trunc(d);
    qint64 seconds = std::llround(std::fabs(d - days) * 86400.0);
    if (seconds >= 86400) {
        seconds -= 86400;
        days += d < 0 ? -1 : 1;
    }
    const QDate date = QDate(1899, 12, 30).addDays(qint64(days));
    const QString time = QTime(0, 0).addSecs(int(seconds)).toString(QStringLiteral("HH:mm:ss"));
    if (days == 0)
        return time;
    if (seconds == 0)
        return date.toString(QStringLiteral("yyyy-MM-dd"));
    return date.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char(' ') + time;
}

ImportRun::ImportRun(Database &db, const std::array<QString, 3> &columnMap, QChar separator)
    : m_db(db), m_map(columnMap), m_separator(separator)
{
    m_addEmployee = db.prepareStatement(QStringLiteral("INSERT INTO EmployeeTable (UID, Name, Phone) VALUES (?, ?, ?)"));
    m_addSettings = db.prepareStatement(settingsInsert());
    m_addError = db.prepareStatement(
        QStringLiteral("INSERT INTO ImportErrorLog (ErrorDate, ErrorTime, ErrorText) VALUES (?, ?, ?)"));
}

void ImportRun::LogImportError(const QString &text)
{
    const QDateTime now = QDateTime::currentDateTime();
    // The log holds 250 characters: a very long line is kept by its start.
    m_addError.execute({dateNumber(now.date()), timeNumber(now.time()), leftCharacters(text, LogTextSize)});
    ++m_errorCount;
}

void ImportRun::take(const QString &raw)
{
    const QString line = stripBlanks(raw);
    const int length = characterCount(line);
    QString refusal;
    if (length > MaxLine)
        refusal = QStringLiteral("Line too long - ") + line;
    else if (length < 2)
        refusal = QStringLiteral("Blank line (skipped)");
    else if (line.contains(QLatin1Char('"')))
        refusal = QStringLiteral("Double quote in name (skipped) - ") + line;
    else if (line.contains(QLatin1Char('#')))
        refusal = QStringLiteral("Hash symbol (#) in name (skipped) - ") + line;
    if (!refusal.isEmpty()) {
        LogImportError(refusal);
        ++m_linesDone;
        return;
    }
    ++m_linesDone;
    try {
        importRow(line);
    } catch (const StoreError &e) {
        LogImportError(e.number() == err::DuplicateKey ? QStringLiteral("Duplicate name not imported - ") + line
                                                       : e.text());
    }
}

const QVariantList &ImportRun::defaults()
{
    if (m_defaults)
        return *m_defaults;
    Recordset rs = m_db.query(QStringLiteral("SELECT * FROM NewUserDefaultsTable"));
    if (rs.eof()) {
        rs.close();
        m_db.addRow(QStringLiteral("NewUserDefaultsTable"));
        rs = m_db.query(QStringLiteral("SELECT * FROM NewUserDefaultsTable"));
    }
    QVariantList values;
    for (const char *c : CopiedSettings) {
        const QVariant v = rs.value(QLatin1String(c));
        values << storedText(v);
    }
    for (int order = 1; order <= 6; ++order)
        values << order;
    for (const char *c : FontSettings)
        values << rs.value(QLatin1String(c));
    values << QVariant();  // Name
    rs.close();
    // Nothing else writes while the run holds the transaction, so the
    // defaults read once stand for every line.
    m_defaults = values;
    return *m_defaults;
}

void ImportRun::importRow(const QString &line)
{
    const QStringList fields = line.split(m_separator);
    QString uid, name, phone;
    for (int column = 0; column < 3; ++column) {
        QString *target = m_map[column] == UserID     ? &uid
                          : m_map[column] == UserName ? &name
                          : m_map[column] == PhoneNumber ? &phone
                                                         : nullptr;
        if (!target)
            continue;
        if (column >= fields.size())
            throw subscriptFailure();
        *target = fields[column];
    }
    QVariantList &settings = const_cast<QVariantList &>(defaults());
    // No ID is written as none: the store takes any number of users without one.
    // An unmapped phone or name is an empty text, as a typed one would be.
    m_addEmployee.execute({uid.isEmpty() ? QVariant() : QVariant(uid), name.isNull() ? QStringLiteral("") : name,
                           phone.isNull() ? QStringLiteral("") : phone});
    settings.last() = stripBlanks(name);
    m_addSettings.execute(settings);
}

QVector<ErrorRow> readImportErrors(Database &db)
{
    QVector<ErrorRow> rows;
    for (Recordset rs = db.query(QStringLiteral("SELECT * from ImportErrorLog")); !rs.eof(); rs.moveNext()) {
        const QVariant text = rs.value(QStringLiteral("ErrorText"));
        rows.append({dateNumberText(rs.value(QStringLiteral("ErrorDate"))),
                     dateNumberText(rs.value(QStringLiteral("ErrorTime"))), text.isNull() ? QString() : text.toString()});
    }
    return rows;
}

void clearImportErrors(Database &db) { db.execute(QStringLiteral("DELETE FROM ImportErrorLog")); }

}  // namespace Import
