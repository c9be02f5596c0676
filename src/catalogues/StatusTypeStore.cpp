#include "catalogues/StatusTypeStore.h"

#include "platform/Database.h"
#include "store/Counters.h"

namespace {

const QString StatusTypesTable = QStringLiteral("StatusTypesTable");

// Field sizes of ButtonText and ToolTipText. The tool tip the name field
// writes (" Set status to " + name) can be longer than the field; it is cut
// there rather than refused by the store.
constexpr int ButtonTextSize = 10;
constexpr int ToolTipTextSize = 30;

QVariant storedText(const QString &text, int size)
{
    const QString t = text.trimmed().left(size).trimmed();
    // The field takes no empty text: an empty one is stored as none.
    return t.isEmpty() ? QVariant() : QVariant(t);
}

}  // namespace

int StatusCodeOfName(Database &db, const QString &name)
{
    int code = StatusTypes::Blue;
    const QString wanted = name.toUpper();
    Recordset rs = db.query(QStringLiteral("SELECT * FROM StatusTypesTable"));
    for (; !rs.eof(); rs.moveNext())
        if (rs.text(QStringLiteral("Status")).toUpper() == wanted)
            code = rs.value(QStringLiteral("StatusCode")).toInt();
    return code;
}

namespace StatusTypes {

bool isToolbarCommand(const QString &name)
{
    static const QStringList commands = {
        QStringLiteral("CHANGE"),  QStringLiteral("GROUP"),   QStringLiteral("REFRESH"), QStringLiteral("SERVERS"),
        QStringLiteral("HOME"),    QStringLiteral("NEW MSG"), QStringLiteral("PREVIEW"), QStringLiteral("MAIL"),
        QStringLiteral("WYWO"),    QStringLiteral("OPTIONS"), QStringLiteral("PRINT"),   QStringLiteral("ABOUT"),
        QStringLiteral("HELP"),    QStringLiteral("EXIT"),
    };
    return commands.contains(name.trimmed().toUpper());
}

bool isProtected(const QString &name)
{
    const QString upper = name.toUpper();
    return upper == QLatin1String("IN") || upper == QLatin1String("OUT") || upper == QLatin1String("BUSY");
}

bool exists(Database &db, const QString &pattern)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM StatusTypesTable WHERE Status LIKE ?"), {pattern}).toLongLong() != 0;
}

bool read(Database &db, const QString &name, StatusType &out)
{
    // By the key, not by a pattern: a name holding [ ] * ? or # must find
    // its own row and no other.
    Recordset rs = db.query(QStringLiteral("SELECT * FROM StatusTypesTable WHERE Status = ?"), {name});
    if (rs.eof())
        return false;
    out.status = rs.text(QStringLiteral("Status"));
    out.statusCode = rs.value(QStringLiteral("StatusCode")).toInt();
    out.onToolbar = rs.value(QStringLiteral("OnToolbar")).toInt() != 0;
    out.buttonText = rs.text(QStringLiteral("ButtonText"));
    out.toolTipText = rs.text(QStringLiteral("ToolTipText"));
    out.protectedStatus = rs.value(QStringLiteral("ProtectedStatus")).toInt() != 0;
    rs.close();
    return true;
}

QVariantMap rowValues(const StatusType &type)
{
    return {
        {QStringLiteral("Status"), type.status.trimmed()},
        {QStringLiteral("StatusCode"), type.statusCode},
        {QStringLiteral("OnToolbar"), type.onToolbar ? 1 : 0},
        {QStringLiteral("ButtonText"), storedText(type.buttonText, ButtonTextSize)},
        {QStringLiteral("ToolTipText"), storedText(type.toolTipText, ToolTipTextSize)},
        {QStringLiteral("ProtectedStatus"), type.protectedStatus ? 1 : 0},
    };
}

void raiseCounter(Database &db) { raiseCounterField(db, QStringLiteral("StatusTypeCounter")); }

void add(Database &db, const StatusType &type)
{
    db.beginTrans();
    try {
        db.addRow(StatusTypesTable, rowValues(type));
        raiseCounter(db);
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
}

void modifyRow(Database &db, const QString &oldName, const StatusType &type)
{
    Recordset rs = db.openTable(StatusTypesTable, QStringLiteral("Status = ?"), {oldName});
    if (!rs.eof())
        rs.edit(rowValues(type));
    rs.close();
}

void deleteRows(Database &db, const QString &name)
{
    // The empty value is the point: this repairs users left with no status
    // at all, whatever type goes.
    db.execute(QStringLiteral("UPDATE EmployeeTable SET Status = ?, StatusCode = ? WHERE Status = ?"),
               {QStringLiteral("Please Set"), Blue, QStringLiteral("")});
    db.execute(QStringLiteral("DELETE FROM StatusTypesTable WHERE Status = ?"), {name});
}

}  // namespace StatusTypes
