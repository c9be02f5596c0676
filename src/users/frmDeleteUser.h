#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmDeleteUser;
}

// Deletes one user from gdbMain in a transaction of its own: the
// EmployeeTable row (the store's cascades take settings, memberships and
// tracking along) and any membership rows left. A failure asks Retry, which
// runs the failed step again, or Cancel, which rolls back what this name had
// begun. True when the user is gone.
bool KillUser(const QString &name);

// "Delete Users or Items": the dialog is the confirmation. It lists the users
// selected in the main window's list, and OK deletes every one of them.
class frmDeleteUser : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteUser(QWidget *parent = nullptr);
    ~frmDeleteUser() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmDeleteUser> ui;
    DialogSupport *m_support;
};
