#include "catalogues/frmAddStatus.h"

#include "ui_frmAddStatus.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/StatusControls.h"
#include "catalogues/StatusTypeStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

namespace {
const QString AddStatusError = QStringLiteral("Add Status Error");
}

frmAddStatus::frmAddStatus(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddStatus>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    const QString colourHint = QStringLiteral(" Select a color for this Status Type.");
    m_support->addHints({
        {ui->txtAddStatus, QStringLiteral("  Enter a new Status Type")},
        {ui->txtButtonText, QStringLiteral("  Enter text to appear below button on Toolbar")},
        {ui->txtToolTipText, QStringLiteral("  Enter ToolTip text")},
        {ui->chkOnToolBar, QStringLiteral(" Adds a colored button to the users ToolBar.")},
        {ui->picStatusCode, colourHint},
        {ui->cmdButtons_0, QStringLiteral(" Save new Status Type and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new Status Type.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    m_colours = StatusControls::colourRadios(this);
    for (int code = 1; code <= 6; ++code)
        m_support->addHint(m_colours.button(code), colourHint);
    m_colours.select(StatusTypes::Blue);
    StatusControls::limitTyping(ui->txtButtonText, ui->txtToolTipText);
    ui->cmdButtons_0->setEnabled(false);

    connect(ui->txtAddStatus, &QLineEdit::textChanged, this, [this] { txtAddStatus_Change(); });
    connect(ui->txtAddStatus, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
}

frmAddStatus::~frmAddStatus() = default;

void frmAddStatus::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtAddStatus->setFocus();
}

void frmAddStatus::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { okClicked(); });
        break;
    case 1:
        Hourglass::set(11);
        ui->txtAddStatus->clear();
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmAddStatus::txtAddStatus_Change()
{
    const QString text = ui->txtAddStatus->text();
    if (Catalogues::refuseDoubleQuote(ui->txtAddStatus, text,
                                      QStringLiteral("Sorry, 'double quotes' are not allowed in a Status Type."),
                                      QStringLiteral("Invalid Character In Status Type")))
        return;
    ui->cmdButtons_0->setEnabled(!text.trimmed().isEmpty());
    StatusControls::followName(ui->txtButtonText, ui->txtToolTipText, text);
}

void frmAddStatus::okClicked()
{
    using Catalogues::refuse;
    const int critical = int(Msg::Icon::Critical);
    const QString name = ui->txtAddStatus->text().trimmed();
    if (name.isEmpty()) {
        refuse(ui->txtAddStatus, QStringLiteral("Please enter a new Status type"), AddStatusError, critical);
        return;
    }
    // Whether or not the type is to have a button of its own.
    if (StatusTypes::isToolbarCommand(name)) {
        refuse(ui->txtAddStatus,
               QStringLiteral("Sorry, ") + name +
                   QStringLiteral(" already exists as a 'Command Button' on the ToolBar. Please re-enter a different Status Type."),
               AddStatusError, critical);
        return;
    }
    if (ui->chkOnToolBar->isChecked() && ui->txtButtonText->text().trimmed().isEmpty()) {
        refuse(ui->txtButtonText, QStringLiteral("Please enter button text"), AddStatusError, critical);
        return;
    }
    StatusTypes::StatusType type;
    type.status = name;
    type.statusCode = m_colours.chosen(StatusTypes::Blue);
    type.onToolbar = ui->chkOnToolBar->isChecked();
    type.buttonText = ui->txtButtonText->text();
    type.toolTipText = ui->txtToolTipText->text();
    type.protectedStatus = ui->chkProtectedStatus->isChecked();
    if (StatusTypes::exists(gdbMain, name)) {
        refuse(ui->txtAddStatus,
               QStringLiteral("Sorry, '") + name + QStringLiteral("' Status Type already exists.") + QStringLiteral("\r") +
                   QStringLiteral("Please select a different Status Type."),
               QStringLiteral("Error - Status Type Exists"), critical);
        return;
    }

    Hourglass::set(11);
    StatusTypes::add(gdbMain, type);
    Hourglass::set(0);

    if (Msg::box(QStringLiteral("Add another Status Type?"), Msg::Buttons::YesNo, Msg::Icon::Question,
                 QStringLiteral("Add Status Type")) == Msg::Yes) {
        m_colours.select(StatusTypes::Blue);
        ui->txtAddStatus->clear();
        ui->txtAddStatus->setFocus();
        return;
    }
    Hourglass::set(11);
    yieldEvents();
    accept();
}
