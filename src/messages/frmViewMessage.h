#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class DialogSupport;

namespace Ui {
class frmViewMessage;
}

// One message shown read-only: the console only looks at messages, it
// does not write them.
class frmViewMessage : public QDialog {
    Q_OBJECT

public:
    explicit frmViewMessage(const QString &id, QWidget *parent = nullptr);
    ~frmViewMessage() override;

    // False when the message was no longer there.
    bool found() const { return m_found; }

private:
    std::unique_ptr<Ui::frmViewMessage> ui;
    DialogSupport *m_support;
    bool m_found = false;
};
