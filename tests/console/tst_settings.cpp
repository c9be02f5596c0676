// What the console remembers between runs (window, node, fonts, update
// option) and the options dialog.
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
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFileInfo>
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
        d->findChild<QComboBox *>("comboAdminFontSizeDisplay")->setEditText(sizeText);
        d->findChild<QCheckBox *>("chkAdminFontBoldDisplay")->setChecked(bold);
        d->findChild<QPushButton *>(ok ? "cmdOkAdminOptions" : "cmdCancelAdminOptions")->click();
    });
    c.w().menuItem("mnuAdminOptions")->trigger();
    Modal::setHandler({});
}

// A setting stored before the start (column "": no settings row at all),
// and the node, headers and font size the console then shows.
struct Start {
    QString column; QVariant stored; QString node; QStringList headers; int size;
};

}  // namespace

Q_DECLARE_METATYPE(Start)

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    // What a stored setting gives when the console starts.
    void readAtStart_data()
    {
        QTest::addColumn<Start>("t");
        const QStringList users{" User Names", " User ID"};
        auto size = [&](const char *name, const QVariant &stored, int size) {
            QTest::newRow(name) << Start{"AdminFontSizeDisplay", stored, "Users", users, size};
        };
        auto node = [](const char *name, const QVariant &stored, const char *node, const QStringList &headers) {
            QTest::newRow(name) << Start{"LastSelectedNode", stored, node, headers, 8};
        };
        QTest::newRow("no settings row: one written with defaults") << Start{"", {}, "Users", users, 8};
        size("font size 3 reads as 8", 3, 8);
        size("font size 8", 8, 8);
        size("font size 9 stands", 9, 9);
        size("font size 14 stands", 14, 14);
        size("font size 15", 15, 15);
        size("font size 40 reads as 15", 40, 15);
        size("font size negative", -4, 8);
        size("font size Null passes over", QVariant(), 8);
        node("node Null", QVariant(), "Users", users);
        node("node Items opens on Users", "Items", "Users", users);
        node("node Status Types", "Status Types", "Status Types", {" Status Types"});
        node("node Auto Sync builds the servers", "Auto Sync", "Auto Sync", {"UNC Path", "Description"});
        node("node Import builds nothing", "Import", "Import", {"Please select Node from Treeview on left"});
        node("unknown node: Users on activation", "Nothing", "Users", users);
    }
    void readAtStart()
    {
        QFETCH(Start, t);
        Console c([&](Database &db) {
            if (t.column.isEmpty())
                db.execute("DELETE FROM AdminSettingsTable");
            else
                db.execute(QString("UPDATE AdminSettingsTable SET %1 = ?").arg(Database::quoteIdentifier(t.column)),
                           {t.stored});
        });
        QCOMPARE(c.other().scalar("SELECT count(*) FROM AdminSettingsTable").toInt(), 1);
        QCOMPARE(c.w().width(), Twips::toPixelsX(10710));  // the default width, as written
        QCOMPARE(c.w().pos().y(), Twips::toPixelsY(1200));
        QCOMPARE(c.w().selectedNodeText(), t.node);
        QCOMPARE(c.headers(), t.headers);
        // The tree opens the root and Users; Servers stays closed unless chosen.
        QVERIFY(c.tree()->node("Users")->isExpanded());
        QCOMPARE(c.tree()->node("Servers")->isExpanded(), t.node == "Auto Sync");
        QCOMPARE(gintAdminFontSize, t.size);
        QCOMPARE(c.list()->font().pointSize(), t.size);
        QCOMPARE(c.tree()->font().pointSize(), t.size);
        QCOMPARE(messageTexts(), QStringList());
    }

    // Written at close, read by the next console; a maximised window keeps
    // its normal placement.
    void settingsSurviveARestart_data()
    {
        QTest::addColumn<bool>("maximised");
        QTest::newRow("normal window") << false;
        QTest::newRow("maximised") << true;
    }
    void settingsSurviveARestart()
    {
        QFETCH(bool, maximised);
        Console c([](Database &db) {
            db.execute("UPDATE AdminSettingsTable SET ScreenLeft = ?, ScreenTop = ?, ScreenWidth = ?, ScreenHeight = ?",
                       {450, 300, 9000, 6000});
        });
        if (maximised) {
            c.w().showMaximized();
        } else {
            c.w().move(40, 30);
            c.w().resize(650, 420);
        }
        QCoreApplication::processEvents();
        QCOMPARE(c.w().isMaximized(), maximised);
        const QRect placed(c.w().pos(), c.w().size());
        const QList<int> twips = maximised ? QList<int>{450, 300, 9000, 6000}
                                           : QList<int>{Twips::fromPixelsX(placed.x()), Twips::fromPixelsY(placed.y()),
                                                        Twips::fromPixelsX(placed.width()), Twips::fromPixelsY(placed.height())};
        c.clickNode("Groups");
        useOptions(c, "12", true, true);
        c.restart();
        QCOMPARE((QList<int>{setting(c, "ScreenLeft").toInt(), setting(c, "ScreenTop").toInt(),
                             setting(c, "ScreenWidth").toInt(), setting(c, "ScreenHeight").toInt()}), twips);
        if (!maximised) {  // twips round: a pixel either way
            QVERIFY((c.w().pos() - placed.topLeft()).manhattanLength() <= 2);
            QVERIFY(qAbs(c.w().width() - placed.width()) <= 1 && qAbs(c.w().height() - placed.height()) <= 1);
        }
        QCOMPARE(setting(c, "LastSelectedNode").toString(), QString("Groups"));
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 12);
        QCOMPARE(setting(c, "AdminFontBoldDisplay").toInt(), 1);
        QCOMPARE(c.w().selectedNodeText(), QString("Groups"));
        QCOMPARE(c.texts(), QStringList{"Everyone"});
        QCOMPARE(c.list()->font().pointSize(), 12);
        QVERIFY(c.list()->font().bold());
        QCOMPARE(c.tree()->font().pointSize(), 12);
        QVERIFY(!c.tree()->font().bold());
        frmAdminOptions d;  // the options dialog shows what was read
        QCOMPARE(d.findChild<QComboBox *>("comboAdminFontSizeDisplay")->currentText(), QString("12"));
        QVERIFY(d.findChild<QCheckBox *>("chkAdminFontBoldDisplay")->isChecked());
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
        QTest::newRow("99 lowered to 15") << "99" << false << true << 15;
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
        c.w().Form_Activate();  // the dialog gone, the console is in front again
        QCOMPARE(c.list()->font().pointSize(), size);
        QCOMPARE(c.list()->font().bold(), ok && bold);
        QCOMPARE(c.tree()->font().pointSize(), size);
        QCOMPARE(messageTexts(), QStringList());
        // Only a closing console writes them: killed, it leaves the old ones.
        c.kill();
        QCOMPARE(setting(c, "AdminFontSizeDisplay").toInt(), 8);
        QCOMPARE(setting(c, "AdminFontBoldDisplay").toInt(), 0);
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
            holder = std::make_unique<TestSupport::ExternalHolder>(c.databaseFile(), TestSupport::ExternalHolder::Hold::Write,
                                                                   "UPDATE AdminSettingsTable SET ScreenTop = ScreenTop;");
        Msg::clearTranscript();
        c.w().close();
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith("Error (" + number + " ) in frmMain - subSaveAdminSettings event.\r"),
                 qPrintable(shown[0].text));
        QVERIFY(shown[0].text.endsWith("\r\rUnable to save Admin settings at this time. Press OK to exit."));
        QVERIFY(gbolEnding);  // the console goes on closing
        QVERIFY(!gdbMain.isOpen());
    }

    // Alt+Home brings a lost window back wherever the focus is in it; the
    // tree and the list do not take the key for their own Home.
    void lostWindowRescue_data()
    {
        QTest::addColumn<QString>("focus");
        QTest::newRow("window") << "window";
        QTest::newRow("tree") << "tree";
        QTest::newRow("list") << "list";
    }
    void lostWindowRescue()
    {
        QFETCH(QString, focus);
        Console c([](Database &db) { db.execute("UPDATE AdminSettingsTable SET ScreenLeft = 30000, ScreenTop = 20000"); });
        QCOMPARE(c.w().pos().x(), Twips::toPixelsX(30000));  // applied without a test
        c.w().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&c.w()));
        QWidget *target = focus == "tree" ? static_cast<QWidget *>(c.tree())
                          : focus == "list" ? static_cast<QWidget *>(c.list()) : &c.w();
        target->setFocus();
        QWidget *focused = QApplication::focusWidget() ? QApplication::focusWidget() : target;
        QVERIFY(focus == "window" || target->isAncestorOf(focused) || focused == target);
        const QStringList rows = c.texts();
        QTest::keyClick(focused, Qt::Key_Home, Qt::AltModifier);
        QCOMPARE(c.w().pos(), QPoint(0, 0));
        QCOMPARE(c.w().windowState(), Qt::WindowNoState);
        QCOMPARE(c.w().selectedNodeText(), QString("Users"));  // not "Items"
        QCOMPARE(c.texts(), rows);
    }

    // The two marked Tools entries read their setting at start and keep a
    // new one: Auto Check in the database, Force Shutdown as its window leaves it.
    void menuMarks_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("on");
        QTest::newRow("auto check off") << "mnuAutoCheckforUpdates" << "0" << false;
        QTest::newRow("auto check on") << "mnuAutoCheckforUpdates" << "1" << true;
        QTest::newRow("any other number is on") << "mnuAutoCheckforUpdates" << "-1" << true;
        QTest::newRow("force shutdown True") << "mnuForceShutdown" << "True" << true;
        QTest::newRow("true is not True") << "mnuForceShutdown" << "true" << false;
    }
    void menuMarks()
    {
        QFETCH(QString, item);
        QFETCH(QString, stored);
        QFETCH(bool, on);
        const bool force = item == "mnuForceShutdown";
        Console c([&](Database &db) {
            if (force)
                IniFile::writeKey(QFileInfo(db.localPath()).absolutePath() + "/forceshutdown.ini", "ForceShutDown",
                                  "ForceShutDown", stored);
            else
                db.execute("UPDATE AdminSettingsTable SET AutoCheckForUpdates = ?", {stored.toInt()});
        });
        QAction *mark = c.w().menuItem(item);
        QCOMPARE(mark->isChecked(), on);
        if (force) {
            WindowsPresent windows({"frmForceShutdown"});
            Modal::setHandler([&](QDialog *) { gbolForceShutDown = !on; });
            mark->trigger();
            Modal::setHandler({});
            QCOMPARE(mark->isChecked(), !on);
        } else {
            QCOMPARE(gbolAutoCheckForUpdates, on);
            gbolAutoCheckForUpdates = !on;
            c.restart();
            QCOMPARE(setting(c, "AutoCheckForUpdates").toInt() != 0, !on);
        }
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
