#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;
class TwoListEditor;

namespace Ui {
class frmAddGroup;
}

// "Add Group": a new group with its first members, chosen in the two-list
// editor from the board's users.
class frmAddGroup : public QDialog {
    Q_OBJECT

public:
    explicit frmAddGroup(QWidget *parent = nullptr);
    ~frmAddGroup() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }
    TwoListEditor *editor() const { return m_editor; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void txtAddGroup_Change();
    void okClicked();
    void refuse(const QString &text);

    std::unique_ptr<Ui::frmAddGroup> ui;
    DialogSupport *m_support;
    TwoListEditor *m_editor;
};
