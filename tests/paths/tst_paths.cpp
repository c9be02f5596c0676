// The two database path dialogs and the folder browser, driven offscreen
// against real databases in a share folder mapped as \\TESTSRV\SHARE\.
#include "core/basGetFolder.h"
#include "core/frmDataPath.h"
#include "core/frmLocate.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/Help.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/UncPath.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTest>

#include <memory>

namespace {

const QString Share = QStringLiteral("\\\\TESTSRV\\SHARE\\");
const QString UncMessage = QStringLiteral("You have not entered a valid UNC path. A UNC path must begin with \" \\\\ \"");
const QString Not2005 = QStringLiteral("Error: This is NOT a 2005 Tavello database.");
const QString NotFound = QStringLiteral("Cannot locate a valid TAVELLO database at the UNC path specified. "
                                        "The path may be invalid or the location may be currently unavailable.");
const QString Absent = QStringLiteral("<absent>");

QStringList texts()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.text;
    return out;
}

QStringList titles()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title;
    return out;
}

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString dataPathIn(const TestSupport::Site &site)
{
    return IniFile::readKey(site.iniFile(), "DataPath", "DataPath", Absent);
}

// A board database at `localFile` whose GlobalSettingsTable says `version`.
void makeDatabase(const QString &localFile, int version = 2005)
{
    QVERIFY(QDir().mkpath(QFileInfo(localFile).absolutePath()));
    QCOMPARE(CreateDatabase(localFile), 0);
    Database db = Database::open(localFile);
    db.execute("UPDATE GlobalSettingsTable SET DatabaseVersion = ?", {version});
}

// Lays out the share for a row: "2005", "2003", "none", "empty settings",
// "earlier 2005" (a 2005 file from before AdminFontSizeDisplay existed).
void prepare(const QString &localFile, const QString &content)
{
    if (content == "2005")
        makeDatabase(localFile, 2005);
    else if (content == "2003")
        makeDatabase(localFile, 2003);
    else if (content == "earlier 2005") {
        makeDatabase(localFile, 2005);
        Database db = Database::open(localFile);
        db.dropColumn("AdminSettingsTable", "AdminFontSizeDisplay");
    } else if (content == "empty settings") {
        makeDatabase(localFile, 2005);
        Database db = Database::open(localFile);
        db.execute("DELETE FROM GlobalSettingsTable");
    }
}

// Maps the program folder as a share of its own, so that it has a UNC name.
void giveProgramFolderAUncName(const TestSupport::Site &site)
{
    QVERIFY(IniFile::writeKey(site.iniFile(), "Shares", "\\\\TESTSRV\\APPS", site.programFolder()));
    gstrAppPath = UncPath::withTrailingSeparator(UncPath::toUnc(site.programFolder()));
    QCOMPARE(gstrAppPath, QString("\\\\TESTSRV\\APPS\\"));
}

template <class T>
T *control(QWidget *dialog, const QString &name)
{
    T *w = dialog->findChild<T *>(name);
    if (!w)
        qFatal("control %s missing", qPrintable(name));
    return w;
}

QDialog *makeDialog(const QString &kind)
{
    if (kind == "frmDataPath")
        return new frmDataPath;
    return new frmLocate;
}

QString fieldName(const QString &kind)
{
    return kind == "frmDataPath" ? QStringLiteral("txtNewPath") : QStringLiteral("txtUNCpath");
}

void showActive(QWidget *w)
{
    w->show();
    QApplication::setActiveWindow(w);
    QVERIFY(QTest::qWaitForWindowExposed(w));
}

}  // namespace

class TestPaths : public QObject {
    Q_OBJECT

    QStringList m_modalDialogs;

private slots:
    // No test here expects another dialog on top: one that appears (the
    // start-up dispatch asking for a path again, say) is recorded and closed
    // instead of waiting for a user.
    void init()
    {
        m_modalDialogs.clear();
        Modal::setHandler([this](QDialog *d) {
            m_modalDialogs << QString::fromLatin1(d->metaObject()->className());
            d->reject();
        });
    }
    void cleanup()
    {
        Modal::setHandler({});
        QCOMPARE(m_modalDialogs, QStringList());
    }

    // ------------------------------------------------------------ loading

    void dataPathLoad_data()
    {
        QTest::addColumn<QString>("ini");  // "missing", or the DataPath value
        QTest::addColumn<QString>("shown");
        QTest::newRow("UNC value") << Share << " " + Share;
        QTest::newRow("empty value") << "" << " ";
        QTest::newRow("no ini") << "missing" << " tavello.ini file MISSING! ";
    }
    void dataPathLoad()
    {
        QFETCH(QString, ini);
        QFETCH(QString, shown);
        TestSupport::Site site;
        if (ini == "missing")
            QVERIFY(QFile::remove(site.iniFile()));
        else
            QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", ini));
        gbolDataPathSaved = true;
        frmDataPath dlg;
        QVERIFY(!gbolDataPathSaved);
        QCOMPARE(control<QLabel>(&dlg, "lblCurrentPath")->text(), shown);
    }

    // Caption, place on the screen, tab order, and Enter on OK.
    void windowBehaviour_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("caption");
        QTest::newRow("frmDataPath") << "frmDataPath" << " TAVELLO Pro 2006-07D (Admin) - Database Path";
        QTest::newRow("frmLocate") << "frmLocate" << " TAVELLO Pro 2006-07D (Admin) - Locate Database";
    }
    void windowBehaviour()
    {
        QFETCH(QString, kind);
        QFETCH(QString, caption);
        TestSupport::Site site;
        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        QCOMPARE(dlg->windowTitle(), caption);

        const QRect frame = dlg->frameGeometry();
        const QRect screen = dlg->screen()->availableGeometry();
        // A few pixels of window frame the platform may or may not count.
        QVERIFY2((frame.center() - screen.center()).manhattanLength() <= 6,
                 qPrintable(QString("frame centre %1,%2 screen centre %3,%4")
                                .arg(frame.center().x()).arg(frame.center().y())
                                .arg(screen.center().x()).arg(screen.center().y())));
        QVERIFY(frame.width() >= 380 && frame.width() <= screen.width());

        QStringList order;
        QWidget *w = control<QLineEdit>(dlg.get(), fieldName(kind));
        QCOMPARE(dlg->focusWidget(), w);
        for (int i = 0; i < 5; ++i) {
            order << w->objectName();
            do
                w = w->nextInFocusChain();
            while (!(w->focusPolicy() & Qt::TabFocus) || !w->isVisible());
        }
        QCOMPARE(order, (QStringList{fieldName(kind), "cmdBrowse", "cmdButtons_0", "cmdButtons_1", "cmdButtons_2"}));

        // Enter in the field presses OK: the drive-letter path is refused.
        auto *field = control<QLineEdit>(dlg.get(), fieldName(kind));
        field->setText("G:\\Apps");
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(texts(), QStringList{UncMessage});
        QVERIFY(dlg->isVisible());
    }

    // -------------------------------------------------- OK: refused paths

    void okRefusesWhatIsNoUncPath_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("field");  // the field afterwards; "<share>" = the local share folder
        QTest::newRow("frmDataPath drive letter") << "frmDataPath" << "  G:\\Apps\\Tavello " << "G:\\Apps\\Tavello\\";
        QTest::newRow("frmDataPath local folder") << "frmDataPath" << "<share>" << "<share>\\";
        QTest::newRow("frmDataPath one backslash") << "frmDataPath" << "\\TESTSRV\\SHARE\\" << "\\TESTSRV\\SHARE\\";
        QTest::newRow("frmLocate drive letter") << "frmLocate" << "g:\\apps" << "G:\\APPS\\";
        QTest::newRow("frmLocate local folder") << "frmLocate" << "<share>" << "<SHARE>\\";
        QTest::newRow("frmLocate empty") << "frmLocate" << "   " << "\\";
    }
    void okRefusesWhatIsNoUncPath()
    {
        QFETCH(QString, kind);
        QFETCH(QString, typed);
        QFETCH(QString, field);
        TestSupport::Site site;
        // A good database behind the local folder: only the form of the path refuses it.
        makeDatabase(site.local("tavello.mdb"));
        typed.replace("<share>", site.shareFolder());
        field.replace("<share>", site.shareFolder()).replace("<SHARE>", site.shareFolder().toUpper());
        const QByteArray ini = fileBytes(site.iniFile());
        gbolIniFound = true;

        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        auto *txt = control<QLineEdit>(dlg.get(), fieldName(kind));
        txt->setText(typed);
        control<QPushButton>(dlg.get(), "cmdBrowse")->setFocus();
        control<QPushButton>(dlg.get(), "cmdButtons_0")->click();

        QCOMPARE(texts(), QStringList{UncMessage});
        QCOMPARE(titles(), QStringList{"TAVELLO - Invalid UNC"});
        QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Exclamation);
        QCOMPARE(txt->text(), field);
        QCOMPARE(txt->selectedText(), field);
        QCOMPARE(dlg->focusWidget(), txt);
        QVERIFY(dlg->isVisible());
        QCOMPARE(fileBytes(site.iniFile()), ini);
        QVERIFY(!gbolDataPathSaved);
        QVERIFY(!gdbMain.isOpen());
        if (kind == "frmLocate")
            QVERIFY(!gbolIniFound);  // cleared at load, set only by a saved path
    }

    // -------------------------------------------------- OK in frmDataPath

    void dataPathOk_data()
    {
        QTest::addColumn<QString>("content");   // what lies in the typed folder
        QTest::addColumn<QString>("folder");    // where, relative to the share ("" = share root)
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("field");     // the field after OK
        QTest::addColumn<QString>("stored");    // DataPath afterwards; <absent> = not written
        QTest::addColumn<QString>("message");   // the only message, if any

        QTest::newRow("share root, backslash added") << "2005" << "" << "\\\\TESTSRV\\SHARE" << Share << Share << "";
        QTest::newRow("stored as typed") << "2005" << "" << " \\\\testsrv\\share\\ " << "\\\\testsrv\\share\\"
                                         << "\\\\testsrv\\share\\" << "";
        QTest::newRow("sub-folder, earlier release") << "earlier 2005" << "Apps/Tavello" << "\\\\TESTSRV\\SHARE\\Apps\\Tavello"
                                    << Share + "Apps\\Tavello\\" << Share + "Apps\\Tavello\\" << "";
        QTest::newRow("2003 database") << "2003" << "" << Share << Share << Absent << Not2005;
        QTest::newRow("no database") << "none" << "" << Share << Share << Absent << Not2005;
        QTest::newRow("no settings row") << "empty settings" << "" << Share << Share << Absent << Not2005;
        // Nothing lies beside the program, whatever the share holds.
        QTest::newRow("empty field, no database beside the program") << "2005" << "" << "  " << "" << Absent << Not2005;
        // Readers of the ini keep 199 characters: a longer path would be read back cut.
        const QString segment(62, QChar('d'));  // 16 + 3 x 63 = 205 characters
        const QString deep = Share + segment + "\\" + segment + "\\" + segment + "\\";
        QTest::newRow("too long for the ini")
            << "2005" << segment + "/" + segment + "/" + segment << deep << deep << Absent
            << "The path " + deep + " is longer than 199 characters and cannot be kept in tavello.ini. Please choose a shorter path.";
    }
    void dataPathOk()
    {
        QFETCH(QString, content);
        QFETCH(QString, folder);
        QFETCH(QString, typed);
        QFETCH(QString, field);
        QFETCH(QString, stored);
        QFETCH(QString, message);
        TestSupport::Site site;
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Absent));
        const QString file = site.local(folder.isEmpty() ? "tavello.mdb" : folder + "/tavello.mdb");
        prepare(file, content);
        int refreshes = 0;
        frmDataPath::setStatusBarRefresh([&refreshes] { ++refreshes; });

        frmDataPath dlg;
        showActive(&dlg);
        control<QLineEdit>(&dlg, "txtNewPath")->setText(typed);
        control<QPushButton>(&dlg, "cmdButtons_0")->click();
        frmDataPath::setStatusBarRefresh({});

        QCOMPARE(control<QLineEdit>(&dlg, "txtNewPath")->text(), field);
        QCOMPARE(dataPathIn(site), stored);
        QCOMPARE(texts(), message.isEmpty() ? QStringList() : QStringList{message});
        if (message.isEmpty()) {
            QVERIFY(gbolDataPathSaved);
            QVERIFY(!dlg.isVisible());
            QCOMPARE(dlg.result(), int(QDialog::Accepted));
            QCOMPARE(gstrDataPath, stored);
            QCOMPARE(gstrDatabaseFile, stored + "tavello.mdb");
            QVERIFY(gdbMain.isOpen());
            QCOMPARE(gdbMain.localPath(), QFileInfo(file).absoluteFilePath());
            QCOMPARE(refreshes, 1);
            gdbMain.close();
            QVERIFY(Database::open(file).fieldNames("AdminSettingsTable").contains("AdminFontSizeDisplay"));
        } else {
            if (message == Not2005) {
                QCOMPARE(Msg::transcript().first().title, QString("Not a valid 2005 Tavello Database"));
                QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Information);
            }
            QVERIFY(!gbolDataPathSaved);
            QVERIFY(dlg.isVisible());
            QCOMPARE(refreshes, 0);
        }
    }

    // The program's own folder is kept as an empty value, however it is named.
    void programFolderStoredEmpty_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::newRow("its UNC name") << "\\\\TESTSRV\\APPS\\";
        QTest::newRow("UNC name in other case, no backslash") << "\\\\testsrv\\apps";
        QTest::newRow("empty field") << "   ";
    }
    void programFolderStoredEmpty()
    {
        QFETCH(QString, typed);
        TestSupport::Site site;
        giveProgramFolderAUncName(site);
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", Share));
        makeDatabase(site.programFolder() + "/tavello.mdb");

        frmDataPath dlg;
        showActive(&dlg);
        control<QLineEdit>(&dlg, "txtNewPath")->setText(typed);
        control<QPushButton>(&dlg, "cmdButtons_0")->click();

        QCOMPARE(texts(), QStringList());
        QCOMPARE(dataPathIn(site), QString());
        QVERIFY(gbolDataPathSaved);
        QVERIFY(!dlg.isVisible());
        QCOMPARE(gstrDataPath, gstrAppPath);
        QCOMPARE(gdbMain.localPath(), QFileInfo(site.programFolder() + "/tavello.mdb").absoluteFilePath());
    }

    // The file checked by the validity open is gone when the path is saved.
    void fileGoneAtSave_data()
    {
        QTest::addColumn<QString>("gone");     // "file", "replaced by a folder"
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::newRow("53 file not found")
            << "file" << "The tavello.mdb file could not be found at the requested directory '" + Share + "Board\\'."
            << "Database Not Found";
        QTest::newRow("other error") << "replaced by a folder" << "Path/File access error" << "TAVELLO - Database Path";
    }
    void fileGoneAtSave()
    {
        QFETCH(QString, gone);
        QFETCH(QString, message);
        QFETCH(QString, title);
        TestSupport::Site site;
        makeDatabase(site.local("Board/tavello.mdb"));
        const QByteArray ini = fileBytes(site.iniFile());
        frmDataPath dlg;
        showActive(&dlg);
        control<QLineEdit>(&dlg, "txtNewPath")->setText(Share + "Board\\");
        QVERIFY(PathSelection::holds2005Database(Share + "Board\\"));
        QVERIFY(QFile::remove(site.local("Board/tavello.mdb")));
        if (gone == "replaced by a folder")
            QVERIFY(QDir().mkpath(site.local("Board/tavello.mdb")));

        dlg.savePath(Share + "Board\\");

        QCOMPARE(texts(), QStringList{message});
        QCOMPARE(titles(), QStringList{title});
        QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Exclamation);
        QVERIFY(!dlg.isVisible());  // unloaded
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
        QCOMPARE(fileBytes(site.iniFile()), ini);
        QVERIFY(!gbolDataPathSaved);
    }

    // ---------------------------------------------------- OK in frmLocate

    void locateOk_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");  // <absent>: refused with the not-found message
        QTest::newRow("capitals, backslash added") << "2005" << "" << " \\\\testsrv\\share " << Share;
        QTest::newRow("capital sub-folder") << "2005" << "DATA" << "\\\\TestSrv\\Share\\data\\" << Share + "DATA\\";
        QTest::newRow("only an open is tested") << "2003" << "" << Share << Share;
        QTest::newRow("lower-case sub-folder cannot be reached") << "2005" << "data" << Share + "data" << Absent;
        QTest::newRow("no database") << "none" << "" << Share << Absent;
    }
    void locateOk()
    {
        QFETCH(QString, content);
        QFETCH(QString, folder);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        TestSupport::Site site;
        prepare(site.local(folder.isEmpty() ? "tavello.mdb" : folder + "/tavello.mdb"), content);
        frmLocate dlg;
        showActive(&dlg);
        auto *txt = control<QLineEdit>(&dlg, "txtUNCpath");
        txt->setText(typed);
        control<QPushButton>(&dlg, "cmdButtons_0")->click();

        QString expectedField = typed.trimmed().toUpper();
        if (!expectedField.endsWith('\\'))
            expectedField += '\\';
        QCOMPARE(txt->text(), expectedField);
        QCOMPARE(dataPathIn(site), stored);
        QCOMPARE(gbolIniFound, stored != Absent);
        QCOMPARE(dlg.isVisible(), stored == Absent);
        if (stored == Absent) {
            QCOMPARE(texts(), QStringList{NotFound});
            QCOMPARE(titles(), QStringList{"TAVELLO - tavello.mdb database not found."});
            QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Exclamation);
        } else {
            QCOMPARE(texts(), QStringList());
            QCOMPARE(dlg.result(), int(QDialog::Accepted));
        }
        QVERIFY(!gdbMain.isOpen());  // the test open leaves nothing behind
    }

    // ------------------------------------------------------------- Browse

    void browse_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("answer");    // the file chosen; "" = cancelled; <share>/<program> = local folders
        QTest::addColumn<QString>("current");   // the database at gstrDataPath: "2005" or "2003"
        QTest::addColumn<QString>("field");     // the field afterwards
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("focusOnField");

        const QString invalid = "Invalid database file selected";
        QTest::newRow("DataPath: UNC file") << "frmDataPath" << Share + "tavello.mdb" << "2005" << Share
                                            << QStringList() << false;
        QTest::newRow("DataPath: name in capitals") << "frmDataPath" << Share + "Apps\\TAVELLO.MDB" << "2005"
                                                    << Share + "Apps\\" << QStringList() << false;
        QTest::newRow("DataPath: file under the mounted share") << "frmDataPath" << "<share>/Apps/tavello.mdb" << "2005"
                                                                << Share + "Apps\\" << QStringList() << false;
        QTest::newRow("DataPath: current database tested, not the chosen one")
            << "frmDataPath" << Share + "Apps\\tavello.mdb" << "2003" << Share + "Apps\\" << QStringList{Not2005} << false;
        QTest::newRow("DataPath: other file") << "frmDataPath" << Share + "tavello.bak" << "2005" << ""
                                              << QStringList{invalid} << false;
        QTest::newRow("DataPath: local file") << "frmDataPath" << "<program>/tavello.mdb" << "2005" << ""
                                              << QStringList{"<program>/ is not a UNC path. Please reselect."} << true;
        QTest::newRow("DataPath: cancelled") << "frmDataPath" << "" << "2005" << "" << QStringList() << false;
        QTest::newRow("Locate: UNC file") << "frmLocate" << Share + "tavello.mdb" << "2005" << ""
                                          << QStringList{invalid} << false;
        QTest::newRow("Locate: name in capitals") << "frmLocate" << Share + "TAVELLO.MDB" << "2005" << ""
                                                  << QStringList{invalid} << false;
    }
    void browse()
    {
        QFETCH(QString, kind);
        QFETCH(QString, answer);
        QFETCH(QString, current);
        QFETCH(QString, field);
        QFETCH(QStringList, messages);
        QFETCH(bool, focusOnField);
        TestSupport::Site site;
        site.useShareAsDataPath();
        makeDatabase(site.local("tavello.mdb"), current == "2005" ? 2005 : 2003);
        answer.replace("<share>", site.shareFolder()).replace("<program>", site.programFolder());
        messages.replaceInStrings("<program>", site.programFolder());
        const QByteArray ini = fileBytes(site.iniFile());

        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        auto *txt = control<QLineEdit>(dlg.get(), fieldName(kind));
        control<QPushButton>(dlg.get(), "cmdButtons_1")->setFocus();
        FileDialogs::queueAnswers({answer});
        control<QPushButton>(dlg.get(), "cmdBrowse")->click();

        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked[0].kind, QString("file"));
        QCOMPARE(asked[0].title, kind == "frmDataPath" ? QString("Locate TAVELLO Databases") : QString("Locate TAVELLO Database"));
        QCOMPARE(asked[0].filter, kind == "frmDataPath" ? QString("TAVELLO database|tavello.mdb") : QString("Tavello database|tavello.mdb"));
        QCOMPARE(asked[0].initialFolder, QString("::{208D2C60-3AEA-1069-A2D7-08002B30309D}"));

        QCOMPARE(txt->text(), field);
        QCOMPARE(texts(), messages);
        if (messages.value(0) == "Invalid database file selected") {
            QCOMPARE(titles(), QStringList{"tavello.mdb Not Found"});
            QCOMPARE(Msg::transcript().first().icon, Msg::Icon::Exclamation);
        }
        if (focusOnField)
            QCOMPARE(dlg->focusWidget(), txt);
        else
            QCOMPARE(dlg->focusWidget(), control<QPushButton>(dlg.get(), "cmdButtons_1"));
        // The validity test runs only when the field was filled.
        QCOMPARE(gdbMain.isOpen(), !field.isEmpty());
        QVERIFY(dlg->isVisible());
        QCOMPARE(fileBytes(site.iniFile()), ini);
    }

    // ---------------------------------------------------- leaving, hints, help

    void cancel_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("how");
        for (const QString kind : {"frmDataPath", "frmLocate"})
            for (const QString how : {"Cancel", "Escape", "close box"})
                QTest::newRow(qPrintable(kind + " " + how)) << kind << how;
    }
    void cancel()
    {
        QFETCH(QString, kind);
        QFETCH(QString, how);
        TestSupport::Site site;
        makeDatabase(site.local("tavello.mdb"));
        QVERIFY(IniFile::writeKey(site.iniFile(), "DataPath", "DataPath", ""));
        const QByteArray ini = fileBytes(site.iniFile());
        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        auto *txt = control<QLineEdit>(dlg.get(), fieldName(kind));
        txt->setText(Share);
        if (how == "Cancel")
            control<QPushButton>(dlg.get(), "cmdButtons_1")->click();
        else if (how == "Escape")
            QTest::keyClick(txt, Qt::Key_Escape);
        else
            dlg->close();
        QVERIFY(!dlg->isVisible());
        QCOMPARE(dlg->result(), int(QDialog::Rejected));
        QCOMPARE(fileBytes(site.iniFile()), ini);
        QVERIFY(!gbolDataPathSaved);
        if (kind == "frmLocate")
            QVERIFY(!gbolIniFound);
        QCOMPARE(texts(), QStringList());
        QVERIFY(!gdbMain.isOpen());
    }

    void hints_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("hint");
        QTest::newRow("DataPath OK") << "frmDataPath" << "cmdButtons_0" << " Press OK to Accept the current Path.";
        QTest::newRow("DataPath Cancel") << "frmDataPath" << "cmdButtons_1" << " Press Cancel to Exit without saving new Path.";
        QTest::newRow("DataPath Help") << "frmDataPath" << "cmdButtons_2" << " Display Help.";
        QTest::newRow("DataPath field") << "frmDataPath" << "txtNewPath" << " Example: \\\\SERVERNAME\\SHARENAME\\APPS\\TAVELLO\\";
        QTest::newRow("Locate OK") << "frmLocate" << "cmdButtons_0" << " Save UNC database path details into tavello.ini and Exit.";
        QTest::newRow("Locate Cancel") << "frmLocate" << "cmdButtons_1" << " Exit without saving UNC database path details.";
        QTest::newRow("Locate Help") << "frmLocate" << "cmdButtons_2" << " Display Help.";
    }
    void hints()
    {
        QFETCH(QString, kind);
        QFETCH(QString, control);
        QFETCH(QString, hint);
        TestSupport::Site site;
        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        auto *bar = ::control<QStatusBar>(dlg.get(), "StatusBar");
        auto *target = ::control<QWidget>(dlg.get(), control);

        QTest::mouseMove(target, target->rect().center());
        QTRY_COMPARE(bar->currentMessage(), hint);
        // Over the bare form, between the controls: cleared.
        QTest::mouseMove(dlg.get(), QPoint(3, 3));
        QTRY_COMPARE(bar->currentMessage(), QString());
        QTest::mouseMove(target, target->rect().center() + QPoint(1, 1));
        QTRY_COMPARE(bar->currentMessage(), hint);
        // Browse has no hint of its own: moving onto it changes nothing.
        auto *browse = ::control<QWidget>(dlg.get(), "cmdBrowse");
        QTest::mouseMove(browse, browse->rect().center());
        QTest::qWait(20);
        QCOMPARE(bar->currentMessage(), hint);
    }

    void helpShowsTheDialogsPage_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("frmDataPath") << "frmDataPath";
        QTest::newRow("frmLocate") << "frmLocate";
    }
    void helpShowsTheDialogsPage()
    {
        QFETCH(QString, kind);
        TestSupport::Site site;
        Help::install();
        std::unique_ptr<QDialog> dlg(makeDialog(kind));
        showActive(dlg.get());
        Help::showFor(nullptr);  // the contents page first, so the button must change it
        QCOMPARE(Help::lastPage(), QString("index"));
        control<QPushButton>(dlg.get(), "cmdButtons_2")->click();
        QCOMPARE(Help::lastPage(), kind);
        QVERIFY(dlg->isVisible());
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "HelpWindow")
                w->close();
    }

    // ------------------------------------------------------ folder browser

    void browseForFolder_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("answer");     // <share> = the local share folder
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("askedPrompt");
        QTest::addColumn<QString>("askedStart");
        QTest::newRow("cancelled") << "Photos" << "" << "" << "" << "Photos" << "";
        QTest::newRow("default prompt") << "" << "" << "<share>/Photos" << Share + "Photos" << "Please select a folder:" << "";
        QTest::newRow("UNC start folder preselected") << "Photos" << Share + "Photos\\" << "<share>/Photos/2006"
                                                      << Share + "Photos\\2006" << "Photos" << "<share>/Photos/";
        QTest::newRow("cut at the NUL") << "Photos" << "" << QString("<share>/Ph") + QChar(u'\0') + "junk"
                                        << Share + "Ph" << "Photos" << "";
    }
    void browseForFolder()
    {
        QFETCH(QString, prompt);
        QFETCH(QString, start);
        QFETCH(QString, answer);
        QFETCH(QString, result);
        QFETCH(QString, askedPrompt);
        QFETCH(QString, askedStart);
        TestSupport::Site site;
        QVERIFY(QDir().mkpath(site.local("Photos/2006")));
        for (QString *s : {&answer, &result, &askedStart})
            s->replace("<share>", site.shareFolder());
        FileDialogs::queueAnswers({answer});
        QCOMPARE(BrowseForFolder(nullptr, prompt, start), result);
        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked[0].kind, QString("folder"));
        QCOMPARE(asked[0].title, askedPrompt);
        QCOMPARE(asked[0].initialFolder, askedStart);
    }
};

QTEST_MAIN(TestPaths)
#include "tst_paths.moc"
