#include "console/frmMain.h"

#include "ui_frmMain.h"

#include "console/AdminListView.h"
#include "console/AdminTreeView.h"
#include "console/DialogRegistry.h"
#include "console/Images.h"
#include "core/Unhandled.h"
#include "console/frmAdminOptions.h"
#include "core/Admin1.h"
#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/FileDialogs.h"
#include "platform/Help.h"
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
#include <QCursor>
#include <QDateTime>
#include <QDialog>
#include <QEventLoop>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QMessageBox>
#include <QPainter>
#include <QShortcut>
#include <QStatusBar>
#include <QToolButton>
#include <cmath>

namespace {

frmMain *g_instance = nullptr;

constexpr int MinHeightTwips = 4000;
constexpr int MinWidthTwips = 6000;
constexpr int GapTwips = 60;

const QString CR = QStringLiteral("\r");
const QString CRLF = QStringLiteral("\r\n");

const QString Users = QStringLiteral("Users");
const QString Groups = QStringLiteral("Groups");
const QString StatusTypes = QStringLiteral("Status Types");
const QString DueBackTypes = QStringLiteral("DueBack Types");
const QString Servers = QStringLiteral("Servers");
const QString AutoSync = QStringLiteral("Auto Sync");
const QString Columns = QStringLiteral("Columns");
const QString Messages = QStringLiteral("Messages");
const QString Import = QStringLiteral("Import");
const QString Items = QStringLiteral("Items");

// The toolbar in position order: key, and the window it opens (empty: none).
struct ButtonDef {
    const char *key;
    const char *window;
};
constexpr ButtonDef Buttons[] = {
    {"Import", "frmImport01"}, {"Add", ""},      {"Modify", ""},   {"Delete", ""},       {"Repair", "frmRepair"},
    {"Refresh", ""},           {"About", "about"}, {"Help", ""},     {"ExitAdmin", ""},
};

// Menu entries that open a window of their own.
struct MenuWindow {
    const char *item;
    const char *window;
};
constexpr MenuWindow MenuWindows[] = {
    {"mnuAdminOptions", "frmAdminOptions"},
    {"mnuCompactDatabase", "frmRepair"},
    {"mnuDataPath", "frmDataPath"},
    {"mnuGlobalSettings", "frmGlobalSettings"},
    {"mnuImportErrorLog", "frmImportErrors"},
    {"mnuNewUserDefaults", "frmNewUser"},
    {"mnuSystemSecurity", "frmSecurity"},
    {"mnuTransactionLog", "frmTransLog"},
    {"mnuCompamyInfo", "frmCompany"},
    {"mnuPhotoPath", "frmPhotoPath"},
    {"mnuForceShutdown", "frmForceShutdown"},
    {"mnuAutoCheckforUpdates", "frmAutoCheckForUpdates"},
    {"mnuCheckForUpdates", "CheckForUpdates"},
    {"mnuAbout", "about"},
};

// Trims blanks only, as the list's texts always were.
QString trimBlanks(const QString &s)
{
    qsizetype b = 0, e = s.size();
    while (b < e && s[b] == QLatin1Char(' '))
        ++b;
    while (e > b && s[e - 1] == QLatin1Char(' '))
        --e;
    return s.mid(b, e - b);
}

bool isTrue(const QVariant &v)
{
    if (v.isNull())
        return false;
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (ok)
        return d != 0;
    const QString t = v.toString().trimmed();
    return t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 ||
           t.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0;
}

// A date-and-time number (days since 30 December 1899, the time as the
// fraction) in the console's general date format: the date alone at
// midnight, the time alone on day 0.
QString generalDate(const QVariant &v)
{
    if (v.isNull())
        throw StoreError(94, QStringLiteral("Invalid use of Null"));
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (!ok || !std::isfinite(d) || std::fabs(d) > 2958465.0)
        throw StoreError(13, QStringLiteral("Type mismatch"));
    double days = std::trunc(d);
    qint64 seconds = std::llround(std::fabs(d - days) * 86400.0);
    if (seconds >= 86400) {
        seconds -= 86400;
        days += d < 0 ? -1 : 1;
    }
    const QDate date = QDate(1899, 12, 30).addDays(qint64(days));
    const QTime time = QTime(0, 0).addSecs(int(seconds));
    if (days == 0)
        return time.toString(QStringLiteral("HH:mm:ss"));
    if (seconds == 0)
        return date.toString(QStringLiteral("yyyy-MM-dd"));
    return date.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char(' ') + time.toString(QStringLiteral("HH:mm:ss"));
}

QString &selectionMemory(const QString &kind)
{
    static QString none;
    if (kind == Columns)
        return LastSelectedColumn;
    if (kind == DueBackTypes)
        return LastSelectedDueBack;
    if (kind == Groups)
        return LastSelectedGroup;
    if (kind == Messages)
        return LastSelectedMessage;
    if (kind == Servers || kind == AutoSync)
        return LastSelectedServer;
    if (kind == StatusTypes)
        return LastSelectedStatus;
    if (kind == Users)
        return LastSelectedUser;
    none.clear();
    return none;
}

bool isProtectedStatus(const QString &text)
{
    return text == QLatin1String("In") || text == QLatin1String("Out") || text == QLatin1String("Busy");
}

}  // namespace

void gRefreshListView(const QString &kind)
{
    if (frmMain *w = frmMain::instance())
        w->refreshListView(kind);
}

frmMain::frmMain(QWidget *parent) : QMainWindow(parent), ui(new Ui::frmMain)
{
    DialogRegistry::registerAvailableWindows();
    ui->setupUi(this);
    g_instance = this;

    // A new console remembers no selection yet.
    for (QString *s : {&LastSelectedColumn, &LastSelectedDueBack, &LastSelectedGroup, &LastSelectedMessage,
                       &LastSelectedServer, &LastSelectedStatus, &LastSelectedUser})
        s->clear();

    m_hintPanel = new QLabel(this);
    m_hintPanel->setObjectName(QStringLiteral("StatusBarMainPanel1"));
    m_countPanel = new QLabel(this);
    m_countPanel->setObjectName(QStringLiteral("StatusBarMainPanel2"));
    m_countPanel->setMinimumWidth(Twips::toPixelsX(1800));
    m_countPanel->setAlignment(Qt::AlignCenter);
    m_countPanel->setToolTip(QStringLiteral(" Number of users "));
    ui->StatusBarMain->addWidget(m_hintPanel, 1);
    ui->StatusBarMain->addPermanentWidget(m_countPanel);
    ui->StatusBarMain->setSizeGripEnabled(true);

    // The Edit entries are one array.
    for (int i = 0; i < 3; ++i) {
        QAction *a = findChild<QAction *>(QStringLiteral("mnuEditSub_%1").arg(i));
        a->setObjectName(QStringLiteral("mnuEditSub"));
        a->setProperty("index", i);
    }
    // Separators carry their names too.
    const QList<QAction *> tools = ui->mnuTools->actions();
    for (QAction *a : tools)
        if (a->isSeparator())
            a->setObjectName(QStringLiteral("sep11"));
    int helpSeparator = 0;
    for (QAction *a : ui->mnuHelp->actions())
        if (a->isSeparator())
            a->setObjectName(helpSeparator++ == 0 ? QStringLiteral("mnuHelpMenuBar") : QStringLiteral("mnuSep4"));

    for (int i = 0; i < 9; ++i) {
        QAction *a = toolbarButton(i + 1);
        a->setProperty("position", i + 1);
        a->setIcon(Images::toolbarIcon(QString::fromLatin1(Buttons[i].key)));
        if (QWidget *b = ui->ToolbarMain->widgetForAction(a)) {
            b->setObjectName(QString::fromLatin1(Buttons[i].key));
            b->setMouseTracking(true);
        }
    }
    ui->ToolbarMain->setMouseTracking(true);
    ui->ToolbarMain->setContextMenuPolicy(Qt::PreventContextMenu);
    setContextMenuPolicy(Qt::NoContextMenu);

    AdminListView *list = ui->ListViewMain;
    list->list()->addHeader(QStringLiteral("Please select Node from Treeview on left"));
    list->setVisible(false);  // shown once the window is first active

    TimerDatabase.setInterval(2000);
    connect(&TimerDatabase, &QTimer::timeout, this, [] {
        gbolCloseDatabaseNow = true;
        subCloseDatabase();
    });

    drawBanner();
    ui->imgPlannerBanner->setMouseTracking(true);
    centralWidget()->setMouseTracking(true);
    setMouseTracking(true);
    setMinimumSize(Twips::toPixelsX(MinWidthTwips), Twips::toPixelsY(MinHeightTwips));
    // Banner, toolbar and the windows coming and going are watched here.
    qApp->installEventFilter(this);
    frmDataPath::setStatusBarRefresh([this] {
        subRefreshUserCount();
        showUserCount();
    });

    wireCommands();
    refreshAvailability();
    for (QAction *a : {toolbarButton(1), toolbarButton(2), toolbarButton(3), toolbarButton(4), mnuEditSub(0),
                       mnuEditSub(1), mnuEditSub(2)})
        setVerbEnabled(a, false);

    setMainWindowUnloader([this] { unloadSequence(); });

    // Alt+Home brings back a window lost off the screen, wherever the focus
    // is in it: the tree and the list would take Home for themselves.
    auto *rescue = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Home), this);
    rescue->setContext(Qt::WindowShortcut);
    connect(rescue, &QShortcut::activated, this, &frmMain::rescueLostWindow);
}

frmMain::~frmMain()
{
    qApp->removeEventFilter(this);
    frmDataPath::setStatusBarRefresh({});
    setMainWindowUnloader({});
    if (g_instance == this)
        g_instance = nullptr;
    delete ui;
}

frmMain *frmMain::instance() { return g_instance; }

AdminListView *frmMain::ListViewMain() const { return ui->ListViewMain; }
AdminTreeView *frmMain::TreeViewMain() const { return ui->TreeViewMain; }
QToolBar *frmMain::ToolbarMain() const { return ui->ToolbarMain; }
QMenu *frmMain::mnuEdit() const { return ui->mnuEdit; }

QString frmMain::selectedNodeText() const
{
    const QTreeWidgetItem *n = ui->TreeViewMain->selectedNode();
    return n ? n->text(0) : QString();
}

QAction *frmMain::toolbarButton(int position) const
{
    if (position < 1 || position > 9)
        return nullptr;
    return toolbarButton(QString::fromLatin1(Buttons[position - 1].key));
}

QAction *frmMain::toolbarButton(const QString &key) const
{
    for (QAction *a : ui->ToolbarMain->actions())
        if (a->objectName() == key)
            return a;
    return nullptr;
}

QAction *frmMain::menuItem(const QString &name) const
{
    for (QAction *a : findChildren<QAction *>(name))
        if (a->objectName() == name)
            return a;
    return nullptr;
}

QAction *frmMain::mnuEditSub(int index) const
{
    for (QAction *a : ui->mnuEdit->actions())
        if (a->objectName() == QLatin1String("mnuEditSub") && a->property("index").toInt() == index)
            return a;
    return nullptr;
}

QColor frmMain::greyText() { return QApplication::palette().color(QPalette::Disabled, QPalette::WindowText); }

bool frmMain::isGrey(const QTreeWidgetItem *node) const
{
    const QBrush b = node->foreground(0);
    return b.style() != Qt::NoBrush && b.color() == greyText();
}

void frmMain::setNodeColour(QTreeWidgetItem *node, const QBrush &brush)
{
    if (node)
        node->setForeground(0, brush);
}

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

void frmMain::wireCommands()
{
    for (int i = 1; i <= 9; ++i) {
        QAction *a = toolbarButton(i);
        const QString key = a->objectName();
        connect(a, &QAction::triggered, this, [this, key] { guarded([&] { ToolbarMain_ButtonClick(key); }); });
    }
    connect(ui->mnuFile_Exit, &QAction::triggered, this, [this] { ExitCommand(); });
    for (int i = 0; i < 3; ++i) {
        connect(mnuEditSub(i), &QAction::triggered, this, [this, i] {
            guarded([&] {
                const QString kind = selectedNodeText();
                if (i == 0)
                    AddDispatcher(kind);
                else if (i == 1)
                    ModifyDispatcher(kind);
                else
                    DeleteDispatcher(kind);
            });
        });
    }
    // Opening Edit from the menu bar follows the enable table; the pop-up
    // keeps the states its own rule gave it.
    connect(ui->mnuEdit, &QMenu::aboutToShow, this, [this] {
        if (!m_popupShowing)
            guarded([&] { SubSetMenusAndToolBarButtons(); });
    });
    for (const MenuWindow &m : MenuWindows) {
        const QString item = QString::fromLatin1(m.item);
        const QString window = QString::fromLatin1(m.window);
        if (item == QLatin1String("mnuCheckForUpdates"))
            continue;
        connect(menuItem(item), &QAction::triggered, this, [this, window] { openWindow(window); });
    }
    connect(ui->mnuCheckForUpdates, &QAction::triggered, this, [this] { mnuCheckForUpdates_Click(); });
    connect(ui->mnuPreviewMessages, &QAction::triggered, this, [this] { openMessagesPreview(); });
    connect(ui->mnuResetActiveFlags, &QAction::triggered, this, [this] { guarded([&] { mnuResetActiveFlags_Click(); }); });
    connect(ui->mnuHelpContents, &QAction::triggered, this, [this] {
        Help::showFor(this);
        yieldEvents();
    });
    connect(ui->cmdAutoSync, &QPushButton::clicked, this, [this] { openWindow(QStringLiteral("frmAutoSync")); });

    AdminTreeView *tree = ui->TreeViewMain;
    connect(tree, &AdminTreeView::nodeClick, this, [this](QTreeWidgetItem *n) { guarded([&] { TreeViewMain_NodeClick(n); }); });
    connect(tree, &AdminTreeView::treeMouseUp, this,
            [this](Qt::MouseButton b) { guarded([&] { TreeViewMain_MouseUp(b); }); });
    connect(tree, &AdminTreeView::treeMouseMove, this, [this] { TreeViewMain_MouseMove(); });

    AdminListView *list = ui->ListViewMain;
    connect(list, &AdminListView::listClick, this, [this] { guarded([&] { ListViewMain_Click(); }); });
    connect(list, &AdminListView::listDoubleClick, this, [this] { guarded([&] { ListViewMain_DblClick(); }); });
    connect(list, &AdminListView::listKeyDown, this, [this](int key) { guarded([&] { ListViewMain_KeyDown(key); }); });
    connect(list, &AdminListView::listMouseMove, this, [this] { ListViewMain_MouseMove(); });
    connect(list, &AdminListView::listMouseUp, this,
            [this](Qt::MouseButton b) { guarded([&] { ListViewMain_MouseUp(b); }); });
}

void frmMain::openWindow(const QString &name)
{
    guarded([&] { DialogRegistry::showModal(name, this); });
    // Check marks follow the settings the windows keep.
    ui->mnuForceShutdown->setChecked(gbolForceShutDown);
    ui->mnuAutoCheckforUpdates->setChecked(gbolAutoCheckForUpdates);
}

void frmMain::refreshAvailability()
{
    for (const MenuWindow &m : MenuWindows)
        menuItem(QString::fromLatin1(m.item))->setEnabled(DialogRegistry::available(QString::fromLatin1(m.window)));
    for (int i = 5; i <= 9; ++i) {
        const QString window = QString::fromLatin1(Buttons[i - 1].window);
        toolbarButton(i)->setEnabled(window.isEmpty() || DialogRegistry::available(window));
    }
    ui->cmdAutoSync->setEnabled(DialogRegistry::available(QStringLiteral("frmAutoSync")));
    for (QAction *a : {toolbarButton(1), toolbarButton(2), toolbarButton(3), toolbarButton(4), mnuEditSub(0),
                       mnuEditSub(1), mnuEditSub(2)})
        setVerbEnabled(a, a->property("wanted").toBool());
}

QString frmMain::windowFor(const QAction *action) const
{
    using DialogRegistry::Verb;
    const QString kind = selectedNodeText();
    if (action == toolbarButton(1))
        return QStringLiteral("frmImport01");
    if (action == toolbarButton(2) || action == mnuEditSub(0))
        return DialogRegistry::dialogFor(Verb::Add, kind);
    if (action == toolbarButton(3) || action == mnuEditSub(1))
        return DialogRegistry::dialogFor(Verb::Modify, kind);
    return DialogRegistry::dialogFor(Verb::Delete, kind);
}

void frmMain::setVerbEnabled(QAction *action, bool wanted)
{
    action->setProperty("wanted", wanted);
    action->setEnabled(wanted && DialogRegistry::available(windowFor(action)));
}

// ------------------------------------------------------------------ start

void frmMain::buildTree()
{
    AdminTreeView *tree = ui->TreeViewMain;
    tree->clear();
    QTreeWidgetItem *root = tree->addNode(QStringLiteral("R"), Items, QStringLiteral("Root"), nullptr);
    tree->addNode(Columns, Columns, QStringLiteral("Columns"), root);
    tree->addNode(DueBackTypes, DueBackTypes, QStringLiteral("DueBack"), root);
    tree->addNode(Groups, Groups, QStringLiteral("Groups"), root);
    tree->addNode(Messages, Messages, QStringLiteral("Messages"), root);
    QTreeWidgetItem *servers = tree->addNode(Servers, Servers, QStringLiteral("Servers"), root);
    QTreeWidgetItem *autoSync = tree->addNode(AutoSync, AutoSync, QStringLiteral("AutoSync"), servers);
    tree->addNode(StatusTypes, StatusTypes, QStringLiteral("Status"), root);
    QTreeWidgetItem *users = tree->addNode(Users, Users, QStringLiteral("Users"), root);
    QTreeWidgetItem *import = tree->addNode(Import, Import, QStringLiteral("Import"), users);
    // The last node shown opens the root and Users; Servers stays closed.
    root->setExpanded(true);
    users->setExpanded(true);
    tree->scrollToItem(import);
    setNodeColour(autoSync, greyText());

    if (gstrLastSelectedNode == Items || gstrLastSelectedNode.isEmpty())
        gstrLastSelectedNode = Users;
    if (QTreeWidgetItem *n = tree->node(gstrLastSelectedNode))
        tree->selectNode(n);
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
        endProcess(ExitWithoutDatabase);
        return false;
    }
    // Every step below needs the database: a path that did not open is
    // mended in the Database Path window, or the run ends.
    do {
        if (!subRequireDatabase())
            return false;
        subTestStatusCounterTable();
    } while (!gdbMain.isOpen());
    subUpdateDatabaseStructure();
    subCheckDBVersionForConversion();
    if (gbolEnding)
        return false;
    subOpenDatabase();
    subCloseDatabase();
    if (!subRequireDatabase())
        return false;
    subRefreshUserCount();
    showUserCount();
    subReadTransactionLogFlag();
    repaint();
    bool settingsRead = false;
    guarded([&] {
        subReadAdminSettings();
        settingsRead = true;
    });
    m_settingsRead = settingsRead;
    if (gbolEnding)
        return false;
    gintCountryCode = localeCountryCode();

    gstrCommandLine = gstrCommandLine.trimmed();
    if (!gstrCommandLine.isEmpty()) {
        subOneShotRepair(gstrCommandLine);
        unloadMainWindow();
        return false;
    }

    buildTree();
    show();
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->inherits("frmWelcome"))
            w->close();
    Hourglass::set(0);
    if (gbolForceShutDown) {
        ui->mnuForceShutdown->setChecked(true);
        Msg::box(QStringLiteral("REMINDER: On Admin Startup") + CRLF + CRLF +
                     QStringLiteral("Force Shut Down has been activated, and is still in effect.") + CRLF + CRLF +
                     QStringLiteral("To deactivate Force Shut Down,") + CRLF +
                     QStringLiteral("Use menu item Tools | Force Shut Down."),
                 Msg::Buttons::OK, Msg::Icon::Information);
    }
    if (gbolAutoCheckForUpdates)
        mnuCheckForUpdates_Click();
    if (gbolEnding)
        return false;
    gRefreshListView(selectedNodeText());
    SubSetMenusAndToolBarButtons();
    m_loaded = true;
    // Shown and in front: the window is active for the first time.
    Form_Activate();
    return !gbolEnding;
}

void frmMain::Form_Activate()
{
    if (!gbolIniFound) {
        endProcess(ExitWithoutDatabase);
        return;
    }
    if (!m_loaded)
        return;
    AdminTreeView *tree = ui->TreeViewMain;
    if (!tree->selectedNode())
        tree->selectNode(tree->node(Users));
    gRefreshListView(selectedNodeText());
    subRefreshUserCount();
    showUserCount();
    QFont listFont = ui->ListViewMain->font();
    listFont.setBold(gintAdminFontBold != 0);
    listFont.setPointSize(gintAdminFontSize);
    ui->ListViewMain->setFont(listFont);
    QFont treeFont = tree->font();
    treeFont.setPointSize(gintAdminFontSize);
    tree->setFont(treeFont);
    ui->ListViewMain->setVisible(true);
}

void frmMain::mnuCheckForUpdates_Click() { guarded([] { DialogRegistry::run(QStringLiteral("CheckForUpdates")); }); }

// --------------------------------------------------------------- settings

void frmMain::subReadAdminSettings()
{
    subOpenDatabase();
    Recordset rs = gdbMain.openTable(QStringLiteral("AdminSettingsTable"));
    if (rs.eof()) {
        gdbMain.addRow(QStringLiteral("AdminSettingsTable"),
                       {{QStringLiteral("AdminFontBoldDisplay"), 0}, {QStringLiteral("AdminFontSizeDisplay"), 8}});
        rs = gdbMain.openTable(QStringLiteral("AdminSettingsTable"));
        if (rs.eof())
            throw StoreError(3021, QStringLiteral("No current record."));
    }
    if (windowState() == Qt::WindowNoState) {
        // In twips: where the window's frame stands and how large its inside
        // is. Both are known before the window is shown, so a restart puts
        // it back exactly, whatever frame the desktop draws around it.
        const QVariant top = rs.value(QStringLiteral("ScreenTop"));
        const QVariant left = rs.value(QStringLiteral("ScreenLeft"));
        const QVariant height = rs.value(QStringLiteral("ScreenHeight"));
        const QVariant width = rs.value(QStringLiteral("ScreenWidth"));
        QPoint at = pos();
        QSize size = this->size();
        if (!top.isNull())
            at.setY(Twips::toPixelsY(top.toInt()));
        if (!left.isNull())
            at.setX(Twips::toPixelsX(left.toInt()));
        if (!height.isNull())
            size.setHeight(Twips::toPixelsY(height.toInt()));
        if (!width.isNull())
            size.setWidth(Twips::toPixelsX(width.toInt()));
        move(at);
        resize(size);
    }
    // From here a value that cannot be read is passed over.
    auto read = [&](const char *field, const std::function<void(const QVariant &)> &take) {
        try {
            const QVariant v = rs.value(QString::fromLatin1(field));
            if (!v.isNull())
                take(v);
        } catch (const StoreError &) {
        }
    };
    read("AutoCheckForUpdates", [&](const QVariant &v) {
        gbolAutoCheckForUpdates = isTrue(v);
        ui->mnuAutoCheckforUpdates->setChecked(gbolAutoCheckForUpdates);
    });
    read("LastSelectedNode", [](const QVariant &v) { gstrLastSelectedNode = v.toString(); });
    read("AdminFontBoldDisplay", [](const QVariant &v) { gintAdminFontBold = v.toInt(); });
    read("AdminFontSizeDisplay", [](const QVariant &v) { gintAdminFontSize = v.toInt(); });
    gintAdminFontSize = boundedAdminFontSize(gintAdminFontSize);
    rs.close();
}

void frmMain::subSaveAdminSettings()
{
    const QString label = QStringLiteral("frmMain - subSaveAdminSettings event.");
    try {
        subOpenDatabase();
        Recordset rs = gdbMain.openTable(QStringLiteral("AdminSettingsTable"));
        if (rs.eof())
            throw StoreError(3021, QStringLiteral("No current record."));
        QVariantMap changes;
        // The fields are 16-bit: a value beyond them is not written.
        auto put = [&](const char *field, int value) {
            if (value >= -32768 && value <= 32767)
                changes.insert(QString::fromLatin1(field), value);
        };
        if (windowState() == Qt::WindowNoState) {
            put("ScreenTop", Twips::fromPixelsY(pos().y()));
            put("ScreenLeft", Twips::fromPixelsX(pos().x()));
            put("ScreenHeight", Twips::fromPixelsY(height()));
            put("ScreenWidth", Twips::fromPixelsX(width()));
        }
        put("AutoCheckForUpdates", gbolAutoCheckForUpdates ? 1 : 0);
        if (const QTreeWidgetItem *n = ui->TreeViewMain->selectedNode())
            changes.insert(QStringLiteral("LastSelectedNode"), n->text(0));
        gintAdminFontSize = boundedAdminFontSize(gintAdminFontSize);
        put("AdminFontBoldDisplay", gintAdminFontBold);
        put("AdminFontSizeDisplay", gintAdminFontSize);
        rs.edit(changes);
        rs.close();
    } catch (const StoreError &e) {
        Msg::box(QStringLiteral("Error (") + QString::number(e.number()) + QStringLiteral(" ) in ") + label + CR +
                     e.text() + CR + CR + QStringLiteral("Unable to save Admin settings at this time. Press OK to exit."),
                 Msg::Buttons::OK, Msg::Icon::None);
    }
}

// ------------------------------------------------------------------- list

void frmMain::refreshListView(const QString &kind)
{
    AdminListView *lv = ui->ListViewMain;
    AdminListModel *m = lv->list();
    QString selection;
    try {
        Hourglass::set(11);
        m->clearRows();
        setVerbEnabled(toolbarButton(1), false);
        m->setSorted(true);
        const int W = lv->widthTwips();
        auto layout = [&](const QStringList &headers, const QString &panel) {
            m->clearRows();
            m->clearHeaders();
            for (const QString &h : headers)
                m->addHeader(h);
            setHint(panel);
        };

        if (kind == Messages) {
            setVerbEnabled(toolbarButton(2), false);
            layout({QStringLiteral("MessageID"), QStringLiteral("Recipient"), QStringLiteral("Originally Sent"),
                    QStringLiteral("Sent From"), QStringLiteral("Message From"), QStringLiteral("Category"),
                    QStringLiteral("Last Used"), QStringLiteral("Subject"), QStringLiteral("Body")},
                   QStringLiteral(" Messages"));
            selection = LastSelectedMessage;
            gstrSql = QStringLiteral("SELECT * FROM MessagesTable ORDER BY MessageID ASC");
            Recordset rs = gdbMain.query(gstrSql);
            m->setSorted(false);  // the one list in the query's order
            if (rs.eof() || !rs.isNull(QStringLiteral("MessageID"))) {
                for (; !rs.eof(); rs.moveNext()) {
                    // A field that cannot be read leaves its cell empty.
                    auto field = [&](const char *name, const std::function<QString(const QVariant &)> &show) {
                        try {
                            return show(rs.value(QString::fromLatin1(name)));
                        } catch (const StoreError &) {
                            return QString();
                        }
                    };
                    auto plain = [](const QVariant &v) { return v.toString(); };
                    const int row = m->addRow(field("MessageID", plain), QStringLiteral("Messages"));
                    m->setSubItem(row, 1, field("SentToName", plain));
                    m->setSubItem(row, 2, field("SentDateTimeNum", generalDate));
                    m->setSubItem(row, 3, field("SentFromName", plain));
                    m->setSubItem(row, 4, field("MessageFrom", plain));
                    m->setSubItem(row, 5, field("Category", plain));
                    m->setSubItem(row, 6, field("LastUsedDateTimeNum", generalDate));
                    m->setSubItem(row, 7, field("MessageSubject", plain));
                    m->setSubItem(row, 8, field("MessageBody", [](const QVariant &v) {
                                      QString body = v.toString();
                                      body.replace(CRLF, QStringLiteral(" "));
                                      body = trimBlanks(body);
                                      return body.size() > 30 ? body.left(30) : body;
                                  }));
                }
            }
            rs.close();
            m->commit();
        } else if (kind == Users) {
            setVerbEnabled(toolbarButton(1), true);
            layout({QStringLiteral(" User Names"), QStringLiteral(" User ID")}, QStringLiteral(" Users"));
            lv->setHeaderWidth(0, W / 2);
            lv->setHeaderWidth(1, W / 2);
            gstrSql = QStringLiteral("SELECT") +
                      QStringLiteral(" EmployeeTable.UID,  EmployeeTable.Name, EmployeeTable.ActiveFlag FROM EmployeeTable ORDER BY EmployeeTable.Name");
            Recordset rs = gdbMain.query(gstrSql);
            const QString warning = QStringLiteral("Warning");
            const QString user = QStringLiteral("Users");
            for (; !rs.eof(); rs.moveNext()) {
                const int row = m->addRow(rs.value(1).toString(), rs.value(2).toString() == QLatin1String("Yes") ? warning : user);
                m->setSubItem(row, 1, rs.value(0).toString());
            }
            rs.close();
            m->commit();
            selection = LastSelectedUser;
        } else if (kind == Groups) {
            layout({QStringLiteral(" Groups")}, QStringLiteral(" Group Names"));
            lv->setHeaderWidth(0, W - 60);
            selection = LastSelectedGroup;
            gstrSql = QStringLiteral("SELECT * FROM GroupTable ORDER BY GroupName");
            // The one branch that opens the database afresh, up to three times.
            Recordset rs;
            for (int attempt = 0;;) {
                try {
                    subOpenDatabase();
                    rs = gdbMain.query(gstrSql);
                    break;
                } catch (const StoreError &) {
                    if (++attempt == 3 || gbolEnding)
                        throw;
                    waitWithEvents(1000);
                }
            }
            for (; !rs.eof(); rs.moveNext())
                m->addRow(rs.text(QStringLiteral("GroupName")), QStringLiteral("Groups"));
            rs.close();
            m->commit();
        } else if (kind == StatusTypes) {
            layout({QStringLiteral(" Status Types")}, QStringLiteral(" Status Types"));
            m->setShowsChecks(true);
            lv->setHeaderWidth(0, W - 60);
            selection = LastSelectedStatus;
            gstrSql = QStringLiteral("SELECT * FROM StatusTypesTable ORDER BY Status");
            Recordset rs = gdbMain.query(gstrSql);
            static const QStringList colours = {QString(), QStringLiteral("1Red"), QStringLiteral("2Yellow"),
                                                QStringLiteral("3Green"), QStringLiteral("4Blue"),
                                                QStringLiteral("5Cyan"), QStringLiteral("6Magenta")};
            for (; !rs.eof(); rs.moveNext()) {
                const QVariant code = rs.value(QStringLiteral("StatusCode"));
                const int c = code.isNull() ? 0 : code.toInt();
                const int row = m->addRow(rs.text(QStringLiteral("Status")), c >= 1 && c <= 6 ? colours[c] : QString());
                if (isTrue(rs.value(QStringLiteral("OnToolbar"))))
                    m->setChecked(row, true);
            }
            rs.close();
            m->commit();
        } else if (kind == DueBackTypes) {
            layout({QStringLiteral(" DueBack Types")}, QStringLiteral(" DueBack Types"));
            lv->setHeaderWidth(0, W - 300);
            selection = LastSelectedDueBack;
            gstrSql = QStringLiteral("SELECT * FROM DueBackTable ORDER BY DueBack");
            Recordset rs = gdbMain.query(gstrSql);
            if (rs.eof() || !rs.isNull(QStringLiteral("DueBack"))) {
                for (; !rs.eof(); rs.moveNext())
                    m->addRow(rs.text(QStringLiteral("DueBack")), QStringLiteral("DueBack"));
            }
            rs.close();
            m->commit();
        } else if (kind == Servers || kind == AutoSync) {
            layout({QStringLiteral("UNC Path"), QStringLiteral("Description")}, QStringLiteral(" Remote Servers"));
            lv->setHeaderWidth(0, (W - 70) / 2);
            lv->setHeaderWidth(1, (W - 70) / 2);
            selection = LastSelectedServer;
            gstrSql = QStringLiteral("SELECT * FROM ServersTable ORDER BY UNCPath");
            Recordset rs = gdbMain.query(gstrSql);
            for (; !rs.eof(); rs.moveNext()) {
                const QString path = rs.text(QStringLiteral("UNCPath"));
                if (trimBlanks(path).isEmpty())
                    continue;
                const int row = m->addRow(path, QStringLiteral("Servers"));
                const QVariant description = rs.value(QStringLiteral("Description"));
                if (!description.isNull())
                    m->setSubItem(row, 1, description.toString());
            }
            rs.close();
            m->commit();
            AdminTreeView *tree = ui->TreeViewMain;
            QTreeWidgetItem *autoSync = tree->node(AutoSync);
            if (const QTreeWidgetItem *selected = tree->selectedNode())
                setNodeColour(autoSync, selected->foreground(0));
            if (m->count() == 0)
                setNodeColour(autoSync, greyText());
        } else if (kind == Columns) {
            layout({QStringLiteral(" Added Columns"), QStringLiteral(" Read Only")}, QStringLiteral(" Added Columns"));
            lv->setHeaderWidth(1, W - 60 - lv->headerWidth(0));
            gstrSql = QStringLiteral("SELECT * FROM EmployeeTable LIMIT 1");
            selection = LastSelectedColumn;
            // A fresh connection: the old one's field list would not show a
            // column that was just added. It takes the old one's place only
            // once it is open, so a file that cannot be opened now leaves the
            // handle as it was for every other list.
            for (int attempt = 0;;) {
                try {
                    Database fresh = Database::open(gstrDataPath + QStringLiteral("tavello.mdb"));
                    gdbMain = std::move(fresh);
                    break;
                } catch (const StoreError &) {
                    if (++attempt == 3 || gbolEnding)
                        throw;
                    waitWithEvents(1000);
                }
            }
            // From here a failure only leaves out what it touched.
            try {
                Recordset rs = gdbMain.query(gstrSql);
                for (const QString &name : rs.fieldNames()) {
                    if (!name.startsWith(QLatin1String("New_")) || name.contains(QLatin1String("ReadOnly"), Qt::CaseInsensitive))
                        continue;
                    const int row = m->addRow(name.mid(4), QStringLiteral("Columns"));
                    try {
                        if (isTrue(rs.value(name + QStringLiteral("ReadOnly"))))
                            m->setSubItem(row, 1, QStringLiteral("Yes"));
                    } catch (const StoreError &) {
                    }
                }
                rs.close();
            } catch (const StoreError &) {
            }
            m->commit();
        }

        if (m->count() > 0 && selection.isEmpty())
            selection = m->text(0);
        Hourglass::set(0);
        lv->setSelectedItem(0);
        lv->clearSelection();
        int last = -1;
        for (int i = 0; i < m->count(); ++i)
            if (m->text(i) == selection)
                last = i;
        if (last >= 0)
            lv->setSelected(last, true);
    } catch (const StoreError &e) {
        m->commit();  // what was read before the failure stands
        reportRefreshFailure(e);
    }
}

void frmMain::reportRefreshFailure(const StoreError &e)
{
    if (gbolEnding)
        return;  // the run ended on the way (a foreign file): nothing is left to tell
    // The pointer stays the hourglass; the next caller gives it back.
    if (e.number() == err::RowDeleted) {
        Msg::box(QStringLiteral("The ") + gstrAppTitle +
                     QStringLiteral(" database appears to be damaged and must be repaired/compacted immediately."),
                 Msg::Buttons::OK, Msg::Icon::None, gstrAppTitle);
        if (QDialog *repair = DialogRegistry::create(QStringLiteral("frmRepair"), this)) {
            repair->setAttribute(Qt::WA_DeleteOnClose);
            repair->setWindowModality(Qt::NonModal);  // beside the console, not over it
            repair->show();
        }
        return;
    }
    Msg::box(QStringLiteral("error: ") + QString::number(e.number()) + QStringLiteral(" - ") + e.text(),
             Msg::Buttons::OK, Msg::Icon::Critical, QStringLiteral("Admin1 - gRefreshListView"));
}

void frmMain::columnRule()
{
    const QString node = selectedNodeText();
    if (node.isEmpty() || node == Messages)
        return;
    AdminListView *lv = ui->ListViewMain;
    const int headers = lv->list()->headerCount();
    if (headers == 0)
        return;
    int sum = 0;
    for (int i = 0; i < headers - 1; ++i)
        sum += lv->headerWidth(i);
    const int W = lv->widthTwips();
    if (node == Users || node == Servers) {
        for (int i = 0; i < std::min(headers, 2); ++i)
            lv->setHeaderWidth(i, W / 2);
        return;
    }
    lv->setHeaderWidth(headers - 1, W - sum - 60);
}

// ------------------------------------------------------------------- tree

void frmMain::TreeViewMain_NodeClick(QTreeWidgetItem *node)
{
    if (!node)
        return;
    const QString T = node->text(0);
    if (T != Import && T != AutoSync) {
        if (m_toolbarTag != QLatin1String("Refresh") && T == m_lastNodeText)
            return;
        m_lastNodeText = T;
        m_toolbarTag = QStringLiteral("Refresh");
    }
    AdminTreeView *tree = ui->TreeViewMain;
    AdminListView *lv = ui->ListViewMain;
    lv->list()->clearRows();
    QTreeWidgetItem *root = tree->topLevelItem(0);
    if (root && T == root->text(0)) {
        lv->list()->clearHeaders();
        lv->list()->addHeader(QStringLiteral("Please select Node from TreeView on left"));
        lv->setHeaderWidth(0, lv->widthTwips() - 60);
        SubSetMenusAndToolBarButtons();
        return;
    }
    QTreeWidgetItem *parent = node->parent();
    if (parent == root)
        gRefreshListView(T);
    else if (parent)
        gRefreshListView(parent->text(0));
    lv->setFocus();
    const int rows = lv->list()->count();
    if (T == Servers) {
        QTreeWidgetItem *autoSync = tree->node(AutoSync);
        setNodeColour(autoSync, node->foreground(0));
        if (rows == 0)
            setNodeColour(autoSync, greyText());
    }
    if (T == AutoSync) {
        if (rows == 0)
            setNodeColour(node, greyText());
        else if (parent)
            setNodeColour(node, parent->foreground(0));
    }
    if (T != AutoSync) {
        Hourglass::set(0);
        SubSetMenusAndToolBarButtons();
        return;
    }
    // "Auto Sync" acts and hands the selection back to its parent.
    if (isGrey(node)) {
        tree->selectNode(parent);
        return;
    }
    if (rows == 0) {
        setNodeColour(node, greyText());
        tree->selectNode(parent);
        return;
    }
    tree->selectNode(parent);
    lv->setFocus();
    const QBrush clicked = node->foreground(0);
    if (!DialogRegistry::showModal(QStringLiteral("frmAutoSync"), this))
        return;
    tree->selectNode(parent);
    lv->setFocus();
    setNodeColour(node, clicked);
    if (lv->list()->count() == 0)
        setNodeColour(node, greyText());
}

void frmMain::TreeViewMain_MouseUp(Qt::MouseButton button)
{
    const QString node = selectedNodeText();
    if (node.isEmpty() || node == Items)
        return;
    AdminTreeView *tree = ui->TreeViewMain;
    if (node == Import) {
        tree->selectNode(tree->node(Users));
        yieldEvents();
        ImportCommand();
        tree->selectNode(tree->node(Users));
        SubSetMenusAndToolBarButtons();
        return;
    }
    setPreviewEntry();
    if (button == Qt::RightButton)
        showEditPopup();
}

void frmMain::TreeViewMain_MouseMove() { setHint(QStringLiteral("Admin Items")); }

// ---------------------------------------------------------------- routing

void frmMain::SubSetMenusAndToolBarButtons()
{
    QAction *add = toolbarButton(2), *modify = toolbarButton(3), *remove = toolbarButton(4);
    for (QAction *a : {add, modify, remove, mnuEditSub(0), mnuEditSub(1), mnuEditSub(2)})
        setVerbEnabled(a, false);
    setPreviewEntry();
    AdminListView *lv = ui->ListViewMain;
    const int n = lv->selectedCount();
    const QString kind = selectedNodeText();
    static const QStringList kinds = {Columns, DueBackTypes, Groups, Messages, Servers, StatusTypes, Users};
    if (!kinds.contains(kind))
        return;
    const QString text = lv->selectedItemText();
    if (n != 0)
        selectionMemory(kind) = text;
    bool canAdd = kind != Messages;
    bool canChange = false;
    bool canDelete = false;
    if (n != 0) {
        if (kind == Messages)
            canDelete = true;
        else if (kind == Groups && text == QLatin1String("Everyone"))
            ;
        else if (kind == StatusTypes && isProtectedStatus(text))
            ;
        else
            canChange = canDelete = true;
    }
    setVerbEnabled(add, canAdd);
    setVerbEnabled(mnuEditSub(0), canAdd);
    setVerbEnabled(modify, canChange);
    setVerbEnabled(mnuEditSub(1), canChange);
    setVerbEnabled(remove, canDelete);
    setVerbEnabled(mnuEditSub(2), canDelete);
}

void frmMain::AddDispatcher(const QString &kind)
{
    for (int i = 2; i <= 4; ++i)
        setVerbEnabled(toolbarButton(i), false);
    DialogRegistry::showModal(DialogRegistry::dialogFor(DialogRegistry::Verb::Add, kind), this);
    gRefreshListView(selectedNodeText());
}

void frmMain::ModifyDispatcher(const QString &kind)
{
    struct Branch {
        QString kind;
        QString *variable;
        QString message;
        QString title;
    };
    const Branch branches[] = {
        {Users, &SelectedItemName, QStringLiteral("Please select a User to Modify."), QStringLiteral("No User Selected")},
        {Groups, &SelectedGroupName, QStringLiteral("Please select a Group to Modify."),
         QStringLiteral("No Group Selected")},
        {StatusTypes, &SelectedStatusName, QStringLiteral("Please select a Status Type to Modify."),
         QStringLiteral("No Status Type Selected")},
        {DueBackTypes, &SelectedDueBackName, QStringLiteral("Please select a DueBack Types to modify."),
         QStringLiteral("No DueBack Type selected")},
        {Servers, &SelectedServerPath, QStringLiteral("Please select a Server to Modify."),
         QStringLiteral("No Message Type Selected")},
        {Columns, &SelectedColumnName, QStringLiteral("Please select a Column Name to modify."),
         QStringLiteral("No Column Name selected")},
    };
    AdminListView *lv = ui->ListViewMain;
    for (const Branch &b : branches) {
        if (b.kind != kind)
            continue;
        const int row = lv->selectedItem();
        const QString text = lv->list()->text(row);
        *b.variable = text;
        if (kind == Servers)
            SelectedServerDescription = lv->list()->subItem(row, 1);
        if (text.isEmpty()) {
            Msg::box(b.message, Msg::Buttons::OK, Msg::Icon::Exclamation, b.title);
        } else if (kind == Groups && text.toUpper() == QLatin1String("EVERYONE")) {
            Msg::box(QStringLiteral("Sorry, the 'Everyone' Group cannot be modified."), Msg::Buttons::OK,
                     Msg::Icon::Exclamation, QStringLiteral("Protected Group Name"));
        } else if (kind == StatusTypes && isProtectedStatus(text)) {
            Msg::box(QStringLiteral("Sorry, the 'In', 'Out' and 'Busy' Status Types cannot be modified."),
                     Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Protected Status Types"));
        } else {
            DialogRegistry::showModal(DialogRegistry::dialogFor(DialogRegistry::Verb::Modify, kind), this);
        }
        break;
    }
    gRefreshListView(selectedNodeText());
}

void frmMain::DeleteDispatcher(const QString &kind)
{
    // The list is rebuilt when the window is active again.
    DialogRegistry::showModal(DialogRegistry::dialogFor(DialogRegistry::Verb::Delete, kind), this);
}

void frmMain::ImportCommand()
{
    // Nothing to choose a file for until the import window exists.
    if (!DialogRegistry::available(QStringLiteral("frmImport01")))
        return;
    const QString chosen = FileDialogs::openFile(this, QStringLiteral("Select File to Import"),
                                                 QStringLiteral("Import (*.txt;*.csv)|*.txt;*.csv"),
                                                 localFolder(gstrDataPath));
    gstrMsg = QStringLiteral("IMPORTANT: TAVELLO will only import users from a .TXT or .CSV file.");
    if (chosen.isEmpty())
        return;
    ImportFilePath = QFileInfo(chosen).absoluteFilePath();
    DialogRegistry::showModal(QStringLiteral("frmImport01"), this);
}

void frmMain::ToolbarMain_ButtonClick(const QString &key)
{
    const QString kind = selectedNodeText();
    if (key == QLatin1String("Import")) {
        ImportCommand();
    } else if (key == QLatin1String("Add")) {
        Hourglass::set(11);
        yieldEvents();
        AddDispatcher(kind);
    } else if (key == QLatin1String("Modify")) {
        Hourglass::set(11);
        ModifyDispatcher(kind);
    } else if (key == QLatin1String("Delete")) {
        DeleteDispatcher(kind);
    } else if (key == QLatin1String("ImportErrors")) {
        DialogRegistry::showModal(QStringLiteral("frmImportErrors"), this);
    } else if (key == QLatin1String("Repair")) {
        DialogRegistry::showModal(QStringLiteral("frmRepair"), this);
    } else if (key == QLatin1String("Refresh")) {
        QTreeWidgetItem *node = ui->TreeViewMain->selectedNode();
        if (!node || node->text(0) == Items)
            return;
        m_toolbarTag = QStringLiteral("Refresh");
        TreeViewMain_NodeClick(node);
    } else if (key == QLatin1String("About")) {
        DialogRegistry::showModal(QStringLiteral("about"), this);
    } else if (key == QLatin1String("Help")) {
        Help::showFor(this);
    } else if (key == QLatin1String("ExitAdmin")) {
        ExitCommand();
        return;
    }
    Hourglass::set(0);
    yieldEvents();
    SubSetMenusAndToolBarButtons();
}

void frmMain::mnuResetActiveFlags_Click()
{
    subResetActiveFlags(gdbMain);
    gRefreshListView(selectedNodeText());
}

void frmMain::ExitCommand() { close(); }

// ------------------------------------------------------------ list events

void frmMain::ListViewMain_Click()
{
    if (!ui->TreeViewMain->selectedNode() || ui->ListViewMain->list()->count() == 0)
        return;
    SubSetMenusAndToolBarButtons();
    Hourglass::set(0);
}

void frmMain::ListViewMain_DblClick()
{
    if (ui->ListViewMain->selectedCount() == 0)
        return;
    Hourglass::set(11);
    if (selectedNodeText() == Messages)
        openMessagesPreview();
    else
        ModifyDispatcher(selectedNodeText());
    Hourglass::set(0);
}

void frmMain::openMessagesPreview()
{
    // The recipient of the chosen message; the preview reads the row itself.
    guarded([&] { DialogRegistry::showModal(QStringLiteral("frmMsgsPreview"), this); });
    gRefreshListView(selectedNodeText());
}

void frmMain::setPreviewEntry()
{
    const bool messages = selectedNodeText() == Messages;
    ui->mnuEditSep->setVisible(messages);
    ui->mnuPreviewMessages->setVisible(messages);
    ui->mnuPreviewMessages->setEnabled(messages && ui->ListViewMain->selectedCount() > 0 &&
                                       DialogRegistry::available(QStringLiteral("frmMsgsPreview")));
}

void frmMain::ListViewMain_KeyDown(int key)
{
    // The buttons' state is the only guard of the keys.
    if (key == Qt::Key_Delete && toolbarButton(4)->isEnabled())
        DeleteDispatcher(selectedNodeText());
    else if (key == Qt::Key_Insert && toolbarButton(2)->isEnabled())
        AddDispatcher(selectedNodeText());
}

void frmMain::ListViewMain_MouseMove()
{
    if (selectedNodeText() == Users)
        setHint(QStringLiteral(" Warning Triangle indicates users Active Flag set. See Help for more info"));
    else
        setHint(QStringLiteral(" TAVELLO Listview"));
}

void frmMain::ListViewMain_MouseUp(Qt::MouseButton button)
{
    AdminListView *lv = ui->ListViewMain;
    const int n = lv->selectedCount();
    if (button == Qt::LeftButton && n == 0)
        return;
    const QString kind = selectedNodeText();
    if (kind.isEmpty() || kind == Items)
        return;
    const int rows = lv->list()->count();
    const QString text = lv->selectedItemText();
    QAction *add = mnuEditSub(0), *modify = mnuEditSub(1), *remove = mnuEditSub(2);
    if (kind == Messages) {
        setVerbEnabled(modify, false);
        if (rows == 0)
            return;
        setVerbEnabled(remove, true);
        setVerbEnabled(add, false);
    } else if (kind == Groups) {
        const bool everyone = text == QLatin1String("Everyone");
        setVerbEnabled(add, true);
        setVerbEnabled(modify, !everyone);
        setVerbEnabled(remove, !everyone);
    } else if (kind == Servers) {
        setVerbEnabled(add, true);
        setVerbEnabled(modify, n != 0);
        setVerbEnabled(remove, n != 0);
    } else if (kind == StatusTypes) {
        if (n == 0) {
            setVerbEnabled(add, true);
        } else {
            const bool locked = isProtectedStatus(text);
            setVerbEnabled(modify, !locked);
            setVerbEnabled(remove, !locked);
        }
    } else {
        setVerbEnabled(add, true);
        setVerbEnabled(modify, rows != 0);
        setVerbEnabled(remove, rows != 0);
    }
    setPreviewEntry();
    if (button == Qt::RightButton)
        showEditPopup();
}

void frmMain::showEditPopup()
{
    m_popupShowing = true;
    ui->mnuEdit->exec(QCursor::pos());
    m_popupShowing = false;
}

// ------------------------------------------------------------ status bar

void frmMain::showUserCount()
{
    // A blank, the count and a blank.
    m_countPanel->setText(QLatin1Char(' ') + QString::number(gintUserCount) + QLatin1Char(' '));
}

void frmMain::setHint(const QString &text) { m_hintPanel->setText(text); }
QString frmMain::hint() const { return m_hintPanel->text(); }
QString frmMain::userCountText() const { return m_countPanel->text(); }
QString frmMain::simpleText() const { return ui->StatusBarMain->currentMessage(); }

void frmMain::showToolbarHint(Qt::MouseButtons buttons)
{
    // The hint follows the buttons held, not the button under the pointer.
    int state = 0;
    if (buttons & Qt::LeftButton)
        state |= 1;
    if (buttons & Qt::RightButton)
        state |= 2;
    if (buttons & Qt::MiddleButton)
        state |= 4;
    if (buttons & Qt::XButton1)
        state |= 8;
    static const char *const hints[] = {
        " Add new User, Group, Status, Message Type or Server.",
        " Modify a User, Group, Status, Message Type or Server.",
        " Delete a User, Group, Status, Message Type or Server.",
        nullptr,
        " Display the errors (if any) that occurred during IMPORT.",
        " Repair/Compact database and remove deleted records.",
        " Display Help.",
        " Exit TAVELLO Administrator.",
        " Display the errors occurring on each users system.",
    };
    if (state <= 8 && hints[state])
        ui->StatusBarMain->showMessage(QString::fromLatin1(hints[state]));
}

// ----------------------------------------------------------------- window

void frmMain::SizeControls()
{
    if (isMinimized())
        return;
    const int gapX = Twips::toPixelsX(GapTwips);
    const int gapY = Twips::toPixelsY(GapTwips);
    QWidget *banner = ui->imgPlannerBanner;
    QWidget *tree = ui->TreeViewMain;
    QWidget *list = ui->ListViewMain;
    tree->setVisible(true);
    // The toolbar and the status bar lie outside the central area here, so
    // the list starts level with the banner.
    const int inner = centralWidget()->height();
    const int treeTop = banner->y() + banner->height() + gapY;
    tree->setGeometry(banner->x(), treeTop, banner->width(), std::max(0, inner - treeTop - gapY));
    const int listLeft = tree->x() + tree->width() + gapX;
    const int listTop = banner->y();
    list->setGeometry(listLeft, listTop, std::max(0, centralWidget()->width() - listLeft - gapX),
                      std::max(0, inner - listTop - gapY));
    columnRule();
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    SizeControls();
}

void frmMain::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        // A message box closing is no return from a window of the console,
        // but a window that closed behind boxes of its own is.
        const bool onlyBoxes = m_boxSinceActivation && !m_windowSinceActivation;
        m_boxSinceActivation = m_windowSinceActivation = false;
        if (!onlyBoxes)
            guarded([this] { Form_Activate(); });
    }
}

void frmMain::rescueLostWindow()
{
    setWindowState(Qt::WindowNoState);
    move(0, 0);
}

bool frmMain::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate && watched != this && watched->isWidgetType() &&
        static_cast<QWidget *>(watched)->isWindow()) {
        if (qobject_cast<QMessageBox *>(watched))
            m_boxSinceActivation = true;
        else
            m_windowSinceActivation = true;
        return false;
    }
    if (event->type() == QEvent::MouseMove) {
        if (watched == ui->imgPlannerBanner) {
            setHint(QStringLiteral("Tavello? Logo"));
        } else if (watched == ui->ToolbarMain ||
                   (watched->parent() == ui->ToolbarMain && watched->isWidgetType())) {
            showToolbarHint(static_cast<QMouseEvent *>(event)->buttons());
        }
    } else if (event->type() == QEvent::MouseButtonRelease && watched == ui->imgPlannerBanner &&
               static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        guarded([this] { DialogRegistry::showModal(QStringLiteral("about"), this); });
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::mouseMoveEvent(QMouseEvent *event)
{
    // Only the bare form clears the hints, not a control the move came from.
    const QWidget *under = childAt(event->position().toPoint());
    if (!under || under == centralWidget()) {
        setHint(QString());
        ui->StatusBarMain->clearMessage();
    }
    QMainWindow::mouseMoveEvent(event);
}

void frmMain::unloadSequence()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    // A window that never came up has no placement worth keeping.
    if (m_settingsRead)
        subSaveAdminSettings();
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
