#pragma once

#include <QDialog>
#include <QStringList>

#include <memory>

class Database;
class DialogSupport;

namespace Ui {
class frmDeleteDueBack;
}

// Deletes the due-back types `texts` from `db` as one batch; a failure asks
// Retry or Cancel, and Cancel leaves that one as it was and goes on. No
// counter, and no user's DueBack is touched. Returns the types deleted.
QStringList DeleteDueBackTypes(Database &db, const QStringList &texts);

// "Delete DueBack Message Type": the dialog is the confirmation. It lists
// the types selected in the console.
class frmDeleteDueBack : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteDueBack(QWidget *parent = nullptr);
    ~frmDeleteDueBack() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<Ui::frmDeleteDueBack> ui;
    DialogSupport *m_support;
};
