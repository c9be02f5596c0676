#pragma once

#include "platform/ReportPrinter.h"

#include <QDialog>
#include <QString>
#include <QStringList>

#include <memory>

class DialogSupport;
class QAction;
class QToolBar;

namespace Ui {
class frmMsgsPreview;
}

// "Preview TAVELLO Messages": one person's messages as their TAVELLO program
// shows them, the messages sent to them and their own drafts, less those
// marked deleted. Opened from the console's Messages list for the recipient
// of the message chosen there. Composing belongs to the user program: its
// buttons stand here but stay off.
class frmMsgsPreview : public QDialog {
    Q_OBJECT

public:
    // For the recipient of the row chosen in the console's Messages list.
    explicit frmMsgsPreview(QWidget *parent = nullptr);
    frmMsgsPreview(const QString &person, QWidget *parent);
    ~frmMsgsPreview() override;

    QString person() const { return m_person; }

    // The toolbar's buttons in order, with their keys.
    static QStringList buttonKeys();
    QAction *button(const QString &key) const;
    QToolBar *toolbar() const { return m_toolbar; }

    void subLoad_MsgsPreview_ListView();
    void subBindMsgsPreviewToolBar();
    void ToolbarMsgsPreview_ButtonClick(const QString &key);
    void subMsgsPreview_Command_View();

    // The printed form of the messages with these IDs, read from gdbMain
    // each time it is rendered; one gone meanwhile is left out.
    static ReportPrinter::Report messagesReport(const QString &person, const QStringList &ids);

private:
    void setup();
    void setButtonStates();
    void deleteSelected();
    void printSelected();
    QStringList selectedIds() const;

    std::unique_ptr<Ui::frmMsgsPreview> ui;
    DialogSupport *m_support;
    QToolBar *m_toolbar;
    QString m_person;
};
