#include "catalogues/frmDeleteColumn.h"

#include "ui_frmDeleteColumn.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/ColumnPrompts.h"
#include "catalogues/ColumnStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/Counters.h"

QStringList DeleteColumns(Database &db, const QStringList &names)
{
    Catalogues::DeletionBatch batch(db, [](const QString &name, const StoreError &e) {
        Hourglass::set(0);
        const bool retry = ColumnPrompts::askAfterRefusal(ColumnPrompts::Change::Delete, name, QString(), e,
                                                          QStringLiteral("Delete Column Error"));
        Hourglass::set(retry ? 11 : 0);
        return retry;
    });
    for (const QString &name : names)
        batch.add(name, {[&] { Columns::drop(db, name); }});
    // Nothing dropped, nothing to announce, and no counter field added.
    return batch.finish([&] { raiseExtraColumnsCounter(db); }, false);
}

frmDeleteColumn::frmDeleteColumn(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteColumn>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Deletes listed Column(s).")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting Column(s).")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    ui->lstDeleteColumn->addItems(Catalogues::selectedListRows());
    if (ui->lstDeleteColumn->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteColumn::~frmDeleteColumn() = default;

void frmDeleteColumn::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    Catalogues::closeIfEmpty(this, ui->lstDeleteColumn);
}

void frmDeleteColumn::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            Hourglass::set(11);
            DeleteColumns(gdbMain, Catalogues::listedEntries(ui->lstDeleteColumn));
            Hourglass::set(0);
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
