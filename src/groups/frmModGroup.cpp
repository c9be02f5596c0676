#include "groups/frmModGroup.h"

#include "ui_frmModGroup.h"

#include "console/Images.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "groups/GroupStore.h"
#include "groups/TwoListEditor.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

frmModGroup::frmModGroup(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModGroup>())
{
    Hourglass::set(11);
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtModifyGroup, QStringLiteral(" Enter Group Name.")},
        {ui->ListView1, QStringLiteral(" Select one or more users to ADD to this Group")},
        {ui->ListView2, QStringLiteral(" Select one or more users to REMOVE from this Group")},
        {ui->cmdButtons_0, QStringLiteral("  Save changes and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Cancel changes and return to Main Screen.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    m_editor = new TwoListEditor(ui->ListView1, ui->ListView2, Images::ImageListSmall().value(QStringLiteral("Users")),
                                 this);
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    m_currentGroupName = SelectedGroupName;
    ui->txtModifyGroup->setText(SelectedGroupName);
    // Managers are members like any other here.
    m_support->openingRead([this] {
        m_editor->left()->setNames(Groups::nonMembers(gdbMain, m_currentGroupName));
        m_editor->right()->setNames(Groups::members(gdbMain, m_currentGroupName));
    });
    Hourglass::set(0);
}

frmModGroup::~frmModGroup() = default;

void frmModGroup::cmdButtons_Click(int index)
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

void frmModGroup::okClicked()
{
    QLineEdit *field = ui->txtModifyGroup;
    Hourglass::set(11);
    const QString name = field->text().trimmed();
    field->setText(name);
    if (name.isEmpty()) {
        Msg::box(QStringLiteral("Please enter a new Group name or Cancel to exit"));
        field->setText(m_currentGroupName);
        Hourglass::set(0);
        return;
    }
    // Compared with the name in the store, which follows a rename already
    // written by an earlier OK of this window.
    if (name != m_currentGroupName) {
        // The user programs join names into their statements between double
        // quotes, so no group may carry one.
        if (name.contains(QLatin1Char('"'))) {
            Hourglass::set(0);
            Msg::box(QStringLiteral("Sorry, I can't handle Double Quotes !"), Msg::Buttons::OK, Msg::Icon::Exclamation,
                     QStringLiteral("Modify Group"));
            field->selectAll();
            field->setFocus();
            return;
        }
        // A change of case alone ends here too: the group's own row matches.
        if (Groups::nameExists(gdbMain, name)) {
            Msg::box(QStringLiteral("The new Group name you selected already exists."));
            field->selectAll();
            field->setFocus();
            Hourglass::set(0);
            return;
        }
    }
    // Written on every OK, renamed or not, and GroupCounter with it.
    Groups::renameGroup(gdbMain, m_currentGroupName, name);
    m_currentGroupName = name;

    const bool saved = Groups::setMembers(gdbMain, m_currentGroupName, m_editor->right()->names(), [this](const StoreError &) {
        return Msg::box(QStringLiteral("An error occured while trying to modify the group ''") + m_currentGroupName +
                            QStringLiteral("''."),
                        Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
    });
    Hourglass::set(0);
    // After Cancel the window stays open, the rename and the counter kept.
    if (saved)
        accept();
}
