#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmModColumn;
}

// "Modify Column Name": renames the column selected in the console
// (SelectedColumnName) in place, its six fields together, the users' values
// kept, and sets its read-only flag afresh.
class frmModColumn : public QDialog {
    Q_OBJECT

public:
    explicit frmModColumn(QWidget *parent = nullptr);
    ~frmModColumn() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmModColumn> ui;
    DialogSupport *m_support;
    QString m_current;
};
