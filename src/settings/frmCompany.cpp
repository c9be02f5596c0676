#include "settings/frmCompany.h"

#include "ui_frmCompany.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "settings/SettingsStore.h"

namespace {

// A fresh handle for each of the window's two moments of use.
void reopenDatabase()
{
    gdbMain.close();
    subOpenDatabase();
}

}  // namespace

frmCompany::frmCompany(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmCompany>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBarCompanyInfo);
    m_support->addHints({
        {ui->cmdOKCompanyInfo, QStringLiteral(" Press OK to save Company Info.")},
        {ui->cmdCancelCompanyInfo, QStringLiteral(" Cancel and return to Main Screen.")},
        {ui->cmdHelpCompanyInfo, QStringLiteral(" Display Help.")},
    });
    ui->lblCompanyInfo->setBuddy(ui->txtCompanyInfo);
    connect(ui->cmdOKCompanyInfo, &QPushButton::clicked, this, [this] { guarded([this] { cmdOKCompanyInfo_Click(); }); });
    connect(ui->cmdCancelCompanyInfo, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->cmdHelpCompanyInfo, &QPushButton::clicked, this, [this] { DialogSupport::sendHelpKey(this); });

    Hourglass::set(11);
    reopenDatabase();
    if (m_support->openingRead([this] { ui->txtCompanyInfo->setPlainText(Settings::readCompanyInfo(gdbMain)); }))
        Hourglass::set(0);
    subCloseDatabase();
}

frmCompany::~frmCompany() = default;

void frmCompany::cmdOKCompanyInfo_Click()
{
    Hourglass::set(11);
    reopenDatabase();
    Settings::saveCompanyInfo(gdbMain, ui->txtCompanyInfo->toPlainText());
    Hourglass::set(0);
    subCloseDatabase();
    accept();
}
