#pragma once

#include <QDialog>


namespace Ui {
class frmLocate;
}

// "Locate Database": the simpler twin of frmDataPath. The path is typed;
// OK keeps it in capitals once the database opens there. Loading it clears
// gbolIniFound, and a saved path sets it.
class frmLocate : public QDialog {
    Q_OBJECT

public:
    explicit frmLocate(QWidget *parent = nullptr);
    ~frmLocate() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void cmdBrowse_Click();

private:
    void okClicked();

    Ui::frmLocate *ui;
};
