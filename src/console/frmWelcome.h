#pragma once

#include <QTimer>
#include <QWidget>

// The splash window: stands for two seconds, then starts the main window.
class frmWelcome : public QWidget {
    Q_OBJECT

public:
    explicit frmWelcome(QWidget *parent = nullptr);

    QTimer TimerWelcome;

signals:
    void timeUp();

protected:
    void paintEvent(QPaintEvent *event) override;
};
