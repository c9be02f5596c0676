#pragma once

#include <QDialog>
#include <QString>

class DialogSupport;

namespace Ui {
class frmRepair;
}

// "Repair / Compact Database": warns that the file is needed alone for a
// moment, and on OK repairs and compacts it (subCompactDatabase) and says
// how that went.
class frmRepair : public QDialog {
    Q_OBJECT

public:
    explicit frmRepair(QWidget *parent = nullptr);
    ~frmRepair() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);

    QString hint() const;

private:
    void okClicked();

    Ui::frmRepair *ui;
    DialogSupport *m_support;
};
