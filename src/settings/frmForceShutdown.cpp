#include "settings/frmForceShutdown.h"

#include "ui_frmForceShutdown.h"

#include "core/DialogSupport.h"
#include "core/Global.h"
#include "settings/SettingsStore.h"

frmForceShutdown::frmForceShutdown(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmForceShutdown>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, nullptr);
    ui->lblFS1->setText(
        QStringLiteral("The Force Shutdown command allows you to trigger a forced shutdown of the USER program, and keep it shutdown ") +
        QStringLiteral("until you reset the checkbox below.  This allows you to update the user program (user.exe) ") +
        QStringLiteral("without waiting for everyone to log off or go home for the evening."));
    ui->chkForceShutdown->setChecked(gbolForceShutDown);
    connect(ui->cmd_OK_Forced_Shutdown, &QPushButton::clicked, this, [this] { cmd_OK_Forced_Shutdown_Click(); });
    connect(ui->cmd_Cancel_Forced_Shutdown, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->cmd_Help_Forced_Shutdown, &QPushButton::clicked, this, [this] { DialogSupport::sendHelpKey(this); });
}

frmForceShutdown::~frmForceShutdown() = default;

void frmForceShutdown::cmd_OK_Forced_Shutdown_Click()
{
    const bool on = ui->chkForceShutdown->isChecked();
    // A file that cannot be written is not reported: the console shows what
    // was chosen until its next start reads the file again.
    Settings::writeForceShutdown(on);
    gbolForceShutDown = on;
    accept();
}
