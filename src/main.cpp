#include "console/frmMain.h"
#include "console/frmWelcome.h"
#include "core/Global.h"
#include "platform/AppFolders.h"
#include "platform/Help.h"

#include <QApplication>
#include <QIcon>
#include <QStringList>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    // Installed, the desktop entry and the hicolor icons carry this id.
    QGuiApplication::setDesktopFileName(AppFolders::applicationId());
    QApplication::setWindowIcon(QIcon::fromTheme(AppFolders::applicationId()));
    Help::install();

    // The command line has no options: any text turns the run into the one-shot repair.
    QStringList args = QApplication::arguments();
    args.removeFirst();
    gstrCommandLine = args.join(QLatin1Char(' ')).trimmed();

    int rc = 0;
    {
        frmWelcome welcome;
        frmMain *mainWindow = nullptr;
        QObject::connect(&welcome, &frmWelcome::timeUp, [&] {
            mainWindow = new frmMain;
            mainWindow->setAttribute(Qt::WA_DeleteOnClose, false);
            const bool running = mainWindow->load();
            welcome.close();
            if (!running && !gbolEnding)
                endProcess();
        });
        welcome.show();
        welcome.TimerWelcome.start();
        rc = app.exec();
        delete mainWindow;
    }
    gdbMain.close();
    return rc;
}
