// Repair and compact in the console's own process: the backups and their
// rotation, damaged and foreign files, other programs holding the file,
// the reset of active flags, the command-line route and the dialog.
#include "RepairFixtures.h"

#include "core/Global.h"
#include "platform/Compact.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/Repair.h"
#include "store/frmRepair.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace RepairFixtures;
using TestSupport::ExternalHolder;
using TestSupport::Site;

namespace {

const QString Live = QStringLiteral("tavello.mdb");
const QString DialogPrefix = QStringLiteral("tavello-database-backup.");
const QString OneShotPrefix = QStringLiteral("tavello.");

QString generation(const QString &prefix, int n)
{
    return prefix + QString::number(n).rightJustified(3, QLatin1Char('0'));
}

QStringList filesIn(const QString &folder)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    names.sort();
    return names;
}

}  // namespace

class TestRepair : public QObject {
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_board;  // some thousand users and free pages, built once

    // The share as data folder, holding a copy of the board.
    QString boardAt(const Site &site)
    {
        site.useShareAsDataPath();
        QFile::copy(m_board, site.local(Live));
        return site.local(Live);
    }

private slots:
    void initTestCase()
    {
        m_board = m_work.filePath(QStringLiteral("board.mdb"));
        makeBoard(m_board, BoardShape{});
        QCOMPARE(integrity(m_board), QString("ok"));
        QVERIFY(scalar(m_board, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'Yes'").toInt() > 100);
        QVERIFY(scalar(m_board, "PRAGMA freelist_count").toInt() > 20);
    }

    void rotation_data()
    {
        QTest::addColumn<QString>("commandLine");  // none: the dialog's route
        QTest::addColumn<QList<int>>("present");
        const QList<int> all{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        QTest::newRow("dialog, no backups yet") << QString() << QList<int>{};
        QTest::newRow("dialog, all ten present") << QString() << all;
        QTest::newRow("dialog, some missing") << QString() << QList<int>{0, 3, 8, 9};
        QTest::newRow("command line, no backups yet") << "repair" << QList<int>{};
        QTest::newRow("command line in mixed case, all ten present") << "  RePaIr " << all;
    }

    void rotation()
    {
        QFETCH(QString, commandLine);
        QFETCH(QList<int>, present);
        const bool oneShot = !commandLine.isEmpty();
        Site site;
        const QString live = boardAt(site);
        const QString prefix = oneShot ? OneShotPrefix : DialogPrefix;
        for (int n : present)
            QVERIFY(writeBytes(site.local(generation(prefix, n)), "generation " + QByteArray::number(n)));
        const QByteArray before = bytesOf(live);
        const quint64 inode = inodeOf(live);
        const QString expectedData = fingerprint(live, !oneShot);  // only the dialog resets the flags

        if (oneShot) {
            QVERIFY(subOneShotRepair(commandLine));
        } else {
            subCompactDatabase();
            QVERIFY(gbolRepairDone);
            QVERIFY(gdbMain.isOpen());
        }
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));

        // The untouched file is the newest generation; every older one moved one along, the oldest is gone.
        QCOMPARE(bytesOf(site.local(generation(prefix, 0))), before);
        QStringList expectedFiles{Live, generation(prefix, 0)};
        for (int n : present) {
            if (n < 9) {
                QCOMPARE(bytesOf(site.local(generation(prefix, n + 1))), "generation " + QByteArray::number(n));
                expectedFiles << generation(prefix, n + 1);
            }
        }
        expectedFiles.sort();
        gdbMain.close();
        QCOMPARE(filesIn(site.shareFolder()), expectedFiles);  // no journal, no half copy left behind

        // Compacted in place: the same file, smaller, with the same data.
        QCOMPARE(inodeOf(live), inode);
        QVERIFY(bytesOf(live).size() < before.size());
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(scalar(live, "PRAGMA freelist_count").toInt(), 0);
        if (oneShot) {  // the one log row aside
            const QString row = "FROM TransactionLogTable WHERE Name = 'Admin' AND Status = 'REPAIR SUCCESSFUL'";
            QCOMPARE(scalar(live, "SELECT count(*) " + row + " AND LastModified <> ''").toInt(), 1);
            scalar(live, "DELETE " + row);
        }
        QCOMPARE(fingerprint(live), expectedData);
    }

    void damagedFiles_data()
    {
        QTest::addColumn<QList<int>>("leafPicks");  // among the table's leaves; -1 the last
        QTest::addColumn<bool>("indexes");
        QTest::addColumn<int>("strayBytes");  // junk after the last page: a length of no whole page
        QTest::newRow("two neighbouring leaves and a third") << QList<int>{10, 11, 40} << false << 0;
        QTest::newRow("first and last leaf") << QList<int>{0, -1} << false << 0;
        QTest::newRow("index pages only") << QList<int>{} << true << 0;
        QTest::newRow("leaves and index pages") << QList<int>{10, 11, 40} << true << 0;
        QTest::newRow("leaves and stray bytes at the end") << QList<int>{10, 11, 40} << false << 1000;
    }

    void damagedFiles()
    {
        QFETCH(QList<int>, leafPicks);
        QFETCH(bool, indexes);
        QFETCH(int, strayBytes);
        Site site;
        const QString live = boardAt(site);
        const QMap<QString, QString> original = employeeRows(live, true);

        const QVector<Leaf> leaves = leavesOf(live, "EmployeeTable");
        QVERIFY(leaves.size() > 60);
        QVector<int> pages;
        QSet<QString> onDamagedPages;
        for (int pick : leafPicks) {
            const Leaf &leaf = leaves.at(pick < 0 ? leaves.size() - 1 : pick);
            pages << leaf.page;
            for (qint64 id : leaf.rowids)
                onDamagedPages << scalar(live, "SELECT Name FROM EmployeeTable WHERE rowid = ?1", {id}).toString();
        }
        QCOMPARE(onDamagedPages.isEmpty(), leafPicks.isEmpty());
        if (indexes) {
            for (const char *index : {"EmployeeTable.Comments", "EmployeeTable.UID", "EmployeeTable.PrimaryKey"}) {
                const QVector<Leaf> indexLeaves = leavesOf(live, index);
                QVERIFY(indexLeaves.size() > 3);
                pages << indexLeaves[1].page << indexLeaves[indexLeaves.size() / 2].page;
            }
        }
        damagePages(live, pages);
        if (strayBytes > 0) {
            QFile f(live);
            QVERIFY(f.open(QIODevice::Append));
            f.write(QByteArray(strayBytes, '\x5a'));
        }
        QVERIFY(integrity(live) != "ok");
        const QByteArray damaged = bytesOf(live);
        const quint64 inode = inodeOf(live);

        subCompactDatabase();
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        QVERIFY(gbolRepairDone);
        gdbMain.close();

        QCOMPARE(bytesOf(site.local(generation(DialogPrefix, 0))), damaged);
        QCOMPARE(inodeOf(live), inode);
        QCOMPARE(integrity(live), QString("ok"));
        // Every row of an undamaged page is there, unchanged but for the reset flag, and nothing else.
        const QMap<QString, QString> salvaged = employeeRows(live);
        for (auto it = original.cbegin(); it != original.cend(); ++it)
            if (!onDamagedPages.contains(it.key()))
                QCOMPARE(salvaged.value(it.key()), it.value());
        for (auto it = salvaged.cbegin(); it != salvaged.cend(); ++it)
            QVERIFY2(original.contains(it.key()), qPrintable("invented: " + it.key()));
        if (leafPicks.isEmpty())
            QCOMPARE(salvaged.size(), original.size());
        // The other tables came through whole.
        QCOMPARE(scalar(live, "SELECT count(*) FROM StatusTypesTable").toInt(),
                 scalar(site.local(generation(DialogPrefix, 0)), "SELECT count(*) FROM StatusTypesTable").toInt());
        // The rebuilt indexes answer for the rows: a unique key still refuses a duplicate.
        QVERIFY(scalar(live, "INSERT INTO EmployeeTable(Name, UID) VALUES (?1, 'fresh')", {salvaged.lastKey()})
                    .toString()
                    .startsWith("error: UNIQUE"));
    }

    void refused_data()
    {
        QTest::addColumn<QString>("problem");
        QTest::addColumn<QString>("expectedStart");
        QTest::addColumn<bool>("exclamation");  // the exclamation box with its causes
        QTest::addColumn<bool>("backedUp");     // held and copied, refused for its content
        const QString event = QStringLiteral("in Admin - subCompactDatabase event.\r");
        const QString cannot = QStringLiteral("Cannot complete the current operation due to the following error: (");
        QTest::newRow("a text file") << "text" << "Error (3343 ) " + event << false << true;
        QTest::newRow("a database whose header was overwritten") << "header" << "Error (3343 ) " + event << false << true;
        QTest::newRow("a database whose table list is damaged") << "schema" << cannot + "3049 ) \r" << true << true;
        QTest::newRow("one program has the file to itself") << "exclusive" << cannot + "3045 ) \r" << true << false;
        QTest::newRow("a program is reading") << "read" << "Error (3050 ) " + event << false << false;
        QTest::newRow("a program is writing") << "write" << "Error (3050 ) " + event << false << false;
        QTest::newRow("the backup cannot be written") << "backup refused" << cannot + "75 ) \r" << true << false;
        QTest::newRow("no database in the folder") << "no file" << "Error (3024 ) " + event << false << false;
    }

    // A file that is not a board, or cannot be had alone, is reported and
    // never replaced, cut or written. One that cannot be had is tried three
    // times a second apart; a damaged one is not waited for.
    void refused()
    {
        QFETCH(QString, problem);
        QFETCH(QString, expectedStart);
        QFETCH(bool, exclamation);
        QFETCH(bool, backedUp);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        if (problem == "text") {
            QVERIFY(writeBytes(live, "Name,Status\r\nAnne,In\r\nBill,Out\r\n"));
        } else if (problem != "no file") {
            QByteArray bytes = bytesOf(boardAt(site));
            if (problem == "header")
                bytes.replace(0, 100, QByteArray(100, 'x'));
            else if (problem == "schema")  // page 1 holds the root of the table list, behind the file header
                bytes.replace(100, 3996, QByteArray(3996, '\x5a'));
            QVERIFY(writeBytes(live, bytes));
        }
        if (problem == "backup refused")  // a folder stands where the copy is written first
            QVERIFY(QDir(site.shareFolder()).mkpath(generation(DialogPrefix, 0) + ".tmp/x"));
        if (backedUp)
            QVERIFY(writeBytes(site.local(generation(DialogPrefix, 0)), "generation 0"));
        QStringList expectedFiles = filesIn(site.shareFolder());
        const QMap<QString, ExternalHolder::Hold> holds{{"exclusive", ExternalHolder::Hold::Exclusive},
                                                        {"read", ExternalHolder::Hold::Read},
                                                        {"write", ExternalHolder::Hold::Write}};
        std::unique_ptr<ExternalHolder> other;
        if (holds.contains(problem)) {
            other = std::make_unique<ExternalHolder>(live, holds[problem],
                                                     "UPDATE EmployeeTable SET Status = 'Out' WHERE Name = 'Guest';");
            QVERIFY(other->started());
        }
        const QByteArray before = bytesOf(live);
        const quint64 inode = inodeOf(live);

        QElapsedTimer clock;
        clock.start();
        subCompactDatabase();
        const qint64 took = clock.elapsed();
        QVERIFY2(backedUp ? took < 1500 : took >= 2000 && took < 8000, qPrintable(QString::number(took)));
        QVERIFY(!gbolRepairDone);
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith(expectedStart), qPrintable(shown[0].text));
        QVERIFY(!shown[0].text.mid(expectedStart.size()).trimmed().isEmpty());  // the engine's text
        QCOMPARE(shown[0].title, exclamation ? QString("TAVELLO - Repair/Compacting Error") : gstrAppTitle);
        QCOMPARE(shown[0].icon, exclamation ? Msg::Icon::Exclamation : Msg::Icon::None);
        QCOMPARE(shown[0].text.endsWith(
                     "\r\rPossible causes:\rSomeone was updating their status at the exact moment you selected OK.\r"
                     "Someone has the database open using MS Access.\r\rNOTE: Having the Admin program running will "
                     "NOT cause this error."),
                 exclamation);
        if (problem == "backup refused") {  // opened again after the message
            QVERIFY(gdbMain.isOpen());
            QCOMPARE(gdbMain.scalar("SELECT count(*) FROM EmployeeTable").toLongLong(),
                     scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong());
        }
        other.reset();
        gdbMain.close();
        QCOMPARE(bytesOf(live), before);
        QCOMPARE(inodeOf(live), inode);
        if (backedUp) {  // its copy is the newest backup, and the rotation ran once
            QCOMPARE(bytesOf(site.local(generation(DialogPrefix, 0))), before);
            QCOMPARE(bytesOf(site.local(generation(DialogPrefix, 1))), QByteArray("generation 0"));
            expectedFiles << generation(DialogPrefix, 1);
            expectedFiles.sort();
        }
        QCOMPARE(filesIn(site.shareFolder()), expectedFiles);
    }

    void nobodyActive_data()
    {
        QTest::addColumn<bool>("guest");
        QTest::newRow("a Guest present") << true;
        QTest::newRow("no Guest") << false;
    }

    // With nobody active the repair adds a row of defaults, made inactive
    // like any other; a Guest row already there stands in its way.
    void nobodyActive()
    {
        QFETCH(bool, guest);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        makeBoard(live, BoardShape{300, 1000000, guest});
        const qint64 users = scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong();

        subCompactDatabase();
        gdbMain.close();
        QCOMPARE(gbolRepairDone, !guest);
        QCOMPARE(Msg::transcript().size(), guest ? 1 : 0);
        if (guest)
            QVERIFY(Msg::transcript()[0].text.startsWith("Error (3022 ) in Admin - subCompactDatabase event.\r"));
        // The file was compacted all the same.
        QVERIFY(QFile::exists(site.local(generation(DialogPrefix, 0))));
        QCOMPARE(scalar(live, "PRAGMA freelist_count").toInt(), 0);
        QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'Yes'").toInt(), 0);
        QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong(), users + (guest ? 0 : 1));
        if (!guest)
            QCOMPARE(scalar(live, "SELECT ActiveFlag || '/' || Status FROM EmployeeTable WHERE Name = 'Guest'").toString(),
                     QString("No/Please Set"));
    }

    void oneShotOtherwise_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::newRow("the backup cannot be written") << "REPAIR";
        QTest::newRow("another word") << "repairs";
        QTest::newRow("two words") << "REPAIR NOW";
        QTest::newRow("a switch") << "/repair";
    }

    void oneShotOtherwise()
    {
        QFETCH(QString, commandLine);
        const bool isRepair = commandLine == "REPAIR";
        Site site;
        const QString live = boardAt(site);
        if (isRepair)  // a folder where the copy's temporary file has to go
            QVERIFY(QDir(site.shareFolder()).mkpath(generation(OneShotPrefix, 0) + ".tmp/x"));
        const QByteArray before = bytesOf(live);

        QCOMPARE(subOneShotRepair(commandLine), isRepair);
        QVERIFY(Msg::transcript().isEmpty());  // shows nothing, whatever happens
        gdbMain.close();
        QVERIFY(!QFile::exists(site.local(generation(OneShotPrefix, 0))));
        if (!isRepair) {
            QCOMPARE(bytesOf(live), before);
            QCOMPARE(filesIn(site.shareFolder()), QStringList{Live});
            return;
        }
        // The failure is logged with the engine's text and the time.
        const QString status = scalar(live, "SELECT Name || '|' || Status || '|' || LastModified FROM "
                                            "TransactionLogTable ORDER BY rowid DESC LIMIT 1").toString();
        QVERIFY2(status.startsWith("Admin|REPAIR FAILED. ") && !status.startsWith("Admin|REPAIR FAILED. |") &&
                     !status.endsWith('|'),
                 qPrintable(status));
    }

    // Readable rows between two damaged stretches, further from either than
    // the walk's seeks reach, are found through an index. And the sequence
    // survives: no id is handed out twice, not even one of a deleted row.
    void salvageReachesEveryReadableRow()
    {
        const QString file = m_work.filePath("pockets.db");
        QVERIFY(writeBytes(file, QByteArray()));  // an empty file is an empty database
        for (const char *sql : {"CREATE TABLE Wide(ID INTEGER PRIMARY KEY AUTOINCREMENT, Tag TEXT, Payload BLOB)",
                                "CREATE INDEX WideTag ON Wide(Tag)",
                                "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 300) "
                                "INSERT INTO Wide SELECT i, printf('tag %03d', i), randomblob(1000) FROM c",
                                "DELETE FROM Wide WHERE ID > 290"})
            QCOMPARE(scalar(file, sql), QVariant());
        // Damage every leaf holding ids up to 100 or from 121 to 200: the ids
        // 101 to 120 lie between, with no power of two among them.
        QVector<int> damaged;
        QSet<qint64> lost;
        for (const Leaf &leaf : leavesOf(file, "Wide")) {
            const QVector<qint64> &ids = leaf.rowids;
            QVERIFY(!ids.isEmpty());
            if (std::any_of(ids.cbegin(), ids.cend(), [](qint64 id) { return id <= 100 || (id >= 121 && id <= 200); })) {
                damaged << leaf.page;
                lost.unite(QSet<qint64>(ids.cbegin(), ids.cend()));
            }
        }
        QStringList kept;
        int between = 0;
        for (int id = 1; id <= 290; ++id) {
            if (!lost.contains(id)) {
                kept << QStringLiteral("%1:tag %2").arg(id).arg(id, 3, 10, QLatin1Char('0'));
                between += id > 100 && id < 121;
            }
        }
        QVERIFY(between >= 10);
        damagePages(file, damaged);

        QVERIFY(Compact::compactHeld(Compact::holdFile(file)).salvaged);
        QCOMPARE(integrity(file), QString("ok"));
        QCOMPARE(scalar(file, "SELECT group_concat(ID || ':' || Tag) FROM (SELECT ID, Tag FROM Wide ORDER BY ID)").toString(),
                 kept.join(QLatin1Char(',')));
        scalar(file, "INSERT INTO Wide(Tag) VALUES ('after')");
        QCOMPARE(scalar(file, "SELECT ID FROM Wide WHERE Tag = 'after'").toInt(), 301);
    }

    void dialog_data()
    {
        QTest::addColumn<bool>("board");
        QTest::addColumn<int>("button");
        QTest::addColumn<QStringList>("expectedBoxes");
        QTest::newRow("OK on a board") << true << 0 << QStringList{"TAVELLO database repair/compact completed."};
        QTest::newRow("OK on a foreign file")
            << false << 0
            << QStringList{"Error (3343 ) in Admin - subCompactDatabase event.", "TAVELLO database repair/compact failed."};
        QTest::newRow("Cancel") << true << 1 << QStringList{};
    }

    void dialog()
    {
        QFETCH(bool, board);
        QFETCH(int, button);
        QFETCH(QStringList, expectedBoxes);
        Site site;
        const QString live = board ? boardAt(site) : site.local(Live);
        site.useShareAsDataPath();
        if (!board)
            QVERIFY(writeBytes(live, "not a database\r\n"));
        const QByteArray before = bytesOf(live);

        Modal::setHandler([&](QDialog *d) {
            auto *b = d->findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(button));
            QVERIFY(b);
            QTest::mouseClick(b, Qt::LeftButton);
        });
        frmRepair dialog;
        QCOMPARE(Modal::show(&dialog), button == 0 ? int(QDialog::Accepted) : int(QDialog::Rejected));
        QVERIFY(!dialog.isVisible());
        QVERIFY(!Hourglass::shown());
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), expectedBoxes.size());
        for (int i = 0; i < shown.size(); ++i)
            QVERIFY2(shown[i].text.startsWith(expectedBoxes[i]), qPrintable(shown[i].text));
        if (!shown.isEmpty())
            QCOMPARE(shown.last().title, QString("TAVELLO - Repair Database"));
        gdbMain.close();
        QCOMPARE(QFile::exists(site.local(generation(DialogPrefix, 0))), button == 0);
        if (button != 0 || !board)
            QCOMPARE(bytesOf(live), before);
    }
};

QTEST_MAIN(TestRepair)
#include "tst_repair.moc"
