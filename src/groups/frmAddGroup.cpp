#include "groups/frmAddGroup.h"

#include "ui_frmAddGroup.h"

#include "console/Images.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "groups/GroupStore.h"
#include "groups/TwoListEditor.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

frmAddGroup::frmAddGroup(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddGroup>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtAddGroup, QStringLiteral(" Enter new Group Name.")},
        {ui->ListView1, QStringLiteral(" Select one or more users to ADD to this Group")},
        {ui->ListView2, QStringLiteral(" Select one or more users to REMOVE from this Group.")},
        {ui->cmdButtons_0, QStringLiteral(" Click OK to accept Group / Users, update database and return to Main Screen.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new Group.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    m_editor = new TwoListEditor(ui->ListView1, ui->ListView2, Images::ImageListSmall().value(QStringLiteral("Users")),
                                 this);

    connect(ui->txtAddGroup, &QLineEdit::textChanged, this, [this] { txtAddGroup_Change(); });
    // Enter in the name field does nothing: no button here is a default one.
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    guarded([this] { m_editor->left()->setNames(Groups::allUsers(gdbMain)); });
    txtAddGroup_Change();
}

frmAddGroup::~frmAddGroup() = default;

void frmAddGroup::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtAddGroup->setFocus();
}

void frmAddGroup::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { okClicked(); });
        break;
    case 1:
        // The console's reload after the dialog gives the pointer back.
        Hourglass::set(11);
        yieldEvents();
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmAddGroup::txtAddGroup_Change()
{
    // The raw text counts: a name of blanks enables them, and OK refuses it.
    const bool any = !ui->txtAddGroup->text().isEmpty();
    ui->cmdButtons_0->setEnabled(any);
    ui->ListView1->setEnabled(any);
    ui->ListView2->setEnabled(any);
}

void frmAddGroup::refuse(const QString &text)
{
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Add Group"));
    ui->txtAddGroup->selectAll();
    ui->txtAddGroup->setFocus();
}

void frmAddGroup::okClicked()
{
    const QString name = ui->txtAddGroup->text().trimmed();
    if (name.isEmpty()) {
        refuse(QStringLiteral("Please enter a name for this Group."));
        return;
    }
    // A '#' is a plain character in a group's name.
    if (name.contains(QLatin1Char('"'))) {
        refuse(QStringLiteral("Sorry, I can't handle Double Quotes !"));
        return;
    }
    Hourglass::set(11);
    if (Groups::nameMatches(gdbMain, name)) {
        Hourglass::set(0);
        refuse(QStringLiteral("Sorry, the '") + name + QStringLiteral("' Group already exists.") + QLatin1Char('\r') +
               QStringLiteral("Please select another Group Name."));
        return;
    }
    Groups::addGroup(gdbMain, name, m_editor->right()->names());
    yieldEvents();
    accept();
}
