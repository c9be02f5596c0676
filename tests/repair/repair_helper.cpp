// A second program for the repair tests, run as a real process:
//
//   repair_helper compact <file>     subCompactDatabase on <file>'s folder
//   repair_helper create <file>      CreateDatabase
//
// Both print "started", exit 0 on success and are killed at chosen moments
// by the tests.
#include "core/Global.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"
#include "store/Repair.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // each line out as soon as it is printed
    const QByteArray mode = argc > 2 ? argv[1] : "";
    const QString file = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    Msg::setScripted(true);
    std::printf("started\n");
    if (mode == "create")
        return CreateDatabase(file) == 0 ? 0 : 2;
    if (mode != "compact")
        return 1;
    gstrDataPath = QFileInfo(file).absolutePath() + QLatin1Char('/');
    subCompactDatabase();
    gdbMain.close();
    return gbolRepairDone ? 0 : 2;
}
