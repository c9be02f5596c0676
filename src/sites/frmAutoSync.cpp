#include "sites/frmAutoSync.h"

#include "ui_frmAutoSync.h"

#include "console/AdminTreeView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

#include <QCloseEvent>
#include <QHeaderView>

namespace {

const QString HomeNodeText = QStringLiteral("Auto Sync");

}  // namespace

frmAutoSync::frmAutoSync(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmAutoSync>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, nullptr);
    connect(ui->cmdBegin, &QPushButton::clicked, this, &frmAutoSync::cmdBegin_Click);
    connect(ui->cmdExit, &QPushButton::clicked, this, &frmAutoSync::cmdExit_Click);
    connect(ui->cmdHelp, &QPushButton::clicked, this, &frmAutoSync::cmdHelp_Click);
    ui->ProgressBarAutoSync->hide();
    ui->ListViewAutoSync->header()->resizeSection(0, 300);

    if (!gstrDataPath.isEmpty() && gstrDataPath.startsWith(QLatin1String("\\\\"))) {
        addRow({gstrDataPath.toUpper(), QString()});
        task(QStringLiteral("Home server added."));
    }
    guarded([this] {
        // No test for duplicates here: a home entry that repeats the data
        // path stands twice.
        Recordset rs = gdbMain.query(QStringLiteral("SELECT * FROM ServersTable ORDER BY UNCPath"));
        for (; !rs.eof(); rs.moveNext())
            if (!rs.isNull(QStringLiteral("UNCPath")))
                addRow({rs.text(QStringLiteral("UNCPath")), rs.text(QStringLiteral("Description"))});
        rs.close();
    });
    task(QStringLiteral("Existing remote servers added."));
}

frmAutoSync::~frmAutoSync() = default;

void frmAutoSync::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
    ui->cmdBegin->setFocus();
}

void frmAutoSync::closeEvent(QCloseEvent *event)
{
    // A run cannot be stopped once begun.
    if (m_running)
        event->ignore();
    else
        QDialog::closeEvent(event);
}

void frmAutoSync::done(int result)
{
    if (m_running)
        return;
    QDialog::done(result);
    // "Auto Sync" is a command, not a kind: the tree goes back to its parent.
    if (frmMain *main = frmMain::instance()) {
        AdminTreeView *tree = main->TreeViewMain();
        QTreeWidgetItem *node = tree->selectedNode();
        if (node && node->text(0) == HomeNodeText && node->parent())
            tree->selectNode(node->parent());
    }
}

void frmAutoSync::cmdExit_Click() { done(QDialog::Accepted); }

void frmAutoSync::cmdHelp_Click() { DialogSupport::sendHelpKey(this); }

void frmAutoSync::addRow(const Sites::ServerRow &row)
{
    m_rows.append(row);
    m_upper.insert(row.path.toUpper());
    auto *item = new QTreeWidgetItem(ui->ListViewAutoSync, {row.path, row.description});
    Q_UNUSED(item);
}

void frmAutoSync::task(const QString &line)
{
    ui->lstTasks->addItem(line);
    ui->lstTasks->scrollToBottom();
}

void frmAutoSync::advance()
{
    ++m_position;
    if (m_position > m_maximum)
        m_position = m_maximum;  // the bar stays where it is
    else
        ui->ProgressBarAutoSync->setValue(m_position);
    ui->ProgressBarAutoSync->repaint();
}

void frmAutoSync::cmdBegin_Click()
{
    if (m_running || !ui->cmdBegin->isEnabled())
        return;
    m_running = true;
    Hourglass::set(11);
    ui->cmdBegin->setEnabled(false);
    ui->cmdExit->setEnabled(false);
    m_position = 0;
    m_maximum = 2 * int(m_rows.size());
    ui->ProgressBarAutoSync->setRange(0, m_maximum);
    ui->ProgressBarAutoSync->setValue(0);
    ui->ProgressBarAutoSync->show();

    // Rows the scan adds are not scanned themselves.
    const int scanned = int(m_rows.size());
    for (int row = 0; row < scanned; ++row)
        scan(row);
    task(QStringLiteral("Scanning completed."));
    repaint();
    ui->ProgressBarAutoSync->repaint();

    // Every row now, the home row too: that is how what was found reaches home.
    const int updated = int(m_rows.size());
    for (int row = 0; row < updated; ++row)
        update(row);

    task(QStringLiteral("All tasks completed. Where possible, remote databases have been updated."));
    ui->ProgressBarAutoSync->repaint();
    ui->ProgressBarAutoSync->hide();
    ui->lstTasks->setCurrentRow(ui->lstTasks->count() - 1);
    Hourglass::set(0);
    m_running = false;
    // One opening, one run: Begin stays off.
    ui->cmdExit->setEnabled(true);
    ui->cmdExit->setFocus();
}

void frmAutoSync::scan(int row)
{
    advance();
    QString path = m_rows[row].path;
    if (!path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('\\');
    // Exactly the data path: a home entry in other letters is scanned as a remote.
    if (path == gstrDataPath.toUpper())
        return;

    Sites::SiteOutcome site;
    Sites::runAside([&] { site = Sites::readSite(path); });
    const QString skipped = QStringLiteral("Skipped entry. Unable to connect to: ") + path;
    if (!site.opened) {
        const StoreError &e = site.failures.first();
        if (e.number() == err::PathNotFound) {
            task(skipped);
            return;
        }
        // Reached or not, the line stands; nothing more is done with this row.
        Msg::box(e.text());
        task(QStringLiteral("Scanning ") + path);
        return;
    }
    task(QStringLiteral("Scanning ") + path);
    for (const Sites::ServerRow &remote : site.rows) {
        if (m_upper.contains(remote.path.toUpper()))
            continue;
        // Kept as stored; only the report shows it in upper case.
        addRow(remote);
        task(QStringLiteral("Added ") + remote.path.toUpper());
    }
    if (!site.failures.isEmpty()) {
        const StoreError &e = site.failures.first();
        if (e.number() == err::PathNotFound)
            task(skipped);
        else
            Msg::box(e.text());
    }
}

void frmAutoSync::update(int row)
{
    advance();
    // In this phase the text is taken as it stands, no backslash added.
    const QString target = m_rows[row].path;
    Sites::SiteOutcome site;
    const QVector<Sites::ServerRow> list = m_rows;
    Sites::runAside([&] { site = Sites::updateSite(target, list); });
    if (!site.opened) {
        const StoreError &e = site.failures.first();
        if (e.number() == err::PathNotFound) {
            task(QStringLiteral("Skipped entry. Unable to update: ") + target);
        } else {
            Msg::box(e.text());
            task(QStringLiteral("Updating ") + target);
        }
        return;
    }
    task(QStringLiteral("Updating ") + target);
    for (const StoreError &e : site.failures) {
        if (e.number() == err::PathNotFound) {
            task(QStringLiteral("Skipped entry. Unable to update: ") + target);
            break;
        }
        Msg::box(e.text());
    }
}
