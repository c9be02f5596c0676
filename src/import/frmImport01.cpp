#include "import/frmImport01.h"

#include "ui_frmImport01.h"

#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "import/ImportStore.h"
#include "import/frmImport02.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"

#include <QComboBox>
#include <QDir>
#include <QPushButton>

frmImport01::frmImport01(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmImport01>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->optSeperatorComma, QStringLiteral(" Import users in your usual Name format.")},
        {ui->optSeperatorTab, QStringLiteral(" Import users in Name <TAB> Phone Number format.")},
        {ui->ListViewImport, QString()},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });

    const QStringList roles{Import::NotUsed, Import::UserID, Import::UserName, Import::PhoneNumber};
    QComboBox *combos[] = {ui->Combo1, ui->Combo2, ui->Combo3};
    for (int i = 0; i < 3; ++i) {
        combos[i]->addItems(roles);
        combos[i]->setInsertPolicy(QComboBox::NoInsert);
        combos[i]->setCurrentIndex(i + 1);
    }

    ui->txtImportFileName->setText(QDir::toNativeSeparators(ImportFilePath));
    ui->ListViewImport->clear();
    Hourglass::set(11);
    m_scan = scanImportFile(ImportFilePath, [] { yieldEvents(); });
    for (const QString &line : m_scan.preview)
        ui->ListViewImport->addItem(line);
    Hourglass::set(0);
    if (!m_scan.opened || !m_scan.error.isEmpty())
        Msg::box(QStringLiteral("The Import File could not be read:") + QStringLiteral("\r\n") +
                     QDir::toNativeSeparators(ImportFilePath) + QStringLiteral("\r\n\r\n") + m_scan.error,
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Import File Error"));
}

frmImport01::~frmImport01() = default;

std::array<QString, 3> frmImport01::columnMap() const
{
    std::array<QString, 3> map;
    const QComboBox *combos[] = {ui->Combo1, ui->Combo2, ui->Combo3};
    for (int i = 0; i < 3; ++i)
        map[i] = combos[i]->currentText().isEmpty() ? Import::NotUsed : combos[i]->currentText();
    return map;
}

QChar frmImport01::separator() const
{
    return ui->optSeperatorTab->isChecked() ? QLatin1Char('\t') : QLatin1Char(',');
}

void frmImport01::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        nextClicked();
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

void frmImport01::nextClicked()
{
    const QStringList texts{ui->Combo1->currentText(), ui->Combo2->currentText(), ui->Combo3->currentText()};
    if (texts.join(QString()).isEmpty()) {
        Msg::box(QStringLiteral("Please select the Import Columns for this file."), Msg::Buttons::OK,
                 Msg::Icon::Exclamation, QStringLiteral("TAVELLO - No Import Columns Selected"));
        return;
    }
    if (!texts.contains(Import::UserName)) {
        Msg::box(QStringLiteral("User Name is a required field"), Msg::Buttons::OK, Msg::Icon::Information,
                 QStringLiteral("User Name is Required."));
        return;
    }
    if (!m_scan.opened || !m_scan.error.isEmpty()) {
        Msg::box(QStringLiteral("The Import File could not be read:") + QStringLiteral("\r\n") +
                     QDir::toNativeSeparators(ImportFilePath) + QStringLiteral("\r\n\r\n") + m_scan.error,
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Import File Error"));
        return;
    }
    if (m_scan.lineTotal == 0) {
        Msg::box(QStringLiteral("Nothing to Import!"), Msg::Buttons::OK, Msg::Icon::Information,
                 QStringLiteral("Import File Empty"));
        return;
    }
    // A file holding NUL bytes is no plain text: a program's own format,
    // or text saved as UTF-16. Nothing sensible can come of its lines.
    if (m_scan.nulSeen) {
        Msg::box(QStringLiteral("The Import File is not a plain text file: it contains NUL characters.") +
                     QStringLiteral("\r\n\r\n") +
                     QStringLiteral("Save the list as plain text (UTF-8 or ANSI), one user per line, and import that file."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Text file expected."));
        return;
    }
    if (ui->optSeperatorComma->isChecked() && !m_scan.commaSeen) {
        Msg::box(QStringLiteral("The Comma Seperated File does NOT Contain Commas."), Msg::Buttons::OK,
                 Msg::Icon::Information, QStringLiteral("Commas expected in Import File."));
        return;
    }
    if (ui->optSeperatorTab->isChecked() && !m_scan.tabSeen) {
        Msg::box(QStringLiteral("The Tab Delimited File does NOT Contain Tabs."), Msg::Buttons::OK,
                 Msg::Icon::Information, QStringLiteral("Tabs expected in Import File."));
        return;
    }
    {
        frmImport02 run(this);
        run.prepare(ImportFilePath, columnMap(), separator(), m_scan.lineTotal);
        Modal::show(&run);
    }
    accept();
}
