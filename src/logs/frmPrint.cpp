#include "logs/frmPrint.h"

#include "ui_frmPrint.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "logs/TransLogStore.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/ReportPrinter.h"

#include <QApplication>
#include <QDateTime>
#include <QPushButton>

#include <optional>

namespace {
const QString SelectUser = QStringLiteral("Select User Name");
const QString SelectSize = QStringLiteral("Select Font Point Size");
constexpr int DefaultSize = 7;
constexpr int TitleSize = 15;
}  // namespace

frmPrint::frmPrint(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmPrint>())
{
    ui->setupUi(this);
    new DialogSupport(this, nullptr);
    connect(ui->CommandPrintOK, &QPushButton::clicked, this, [this] { guarded([this] { CommandPrintOK_Click(); }); });
    connect(ui->CommandPrintCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->CommandPrintSetup, &QPushButton::clicked, this, [this] { CommandPrintSetup_Click(); });
    connect(ui->cmdPrintHelp, &QPushButton::clicked, this, [this] { DialogSupport::sendHelpKey(this); });
    connect(ui->OptionPrintReportType_0, &QRadioButton::toggled, this, [this] { applyOkRule(); });
    connect(ui->OptionPrintReportType_1, &QRadioButton::toggled, this, [this] { applyOkRule(); });
    connect(ui->ComboUserNames, &QComboBox::currentTextChanged, this, [this] { applyOkRule(); });

    ui->ComboUserNames->addItem(SelectUser);
    guarded([this] {
        Recordset rs = gdbMain.query(QStringLiteral("SELECT Name from EmployeeTable ORDER BY Name"));
        if (rs.eof()) {
            // As the board has always done on an empty table: a row of defaults.
            rs.close();
            gdbMain.addRow(QStringLiteral("EmployeeTable"));
            rs = gdbMain.query(QStringLiteral("SELECT Name from EmployeeTable ORDER BY Name"));
        }
        for (; !rs.eof(); rs.moveNext())
            ui->ComboUserNames->addItem(rs.value(0).toString());
    });
    ui->comboFontSize->addItem(SelectSize);
    for (int size = 3; size <= 10; ++size)
        ui->comboFontSize->addItem(QString::number(size));
    applyOkRule();
}

frmPrint::~frmPrint() = default;

void frmPrint::applyOkRule()
{
    const bool forUser = ui->OptionPrintReportType_1->isChecked();
    ui->ComboUserNames->setEnabled(forUser);
    ui->CommandPrintOK->setEnabled(!forUser || ui->ComboUserNames->currentText() != SelectUser);
}

int frmPrint::fontSize() const
{
    const QString text = ui->comboFontSize->currentText();
    return text == SelectSize ? DefaultSize : text.toInt();
}

void frmPrint::CommandPrintSetup_Click() { ReportPrinter::setup(this); }

void frmPrint::CommandPrintOK_Click()
{
    const bool forUser = ui->OptionPrintReportType_1->isChecked();
    const QString where = forUser ? QStringLiteral(" WHERE Name = ?") : QString();
    const QVariantList params = forUser ? QVariantList{ui->ComboUserNames->currentText()} : QVariantList{};
    const qint64 rows =
        gdbMain.scalar(QStringLiteral("SELECT COUNT(*) FROM TransactionLogTable") + where, params).toLongLong();
    if (rows == 0) {
        Msg::box(forUser ? QStringLiteral("There are no records in the Transaction Log for the selected user.")
                         : QStringLiteral("There are no records in the Transaction Log."));
        return;
    }

    ReportPrinter::Report report;
    report.caption = gstrAppTitle + QStringLiteral("Print Preview");
    report.documentName = QStringLiteral("TAVELLO Transaction Log");
    report.title = QStringLiteral("\t Transaction Log ") +
                   QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    report.titleFont = QFont(QApplication::font().family(), TitleSize);
    report.bodyFont = ReportPrinter::fixedFont(fontSize());
    report.fitColumns = TransLog::reportLineLength();
    report.lineCount = rows + 1;
    const QString sql = QStringLiteral("SELECT %1 FROM TransactionLogTable").arg(TransLog::Fields.join(QStringLiteral(", "))) +
                        where + QStringLiteral(" ORDER BY Name, LastModified");
    std::optional<StoreError> failure;
    report.body = [&](const ReportPrinter::LineSink &line) {
        if (failure || !line(TransLog::reportHeading()))
            return;
        // A failure must not cross the printing layer: it is kept and told once printing is over.
        try {
            for (Recordset rs = gdbMain.query(sql, params); !rs.eof(); rs.moveNext()) {
                QStringList values;
                for (int i = 0; i < TransLog::Fields.size(); ++i)
                    values << rs.value(i).toString();
                if (!line(TransLog::reportLine(values)))
                    return;
            }
        } catch (const StoreError &e) {
            failure = e;
        }
    };
    const bool printed = ReportPrinter::preview(this, report);
    Hourglass::set(0);
    if (failure)
        throw *failure;
    if (printed)
        accept();
}
