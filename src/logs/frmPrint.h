#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmPrint;
}

// "Print Transaction Log": the whole log, or one user's rows, as a report
// in fixed columns. OK shows the report in a print preview, whose Print
// button goes to the printer dialog (a printer, or a PDF file).
class frmPrint : public QDialog {
    Q_OBJECT

public:
    explicit frmPrint(QWidget *parent = nullptr);
    ~frmPrint() override;

    void CommandPrintOK_Click();
    void CommandPrintSetup_Click();

    // The body font size the report will use.
    int fontSize() const;

private:
    void applyOkRule();

    std::unique_ptr<Ui::frmPrint> ui;
};
