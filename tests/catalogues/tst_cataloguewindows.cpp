// The nine catalogue windows as the console opens them: the verbs offered,
// the window shown for each, its caption, a label for every field, a text on
// every button, the OK hint, and its own help page by Help and by F1.
#include "CataloguesTest.h"

#include "console/frmMain.h"
#include "platform/Help.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>

using namespace ConsoleTest;
using namespace UsersTest;
using namespace CataloguesTest;

namespace {

void seedBoard(Database &db)
{
    db.execute("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES ('Lunch', 5)");
    db.addColumn("EmployeeTable", "New_Room", "TEXT(250)");
}

}  // namespace

class TestCatalogueWindows : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Help::install(); }

    void windows_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("okHint");
        QTest::newRow("add status") << "Status Types" << "Add" << "Lunch" << "frmAddStatus" << "Add Status"
                                    << " Save new Status Type and Exit.";
        QTest::newRow("modify status") << "Status Types" << "Modify" << "Lunch" << "frmModStatus" << "Modify Status Type"
                                       << " Save Status changes and exit.";
        QTest::newRow("delete status") << "Status Types" << "Delete" << "Lunch" << "frmDeleteStatus"
                                       << "Delete Status Type(s)" << " Deletes selected Status Type.";
        QTest::newRow("add due-back") << "DueBack Types" << "Add" << "Late this Morning" << "frmAddDueBack"
                                      << "Add DueBack Type" << " Save new DueBack Type and Exit.";
        QTest::newRow("modify due-back") << "DueBack Types" << "Modify" << "Late this Morning" << "frmModDueBack"
                                         << "Modify DueBack Message Type" << "  Press OK to exit & save DueBack Type.";
        QTest::newRow("delete due-back") << "DueBack Types" << "Delete" << "Late this Morning" << "frmDeleteDueBack"
                                         << "Delete DueBack Message Type" << " Deletes selected DueBack Type.";
        QTest::newRow("add column") << "Columns" << "Add" << "Room" << "frmAddColumn" << "Add Column"
                                    << " Save New Column details.";
        QTest::newRow("modify column") << "Columns" << "Modify" << "Room" << "frmModColumn" << "Modify Column Name"
                                       << " Save new Column Name and Exit.";
        QTest::newRow("delete column") << "Columns" << "Delete" << "Room" << "frmDeleteColumn" << "Delete Column(s)"
                                       << " Deletes listed Column(s).";
    }
    void windows()
    {
        QFETCH(QString, node);
        QFETCH(QString, verb);
        QFETCH(QString, row);
        QFETCH(QString, window);
        QFETCH(QString, caption);
        QFETCH(QString, okHint);
        Console c(seedBoard);
        // With a row selected, all three verbs are offered.
        c.clickNode(node);
        c.clickRow(c.rowOf(row));
        QCOMPARE(c.toolbarVerbs(), QList<bool>({true, true, true}));
        QCOMPARE(c.editEntries(), QList<bool>({true, true, true}));
        QString opened;
        QVERIFY(dispatch(c, node, {row}, verb, [&](QDialog *d) {
            opened = d->objectName();
            QCOMPARE(d->windowTitle(), gstrAppTitle + caption);
            for (QWidget *field : d->findChildren<QWidget *>()) {
                if (!qobject_cast<QLineEdit *>(field) && !qobject_cast<QListWidget *>(field))
                    continue;
                bool labelled = false;
                for (const QLabel *l : d->findChildren<QLabel *>())
                    labelled |= l->buddy() == field && !l->text().isEmpty();
                QVERIFY2(labelled, qPrintable(field->objectName()));
            }
            for (const QAbstractButton *b : d->findChildren<QAbstractButton *>())
                QVERIFY2(!b->text().isEmpty(), qPrintable(b->objectName()));
            QEvent enter(QEvent::Enter);
            QCoreApplication::sendEvent(control<QPushButton>(d, "cmdButtons_0"), &enter);
            QCOMPARE(control<QStatusBar>(d, "StatusBar")->currentMessage(), okHint);

            press(d, 2);
            QCOMPARE(Help::lastPage(), window);
            Help::showFor(nullptr);
            QWidget *focus = d->focusWidget() ? d->focusWidget() : d;
            QTest::keyClick(focus, Qt::Key_F1);
            QCOMPARE(Help::lastPage(), window);
        }));
        QCOMPARE(opened, window);
        QCOMPARE(shown(), QStringList());
    }
};

QTEST_MAIN(TestCatalogueWindows)
#include "tst_cataloguewindows.moc"
