// Repair and compact in the console's own process: the backups and their
// rotation, damaged and foreign files, other programs holding the file,
// the reset of active flags, the command-line route and the dialog.
#include "RepairFixtures.h"

#include "core/Global.h"
#include "platform/Compact.h"
#include "platform/Database.h"
#include "platform/Help.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/Repair.h"
#include "store/frmRepair.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSet>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScreen>
#include <QStatusBar>
#include <QTest>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

using namespace RepairFixtures;
using TestSupport::ExternalHolder;
using TestSupport::Site;

namespace {

const QString Live = QStringLiteral("tavello.mdb");
const QString DialogPrefix = QStringLiteral("tavello-database-backup.");
const QString OneShotPrefix = QStringLiteral("tavello.");
const QString CompactingErrorTitle = QStringLiteral("TAVELLO - Repair/Compacting Error");
const QString CannotCompleteTail = QStringLiteral(
    "\r\rPossible causes:\rSomeone was updating their status at the exact moment you selected OK.\r"
    "Someone has the database open using MS Access.\r\rNOTE: Having the Admin program running will NOT cause this error.");

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

QString withFlagsReset(QString row)
{
    return row.replace(QStringLiteral("|TYes|"), QStringLiteral("|TNo|"));
}

void execRaw(const QString &local, const char *sql)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(local).constData(), &db);
    char *error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK)
        qFatal("%s: %s", sql, error);
    sqlite3_close(db);
}

}  // namespace

class TestRepair : public QObject {
    Q_OBJECT

    QTemporaryDir m_work;
    QString m_board;  // a board of some thousand users with free pages, built once

    QString freshBoard(const Site &site, const BoardShape *shape = nullptr)
    {
        const QString live = site.local(Live);
        if (shape)
            makeBoard(live, *shape);
        else
            QFile::copy(m_board, live);
        return live;
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
        QTest::addColumn<bool>("oneShot");
        QTest::addColumn<QList<int>>("present");
        QTest::newRow("dialog, no backups yet") << false << QList<int>{};
        QTest::newRow("dialog, all ten present") << false << QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        QTest::newRow("dialog, some missing") << false << QList<int>{0, 3, 8, 9};
        QTest::newRow("command line, no backups yet") << true << QList<int>{};
        QTest::newRow("command line, all ten present") << true << QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    }

    void rotation()
    {
        QFETCH(bool, oneShot);
        QFETCH(QList<int>, present);
        Site site;
        site.useShareAsDataPath();
        const QString live = freshBoard(site);
        const QString prefix = oneShot ? OneShotPrefix : DialogPrefix;
        for (int n : present)
            QVERIFY(writeBytes(site.local(generation(prefix, n)), "generation " + QByteArray::number(n)));
        const QByteArray before = bytesOf(live);
        const quint64 inode = inodeOf(live);
        const QString expectedData = oneShot ? fingerprint(live) : flagsResetFingerprint(live);

        if (oneShot) {
            QVERIFY(subOneShotRepair(QStringLiteral("repair")));
        } else {
            subCompactDatabase();
            QVERIFY(gbolRepairDone);
            QVERIFY(gdbMain.isOpen());
        }
        QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));

        // The untouched file is the newest generation; every older one moved one along.
        QCOMPARE(bytesOf(site.local(generation(prefix, 0))), before);
        QStringList expectedFiles{Live, generation(prefix, 0)};
        for (int n : present) {
            if (n == 9)
                continue;  // the oldest is gone
            QCOMPARE(bytesOf(site.local(generation(prefix, n + 1))), "generation " + QByteArray::number(n));
            expectedFiles << generation(prefix, n + 1);
        }
        expectedFiles.removeDuplicates();
        expectedFiles.sort();
        gdbMain.close();
        QCOMPARE(filesIn(site.shareFolder()), expectedFiles);  // no journal, no half copy left behind

        // Compacted in place: the same file, smaller, with the same data.
        QCOMPARE(inodeOf(live), inode);
        QVERIFY(bytesOf(live).size() < before.size());
        QCOMPARE(integrity(live), QString("ok"));
        QCOMPARE(scalar(live, "PRAGMA freelist_count").toInt(), 0);
        if (oneShot)  // the one log row aside
            scalar(live, "DELETE FROM TransactionLogTable WHERE Name = 'Admin' AND Status = 'REPAIR SUCCESSFUL'");
        QCOMPARE(fingerprint(live), expectedData);
    }

    void damagedFiles_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<bool>("allRowsKept");
        QTest::newRow("two neighbouring leaves and a third") << "table leaves" << false;
        QTest::newRow("first and last leaf") << "edge leaves" << false;
        QTest::newRow("index pages only") << "index leaves" << true;
        QTest::newRow("leaves and index pages") << "both" << false;
    }

    void damagedFiles()
    {
        QFETCH(QString, damage);
        QFETCH(bool, allRowsKept);
        Site site;
        site.useShareAsDataPath();
        const QString live = freshBoard(site);
        const QMap<QString, QString> original = employeeRows(live);

        const QVector<int> leaves = pagesOf(live, "EmployeeTable", "leaf");
        QVERIFY(leaves.size() > 60);
        QVector<int> tablePages;
        if (damage == "table leaves" || damage == "both")
            tablePages = {leaves[10], leaves[11], leaves[40]};
        else if (damage == "edge leaves")
            tablePages = {leaves.first(), leaves.last()};
        QVector<int> indexPages;
        if (damage == "index leaves" || damage == "both") {
            for (const QString &index : {QStringLiteral("EmployeeTable.Comments"), QStringLiteral("EmployeeTable.UID"),
                                         QStringLiteral("sqlite_autoindex_EmployeeTable_1")}) {
                const QVector<int> pages = pagesOf(live, index, "leaf");
                if (pages.size() > 3)
                    indexPages << pages[1] << pages[pages.size() / 2];
            }
            QVERIFY(indexPages.size() >= 4);
        }
        QSet<QString> onDamagedPages;
        for (int page : tablePages)
            for (const QString &name : namesOnLeaf(live, page))
                onDamagedPages.insert(name);
        QCOMPARE(onDamagedPages.isEmpty(), tablePages.isEmpty());
        damagePages(live, tablePages + indexPages);
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
        const QMap<QString, QString> salvaged = employeeRows(live);
        // Every row of an undamaged page is there, unchanged but for the reset flag.
        for (auto it = original.cbegin(); it != original.cend(); ++it) {
            if (onDamagedPages.contains(it.key()))
                continue;
            QVERIFY2(salvaged.contains(it.key()), qPrintable(it.key()));
            QCOMPARE(salvaged.value(it.key()), withFlagsReset(it.value()));
        }
        for (auto it = salvaged.cbegin(); it != salvaged.cend(); ++it)
            QVERIFY2(original.contains(it.key()), qPrintable("invented: " + it.key()));
        if (allRowsKept)
            QCOMPARE(salvaged.size(), original.size());
        // The other tables came through whole.
        QCOMPARE(scalar(live, "SELECT count(*) FROM StatusTypesTable").toInt(),
                 scalar(site.local(generation(DialogPrefix, 0)), "SELECT count(*) FROM StatusTypesTable").toInt());
        // The rebuilt indexes answer for the rows: a unique key still refuses a duplicate.
        QVERIFY(scalar(live, "INSERT INTO EmployeeTable(Name, UID) VALUES ('" + salvaged.lastKey() + "', 'fresh')")
                    .toString()
                    .startsWith("error: UNIQUE"));
    }

    void unreadableFiles_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("expectedStart");
        QTest::addColumn<QString>("expectedTitle");
        const QString notThisStore = QStringLiteral("Error (3343 ) in Admin - subCompactDatabase event.\r");
        QTest::newRow("a text file") << "text" << notThisStore << QString();
        QTest::newRow("binary noise") << "noise" << notThisStore << QString();
        QTest::newRow("a database whose header was overwritten") << "header" << notThisStore << QString();
        QTest::newRow("a database whose table list is damaged")
            << "schema" << "Cannot complete the current operation due to the following error: (3049 ) \r"
            << CompactingErrorTitle;
    }

    void unreadableFiles()
    {
        QFETCH(QString, content);
        QFETCH(QString, expectedStart);
        QFETCH(QString, expectedTitle);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        if (content == "text") {
            QVERIFY(writeBytes(live, "Name,Status\r\nAnne,In\r\nBill,Out\r\n"));
        } else if (content == "noise") {
            QByteArray noise(65536, Qt::Uninitialized);
            for (char &c : noise)
                c = char(QRandomGenerator::global()->bounded(256));
            QVERIFY(writeBytes(live, noise));
        } else {
            freshBoard(site);
            QByteArray bytes = bytesOf(live);
            if (content == "header")
                bytes.replace(0, 100, QByteArray(100, 'x'));
            else  // page 1 holds the root of the table list, behind the file header
                bytes.replace(100, 3996, QByteArray(3996, '\x5a'));
            QVERIFY(writeBytes(live, bytes));
        }
        QVERIFY(writeBytes(site.local(generation(DialogPrefix, 0)), "generation 0"));
        const QByteArray before = bytesOf(live);
        const quint64 inode = inodeOf(live);

        QElapsedTimer clock;
        clock.start();
        subCompactDatabase();
        // A damaged file is not waited for: no three tries of a second.
        QVERIFY2(clock.elapsed() < 1500, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!gbolRepairDone);

        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith(expectedStart), qPrintable(shown[0].text));
        const QString engineText = shown[0].text.mid(expectedStart.size());
        QVERIFY(!engineText.trimmed().isEmpty());
        if (expectedTitle.isEmpty()) {
            QCOMPARE(shown[0].title, gstrAppTitle);
            QVERIFY(!engineText.contains('\r'));
        } else {
            QCOMPARE(shown[0].title, expectedTitle);
            QCOMPARE(shown[0].icon, Msg::Icon::Exclamation);
            QVERIFY(shown[0].text.endsWith(CannotCompleteTail));
        }

        // The file is never replaced, cut or written: byte for byte what it was.
        QCOMPARE(bytesOf(live), before);
        QCOMPARE(inodeOf(live), inode);
        // Its copy is the newest backup, and the rotation ran once.
        QCOMPARE(bytesOf(site.local(generation(DialogPrefix, 0))), before);
        QCOMPARE(bytesOf(site.local(generation(DialogPrefix, 1))), QByteArray("generation 0"));
        gdbMain.close();
        QCOMPARE(filesIn(site.shareFolder()),
                 QStringList({generation(DialogPrefix, 0), generation(DialogPrefix, 1), Live}));
    }

    void fileNotToBeHad_data()
    {
        QTest::addColumn<QString>("problem");
        QTest::addColumn<QString>("expectedStart");
        QTest::addColumn<bool>("rowThree");  // the exclamation box with its causes, and a reopen
        const QString cannot = QStringLiteral("Cannot complete the current operation due to the following error: (");
        QTest::newRow("one program has the file to itself") << "exclusive" << cannot + "3045 ) \r" << true;
        QTest::newRow("a program is reading") << "read" << "Error (3050 ) in Admin - subCompactDatabase event.\r" << false;
        QTest::newRow("a program is writing") << "write" << "Error (3050 ) in Admin - subCompactDatabase event.\r" << false;
        QTest::newRow("the backup cannot be written") << "backup refused" << cannot + "75 ) \r" << true;
        QTest::newRow("no database in the folder")
            << "no file" << "Error (3024 ) in Admin - subCompactDatabase event.\r" << false;
    }

    // Three tries a second apart, then the message; the file is left as it was.
    void fileNotToBeHad()
    {
        QFETCH(QString, problem);
        QFETCH(QString, expectedStart);
        QFETCH(bool, rowThree);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        QStringList expectedFiles;
        if (problem != "no file") {
            freshBoard(site);
            expectedFiles << Live;
        }
        if (problem == "backup refused") {  // a folder stands where the copy is written first
            QVERIFY(QDir(site.shareFolder()).mkpath(generation(DialogPrefix, 0) + ".tmp/x"));
            expectedFiles.prepend(generation(DialogPrefix, 0) + ".tmp");
        }
        const QMap<QString, ExternalHolder::Hold> holds{{"exclusive", ExternalHolder::Hold::Exclusive},
                                                        {"read", ExternalHolder::Hold::Read},
                                                        {"write", ExternalHolder::Hold::Write}};
        std::unique_ptr<ExternalHolder> other;
        if (holds.contains(problem)) {
            other = std::make_unique<ExternalHolder>(live, holds[problem], "UPDATE EmployeeTable SET Status = 'Out' WHERE Name = 'Guest';");
            QVERIFY(other->started());
        }
        const QByteArray before = bytesOf(live);

        QElapsedTimer clock;
        clock.start();
        subCompactDatabase();
        const qint64 took = clock.elapsed();
        QVERIFY2(took >= 2000 && took < 8000, qPrintable(QString::number(took)));
        QVERIFY(!gbolRepairDone);
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].text.startsWith(expectedStart), qPrintable(shown[0].text));
        QVERIFY(!shown[0].text.mid(expectedStart.size()).trimmed().isEmpty());  // the engine's text
        QCOMPARE(shown[0].title, rowThree ? CompactingErrorTitle : gstrAppTitle);
        QCOMPARE(shown[0].icon, rowThree ? Msg::Icon::Exclamation : Msg::Icon::None);
        QCOMPARE(shown[0].text.endsWith(CannotCompleteTail), rowThree);
        if (rowThree && !other) {  // opened again after the message, when it can be
            QVERIFY(gdbMain.isOpen());
            QCOMPARE(gdbMain.scalar("SELECT count(*) FROM EmployeeTable").toLongLong(),
                     scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong());
        }
        other.reset();
        gdbMain.close();
        QCOMPARE(bytesOf(live), before);
        QCOMPARE(filesIn(site.shareFolder()), expectedFiles);  // no rotation, no copy
    }

    // While the file is held, no other program reads or writes it; once it is let go, they do.
    void holdKeepsOthersOut()
    {
        Site site;
        const QString live = freshBoard(site);
        const qint64 dueBacks = scalar(live, "SELECT count(*) FROM DueBackTable").toLongLong();
        {
            const Compact::Connection held = Compact::holdFile(live);
            ExternalHolder other(live, ExternalHolder::Hold::None);
            QVERIFY(other.started());
            other.run(".timeout 100");
            QVERIFY(other.run("SELECT count(*) FROM DueBackTable;").contains("locked"));
            QVERIFY(other.run("INSERT INTO DueBackTable(DueBack) VALUES ('Never');").contains("locked"));
        }
        ExternalHolder other(live, ExternalHolder::Hold::None);
        QCOMPARE(other.run("INSERT INTO DueBackTable(DueBack) VALUES ('Soon'); SELECT count(*) FROM DueBackTable;"),
                 QString::number(dueBacks + 1));
    }

    void activeFlags_data()
    {
        QTest::addColumn<int>("activeEvery");
        QTest::addColumn<bool>("guest");
        QTest::addColumn<bool>("expectDone");
        QTest::addColumn<QString>("expectedBoxStart");
        QTest::newRow("some users active") << 7 << true << true << QString();
        QTest::newRow("nobody active, a Guest present")
            << 1000000 << true << false << "Error (3022 ) in Admin - subCompactDatabase event.\r";
        QTest::newRow("nobody active, no Guest") << 1000000 << false << true << QString();
    }

    void activeFlags()
    {
        QFETCH(int, activeEvery);
        QFETCH(bool, guest);
        QFETCH(bool, expectDone);
        QFETCH(QString, expectedBoxStart);
        Site site;
        site.useShareAsDataPath();
        BoardShape shape;
        shape.users = 300;
        shape.activeEvery = activeEvery;
        shape.guest = guest;
        const QString live = freshBoard(site, &shape);
        const qint64 users = scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong();
        const qint64 activeBefore = scalar(live, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'Yes'").toLongLong();
        const qint64 inactiveBefore = scalar(live, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'No'").toLongLong();

        subCompactDatabase();
        gdbMain.close();
        QCOMPARE(gbolRepairDone, expectDone);
        if (expectedBoxStart.isEmpty()) {
            QVERIFY2(Msg::transcript().isEmpty(), qPrintable(Msg::transcript().value(0).text));
        } else {
            QCOMPARE(Msg::transcript().size(), 1);
            QVERIFY2(Msg::transcript()[0].text.startsWith(expectedBoxStart), qPrintable(Msg::transcript()[0].text));
        }
        // The file was compacted all the same.
        QVERIFY(QFile::exists(site.local(generation(DialogPrefix, 0))));
        QCOMPARE(scalar(live, "PRAGMA freelist_count").toInt(), 0);

        QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'Yes'").toInt(), 0);
        const qint64 noNow = scalar(live, "SELECT count(*) FROM EmployeeTable WHERE ActiveFlag = 'No'").toLongLong();
        if (activeBefore > 0) {
            QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong(), users);
            QCOMPARE(noNow, inactiveBefore + activeBefore);  // other values ("Not Set") stay
        } else if (!guest) {
            // A row of defaults, made inactive like any other.
            QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong(), users + 1);
            QCOMPARE(scalar(live, "SELECT ActiveFlag || '/' || Status FROM EmployeeTable WHERE Name = 'Guest'").toString(),
                     QString("No/Please Set"));
        } else {
            QCOMPARE(scalar(live, "SELECT count(*) FROM EmployeeTable").toLongLong(), users);
        }
    }

    void oneShot_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<bool>("isRepair");
        QTest::addColumn<bool>("blockCopy");
        QTest::addColumn<QString>("expectedStatus");
        QTest::newRow("lower case") << "repair" << true << false << "REPAIR SUCCESSFUL";
        QTest::newRow("mixed case with blanks") << "  RePaIr " << true << false << "REPAIR SUCCESSFUL";
        QTest::newRow("the backup cannot be written") << "REPAIR" << true << true << "REPAIR FAILED. ";
        QTest::newRow("another word") << "repairs" << false << false << QString();
        QTest::newRow("two words") << "REPAIR NOW" << false << false << QString();
        QTest::newRow("a switch") << "/repair" << false << false << QString();
    }

    void oneShot()
    {
        QFETCH(QString, commandLine);
        QFETCH(bool, isRepair);
        QFETCH(bool, blockCopy);
        QFETCH(QString, expectedStatus);
        Site site;
        site.useShareAsDataPath();
        const QString live = freshBoard(site);
        if (blockCopy)  // a folder where the copy's temporary file has to go
            QVERIFY(QDir(site.shareFolder()).mkpath(generation(OneShotPrefix, 0) + ".tmp/x"));
        const QByteArray before = bytesOf(live);
        const QString employees = fingerprint(live);
        const qint64 logRows = scalar(live, "SELECT count(*) FROM TransactionLogTable").toLongLong();

        QCOMPARE(subOneShotRepair(commandLine), isRepair);
        QVERIFY(Msg::transcript().isEmpty());  // shows nothing, whatever happens
        QVERIFY(!Hourglass::shown() || expectedStatus.isEmpty() || !blockCopy);
        gdbMain.close();

        if (!isRepair) {
            QCOMPARE(bytesOf(live), before);
            QCOMPARE(filesIn(site.shareFolder()), QStringList{Live});
            return;
        }
        QCOMPARE(scalar(live, "SELECT count(*) FROM TransactionLogTable").toLongLong(), logRows + 1);
        const QString status =
            scalar(live, "SELECT Name || '|' || Status FROM TransactionLogTable ORDER BY rowid DESC LIMIT 1").toString();
        QVERIFY2(status.startsWith("Admin|" + expectedStatus), qPrintable(status));
        QVERIFY(!scalar(live, "SELECT LastModified FROM TransactionLogTable ORDER BY rowid DESC LIMIT 1").toString().isEmpty());
        if (blockCopy) {
            QVERIFY(status.size() > QString("Admin|REPAIR FAILED. ").size());  // the engine's text follows
            QVERIFY(!QFile::exists(site.local(generation(OneShotPrefix, 0))));
        } else {
            QCOMPARE(bytesOf(site.local(generation(OneShotPrefix, 0))), before);
            QVERIFY(!QFile::exists(site.local(generation(DialogPrefix, 0))));
        }
        scalar(live, "DELETE FROM TransactionLogTable WHERE Name = 'Admin' AND Status LIKE 'REPAIR %'");
        QCOMPARE(fingerprint(live), employees);
    }

    // What a salvage must keep besides the rows: sequences, triggers that
    // must not fire while rows are copied, views, tables without a rowid,
    // and rows at the far ends of the key range.
    void salvageKeepsTheRest()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("odd.db");
        execRaw(file,
                "CREATE TABLE Counted(ID INTEGER PRIMARY KEY AUTOINCREMENT, Note TEXT);"
                "CREATE TABLE Audit(Note TEXT);"
                "CREATE TABLE Spread(Note TEXT);"
                "CREATE TABLE Keyed(K TEXT PRIMARY KEY, V TEXT) WITHOUT ROWID;"
                "CREATE TRIGGER CountedAudit AFTER INSERT ON Counted BEGIN INSERT INTO Audit VALUES (new.Note); END;"
                "CREATE VIEW Recent AS SELECT Note FROM Counted WHERE ID > 50;"
                "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 3000) "
                "INSERT INTO Counted(Note) SELECT printf('note %05d %s', i, hex(randomblob(40))) FROM c;"
                "DELETE FROM Counted WHERE ID > 2990;"
                "INSERT INTO Spread(rowid, Note) VALUES (-9223372036854775808, 'lowest'), (-5, 'negative'), "
                "(9223372036854775807, 'highest');"
                "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 3000) "
                "INSERT INTO Spread(rowid, Note) SELECT i * 1000, printf('spread %05d %s', i, hex(randomblob(40))) FROM c;"
                "INSERT INTO Keyed VALUES ('a', '1'), ('b', '2'), ('c', '3');"
                "PRAGMA user_version = 2005;");
        const qint64 audits = scalar(file, "SELECT count(*) FROM Audit").toLongLong();
        const QVector<int> leaves = pagesOf(file, "Spread", "leaf");
        const QVector<int> counted = pagesOf(file, "Counted", "leaf");
        QVERIFY(leaves.size() > 20 && counted.size() > 20);
        damagePages(file, {leaves[leaves.size() / 2], counted[counted.size() / 3]});

        Compact::Result result;
        result = Compact::compactHeld(Compact::holdFile(file));
        QVERIFY(result.salvaged);
        QCOMPARE(result.unreadableRuns, 2);
        QCOMPARE(result.tablesLost, 0);
        QCOMPARE(integrity(file), QString("ok"));
        QCOMPARE(scalar(file, "SELECT count(*) FROM Audit").toLongLong(), audits);
        QCOMPARE(scalar(file, "SELECT group_concat(Note) FROM (SELECT Note FROM Spread WHERE Note NOT LIKE 'spread%' ORDER BY rowid)")
                     .toString(),
                 QString("lowest,negative,highest"));
        const qint64 spread = scalar(file, "SELECT count(*) FROM Spread").toLongLong();
        QVERIFY2(spread > 2900 && spread < 3003, qPrintable(QString::number(spread)));
        QCOMPARE(scalar(file, "SELECT group_concat(K || V) FROM Keyed").toString(), QString("a1,b2,c3"));
        QCOMPARE(scalar(file, "PRAGMA user_version").toInt(), 2005);
        QVERIFY(scalar(file, "SELECT count(*) FROM Recent").toInt() > 2800);
        // No id is handed out twice, not even one of the deleted rows.
        scalar(file, "INSERT INTO Counted(Note) VALUES ('after')");
        QCOMPARE(scalar(file, "SELECT ID FROM Counted WHERE Note = 'after'").toInt(), 3001);
        QCOMPARE(scalar(file, "SELECT count(*) FROM Audit").toLongLong(), audits + 1);  // the trigger is back at work
    }

    // Readable rows that lie between two damaged stretches, further from
    // either than the walk's seeks reach, are found through an index.
    void salvageReachesRowsBetweenDamage()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("pockets.db");
        execRaw(file,
                "CREATE TABLE Wide(ID INTEGER PRIMARY KEY, Tag TEXT, Payload BLOB);"
                "CREATE INDEX WideTag ON Wide(Tag);"
                "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 300) "
                "INSERT INTO Wide SELECT i, printf('tag %03d', i), randomblob(1000) FROM c;");
        // Damage every leaf holding ids up to 100 or from 121 to 200: the ids
        // 101 to 120 lie between, with no power of two among them.
        QVector<int> damaged;
        QSet<qint64> lost;
        for (int page : pagesOf(file, "Wide", "leaf")) {
            const QVector<qint64> ids = rowidsOnLeaf(file, page);
            QVERIFY(!ids.isEmpty());
            const bool hit = std::any_of(ids.cbegin(), ids.cend(), [](qint64 id) { return id <= 100 || (id >= 121 && id <= 200); });
            if (hit) {
                damaged << page;
                for (qint64 id : ids)
                    lost.insert(id);
            }
        }
        QSet<qint64> between;
        for (qint64 id = 101; id <= 120; ++id)
            if (!lost.contains(id))
                between.insert(id);
        QVERIFY(between.size() >= 10);
        damagePages(file, damaged);

        const Compact::Result result = Compact::compactHeld(Compact::holdFile(file));
        QVERIFY(result.salvaged);
        QCOMPARE(integrity(file), QString("ok"));
        for (qint64 id = 1; id <= 300; ++id) {
            if (lost.contains(id))
                continue;
            QCOMPARE(scalar(file, QStringLiteral("SELECT Tag FROM Wide WHERE ID = %1").arg(id)).toString(),
                     QStringLiteral("tag %1").arg(id, 3, 10, QLatin1Char('0')));
        }
        QCOMPARE(scalar(file, "SELECT count(*) FROM Wide").toLongLong(), 300 - lost.size());
    }

    void dialogTexts()
    {
        Site site;
        frmRepair dialog;
        QCOMPARE(dialog.windowTitle(), gstrAppTitle + "Repair / Compact Database");
        QStringList labels;
        for (const QLabel *l : dialog.findChildren<QLabel *>())
            labels << l->text();
        QVERIFY(labels.contains("WARNING"));
        QVERIFY(labels.contains("Exclusive access is temporarily required to repair or compact the TAVELLO database. "
                                "During the short repair process, users that are logged on will not be able to update "
                                "their status."));
        QVERIFY(labels.contains("NOTE: Users do NOT need to be logged off during the repair process."));
        const QStringList captions{"OK", "Cancel", "&Help"};
        const QStringList hints{" Begin repair/compact database.", " Exit without repairing/compacting database.",
                                " Display Help."};
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const QRect screen = dialog.screen()->availableGeometry();
        QVERIFY(qAbs(dialog.frameGeometry().center().x() - screen.center().x()) <= 2);
        QVERIFY(qAbs(dialog.frameGeometry().center().y() - screen.center().y()) <= 2);
        for (int i = 0; i < 3; ++i) {
            auto *button = dialog.findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(i));
            QVERIFY(button);
            QCOMPARE(button->text(), captions[i]);
            QTest::mouseMove(button);
            QEvent enter(QEvent::Enter);
            QCoreApplication::sendEvent(button, &enter);
            QCOMPARE(dialog.hint(), hints[i]);
        }
        QTest::mouseMove(&dialog, QPoint(2, 2));
        QCOMPARE(dialog.hint(), QString());

        Help::install();
        QTest::mouseClick(dialog.findChild<QPushButton *>("cmdButtons_2"), Qt::LeftButton);
        QCOMPARE(Help::lastPage(), QString("frmRepair"));
        QVERIFY(dialog.isVisible());
    }

    void dialog_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("button");
        QTest::addColumn<QStringList>("expectedBoxes");
        QTest::addColumn<bool>("expectBackup");
        QTest::newRow("OK on a board") << "board" << 0 << QStringList{"TAVELLO database repair/compact completed."} << true;
        QTest::newRow("OK on a foreign file")
            << "text" << 0
            << QStringList{"Error (3343 ) in Admin - subCompactDatabase event.", "TAVELLO database repair/compact failed."}
            << true;
        QTest::newRow("Cancel") << "board" << 1 << QStringList{} << false;
    }

    void dialog()
    {
        QFETCH(QString, file);
        QFETCH(int, button);
        QFETCH(QStringList, expectedBoxes);
        QFETCH(bool, expectBackup);
        Site site;
        site.useShareAsDataPath();
        const QString live = site.local(Live);
        if (file == "board")
            freshBoard(site);
        else
            QVERIFY(writeBytes(live, "not a database\r\n"));
        const QByteArray before = bytesOf(live);

        int result = -1;
        Modal::setHandler([&](QDialog *d) {
            auto *b = d->findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(button));
            QVERIFY(b);
            QTest::mouseClick(b, Qt::LeftButton);
        });
        {
            frmRepair dialog;
            result = Modal::show(&dialog);
            QVERIFY(!dialog.isVisible());
        }
        QCOMPARE(result, button == 0 ? int(QDialog::Accepted) : int(QDialog::Rejected));
        QVERIFY(!Hourglass::shown());
        const QList<Msg::Shown> shown = Msg::transcript();
        QCOMPARE(shown.size(), expectedBoxes.size());
        for (int i = 0; i < shown.size(); ++i)
            QVERIFY2(shown[i].text.startsWith(expectedBoxes[i]), qPrintable(shown[i].text));
        if (!shown.isEmpty()) {
            QCOMPARE(shown.last().title, QString("TAVELLO - Repair Database"));
            QCOMPARE(shown.last().icon, Msg::Icon::Exclamation);
            QCOMPARE(shown.last().buttons, Msg::Buttons::OK);
        }
        gdbMain.close();
        QCOMPARE(QFile::exists(site.local(generation(DialogPrefix, 0))), expectBackup);
        if (button != 0 || file != "board")
            QCOMPARE(bytesOf(live), before);
    }
};

QTEST_MAIN(TestRepair)
#include "tst_repair.moc"
