#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmModServer;
}

// "Modify Server": changes the path and description of the entry handed
// over in SelectedServerPath and SelectedServerDescription.
class frmModServer : public QDialog {
    Q_OBJECT

public:
    explicit frmModServer(QWidget *parent = nullptr);
    ~frmModServer() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void cmdBrowse_Click();
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmModServer> ui;
    DialogSupport *m_support;
    QString m_oldPath;
};
