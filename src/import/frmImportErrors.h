#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmImportErrors;
}

// "View Import Error Log": what went wrong in imports, run after run, until
// Clear Log empties it.
class frmImportErrors : public QDialog {
    Q_OBJECT

public:
    explicit frmImportErrors(QWidget *parent = nullptr);
    ~frmImportErrors() override;

    // cmdButtons: 0 Exit, 1 Clear Log, 2 Help.
    void cmdButtons_Click(int index);
    // Fills the list from ImportErrorLog; runs whenever the window becomes active.
    void Form_Activate();
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void clearLog();

    std::unique_ptr<Ui::frmImportErrors> ui;
    DialogSupport *m_support;
};
