#pragma once

#include <QDialog>

namespace Ui {
class about;
}

// The program's title, release version and release date.
class about : public QDialog {
    Q_OBJECT

public:
    explicit about(QWidget *parent = nullptr);
    ~about() override;

private:
    Ui::about *ui;
};
