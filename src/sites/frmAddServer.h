#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;
class QLineEdit;

namespace Ui {
class frmAddServer;
}

// "Add Remote Server Database": a new ServersTable entry for another site's
// database, after its path has been checked and its database tested.
class frmAddServer : public QDialog {
    Q_OBJECT

public:
    explicit frmAddServer(QWidget *parent = nullptr);
    ~frmAddServer() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void cmdBrowse_Click();
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmAddServer> ui;
    DialogSupport *m_support;
};
