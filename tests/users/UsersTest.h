#pragma once

#include "console/ConsoleFixture.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"

#include <QTest>
#include <QWidget>

namespace UsersTest {

// A control of a dialog by its name; the test stops when it is missing.
template <class T>
T *control(const QWidget *dialog, const QString &name)
{
    if (T *w = dialog->findChild<T *>(name))
        return w;
    qFatal("control %s missing", qPrintable(name));
}

// A check box as "0"/"1", a text box or combo as its text, an option group
// (by its prefix) as the index chosen. setValue sets a text box or combo.
QString shownValue(const QWidget *dialog, const QString &control);
void setValue(QWidget *dialog, const QString &control, const QString &value);

// Every box shown so far as "title|text"; a run-time error without the
// store's own words after its number.
QStringList boxes();
void addUsers(Database &db, const QStringList &namesAndIds);  // "Name=ID" each
long long counter(Database &db);
// What a query returns: fields joined by '|', rows by '\n', Null as "<null>";
// or its first row by column name.
QString rows(Database &db, const QString &sql, const QVariantList &params = {});
QMap<QString, QString> record(Database &db, const QString &sql, const QVariantList &params = {});

// Runs `action` while another program may hold the file: "lock" (an
// uncommitted write) or "reader" (an open read) is taken as the `nth` BEGIN
// starts, and let go as the next BEGIN or COMMIT after the nth starts (a
// Retry, or the next step); any other `hold` takes none.
void whileHeld(const ConsoleTest::Console &c, const QString &hold, const std::function<void()> &action, int nth = 1);

}  // namespace UsersTest
