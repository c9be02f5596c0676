#pragma once

#include <QDialog>

namespace Ui {
class frmAdminOptions;
}

// The console's own options: the font of the main window's list and tree.
// OK puts the choice into gintAdminFontBold and gintAdminFontSize only; the
// main window applies them when it becomes active again and stores them in
// the database when it closes.
class frmAdminOptions : public QDialog {
    Q_OBJECT

public:
    explicit frmAdminOptions(QWidget *parent = nullptr);
    ~frmAdminOptions() override;

    void cmdOkAdminOptions_Click();

private:
    Ui::frmAdminOptions *ui;
};

// The whole-number value of a typed size, as the number conversion reads it
// (leading number only, 0 when there is none), held to 8 .. 15.
int adminFontSizeFromText(const QString &text);
// 8 or less becomes 8, 15 or more becomes 15.
int boundedAdminFontSize(int size);
