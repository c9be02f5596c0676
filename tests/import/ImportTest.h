#pragma once

#include "users/UsersTest.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

// Driving the import the way the administrator does: the toolbar's Import,
// the file chosen, the first step filled in and Next pressed, the run.
namespace ImportTest {

struct Run {
    QStringList windows;     // shown modally, in order
    QStringList boxes;       // "title|text" of each message box
    int barMaximum = -1;     // the run's progress bar at its start, -1 when no run
    int barValue = -1;       // and at its end
    QStringList errorList;   // what frmImportErrors listed, "date|time|text", when shown
};

// Map codes, one a combo: I User ID, N User Name, P Phone Number,
// - < Not Used >, _ an empty combo.
QString comboText(QChar code);

// Runs the wizard on `file`. `beforeNext` runs with the first step open.
// `answers` go to the message boxes in turn (the results: No when none).
Run runImport(ConsoleTest::Console &c, const QString &file, const QString &map, bool tab,
              const std::function<void()> &beforeNext = {}, const QList<int> &answers = {Msg::No});

void writeFile(const QString &path, const QByteArray &content);

// Users other than the board's own: "UID|Name|Phone|settings rows".
QStringList newUsers(Database &db);
QStringList logTexts(Database &db);
QString results(qint64 lines, qint64 errors);

}  // namespace ImportTest
