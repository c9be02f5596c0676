#include "catalogues/frmModStatus.h"

#include "ui_frmModStatus.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/StatusControls.h"
#include "catalogues/StatusTypeStore.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"

frmModStatus::frmModStatus(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModStatus>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    const QString colourHint = QStringLiteral(" Select a color for this Status Type.");
    m_support->addHints({
        {ui->txtModifyStatus, QStringLiteral("  Enter a new Status Type")},
        {ui->txtButtonText, QStringLiteral("  Enter text to appear below button on Toolbar")},
        {ui->txtToolTipText, QStringLiteral("  Enter ToolTip text")},
        {ui->chkOnToolBar, QStringLiteral(" Adds a colored button to the users ToolBar.")},
        {ui->picStatusCode, colourHint},
        {ui->cmdButtons_0, QStringLiteral(" Save Status changes and exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving changes.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    m_colours = StatusControls::colourRadios(this);
    for (int code = 1; code <= 6; ++code)
        m_support->addHint(m_colours.button(code), colourHint);
    StatusControls::limitTyping(ui->txtButtonText, ui->txtToolTipText);

    connect(ui->txtModifyStatus, &QLineEdit::textChanged, this, [this] { txtModifyStatus_Change(); });
    connect(ui->txtModifyStatus, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    m_current = SelectedStatusName;
    ui->lblCurrent->setText(m_current);
    ui->txtModifyStatus->setText(m_current);
    ui->txtModifyStatus->selectAll();
    // The stored button text and tool tip come after the name, so the name's
    // rewriting of them does not stand on opening.
    m_support->openingRead([this] {
        StatusTypes::StatusType type;
        if (!StatusTypes::read(gdbMain, m_current, type))
            return;
        ui->chkOnToolBar->setChecked(type.onToolbar);
        ui->chkProtectedStatus->setChecked(type.protectedStatus);
        Catalogues::TypedLimit::put(ui->txtButtonText, type.buttonText);
        Catalogues::TypedLimit::put(ui->txtToolTipText, type.toolTipText);
        m_storedCode = type.statusCode;
        if (m_colours.button(type.statusCode))
            m_colours.select(type.statusCode);
    });
}

frmModStatus::~frmModStatus() = default;

void frmModStatus::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtModifyStatus->setFocus();
}

void frmModStatus::cmdButtons_Click(int index)
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

void frmModStatus::txtModifyStatus_Change()
{
    const QString text = ui->txtModifyStatus->text();
    if (Catalogues::refuseDoubleQuote(ui->txtModifyStatus, text,
                                      QStringLiteral("Sorry, 'double quotes' are not allowed in a Status Type."),
                                      QStringLiteral("Invalid Character In Status Type")))
        return;
    StatusControls::followName(ui->txtButtonText, ui->txtToolTipText, text);
}

void frmModStatus::okClicked()
{
    using Catalogues::refuse;
    const int critical = int(Msg::Icon::Critical);
    const QString name = ui->txtModifyStatus->text().trimmed();
    if (name.isEmpty()) {
        refuse(ui->txtModifyStatus, QStringLiteral("Please enter the new Status text before pressing OK."),
               QStringLiteral("Modify Status"), int(Msg::Icon::Exclamation));
        return;
    }
    if (StatusTypes::isToolbarCommand(name)) {
        refuse(ui->txtModifyStatus,
               QStringLiteral("Sorry, ") + name +
                   QStringLiteral(" already exists as a 'Command Button' on the ToolBar. Please re-enter a different Status Type."),
               QStringLiteral("Modify Status Error"), critical);
        return;
    }
    if (ui->chkOnToolBar->isChecked() && ui->txtButtonText->text().trimmed().isEmpty()) {
        refuse(ui->txtButtonText, QStringLiteral("Please enter button text"), QStringLiteral("Add Status Error"), critical);
        return;
    }

    Hourglass::set(11);
    StatusTypes::StatusType type;
    type.status = name;
    type.statusCode = m_colours.chosen(m_storedCode);
    type.onToolbar = ui->chkOnToolBar->isChecked();
    type.buttonText = ui->txtButtonText->text();
    type.toolTipText = ui->txtToolTipText->text();
    type.protectedStatus = ui->chkProtectedStatus->isChecked();

    // No duplicate test: a name another row has is refused by the store,
    // and that shows here. A row gone meanwhile takes nothing, and the
    // counter still rises.
    const QString failure = QStringLiteral("An error occured while trying to modify status '") + name + QStringLiteral("'.");
    const bool saved = Store::inTransaction(
        gdbMain,
        [&] {
            StatusTypes::modifyRow(gdbMain, m_current, type);
            StatusTypes::raiseCounter(gdbMain);
        },
        [&](const StoreError &) {
            return Msg::box(failure, Msg::Buttons::RetryCancel, Msg::Icon::Exclamation) == Msg::Retry;
        });
    Hourglass::set(0);
    if (saved)
        accept();
    else
        reject();
}
