#include "settings/frmAutoCheckForUpdates.h"

#include "ui_frmAutoCheckForUpdates.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/MessageBox.h"
#include "settings/SettingsStore.h"
#include "settings/UpdateCheck.h"

frmAutoCheckForUpdates::frmAutoCheckForUpdates(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmAutoCheckForUpdates>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, nullptr);
    const QString CRLF = QStringLiteral("\r\n");
    ui->lblACFU->setText(QStringLiteral("The Auto Check for Updates command allows ADMIN.EXE to ") + QStringLiteral("check ") +
                         UpdateCheck::hostName() +
                         QStringLiteral(" for a later version of TAVELLO as Admin starts up. ") + CRLF + CRLF +
                         QStringLiteral("USER.EXE will function as normal and will NOT be affected by this command."));
    ui->chkAutoCheckforUpdates->setChecked(gbolAutoCheckForUpdates);
    connect(ui->cmd_OK_AutoCheckForUpdates, &QPushButton::clicked, this,
            [this] { guarded([this] { cmd_OK_AutoCheckForUpdates_Click(); }); });
    connect(ui->cmd_Cancel_AutoCheckForUpdates, &QPushButton::clicked, this, &QDialog::reject);
}

frmAutoCheckForUpdates::~frmAutoCheckForUpdates() = default;

void frmAutoCheckForUpdates::cmd_OK_AutoCheckForUpdates_Click()
{
    const bool on = ui->chkAutoCheckforUpdates->isChecked();
    Settings::saveAutoCheckForUpdates(gdbMain, on);
    // The menu's check mark follows when the window has gone.
    gbolAutoCheckForUpdates = on;
    const int now = Msg::box(QStringLiteral("Would you like to check for updates NOW ?"), Msg::Buttons::YesNo,
                             Msg::Icon::Question, QStringLiteral("TAVELLO Update"));
    accept();
    if (now == Msg::Yes)
        UpdateCheck::mnuCheckForUpdates_Click();
}
