#pragma once

#include "users/UserControls.h"

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmAddStatus;
}

// "Add Status": a new status word with its colour and, if wanted, a button
// on the user program's toolbar. The same opening can add one after another.
class frmAddStatus : public QDialog {
    Q_OBJECT

public:
    explicit frmAddStatus(QWidget *parent = nullptr);
    ~frmAddStatus() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void txtAddStatus_Change();
    void okClicked();

    std::unique_ptr<Ui::frmAddStatus> ui;
    DialogSupport *m_support;
    OptionGroup m_colours;
};
