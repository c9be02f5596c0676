#pragma once

#include "sites/SiteStore.h"

#include <QDialog>
#include <QSet>

#include <memory>

class DialogSupport;

namespace Ui {
class frmAutoSync;
}

// "Auto Synchronize Remote Databases": merges the server lists of the home
// database and of every site it can reach, and writes the union to each of
// them, each leaving out its own path. Rows are only ever added. One opening
// is one run.
class frmAutoSync : public QDialog {
    Q_OBJECT

public:
    explicit frmAutoSync(QWidget *parent = nullptr);
    ~frmAutoSync() override;

    void cmdBegin_Click();
    void cmdExit_Click();
    void cmdHelp_Click();
    bool running() const { return m_running; }

public slots:
    void done(int result) override;

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void addRow(const Sites::ServerRow &row);
    void task(const QString &line);
    void advance();
    void scan(int row);
    void update(int row);

    std::unique_ptr<Ui::frmAutoSync> ui;
    DialogSupport *m_support;
    // The working list as ListViewAutoSync shows it, and its paths in upper case.
    QVector<Sites::ServerRow> m_rows;
    QSet<QString> m_upper;
    int m_position = 0;
    int m_maximum = 0;
    bool m_running = false;
};
