#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmTransLog;
}

// "Transaction Log": the newest 500 rows of TransactionLogTable, the switch
// that tells the user programs whether to log, and clearing, printing and
// exporting the whole log.
class frmTransLog : public QDialog {
    Q_OBJECT

public:
    explicit frmTransLog(QWidget *parent = nullptr);
    ~frmTransLog() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Clear Log, 3 Print Log, 4 Export Log,
    // 5 Help, 6 Refresh.
    void cmdButtons_Click(int index);
    void reload();
    DialogSupport *support() const { return m_support; }

private:
    void saveSetting();
    void clearLog();
    void exportLog();

    std::unique_ptr<Ui::frmTransLog> ui;
    DialogSupport *m_support;
};
