#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <initializer_list>
#include <utility>

class QDialog;
class QStatusBar;
class QWidget;

// What every dialog of the console does the same way:
// - its caption is gstrAppTitle followed by the caption it was designed with;
// - it centres itself on the screen when it first shows;
// - while the pointer is over a control that has a hint, the hint shows in
//   the dialog's status bar; over the bare form the status bar is cleared;
// - its Help button sends F1, as the Help menu does, so the help page
//   follows from the window in front.
//
// A dialog creates one in its constructor, after setupUi:
//     m_support = new DialogSupport(this, ui->StatusBar);
//     m_support->addHints({{ui->cmdButtons_0, " Press OK to ..."}, ...});
// The helper is a child of the dialog and goes with it.
class DialogSupport : public QObject {
    Q_OBJECT

public:
    DialogSupport(QDialog *dialog, QStatusBar *statusBar);

    void addHint(QWidget *control, const QString &hint);
    void addHints(std::initializer_list<std::pair<QWidget *, QString>> hints);

    // The text the status bar shows now.
    QString hint() const;
    void clearHint();

    // Runs the window's opening read: what it shows and may later write
    // back. A read that fails after the store's wait for passing locks is
    // told as an unhandled failure and the window does not open. True when
    // the read went through.
    bool openingRead(const std::function<void()> &read);

    // The press of F1 in the window in front.
    static void sendHelpKey(QWidget *window);

    // Centres a window on the screen it is on (its frame, where known).
    static void centreOnScreen(QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showHint(const QString &text);

    QDialog *m_dialog;
    QPointer<QStatusBar> m_statusBar;
    QHash<QObject *, QString> m_hints;
    bool m_centred = false;
};
