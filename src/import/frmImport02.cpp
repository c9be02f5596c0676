#include "import/frmImport02.h"

#include "ui_frmImport02.h"

#include "console/DialogRegistry.h"
#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "import/ImportFile.h"
#include "import/ImportStore.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"

#include <QCloseEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>

namespace {

// Events run and the bar is painted this often, in milliseconds.
constexpr int RepaintEveryMs = 50;
// A commit that meets a reader waits this long for it to finish.
constexpr int CommitPatienceMs = 10000;

std::function<void(qint64)> &observer()
{
    static std::function<void(qint64)> o;
    return o;
}

// A positive number as the board has always set it in text: a leading blank.
QString number(qint64 n) { return QLatin1Char(' ') + QString::number(n); }

}  // namespace

frmImport02::frmImport02(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmImport02>())
{
    ui->setupUi(this);
    new DialogSupport(this, nullptr);
    ui->ProgressBar->setAccessibleName(QStringLiteral("Lines imported"));
    // No buttons: the run cannot be stopped once begun.
    setWindowFlags((windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint) & ~Qt::WindowCloseButtonHint &
                   ~Qt::WindowContextHelpButtonHint);
}

frmImport02::~frmImport02() = default;

void frmImport02::setProgressObserver(std::function<void(qint64)> o) { observer() = std::move(o); }

void frmImport02::prepare(const QString &file, const std::array<QString, 3> &columnMap, QChar separator,
                          qint64 lineTotal)
{
    m_file = file;
    m_map = columnMap;
    m_separator = separator;
    m_lineTotal = lineTotal;
    ui->ProgressBar->setMinimum(0);
    ui->ProgressBar->setMaximum(int(std::min<qint64>(lineTotal, INT_MAX)));
    ui->ProgressBar->setValue(0);
}

void frmImport02::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // Once the window is up and painted, as it becomes active.
    QTimer::singleShot(0, this, [this] { Form_Activate(); });
}

void frmImport02::closeEvent(QCloseEvent *event)
{
    if (!m_finished)
        event->ignore();
    else
        QDialog::closeEvent(event);
}

void frmImport02::reject()
{
    // Escape does not stop a run.
    if (m_finished)
        QDialog::reject();
}

void frmImport02::Form_Activate()
{
    if (m_started)
        return;
    m_started = true;
    run();
    m_finished = true;
    accept();
}

void frmImport02::moveBar(qint64 linesDone)
{
    // A file that grew since it was counted: the bar makes room.
    if (linesDone > ui->ProgressBar->maximum() && linesDone <= INT_MAX)
        ui->ProgressBar->setMaximum(int(linesDone));
    ui->ProgressBar->setValue(int(std::min<qint64>(linesDone, ui->ProgressBar->maximum())));
    if (observer())
        observer()(linesDone);
}

void frmImport02::commitRun()
{
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        try {
            gdbMain.commitTrans();
            return;
        } catch (const StoreError &e) {
            // A user program reading at this moment: wait for it, a while.
            if (e.number() != err::RowLocked || waited.elapsed() > CommitPatienceMs)
                throw;
        }
        yieldEvents();
        QThread::msleep(50);
    }
}

void frmImport02::run()
{
    ui->lblImport02->setText(QDir::toNativeSeparators(m_file));
    Hourglass::set(11);
    ImportFile file(m_file);
    if (!file.open()) {
        Hourglass::set(0);
        Msg::box(QStringLiteral("The Import File could not be opened:") + QStringLiteral("\r\n") +
                     QDir::toNativeSeparators(m_file) + QStringLiteral("\r\n\r\n") + file.errorString() +
                     QStringLiteral("\r\n\r\nNothing was imported."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Import File Error"));
        return;
    }

    qint64 linesDone = 0, errors = 0;
    bool readFailed = false, ended = false;
    bool ok = false;
    guarded([&] {
        gdbMain.beginTrans();
        try {
            Import::ImportRun importRun(gdbMain, m_map, m_separator);
            QElapsedTimer sinceRepaint;
            sinceRepaint.start();
            QString line;
            while (file.next(line)) {
                importRun.take(line);
                if ((importRun.linesDone() & 63) == 0 && sinceRepaint.elapsed() >= RepaintEveryMs) {
                    moveBar(importRun.linesDone());
                    yieldEvents();
                    sinceRepaint.restart();
                    if (gbolEnding)
                        break;
                }
            }
            linesDone = importRun.linesDone();
            errors = importRun.errorCount();
            readFailed = file.failed();
            ended = gbolEnding;
            if (readFailed || ended) {
                gdbMain.rollback();
                return;
            }
            moveBar(linesDone);
            commitRun();
            ok = true;
        } catch (...) {
            // Never half a run: what this run wrote goes.
            gdbMain.rollback();
            throw;
        }
    });
    yieldEvents();
    Hourglass::set(0);
    if (readFailed)
        Msg::box(QStringLiteral("The Import File could not be read to its end:") + QStringLiteral("\r\n") +
                     QDir::toNativeSeparators(m_file) + QStringLiteral("\r\n\r\n") + file.errorString() +
                     QStringLiteral("\r\n\r\nNothing was imported."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Import File Error"));
    if (!ok)
        return;

    const QString results = QStringLiteral("Import Results");
    if (errors > 0) {
        const int answer = Msg::box(QStringLiteral("Import finished -") + number(linesDone) +
                                        QStringLiteral(" records processed.") + number(errors) +
                                        QStringLiteral(" error(s) occurred.") + QLatin1Char('\r') +
                                        QStringLiteral("Would you like to examine the Import Error Log?"),
                                    Msg::Buttons::YesNo, Msg::Icon::Question, results);
        if (answer == Msg::Yes)
            DialogRegistry::showModal(QStringLiteral("frmImportErrors"), parentWidget() ? parentWidget() : this);
    } else {
        Msg::box(QStringLiteral("Import finished -") + number(linesDone) +
                     QStringLiteral(" records processed. No errors were detected."),
                 Msg::Buttons::OK, Msg::Icon::Information, results);
    }
}
