#include "catalogues/frmDeleteDueBack.h"

#include "ui_frmDeleteDueBack.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/DueBackStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

QStringList DeleteDueBackTypes(Database &db, const QStringList &texts)
{
    Catalogues::DeletionBatch batch(db, [](const QString &text, const StoreError &) {
        const bool retry = Msg::box(QStringLiteral("An error occured while trying to delete the DueBack Type ''") + text +
                                        QStringLiteral("''."),
                                    Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        if (!retry)
            Hourglass::set(0);
        return retry;
    });
    for (const QString &text : texts)
        batch.add(text, {[&] { DueBackTypes::deleteRows(db, text); }});
    return batch.finish([] {});
}

frmDeleteDueBack::frmDeleteDueBack(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteDueBack>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Deletes selected DueBack Type.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting DueBack Type.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    ui->lstDeleteDueBack->addItems(Catalogues::selectedListRows());
    if (ui->lstDeleteDueBack->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteDueBack::~frmDeleteDueBack() = default;

void frmDeleteDueBack::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    Catalogues::closeIfEmpty(this, ui->lstDeleteDueBack);
}

void frmDeleteDueBack::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            Hourglass::set(11);
            DeleteDueBackTypes(gdbMain, Catalogues::listedEntries(ui->lstDeleteDueBack));
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
