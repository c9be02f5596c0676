#include "catalogues/frmAddDueBack.h"

#include "ui_frmAddDueBack.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/DueBackStore.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

frmAddDueBack::frmAddDueBack(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAddDueBack>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtAddDueBack, QStringLiteral(" Enter a new DueBack Type")},
        {ui->cmdButtons_0, QStringLiteral(" Save new DueBack Type and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving new DueBack Type.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->txtAddDueBack, &QLineEdit::textChanged, this, [this](const QString &text) {
        Catalogues::refuseDoubleQuote(ui->txtAddDueBack, text,
                                      QStringLiteral("Sorry, 'double quotes' are not allowed in a DueBack Type."),
                                      QStringLiteral("Invalid Character In DueBack Type"));
    });
    connect(ui->txtAddDueBack, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
}

frmAddDueBack::~frmAddDueBack() = default;

void frmAddDueBack::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtAddDueBack->setFocus();
}

void frmAddDueBack::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { okClicked(); });
        break;
    case 1:
        Hourglass::set(11);
        ui->txtAddDueBack->clear();
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmAddDueBack::okClicked()
{
    const int critical = int(Msg::Icon::Critical);
    const QString text = ui->txtAddDueBack->text().trimmed();
    if (text.isEmpty()) {
        Catalogues::refuse(ui->txtAddDueBack, QStringLiteral("Please enter a new DueBack Type"),
                           QStringLiteral("Add DueBack Type Error"), critical);
        return;
    }
    if (DueBackTypes::exists(gdbMain, text)) {
        Catalogues::refuse(ui->txtAddDueBack,
                           QStringLiteral("Sorry, ") + text + QStringLiteral(" already exists.") + QStringLiteral("\r") +
                               QStringLiteral("Please enter a different DueBack Type."),
                           QStringLiteral("Error - DueBack Type Exists"), critical);
        return;
    }
    Hourglass::set(11);
    DueBackTypes::add(gdbMain, text);
    Hourglass::set(0);

    if (Msg::box(QStringLiteral("Add another DueBack Type?"), Msg::Buttons::YesNo, Msg::Icon::Question,
                 QStringLiteral("Add DueBack Type")) == Msg::Yes) {
        ui->txtAddDueBack->clear();
        ui->txtAddDueBack->setFocus();
        return;
    }
    yieldEvents();
    Hourglass::set(11);
    accept();
}
