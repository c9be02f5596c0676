// Where tavello.ini and the default database live: the rule on real folders,
// and a start and a path change of the console in the user layout.
#include "console/frmMain.h"
#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/AppFolders.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "store/CreateDB.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString Share = QStringLiteral("\\\\TESTSRV\\SHARE\\");

bool touch(const QString &file)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile f(file);
    return f.open(QIODevice::WriteOnly);
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

}  // namespace

class TestAppFolders : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { AppFolders::reset(); }

    void rule_data()
    {
        QTest::addColumn<QStringList>("files");  // made under the root before the choice
        QTest::addColumn<QString>("exe");        // the executable's folder, relative to the root
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("portable");
        const QString entry = "usr/share/applications/" + AppFolders::applicationId() + ".desktop";
        QTest::newRow("build folder") << QStringList() << "build/src" << false << true;
        QTest::newRow("build folder with its ini") << QStringList{"build/src/tavello.ini"} << "build/src" << false << true;
        QTest::newRow("bin folder of an installed tree") << QStringList{entry} << "usr/bin" << false << false;
        QTest::newRow("same, path given untidily") << QStringList{entry} << "usr/./lib/../bin/" << false << false;
        QTest::newRow("installed, but an ini beside the program")
            << QStringList{entry, "usr/bin/tavello.ini"} << "usr/bin" << false << true;
        QTest::newRow("bin folder beside another program's entry")
            << QStringList{"usr/share/applications/org.example.Other.desktop"} << "usr/bin" << false << true;
        QTest::newRow("entry beside the folder, not below its parent")
            << QStringList{"usr/bin/share/applications/" + AppFolders::applicationId() + ".desktop"} << "usr/bin" << false << true;
        QTest::newRow("read-only folder") << QStringList() << "opt/tavello" << true << false;
        QTest::newRow("read-only folder with an ini") << QStringList{"opt/tavello/tavello.ini"} << "opt/tavello" << true << true;
    }
    void rule()
    {
        QFETCH(QStringList, files);
        QFETCH(QString, exe);
        QFETCH(bool, readOnly);
        QFETCH(bool, portable);
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath(exe));
        for (const QString &f : files)
            QVERIFY(touch(root.filePath(f)));
        const QString exeFolder = QDir::cleanPath(root.filePath(exe));
        QFile::Permissions before = QFile::permissions(exeFolder);
        if (readOnly) {
            QVERIFY(QFile::setPermissions(exeFolder, QFile::ReadOwner | QFile::ExeOwner));
            if (QFileInfo(exeFolder).isWritable() && !portable) {
                QFile::setPermissions(exeFolder, before);
                QSKIP("this account writes to read-only folders (root)");
            }
        }
        const AppFolders::Folders f = AppFolders::choose(root.filePath(exe), root.filePath("home/.config/"),
                                                         root.filePath("home/.local/share"));
        QFile::setPermissions(exeFolder, before);
        QCOMPARE(f.portable, portable);
        QCOMPARE(f.program, exeFolder);
        QCOMPARE(f.ini, portable ? exeFolder : root.filePath("home/.config/tavello-admin"));
        QCOMPARE(f.data, portable ? exeFolder : root.filePath("home/.local/share/tavello-admin"));
        QCOMPARE(UncPath::isUnc(f.data), false);
    }

    // The console started with its ini and database in the user's folders:
    // nothing is written beside the program.
    void startInUserFolders_data()
    {
        QTest::addColumn<QString>("dataPath");  // in the user's tavello.ini; "<none>" = no ini yet
        QTest::addColumn<bool>("onShare");      // the database it must come up on
        QTest::newRow("first start on a fresh account") << "<none>" << false;
        QTest::newRow("ini with an empty path") << "" << false;
        QTest::newRow("ini naming a share of its own [Shares]") << Share << true;
    }
    void startInUserFolders()
    {
        QFETCH(QString, dataPath);
        QFETCH(bool, onShare);
        TestSupport::Site site;
        QTemporaryDir home;
        const QString config = home.filePath(".config/tavello-admin"), data = home.filePath(".local/share/tavello-admin");
        QVERIFY(QDir().mkpath(config) && QDir().mkpath(data));
        QVERIFY(QFile::remove(site.iniFile()));
        AppFolders::set({site.programFolder(), config, data, false});
        const QString ini = config + "/tavello.ini";
        QCOMPARE(UncPath::iniFile(), ini);
        if (dataPath != "<none>") {
            QVERIFY(IniFile::writeKey(ini, "Shares", "\\\\TESTSRV\\SHARE", site.shareFolder()));
            QVERIFY(IniFile::writeKey(ini, "DataPath", "DataPath", dataPath));
        }
        if (onShare)
            QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        const QString db = onShare ? site.local("tavello.mdb") : data + "/tavello.mdb";
        {
            frmMain w;
            QVERIFY(w.load());
            QCOMPARE(gstrAppPath, data + "/");
            QCOMPARE(gstrDatabaseFile, onShare ? Share + "tavello.mdb" : data + "/tavello.mdb");
            QCOMPARE(w.userCountText(), QString(" 1 "));
            w.close();
        }
        QVERIFY(Msg::transcript().isEmpty());
        QCOMPARE(IniFile::readKey(ini, "DataPath", "DataPath", "<absent>"), dataPath == "<none>" ? QString() : dataPath);
        QCOMPARE(Database::open(db).scalar("SELECT count(*) FROM DueBackTable").toInt(), 27);
        QCOMPARE(entries(site.programFolder()), QStringList());
        QCOMPARE(entries(data), onShare ? QStringList() : QStringList{"tavello.mdb"});
    }

    // The Database Path dialog keeps the path in the user's ini; the data
    // folder, the user layout's "program's folder", is kept as an empty value.
    void dataPathDialogInUserFolders_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("a share") << Share << Share;
        QTest::newRow("the data folder itself") << "\\\\TESTSRV\\DATA\\" << "";
    }
    void dataPathDialogInUserFolders()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        TestSupport::Site site;
        QTemporaryDir home;
        const QString config = home.filePath("config"), data = home.filePath("data");
        QVERIFY(QDir().mkpath(config) && QDir().mkpath(data));
        QVERIFY(QFile::remove(site.iniFile()));
        AppFolders::set({site.programFolder(), config, data, false});
        const QString ini = config + "/tavello.ini";
        QVERIFY(IniFile::writeKey(ini, "Shares", "\\\\TESTSRV\\SHARE", site.shareFolder()));
        QVERIFY(IniFile::writeKey(ini, "Shares", "\\\\TESTSRV\\DATA", data));
        QVERIFY(IniFile::writeKey(ini, "DataPath", "DataPath", "\\\\TESTSRV\\NOWHERE\\"));
        QCOMPARE(CreateDatabase(site.local("tavello.mdb")), 0);
        QCOMPARE(CreateDatabase(data + "/tavello.mdb"), 0);
        gstrAppPath = UncPath::withTrailingSeparator(UncPath::toUnc(UncPath::programFolder()));
        QCOMPARE(gstrAppPath, QString("\\\\TESTSRV\\DATA\\"));
        gbolIniFound = true;

        frmDataPath dlg;
        dlg.show();
        QApplication::setActiveWindow(&dlg);
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        QLineEdit *txt = dlg.findChild<QLineEdit *>("txtNewPath");
        QVERIFY(txt);
        txt->setText(typed);
        QTest::keyClick(txt, Qt::Key_Return);
        QVERIFY(Msg::transcript().isEmpty());
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        QCOMPARE(IniFile::readKey(ini, "DataPath", "DataPath", "<absent>"), stored);
        QCOMPARE(entries(site.programFolder()), QStringList());
    }
};

QTEST_MAIN(TestAppFolders)
#include "tst_appfolders.moc"
