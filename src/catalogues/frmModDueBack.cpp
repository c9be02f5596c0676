#include "catalogues/frmModDueBack.h"

#include "ui_frmModDueBack.h"

#include "catalogues/CatalogueSupport.h"
#include "catalogues/DueBackStore.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/ERRORS.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"

frmModDueBack::frmModDueBack(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModDueBack>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtModifyDueBack, QStringLiteral("  Enter a new DueBack Type")},
        {ui->cmdButtons_0, QStringLiteral("  Press OK to exit & save DueBack Type.")},
        {ui->cmdButtons_1, QStringLiteral("  Press Cancel to exit without saving DueBack Type.")},
        {ui->cmdButtons_2, QStringLiteral("  Display Help")},
    });
    connect(ui->txtModifyDueBack, &QLineEdit::textChanged, this, [this](const QString &text) {
        Catalogues::refuseDoubleQuote(ui->txtModifyDueBack, text,
                                      QStringLiteral("Sorry, 'double quotes' are not allowed in a Message Type."),
                                      QStringLiteral("Invalid Character In Message Type"));
    });
    connect(ui->txtModifyDueBack, &QLineEdit::returnPressed, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    m_current = SelectedDueBackName;
    ui->lblCurrent->setText(m_current);
    ui->txtModifyDueBack->setText(m_current);
    ui->txtModifyDueBack->selectAll();
}

frmModDueBack::~frmModDueBack() = default;

void frmModDueBack::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->txtModifyDueBack->setFocus();
}

void frmModDueBack::cmdButtons_Click(int index)
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

void frmModDueBack::okClicked()
{
    const QString text = ui->txtModifyDueBack->text().trimmed();
    if (text.isEmpty() || text == m_current) {
        Catalogues::refuse(ui->txtModifyDueBack, QStringLiteral("No changes made."), QString(),
                           int(Msg::Icon::Exclamation));
        return;
    }
    Hourglass::set(11);
    // A change of case only would find its own row as a duplicate: the
    // test is skipped then.
    if (text.compare(m_current, Qt::CaseInsensitive) != 0 && DueBackTypes::equalExists(gdbMain, text)) {
        Msg::box(QStringLiteral("The DueBack Type you've chosen already exists."), Msg::Buttons::OK,
                 Msg::Icon::Exclamation);
        ui->txtModifyDueBack->selectAll();
        ui->txtModifyDueBack->setFocus();
        Hourglass::set(0);
        return;
    }
    // A row locked by another program is retried once in silence, then the
    // operator is asked; any other failure is told and the window stays open.
    const bool saved = Store::inTransaction(gdbMain, [&] { DueBackTypes::rename(gdbMain, m_current, text); },
                                            [](const StoreError &e) {
                                                return gintHandleUpdateError(e.number(), e.text()) == RetryStatement;
                                            });
    Hourglass::set(0);
    if (saved)
        accept();
}
