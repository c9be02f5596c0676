#include "store/frmRepair.h"

#include "ui_frmRepair.h"

#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/Repair.h"

#include <QPushButton>

frmRepair::frmRepair(QWidget *parent) : QDialog(parent), ui(new Ui::frmRepair)
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Begin repair/compact database.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without repairing/compacting database.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
}

frmRepair::~frmRepair() { delete ui; }

QString frmRepair::hint() const { return m_support->hint(); }

void frmRepair::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        okClicked();
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

void frmRepair::okClicked()
{
    Hourglass::set(11);
    // Pauses inside let events run: no second press while the file is worked on.
    for (QPushButton *b : {ui->cmdButtons_0, ui->cmdButtons_1, ui->cmdButtons_2})
        b->setEnabled(false);
    subCompactDatabase();
    const QString title = QStringLiteral("TAVELLO - Repair Database");
    if (!gbolRepairDone)
        Msg::box(QStringLiteral("TAVELLO database repair/compact failed."), Msg::Buttons::OK, Msg::Icon::Exclamation, title);
    else
        Msg::box(QStringLiteral("TAVELLO database repair/compact completed."), Msg::Buttons::OK, Msg::Icon::Exclamation,
                 title);
    Hourglass::set(0);
    for (QPushButton *b : {ui->cmdButtons_0, ui->cmdButtons_1, ui->cmdButtons_2})
        b->setEnabled(true);
    accept();
}
