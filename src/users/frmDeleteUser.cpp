#include "users/frmDeleteUser.h"

#include "ui_frmDeleteUser.h"

#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"
#include "store/Counters.h"

#include <functional>

namespace {

void deleteRows(Database &db, const QString &table, const QString &where, const QString &name)
{
    Recordset rs = db.openTable(table, where, {name});
    for (; !rs.eof(); rs.moveNext())
        rs.remove();
    rs.close();
}

QString failureText(const StoreError &e, const QString &name)
{
    if (e.number() == err::DamagedIndex)
        return QStringLiteral("Unable to complete the delete because the index for user ''") + name +
               QStringLiteral("'' appears to be damaged. You should repair/compact the database as soon as possible.");
    return QStringLiteral("An error occured while trying to delete the user ''") + name + QStringLiteral("''.");
}

}  // namespace

bool KillUser(const QString &name)
{
    Database &db = gdbMain;
    Hourglass::set(11);
    // Nothing of this user may stay half deleted; after Cancel the pointer
    // is left as it is.
    const bool deleted = Store::inTransaction(
        db,
        [&] {
            deleteRows(db, QStringLiteral("EmployeeTable"), QStringLiteral("Name = ?"), name);
            // The cascades have done this by now; it stays for a file whose
            // relations were lost.
            deleteRows(db, QStringLiteral("EmployeeGroupTable"), QStringLiteral("EmployeeName = ?"), name);
        },
        [&](const StoreError &e) {
            return Msg::box(failureText(e, name), Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        });
    if (deleted)
        Hourglass::set(0);
    return deleted;
}

frmDeleteUser::frmDeleteUser(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteUser>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Delete selected User.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting User.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        for (int row = 0; row < list->list()->count(); ++row)
            if (list->isSelected(row))
                ui->lstDeleteUser->addItem(list->list()->text(row));
    }
    if (ui->lstDeleteUser->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteUser::~frmDeleteUser() = default;

void frmDeleteUser::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
}

void frmDeleteUser::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { okClicked(); });
        break;
    case 1:
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmDeleteUser::okClicked()
{
    bool tried = false;
    for (int i = 0; i < ui->lstDeleteUser->count(); ++i) {
        const QString name = ui->lstDeleteUser->item(i)->text();
        if (name.isEmpty())
            continue;
        KillUser(name);
        tried = true;
    }
    accept();
    // Once for the whole batch, whatever each name's outcome.
    if (tried)
        subRaiseCounter();
}
