// The console started as a real process, for the tests of how a start ends:
//
//   startup_helper <program folder> [<path typed in the Database Path window>]
//
// Message boxes are answered with their first button, windows shown modally
// are cancelled; with a path given, the Database Path window gets it and OK.
// Each box ("box <title>|<text>", CR as \r) and window ("window <class>") is
// printed in the order shown. A console that comes up prints "up" and is
// closed the ordinary way. The exit code is the console's own.
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/UncPath.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <cstdio>

namespace {

qsizetype g_printed = 0;

void printNewBoxes()
{
    const QList<Msg::Shown> shown = Msg::transcript();
    for (; g_printed < shown.size(); ++g_printed) {
        QString text = shown[g_printed].text;
        text.replace(QLatin1Char('\r'), QLatin1String("\\r")).replace(QLatin1Char('\n'), QLatin1String("\\n"));
        std::printf("box %s|%s\n", qPrintable(shown[g_printed].title), qPrintable(text));
    }
}

}  // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (argc < 2)
        return 99;
    UncPath::setProgramFolder(QString::fromLocal8Bit(argv[1]));
    const QString typed = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    Msg::setScripted(true);
    FileDialogs::setScripted(true);
    Modal::setHandler([&](QDialog *dialog) {
        printNewBoxes();
        const QString name = QString::fromLatin1(dialog->metaObject()->className());
        std::printf("window %s\n", qPrintable(name));
        if (name == QLatin1String("frmDataPath") && !typed.isEmpty()) {
            dialog->findChild<QLineEdit *>(QStringLiteral("txtNewPath"))->setText(typed);
            dialog->findChild<QPushButton *>(QStringLiteral("cmdButtons_0"))->click();
        } else {
            dialog->reject();
        }
    });

    auto *window = new frmMain;
    QTimer::singleShot(0, [window] {
        if (window->load()) {
            printNewBoxes();
            std::printf("up\n");
            window->close();
        } else if (!gbolEnding) {
            endProcess();
        }
    });
    const int rc = app.exec();
    printNewBoxes();
    delete window;
    gdbMain.close();
    return rc;
}
