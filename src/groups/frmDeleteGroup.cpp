#include "groups/frmDeleteGroup.h"

#include "ui_frmDeleteGroup.h"

#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "groups/GroupStore.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/Counters.h"

frmDeleteGroup::frmDeleteGroup(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmDeleteGroup>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Deletes selected Group.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without deleting Group.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        for (int row = 0; row < list->list()->count(); ++row) {
            if (!list->isSelected(row))
                continue;
            const QString name = list->list()->text(row);
            if (Groups::isEveryone(name)) {
                Msg::box(QStringLiteral("Sorry, the 'Everyone' group cannot be deleted. It will not be added to the "
                                        "deletion list."),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Protected group name"));
                continue;
            }
            ui->lstDeleteGroup->addItem(name);
        }
    }
    if (ui->lstDeleteGroup->count() == 0)
        Msg::box(QStringLiteral("No item selected to delete"));
}

frmDeleteGroup::~frmDeleteGroup() = default;

void frmDeleteGroup::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
}

void frmDeleteGroup::cmdButtons_Click(int index)
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

void frmDeleteGroup::okClicked()
{
    Hourglass::set(11);
    for (int i = 0; i < ui->lstDeleteGroup->count(); ++i) {
        const QString name = ui->lstDeleteGroup->item(i)->text();
        if (name.isEmpty())
            continue;
        // Cancel leaves this group as it was; the next one is tried all the same.
        Groups::deleteGroup(gdbMain, name, [&name](const StoreError &) {
            return Msg::box(QStringLiteral("An error occured while trying to delete the group ''") + name +
                                QStringLiteral("''."),
                            Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        });
    }
    // Once for the batch, an empty list included.
    subRaiseGroupCounter();
    Hourglass::set(0);
    accept();
}
