#include "messages/frmDeleteMessages.h"

#include "ui_frmDeleteMessages.h"

#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "messages/MessageStore.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"
#include "store/Counters.h"

#include <QTimer>

#include <functional>

namespace {

QString failureText(const StoreError &e, const QString &id)
{
    if (e.number() == err::DamagedIndex)
        return QStringLiteral("Unable to complete the delete because the index for message ''") + id +
               QStringLiteral("'' appears to be damaged. You should repair/compact the database as soon as possible.");
    return QStringLiteral("An error occured while trying to delete the message ''") + id + QStringLiteral("''.");
}

}  // namespace

void KillMessage(const QString &id)
{
    Database &db = gdbMain;
    Hourglass::set(11);
    const bool deleted = Store::inTransaction(
        db,
        [&] {
            Recordset rs = db.openTable(QStringLiteral("MessagesTable"), QStringLiteral("MessageID = ?"), {id});
            for (; !rs.eof(); rs.moveNext())
                rs.remove();
        },
        [&](const StoreError &e) {
            return Msg::box(failureText(e, id), Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        });
    if (deleted)
        Hourglass::set(0);
}

frmDeleteMessages::frmDeleteMessages(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmDeleteMessages>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Delete selected Messages.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting Messages.")},
    });
    ui->lblDeleteMessages->setBuddy(ui->lstDeleteMessages);
    for (int i = 0; i < 3; ++i) {
        auto *button = findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { cmdButtons_Click(i); });
    }

    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        for (int row = 0; row < list->list()->count(); ++row)
            if (list->isSelected(row))
                ui->lstDeleteMessages->addItem(list->list()->text(row) + QLatin1Char('\t') + list->list()->subItem(row, 1));
    }
    if (ui->lstDeleteMessages->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteMessages::~frmDeleteMessages() = default;

void frmDeleteMessages::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    // Nothing to delete: the window goes as soon as it is up.
    if (ui->lstDeleteMessages->count() == 0)
        QTimer::singleShot(0, this, &QDialog::reject);
}

void frmDeleteMessages::cmdButtons_Click(int index)
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

void frmDeleteMessages::okClicked()
{
    Hourglass::set(11);
    for (int i = 0; i < ui->lstDeleteMessages->count(); ++i) {
        const QString entry = ui->lstDeleteMessages->item(i)->text();
        if (entry.isEmpty())
            continue;
        KillMessage(Messages::entryKey(entry));
    }
    // Once for the whole batch, whatever each message's outcome.
    subRaiseCounter();
    Hourglass::set(0);
    accept();
}
