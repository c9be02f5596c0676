#include "core/DialogSupport.h"

#include "core/Global.h"
#include "core/Unhandled.h"
#include "platform/Modal.h"
#include "platform/StoreError.h"

#include <QCoreApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QScreen>
#include <QStatusBar>

DialogSupport::DialogSupport(QDialog *dialog, QStatusBar *statusBar)
    : QObject(dialog), m_dialog(dialog), m_statusBar(statusBar)
{
    m_dialog->setWindowTitle(gstrAppTitle + m_dialog->windowTitle());
    // The form itself needs move events without a button held, to clear the hint.
    m_dialog->setMouseTracking(true);
    m_dialog->installEventFilter(this);
    if (m_statusBar)
        m_statusBar->setSizeGripEnabled(false);
}

void DialogSupport::addHint(QWidget *control, const QString &hint)
{
    if (!m_hints.contains(control)) {
        control->installEventFilter(this);
        // A control may be gone before the dialog; forget it then.
        connect(control, &QObject::destroyed, this, [this](QObject *o) { m_hints.remove(o); });
    }
    m_hints.insert(control, hint);
}

void DialogSupport::addHints(std::initializer_list<std::pair<QWidget *, QString>> hints)
{
    for (const auto &[control, hint] : hints)
        addHint(control, hint);
}

QString DialogSupport::hint() const
{
    return m_statusBar ? m_statusBar->currentMessage() : QString();
}

void DialogSupport::clearHint() { showHint(QString()); }

void DialogSupport::showHint(const QString &text)
{
    if (!m_statusBar)
        return;
    if (text.isEmpty())
        m_statusBar->clearMessage();
    else if (m_statusBar->currentMessage() != text)
        m_statusBar->showMessage(text);
}

bool DialogSupport::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_dialog) {
        switch (event->type()) {
        case QEvent::Show:
            if (!m_centred) {
                m_centred = true;
                centreOnScreen(m_dialog);
            }
            break;
        case QEvent::MouseMove:
            clearHint();
            break;
        default:
            break;
        }
        return false;
    }
    if (event->type() == QEvent::Enter || event->type() == QEvent::MouseMove) {
        const auto it = m_hints.constFind(watched);
        if (it != m_hints.cend())
            showHint(*it);
    }
    return false;
}

bool DialogSupport::openingRead(const std::function<void()> &read)
{
    try {
        read();
        return true;
    } catch (const StoreError &e) {
        reportUnhandled(e);
        Modal::refuseToShow(m_dialog);
        return false;
    }
}

void DialogSupport::sendHelpKey(QWidget *window)
{
    QWidget *target = window->focusWidget() ? window->focusWidget() : window;
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &release);
}

void DialogSupport::centreOnScreen(QWidget *window)
{
    const QScreen *screen = window->screen();
    if (!screen)
        return;
    QRect frame = window->frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    window->move(frame.topLeft());
}
