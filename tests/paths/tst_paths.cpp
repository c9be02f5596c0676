// The two database path dialogs and the folder browser, driven offscreen
// against real databases in a share folder mapped as \\TESTSRV\SHARE\.
#include "core/basGetFolder.h"
#include "core/frmDataPath.h"
#include "core/frmLocate.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
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
#include <QTest>

#include <memory>

namespace {

const QString Share = QStringLiteral("\\\\TESTSRV\\SHARE\\");
// Messages as "title|text".
const QString UncMessage = "TAVELLO - Invalid UNC|You have not entered a valid UNC path. A UNC path must begin with \" \\\\ \"";
const QString Not2005 = QStringLiteral("Not a valid 2005 Tavello Database|Error: This is NOT a 2005 Tavello database.");
const QString NotFound = "TAVELLO - tavello.mdb database not found.|Cannot locate a valid TAVELLO database at the UNC path specified. "
                         "The path may be invalid or the location may be currently unavailable.";
const QString Invalid = QStringLiteral("tavello.mdb Not Found|Invalid database file selected");
const QString Absent = QStringLiteral("<absent>");

QStringList shown()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + "|" + s.text;
    return out;
}

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A board database at `localFile`: "2005", "2003", "none", "empty settings"
// (no settings row), "earlier 2005" (from before AdminFontSizeDisplay existed).
void prepare(const QString &localFile, const QString &content)
{
    if (content == "none")
        return;
    QVERIFY(QDir().mkpath(QFileInfo(localFile).absolutePath()));
    QCOMPARE(CreateDatabase(localFile), 0);
    Database db = Database::open(localFile);
    db.execute("UPDATE GlobalSettingsTable SET DatabaseVersion = ?", {content == "2003" ? 2003 : 2005});
    if (content == "earlier 2005")
        db.dropColumn("AdminSettingsTable", "AdminFontSizeDisplay");
    else if (content == "empty settings")
        db.execute("DELETE FROM GlobalSettingsTable");
}

std::unique_ptr<QDialog> shownDialog(const QString &kind)
{
    std::unique_ptr<QDialog> d(kind == "frmDataPath" ? static_cast<QDialog *>(new frmDataPath) : new frmLocate);
    d->show();
    QApplication::setActiveWindow(d.get());
    if (!QTest::qWaitForWindowExposed(d.get()))
        qFatal("dialog not exposed");
    return d;
}

}  // namespace

class TestPaths : public QObject {
    Q_OBJECT

    QStringList m_modalDialogs;

private slots:
    // No test expects another dialog on top: one that appears is recorded
    // and closed instead of waiting for a user.
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
        QCOMPARE(dlg.findChild<QLabel *>("lblCurrentPath")->text(), shown);
    }

    void ok_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("content");  // see prepare()
        QTest::addColumn<QString>("folder");   // where, relative to the share ("" = share root); <program>: beside the program
        QTest::addColumn<QString>("typed");    // <share> = the local share folder
        QTest::addColumn<QString>("field");    // the field after OK
        QTest::addColumn<QString>("stored");   // DataPath afterwards; <absent>: ini untouched
        QTest::addColumn<QString>("message");  // the only message, if any; <...>: left that way, no message

        const QString d = "frmDataPath", l = "frmLocate";
        QTest::newRow("DataPath drive letter") << d << "2005" << "" << "  G:\\Apps\\Tavello " << "G:\\Apps\\Tavello\\" << Absent << UncMessage;
        QTest::newRow("DataPath local folder") << d << "2005" << "" << "<share>" << "<share>\\" << Absent << UncMessage;
        QTest::newRow("DataPath one backslash") << d << "2005" << "" << "\\TESTSRV\\SHARE\\" << "\\TESTSRV\\SHARE\\" << Absent << UncMessage;
        QTest::newRow("DataPath share root, backslash added") << d << "2005" << "" << "\\\\TESTSRV\\SHARE" << Share << Share << "";
        QTest::newRow("DataPath stored as typed") << d << "2005" << "" << " \\\\testsrv\\share\\ " << "\\\\testsrv\\share\\" << "\\\\testsrv\\share\\" << "";
        QTest::newRow("DataPath sub-folder, earlier release")
            << d << "earlier 2005" << "Apps/Tavello" << Share + "Apps\\Tavello" << Share + "Apps\\Tavello\\" << Share + "Apps\\Tavello\\" << "";
        QTest::newRow("DataPath 2003 database") << d << "2003" << "" << Share << Share << Absent << Not2005;
        QTest::newRow("DataPath no database") << d << "none" << "" << Share << Share << Absent << Not2005;
        QTest::newRow("DataPath no settings row") << d << "empty settings" << "" << Share << Share << Absent << Not2005;
        // Nothing lies beside the program, whatever the share holds.
        QTest::newRow("DataPath empty field, none beside the program") << d << "2005" << "" << "  " << "" << Absent << Not2005;
        // The program's own folder is kept as an empty value, however it is named.
        QTest::newRow("DataPath program's UNC name") << d << "2005" << "<program>" << "\\\\TESTSRV\\APPS\\" << "\\\\TESTSRV\\APPS\\" << "" << "";
        QTest::newRow("DataPath program's name, other case") << d << "2005" << "<program>" << "\\\\testsrv\\apps" << "\\\\testsrv\\apps\\" << "" << "";
        QTest::newRow("DataPath empty field, program's database") << d << "2005" << "<program>" << "   " << "" << "" << "";
        // Readers of the ini keep 199 characters: a longer path would be read back cut.
        const QString segment(62, QChar('d'));  // 16 + 3 x 63 = 205 characters
        const QString deep = Share + segment + "\\" + segment + "\\" + segment + "\\";
        QTest::newRow("DataPath too long for the ini")
            << d << "2005" << segment + "/" + segment + "/" + segment << deep << deep << Absent
            << "TAVELLO - Database Path|The path " + deep + " is longer than 199 characters and cannot be kept in tavello.ini. "
               "Please choose a shorter path.";

        QTest::newRow("Locate drive letter") << l << "2005" << "" << "g:\\apps" << "G:\\APPS\\" << Absent << UncMessage;
        QTest::newRow("Locate local folder") << l << "2005" << "" << "<share>" << "<SHARE>\\" << Absent << UncMessage;
        QTest::newRow("Locate empty") << l << "2005" << "" << "   " << "\\" << Absent << UncMessage;
        QTest::newRow("Locate capitals, backslash added") << l << "2005" << "" << " \\\\testsrv\\share " << Share << Share << "";
        QTest::newRow("Locate capital sub-folder") << l << "2005" << "DATA" << "\\\\TestSrv\\Share\\data\\" << Share + "DATA\\" << Share + "DATA\\" << "";
        QTest::newRow("Locate only an open is tested") << l << "2003" << "" << Share << Share << Share << "";
        // Names below a share are blind to case, as on the file servers.
        QTest::newRow("Locate lower-case sub-folder reached in capitals") << l << "2005" << "data" << Share + "data" << Share + "DATA\\" << Share + "DATA\\" << "";
        QTest::newRow("Locate no database") << l << "none" << "" << Share << Share << Absent << NotFound;
        for (const QString &kind : {d, l})
            for (const QString how : {"<Cancel>", "<Escape>", "<close box>"})
                QTest::newRow(qPrintable(kind + " " + how)) << kind << "2005" << "" << Share << Share << Absent << how;
    }
    void ok()
    {
        QFETCH(QString, kind);
        QFETCH(QString, content);
        QFETCH(QString, folder);
        QFETCH(QString, typed);
        QFETCH(QString, field);
        QFETCH(QString, stored);
        QFETCH(QString, message);
        TestSupport::Site site;
        // The program folder mapped as a share of its own, so that it has a UNC name.
        QVERIFY(IniFile::writeKey(site.iniFile(), "Shares", "\\\\TESTSRV\\APPS", site.programFolder()));
        gstrAppPath = UncPath::withTrailingSeparator(UncPath::toUnc(site.programFolder()));
        const QString file = folder == "<program>" ? site.programFolder() + "/tavello.mdb"
                                                   : site.local(folder.isEmpty() ? "tavello.mdb" : folder + "/tavello.mdb");
        prepare(file, content);
        typed.replace("<share>", site.shareFolder());
        field.replace("<share>", site.shareFolder()).replace("<SHARE>", site.shareFolder().toUpper());
        const QByteArray ini = fileBytes(site.iniFile());
        gbolIniFound = true;
        int refreshes = 0;
        frmDataPath::setStatusBarRefresh([&refreshes] { ++refreshes; });

        auto dlg = shownDialog(kind);
        QLineEdit *txt = dlg->findChild<QLineEdit *>();  // the path field, the only one
        txt->setText(typed);
        // A refused form puts the focus back on the field, so it starts on
        // Browse; the other rows press Enter: OK is the default button.
        if (message == UncMessage) {
            dlg->findChild<QPushButton *>("cmdBrowse")->setFocus();
            dlg->findChild<QPushButton *>("cmdButtons_0")->click();
            QCOMPARE(txt->selectedText(), field);
            QCOMPARE(dlg->focusWidget(), txt);
        } else if (message == "<Cancel>") {
            dlg->findChild<QPushButton *>("cmdButtons_1")->click();
        } else if (message == "<Escape>") {
            QTest::keyClick(txt, Qt::Key_Escape);
        } else if (message == "<close box>") {
            dlg->close();
        } else {
            QTest::keyClick(txt, Qt::Key_Return);
        }
        frmDataPath::setStatusBarRefresh({});

        const bool accepted = message.isEmpty(), left = message.startsWith('<');
        QCOMPARE(shown(), accepted || left ? QStringList() : QStringList{message});
        QCOMPARE(txt->text(), field);
        if (stored == Absent)
            QCOMPARE(fileBytes(site.iniFile()), ini);
        else
            QCOMPARE(IniFile::readKey(site.iniFile(), "DataPath", "DataPath", Absent), stored);
        QCOMPARE(dlg->isVisible(), !accepted && !left);
        if (!dlg->isVisible())
            QCOMPARE(dlg->result(), int(accepted ? QDialog::Accepted : QDialog::Rejected));
        if (kind == "frmLocate") {
            QCOMPARE(gbolIniFound, accepted);  // cleared at load, set only by a saved path
            QVERIFY(!gdbMain.isOpen());        // the test open leaves nothing behind
            return;
        }
        QCOMPARE(gbolDataPathSaved, accepted);
        QCOMPARE(refreshes, accepted ? 1 : 0);
        if (message == UncMessage || left)
            QVERIFY(!gdbMain.isOpen());
        if (accepted) {
            QCOMPARE(gstrDataPath, stored.isEmpty() ? gstrAppPath : stored);
            QCOMPARE(gdbMain.localPath(), QFileInfo(file).absoluteFilePath());
            gdbMain.close();
            QVERIFY(Database::open(file).fieldNames("AdminSettingsTable").contains("AdminFontSizeDisplay"));
        }
    }

    // The file checked by the validity open is gone when the path is saved.
    void fileGoneAtSave_data()
    {
        QTest::addColumn<bool>("folderInItsPlace");
        QTest::addColumn<QString>("message");
        QTest::newRow("53 file not found")
            << false << "Database Not Found|The tavello.mdb file could not be found at the requested directory '" + Share + "Board\\'.";
        QTest::newRow("other error") << true << "TAVELLO - Database Path|Path/File access error";
    }
    void fileGoneAtSave()
    {
        QFETCH(bool, folderInItsPlace);
        QFETCH(QString, message);
        TestSupport::Site site;
        prepare(site.local("Board/tavello.mdb"), "2005");
        const QByteArray ini = fileBytes(site.iniFile());
        auto dlg = shownDialog("frmDataPath");
        QVERIFY(PathSelection::holds2005Database(Share + "Board\\"));
        QVERIFY(QFile::remove(site.local("Board/tavello.mdb")));
        if (folderInItsPlace)
            QVERIFY(QDir().mkpath(site.local("Board/tavello.mdb")));

        static_cast<frmDataPath *>(dlg.get())->savePath(Share + "Board\\");

        QCOMPARE(shown(), QStringList{message});
        QVERIFY(!dlg->isVisible());  // unloaded
        QCOMPARE(dlg->result(), int(QDialog::Rejected));
        QCOMPARE(fileBytes(site.iniFile()), ini);
        QVERIFY(!gbolDataPathSaved);
    }

    void browse_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("answer");   // the file chosen; "" = cancelled; <share>/<program> = local folders
        QTest::addColumn<QString>("current");  // the database at gstrDataPath: "2005" or "2003"
        QTest::addColumn<QString>("field");    // the field afterwards
        QTest::addColumn<QStringList>("messages");

        const QString d = "frmDataPath", l = "frmLocate";
        QTest::newRow("DataPath: UNC file") << d << Share + "tavello.mdb" << "2005" << Share << QStringList();
        QTest::newRow("DataPath: name in capitals") << d << Share + "Apps\\TAVELLO.MDB" << "2005" << Share + "Apps\\" << QStringList();
        QTest::newRow("DataPath: file under the mounted share") << d << "<share>/Apps/tavello.mdb" << "2005" << Share + "Apps\\" << QStringList();
        QTest::newRow("DataPath: current database tested, not the chosen one")
            << d << Share + "Apps\\tavello.mdb" << "2003" << Share + "Apps\\" << QStringList{Not2005};
        QTest::newRow("DataPath: other file") << d << Share + "tavello.bak" << "2005" << "" << QStringList{Invalid};
        QTest::newRow("DataPath: local file") << d << "<program>/tavello.mdb" << "2005" << ""
                                              << QStringList{" TAVELLO Pro 2006-07D (Admin) - |<program>/ is not a UNC path. Please reselect."};
        QTest::newRow("DataPath: cancelled") << d << "" << "2005" << "" << QStringList();
        QTest::newRow("Locate: UNC file") << l << Share + "tavello.mdb" << "2005" << "" << QStringList{Invalid};
        QTest::newRow("Locate: name in capitals") << l << Share + "TAVELLO.MDB" << "2005" << "" << QStringList{Invalid};
    }
    void browse()
    {
        QFETCH(QString, kind);
        QFETCH(QString, answer);
        QFETCH(QString, current);
        QFETCH(QString, field);
        QFETCH(QStringList, messages);
        TestSupport::Site site;
        site.useShareAsDataPath();
        prepare(site.local("tavello.mdb"), current);
        answer.replace("<share>", site.shareFolder()).replace("<program>", site.programFolder());
        messages.replaceInStrings("<program>", site.programFolder());
        const QByteArray ini = fileBytes(site.iniFile());

        auto dlg = shownDialog(kind);
        auto *cancel = dlg->findChild<QPushButton *>("cmdButtons_1");
        cancel->setFocus();
        FileDialogs::queueAnswers({answer});
        dlg->findChild<QPushButton *>("cmdBrowse")->click();

        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked[0].kind, QString("file"));
        QCOMPARE(asked[0].filter.toLower(), QString("tavello database|tavello.mdb"));
        QCOMPARE(asked[0].initialFolder, QString("::{208D2C60-3AEA-1069-A2D7-08002B30309D}"));  // the network places
        QLineEdit *txt = dlg->findChild<QLineEdit *>();
        QCOMPARE(txt->text(), field);
        QCOMPARE(shown(), messages);
        // A local file sends the user back to the field; otherwise the focus stays put.
        QCOMPARE(dlg->focusWidget(), answer.startsWith(site.programFolder()) ? static_cast<QWidget *>(txt) : cancel);
        // The validity test runs only when the field was filled.
        QCOMPARE(gdbMain.isOpen(), !field.isEmpty());
        QVERIFY(dlg->isVisible());
        QCOMPARE(fileBytes(site.iniFile()), ini);
    }

    void browseForFolder_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("answer");  // <share> = the local share folder
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("asked");  // the folder dialog's prompt and start folder
        QTest::newRow("cancelled") << "Photos" << "" << "" << "" << "Photos|";
        QTest::newRow("default prompt") << "" << "" << "<share>/Photos" << Share + "Photos" << "Please select a folder:|";
        QTest::newRow("UNC start folder preselected") << "Photos" << Share + "Photos\\" << "<share>/Photos/2006" << Share + "Photos\\2006"
                                                      << "Photos|<share>/Photos/";
        QTest::newRow("cut at the NUL") << "Photos" << "" << QString("<share>/Ph") + QChar(u'\0') + "junk" << Share + "Ph" << "Photos|";
    }
    void browseForFolder()
    {
        QFETCH(QString, prompt);
        QFETCH(QString, start);
        QFETCH(QString, answer);
        QFETCH(QString, result);
        QFETCH(QString, asked);
        TestSupport::Site site;
        QVERIFY(QDir().mkpath(site.local("Photos/2006")));
        for (QString *s : {&answer, &result, &asked})
            s->replace("<share>", site.shareFolder());
        FileDialogs::queueAnswers({answer});
        QCOMPARE(BrowseForFolder(nullptr, prompt, start), result);
        const QList<FileDialogs::Asked> dialogs = FileDialogs::transcript();
        QCOMPARE(dialogs.size(), 1);
        QCOMPARE(dialogs[0].kind + "|" + dialogs[0].title + "|" + dialogs[0].initialFolder, "folder|" + asked);
    }
};

QTEST_MAIN(TestPaths)
#include "tst_paths.moc"
