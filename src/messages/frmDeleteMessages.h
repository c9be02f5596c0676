#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmDeleteMessages;
}

// Removes one message from gdbMain in a transaction of its own. A failure
// asks Retry, which runs the failed step again, or Cancel, which rolls the
// message's transaction back. A message already gone is no failure.
void KillMessage(const QString &id);

// "Delete Messages": the dialog is the confirmation. It lists the messages
// selected in the main window's list, each as its ID, a tab and its
// recipient, and OK removes every one of them from MessagesTable.
class frmDeleteMessages : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteMessages(QWidget *parent = nullptr);
    ~frmDeleteMessages() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmDeleteMessages> ui;
    DialogSupport *m_support;
};
