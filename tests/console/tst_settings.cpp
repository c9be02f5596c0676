// What the console remembers between runs (window, node, fonts, update
// option), the options dialog, and the about box.
#include "ConsoleFixture.h"

#include "console/AdminListView.h"
#include "console/AdminTreeView.h"
#include "console/frmAdminOptions.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/Twips.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace ConsoleTest;

namespace {

QVariant setting(Console &c, const char *column)
{
    return c.other().scalar(QStringLiteral("SELECT %1 FROM AdminSettingsTable").arg(Database::quoteIdentifier(column)));
}

// Drives the options dialog: a size text, the bold box, then OK or Cancel.
void useOptions(Console &c, const QString &sizeText, bool bold, bool ok)
{
    Modal::setHandler([&](QDialog *d) {
        auto *combo = d->findChild<QComboBox *>("comboAdminFontSizeDisplay");
        combo->setEditText(sizeText);
        d->findChild<QCheckBox *>("chkAdminFontBoldDisplay")->setChecked(bold);
        d->findChild<QPushButton *>(ok ? "cmdOkAdminOptions" : "cmdCancelAdminOptions")->click();
    });
    c.w().menuItem("mnuAdminOptions")->trigger();
    Modal::setHandler({});
}

}  // namespace

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void emptyTableGetsItsRow()
    {
        Console c([](Database &db) { db.execute("DELETE FROM AdminSettingsTable"); });
        QCOMPARE(c.other().scalar("SELECT count(*) FROM AdminSettingsTable").toInt(), 1);
        QCOMPARE(setting(c, "AdminFontBoldDisplay").toInt(), 0);
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 8);
        QCOMPARE(setting(c, "ScreenWidth").toInt(), 10710);  // the others keep their defaults
        QCOMPARE(c.w().width(), Twips::toPixelsX(10710));
        QCOMPARE(c.w().pos().y(), Twips::toPixelsY(1200));
        QCOMPARE(gintAdminFontSize, 8);
        QCOMPARE(c.w().selectedNodeText(), QString("Users"));
        QCOMPARE(messageTexts(), QStringList());
    }

    void fontSizeBounds_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("size");
        QTest::newRow("3 reads as 8") << QVariant(3) << 8;
        QTest::newRow("8") << QVariant(8) << 8;
        QTest::newRow("9 stands") << QVariant(9) << 9;
        QTest::newRow("14 stands") << QVariant(14) << 14;
        QTest::newRow("15") << QVariant(15) << 15;
        QTest::newRow("40 reads as 15") << QVariant(40) << 15;
        QTest::newRow("negative") << QVariant(-4) << 8;
        QTest::newRow("Null passes over") << QVariant() << 8;
    }
    void fontSizeBounds()
    {
        QFETCH(QVariant, stored);
        QFETCH(int, size);
        Console c([&](Database &db) {
            db.execute("UPDATE AdminSettingsTable SET AdminFontSizeDisplay = ?, AdminFontBoldDisplay = 1", {stored});
        });
        QCOMPARE(gintAdminFontSize, size);
        QCOMPARE(c.list()->font().pointSize(), size);
        QVERIFY(c.list()->font().bold());
        QCOMPARE(c.tree()->font().pointSize(), size);
        QVERIFY(!c.tree()->font().bold());
    }

    void settingsSurviveARestart()
    {
        Console c;
        c.w().move(40, 30);
        c.w().resize(650, 420);
        QCoreApplication::processEvents();
        const QRect placed(c.w().pos(), c.w().size());
        c.clickNode("Groups");
        useOptions(c, "12", true, true);
        gbolAutoCheckForUpdates = false;
        c.restart();
        QCOMPARE(setting(c, "LastSelectedNode").toString(), QString("Groups"));
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 12);
        QCOMPARE(setting(c, "AdminFontBoldDisplay").toInt(), 1);
        QCOMPARE(setting(c, "ScreenLeft").toInt(), Twips::fromPixelsX(placed.x()));
        QCOMPARE(setting(c, "ScreenHeight").toInt(), Twips::fromPixelsY(placed.height()));
        const QRect again(c.w().pos(), c.w().size());
        QVERIFY2(qAbs(again.x() - placed.x()) <= 1 && qAbs(again.y() - placed.y()) <= 1 &&
                     qAbs(again.width() - placed.width()) <= 1 && qAbs(again.height() - placed.height()) <= 1,
                 qPrintable(QString("placed %1,%2 %3x%4, restored %5,%6 %7x%8")
                                .arg(placed.x()).arg(placed.y()).arg(placed.width()).arg(placed.height())
                                .arg(again.x()).arg(again.y()).arg(again.width()).arg(again.height())));
        QCOMPARE(c.w().selectedNodeText(), QString("Groups"));
        QCOMPARE(c.texts(), QStringList{"Everyone"});
        QCOMPARE(c.list()->font().pointSize(), 12);
        QVERIFY(c.list()->font().bold());
        QCOMPARE(c.tree()->font().pointSize(), 12);
        QVERIFY(!c.tree()->font().bold());
        QVERIFY(!gbolAutoCheckForUpdates);
        QVERIFY(!c.w().menuItem("mnuAutoCheckforUpdates")->isChecked());
    }

    void maximisedKeepsTheNormalPlacement()
    {
        Console c([](Database &db) {
            db.execute("UPDATE AdminSettingsTable SET ScreenTop = 300, ScreenLeft = 450, ScreenWidth = 9000, ScreenHeight = 6000");
        });
        c.w().showMaximized();
        QCoreApplication::processEvents();
        QVERIFY(c.w().isMaximized());
        c.clickNode("Servers");
        gintAdminFontSize = 11;
        c.restart();
        QCOMPARE(setting(c, "ScreenTop").toInt(), 300);
        QCOMPARE(setting(c, "ScreenLeft").toInt(), 450);
        QCOMPARE(setting(c, "ScreenWidth").toInt(), 9000);
        QCOMPARE(setting(c, "ScreenHeight").toInt(), 6000);
        QCOMPARE(setting(c, "LastSelectedNode").toString(), QString("Servers"));
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 11);
    }

    void startNode_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("node");
        QTest::addColumn<QStringList>("headers");
        QTest::newRow("Null") << QVariant() << "Users" << QStringList{" User Names", " User ID"};
        QTest::newRow("Items opens on Users") << QVariant("Items") << "Users" << QStringList{" User Names", " User ID"};
        QTest::newRow("Status Types") << QVariant("Status Types") << "Status Types" << QStringList{" Status Types"};
        QTest::newRow("Auto Sync builds the servers") << QVariant("Auto Sync") << "Auto Sync"
                                                      << QStringList{"UNC Path", "Description"};
        QTest::newRow("Import builds nothing") << QVariant("Import") << "Import"
                                               << QStringList{"Please select Node from Treeview on left"};
        QTest::newRow("unknown: Users on activation") << QVariant("Nothing") << "Users"
                                                      << QStringList{" User Names", " User ID"};
    }
    void startNode()
    {
        QFETCH(QVariant, stored);
        QFETCH(QString, node);
        QFETCH(QStringList, headers);
        Console c([&](Database &db) { db.execute("UPDATE AdminSettingsTable SET LastSelectedNode = ?", {stored}); });
        QCOMPARE(c.w().selectedNodeText(), node);
        QCOMPARE(c.headers(), headers);
        // The tree opens the root and Users; Servers stays closed unless chosen.
        QVERIFY(c.tree()->node("Users")->isExpanded());
        QCOMPARE(c.tree()->node("Servers")->isExpanded(), node == "Auto Sync");
        QCOMPARE(messageTexts(), QStringList());
    }

    void optionsDialog_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("bold");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("size");
        QTest::newRow("12, bold") << "12" << true << true << 12;
        QTest::newRow("an item's own text") << " 9" << false << true << 9;
        QTest::newRow("not a number: 0, raised to 8") << "abc" << false << true << 8;
        QTest::newRow("empty") << "" << false << true << 8;
        QTest::newRow("99 lowered to 15") << "99" << false << true << 15;
        QTest::newRow("3 raised to 8") << "3" << false << true << 8;
        QTest::newRow("leading number only") << "14pt" << false << true << 14;
        QTest::newRow("half rounds to even, up") << "9.5" << false << true << 10;
        QTest::newRow("half rounds to even, down") << "10.5" << false << true << 10;
        QTest::newRow("cancel changes nothing") << "13" << true << false << 8;
    }
    void optionsDialog()
    {
        QFETCH(QString, text);
        QFETCH(bool, bold);
        QFETCH(bool, ok);
        QFETCH(int, size);
        Console c;
        useOptions(c, text, bold, ok);
        QCOMPARE(gintAdminFontSize, size);
        QCOMPARE(gintAdminFontBold, ok && bold ? 1 : 0);
        // Nothing reaches the database before the console closes.
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 8);
        QCOMPARE(setting(c, "AdminFontBoldDisplay").toInt(), 0);
        c.w().Form_Activate();  // the dialog gone, the console is in front again
        QCOMPARE(c.list()->font().pointSize(), size);
        QCOMPARE(c.list()->font().bold(), ok && bold);
        QCOMPARE(c.tree()->font().pointSize(), size);
        QCOMPARE(messageTexts(), QStringList());
    }

    void optionsDialogShowsTheSettings()
    {
        Console c([](Database &db) { db.execute("UPDATE AdminSettingsTable SET AdminFontSizeDisplay = 11, AdminFontBoldDisplay = 1"); });
        frmAdminOptions d;
        auto *combo = d.findChild<QComboBox *>("comboAdminFontSizeDisplay");
        QStringList items;
        for (int i = 0; i < combo->count(); ++i)
            items << combo->itemText(i);
        QCOMPARE(items, (QStringList{" 8", " 9", " 10", " 11", " 12", " 13", " 14", " 15"}));
        QCOMPARE(combo->currentText(), QString("11"));
        QVERIFY(d.findChild<QCheckBox *>("chkAdminFontBoldDisplay")->isChecked());
        QCOMPARE(d.findChild<QCheckBox *>("chkAdminFontBoldDisplay")->text(), QString("Bold Font (OFF)"));
        QCOMPARE(d.findChild<QLabel *>("lblSelectFontSize")->text(), QString("Select Font Size for main screen. (8)"));
        QCOMPARE(d.findChild<QLabel *>("lblAdminOptions1")->text(),
                 QString("Admin Options - Default values appear in brackets."));
        QVERIFY(d.windowTitle().endsWith("TAVELLO Pro - Admin Options"));
    }

    void killedAfterOptionsLosesThem()
    {
        Console c;
        useOptions(c, "13", true, true);
        QCOMPARE(gintAdminFontSize, 13);
        c.kill();
        Database db = Database::open(c.databaseFile());
        QCOMPARE(db.scalar("SELECT AdminFontSizeDisplay FROM AdminSettingsTable").toInt(), 8);
    }

    void saveFailures_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("number");
        QTest::newRow("the row is gone") << "no row" << "3021";
        QTest::newRow("locked by another program") << "locked" << "3260";
    }
    void saveFailures()
    {
        QFETCH(QString, condition);
        QFETCH(QString, number);
        Console c;
        std::unique_ptr<TestSupport::ExternalHolder> holder;
        if (condition == "no row")
            c.other().execute("DELETE FROM AdminSettingsTable");
        else
            holder = std::make_unique<TestSupport::ExternalHolder>(
                c.databaseFile(), TestSupport::ExternalHolder::Hold::Write,
                "UPDATE AdminSettingsTable SET ScreenTop = ScreenTop;");
        Msg::clearTranscript();
        c.w().close();
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith("Error (" + number + " ) in frmMain - subSaveAdminSettings event.\r"),
                 qPrintable(shown[0].text));
        QVERIFY(shown[0].text.endsWith("\r\rUnable to save Admin settings at this time. Press OK to exit."));
        QCOMPARE(shown[0].icon, Msg::Icon::None);
        QCOMPARE(shown[0].buttons, Msg::Buttons::OK);
        QVERIFY(gbolEnding);  // the console goes on closing
        QVERIFY(!gdbMain.isOpen());
    }

    void lostWindowRescue()
    {
        Console c([](Database &db) { db.execute("UPDATE AdminSettingsTable SET ScreenLeft = 30000, ScreenTop = 20000"); });
        QCOMPARE(c.w().pos().x(), Twips::toPixelsX(30000));  // applied without a test
        QTest::keyClick(&c.w(), Qt::Key_Home, Qt::AltModifier);
        QCOMPARE(c.w().pos(), QPoint(0, 0));
        QCOMPARE(c.w().windowState(), Qt::WindowNoState);
    }

    void autoCheckOption_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<bool>("on");
        QTest::newRow("off") << 0 << false;
        QTest::newRow("on") << 1 << true;
        QTest::newRow("any other number is on") << -1 << true;
    }
    void autoCheckOption()
    {
        QFETCH(int, stored);
        QFETCH(bool, on);
        Console c([&](Database &db) { db.execute("UPDATE AdminSettingsTable SET AutoCheckForUpdates = ?", {stored}); });
        QCOMPARE(gbolAutoCheckForUpdates, on);
        QCOMPARE(c.w().menuItem("mnuAutoCheckforUpdates")->isChecked(), on);
        gbolAutoCheckForUpdates = !on;
        c.restart();
        QCOMPARE(setting(c, "AutoCheckForUpdates").toInt() != 0, !on);
    }

    void forceShutdownCheckMark_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("marked");
        QTest::newRow("True") << "True" << true;
        QTest::newRow("true is not True") << "true" << false;
    }
    void forceShutdownCheckMark()
    {
        QFETCH(QString, value);
        QFETCH(bool, marked);
        Console c([&](Database &db) {
            IniFile::writeKey(QFileInfo(db.localPath()).absolutePath() + "/forceshutdown.ini", "ForceShutDown",
                              "ForceShutDown", value);
        });
        QAction *mark = c.w().menuItem("mnuForceShutdown");
        QCOMPARE(mark->isChecked(), marked);
        // Its window decides; the mark follows the setting it leaves.
        WindowsPresent windows({"frmForceShutdown"});
        Modal::setHandler([&](QDialog *) { gbolForceShutDown = !marked; });
        mark->trigger();
        Modal::setHandler({});
        QCOMPARE(mark->isChecked(), !marked);
    }

    void aboutBox()
    {
        Console c;
        QString title, text;
        bool closedByOk = false;
        Modal::setHandler([&](QDialog *d) {
            title = d->windowTitle();
            for (QLabel *l : d->findChildren<QLabel *>())
                text += l->text() + "\n";
            d->findChild<QPushButton *>("cmdOK")->click();
            closedByOk = d->result() == QDialog::Accepted;
        });
        c.w().menuItem("mnuAbout")->trigger();
        Modal::setHandler({});
        QCOMPARE(title, QString(" TAVELLO Pro 2006-07D (Admin) - About TAVELLO"));
        QVERIFY2(text.contains("2006-07D") && text.contains("2006-07-22") && text.contains("TAVELLO"), qPrintable(text));
        QVERIFY(closedByOk);
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
