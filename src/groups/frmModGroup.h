#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;
class TwoListEditor;

namespace Ui {
class frmModGroup;
}

// "Modify Group": renames the group chosen in the console (SelectedGroupName)
// and changes its members in the two-list editor.
class frmModGroup : public QDialog {
    Q_OBJECT

public:
    explicit frmModGroup(QWidget *parent = nullptr);
    ~frmModGroup() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }
    TwoListEditor *editor() const { return m_editor; }
    // The group's name in the store as far as this window knows: the one it
    // was opened on, or the one its last OK wrote.
    const QString &CurrentGroupName() const { return m_currentGroupName; }

private:
    void okClicked();

    std::unique_ptr<Ui::frmModGroup> ui;
    DialogSupport *m_support;
    TwoListEditor *m_editor;
    QString m_currentGroupName;
};
