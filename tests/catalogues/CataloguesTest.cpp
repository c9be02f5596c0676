#include "CataloguesTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/Modal.h"
#include "support/HeldDuring.h"

#include <QDialog>
#include <QListWidget>
#include <QPushButton>


namespace CataloguesTest {


QStringList shown()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + '|' + s.text;
    return out;
}

long long counterOf(Database &db, const QString &field)
{
    return db.scalar("SELECT " + Database::quoteIdentifier(field) + " FROM StatusCounterTable").toLongLong();
}

QString schema(Database &db)
{
    return UsersTest::rows(db, "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY rowid");
}

void heldDuring(const ConsoleTest::Console &c, const QString &hold, const std::function<void()> &action, int nth,
               const QString &on)
{
    TestSupport::heldDuring(c.databaseFile(), hold, action, nth, on);
}

bool dispatch(ConsoleTest::Console &c, const QString &node, const QStringList &selected, const QString &verb,
              const std::function<void(QDialog *)> &drive)
{
    c.clickNode(node);
    c.list()->clearSelection();
    for (int i = 0; i < selected.size(); ++i) {
        const int row = c.rowOf(selected[i]);
        if (row < 0)
            qFatal("no row %s", qPrintable(selected[i]));
        c.clickRow(row, Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
    }
    bool shownDialog = false;
    Modal::setHandler([&](QDialog *d) {
        shownDialog = true;
        drive(d);
    });
    if (verb == "Add")
        c.w().AddDispatcher(node);
    else if (verb == "Modify")
        c.w().ModifyDispatcher(node);
    else
        c.w().DeleteDispatcher(node);
    Modal::setHandler({});
    return shownDialog;
}

void press(QDialog *d, int index)
{
    QTest::mouseClick(UsersTest::control<QPushButton>(d, QString("cmdButtons_%1").arg(index)), Qt::LeftButton);
}

QStringList listed(const QDialog *d, const QString &list)
{
    QStringList out;
    auto *l = UsersTest::control<QListWidget>(d, list);
    for (int i = 0; i < l->count(); ++i)
        out << l->item(i)->text();
    return out;
}

}  // namespace CataloguesTest
