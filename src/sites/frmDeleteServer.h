#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmDeleteServer;
}

// "Delete Server": lists the servers selected in the main window's list,
// all but the home server, and OK deletes each of them in a transaction of
// its own.
class frmDeleteServer : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteServer(QWidget *parent = nullptr);
    ~frmDeleteServer() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmDeleteServer> ui;
    DialogSupport *m_support;
};
