#pragma once

#include "users/UserControls.h"

#include <QDialog>

#include <cstdint>
#include <memory>
#include <optional>

class DialogSupport;

namespace Ui {
class frmSecurity;
}

// "System Security": GlobalSettingsTable.SystemSecurityLevel, 0 LOW,
// 1 MEDIUM, 2 HIGH. The user programs apply it together with each user's own
// level; OK raises SecurityCounter so that running ones notice.
class frmSecurity : public QDialog {
    Q_OBJECT

public:
    explicit frmSecurity(QWidget *parent = nullptr);
    ~frmSecurity() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void OptionSecurity_Click(int index);

    // What a level means for users of level 2, 1 and 0, as the window tells it.
    static QStringList levelMeaning(int level);

private:
    void showMeaning(int level);

    std::unique_ptr<Ui::frmSecurity> ui;
    DialogSupport *m_support;
    OptionGroup m_options;
    // The level chosen; none while no row or no value was read and nothing clicked.
    std::optional<std::int16_t> m_level;
};
