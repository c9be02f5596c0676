#include "sites/frmAddServer.h"

#include "ui_frmAddServer.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "sites/ServerDialogs.h"
#include "sites/SiteStore.h"

frmAddServer::frmAddServer(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddServer>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtDescription, QStringLiteral(" Enter new Server Description.")},
        {ui->txtUNCpath, QStringLiteral(" Enter the UNC PATH to the Remote Server Database.")},
        {ui->cmdBrowse, QStringLiteral(" Browse your Network for additional TAVELLO databases.")},
        {ui->cmdButtons_0, QStringLiteral(" Save new Server details and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new Server details.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdBrowse, &QPushButton::clicked, this, &frmAddServer::cmdBrowse_Click);
    // Enter in the path saves.
    connect(ui->txtUNCpath, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });

    // Which mounted folder stands for which share, so the operator can type
    // the UNC name of a folder he knows locally.
    for (const UncPath::Mount &m : UncPath::shares())
        ui->lstDriveList->addItem(m.local + QStringLiteral(" [") + m.unc + QLatin1Char(']'));
}

frmAddServer::~frmAddServer() = default;

void frmAddServer::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtDescription->setFocus();
}

void frmAddServer::cmdButtons_Click(int index)
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

void frmAddServer::cmdBrowse_Click()
{
    const QString folder = Sites::browseForSite(
        this, QStringLiteral("TAVELLO database|tavello.mdb"), PathSelection::NetworkFolder, [](const QString &f) {
            Msg::box(QStringLiteral("The path ") + f +
                         QStringLiteral(" is not a valid UNC path name. Please reselect a Drive Letter with a valid UNC."),
                     Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Remote Servers"));
        });
    if (!folder.isEmpty())
        ui->txtUNCpath->setText(folder);
}

void frmAddServer::okClicked()
{
    const QString path = ui->txtUNCpath->text().trimmed().toUpper();
    if (!Sites::uncFormAccepted(ui->txtUNCpath, path, Sites::Wording::Add))
        return;
    Hourglass::set(11);
    const bool usable = Sites::remoteDatabaseOpens(path) && Sites::validityTest(path);
    Hourglass::set(0);
    if (!usable)
        return;
    if (Sites::serverListed(gdbMain, path)) {
        Msg::box(QStringLiteral("A Server entry with the path ") + path + QStringLiteral(" ") +
                     QStringLiteral("already exists. Only one TAVELLO database is allowed ") +
                     QStringLiteral("per UNC path."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Add Server"));
        return;
    }
    if (!Sites::writeWithRetry(Sites::addServerChange(gdbMain, path, ui->txtDescription->text().trimmed())))
        return;
    accept();
}
