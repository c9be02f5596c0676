#include "messages/MessageStore.h"

#include "platform/Database.h"
#include "store/Counters.h"

#include <cmath>

namespace Messages {

namespace {

const QDate DayZero(1899, 12, 30);

QString text(const Recordset &rs, const char *field)
{
    // A Null shows as empty.
    return rs.value(QLatin1String(field)).toString();
}

}  // namespace

double dateNumber(const QDateTime &local)
{
    const QDateTime t = local.toLocalTime();
    const qint64 days = DayZero.daysTo(t.date());
    const double fraction = t.time().msecsSinceStartOfDay() / 86400000.0;
    // Before day zero the fraction still counts forward from midnight, so
    // the whole part moves away from zero.
    return days >= 0 ? days + fraction : days - fraction;
}

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
    const QDate date = DayZero.addDays(qint64(days));
    const QTime time = QTime(0, 0).addSecs(int(seconds));
    if (days == 0)
        return time.toString(QStringLiteral("HH:mm:ss"));
    if (seconds == 0)
        return date.toString(QStringLiteral("yyyy-MM-dd"));
    return date.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char(' ') + time.toString(QStringLiteral("HH:mm:ss"));
}

QString entryKey(const QString &entry) { return entry.section(QLatin1Char('\t'), 0, 0); }

QVector<PreviewRow> previewRows(Database &db, const QString &person)
{
    QVector<PreviewRow> out;
    Recordset rs = db.query(QStringLiteral("SELECT * FROM MessagesTable "
                                           "WHERE (SentToName = ? OR (SentFromName = ? AND Category = 'Draft')) "
                                           "AND Category <> 'Deleted' ORDER BY MessageID"),
                            {person, person});
    for (; !rs.eof(); rs.moveNext()) {
        PreviewRow row;
        row.category = text(rs, "Category");
        row.from = rs.isNull(QStringLiteral("MessageFrom")) ? text(rs, "SentFromName") : text(rs, "MessageFrom");
        row.subject = text(rs, "MessageSubject");
        row.body = text(rs, "MessageBody");
        row.sent = dateNumberText(rs.value(QStringLiteral("SentDateTimeNum")));
        row.sentBy = text(rs, "SentFromName");
        row.id = text(rs, "MessageID");
        out.append(row);
    }
    return out;
}

void markDeleted(Database &db, const QStringList &ids, const QDateTime &now)
{
    // Bound as a number: no locale's decimal comma can reach the statement.
    const double stamp = dateNumber(now);
    for (const QString &id : ids)
        db.execute(QStringLiteral("UPDATE MessagesTable SET Category = 'Deleted', LastUsedDateTimeNum = ? "
                                  "WHERE MessageID = ?"),
                   {stamp, id});
    raiseCounterField(db, QStringLiteral("Counter"));
}

QVariantMap message(Database &db, const QString &id)
{
    QVariantMap out;
    Recordset rs = db.query(QStringLiteral("SELECT * FROM MessagesTable WHERE MessageID = ?"), {id});
    if (rs.eof())
        return out;
    for (int i = 0; i < rs.fieldCount(); ++i)
        out.insert(rs.fieldNames()[i], rs.value(i));
    return out;
}

QString fromText(const QVariantMap &m)
{
    const QString sender = m.value(QStringLiteral("SentFromName")).toString();
    const QVariant typed = m.value(QStringLiteral("MessageFrom"));
    if (typed.isNull() || typed.toString() == sender || sender.isEmpty())
        return typed.isNull() ? sender : typed.toString();
    return typed.toString() + QStringLiteral(" (sent by ") + sender + QLatin1Char(')');
}

}  // namespace Messages
