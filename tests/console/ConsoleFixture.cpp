#include "ConsoleFixture.h"

#include "console/AdminListView.h"
#include "console/AdminTreeView.h"
#include "console/DialogRegistry.h"
#include "console/frmMain.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "store/CreateDB.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace ConsoleTest {

Console::Console(const std::function<void(Database &)> &prepare)
{
    IniFile::writeKey(m_site.iniFile(), QStringLiteral("DataPath"), QStringLiteral("DataPath"), m_site.shareUnc());
    if (CreateDatabase(databaseFile()) != 0)
        qFatal("the test database could not be created");
    {
        Database db = Database::open(databaseFile());
        // The check for a newer release at start is switched on by the
        // tests about it.
        db.execute(QStringLiteral("UPDATE AdminSettingsTable SET AutoCheckForUpdates = 0"));
        if (prepare)
            prepare(db);
    }
    m_window = std::make_unique<frmMain>();
    if (!m_window->load())
        qWarning("the console did not start");
    if (!QTest::qWaitForWindowExposed(m_window.get()))
        qWarning("the console window was not shown");
}

Console::~Console()
{
    m_window.reset();
}

void Console::restart()
{
    m_window->close();
    m_window.reset();
    TestSupport::resetGlobals();
    Msg::clearTranscript();
    m_window = std::make_unique<frmMain>();
    if (!m_window->load())
        qWarning("the console did not start again");
    if (!QTest::qWaitForWindowExposed(m_window.get()))
        qWarning("the console window was not shown");
}

void Console::kill()
{
    m_window.reset();
    TestSupport::resetGlobals();
}

AdminListView *Console::list() const { return m_window->ListViewMain(); }
AdminListModel *Console::rows() const { return list()->list(); }
AdminTreeView *Console::tree() const { return m_window->TreeViewMain(); }
QString Console::databaseFile() const { return m_site.local(QStringLiteral("tavello.mdb")); }

Database Console::other() const { return Database::open(databaseFile()); }

void Console::clickNode(const QString &text, Qt::MouseButton button)
{
    QTreeWidgetItem *item = tree()->node(text == QLatin1String("Items") ? QStringLiteral("R") : text);
    if (!item)
        qFatal("no node %s", qPrintable(text));
    if (item->parent())
        item->parent()->setExpanded(true);
    tree()->scrollToItem(item);
    QTest::mouseClick(tree()->viewport(), button, {}, tree()->visualItemRect(item).center());
}

void Console::clickRow(int row, Qt::MouseButton button, Qt::KeyboardModifiers mods)
{
    const QModelIndex idx = rows()->index(row, 0);
    list()->scrollTo(idx);
    QTest::mouseClick(list()->viewport(), button, mods, list()->visualRect(idx).center());
}

void Console::clickBelowRows(Qt::MouseButton button)
{
    QWidget *vp = list()->viewport();
    QTest::mouseClick(vp, button, {}, QPoint(vp->width() / 2, vp->height() - 3));
}

void Console::doubleClickRow(int row)
{
    const QModelIndex idx = rows()->index(row, 0);
    list()->scrollTo(idx);
    const QPoint at = list()->visualRect(idx).center();
    // A double click arrives as press, release, double click, release.
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at);
}

void Console::keyInList(Qt::Key key)
{
    list()->setFocus();
    QTest::keyClick(list(), key);
}

void Console::keyInTree(Qt::Key key)
{
    tree()->setFocus();
    QTest::keyClick(tree(), key);
}

int Console::rowOf(const QString &text) const { return int(texts().indexOf(text)); }

QStringList Console::texts() const
{
    QStringList out;
    for (int i = 0; i < rows()->count(); ++i)
        out << rows()->text(i);
    return out;
}

QStringList Console::column(int n) const
{
    QStringList out;
    for (int i = 0; i < rows()->count(); ++i)
        out << rows()->subItem(i, n);
    return out;
}

QStringList Console::icons() const
{
    QStringList out;
    for (int i = 0; i < rows()->count(); ++i)
        out << rows()->data(rows()->index(i, 0), AdminListModel::IconKeyRole).toString();
    return out;
}

QStringList Console::headers() const
{
    QStringList out;
    for (int i = 0; i < rows()->columnCount(); ++i)
        out << rows()->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
    return out;
}

QList<int> Console::headerWidths() const
{
    QList<int> out;
    for (int i = 0; i < rows()->columnCount(); ++i)
        out << list()->headerWidth(i);
    return out;
}

QList<int> Console::selectedRows() const
{
    QList<int> out;
    for (int i = 0; i < rows()->count(); ++i)
        if (list()->isSelected(i))
            out << i;
    return out;
}

QList<bool> Console::toolbarVerbs() const
{
    return {m_window->toolbarButton(2)->isEnabled(), m_window->toolbarButton(3)->isEnabled(),
            m_window->toolbarButton(4)->isEnabled()};
}

QList<bool> Console::editEntries() const
{
    return {m_window->mnuEditSub(0)->isEnabled(), m_window->mnuEditSub(1)->isEnabled(),
            m_window->mnuEditSub(2)->isEnabled()};
}

WindowsPresent::WindowsPresent(const QStringList &names) : m_names(names)
{
    for (const QString &name : names) {
        DialogRegistry::add(name, [name](QWidget *parent) {
            auto *d = new QDialog(parent);
            d->setObjectName(name);
            return d;
        });
    }
    if (frmMain *w = frmMain::instance())
        w->refreshAvailability();
}

WindowsPresent::~WindowsPresent()
{
    for (const QString &name : m_names)
        DialogRegistry::remove(name);
    DialogRegistry::registerAvailableWindows();
    if (frmMain *w = frmMain::instance())
        w->refreshAvailability();
}

WindowsAbsent::WindowsAbsent(const QStringList &names)
{
    for (const QString &name : names)
        DialogRegistry::remove(name);
    if (frmMain *w = frmMain::instance())
        w->refreshAvailability();
}

WindowsAbsent::~WindowsAbsent()
{
    DialogRegistry::registerAvailableWindows();
    if (frmMain *w = frmMain::instance())
        w->refreshAvailability();
}

QStringList WindowsPresent::verbWindows()
{
    QStringList out;
    for (const char *kind : {"Users", "Groups", "Status Types", "DueBack Types", "Servers", "Columns", "Messages"})
        for (auto verb : {DialogRegistry::Verb::Add, DialogRegistry::Verb::Modify, DialogRegistry::Verb::Delete}) {
            const QString name = DialogRegistry::dialogFor(verb, QString::fromLatin1(kind));
            if (!name.isEmpty())
                out << name;
        }
    return out;
}

ShownWindows::ShownWindows()
{
    Modal::setHandler([this](QDialog *d) {
        names << d->objectName();
        d->reject();
    });
}

ShownWindows::~ShownWindows() { Modal::setHandler({}); }

Popup popupDuring(const std::function<void()> &action)
{
    Popup result;
    // The timer goes with this function, so a pop-up that never opened
    // leaves nothing behind.
    QTimer probe;
    probe.setSingleShot(true);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu) {
            probe.start(5);  // events ran before the pop-up opened
            return;
        }
        result.shown = true;
        for (QAction *a : menu->actions())
            if (a->objectName() == QLatin1String("mnuEditSub"))
                result.entries << a->isEnabled();
        menu->close();
    });
    probe.start(0);
    action();
    return result;
}

QStringList messageTexts()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.text;
    return out;
}

}  // namespace ConsoleTest
