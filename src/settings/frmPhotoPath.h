#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmPhotoPath;
}

// "Photo Path": the network folder of the users' photographs,
// GlobalSettingsTable.PhotoPath. Only a UNC path to a folder that exists is
// taken; an empty entry clears the path.
class frmPhotoPath : public QDialog {
    Q_OBJECT

public:
    explicit frmPhotoPath(QWidget *parent = nullptr);
    ~frmPhotoPath() override;

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void cmdBrowse_Click();

private:
    void okClicked();
    void refuse(const QString &text, const QString &title);

    std::unique_ptr<Ui::frmPhotoPath> ui;
    DialogSupport *m_support;
};
