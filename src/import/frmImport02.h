#pragma once

#include <QDialog>
#include <QString>

#include <array>
#include <functional>
#include <memory>

namespace Ui {
class frmImport02;
}

// "Importing...", the wizard's second step: runs through the file in one
// transaction of the store, a user for each valid line and a row of
// ImportErrorLog for each refused one, with the bar moving as it goes.
// The run starts when the window first shows and cannot be stopped; the
// window closes itself when it has reported.
class frmImport02 : public QDialog {
    Q_OBJECT

public:
    explicit frmImport02(QWidget *parent = nullptr);
    ~frmImport02() override;

    void prepare(const QString &file, const std::array<QString, 3> &columnMap, QChar separator, qint64 lineTotal);

    // The run; only the first call does anything.
    void Form_Activate();
    bool finished() const { return m_finished; }

    // Called as the bar moves, with the lines done so far.
    static void setProgressObserver(std::function<void(qint64)> observer);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    void run();
    void moveBar(qint64 linesDone);
    void commitRun();

    std::unique_ptr<Ui::frmImport02> ui;
    QString m_file;
    std::array<QString, 3> m_map;
    QChar m_separator = QLatin1Char(',');
    qint64 m_lineTotal = 0;
    bool m_started = false;
    bool m_finished = false;
};
