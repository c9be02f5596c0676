#include "settings/frmGlobalSettings.h"

#include "ui_frmGlobalSettings.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "settings/SettingsStore.h"

frmGlobalSettings::frmGlobalSettings(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmGlobalSettings>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_logoPosition = OptionGroup(this, QStringLiteral("optLogoPosition"), 0, 5);
    for (int i = 0; i < 4; ++i) {
        auto *button = findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { cmdButtons_Click(i); });
    }
    connect(ui->chkAllowPresenceSensing, &QCheckBox::toggled, this, [this] { chkAllowPresenceSensing_Click(); });
    m_support->openingRead([this] { load(); });
}

frmGlobalSettings::~frmGlobalSettings() = default;

void frmGlobalSettings::load()
{
    Recordset rs = gdbMain.query(QStringLiteral("Select * from GlobalSettingsTable"));
    if (rs.eof()) {
        // No row: nothing is chosen.
        chkAllowPresenceSensing_Click();
        return;
    }
    const QVariant position = rs.value(QStringLiteral("LogoPosition"));
    // A position none of the buttons stands for is a failure (340); the
    // window does not open.
    if (!position.isNull())
        m_logoPosition.select(position.toInt());
    const auto v = [&rs](const char *column) { return rs.value(QLatin1String(column)); };
    setCheck(ui->chkAllowStatusALerts, v("AllowStatusAlerts"));
    setCheck(ui->chkAllowMessaging, v("AllowMessaging"));
    setCheck(ui->chkAllowUserToAddTavelloToStartupFolder, v("AllowUserToAddTavelloToStartupFolder"));
    setCheck(ui->chkAllowPresenceSensing, v("AllowPresenceSensing"));
    setCheck(ui->chkUpdateStatusOnLock, v("UpdateStatusOnLock"));
    rs.close();
    // The lock option follows presence sensing even when loading changed
    // nothing.
    chkAllowPresenceSensing_Click();
}

void frmGlobalSettings::chkAllowPresenceSensing_Click()
{
    // Greyed, not cleared: a disabled box keeps its mark and is still saved.
    ui->chkUpdateStatusOnLock->setEnabled(ui->chkAllowPresenceSensing->isChecked());
}

void frmGlobalSettings::save()
{
    Settings::GlobalRules rules;
    const int chosen = m_logoPosition.chosen();
    if (chosen >= 0)
        rules.logoPosition = chosen;
    rules.allowStatusAlerts = ui->chkAllowStatusALerts->isChecked();
    rules.allowMessaging = ui->chkAllowMessaging->isChecked();
    rules.allowPresenceSensing = ui->chkAllowPresenceSensing->isChecked();
    rules.updateStatusOnLock = ui->chkUpdateStatusOnLock->isChecked();
    rules.allowUserToAddTavelloToStartupFolder = ui->chkAllowUserToAddTavelloToStartupFolder->isChecked();
    Settings::saveGlobalRules(gdbMain, rules);
}

void frmGlobalSettings::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            save();
            yieldEvents();
            accept();
        });
        break;
    case 1:
        reject();
        break;
    case 2:
        // The logo only; the check boxes keep what they show.
        m_logoPosition.select(5);
        break;
    case 3:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}
