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
    // Each pattern with a text it matches and one it does not.
    void likePatterns_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("match");
        QTest::addColumn<QString>("miss");
        QTest::newRow("plain, other case") << "guest" << "Guest" << "Guests";
        QTest::newRow("star empty run") << "Jane*" << "Jane" << "Jan";
        QTest::newRow("question one char") << "B?b" << "Bob" << "Bb";
        QTest::newRow("hash a digit") << "Room #" << "Room 7" << "Room A";
        QTest::newRow("list") << "[bc]at" << "cat" << "rat";
        QTest::newRow("range case-blind") << "[a-m]ike" << "Mike" << "Nike";
        QTest::newRow("negated range") << "[!a-m]ed" << "zed" << "bed";
        QTest::newRow("literal star in list") << "a[*]b" << "a*b" << "axb";
        QTest::newRow("percent is literal") << "50%" << "50%" << "50 percent";
        QTest::newRow("underscore is literal") << "a_b" << "a_b" << "axb";
        QTest::newRow("non-ASCII case-blind") << QString::fromUtf8("ärger") << QString::fromUtf8("Ärger") << "Arger";
        QTest::newRow("backtracking stars") << "*abd" << "abcabcabd" << "abcabdx";
        QTest::newRow("unclosed bracket literal") << "[x" << "[x" << "x";
    }
    void likePatterns()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, match);
        QFETCH(QString, miss);
        QVERIFY(jetLike(match, pattern));
        QVERIFY(!jetLike(miss, pattern));
    }

    void iniRoundTripKeepsOtherLines()
    {
        TestSupport::Site site;
        const QString ini = site.programFolder() + "/other.ini";
        QFile f(ini);
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write("; comment\n[Other]\nA=1\n\n[datapath]\ndatapath=old\nKeep=yes\n") > 0);
        f.close();
        QVERIFY(IniFile::writeKey(ini, "DataPath", "DataPath", "\\\\SRV\\SHARE\\DIR\\"));
        QVERIFY(IniFile::writeKey(ini, "New", "K", "'quoted'"));
        QVERIFY(IniFile::writeKey(ini, "New", "Long", QString(250, 'x')));
        QCOMPARE(IniFile::readKey(ini, "DATAPATH", "DATAPATH"), QString("\\\\SRV\\SHARE\\DIR\\"));
        QCOMPARE(IniFile::readKey(ini, "Other", "A"), QString("1"));
        QCOMPARE(IniFile::readKey(ini, "datapath", "Keep"), QString("yes"));
        QCOMPARE(IniFile::readKey(ini, "New", "K"), QString("quoted"));
        QCOMPARE(IniFile::readKey(ini, "New", "Long"), QString(199, 'x'));  // values keep 199 characters
        QCOMPARE(IniFile::readKey(ini + ".missing", "DataPath", "DataPath", "dflt"), QString("dflt"));
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
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto help = std::find_if(windows.begin(), windows.end(),
                                       [](QWidget *w) { return w->objectName() == "HelpWindow" && w->isVisible(); });
        QVERIFY(help != windows.end());
        (*help)->close();
    }

    void uncPaths()
    {
        TestSupport::Site site;
        QDir(site.shareFolder()).mkpath("apps/tavello");
        QCOMPARE(UncPath::toLocal("\\\\testsrv\\share\\apps\\tavello\\tavello.mdb").value(),
                 site.shareFolder() + "/apps/tavello/tavello.mdb");
        QVERIFY(!UncPath::toLocal("\\\\NOSUCH\\SHARE\\x\\").has_value());
        QCOMPARE(UncPath::toUnc(site.shareFolder() + "/apps/tavello/"), QString("\\\\TESTSRV\\SHARE\\apps\\tavello\\"));
        QCOMPARE(UncPath::toUnc(site.programFolder()), site.programFolder());
        // A share folder that is a prefix of another folder's name is not that folder's share.
        QDir().mkpath(site.shareFolder() + "2");
        QCOMPARE(UncPath::toUnc(site.shareFolder() + "2/a"), site.shareFolder() + "2/a");
    }
};

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"
