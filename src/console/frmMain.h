#pragma once

#include <QMainWindow>
#include <QTimer>

class QLabel;

namespace Ui {
class frmMain;
}

// The console's main window: the banner, the list of the selected kind's rows
// and the status bar, with the start-up and shut-down order of the console.
class frmMain : public QMainWindow {
    Q_OBJECT

public:
    explicit frmMain(QWidget *parent = nullptr);
    ~frmMain() override;

    static frmMain *instance();

    // The whole start, in its fixed order. Returns false when the run ends
    // during the start (no window is left to show).
    bool load();

    // Lays out banner and list for the window's size.
    void SizeControls();
    // Count panel of the status bar from gintUserCount.
    void showUserCount();
    // First panel: hint and per-kind texts.
    void setHint(const QString &text);
    QString hint() const;
    QString userCountText() const;

    QTimer TimerDatabase;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    void onActivate();
    void unloadSequence();
    void drawBanner();

    Ui::frmMain *ui;
    QLabel *m_hintPanel;
    QLabel *m_countPanel;
    bool m_unloaded = false;
};
