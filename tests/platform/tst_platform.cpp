// Pattern rules of `like`, the ini reader and writer, and UNC paths.
#include "platform/Help.h"
#include "platform/IniFile.h"
#include "platform/JetLike.h"
#include "platform/UncPath.h"
#include "support/TestSupport.h"

#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QFile>
#include <QTest>

class TestPlatform : public QObject {
    Q_OBJECT

private slots:
    void likePatterns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("matches");
        QTest::newRow("plain, other case") << "Guest" << "guest" << true;
        QTest::newRow("star any run") << "Jane Smith" << "J*th" << true;
        QTest::newRow("star empty run") << "Jane" << "Jane*" << true;
        QTest::newRow("star no match") << "Jane" << "*x*" << false;
        QTest::newRow("question one char") << "Bob" << "B?b" << true;
        QTest::newRow("question needs a char") << "Bb" << "B?b" << false;
        QTest::newRow("hash a digit") << "Room 7" << "Room #" << true;
        QTest::newRow("hash not a letter") << "Room A" << "Room #" << false;
        QTest::newRow("list") << "cat" << "[bc]at" << true;
        QTest::newRow("list miss") << "rat" << "[bc]at" << false;
        QTest::newRow("range case-blind") << "Mike" << "[a-m]ike" << true;
        QTest::newRow("negated range") << "zed" << "[!a-m]ed" << true;
        QTest::newRow("negated range miss") << "bed" << "[!a-m]ed" << false;
        QTest::newRow("literal star in list") << "a*b" << "a[*]b" << true;
        QTest::newRow("literal star in list miss") << "axb" << "a[*]b" << false;
        QTest::newRow("percent is literal") << "50%" << "50%" << true;
        QTest::newRow("percent not a wildcard") << "50 percent" << "50%" << false;
        QTest::newRow("underscore is literal") << "a_b" << "a_b" << true;
        QTest::newRow("underscore not a wildcard") << "axb" << "a_b" << false;
        QTest::newRow("non-ASCII case-blind") << QString::fromUtf8("Ärger") << QString::fromUtf8("ärger") << true;
        QTest::newRow("backtracking stars") << "abcabcabd" << "*abd" << true;
        QTest::newRow("unclosed bracket literal") << "[x" << "[x" << true;
    }
    void likePatterns()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(bool, matches);
        QCOMPARE(jetLike(text, pattern), matches);
    }

    void iniRoundTripKeepsOtherLines()
    {
        TestSupport::Site site;
        const QString ini = site.programFolder() + "/other.ini";
        QFile f(ini);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("; comment\n[Other]\nA=1\n\n[datapath]\ndatapath=old\nKeep=yes\n");
        f.close();
        QVERIFY(IniFile::writeKey(ini, "DataPath", "DataPath", "\\\\SRV\\SHARE\\DIR\\"));
        QCOMPARE(IniFile::readKey(ini, "DATAPATH", "DATAPATH"), QString("\\\\SRV\\SHARE\\DIR\\"));
        QCOMPARE(IniFile::readKey(ini, "Other", "A"), QString("1"));
        QCOMPARE(IniFile::readKey(ini, "datapath", "Keep"), QString("yes"));
        QVERIFY(IniFile::writeKey(ini, "New", "K", "v"));
        QCOMPARE(IniFile::readKey(ini, "New", "K"), QString("v"));
        QCOMPARE(IniFile::readKey(ini, "Other", "A"), QString("1"));
        QCOMPARE(IniFile::readKey(ini + ".missing", "DataPath", "DataPath", "dflt"), QString("dflt"));
    }

    void iniValuesKeep199Characters()
    {
        TestSupport::Site site;
        const QString ini = site.programFolder() + "/long.ini";
        const QString longValue(250, QLatin1Char('x'));
        QVERIFY(IniFile::writeKey(ini, "S", "K", longValue));
        QCOMPARE(IniFile::readKey(ini, "S", "K").size(), 199);
        QVERIFY(IniFile::writeKey(ini, "S", "Q", "'quoted'"));
        QCOMPARE(IniFile::readKey(ini, "S", "Q"), QString("quoted"));
    }

    void f1ShowsThePageOfTheWindowInFront_data()
    {
        QTest::addColumn<QString>("windowName");
        QTest::addColumn<QString>("page");
        QTest::newRow("dialog with a page") << "frmRepair" << "frmRepair";
        QTest::newRow("dialog without one") << "frmNoSuchWindow" << "index";
    }
    void f1ShowsThePageOfTheWindowInFront()
    {
        QFETCH(QString, windowName);
        QFETCH(QString, page);
        Help::install();
        QDialog dialog;
        dialog.setObjectName(windowName);
        auto *field = new QLineEdit(&dialog);
        dialog.show();
        field->setFocus();
        QTest::keyClick(field, Qt::Key_F1);
        QCOMPARE(Help::lastPage(), page);
        QWidget *help = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "HelpWindow" && w->isVisible())
                help = w;
        QVERIFY(help);
        QVERIFY(!help->windowTitle().isEmpty());
        help->close();
    }

    void uncPaths()
    {
        TestSupport::Site site;
        QDir(site.shareFolder()).mkpath("apps/tavello");
        QCOMPARE(UncPath::toLocal("\\\\testsrv\\share\\apps\\tavello\\tavello.mdb").value(),
                 site.shareFolder() + "/apps/tavello/tavello.mdb");
        QVERIFY(!UncPath::toLocal("\\\\NOSUCH\\SHARE\\x\\").has_value());
        QVERIFY(!UncPath::toLocal("\\\\incomplete").has_value());
        QCOMPARE(UncPath::toUnc(site.shareFolder() + "/apps/tavello/"), QString("\\\\TESTSRV\\SHARE\\apps\\tavello\\"));
        QCOMPARE(UncPath::toUnc(site.programFolder()), site.programFolder());
        QCOMPARE(UncPath::withTrailingSeparator("\\\\A\\B"), QString("\\\\A\\B\\"));
        QCOMPARE(UncPath::withTrailingSeparator("/srv/x"), QString("/srv/x/"));
        // A share folder that is a prefix of another folder's name is not that folder's share.
        QDir().mkpath(site.shareFolder() + "2");
        QCOMPARE(UncPath::toUnc(site.shareFolder() + "2/a"), site.shareFolder() + "2/a");
    }
};

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"
