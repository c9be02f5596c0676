// import_helper <database> <file>: runs the import wizard of the console on
// <file> against <database>, as the administrator would with the columns
// User ID, User Name, Phone Number and Comma. Prints "progress <lines>" as
// the run's bar moves, and "done <users>" at its end. The test kills it
// in the middle.
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "import/frmImport01.h"
#include "import/frmImport02.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: import_helper <database> <file>\n");
        return 2;
    }
    Msg::setScripted(true);
    gdbMain = Database::open(QString::fromLocal8Bit(argv[1]));
    ImportFilePath = QString::fromLocal8Bit(argv[2]);
    DialogRegistry::registerAvailableWindows();
    frmImport02::setProgressObserver([](qint64 lines) {
        std::printf("progress %lld\n", static_cast<long long>(lines));
        std::fflush(stdout);
    });
    Modal::setHandler([](QDialog *d) {
        if (auto *first = qobject_cast<frmImport01 *>(d))
            first->cmdButtons_Click(0);
        else if (auto *second = qobject_cast<frmImport02 *>(d))
            second->Form_Activate();
    });
    DialogRegistry::showModal(QStringLiteral("frmImport01"), nullptr);
    std::printf("done %lld\n", gdbMain.scalar(QStringLiteral("SELECT count(*) FROM EmployeeTable")).toLongLong());
    std::fflush(stdout);
    gdbMain.close();
    return 0;
}
