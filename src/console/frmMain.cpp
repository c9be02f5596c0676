#include "console/frmMain.h"

#include "ui_frmMain.h"

#include "core/Admin1.h"
#include "core/Global.h"
#include "platform/Hourglass.h"
#include "platform/Locale.h"
#include "platform/MessageBox.h"
#include "platform/Twips.h"
#include "platform/UncPath.h"
#include "store/Counters.h"
#include "store/Repair.h"
#include "store/modUpdateDatabaseStructure.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>

namespace {

frmMain *g_instance = nullptr;

constexpr int MinHeightTwips = 4000;
constexpr int MinWidthTwips = 6000;
constexpr int GapTwips = 60;
constexpr int ListTopTwips = 810;

const QString CRLF = QStringLiteral("\r\n");

}  // namespace

frmMain::frmMain(QWidget *parent) : QMainWindow(parent), ui(new Ui::frmMain)
{
    ui->setupUi(this);
    g_instance = this;
    m_hintPanel = new QLabel(this);
    m_hintPanel->setObjectName(QStringLiteral("StatusBarMainPanel1"));
    m_countPanel = new QLabel(this);
    m_countPanel->setObjectName(QStringLiteral("StatusBarMainPanel2"));
    m_countPanel->setMinimumWidth(Twips::toPixelsX(1800));
    m_countPanel->setAlignment(Qt::AlignCenter);
    ui->StatusBarMain->addWidget(m_hintPanel, 1);
    ui->StatusBarMain->addPermanentWidget(m_countPanel);
    ui->StatusBarMain->setSizeGripEnabled(true);

    ui->ListViewMain->header()->setStretchLastSection(false);
    ui->ListViewMain->setHeaderLabels({QString()});
    ui->ListViewMain->setVisible(false);  // shown once the list is built

    TimerDatabase.setInterval(2000);
    connect(&TimerDatabase, &QTimer::timeout, this, [] {
        gbolCloseDatabaseNow = true;
        subCloseDatabase();
    });

    drawBanner();
    ui->imgPlannerBanner->installEventFilter(this);
    ui->imgPlannerBanner->setMouseTracking(true);
    centralWidget()->setMouseTracking(true);
    setMouseTracking(true);
    setMinimumSize(Twips::toPixelsX(MinWidthTwips), Twips::toPixelsY(MinHeightTwips));

    setMainWindowUnloader([this] { unloadSequence(); });
}

frmMain::~frmMain()
{
    setMainWindowUnloader({});
    if (g_instance == this)
        g_instance = nullptr;
    delete ui;
}

frmMain *frmMain::instance() { return g_instance; }

void frmMain::drawBanner()
{
    // The board's own banner, drawn rather than shipped as a picture.
    const QSize size(Twips::toPixelsX(2400), Twips::toPixelsY(720));
    QPixmap pm(size * devicePixelRatioF());
    pm.setDevicePixelRatio(devicePixelRatioF());
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, size.width(), size.height());
    g.setColorAt(0, QColor(0x1f, 0x4e, 0x8c));
    g.setColorAt(1, QColor(0x3f, 0x8e, 0xd8));
    p.fillRect(QRect(QPoint(0, 0), size), g);
    // Three status lamps: out, busy, in.
    const int r = size.height() / 7;
    const QColor lamps[] = {QColor(0xd9, 0x3b, 0x3b), QColor(0xf2, 0xc1, 0x2e), QColor(0x3c, 0xb3, 0x4a)};
    for (int i = 0; i < 3; ++i) {
        p.setBrush(lamps[i]);
        p.setPen(QPen(Qt::white, 1));
        p.drawEllipse(QPoint(r + 6, r + 4 + i * (2 * r + 3)), r, r);
    }
    QFont f = font();
    f.setBold(true);
    f.setPixelSize(size.height() * 2 / 5);
    p.setFont(f);
    p.setPen(Qt::white);
    const int textLeft = 2 * r + 14;
    p.drawText(QRect(textLeft, 2, size.width() - textLeft, size.height() * 3 / 5), Qt::AlignVCenter | Qt::AlignLeft,
               QStringLiteral("TAVELLO"));
    f.setBold(false);
    f.setPixelSize(size.height() / 5);
    p.setFont(f);
    p.drawText(QRect(textLeft, size.height() * 3 / 5 - 2, size.width() - textLeft, size.height() * 2 / 5),
               Qt::AlignTop | Qt::AlignLeft, QStringLiteral("In/Out Board Admin"));
    p.end();
    ui->imgPlannerBanner->setPixmap(pm);
    ui->imgPlannerBanner->setFixedSize(size);
    ui->imgPlannerBanner->move(Twips::toPixelsX(GapTwips), Twips::toPixelsY(GapTwips));
}

bool frmMain::load()
{
    Hourglass::set(11);
    // Program folder in UNC form, trailing separator.
    gstrAppPath = UncPath::withTrailingSeparator(UncPath::toUnc(UncPath::programFolder()));
    gstrAppTitle = appTitleFor(gstrReleaseVersion);
    QApplication::setApplicationName(gstrAppTitle);
    Msg::setDefaultTitle(gstrAppTitle);
    setWindowTitle(gstrAppTitle + QStringLiteral("Main Screen"));

    InitializeLocalDatabase();
    if (gbolEnding)
        return false;
    if (!gbolIniFound) {
        // Nowhere to keep the database path: the run cannot go on.
        move(Twips::toPixelsX(300000), y());
        endProcess();
        return false;
    }
    subTestStatusCounterTable();
    subUpdateDatabaseStructure();
    subCheckDBVersionForConversion();
    if (gbolEnding)
        return false;
    subOpenDatabase();
    subCloseDatabase();
    if (gbolEnding)
        return false;
    subRefreshUserCount();
    showUserCount();
    subReadTransactionLogFlag();
    repaint();
    gintCountryCode = localeCountryCode();

    gstrCommandLine = gstrCommandLine.trimmed();
    if (!gstrCommandLine.isEmpty()) {
        subOneShotRepair(gstrCommandLine);
        unloadMainWindow();
        return false;
    }

    show();
    Hourglass::set(0);
    if (gbolForceShutDown) {
        Msg::box(QStringLiteral("REMINDER: On Admin Startup") + CRLF + CRLF +
                     QStringLiteral("Force Shut Down has been activated, and is still in effect.") + CRLF + CRLF +
                     QStringLiteral("To deactivate Force Shut Down,") + CRLF +
                     QStringLiteral("Use menu item Tools | Force Shut Down."),
                 Msg::Buttons::OK, Msg::Icon::Information);
    }
    ui->ListViewMain->setVisible(true);
    return !gbolEnding;
}

void frmMain::onActivate()
{
    if (!gbolIniFound) {
        endProcess();
        return;
    }
    subRefreshUserCount();
    showUserCount();
    ui->ListViewMain->setVisible(true);
}

void frmMain::showUserCount()
{
    // A blank, the count and a blank.
    m_countPanel->setText(QLatin1Char(' ') + QString::number(gintUserCount) + QLatin1Char(' '));
}

void frmMain::setHint(const QString &text) { m_hintPanel->setText(text); }
QString frmMain::hint() const { return m_hintPanel->text(); }
QString frmMain::userCountText() const { return m_countPanel->text(); }

void frmMain::SizeControls()
{
    if (isMinimized())
        return;
    const int gapX = Twips::toPixelsX(GapTwips);
    const int gapY = Twips::toPixelsY(GapTwips);
    QWidget *banner = ui->imgPlannerBanner;
    QWidget *list = ui->ListViewMain;
    const int inner = centralWidget()->height();
    const int listLeft = banner->x() + banner->width() + gapX;
    const int listTop = Twips::toPixelsY(ListTopTwips);
    list->setGeometry(listLeft, listTop, std::max(0, centralWidget()->width() - listLeft - gapX),
                      std::max(0, inner - listTop - gapY));
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    SizeControls();
}

void frmMain::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        onActivate();
}

void frmMain::keyPressEvent(QKeyEvent *event)
{
    // Alt+Home brings back a window lost off the screen.
    if (event->key() == Qt::Key_Home && event->modifiers() == Qt::AltModifier) {
        setWindowState(Qt::WindowNoState);
        move(0, 0);
        return;
    }
    QMainWindow::keyPressEvent(event);
}

bool frmMain::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->imgPlannerBanner && event->type() == QEvent::MouseMove)
        setHint(QStringLiteral("Tavello? Logo"));
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::mouseMoveEvent(QMouseEvent *event)
{
    setHint(QString());
    QMainWindow::mouseMoveEvent(event);
}

void frmMain::unloadSequence()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    gdbMain.close();
    if (gbolForceShutDown) {
        Msg::box(QStringLiteral("REMINDER: on Admin Exit") + CRLF + CRLF +
                     QStringLiteral("Force Shut Down has been activated and is still in effect.") + CRLF + CRLF +
                     QStringLiteral("To deactivate Force Shut Down,") + CRLF +
                     QStringLiteral("Use menu item Tools | Force Shut Down (when you restart ADMIN)."),
                 Msg::Buttons::OK, Msg::Icon::Information);
    }
}

void frmMain::closeEvent(QCloseEvent *event)
{
    unloadSequence();
    event->accept();
    endProcess();
}
