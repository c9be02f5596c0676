#include "logs/frmTransLog.h"

#include "ui_frmTransLog.h"

#include "console/DialogRegistry.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "logs/TransLogStore.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "store/Repair.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QProgressDialog>
#include <QPushButton>

frmTransLog::frmTransLog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmTransLog>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    QPushButton *const buttons[] = {ui->cmdButtons_0, ui->cmdButtons_1, ui->cmdButtons_2, ui->cmdButtons_3,
                                    ui->cmdButtons_4, ui->cmdButtons_5, ui->cmdButtons_6};
    m_support->addHints({
        {buttons[0], QStringLiteral(" Exit and update Transaction Log setting.")},
        {buttons[1], QStringLiteral(" Exit without updating Transaction Log setting.")},
        {buttons[2], QStringLiteral(" Erase contents of Transaction Log.")},
        {buttons[3], QStringLiteral(" Print Log.")},
        {buttons[4], QStringLiteral(" Export the Log in CSV format.")},
        {buttons[5], QStringLiteral(" Display Help.")},
        {buttons[6], QStringLiteral(" Reload with fresh data.")},
    });
    for (int i = 0; i < 7; ++i)
        connect(buttons[i], &QPushButton::clicked, this, [this, i] { cmdButtons_Click(i); });

    static const int widths[] = {130, 70, 110, 190, 140, 120, 110};
    for (int i = 0; i < 7; ++i)
        ui->lvTransLog->header()->resizeSection(i, widths[i]);

    // The flag is read afresh: OK writes it back, and the copy taken at
    // start may stand for a read that failed.
    m_support->openingRead([this] {
        gbolTransactionLog = TransLog::loggingFlag(gdbMain);
        ui->chkTransLog->setChecked(gbolTransactionLog);
        reload();
    });
}

frmTransLog::~frmTransLog() = default;

void frmTransLog::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { saveSetting(); });
        break;
    case 1:
        reject();
        break;
    case 2:
        guarded([this] { clearLog(); });
        break;
    case 3:
        DialogRegistry::showModal(QStringLiteral("frmPrint"), this);
        break;
    case 4:
        guarded([this] { exportLog(); });
        break;
    case 5:
        DialogSupport::sendHelpKey(this);
        break;
    case 6:
        guarded([this] { reload(); });
        break;
    default:
        break;
    }
}

void frmTransLog::reload()
{
    QTreeWidget *list = ui->lvTransLog;
    const QVector<QStringList> rows = TransLog::newestRows(gdbMain, 500);
    list->clear();
    if (rows.isEmpty()) {
        for (QPushButton *b : {ui->cmdButtons_2, ui->cmdButtons_3, ui->cmdButtons_4})
            b->setEnabled(false);
        return;
    }
    // A refill after an empty one offers the buttons again.
    for (QPushButton *b : {ui->cmdButtons_2, ui->cmdButtons_3, ui->cmdButtons_4})
        b->setEnabled(true);
    QList<QTreeWidgetItem *> items;
    for (const QStringList &row : rows)
        items << new QTreeWidgetItem(row);
    list->addTopLevelItems(items);
}

void frmTransLog::saveSetting()
{
    gbolTransactionLog = ui->chkTransLog->isChecked();
    TransLog::setLoggingFlag(gdbMain, gbolTransactionLog);
    accept();
}

void frmTransLog::clearLog()
{
    Hourglass::set(11);
    try {
        TransLog::clearLog(gdbMain);
    } catch (...) {
        Hourglass::set(0);
        throw;
    }
    // A log is what makes the file grow: give the room back.
    subCompactDatabase();
    ui->lvTransLog->clear();
    Hourglass::set(0);
}

void frmTransLog::exportLog()
{
    const QString name = TransLog::exportFileName(QDate::currentDate());
    const QString shown = gstrDataPath + name;
    const QString folder = UncPath::toLocal(gstrDataPath).value_or(gstrDataPath);
    const QString local = QDir(folder).filePath(name);
    if (QFileInfo::exists(local) &&
        Msg::box(shown + QStringLiteral(" already exists. Do you wish to over-write it?"), Msg::Buttons::YesNo,
                 Msg::Icon::Question, QString(), 2) == Msg::No)
        return;

    const qint64 total = gdbMain.scalar(QStringLiteral("SELECT COUNT(*) FROM TransactionLogTable")).toLongLong();
    if (total == 0) {
        Msg::box(QStringLiteral("Transaction Log is empty - Nothing to export."));
        return;
    }
    Hourglass::set(11);
    QProgressDialog progress(this);
    progress.setObjectName(QStringLiteral("ExportProgress"));
    progress.setWindowTitle(windowTitle());
    progress.setLabelText(QStringLiteral("Exporting to ") + shown);
    progress.setCancelButton(nullptr);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    progress.setRange(0, int(std::min<qint64>(total, INT_MAX)));
    try {
        TransLog::exportLog(gdbMain, local, [&](qint64 rows) {
            progress.setValue(int(std::min<qint64>(rows, progress.maximum())));
            yieldEvents();
        });
    } catch (const StoreError &e) {
        progress.close();
        Hourglass::set(0);
        if (e.number() != err::PathFileAccess)
            throw;
        Msg::box(QStringLiteral("Export to file ") + shown + QStringLiteral(" failed.") + QStringLiteral("\r\n\r\n") +
                     e.text(),
                 Msg::Buttons::OK, Msg::Icon::Exclamation);
        return;
    }
    progress.close();
    Hourglass::set(0);
    Msg::box(QStringLiteral("Export to file ") + shown + QStringLiteral(" complete."));
}
