#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmForceShutdown;
}

// "Force Shutdown": the flag in forceshutdown.ini beside the database that
// stops every user program and keeps it stopped while it says "True".
// gbolForceShutDown is the console's copy; the main window's menu mark and
// its reminders at start and exit follow it.
class frmForceShutdown : public QDialog {
    Q_OBJECT

public:
    explicit frmForceShutdown(QWidget *parent = nullptr);
    ~frmForceShutdown() override;

    void cmd_OK_Forced_Shutdown_Click();

private:
    std::unique_ptr<Ui::frmForceShutdown> ui;
    DialogSupport *m_support;
};
