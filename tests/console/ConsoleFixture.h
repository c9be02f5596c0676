#pragma once

#include "support/TestSupport.h"

#include <QList>
#include <QPoint>
#include <QStringList>
#include <functional>
#include <memory>

class AdminListModel;
class AdminListView;
class AdminTreeView;
class Database;
class frmMain;
class QAction;
class QTreeWidgetItem;

namespace ConsoleTest {

// A site with a seeded database on its share and the console started on it.
class Console {
public:
    // `prepare` runs on the new database before the console starts.
    explicit Console(const std::function<void(Database &)> &prepare = {});
    ~Console();

    frmMain &w() { return *m_window; }
    // Closes the console the ordinary way (settings saved) and starts a new
    // one on the same site.
    void restart();
    // Ends the console without its unload, as a killed process would.
    void kill();
    AdminListView *list() const;
    AdminListModel *rows() const;
    AdminTreeView *tree() const;
    const TestSupport::Site &site() const { return m_site; }
    QString databaseFile() const;  // local path

    // A second connection, as another program would have.
    Database other() const;

    // Real mouse and key input.
    void clickNode(const QString &text, Qt::MouseButton button = Qt::LeftButton);
    void clickRow(int row, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers mods = {});
    void clickBelowRows(Qt::MouseButton button);
    void doubleClickRow(int row);
    void keyInList(Qt::Key key);
    void keyInTree(Qt::Key key);
    int rowOf(const QString &text) const;  // first row with that text, -1 when none

    QStringList texts() const;            // first column of the list, in order
    QStringList column(int n) const;      // sub-item n of each row
    QStringList icons() const;
    QStringList headers() const;
    QList<int> headerWidths() const;      // twips
    QList<int> selectedRows() const;

    // Toolbar Add, Modify, Delete and the Edit entries 0..2, as shown.
    QList<bool> toolbarVerbs() const;
    QList<bool> editEntries() const;

private:
    TestSupport::Site m_site;
    std::unique_ptr<frmMain> m_window;
};

// Windows that later parts of the console bring, present for a test: each is
// a plain dialog named like the window. At the end the registry holds the
// console's real windows again.
class WindowsPresent {
public:
    explicit WindowsPresent(const QStringList &names);
    ~WindowsPresent();
    static QStringList verbWindows();  // every Add, Modify and Delete window

private:
    QStringList m_names;
};

// Windows taken out of the registry for a test, as if not built yet. The
// windows the console really has come back at the end.
class WindowsAbsent {
public:
    explicit WindowsAbsent(const QStringList &names);
    ~WindowsAbsent();
};

// Records the windows shown modally (by object name) and closes each.
class ShownWindows {
public:
    ShownWindows();
    ~ShownWindows();
    QStringList names;
};

// The Edit pop-up, if one opens during `action`: whether it did and the
// enable state of its three entries.
struct Popup {
    bool shown = false;
    QList<bool> entries;
};
Popup popupDuring(const std::function<void()> &action);

QStringList messageTexts();

}  // namespace ConsoleTest
