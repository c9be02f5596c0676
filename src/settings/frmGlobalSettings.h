#pragma once

#include "users/UserControls.h"

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmGlobalSettings;
}

// "Global Settings": the rules of the one row of GlobalSettingsTable that
// every user program reads at its start (logo position and allowed features).
class frmGlobalSettings : public QDialog {
    Q_OBJECT

public:
    explicit frmGlobalSettings(QWidget *parent = nullptr);
    ~frmGlobalSettings() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Reset, 3 Help.
    void cmdButtons_Click(int index);

private:
    void load();
    void save();
    void chkAllowPresenceSensing_Click();

    std::unique_ptr<Ui::frmGlobalSettings> ui;
    DialogSupport *m_support;
    OptionGroup m_logoPosition;
};
