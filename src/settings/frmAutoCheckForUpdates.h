#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmAutoCheckForUpdates;
}

// "Auto Check for Updates": whether the console looks for a newer release
// each time it starts (AdminSettingsTable.AutoCheckForUpdates), with the
// offer to look right away.
class frmAutoCheckForUpdates : public QDialog {
    Q_OBJECT

public:
    explicit frmAutoCheckForUpdates(QWidget *parent = nullptr);
    ~frmAutoCheckForUpdates() override;

    void cmd_OK_AutoCheckForUpdates_Click();

private:
    std::unique_ptr<Ui::frmAutoCheckForUpdates> ui;
    DialogSupport *m_support;
};
