#include "users/frmAddUser.h"

#include "ui_frmAddUser.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "users/UserStore.h"

#include <QApplication>

frmAddUser::frmAddUser(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddUser>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtAddUserID, QStringLiteral(" Enter new User ID. (Normally the Network Logon ID) or code number for an Item")},
        {ui->txtAddUserName, QStringLiteral("  Enter your new user's full name. (and initial if required)")},
        {ui->cmdButtons_0, QStringLiteral(" Save New User details.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving New User details.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    ui->cmdButtons_0->setEnabled(false);

    connect(ui->txtAddUserID, &QLineEdit::textChanged, this, [this] { txtChange(ui->txtAddUserID); });
    connect(ui->txtAddUserName, &QLineEdit::textChanged, this, [this] { txtChange(ui->txtAddUserName); });
    // Enter in the name field saves; in the ID field it does nothing (no
    // button of this dialog is a default button).
    connect(ui->txtAddUserName, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
}

frmAddUser::~frmAddUser() = default;

void frmAddUser::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtAddUserID->setFocus();
}

void frmAddUser::cmdButtons_Click(int index)
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

void frmAddUser::txtChange(QLineEdit *field)
{
    const QString text = field->text();
    if (text.contains(QLatin1Char('"')) || text.contains(QLatin1Char('#'))) {
        QApplication::beep();
        if (field == ui->txtAddUserID)
            Msg::box(QStringLiteral("Sorry, 'double quotes' & '#' symbol are not allowed in a user ID."), Msg::Buttons::OK,
                     Msg::Icon::Exclamation, QStringLiteral("Invalid Character In User ID"));
        else
            Msg::box(QStringLiteral("Sorry, 'double quotes' & '#' symbol are not allowed in a user name."),
                     Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Invalid Character In Name"));
        // Always the last character: a pasted one in the middle comes round
        // again through this same rule until it has been cut off too.
        field->setText(text.chopped(1));
        field->setCursorPosition(int(field->text().size()));
        field->setFocus();
        return;
    }
    // Blanks count here; OK itself refuses a field of blanks.
    ui->cmdButtons_0->setEnabled(!ui->txtAddUserID->text().isEmpty() && !ui->txtAddUserName->text().isEmpty());
}

void frmAddUser::refuse(QLineEdit *field, const QString &text, const QString &title)
{
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Critical, title);
    field->selectAll();
    field->setFocus();
}

void frmAddUser::okClicked()
{
    const QString id = ui->txtAddUserID->text().trimmed();
    if (id.isEmpty()) {
        refuse(ui->txtAddUserID, QStringLiteral("Please enter User ID (or Item Code number)."),
               QStringLiteral("Add User ID Error"));
        return;
    }
    const QString name = ui->txtAddUserName->text().trimmed();
    if (name.isEmpty()) {
        refuse(ui->txtAddUserName, QStringLiteral("Please enter this user's full name."),
               QStringLiteral("Add User Name Error"));
        return;
    }
    if (Users::uidTaken(gdbMain, id)) {
        Msg::box(QStringLiteral("UID Exists"), Msg::Buttons::OK, Msg::Icon::Information, QStringLiteral("Invalid UID"));
        return;
    }
    if (Users::nameTaken(gdbMain, name)) {
        Msg::box(QStringLiteral("Name Exists"), Msg::Buttons::OK, Msg::Icon::Information, QStringLiteral("Invalid Name"));
        return;
    }

    Hourglass::set(11);
    Users::addUser(gdbMain, id, name);
    yieldEvents();
    Hourglass::set(0);

    if (Msg::box(QStringLiteral("Add another user?"), Msg::Buttons::YesNo, Msg::Icon::Question,
                 QStringLiteral("Add user")) == Msg::Yes) {
        ui->txtAddUserID->clear();
        ui->txtAddUserName->clear();
        ui->txtAddUserID->setFocus();
        return;
    }
    yieldEvents();
    accept();
}
