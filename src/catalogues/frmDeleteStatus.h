#pragma once

#include <QDialog>
#include <QStringList>

#include <memory>

class Database;
class DialogSupport;

namespace Ui {
class frmDeleteStatus;
}

// Deletes the status types `names` from `db` as one batch, each type all or
// nothing (users with an empty Status become "Please Set" in Blue; users in
// the deleted type keep its word), and raises StatusTypeCounter once. A
// failure asks Retry or Cancel; Cancel leaves that type as it was and goes
// on. Returns the types deleted.
QStringList DeleteStatusTypes(Database &db, const QStringList &names);

// "Delete Status Type(s)": the dialog is the confirmation. It lists the
// types selected in the console, leaving out In, Out and Busy.
class frmDeleteStatus : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteStatus(QWidget *parent = nullptr);
    ~frmDeleteStatus() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<Ui::frmDeleteStatus> ui;
    DialogSupport *m_support;
};
