#include "catalogues/frmAddColumn.h"

#include "ui_frmAddColumn.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/ColumnPrompts.h"
#include "catalogues/ColumnStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"

frmAddColumn::frmAddColumn(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddColumn>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->fraBody, QStringLiteral(" Add new columns to the users display area.")},
        {ui->txtAddColumn, QStringLiteral("  Enter the Name of the Column (as it will appear on the users screen)")},
        {ui->chkReadOnly, QStringLiteral("Read Only?")},
        {ui->cmdButtons_0, QStringLiteral(" Save New Column details.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving New Column details.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    ui->cmdButtons_0->setEnabled(false);
    connect(ui->txtAddColumn, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (Catalogues::refuseDoubleQuote(ui->txtAddColumn, text,
                                          QStringLiteral("Sorry, 'double quotes' are not allowed in a Column Name."),
                                          QStringLiteral("Invalid Character In Column Name")))
            return;
        ui->cmdButtons_0->setEnabled(!text.isEmpty());
    });
    connect(ui->txtAddColumn, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
}

frmAddColumn::~frmAddColumn() = default;

void frmAddColumn::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtAddColumn->setFocus();
}

void frmAddColumn::cmdButtons_Click(int index)
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

void frmAddColumn::okClicked()
{
    const QString name = ui->txtAddColumn->text().trimmed();
    if (name.isEmpty()) {
        Catalogues::refuse(ui->txtAddColumn, QStringLiteral("Please enter Column name."), QStringLiteral("Add Column Error"),
                           int(Msg::Icon::Critical));
        return;
    }
    // The structure changes on a connection of their own.
    subOpenDatabase();
    if (Columns::nameTaken(gdbMain, name)) {
        subCloseDatabase();
        Msg::box(QStringLiteral("Sorry - Column Name already exists."));
        return;
    }
    const bool readOnly = ui->chkReadOnly->isChecked();
    const bool added = Store::inTransaction(
        gdbMain, [&] { Columns::add(gdbMain, name, readOnly); },
        [&](const StoreError &e) {
            Hourglass::set(0);
            const bool retry = ColumnPrompts::askAfterRefusal(ColumnPrompts::Change::Add, name, QString(), e,
                                                              QStringLiteral("Add Column Error"));
            Hourglass::set(retry ? 11 : 0);
            return retry;
        });
    subCloseDatabase();
    yieldEvents();
    Hourglass::set(0);
    if (!added) {
        ui->txtAddColumn->selectAll();
        ui->txtAddColumn->setFocus();
        return;
    }

    if (Msg::box(QStringLiteral("Add another Column?"), Msg::Buttons::YesNo, Msg::Icon::Question,
                 QStringLiteral("Add Column")) == Msg::Yes) {
        ui->txtAddColumn->clear();
        ui->txtAddColumn->setFocus();
        return;
    }
    yieldEvents();
    Hourglass::set(11);
    accept();
}
