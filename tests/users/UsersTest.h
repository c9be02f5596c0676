#pragma once

#include "console/ConsoleFixture.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"

#include <QTest>
#include <QWidget>
#include <functional>
#include <memory>

namespace UsersTest {

// A control of a dialog by its name; the test stops when it is missing.
template <class T>
T *control(const QWidget *dialog, const QString &name)
{
    T *w = dialog->findChild<T *>(name);
    if (!w)
        qFatal("control %s missing", qPrintable(name));
    return w;
}

// A check box as "0"/"1", a text box or combo as its text, an option group
// (by its prefix) as the index chosen. setValue takes the same forms.
QString shownValue(const QWidget *dialog, const QString &control);
void setValue(QWidget *dialog, const QString &control, const QString &value);

QStringList boxes();  // every box shown so far as "title|text"
void addUsers(Database &db, const QStringList &namesAndIds);  // "Name=ID" each
long long counter(Database &db);

// Calls `hook(sql)` as each statement of `db` starts, before it runs (the
// moment another program may act between two steps), until the result goes.
std::shared_ptr<void> onEachStatement(Database &db, std::function<void(const QString &sql)> hook);

}  // namespace UsersTest
