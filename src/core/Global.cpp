#include "core/Global.h"

#include "core/Admin1.h"

#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>

QString appTitleFor(const QString &version)
{
    return QStringLiteral(" TAVELLO Pro ") + version + QStringLiteral(" (Admin) - ");
}

namespace {

// Every condition in which another program has the file for the moment:
// waited for, never final.
bool isPassingLock(const StoreError &e)
{
    return e.number() == err::CannotLock || e.heldExclusively() || e.number() == err::RowLocked;
}

bool containsName(const QStringList &names, const QString &name)
{
    return names.contains(name, Qt::CaseInsensitive);
}

}  // namespace

void yieldEvents()
{
    QCoreApplication::processEvents();
}

void waitWithEvents(int ms)
{
    // Events are taken one batch at a time rather than by a nested event
    // loop: a loop refuses to run at all once the application was told to
    // quit, and the wait would then spin without painting anything.
    QElapsedTimer clock;
    clock.start();
    QTimer wake;  // ends each batch's wait on time; set anew, as a timer may fire early
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    for (qint64 left = ms; left > 0; left = ms - clock.elapsed()) {
        wake.start(int(left));
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
}

bool subOpenDatabase()
{
    const QString label = QStringLiteral("Global - subOpenDatabase event");
    // Set while a foreign file ends the run: the unload's own open meets the
    // same file and leaves its failure to the unload's handler.
    static bool endingOnForeignFile = false;
    gdbMain.close();
    if (gbolEnding)
        return false;  // the run is over: nothing more is opened or told
    Hourglass::set(11);
    for (;;) {
        try {
            gdbMain = Database::open(gstrDataPath + QStringLiteral("tavello.mdb"));
            return true;  // the hourglass stays until subCloseDatabase
        } catch (const StoreError &e) {
            if (e.number() == err::CannotLock || e.heldExclusively()) {
                // Another program has the file to itself: wait for it, without limit.
                if (gbolEnding)
                    return false;
                waitWithEvents(1000);
                continue;
            }
            if (e.number() == err::NotThisStore) {
                if (endingOnForeignFile)
                    throw;
                gstrMsg = e.text() + QStringLiteral("\r") + QStringLiteral("The database is damaged and must be repaired.");
                Msg::box(gstrMsg, Msg::Buttons::OK, Msg::Icon::Exclamation,
                         gstrAppTitle + QStringLiteral(" - Fatal Error in ") + label);
                gdbMain.close();
                endingOnForeignFile = true;
                unloadMainWindow(ExitWithoutDatabase);
                endingOnForeignFile = false;
                return false;
            }
            Msg::box(QStringLiteral("Err: ") + QString::number(e.number()) + QStringLiteral(" - Error:") + e.text(),
                     Msg::Buttons::OK);
            return false;
        }
    }
}

void subCloseDatabase()
{
    if (!gbolCloseDatabaseNow) {
        Hourglass::set(0);
        return;
    }
    gdbMain.close();
    ++gintRealCloseCount;
}

DatabaseCheck subCheckDatabase(const QString &folder)
{
    const QString file = folder + QStringLiteral("tavello.mdb");
    const QString settings = QStringLiteral("GlobalSettingsTable");
    gdbMain.close();
    for (;;) {
        try {
            // Nothing of a file is changed before it is known to be a board.
            gdbMain = Database::open(file, Database::Mode::ReadOnly);
            // Only a file that reads correctly can be told to be older data.
            if (!containsName(gdbMain.tableNames(), settings) ||
                !containsName(gdbMain.fieldNames(settings), QStringLiteral("DatabaseVersion")))
                return DatabaseCheck::Older;
            const QVariant v = gdbMain.scalar(QStringLiteral("Select DatabaseVersion from GlobalSettingsTable"));
            if (v.isNull() || v.toString() != QLatin1String("2005"))
                return DatabaseCheck::Older;
            gdbMain = Database::open(file);
            gdbMain.useRollbackJournal();
            return DatabaseCheck::Valid;
        } catch (const StoreError &e) {
            if (isPassingLock(e) && !gbolEnding) {
                // Busy or held by another program (a repair, a user program's
                // write): wait for it as every open does.
                const bool pointer = Hourglass::shown();
                Hourglass::set(11);
                waitWithEvents(1000);
                Hourglass::set(pointer ? 11 : 0);
                continue;
            }
            Hourglass::set(0);
            Msg::box(QStringLiteral("The database ") + file + QStringLiteral(" could not be opened or read (error ") +
                         QString::number(e.number()) + QStringLiteral("):") + QStringLiteral("\r") + e.text() +
                         QStringLiteral("\r\r") + QStringLiteral("The file has been left where it is."),
                     Msg::Buttons::OK, Msg::Icon::Exclamation, gstrAppTitle + QStringLiteral(" - Database Error"));
            return DatabaseCheck::Unusable;
        }
    }
}

void subTellNotA2005Database()
{
    Hourglass::set(0);
    Msg::box(QStringLiteral("Error: This is NOT a 2005 Tavello database."), Msg::Buttons::OK, Msg::Icon::Information,
             QStringLiteral("Not a valid 2005 Tavello Database"));
}

bool gbolIsValidDatabase(const QString &folder)
{
    const DatabaseCheck check = subCheckDatabase(folder);
    if (check == DatabaseCheck::Older)
        subTellNotA2005Database();
    return check == DatabaseCheck::Valid;
}

void endProcess(int exitCode)
{
    gbolEnding = true;
    Hourglass::set(0);
    if (auto *app = qobject_cast<QApplication *>(QCoreApplication::instance())) {
        const QWidgetList windows = app->topLevelWidgets();
        for (auto it = windows.crbegin(); it != windows.crend(); ++it)
            (*it)->hide();
    }
    QCoreApplication::exit(exitCode);
}
