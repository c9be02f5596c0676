#pragma once

#include <QDialog>

#include <memory>

class DialogSupport;

namespace Ui {
class frmCompany;
}

// "Company Information": free text for the users of the board (phone
// numbers, policies), GlobalSettingsTable.CompanyInfo. The database is
// opened afresh around the reading and the writing.
class frmCompany : public QDialog {
    Q_OBJECT

public:
    explicit frmCompany(QWidget *parent = nullptr);
    ~frmCompany() override;

    void cmdOKCompanyInfo_Click();

private:
    std::unique_ptr<Ui::frmCompany> ui;
    DialogSupport *m_support;
};
