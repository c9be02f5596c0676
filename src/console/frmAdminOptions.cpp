#include "console/frmAdminOptions.h"

#include "ui_frmAdminOptions.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"

#include <QRegularExpression>
#include <cmath>

int boundedAdminFontSize(int size)
{
    if (size <= 8)
        return 8;
    if (size >= 15)
        return 15;
    return size;
}

int adminFontSizeFromText(const QString &text)
{
    // Leading blanks are skipped and the number ends at the first character
    // that cannot continue it; a fraction rounds half to even on assignment.
    static const QRegularExpression number(QStringLiteral("^[ \\t]*([+-]?(?:\\d+\\.?\\d*|\\.\\d+))"));
    const auto m = number.match(text);
    double value = 0;
    if (m.hasMatch())
        value = m.captured(1).toDouble();
    if (!std::isfinite(value) || std::fabs(value) > 1e6)
        return value > 0 ? 15 : 8;
    return boundedAdminFontSize(int(std::nearbyint(value)));
}

frmAdminOptions::frmAdminOptions(QWidget *parent) : QDialog(parent), ui(new Ui::frmAdminOptions)
{
    ui->setupUi(this);
    new DialogSupport(this, nullptr);
    for (int size = 8; size <= 15; ++size)
        ui->comboAdminFontSizeDisplay->addItem(QLatin1Char(' ') + QString::number(size));
    ui->chkAdminFontBoldDisplay->setChecked(gintAdminFontBold != 0);
    ui->comboAdminFontSizeDisplay->setEditText(QString::number(gintAdminFontSize));
    connect(ui->cmdOkAdminOptions, &QPushButton::clicked, this, [this] { guarded([this] { cmdOkAdminOptions_Click(); }); });
    connect(ui->cmdCancelAdminOptions, &QPushButton::clicked, this, &QDialog::reject);
}

frmAdminOptions::~frmAdminOptions() { delete ui; }

void frmAdminOptions::cmdOkAdminOptions_Click()
{
    // The settings row must be there to take the values; they travel in the
    // two variables and reach the row when the console closes.
    subOpenDatabase();
    Recordset rs = gdbMain.openTable(QStringLiteral("AdminSettingsTable"));
    if (rs.eof())
        throw StoreError(3021, QStringLiteral("No current record."));
    gintAdminFontBold = ui->chkAdminFontBoldDisplay->isChecked() ? 1 : 0;
    gintAdminFontSize = adminFontSizeFromText(ui->comboAdminFontSizeDisplay->currentText());
    rs.close();
    subCloseDatabase();
    accept();
}
