#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;
class QLineEdit;

namespace Ui {
class frmAddUser;
}

// "Add User or Item": asks for a user ID and a full name and creates the
// board entry from the new-user template. The same opening can add one
// user after another.
class frmAddUser : public QDialog {
    Q_OBJECT

public:
    explicit frmAddUser(QWidget *parent = nullptr);
    ~frmAddUser() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void txtChange(QLineEdit *field);
    void okClicked();
    void refuse(QLineEdit *field, const QString &text, const QString &title);

    std::unique_ptr<Ui::frmAddUser> ui;
    DialogSupport *m_support;
};
