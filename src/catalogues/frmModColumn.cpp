#include "catalogues/frmModColumn.h"

#include "ui_frmModColumn.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/ColumnPrompts.h"
#include "catalogues/ColumnStore.h"
#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"

frmModColumn::frmModColumn(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModColumn>())
{
    Hourglass::set(11);
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtNewColumnName, QStringLiteral(" Enter new Column Name.")},
        {ui->chkReadOnly, QStringLiteral("Read Only?")},
        {ui->cmdButtons_0, QStringLiteral(" Save new Column Name and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new Column Name.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->txtNewColumnName, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    m_current = SelectedColumnName;
    ui->lblCurrentColumnName->setText(m_current);
    ui->txtNewColumnName->setText(m_current);
    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        const int row = list->selectedItem();
        ui->chkReadOnly->setChecked(row >= 0 && list->list()->subItem(row, 1) == QLatin1String("Yes"));
    }
}

frmModColumn::~frmModColumn() = default;

void frmModColumn::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtNewColumnName->selectAll();
    ui->txtNewColumnName->setFocus();
}

void frmModColumn::cmdButtons_Click(int index)
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

void frmModColumn::okClicked()
{
    const QString name = ui->txtNewColumnName->text().trimmed();
    if (name.isEmpty() || name.contains(QLatin1Char('"'))) {
        Catalogues::refuse(ui->txtNewColumnName,
                           QStringLiteral("Sorry, 'blank' Column Names, or Column Names with 'double quotes' are not allowed."),
                           QStringLiteral("Modify Column Error"), int(Msg::Icon::Critical));
        return;
    }
    // Tested against every field, the column's own included: the flag can
    // only change together with the name.
    if (Columns::nameTaken(gdbMain, name)) {
        Msg::box(QStringLiteral("Sorry - Column Name already exists."));
        return;
    }
    if (!Columns::exists(gdbMain, m_current)) {
        Msg::box(QStringLiteral("Sorry, the column '") + m_current +
                     QStringLiteral("' no longer exists. Another program may have deleted it."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Modify Column Error"));
        reject();
        return;
    }
    Hourglass::set(11);
    const bool readOnly = ui->chkReadOnly->isChecked();
    const bool renamed = Store::inTransaction(
        gdbMain, [&] { Columns::rename(gdbMain, m_current, name, readOnly); },
        [&](const StoreError &e) {
            Hourglass::set(0);
            const bool retry = ColumnPrompts::askAfterRefusal(ColumnPrompts::Change::Rename, m_current, name, e,
                                                              QStringLiteral("Modify Column Error"));
            Hourglass::set(retry ? 11 : 0);
            return retry;
        });
    Hourglass::set(0);
    if (renamed)
        accept();
}
