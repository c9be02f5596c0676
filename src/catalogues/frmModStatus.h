#pragma once

#include "users/UserControls.h"

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmModStatus;
}

// "Modify Status Type": the type selected in the console (SelectedStatusName)
// with its colour, toolbar button and protection. A rename changes the
// catalogue row alone: users standing in the old word keep it.
class frmModStatus : public QDialog {
    Q_OBJECT

public:
    explicit frmModStatus(QWidget *parent = nullptr);
    ~frmModStatus() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void txtModifyStatus_Change();
    void okClicked();

    std::unique_ptr<Ui::frmModStatus> ui;
    DialogSupport *m_support;
    OptionGroup m_colours;
    QString m_current;
    int m_storedCode = 0;  // kept when no colour is chosen (a code beyond 1 to 6)
};
