#include "UsersTest.h"

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
        return QString::number(c->isChecked());
    if (auto *t = d->findChild<QLineEdit *>(name))
        return t->text();
    if (auto *c = d->findChild<QComboBox *>(name))
        return c->currentText();
    const auto options = d->findChildren<QRadioButton *>(QRegularExpression('^' + name + "_\\d$"));
    if (options.isEmpty())
        qFatal("control %s missing", qPrintable(name));
    QString chosen;
    for (QRadioButton *r : options)
        if (r->isChecked())
            chosen += r->objectName().right(1);
    return chosen;
}

void setValue(QWidget *d, const QString &name, const QString &value)
{
    if (auto *c = d->findChild<QCheckBox *>(name))
        c->setChecked(value == "1");
    else if (auto *c = d->findChild<QComboBox *>(name))
        c->setEditText(value);
    else if (auto *t = d->findChild<QLineEdit *>(name))
        t->setText(value);
    else
        control<QRadioButton>(d, name + '_' + value)->setChecked(true);
}

QStringList boxes()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + '|' + s.text;
    return out;
}

void addUsers(Database &db, const QStringList &namesAndIds)
{
    for (const QString &pair : namesAndIds) {
        const QString name = pair.section('=', 0, 0);
        db.execute("INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)", {name, pair.section('=', 1)});
        db.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", {name});
    }
}

long long counter(Database &db)
{
    return db.scalar("SELECT Counter FROM StatusCounterTable").toLongLong();
}

std::shared_ptr<void> onEachStatement(Database &db, std::function<void(const QString &)> hook)
{
    using Hook = std::function<void(const QString &)>;
    auto trace = [](unsigned, void *context, void *, void *text) {
        const QString sql = QString::fromUtf8(static_cast<const char *>(text));
        if (!sql.startsWith("--"))  // statements run by triggers arrive as comments
            (*static_cast<Hook *>(context))(sql);
        return 0;
    };
    auto *h = new Hook(std::move(hook));
    sqlite3_trace_v2(db.handle(), SQLITE_TRACE_STMT, trace, h);
    return std::shared_ptr<void>(h, [&db](void *p) {
        if (sqlite3 *handle = db.handle())
            sqlite3_trace_v2(handle, 0, nullptr, nullptr);
        delete static_cast<Hook *>(p);
    });
}

}  // namespace UsersTest
