#pragma once

#include "import/ImportFile.h"

#include <QDialog>
#include <QString>

#include <array>
#include <memory>

class DialogSupport;

namespace Ui {
class frmImport01;
}

// "Import User Names", the wizard's first step: reads the file chosen for
// import (ImportFilePath) once to count its lines and show the first five,
// and asks how its columns map and what separates them. Next checks the
// choice and hands the run to frmImport02.
class frmImport01 : public QDialog {
    Q_OBJECT

public:
    explicit frmImport01(QWidget *parent = nullptr);
    ~frmImport01() override;

    // cmdButtons: 0 Next, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);

    const ImportScan &scan() const { return m_scan; }
    // The three combos' texts, "< Not Used >" for an empty one.
    std::array<QString, 3> columnMap() const;
    QChar separator() const;
    DialogSupport *support() const { return m_support; }

private:
    void nextClicked();

    std::unique_ptr<Ui::frmImport01> ui;
    DialogSupport *m_support;
    ImportScan m_scan;
};
