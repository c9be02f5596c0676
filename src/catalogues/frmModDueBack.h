#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmModDueBack;
}

// "Modify DueBack Message Type": rewrites the phrase selected in the
// console (SelectedDueBackName). Users keep the phrase they stand in.
class frmModDueBack : public QDialog {
    Q_OBJECT

public:
    explicit frmModDueBack(QWidget *parent = nullptr);
    ~frmModDueBack() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    DialogSupport *support() const { return m_support; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void okClicked();

    std::unique_ptr<Ui::frmModDueBack> ui;
    DialogSupport *m_support;
    QString m_current;
};
