// The three server windows: their checks and messages in order, Browse, the
// home server's protection, and the writes to the console's own database
// while another program may hold it.
#include "SitesTest.h"

#include "console/AdminListView.h"
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/ERRORS.h"
#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/FileDialogs.h"
#include "platform/Help.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/UncPath.h"
#include "sites/frmAddServer.h"
#include "sites/frmModServer.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <optional>
#include <sqlite3.h>

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

const QString NoDatabase = "TAVELLO - No remote database.|Cannot locate a valid TAVELLO database at the UNC path "
                           "specified. The path may be invalid or the remote location may be currently unavailable.";
const QString Not2005 = "Not a valid 2005 Tavello Database|Error: This is NOT a 2005 Tavello database.";

// Sites for the tables: B, C boards, V a 2003 board, X a file of text, Y a
// shared folder without a database, Z a share nobody knows; P a board in
// the home share's folder "Sites/Perth". `doubled` sites also hold a board
// under the name tavello.mdbtavello.mdb.
void addSites(Boards &b, const TestSupport::Site &home, const QStringList &doubled = {})
{
    b.add("B");
    b.add("C");
    b.add("V", "2003");
    b.add("X", "foreign");
    b.add("Y", "missing");
    b.add("Z", "absent");
    QDir().mkpath(home.shareFolder() + "/Sites/Perth");
    QFile::copy(boardTemplate(), home.shareFolder() + "/Sites/Perth/tavello.mdb");
    for (const QString &site : doubled)
        QFile::copy(boardTemplate(), b.file(site) + "tavello.mdb");
}

// Holds the console's database with another program's uncommitted write
// from the `from`th BEGIN of gdbMain until the `until`th starts (0: to the end).
class HomeHeld {
public:
    HomeHeld(const Console &c, int from, int until) : m_c(c), m_from(from), m_until(until)
    {
        m_hook = [this](const QString &sql) {
            if (!sql.startsWith("BEGIN"))
                return;
            ++m_begins;
            if (m_begins == m_from)
                m_holder.emplace(m_c.databaseFile(), TestSupport::ExternalHolder::Hold::Write,
                                 "INSERT INTO DueBackTable (DueBack) VALUES ('Lunch');");
            if (m_begins == m_until)
                m_holder.reset();
        };
        if (m_from > 0)
            sqlite3_trace_v2(gdbMain.handle(), SQLITE_TRACE_STMT, &HomeHeld::trace, &m_hook);
    }
    ~HomeHeld() { sqlite3_trace_v2(gdbMain.handle(), 0, nullptr, nullptr); }
    int begins() const { return m_begins; }

private:
    static int trace(unsigned, void *hook, void *, void *text)
    {
        (*static_cast<std::function<void(const QString &)> *>(hook))(QString::fromUtf8(static_cast<const char *>(text)));
        return 0;
    }
    const Console &m_c;
    int m_from, m_until, m_begins = 0;
    std::function<void(const QString &)> m_hook;
    std::optional<TestSupport::ExternalHolder> m_holder;
};

// Selects the rows with these texts in the Servers list (click, then Ctrl+clicks).
void selectServers(Console &c, const QStringList &texts)
{
    c.clickNode("Servers");
    c.list()->clearSelection();
    for (int i = 0; i < texts.size(); ++i) {
        const int row = c.rowOf(texts[i]);
        if (row < 0)
            qFatal("no row %s", qPrintable(texts[i]));
        c.clickRow(row, Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
    }
}

QStringList expanded(const Boards &b, const QStringList &texts)
{
    QStringList out = b.expand(texts);
    out.replaceInStrings("{title}", Msg::defaultTitle());
    return out;
}

}  // namespace

class TestServerDialogs : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        gintRetryCount() = 0;
    }

    // Add: each check in its order; only a path that passes them all is
    // written, upper-cased, with the description stripped.
    void add_data()
    {
        QTest::addColumn<QStringList>("listed");  // the home's entries before
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QStringList>("after");  // "" for: as before
        const QString begins = "TAVELLO - Invalid UNC|You have not entered a valid UNC path. A UNC path must begin with \" \\\\ \"";
        const QString ends = "TAVELLO - Invalid UNC|You have not entered a valid UNC path. A UNC path must end with \" \\ \"";
        QTest::newRow("lower case with blanks") << QStringList{} << "  \\\\bsrv\\board\\  " << QStringList{}
                                                << QStringList{"{B}|Bee office"};
        QTest::newRow("subfolder named in other letters")
            << QStringList{} << "{H}sites\\perth\\" << QStringList{} << QStringList{"{H}SITES\\PERTH\\|Bee office"};
        QTest::newRow("one backslash at the start") << QStringList{} << "\\BSRV\\BOARD\\" << QStringList{begins}
                                                    << QStringList{""};
        QTest::newRow("local folder") << QStringList{} << "/srv/tavello/" << QStringList{begins} << QStringList{""};
        QTest::newRow("nothing typed") << QStringList{} << "   " << QStringList{begins} << QStringList{""};
        QTest::newRow("no final backslash") << QStringList{} << "{B-}" << QStringList{ends} << QStringList{""};
        QTest::newRow("unknown share") << QStringList{} << "{Z}" << QStringList{NoDatabase} << QStringList{""};
        QTest::newRow("folder without database") << QStringList{} << "{Y}" << QStringList{NoDatabase}
                                                 << QStringList{""};
        QTest::newRow("not a board") << QStringList{} << "{X}" << QStringList{NoDatabase} << QStringList{""};
        QTest::newRow("board of 2003") << QStringList{} << "{V}" << QStringList{Not2005} << QStringList{""};
        QTest::newRow("listed, typed in lower case")
            << QStringList{"{C}=Sea"} << "\\\\csrv\\board\\"
            << QStringList{"TAVELLO - Add Server|A Server entry with the path {C} already exists. Only one TAVELLO "
                           "database is allowed per UNC path."}
            << QStringList{""};
    }
    void add()
    {
        QFETCH(QStringList, listed);
        QFETCH(QString, typed);
        QFETCH(QStringList, boxes);
        QFETCH(QStringList, after);
        Console c;
        Boards b(c.site());
        addSites(b, c.site());
        b.setTable("H", listed);
        const QStringList before = b.table("H");

        frmAddServer d;
        d.show();
        control<QLineEdit>(&d, "txtDescription")->setText("  Bee office ");
        auto *path = control<QLineEdit>(&d, "txtUNCpath");
        path->setText(b.expand(typed));
        QTest::mouseClick(control<QPushButton>(&d, "cmdButtons_0"), Qt::LeftButton);

        QCOMPARE(SitesTest::boxes(), expanded(b, boxes));
        for (const Msg::Shown &s : Msg::transcript())
            QVERIFY(s.buttons == Msg::Buttons::OK &&
                    s.icon == (s.title.startsWith("Not a valid") ? Msg::Icon::Information : Msg::Icon::Exclamation));
        if (after == QStringList{""}) {
            QCOMPARE(b.table("H"), before);
            QVERIFY(d.isVisible());
            // Only the form tests give the path back for editing.
            if (boxes.first().startsWith("TAVELLO - Invalid UNC"))
                QCOMPARE(path->selectedText(), path->text());
        } else {
            QCOMPARE(b.table("H"), before + b.expand(after));
            QVERIFY(!d.isVisible());
        }
        QVERIFY(!gdbMain.inTransaction());
        QCOMPARE(gdbMain.localPath(), c.databaseFile());
    }

    // Another program in the middle of a write: the first collision is
    // retried without a word, the next asks; No leaves the window as it was.
    void addWhileHomeIsWritten_data()
    {
        QTest::addColumn<int>("until");  // the BEGIN at whose start the other program lets go
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("written");
        QTest::addColumn<int>("asked");
        QTest::newRow("one collision: silent") << 2 << 0 << true << 0;
        QTest::newRow("two collisions, Yes") << 3 << int(Msg::Yes) << true << 1;
        QTest::newRow("two collisions, No") << 3 << int(Msg::No) << false << 1;
    }
    void addWhileHomeIsWritten()
    {
        QFETCH(int, until);
        QFETCH(int, answer);
        QFETCH(bool, written);
        QFETCH(int, asked);
        Console c;
        Boards b(c.site());
        b.add("B");
        frmAddServer d;
        d.show();
        control<QLineEdit>(&d, "txtDescription")->setText("Bee");
        control<QLineEdit>(&d, "txtUNCpath")->setText(b.unc("B"));
        if (answer)
            Msg::queueAnswers({answer});
        {
            HomeHeld held(c, 1, until);
            QTest::mouseClick(control<QPushButton>(&d, "cmdButtons_0"), Qt::LeftButton);
        }
        QStringList shown;
        for (int i = 0; i < asked; ++i)
            shown << "TAVELLO|The database is currently updating.  Would you like to retry ?";
        QCOMPARE(SitesTest::boxes(), shown);
        QCOMPARE(b.table("H"), written ? b.expand(QStringList{"{B}|Bee"}) : QStringList{});
        QCOMPARE(d.isVisible(), !written);
        QCOMPARE(control<QLineEdit>(&d, "txtUNCpath")->text(), b.unc("B"));
        QVERIFY(!gdbMain.inTransaction());
    }

    // Modify: its own wording, and the validity test given the file name
    // once too often, so only a folder with a file of the doubled name passes.
    void modify_data()
    {
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QStringList>("doubled");  // sites with a file of the doubled name
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QStringList>("after");  // empty: as before
        const QStringList two{"{B}=Bee", "{C}=Sea"};
        QTest::newRow("nothing changed") << two << "{B}" << QStringList{} << "{B}" << QStringList{Not2005}
                                         << QStringList{};
        QTest::newRow("to a folder with the doubled file")
            << QStringList{"{B}=Bee"} << "{B}" << QStringList{"C"} << "\\\\csrv\\board\\" << QStringList{}
            << QStringList{"{C}|Sea office"};
        QTest::newRow("one backslash at the start")
            << two << "{B}" << QStringList{} << "BSRV\\BOARD\\"
            << QStringList{"TAVELLO - Invalid UNC|You have not entered in a valid UNC path. A UNC path must begin "
                           "with \" \\\\ \" (double backslash)."}
            << QStringList{};
        QTest::newRow("no final backslash")
            << two << "{B}" << QStringList{} << "{B-}"
            << QStringList{"TAVELLO - Invalid UNC|You have not entered in a valid UNC path. A UNC path must end with "
                           "\" \\ \" (backslash)."}
            << QStringList{};
        QTest::newRow("no database there") << two << "{B}" << QStringList{} << "{Y}" << QStringList{NoDatabase}
                                           << QStringList{};
        QTest::newRow("the path of another entry")
            << two << "{B}" << QStringList{"C"} << "{C}"
            << QStringList{"TAVELLO - Modfiy Server|A Server entry with the path {C} already exists. Only one Tavello "
                           "database is allowed per UNC path."}
            << QStringList{};
    }
    void modify()
    {
        QFETCH(QStringList, listed);
        QFETCH(QString, selected);
        QFETCH(QStringList, doubled);
        QFETCH(QString, typed);
        QFETCH(QStringList, boxes);
        QFETCH(QStringList, after);
        Console c;
        Boards b(c.site());
        addSites(b, c.site(), doubled);
        b.setTable("H", listed);
        const QStringList before = b.table("H");
        selectServers(c, {b.expand(selected)});
        QStringList shownAtOpen;
        bool closed = false;
        Modal::setHandler([&](QDialog *d) {
            for (const char *name : {"lblCurrentUNC", "lblCurrentDescription"})
                shownAtOpen << control<QLabel>(d, name)->text();
            for (const char *name : {"txtNewUNC", "txtNewDescription"})
                shownAtOpen << control<QLineEdit>(d, name)->text();
            control<QLineEdit>(d, "txtNewUNC")->setText(b.expand(typed));
            if (!after.isEmpty())
                control<QLineEdit>(d, "txtNewDescription")->setText(" Sea office  ");
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
            closed = !d->isVisible();
        });
        c.w().ModifyDispatcher("Servers");
        Modal::setHandler({});
        const QString description = listed.first().section('=', 1);
        QCOMPARE(shownAtOpen, (QStringList{b.expand(selected), description, b.expand(selected), description}));
        QCOMPARE(SitesTest::boxes(), expanded(b, boxes));
        QCOMPARE(b.table("H"), after.isEmpty() ? before : b.expand(after));
        QCOMPARE(closed, !after.isEmpty());
        QVERIFY(!gdbMain.inTransaction());
    }

    // Browse: the chosen file's folder in UNC form, or a refusal in the
    // window's own words; the field keeps what it had otherwise.
    void browse_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("chosen");  // "" cancels; {L} a folder under no share
        QTest::addColumn<QString>("field");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("Add, cancelled") << "frmAddServer" << "" << "typed" << QStringList{};
        QTest::newRow("Add, through the share") << "frmAddServer" << "{b}/tavello.mdb" << "{B}" << QStringList{};
        QTest::newRow("Add, name in capitals") << "frmAddServer" << "{b}/TAVELLO.MDB" << "{B}" << QStringList{};
        QTest::newRow("Add, another file") << "frmAddServer" << "{b}/tavello.ldb" << "typed"
                                           << QStringList{"tavello.mdb Not Found|Invalid database file selected"};
        QTest::newRow("Add, under no share")
            << "frmAddServer" << "{L}tavello.mdb" << "typed"
            << QStringList{"TAVELLO - Remote Servers|The path {L} is not a valid UNC path name. Please reselect a "
                           "Drive Letter with a valid UNC."};
        QTest::newRow("Modify, through the share: filled, then the doubled name")
            << "frmModServer" << "{b}/tavello.mdb" << "{B}" << QStringList{Not2005};
        QTest::newRow("Modify, under no share") << "frmModServer" << "{L}tavello.mdb" << "typed"
                                                << QStringList{"{title}|{L} is not a UNC path. Please reselect."};
        QTest::newRow("Modify, another file") << "frmModServer" << "{b}/notes.txt" << "typed"
                                              << QStringList{"tavello.mdb Not Found|Invalid database file selected"};
    }
    void browse()
    {
        QFETCH(QString, window);
        QFETCH(QString, chosen);
        QFETCH(QString, field);
        QFETCH(QStringList, boxes);
        TestSupport::Site site;
        Boards b(site);
        b.add("B");
        const QString local = site.programFolder() + "/";
        auto fill = [&](QString s) { return b.expand(s.replace("{b}", b.folder("B")).replace("{L}", local)); };
        FileDialogs::queueAnswers({fill(chosen)});
        std::unique_ptr<QDialog> d;
        if (window == "frmAddServer")
            d = std::make_unique<frmAddServer>();
        else
            d = std::make_unique<frmModServer>();
        d->show();
        auto *path = control<QLineEdit>(d.get(), window == "frmAddServer" ? "txtUNCpath" : "txtNewUNC");
        path->setText("typed");
        QTest::mouseClick(control<QPushButton>(d.get(), "cmdBrowse"), Qt::LeftButton);
        QCOMPARE(path->text(), fill(field));
        QStringList expected;
        for (const QString &box : boxes)
            expected << fill(box).replace("{title}", Msg::defaultTitle());
        QCOMPARE(SitesTest::boxes(), expected);
        const QList<FileDialogs::Asked> asked = FileDialogs::transcript();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked[0].title, QString("Locate TAVELLO Databases"));
        QCOMPARE(asked[0].filter, window == "frmAddServer" ? QString("TAVELLO database|tavello.mdb")
                                                           : QString("Tavello database|tavello.mdb"));
        QCOMPARE(asked[0].initialFolder, window == "frmAddServer" ? PathSelection::NetworkFolder : QString());
    }

    // Delete: the home entry is refused by the data path to the letter of
    // its upper case; one row goes per entry, even where two share a path.
    void remove_data()
    {
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<bool>("unique");  // the table's unique index on the path in place
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<int>("button");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QStringList>("after");
        const QString home = "Protected group name|Sorry, your 'Home' server cannot be deleted. It will not be added "
                             "to the deletion list.";
        const QString none = "{title}|No item selected to delete";
        QTest::newRow("home and another") << QStringList{"{H}=Home", "{B}=Bee"} << true
                                          << QStringList{"{H}", "{B}"} << 0 << QStringList{home}
                                          << QStringList{"{H}|Home"};
        QTest::newRow("home alone: the window closes itself")
            << QStringList{"{H}=Home", "{B}=Bee"} << true << QStringList{"{H}"} << -1 << QStringList{home, none}
            << QStringList{"{H}|Home", "{B}|Bee"};
        QTest::newRow("home in lower case") << QStringList{"\\\\testsrv\\share\\=Small"} << true
                                            << QStringList{"\\\\testsrv\\share\\"} << -1 << QStringList{home, none}
                                            << QStringList{"\\\\testsrv\\share\\|Small"};
        QTest::newRow("home path without its final backslash")
            << QStringList{"{H-}=Short", "{B}=Bee"} << true << QStringList{"{H-}"} << 0 << QStringList{}
            << QStringList{"{B}|Bee"};
        QTest::newRow("two rows of one path: one goes")
            << QStringList{"{B}=One", "{B}=Two", "{C}=Sea"} << false << QStringList{"{B}"} << 0 << QStringList{}
            << QStringList{"{B}|Two", "{C}|Sea"};
        QTest::newRow("Cancel") << QStringList{"{B}=Bee", "{C}=Sea"} << true << QStringList{"{B}", "{C}"} << 1
                                << QStringList{} << QStringList{"{B}|Bee", "{C}|Sea"};
    }
    void remove()
    {
        QFETCH(QStringList, listed);
        QFETCH(bool, unique);
        QFETCH(QStringList, selected);
        QFETCH(int, button);
        QFETCH(QStringList, boxes);
        QFETCH(QStringList, after);
        Console c;
        Boards b(c.site());
        if (!unique) {
            Database db = c.other();
            QStringList indexes;
            for (Recordset rs = db.query("SELECT name FROM sqlite_master WHERE type = 'index' AND tbl_name = ?",
                                         {"ServersTable"});
                 !rs.eof(); rs.moveNext())
                indexes << rs.value(0).toString();
            for (const QString &index : indexes)
                db.execute("DROP INDEX " + Database::quoteIdentifier(index));
        }
        b.setTable("H", listed);
        selectServers(c, b.expand(selected));
        bool closedItself = false;
        Modal::setHandler([&](QDialog *d) {
            if (button < 0) {
                QTest::qWait(20);
                closedItself = !d->isVisible();
                return;
            }
            QTest::mouseClick(control<QPushButton>(d, QString("cmdButtons_%1").arg(button).toLatin1().constData()),
                              Qt::LeftButton);
        });
        c.w().DeleteDispatcher("Servers");
        Modal::setHandler({});
        QCOMPARE(SitesTest::boxes(), expanded(b, boxes));
        QCOMPARE(b.table("H"), b.expand(after));
        QCOMPARE(closedItself, button < 0);
    }

    // Another program writing: Retry deletes once it has let go, Cancel
    // keeps that entry and the next one still goes.
    void removeWhileHomeIsWritten_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("Retry") << int(Msg::Retry) << QStringList{"{H}|Home"};
        QTest::newRow("Cancel") << int(Msg::Cancel) << QStringList{"{H}|Home", "{B}|Bee"};
    }
    void removeWhileHomeIsWritten()
    {
        QFETCH(int, answer);
        QFETCH(QStringList, after);
        Console c;
        Boards b(c.site());
        b.setTable("H", {"{H}=Home", "{B}=Bee", "{C}=Sea"});
        selectServers(c, b.expand(QStringList{"{B}", "{C}"}));
        Msg::queueAnswers({answer});
        Modal::setHandler([&](QDialog *d) {
            HomeHeld held(c, 1, 2);
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.w().DeleteDispatcher("Servers");
        Modal::setHandler({});
        QCOMPARE(SitesTest::boxes(),
                 b.expand(QStringList{"{title}|An error occured while trying to delete the Server ''{B}''."})
                     .replaceInStrings("{title}", Msg::defaultTitle()));
        QVERIFY(Msg::transcript().first().buttons == Msg::Buttons::RetryCancel);
        QCOMPARE(b.table("H"), b.expand(after));
        QVERIFY(!gdbMain.inTransaction());
    }

    // The network mounts of a mount table, each with its UNC form; local
    // file systems and sources without a share name are left out.
    void networkMounts()
    {
        QTemporaryDir dir;
        QFile table(dir.filePath("mounts"));
        QVERIFY(table.open(QIODevice::WriteOnly));
        table.write("/dev/sda1 / ext4 rw,relatime 0 0\n"
                    "//fs1/Board /mnt/board cifs rw,vers=3.0 0 0\n"
                    "//fs2/Main\\040Office /mnt/main\\040office smb3 rw 0 0\n"
                    "fs3:/export/tavello /srv/tavello nfs4 rw 0 0\n"
                    "fs4:/export/sites/perth/ /mnt/perth nfs rw 0 0\n"
                    "fs5:/ /mnt/root nfs rw 0 0\n"
                    "//fs6 /mnt/bare cifs rw 0 0\n"
                    "tmpfs /tmp tmpfs rw 0 0\n");
        table.close();
        QStringList shown;
        for (const UncPath::Mount &m : UncPath::networkMounts(table.fileName()))
            shown << m.unc + " = " + m.local + " (" + m.type + ")";
        QCOMPARE(shown, (QStringList{"\\\\fs1\\Board = /mnt/board (cifs)",
                                     "\\\\fs2\\Main Office = /mnt/main office (smb3)",
                                     "\\\\fs3\\export\\tavello = /srv/tavello (nfs4)",
                                     "\\\\fs4\\export\\sites\\perth = /mnt/perth (nfs)"}));
    }

    // Each window's Help button brings up its own page.
    void help_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("button");
        QTest::newRow("Add") << "frmAddServer" << "cmdButtons_2";
        QTest::newRow("Modify") << "frmModServer" << "cmdButtons_2";
        QTest::newRow("Delete") << "frmDeleteServer" << "cmdButtons_2";
        QTest::newRow("Auto Sync") << "frmAutoSync" << "cmdHelp";
    }
    void help()
    {
        QFETCH(QString, window);
        QFETCH(QString, button);
        Console c;
        Boards b(c.site());
        b.setTable("H", {"{B}=Bee"});
        selectServers(c, {b.unc("B")});  // something to delete
        Help::install();
        std::unique_ptr<QDialog> d(DialogRegistry::create(window, nullptr));
        QVERIFY(d);
        d->show();
        QVERIFY(QTest::qWaitForWindowActive(d.get()));
        QTest::mouseClick(control<QPushButton>(d.get(), button.toLatin1().constData()), Qt::LeftButton);
        QCOMPARE(Help::lastPage(), window);
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "HelpWindow")
                w->close();
    }

    // The Add window lists the shares this computer knows, with their UNC names.
    void driveList()
    {
        TestSupport::Site site;
        Boards b(site);
        b.add("B");
        frmAddServer d;
        const auto *list = control<QListWidget>(&d, "lstDriveList");
        QStringList items;
        for (int i = 0; i < list->count(); ++i)
            items << list->item(i)->text();
        QCOMPARE(items.mid(0, 2), (QStringList{site.shareFolder() + " [\\\\TESTSRV\\SHARE]",
                                               b.folder("B") + " [\\\\BSRV\\BOARD]"}));
    }
};

QTEST_MAIN(TestServerDialogs)
#include "tst_serverdialogs.moc"
