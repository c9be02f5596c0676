#pragma once

#include <QMainWindow>
#include <QString>
#include <QTimer>

class AdminListView;
class AdminTreeView;
class QAction;
class QLabel;
class QMenu;
class QToolBar;
class QTreeWidgetItem;
class StoreError;

namespace Ui {
class frmMain;
}

// Row hand-over to the Modify dialogs, written by the Modify dispatcher and
// read by the dialogs as they load.
inline QString SelectedItemName;
inline QString SelectedGroupName;
inline QString SelectedStatusName;
inline QString SelectedDueBackName;
inline QString SelectedServerPath;
inline QString SelectedServerDescription;
inline QString SelectedColumnName;
inline QString SelectedItemID;  // the ID of the user being modified
inline QString ImportFilePath;  // the file chosen for import

// Selection memory: the text of the row last selected in each kind, for the
// run of the program (never stored).
inline QString LastSelectedColumn;
inline QString LastSelectedDueBack;
inline QString LastSelectedGroup;
inline QString LastSelectedMessage;
inline QString LastSelectedServer;
inline QString LastSelectedStatus;
inline QString LastSelectedUser;

// Rebuilds headers and rows of ListViewMain for a kind (a tree node's text)
// straight from the database.
void gRefreshListView(const QString &kind);

// The console's main window: the tree of item kinds, the list of the selected
// kind's rows, toolbar, menus and status bar, with the start-up and shut-down
// order of the console. The text of the tree's selected node routes every
// command.
class frmMain : public QMainWindow {
    Q_OBJECT

public:
    explicit frmMain(QWidget *parent = nullptr);
    ~frmMain() override;

    static frmMain *instance();

    // The whole start, in its fixed order. Returns false when the run ends
    // during the start (no window is left to show).
    bool load();
    // What the window does each time it becomes active: rebuild the list for
    // the selected node, the user count, the fonts.
    void Form_Activate();

    // Layout of banner, tree and list for the window's size; then the
    // list's column rule.
    void SizeControls();
    void subReadAdminSettings();
    void subSaveAdminSettings();
    void mnuCheckForUpdates_Click();

    // The list
    void refreshListView(const QString &kind);
    AdminListView *ListViewMain() const;
    AdminTreeView *TreeViewMain() const;
    // What the list's rebuild does with a failure: 3167 asks for a repair,
    // anything else is told with its number.
    void reportRefreshFailure(const StoreError &e);
    // Text of the tree's selected node; empty when none.
    QString selectedNodeText() const;

    // Routing
    void TreeViewMain_NodeClick(QTreeWidgetItem *node);
    void SubSetMenusAndToolBarButtons();
    void AddDispatcher(const QString &kind);
    void ModifyDispatcher(const QString &kind);
    void DeleteDispatcher(const QString &kind);
    void ImportCommand();
    void ToolbarMain_ButtonClick(const QString &key);
    void mnuResetActiveFlags_Click();
    void ExitCommand();

    // Toolbar button by position (1 .. 9) or key; menu entries by name.
    QAction *toolbarButton(int position) const;
    QAction *toolbarButton(const QString &key) const;
    QAction *menuItem(const QString &name) const;
    QAction *mnuEditSub(int index) const;
    QMenu *mnuEdit() const;
    QToolBar *ToolbarMain() const;
    QString toolbarTag() const { return m_toolbarTag; }

    // Re-reads which windows exist and enables their entries accordingly.
    // Run after a window has been registered while the console runs.
    void refreshAvailability();

    // The system's grey-text colour: the "Auto Sync" node in it has no
    // servers to work on.
    static QColor greyText();
    bool isGrey(const QTreeWidgetItem *node) const;

    // Count panel of the status bar from gintUserCount.
    void showUserCount();
    // First panel: hint and per-kind texts.
    void setHint(const QString &text);
    QString hint() const;
    QString userCountText() const;
    // The status bar's simple text (toolbar hints).
    QString simpleText() const;

    QTimer TimerDatabase;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    void unloadSequence();
    void rescueLostWindow();
    void drawBanner();
    void buildTree();
    void wireCommands();
    void columnRule();
    void showEditPopup();
    // The Edit entry that opens the messages of the chosen message's
    // recipient: shown on the Messages node only.
    void setPreviewEntry();
    void openMessagesPreview();

    // Enable state of a verb (toolbar Import/Add/Modify/Delete, the Edit
    // entries): the rule's wish, ANDed with the existence of its window.
    void setVerbEnabled(QAction *action, bool wanted);
    QString windowFor(const QAction *action) const;

    // List events
    void ListViewMain_Click();
    void ListViewMain_DblClick();
    void ListViewMain_KeyDown(int key);
    void ListViewMain_MouseMove();
    void ListViewMain_MouseUp(Qt::MouseButton button);
    // Tree events
    void TreeViewMain_MouseUp(Qt::MouseButton button);
    void TreeViewMain_MouseMove();

    void showToolbarHint(Qt::MouseButtons buttons);
    void openWindow(const QString &name);
    void setNodeColour(QTreeWidgetItem *node, const QBrush &brush);

    Ui::frmMain *ui;
    QLabel *m_hintPanel;
    QLabel *m_countPanel;
    QString m_lastNodeText;
    QString m_toolbarTag;
    bool m_unloaded = false;
    bool m_settingsRead = false;
    bool m_loaded = false;
    bool m_popupShowing = false;
    // Other windows of the console activated since this one last was.
    bool m_boxSinceActivation = false;
    bool m_windowSinceActivation = false;
};
