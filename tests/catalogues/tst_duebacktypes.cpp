// Due-back types: the typing rule, Add's pattern test, Modify's case-only
// rename and its collision protocol, deletion in one batch. No counter is
// ever raised and no user's DueBack is touched.
#include "CataloguesTest.h"

#include "catalogues/frmAddDueBack.h"
#include "catalogues/frmModDueBack.h"
#include "console/frmMain.h"
#include "core/ERRORS.h"

#include <QLabel>
#include <QLineEdit>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace CataloguesTest;

namespace {

void seedBoard(Database &db)
{
    addUsers(db, {"Ann=a1", "Bob=b1"});
    db.execute("UPDATE EmployeeTable SET DueBack = 'Late this Morning' WHERE Name = 'Ann'");
    db.execute("UPDATE EmployeeTable SET DueBack = '07:30 am' WHERE Name = 'Bob'");
}

QString phrases(Database &db) { return rows(db, "SELECT DueBack FROM DueBackTable ORDER BY rowid"); }

// Everything a due-back change must leave alone.
QString untouched(Database &db)
{
    return rows(db, "SELECT Name, DueBack FROM EmployeeTable ORDER BY Name") + '\n' +
           rows(db, "SELECT * FROM StatusCounterTable");
}

}  // namespace

class TestDueBackTypes : public QObject {
    Q_OBJECT

private slots:
    void init() { gintRetryCount() = 0; }

    void typingRule_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("left");
        QTest::addColumn<int>("refusals");
        QTest::newRow("Add") << "Add" << "at \"5\"" << "at " << 3;
        QTest::newRow("Modify") << "Mod" << "\"" << "" << 1;
        QTest::newRow("Modify, no quote") << "Mod" << "After 'tea' [2] 50%" << "After 'tea' [2] 50%" << 0;
    }
    void typingRule()
    {
        QFETCH(QString, window);
        QFETCH(QString, pasted);
        QFETCH(QString, left);
        QFETCH(int, refusals);
        Console c(seedBoard);
        SelectedDueBackName = "Late this Morning";
        std::unique_ptr<QDialog> d;
        if (window == "Add")
            d = std::make_unique<frmAddDueBack>();
        else
            d = std::make_unique<frmModDueBack>();
        d->show();
        QLineEdit *field = control<QLineEdit>(d.get(), window == "Add" ? "txtAddDueBack" : "txtModifyDueBack");
        field->setText(pasted);
        QCOMPARE(field->text(), left);
        const QString refusal = window == "Add"
                                    ? "Invalid Character In DueBack Type|Sorry, 'double quotes' are not allowed in a DueBack Type."
                                    : "Invalid Character In Message Type|Sorry, 'double quotes' are not allowed in a Message Type.";
        QCOMPARE(shown(), QStringList(refusals, refusal));
    }

    // Add: the checks with their texts, the pattern test of `like`, or the
    // row added and "Add another".
    void add_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        const QString exists = "Error - DueBack Type Exists|Sorry, %1 already exists.\rPlease enter a different DueBack Type.";
        QTest::newRow("blanks") << "   " << "Add DueBack Type Error|Please enter a new DueBack Type";
        QTest::newRow("other case") << " late THIS morning " << exists.arg("late THIS morning");
        QTest::newRow("pattern matching another") << "07:?0 am" << exists.arg("07:?0 am");
        QTest::newRow("digit pattern") << "1#:00*" << exists.arg("1#:00*");
        QTest::newRow("new") << "  After lunch " << "Add DueBack Type|Add another DueBack Type?";
        QTest::newRow("brackets, percent, apostrophe") << "[x] 50% o'clock"
                                                       << "Add DueBack Type|Add another DueBack Type?";
    }
    void add()
    {
        QFETCH(QString, text);
        QFETCH(QString, box);
        Console c(seedBoard);
        Database other = c.other();
        const QString before = phrases(other), kept = untouched(other);
        frmAddDueBack d;
        d.show();
        control<QLineEdit>(&d, "txtAddDueBack")->setText(text);
        Msg::queueAnswers({Msg::No});
        QTest::keyClick(control<QLineEdit>(&d, "txtAddDueBack"), Qt::Key_Return);
        QCOMPARE(shown(), QStringList{box});
        const bool added = box.startsWith("Add DueBack Type|");
        QCOMPARE(phrases(other), added ? before + '\n' + text.trimmed() : before);
        QCOMPARE(d.isVisible(), !added);
        QCOMPARE(untouched(other), kept);
    }

    // Modify from the console: "No changes made." for blanks or the same
    // text; a change of case only goes through without a duplicate test;
    // another phrase's text is refused. A row gone meanwhile gets the
    // collision protocol's message and the window stays; a locked row is
    // retried once in silence, then the operator is asked.
    void modify_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("meanwhile");  // "delete" the row, "lock": held over one write, "held": over all
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("after");      // the phrase's row afterwards
        const QString none = Msg::defaultTitle() + "|No changes made.";
        const QString asked = "TAVELLO|The database is currently updating.  Would you like to retry ?";
        QTest::newRow("blanks") << "  " << "" << QList<int>{} << QStringList{none} << "Late this Morning";
        QTest::newRow("the same, with blanks") << " Late this Morning " << "" << QList<int>{} << QStringList{none}
                                               << "Late this Morning";
        QTest::newRow("case only") << "LATE this morning" << "" << QList<int>{} << QStringList{} << "LATE this morning";
        QTest::newRow("another's text") << "late this AFTERNOON" << "" << QList<int>{}
                                        << QStringList{Msg::defaultTitle() + "|The DueBack Type you've chosen already exists."}
                                        << "Late this Morning";
        QTest::newRow("equality, not a pattern") << "Late*" << "" << QList<int>{} << QStringList{} << "Late*";
        QTest::newRow("deleted meanwhile") << "Later" << "delete" << QList<int>{}
                                           << QStringList{Msg::defaultTitle() + "|Error=3021 Error message=No current "
                                                                                "record.. Update cancelled."}
                                           << "";
        QTest::newRow("locked once: silent retry") << "Later" << "lock" << QList<int>{} << QStringList{} << "Later";
        QTest::newRow("locked on: asked, No") << "Later" << "held" << QList<int>{Msg::No} << QStringList{asked}
                                              << "Late this Morning";
    }
    void modify()
    {
        QFETCH(QString, text);
        QFETCH(QString, meanwhile);
        QFETCH(QList<int>, answers);
        QFETCH(QStringList, boxes);
        QFETCH(QString, after);
        Console c(seedBoard);
        Database other = c.other();
        const QString kept = untouched(other);
        const qint64 rowid = other.scalar("SELECT rowid FROM DueBackTable WHERE DueBack = ?", {"Late this Morning"}).toLongLong();
        bool open = false;
        Msg::queueAnswers(answers);
        QVERIFY(dispatch(c, "DueBack Types", {"Late this Morning"}, "Modify", [&](QDialog *d) {
            QCOMPARE(control<QLabel>(d, "lblCurrent")->text(), QString("Late this Morning"));
            control<QLineEdit>(d, "txtModifyDueBack")->setText(text);
            if (meanwhile == "delete")
                other.execute("DELETE FROM DueBackTable WHERE rowid = ?", {rowid});
            if (meanwhile == "held") {
                TestSupport::ExternalHolder holder(c.databaseFile(), TestSupport::ExternalHolder::Hold::Write);
                press(d, 0);
            } else {
                heldDuring(c, meanwhile == "lock" ? "lock" : "", [&] { press(d, 0); }, 1, "UPDATE");
            }
            open = d->isVisible();
        }));
        QCOMPARE(shown(), boxes);
        QCOMPARE(open, !boxes.isEmpty());
        QCOMPARE(rows(other, "SELECT DueBack FROM DueBackTable WHERE rowid = ?", {rowid}), after);
        QCOMPARE(untouched(other), kept);
    }

    // Delete from the console: one batch, a box per failure, Cancel leaves
    // that phrase and the rest go; nothing selected closes the window.
    void remove_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("hold");
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QStringList>("gone");
        const QStringList two{"07:30 am", "Late this Morning"};
        const QString failed = Msg::defaultTitle() + "|An error occured while trying to delete the DueBack Type ''%1''.";
        QTest::newRow("two") << two << "" << QList<int>{} << QStringList{} << two;
        QTest::newRow("locked at OK: Cancel") << two << "lock" << QList<int>{Msg::Cancel}
                                              << QStringList{failed.arg("07:30 am")} << QStringList{"Late this Morning"};
        QTest::newRow("read at the commit: Retry") << two << "reader" << QList<int>{Msg::Retry}
                                                   << QStringList{failed.arg("Late this Morning")} << two;
        QTest::newRow("nothing selected") << QStringList{} << "" << QList<int>{}
                                          << QStringList{Msg::defaultTitle() + "|No item selected to delete"}
                                          << QStringList{};
    }
    void remove()
    {
        QFETCH(QStringList, selected);
        QFETCH(QString, hold);
        QFETCH(QList<int>, answers);
        QFETCH(QStringList, boxes);
        QFETCH(QStringList, gone);
        Console c(seedBoard);
        Database other = c.other();
        const QString kept = untouched(other);
        QStringList expected = phrases(other).split('\n');
        for (const QString &g : gone)
            expected.removeOne(g);
        QVERIFY(dispatch(c, "DueBack Types", selected, "Delete", [&](QDialog *d) {
            QCOMPARE(CataloguesTest::listed(d, "lstDeleteDueBack"), selected);
            QCoreApplication::processEvents();
            if (!d->isVisible())
                return;  // closed itself: nothing listed
            Msg::queueAnswers(answers);
            heldDuring(c, hold, [&] { press(d, 0); });
        }));
        QCOMPARE(shown(), boxes);
        QCOMPARE(phrases(other), expected.join('\n'));
        QCOMPARE(untouched(other), kept);
        QVERIFY(!gdbMain.inTransaction());
    }
};

QTEST_MAIN(TestDueBackTypes)
#include "tst_duebacktypes.moc"
