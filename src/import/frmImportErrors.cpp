#include "import/frmImportErrors.h"

#include "ui_frmImportErrors.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "import/ImportStore.h"
#include "platform/Hourglass.h"

#include <QHeaderView>
#include <QPushButton>

frmImportErrors::frmImportErrors(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmImportErrors>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Exit Import Error Log and return to Main Screen.")},
        {ui->cmdButtons_1, QStringLiteral(" Erase contents of Import Error Log.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    QHeaderView *header = ui->lvImpErrors->header();
    header->resizeSection(0, 90);
    header->resizeSection(1, 70);
    header->setStretchLastSection(true);
}

frmImportErrors::~frmImportErrors() = default;

void frmImportErrors::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Form_Activate();
}

void frmImportErrors::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    // Back from help or a message: the log may have grown meanwhile.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && isVisible())
        Form_Activate();
}

void frmImportErrors::Form_Activate()
{
    guarded([this] {
        QTreeWidget *list = ui->lvImpErrors;
        list->clear();
        QList<QTreeWidgetItem *> items;
        for (const Import::ErrorRow &row : Import::readImportErrors(gdbMain))
            items << new QTreeWidgetItem(QStringList{row.date, row.time, row.text});
        list->addTopLevelItems(items);
    });
}

void frmImportErrors::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        accept();
        break;
    case 1:
        guarded([this] { clearLog(); });
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmImportErrors::clearLog()
{
    Hourglass::set(11);
    try {
        Import::clearImportErrors(gdbMain);
    } catch (...) {
        Hourglass::set(0);
        throw;
    }
    ui->lvImpErrors->clear();
    Hourglass::set(0);
}
