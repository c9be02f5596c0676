#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmDeleteGroup;
}

// "Delete Group": the dialog is the confirmation. It lists the groups
// selected in the main window's list, Everyone left out, and OK deletes
// every one of them.
class frmDeleteGroup : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteGroup(QWidget *parent = nullptr);
    ~frmDeleteGroup() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmDeleteGroup> ui;
    DialogSupport *m_support;
};
