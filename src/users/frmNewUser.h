#pragma once

#include "users/UserControls.h"

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmNewUser;
}

// "New User Defaults": edits the one row of NewUserDefaultsTable, the
// template every new user is made from. Users already on the board are
// not touched, so no counter is raised.
class frmNewUser : public QDialog {
    Q_OBJECT

public:
    explicit frmNewUser(QWidget *parent = nullptr);
    ~frmNewUser() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help, 3 Reset.
    void cmdButtons_Click(int index);

    void subLoadNUDdata();
    void subSaveNUDdata();
    // Factory values into the controls; nothing is written until OK.
    void subResetNUDdata();

private:
    std::unique_ptr<Ui::frmNewUser> ui;
    DialogSupport *m_support;
    OptionGroup m_minimizeSetting;
    OptionGroup m_sortKey;
    OptionGroup m_sortOrder;
    OptionGroup m_securityLevel;
    OptionGroup m_iconSize;
    OptionGroup m_toolBarText;
};
