#include "core/Global.h"

#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>

QString appTitleFor(const QString &version)
{
    return QStringLiteral(" TAVELLO Pro ") + version + QStringLiteral(" (Admin) - ");
}

namespace {

// A second's pause that keeps the window painting and answering.
void pauseWithEvents(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

void yieldEvents()
{
    QCoreApplication::processEvents();
}

void subOpenDatabase()
{
    const QString label = QStringLiteral("Global - subOpenDatabase event");
    gdbMain.close();
    Hourglass::set(11);
    for (;;) {
        try {
            gdbMain = Database::open(gstrDataPath + QStringLiteral("tavello.mdb"));
            return;  // the hourglass stays until subCloseDatabase
        } catch (const StoreError &e) {
            if (e.number() == err::CannotLock || e.heldExclusively()) {
                // Another program has the file to itself: wait for it, without limit.
                if (gbolEnding)
                    return;
                pauseWithEvents(1000);
                continue;
            }
            if (e.number() == err::NotThisStore) {
                gstrMsg = e.text() + QStringLiteral("\r") + QStringLiteral("The database is damaged and must be repaired.");
                Msg::box(gstrMsg, Msg::Buttons::OK, Msg::Icon::Exclamation,
                         gstrAppTitle + QStringLiteral(" - Fatal Error in ") + label);
                gdbMain.close();
                endProcess();
                return;
            }
            Msg::box(QStringLiteral("Err: ") + QString::number(e.number()) + QStringLiteral(" - Error:") + e.text(),
                     Msg::Buttons::OK);
            return;
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

bool gbolIsValidDatabase(const QString &folder)
{
    gdbMain.close();
    bool valid = false;
    try {
        gdbMain = Database::open(folder + QStringLiteral("tavello.mdb"));
        const QVariant v = gdbMain.scalar(QStringLiteral("Select DatabaseVersion from GlobalSettingsTable"));
        valid = !v.isNull() && v.toString() == QLatin1String("2005");
    } catch (const StoreError &) {
        valid = false;
    }
    if (!valid) {
        Hourglass::set(0);
        Msg::box(QStringLiteral("Error: This is NOT a 2005 Tavello database."), Msg::Buttons::OK,
                 Msg::Icon::Information, QStringLiteral("Not a valid 2005 Tavello Database"));
    }
    return valid;
}

void endProcess()
{
    gbolEnding = true;
    Hourglass::set(0);
    if (auto *app = qobject_cast<QApplication *>(QCoreApplication::instance())) {
        const QWidgetList windows = app->topLevelWidgets();
        for (auto it = windows.crbegin(); it != windows.crend(); ++it)
            (*it)->hide();
    }
    QCoreApplication::exit(0);
}
