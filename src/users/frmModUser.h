#pragma once

#include "users/UserControls.h"

#include <QDialog>
#include <QPixmap>
#include <QString>

#include <memory>

class DialogSupport;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace Ui {
class frmModUser;
}

// "Modify User or Item Details": everything the board holds on one user,
// on nine pages. It opens on the user named in SelectedItemName, reads the
// rows once, and writes them all at OK; Cancel writes nothing.
class frmModUser : public QDialog {
    Q_OBJECT

public:
    explicit frmModUser(QWidget *parent = nullptr);
    ~frmModUser() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help, 3 Reset.
    void cmdButtons_Click(int index);
    // The template's settings into the controls, unsaved.
    void subReset();

    // Picks a row of the added-column grid (rows from 0 below the heading).
    void msFlexGridChange_Pick(int row);
    // Scroll bars of the photo panel for the picture shown at its own size.
    void subSetPictureBoxScrollBars();
    // Folder whose pictures File1 lists (local form).
    QString photoFolder() const { return m_photoFolder; }
    const QPixmap &picture() const { return m_picture; }

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void Form_Load();
    void loadSettings();
    void fillGroupLists();
    void buildGrid(const QStringList &columns, const QVariantList &values);
    void preparePhotoPage();
    void moveGroup(QListWidget *from, QListWidgetItem *item, QListWidget *to);
    void commitCellEditor();
    bool validate();
    void okClicked();
    void refuse(const QString &text, const QString &title);
    void selectRefreshRate(const QVariant &rate, bool templateMapping);
    void selectSortKey(const QVariant &key, bool lenient);
    // Photo page
    void File1_Click();
    void cmdBrowse_Click();
    void cmdClearImage_Click();
    void showPicture(const QString &localPath);
    void applyPhotoSize();

    std::unique_ptr<Ui::frmModUser> ui;
    DialogSupport *m_support;
    QLineEdit *m_cellEditor;
    int m_editRow = -1;  // grid row the cell editor stands over
    OptionGroup m_sortKey;
    OptionGroup m_sortOrder;
    OptionGroup m_security;
    OptionGroup m_refreshRate;
    OptionGroup m_sysTray;
    OptionGroup m_iconSize;
    OptionGroup m_toolBarText;
    QString m_photoFolder;
    QPixmap m_picture;
};
