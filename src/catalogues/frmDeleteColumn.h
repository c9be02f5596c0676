#pragma once

#include <QDialog>
#include <QStringList>

#include <memory>

class Database;
class DialogSupport;

namespace Ui {
class frmDeleteColumn;
}

// Drops the added columns `names` from `db` as one batch, each column's six
// fields together or not at all, and raises ExtraColumnsCounter once when
// any went (the field is added then, to a file that lacks it). A
// refusal asks Retry or Cancel; Cancel leaves that column whole and goes
// on. Returns the columns deleted.
QStringList DeleteColumns(Database &db, const QStringList &names);

// "Delete Column(s)": the dialog is the confirmation. It lists the columns
// selected in the console; their values go with them.
class frmDeleteColumn : public QDialog {
    Q_OBJECT

public:
    explicit frmDeleteColumn(QWidget *parent = nullptr);
    ~frmDeleteColumn() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<Ui::frmDeleteColumn> ui;
    DialogSupport *m_support;
};
