#include "catalogues/frmDeleteStatus.h"

#include "ui_frmDeleteStatus.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/StatusTypeStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

QStringList DeleteStatusTypes(Database &db, const QStringList &names)
{
    Catalogues::DeletionBatch batch(db, [](const QString &name, const StoreError &) {
        const bool retry = Msg::box(QStringLiteral("An error occured while trying to delete the status ''") + name +
                                        QStringLiteral("''."),
                                    Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        if (!retry)
            Hourglass::set(0);
        return retry;
    });
    for (const QString &name : names)
        batch.add(name, {[&] { StatusTypes::deleteRows(db, name); }});
    return batch.finish([&] { StatusTypes::raiseCounter(db); });
}

frmDeleteStatus::frmDeleteStatus(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteStatus>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Deletes selected Status Type.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting Status Type.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    static const struct {
        const char *upper;
        const char *shown;
    } refused[] = {{"IN", "In"}, {"OUT", "Out"}, {"BUSY", "Busy"}};
    for (const QString &row : Catalogues::selectedListRows()) {
        const QString upper = row.toUpper();
        bool kept = true;
        for (const auto &r : refused) {
            if (upper == QLatin1String(r.upper)) {
                Msg::box(QStringLiteral("Sorry, the '%1' Status type cannot be deleted. It will not be added to the deletion list.")
                             .arg(QLatin1String(r.shown)),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Protected Status type"));
                kept = false;
            }
        }
        if (kept)
            ui->lstDeleteStatus->addItem(row);
    }
    if (ui->lstDeleteStatus->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteStatus::~frmDeleteStatus() = default;

void frmDeleteStatus::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    Catalogues::closeIfEmpty(this, ui->lstDeleteStatus);
}

void frmDeleteStatus::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            Hourglass::set(11);
            DeleteStatusTypes(gdbMain, Catalogues::listedEntries(ui->lstDeleteStatus));
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
