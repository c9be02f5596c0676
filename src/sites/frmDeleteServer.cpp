#include "sites/frmDeleteServer.h"

#include "ui_frmDeleteServer.h"

#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"
#include "sites/SiteStore.h"

#include <QTimer>

frmDeleteServer::frmDeleteServer(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteServer>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Remove these from Server(s) list.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without removing Server(s).")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
        {ui->lstDeleteServer, QStringLiteral(" Servers Selected for Deletion.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        for (int row = 0; row < list->list()->count(); ++row) {
            if (!list->isSelected(row))
                continue;
            const QString path = list->list()->text(row);
            // The home server is the entry of the data path itself, to the letter.
            if (path.toUpper() == gstrDataPath) {
                Msg::box(QStringLiteral("Sorry, your 'Home' server cannot be deleted. It will not be added to the "
                                        "deletion list."),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Protected group name"));
                continue;
            }
            ui->lstDeleteServer->addItem(path);
        }
    }
    if (ui->lstDeleteServer->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteServer::~frmDeleteServer() = default;

void frmDeleteServer::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    // Nothing to delete: the window goes as soon as it is there.
    if (ui->lstDeleteServer->count() == 0)
        QTimer::singleShot(0, this, &QDialog::reject);
}

void frmDeleteServer::cmdButtons_Click(int index)
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

void frmDeleteServer::okClicked()
{
    for (int i = 0; i < ui->lstDeleteServer->count(); ++i) {
        const QString path = ui->lstDeleteServer->item(i)->text();
        if (path.isEmpty())
            continue;
        // Cancel gives up this entry only; the batch goes on.
        Store::inTransaction(gdbMain, Sites::deleteServerChange(gdbMain, path), [&path](const StoreError &) {
            return Msg::box(QStringLiteral("An error occured while trying to delete the Server ''") + path +
                                QStringLiteral("''."),
                            Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        });
    }
    accept();
}
