#pragma once

#include "console/ConsoleFixture.h"

#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

class Database;

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

// What a control shows: a check box "0"/"1", a text box or combo its text,
// an option group (given as its prefix) the index chosen, "" when none.
QString shownValue(const QWidget *dialog, const QString &control);
// Sets a control the same way: an option group takes the index to choose.
void setValue(QWidget *dialog, const QString &control, const QString &value);

// Every box shown so far as "title|text".
QStringList boxes();

// Users with their settings rows, as another program would add them.
void addUsers(Database &db, const QStringList &namesAndIds);  // "Name=ID" each
long long counter(Database &db);

// Calls `hook(sql)` as each statement starts on the handle of `db`, from
// inside the store, before the statement runs: the moment another program
// may act between two steps of a routine. Removed when the object goes.
class StatementHook {
public:
    StatementHook(Database &db, std::function<void(const QString &sql)> hook);
    ~StatementHook();

private:
    static int trace(unsigned type, void *context, void *statement, void *text);
    Database &m_db;
    std::function<void(const QString &)> m_hook;
};

}  // namespace UsersTest
