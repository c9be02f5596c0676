// Auto Sync run against several real board databases, each reached through
// a UNC path of the [Shares] section, the console's own one among them.
#include "SitesTest.h"

#include "console/AdminTreeView.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "sites/frmAutoSync.h"

#include <QFile>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <optional>

using namespace ConsoleTest;
using namespace SitesTest;

namespace {

template <class T>
T *control(const QWidget *dialog, const char *name)
{
    T *w = dialog->findChild<T *>(QString::fromLatin1(name));
    if (!w)
        qFatal("control %s missing", name);
    return w;
}

// What one opening of the window showed and did.
struct Run {
    QStringList opened;  // lstTasks when the window opened
    QStringList tasks;   // lstTasks at the end
    QStringList list;    // ListViewAutoSync at the end, "path|description"
    QList<int> bar;      // the positions the bar took
    int maximum = -1;
    int timerTicks = 0;  // a timer of the console's, while the run went on
};

// Fills `run`; a failed check ends the test there.
void runAutoSync(Run &run)
{
    frmAutoSync dialog;
    dialog.show();
    auto *tasks = control<QListWidget>(&dialog, "lstTasks");
    auto *bar = control<QProgressBar>(&dialog, "ProgressBarAutoSync");
    auto *begin = control<QPushButton>(&dialog, "cmdBegin");
    auto *exit = control<QPushButton>(&dialog, "cmdExit");
    for (int i = 0; i < tasks->count(); ++i)
        run.opened << tasks->item(i)->text();
    QVERIFY2(!bar->isVisible() && begin->isEnabled() && exit->isEnabled(), "state at opening");
    QObject::connect(bar, &QProgressBar::valueChanged, [&](int v) {
        if (v > 0)
            run.bar << v;
    });
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++run.timerTicks; });
    ticker.start(10);
    QTest::mouseClick(begin, Qt::LeftButton);
    ticker.stop();
    run.maximum = bar->maximum();
    for (int i = 0; i < tasks->count(); ++i)
        run.tasks << tasks->item(i)->text();
    auto *list = control<QTreeWidget>(&dialog, "ListViewAutoSync");
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        run.list << list->topLevelItem(i)->text(0) + '|' + list->topLevelItem(i)->text(1);
    // Finished: Exit on, Begin dead for good, the bar gone, the last line chosen.
    QVERIFY2(!begin->isEnabled() && exit->isEnabled() && !bar->isVisible() && !dialog.running(), "state at the end");
    QCOMPARE(tasks->currentRow(), tasks->count() - 1);
    QVERIFY(!Hourglass::shown());
    QTest::mouseClick(begin, Qt::LeftButton);
    QCOMPARE(tasks->count(), run.tasks.size());
    QTest::mouseClick(exit, Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

// A box's expected text may end in '*': then only its start is compared.
void compareBoxes(const QStringList &actual, const QStringList &expected)
{
    QVERIFY2(actual.size() == expected.size(), qPrintable("boxes shown:\n" + actual.join('\n')));
    for (int i = 0; i < expected.size(); ++i) {
        if (expected[i].endsWith('*'))
            QVERIFY2(actual[i].startsWith(expected[i].chopped(1)), qPrintable(actual[i]));
        else
            QCOMPARE(actual[i], expected[i]);
    }
}

QList<int> upTo(int n)
{
    QList<int> out;
    for (int i = 1; i <= n; ++i)
        out << i;
    return out;
}

const QString Done = QStringLiteral("All tasks completed. Where possible, remote databases have been updated.");
const QString Opened = QStringLiteral("Existing remote servers added.");
const QString HomeAdded = QStringLiteral("Home server added.");
const QString Scanned = QStringLiteral("Scanning completed.");

}  // namespace

class TestAutoSync : public QObject {
    Q_OBJECT

private slots:
    // One run of the window from its opening to Exit. Sites are given as
    // "name" (a board) or "name:kind"; tables as each site's rows
    // "path=description" before the run, and as "path|description" in the
    // order written after it. "{title}" is the default title of a box.
    void run_data()
    {
        QTest::addColumn<QStringList>("sites");
        QTest::addColumn<QVariantMap>("before");
        QTest::addColumn<QString>("dataPath");  // "unc" or "local"
        QTest::addColumn<QString>("hold");      // "B:exclusive", "B:write": another program on that file
        QTest::addColumn<QStringList>("tasks");
        QTest::addColumn<QList<int>>("bar");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<QStringList>("list");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QVariantMap>("after");

        QTest::newRow("three sites: home with B, B with C, C empty")
            << QStringList{"B", "C"}
            << QVariantMap{{"H", QStringList{"{B}=Bee office"}}, {"B", QStringList{"{C}=<null>"}}}
            << "unc" << ""
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Added {C}", Scanned, "Updating {H}", "Updating {B}",
                           "Updating {C}", Done}
            << upTo(4) << 4 << QStringList{"{H}|", "{B}|Bee office", "{C}|"} << QStringList{}
            << QVariantMap{{"H", QStringList{"{B}|Bee office", "{C}|"}},
                           {"B", QStringList{"{C}|<null>", "{H}|"}},
                           {"C", QStringList{"{H}|", "{B}|Bee office"}}};

        // Scanned as a remote since it differs in case; LIKE finds it, and
        // the home row written to B a moment before counts for it there.
        QTest::newRow("home entry in lower case")
            << QStringList{"B"}
            << QVariantMap{{"H", QStringList{"\\\\testsrv\\share\\=Home, small", "{B}=Bee"}}}
            << "unc" << ""
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Scanning \\\\testsrv\\share\\", Scanned, "Updating {H}",
                           "Updating {B}", "Updating \\\\testsrv\\share\\", Done}
            << upTo(6) << 6 << QStringList{"{H}|", "{B}|Bee", "\\\\testsrv\\share\\|Home, small"} << QStringList{}
            << QVariantMap{{"H", QStringList{"\\\\testsrv\\share\\|Home, small", "{B}|Bee"}},
                           {"B", QStringList{"{H}|"}}};

        // The scan adds the backslash; the update joins the file name
        // straight on: an unknown share, or a file that isn't there.
        QTest::newRow("entries without their trailing backslash")
            << QStringList{"B", "C"}
            << QVariantMap{{"H", QStringList{"{B-}=Bee", "{C-}=Sea"}}}
            << "unc" << ""
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Scanning {C}", Scanned, "Updating {H}",
                           "Skipped entry. Unable to update: {B-}", "Skipped entry. Unable to update: {C-}", Done}
            << upTo(6) << 6 << QStringList{"{H}|", "{B-}|Bee", "{C-}|Sea"} << QStringList{}
            << QVariantMap{{"H", QStringList{"{B-}|Bee", "{C-}|Sea"}}, {"B", QStringList{}}, {"C", QStringList{}}};

        QTest::newRow("data path on a local folder: no home row anywhere")
            << QStringList{"B", "C"}
            << QVariantMap{{"H", QStringList{"{B}=Bee"}}, {"B", QStringList{"{C}=Sea"}}}
            << "local" << ""
            << QStringList{Opened, "Scanning {B}", "Added {C}", Scanned, "Updating {B}", "Updating {C}", Done}
            << upTo(2) << 2 << QStringList{"{B}|Bee", "{C}|Sea"} << QStringList{}
            << QVariantMap{{"H", QStringList{"{B}|Bee"}}, {"B", QStringList{"{C}|Sea"}}, {"C", QStringList{"{B}|Bee"}}};

        QTest::newRow("no remote servers: home alone")
            << QStringList{} << QVariantMap{} << "unc" << ""
            << QStringList{HomeAdded, Opened, Scanned, "Updating {H}", Done}
            << upTo(2) << 2 << QStringList{"{H}|"} << QStringList{}
            << QVariantMap{{"H", QStringList{}}};

        // Unknown share: a skip line. A file that is not a board, and a
        // folder without a database: the store's text once, the line stays,
        // nothing is written there and no database is made.
        QTest::newRow("unreachable, foreign and missing sites")
            << QStringList{"B", "X:foreign", "Y:missing", "Z:absent"}
            << QVariantMap{{"H", QStringList{"{B}=Bee", "{X}=Minutes", "{Y}=Empty", "{Z}=Nowhere"}}}
            << "unc" << ""
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Scanning {X}", "Scanning {Y}",
                           "Skipped entry. Unable to connect to: {Z}", Scanned, "Updating {H}", "Updating {B}",
                           "Updating {X}", "Updating {Y}", "Skipped entry. Unable to update: {Z}", Done}
            << upTo(10) << 10 << QStringList{"{H}|", "{B}|Bee", "{X}|Minutes", "{Y}|Empty", "{Z}|Nowhere"}
            << QStringList{"{title}|Unrecognized database format: the file is not a database of this program.",
                           "{title}|Could not find file '{Y}tavello.mdb'.",
                           "{title}|Unrecognized database format: the file is not a database of this program.",
                           "{title}|Could not find file '{Y}tavello.mdb'."}
            << QVariantMap{{"H", QStringList{"{B}|Bee", "{X}|Minutes", "{Y}|Empty", "{Z}|Nowhere"}},
                           {"B", QStringList{"{H}|", "{X}|Minutes", "{Y}|Empty", "{Z}|Nowhere"}}};

        QTest::newRow("site held exclusively by another program")
            << QStringList{"B", "C"}
            << QVariantMap{{"H", QStringList{"{B}=Bee", "{C}=Sea"}}, {"B", QStringList{"{D}=Dee"}}}
            << "unc" << "B:exclusive"
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Scanning {C}", Scanned, "Updating {H}", "Updating {B}",
                           "Updating {C}", Done}
            << upTo(6) << 6 << QStringList{"{H}|", "{B}|Bee", "{C}|Sea"}
            << QStringList{"{title}|Could not use '{B}tavello.mdb'; file already in use by another program.",
                           "{title}|Could not use '{B}tavello.mdb'; file already in use by another program."}
            << QVariantMap{{"B", QStringList{"{D}|Dee"}}, {"C", QStringList{"{H}|", "{B}|Bee"}}};

        // Read, but not written while another program is in the middle of a write.
        QTest::newRow("site in the middle of another program's write")
            << QStringList{"B", "C"}
            << QVariantMap{{"H", QStringList{"{B}=Bee"}}, {"B", QStringList{"{C}=Sea"}}}
            << "unc" << "B:write"
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Added {C}", Scanned, "Updating {H}", "Updating {B}",
                           "Updating {C}", Done}
            << upTo(4) << 4 << QStringList{"{H}|", "{B}|Bee", "{C}|Sea"}
            << QStringList{"{title}|Could not update; currently locked by another program."}
            << QVariantMap{{"H", QStringList{"{B}|Bee", "{C}|Sea"}}, {"B", QStringList{"{C}|Sea"}},
                           {"C", QStringList{"{H}|", "{B}|Bee"}}};

        // A double quote never made a valid query; a bracket is a pattern,
        // so LIKE misses the stored row and the table refuses the second
        // one, while the other rows of that site are written.
        QTest::newRow("quote and bracket in paths")
            << QStringList{"B"}
            << QVariantMap{{"H", QStringList{"{B}=Bee", "\\\\QSRV\\A\"B\\=Quote"}},
                           {"B", QStringList{"\\\\WSRV\\SITE[1]\\=Bracket"}}}
            << "unc" << ""
            << QStringList{HomeAdded, Opened, "Scanning {B}", "Added \\\\WSRV\\SITE[1]\\",
                           "Scanning \\\\QSRV\\A\"B\\", Scanned, "Updating {H}", "Updating {B}",
                           "Updating \\\\QSRV\\A\"B\\", "Skipped entry. Unable to update: \\\\WSRV\\SITE[1]\\", Done}
            << upTo(6) << 6
            << QStringList{"{H}|", "{B}|Bee", "\\\\QSRV\\A\"B\\|Quote", "\\\\WSRV\\SITE[1]\\|Bracket"}
            << QStringList{"{title}|'\\\\QSRV\\A\"B\\tavello.mdb' is not a valid file name.",
                           "{title}|Syntax error in string in query expression 'UNCPath LIKE \"\\\\QSRV\\A\"B\\\"'.",
                           "{title}|Syntax error in string in query expression 'UNCPath LIKE \"\\\\QSRV\\A\"B\\\"'.",
                           "{title}|The change would create a duplicate value in a unique index*",
                           "{title}|'\\\\QSRV\\A\"B\\tavello.mdb' is not a valid file name."}
            << QVariantMap{{"H", QStringList{"{B}|Bee", "\\\\QSRV\\A\"B\\|Quote", "\\\\WSRV\\SITE[1]\\|Bracket"}},
                           {"B", QStringList{"\\\\WSRV\\SITE[1]\\|Bracket", "{H}|"}}};
    }

    void run()
    {
        QFETCH(QStringList, sites);
        QFETCH(QVariantMap, before);
        QFETCH(QString, dataPath);
        QFETCH(QString, hold);
        QFETCH(QStringList, tasks);
        QFETCH(QList<int>, bar);
        QFETCH(int, maximum);
        QFETCH(QStringList, list);
        QFETCH(QStringList, boxes);
        QFETCH(QVariantMap, after);

        Console c;
        Boards b(c.site());
        for (const QString &site : sites)
            b.add(site.section(':', 0, 0), site.section(':', 1).isEmpty() ? "board" : site.section(':', 1));
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            b.setTable(it.key(), it.value().toStringList());
        if (dataPath == "local")
            gstrDataPath = c.site().shareFolder() + '/';
        QMap<QString, QByteArray> untouched;
        for (const QString &site : sites)
            untouched.insert(site.section(':', 0, 0), fileBytes(b.file(site.section(':', 0, 0))));

        std::optional<TestSupport::ExternalHolder> holder;
        if (!hold.isEmpty()) {
            const bool exclusive = hold.endsWith("exclusive");
            holder.emplace(b.file(hold.section(':', 0, 0)),
                           exclusive ? TestSupport::ExternalHolder::Hold::Exclusive
                                     : TestSupport::ExternalHolder::Hold::Write,
                           exclusive ? QString() : "INSERT INTO DueBackTable (DueBack) VALUES ('Lunch');");
            QVERIFY(holder->started());
        }
        Msg::clearTranscript();
        Run r;
        runAutoSync(r);
        if (QTest::currentTestFailed())
            return;
        holder.reset();

        QStringList openedLines = tasks.mid(0, dataPath == "local" ? 1 : 2);
        QCOMPARE(r.opened, openedLines);
        QCOMPARE(r.tasks, b.expand(tasks));
        QCOMPARE(r.bar, bar);
        QCOMPARE(r.maximum, maximum);
        QCOMPARE(r.list, b.expand(list));
        QStringList expectedBoxes = b.expand(boxes);
        expectedBoxes.replaceInStrings("{title}", Msg::defaultTitle());
        compareBoxes(SitesTest::boxes(), expectedBoxes);
        for (const Msg::Shown &s : Msg::transcript())
            QVERIFY(s.icon == Msg::Icon::None && s.buttons == Msg::Buttons::OK);
        for (const QString &site : untouched.keys()) {
            if (after.contains(site))
                QCOMPARE(b.table(site), b.expand(after.value(site).toStringList()));
            else  // never written, never damaged, never made
                QCOMPARE(fileBytes(b.file(site)), untouched.value(site));
            if (untouched.value(site).isEmpty())
                QVERIFY2(!QFile::exists(b.file(site)), qPrintable(site));
        }
        if (after.contains("H"))
            QCOMPARE(b.table("H"), b.expand(after.value("H").toStringList()));
        if (hold.endsWith("exclusive"))
            QVERIFY2(r.timerTicks > 0, "the window handled no events while it waited");
    }

    // What only C knew is found by the next opening, which scans C.
    void secondRunFindsWhatTheFirstCouldNot()
    {
        Console c;
        Boards b(c.site());
        for (const char *site : {"B", "C", "D"})
            b.add(site);
        b.setTable("H", {"{B}=Bee"});
        b.setTable("B", {"{C}=Sea"});
        b.setTable("C", {"{D}=Dee"});

        Run first, second;
        runAutoSync(first);
        QVERIFY(!first.tasks.join('\n').contains(b.unc("D")));
        QCOMPARE(b.table("D"), QStringList());
        QCOMPARE(b.table("H"), b.expand(QStringList{"{B}|Bee", "{C}|Sea"}));

        runAutoSync(second);
        QCOMPARE(second.tasks, b.expand(QStringList{HomeAdded, Opened, "Scanning {B}", "Scanning {C}", "Added {D}",
                                                    Scanned, "Updating {H}", "Updating {B}", "Updating {C}",
                                                    "Updating {D}", Done}));
        QCOMPARE(b.table("H"), b.expand(QStringList{"{B}|Bee", "{C}|Sea", "{D}|Dee"}));
        QCOMPARE(b.table("B"), b.expand(QStringList{"{C}|Sea", "{H}|", "{D}|Dee"}));
        QCOMPARE(b.table("C"), b.expand(QStringList{"{D}|Dee", "{H}|", "{B}|Bee"}));
        QCOMPARE(b.table("D"), b.expand(QStringList{"{H}|", "{B}|Bee", "{C}|Sea"}));
        QVERIFY(Msg::transcript().isEmpty());
    }

    // From the console: the node opens the window, the run's rows show in
    // the Servers list afterwards, and the selection is back on "Servers".
    void fromTheConsoleTree()
    {
        Console c;
        Boards b(c.site());
        b.add("B");
        b.setTable("H", {"{B}=Bee"});
        b.setTable("B", {"{C}=Sea"});
        c.clickNode("Servers");
        QStringList shown;
        Modal::setHandler([&](QDialog *d) {
            shown << d->objectName();
            QTest::mouseClick(control<QPushButton>(d, "cmdBegin"), Qt::LeftButton);
            QTest::mouseClick(control<QPushButton>(d, "cmdExit"), Qt::LeftButton);
        });
        c.clickNode("Auto Sync");
        Modal::setHandler({});
        QCOMPARE(shown, QStringList{"frmAutoSync"});
        QCOMPARE(c.tree()->selectedNode()->text(0), QString("Servers"));
        gRefreshListView("Servers");
        QCOMPARE(c.texts(), b.expand(QStringList{"{B}", "{C}"}));
        QCOMPARE(b.table("B"), b.expand(QStringList{"{C}|Sea", "{H}|"}));
    }
};

QTEST_MAIN(TestAutoSync)
#include "tst_autosync.moc"
