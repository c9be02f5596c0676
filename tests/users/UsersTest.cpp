#include "UsersTest.h"

#include "platform/Database.h"
#include "platform/MessageBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>

#include <sqlite3.h>

namespace UsersTest {

QString shownValue(const QWidget *d, const QString &name)
{
    if (auto *c = d->findChild<QCheckBox *>(name))
        return c->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    if (auto *t = d->findChild<QLineEdit *>(name))
        return t->text();
    if (auto *c = d->findChild<QComboBox *>(name))
        return c->currentText();
    QString chosen;
    const auto options = d->findChildren<QRadioButton *>(QRegularExpression(QLatin1Char('^') + name + QStringLiteral("_\\d$")));
    if (options.isEmpty())
        qFatal("control %s missing", qPrintable(name));
    for (QRadioButton *r : options)
        if (r->isChecked())
            chosen += r->objectName().section(QLatin1Char('_'), -1);
    return chosen;
}

void setValue(QWidget *d, const QString &name, const QString &value)
{
    if (auto *c = d->findChild<QCheckBox *>(name))
        c->setChecked(value == QLatin1String("1"));
    else if (auto *c = d->findChild<QComboBox *>(name))
        c->setEditText(value);
    else if (auto *t = d->findChild<QLineEdit *>(name))
        t->setText(value);
    else
        control<QRadioButton>(d, name + QLatin1Char('_') + value)->setChecked(true);
}

QStringList boxes()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + QLatin1Char('|') + s.text;
    return out;
}

void addUsers(Database &db, const QStringList &namesAndIds)
{
    for (const QString &pair : namesAndIds) {
        const QString name = pair.section(QLatin1Char('='), 0, 0);
        const QString id = pair.section(QLatin1Char('='), 1);
        db.execute(QStringLiteral("INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)"), {name, id});
        db.execute(QStringLiteral("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)"), {name});
    }
}

long long counter(Database &db)
{
    return db.scalar(QStringLiteral("SELECT Counter FROM StatusCounterTable")).toLongLong();
}

StatementHook::StatementHook(Database &db, std::function<void(const QString &)> hook)
    : m_db(db), m_hook(std::move(hook))
{
    sqlite3_trace_v2(m_db.handle(), SQLITE_TRACE_STMT, &StatementHook::trace, this);
}

StatementHook::~StatementHook()
{
    if (sqlite3 *h = m_db.handle())
        sqlite3_trace_v2(h, 0, nullptr, nullptr);
}

int StatementHook::trace(unsigned type, void *context, void *, void *text)
{
    if (type == SQLITE_TRACE_STMT && text) {
        const QString sql = QString::fromUtf8(static_cast<const char *>(text));
        // Statements run by triggers arrive as comments.
        if (!sql.startsWith(QLatin1String("--")))
            static_cast<StatementHook *>(context)->m_hook(sql);
    }
    return 0;
}

}  // namespace UsersTest
