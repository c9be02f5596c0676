#include "UsersTest.h"

#include "support/HeldDuring.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>

#include <optional>
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
    for (QRadioButton *r : d->findChildren<QRadioButton *>(QRegularExpression('^' + name + "_\\d$")))
        if (r->isChecked())
            return r->objectName().right(1);
    return "none";  // no choice made, or no such control
}

void setValue(QWidget *d, const QString &name, const QString &value)
{
    if (auto *c = d->findChild<QComboBox *>(name))
        c->setEditText(value);
    else
        control<QLineEdit>(d, name)->setText(value);
}

QStringList boxes()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + '|' + s.text.section("\r\n\r\n", 0, 0);
    return out;
}

void addUsers(Database &db, const QStringList &namesAndIds)
{
    for (const QString &pair : namesAndIds) {
        db.execute("INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)", {pair.section('=', 0, 0), pair.section('=', 1)});
        db.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", {pair.section('=', 0, 0)});
    }
}

long long counter(Database &db) { return db.scalar("SELECT Counter FROM StatusCounterTable").toLongLong(); }

QString rows(Database &db, const QString &sql, const QVariantList &params)
{
    QStringList out;
    for (Recordset rs = db.query(sql, params); !rs.eof(); rs.moveNext()) {
        QStringList fields;
        for (int i = 0; i < rs.fieldCount(); ++i)
            fields << (rs.value(i).isNull() ? QString("<null>") : rs.value(i).toString());
        out << fields.join('|');
    }
    return out.join('\n');
}

QMap<QString, QString> record(Database &db, const QString &sql, const QVariantList &params)
{
    QMap<QString, QString> out;
    Recordset rs = db.query(sql, params);
    for (int i = 0; !rs.eof() && i < rs.fieldCount(); ++i)
        out.insert(rs.fieldNames()[i], rs.value(i).isNull() ? QString("<null>") : rs.value(i).toString());
    return out;
}

void whileHeld(const ConsoleTest::Console &c, const QString &hold, const std::function<void()> &action, int nth)
{
    TestSupport::heldDuring(c.databaseFile(), hold, action, nth);
}

}  // namespace UsersTest
