#include "console/about.h"

#include "ui_about.h"

#include "console/Images.h"
#include "core/DialogSupport.h"
#include "core/Global.h"


about::about(QWidget *parent) : QDialog(parent), ui(new Ui::about)
{
    ui->setupUi(this);
    new DialogSupport(this, nullptr);
    ui->lblVersion->setText(QStringLiteral("Version ") + gstrReleaseVersion);
    ui->lblDate->setText(QStringLiteral("Release date ") + gstrReleaseDate);
    ui->picIcon->setPixmap(Images::aboutPicture());
    connect(ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

about::~about() { delete ui; }
