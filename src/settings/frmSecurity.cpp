#include "settings/frmSecurity.h"

#include "ui_frmSecurity.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "settings/SettingsStore.h"

frmSecurity::frmSecurity(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmSecurity>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_options = OptionGroup(this, QStringLiteral("OptionSecurity"), 0, 2);
    for (int i = 0; i < 3; ++i) {
        auto *button = findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { cmdButtons_Click(i); });
        connect(m_options.button(i), &QRadioButton::clicked, this, [this, i] { OptionSecurity_Click(i); });
    }
    ui->lblInfo->setText(
        QStringLiteral("The System Security levels allow you (as the administrator) to set the global level ") +
        QStringLiteral("of security most appropriate for your business or organization. The system security levels work ") +
        QStringLiteral("in conjunction with the individual User Security settings to allow maximum ") +
        QStringLiteral("flexibility, and yet still retain a high level of integrity."));

    m_support->openingRead([this] {
        Recordset rs = gdbMain.query(QStringLiteral("Select * from GlobalSettingsTable"));
        if (!rs.eof()) {
            const QVariant level = rs.value(QStringLiteral("SystemSecurityLevel"));
            if (!level.isNull()) {
                // A level no button stands for stops the window here (340).
                m_options.select(level.toInt());
                m_level = std::int16_t(level.toInt());
            }
        }
    });
    showMeaning(m_level ? *m_level : -1);
}

frmSecurity::~frmSecurity() = default;

QStringList frmSecurity::levelMeaning(int level)
{
    const QString global = QStringLiteral("Global Access (level 2) Users can change anyone's Status at any time.");
    switch (level) {
    case 2:
        return {global, QStringLiteral("Group Managers (level 1) can change other members of a Group they manage."),
                QStringLiteral("Normal Users (level 0) cannot change anyone's Status.")};
    case 1:
        return {global, QStringLiteral("Group Managers (level 1) can change other members of a Group they manage."),
                QStringLiteral("Normal Users (level 0) can only change the Status of other Group Members.")};
    case 0:
        return {global, QStringLiteral("Group Managers (level 1) can change anyone's Status at any time."),
                QStringLiteral("Normal Users (level 0) can change anyone's Status at any time.")};
    default:
        return {};
    }
}

void frmSecurity::showMeaning(int level)
{
    const QStringList lines = levelMeaning(level);
    QLabel *labels[] = {ui->lblUserLevel2, ui->lblUserLevel1, ui->lblUserLevel0};
    for (int i = 0; i < 3; ++i)
        labels[i]->setText(lines.value(i));
    ui->fraLevelMeaning->setVisible(!lines.isEmpty());
}

void frmSecurity::OptionSecurity_Click(int index)
{
    m_level = std::int16_t(index);
    showMeaning(index);
}

void frmSecurity::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            Settings::saveSecurityLevel(gdbMain, m_level ? std::optional<int>(*m_level) : std::nullopt);
            yieldEvents();
            accept();
        });
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
