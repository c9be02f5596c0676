#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmAddDueBack;
}

// "Add DueBack Type": a new ready phrase for when someone will be back. The
// same opening can add one after another.
class frmAddDueBack : public QDialog {
    Q_OBJECT

public:
    explicit frmAddDueBack(QWidget *parent = nullptr);
    ~frmAddDueBack() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmAddDueBack> ui;
    DialogSupport *m_support;
};
