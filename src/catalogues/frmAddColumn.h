#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmAddColumn;
}

// "Add Column": a column of the site's own on the board (a room number, say):
// six new fields across EmployeeTable, EmployeeSettingsTable and
// NewUserDefaultsTable, added together or not at all. The same opening can
// add one after another.
class frmAddColumn : public QDialog {
    Q_OBJECT

public:
    explicit frmAddColumn(QWidget *parent = nullptr);
    ~frmAddColumn() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmAddColumn> ui;
    DialogSupport *m_support;
};
