// The windows that read what they show and write it back on OK, on a board
// in use: user programs writing, reading and now and then holding the file
// to themselves while the administrator works.
#include "ConsoleFixture.h"
#include "console/AdminListView.h"
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/LockWait.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "support/BusyBoard.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QCryptographicHash>
#include <QDialog>
#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <optional>

using TestSupport::BusyBoard;
using TestSupport::ExternalHolder;

namespace {

constexpr int Members = 5000;

void seed(Database &db)
{
    db.beginTrans();
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Staff')");
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES ('Lunch', 2)");
    Statement user = db.prepareStatement("INSERT INTO EmployeeTable (Name, UID) VALUES (?, ?)");
    Statement settings = db.prepareStatement("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)");
    Statement member = db.prepareStatement("INSERT INTO EmployeeGroupTable (EmployeeName, GroupName) VALUES (?, 'Staff')");
    for (int i = 0; i < Members; ++i) {
        const QString name = QString("Member %1").arg(i, 4, 10, QChar('0'));
        user.execute({name, QString("m%1").arg(i)});
        settings.execute({name});
        member.execute({name});
    }
    db.commitTrans();
}

QByteArray digest(const QString &file)
{
    QFile f(file);
    f.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

// Opens a window the way the administrator does: a verb on a row of the
// list, or a window of the menus. `drive` gets it when it shows.
void open(ConsoleTest::Console &c, const QString &window, const QString &node, const QString &row,
          const std::function<void(QDialog *)> &drive)
{
    Modal::setHandler([&](QDialog *d) { drive(d); });
    if (node.isEmpty()) {
        DialogRegistry::showModal(window, &c.w());
    } else {
        c.clickNode(node);
        c.clickRow(c.rowOf(row));
        c.w().ModifyDispatcher(node);
    }
    Modal::setHandler({});
}

void pressOk(QDialog *d)
{
    auto *ok = d->findChild<QPushButton *>("cmdButtons_0");
    if (!ok)
        ok = d->findChild<QPushButton *>("cmdOKCompanyInfo");
    QVERIFY(ok);
    QTest::mouseClick(ok, Qt::LeftButton);
}

}  // namespace

class TestBusyBoard : public QObject {
    Q_OBJECT

private:
    static void windowRows()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("row");
        QTest::newRow("Modify User") << "frmModUser" << "Users" << "Member 0007";
        QTest::newRow("Modify Group") << "frmModGroup" << "Groups" << "Staff";
        QTest::newRow("Modify Status") << "frmModStatus" << "Status Types" << "Lunch";
        QTest::newRow("Global Settings") << "frmGlobalSettings" << "" << "";
        QTest::newRow("Security") << "frmSecurity" << "" << "";
        QTest::newRow("Photo Path") << "frmPhotoPath" << "" << "";
        QTest::newRow("New-user template") << "frmNewUser" << "" << "";
        QTest::newRow("Transaction log") << "frmTransLog" << "" << "";
    }

    // A window whose opening read still fails once the store's wait is over
    // does not open, and nothing of the file changes.
private slots:
    void openingReadFails_data() { windowRows(); }
    void openingReadFails()
    {
        QFETCH(QString, window);
        QFETCH(QString, node);
        QFETCH(QString, row);
        ConsoleTest::Console c(seed);
        c.clickNode(node.isEmpty() ? "Users" : node);
        if (!row.isEmpty())
            c.clickRow(c.rowOf(row));
        const QByteArray before = digest(c.databaseFile());
        Msg::clearTranscript();
        bool shown = false;
        std::optional<ExternalHolder> holder(std::in_place, c.databaseFile(), ExternalHolder::Hold::Exclusive);
        Store::setLockWait(300);
        // The hold ends with the first box, so the list drawn afterwards reads again.
        Msg::setWhileShown([&](const Msg::Shown &) { holder.reset(); });
        // The list is drawn before the hold; only the window's read meets it.
        Modal::setHandler([&](QDialog *d) {
            shown = true;
            pressOk(d);
        });
        if (node.isEmpty())
            DialogRegistry::showModal(window, &c.w());
        else
            c.w().ModifyDispatcher(node);
        Modal::setHandler({});
        holder.reset();
        QVERIFY2(!shown, "the window opened on a read that failed");
        QVERIFY(!Msg::transcript().isEmpty());
        QVERIFY2(Msg::transcript().first().text.startsWith("Run-time error '3260'"), qPrintable(Msg::transcript().first().text));
        QCOMPARE(digest(c.databaseFile()), before);
    }

    // A window that closes behind a box of its own brings the console back
    // with its list drawn afresh; a box of the console's own does not.
    void listRebuiltAfterBoxes()
    {
        ConsoleTest::Console c;
        c.clickNode("Users");
        // What the window system tells as windows come to the front (the
        // test platform moves no real focus between windows).
        const auto inFront = [](QWidget *w) {
            QEvent activate(QEvent::WindowActivate);
            QApplication::sendEvent(w, &activate);
        };
        const auto consoleInFront = [&] {
            QEvent change(QEvent::ActivationChange);
            QApplication::sendEvent(&c.w(), &change);
        };
        const auto addUser = [&](const QString &name) {
            Database other = c.other();
            other.execute("INSERT INTO EmployeeTable (Name) VALUES (?)", {name});
            other.execute("INSERT INTO EmployeeSettingsTable (Name) VALUES (?)", {name});
        };
        QDialog window(&c.w());
        QMessageBox box(&window);
        inFront(&window);
        addUser("Late");
        inFront(&box);
        consoleInFront();
        QVERIFY(c.texts().contains("Late"));

        addUser("Later");
        QMessageBox own(&c.w());
        inFront(&own);
        consoleInFront();
        QVERIFY(!c.texts().contains("Later"));
    }

    // The opening read meets a hold of a moment and waits for it; the window
    // shows what is stored, and its OK writes nothing away. Meanwhile the
    // user programs lose nothing.
    void passingLocks()
    {
        ConsoleTest::Console c(seed);
        // The holds are the test's own, one as each window opens.
        BusyBoard::Pace pace;
        pace.holds = false;
        BusyBoard board(c.databaseFile(), pace);
        const QStringList tables = {"EmployeeTable", "EmployeeGroupTable", "GroupTable", "StatusTypesTable",
                                    "EmployeeSettingsTable", "NewUserDefaultsTable"};
        // Rows of the board beside the writers' and the one user the administrator saves.
        const auto untouched = [&] {
            QStringList rows;
            for (const QString &t : tables)
                for (const QString &r : board.rowsBesideWriters(t, t == "EmployeeGroupTable" ? "EmployeeName" : "Name"))
                    if (!r.startsWith("Member 0007|"))
                        rows << t + ": " + r;
            return rows;
        };
        const QStringList before = untouched();

        const auto drive = [&](const QString &window, const QString &node, const QString &row) {
            ExternalHolder holder(c.databaseFile(), ExternalHolder::Hold::Exclusive);
            holder.send(".shell sleep 0.8\nCOMMIT;");
            bool shown = false;
            open(c, window, node, row, [&](QDialog *d) {
                shown = true;
                if (window == "frmModGroup")
                    QCOMPARE(d->findChild<QAbstractItemView *>("ListView2")->model()->rowCount(), Members);
                pressOk(d);
            });
            QVERIFY2(shown, qPrintable(window + " did not open"));
            QTest::qWait(1500);  // holds come now and then, not back to back
        };
        drive("frmModGroup", "Groups", "Staff");
        drive("frmModUser", "Users", "Member 0007");
        drive("frmModStatus", "Status Types", "Lunch");
        for (const char *w : {"frmGlobalSettings", "frmSecurity", "frmNewUser", "frmTransLog", "frmPhotoPath"})
            drive(w, "", "");

        const BusyBoard::Report report = board.stop();
        QVERIFY2(report.lost.isEmpty(), qPrintable(report.lost.join("\n")));
        QVERIFY2(report.lockedOut.isEmpty(), qPrintable(report.lockedOut.join("\n")));
        QVERIFY(report.committed > 0);
        QCOMPARE(untouched(), before);
    }
};

QTEST_MAIN(TestBusyBoard)
#include "tst_busyboard.moc"
