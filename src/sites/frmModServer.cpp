#include "sites/frmModServer.h"

#include "ui_frmModServer.h"

#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "sites/ServerDialogs.h"
#include "sites/SiteStore.h"

frmModServer::frmModServer(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModServer>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtNewDescription, QStringLiteral(" Enter new Description.   Example: Sydney Office")},
        {ui->txtNewUNC, QStringLiteral(" Enter new UNC Path name.   Example: \\\\SYDSERV\\C\\TAVELLO\\")},
        {ui->cmdBrowse, QStringLiteral(" TIP: Choose Network Neighborhood or My Network Places as your starting point.")},
        {ui->cmdButtons_0, QStringLiteral(" Save new Server details and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new Server details.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdBrowse, &QPushButton::clicked, this, &frmModServer::cmdBrowse_Click);
    connect(ui->txtNewUNC, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });

    Hourglass::set(11);
    m_oldPath = SelectedServerPath;
    ui->lblCurrentUNC->setText(SelectedServerPath);
    ui->lblCurrentDescription->setText(SelectedServerDescription);
    ui->txtNewUNC->setText(SelectedServerPath);
    ui->txtNewDescription->setText(SelectedServerDescription);
    ui->txtNewUNC->selectAll();
}

frmModServer::~frmModServer() = default;

void frmModServer::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtNewUNC->setFocus();
    ui->txtNewUNC->selectAll();
}

void frmModServer::cmdButtons_Click(int index)
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

void frmModServer::cmdBrowse_Click()
{
    const QString folder = Sites::browseForSite(this, QStringLiteral("Tavello database|tavello.mdb"), QString(),
                                                [](const QString &f) {
                                                    Msg::box(f + QStringLiteral(" is not a UNC path. Please reselect."));
                                                });
    if (folder.isEmpty())
        return;
    ui->txtNewUNC->setText(folder);
    // The same test as OK, given the file name once too often: it passes
    // only for a file of the doubled name.
    Sites::validityTest(folder + Sites::DatabaseName);
}

void frmModServer::okClicked()
{
    const QString path = ui->txtNewUNC->text().trimmed().toUpper();
    if (!Sites::uncFormAccepted(ui->txtNewUNC, path, Sites::Wording::Modify))
        return;
    Hourglass::set(11);
    // The validity test adds the file name once more, so that an entry can
    // only be changed to a folder holding a file of the doubled name; the
    // way to move an entry is to delete it and add it anew.
    const bool usable = Sites::remoteDatabaseOpens(path) && Sites::validityTest(path + Sites::DatabaseName);
    Hourglass::set(0);
    if (!usable)
        return;
    if (Sites::otherServerListed(gdbMain, path, m_oldPath)) {
        Msg::box(QStringLiteral("A Server entry with the path ") + path + QStringLiteral(" ") +
                     QStringLiteral("already exists. Only one Tavello database is allowed ") +
                     QStringLiteral("per UNC path."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Modfiy Server"));
        return;
    }
    if (!Sites::writeWithRetry(
            Sites::modifyServerChange(gdbMain, m_oldPath, path, ui->txtNewDescription->text().trimmed())))
        return;
    accept();
}
