#include "platform/MessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QQueue>

namespace {

struct State {
    bool scripted = false;
    QQueue<int> answers;
    QList<Msg::Shown> transcript;
    QString defaultTitle;
};

State &state()
{
    static State s;
    return s;
}

int firstButtonAnswer(Msg::Buttons b)
{
    switch (b) {
    case Msg::Buttons::OK:
    case Msg::Buttons::OKCancel: return Msg::OK;
    case Msg::Buttons::AbortRetryIgnore: return Msg::Abort;
    case Msg::Buttons::YesNoCancel:
    case Msg::Buttons::YesNo: return Msg::Yes;
    case Msg::Buttons::RetryCancel: return Msg::Retry;
    }
    return Msg::OK;
}

QMessageBox::StandardButtons standardButtons(Msg::Buttons b)
{
    switch (b) {
    case Msg::Buttons::OK: return QMessageBox::Ok;
    case Msg::Buttons::OKCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case Msg::Buttons::AbortRetryIgnore: return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    case Msg::Buttons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Msg::Buttons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case Msg::Buttons::RetryCancel: return QMessageBox::Retry | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

int answerOf(int standard)
{
    switch (standard) {
    case QMessageBox::Ok: return Msg::OK;
    case QMessageBox::Cancel: return Msg::Cancel;
    case QMessageBox::Abort: return Msg::Abort;
    case QMessageBox::Retry: return Msg::Retry;
    case QMessageBox::Ignore: return Msg::Ignore;
    case QMessageBox::Yes: return Msg::Yes;
    case QMessageBox::No: return Msg::No;
    default: return Msg::Cancel;  // closed with Escape or the window's close box
    }
}

QMessageBox::Icon qtIcon(Msg::Icon i)
{
    switch (i) {
    case Msg::Icon::None: return QMessageBox::NoIcon;
    case Msg::Icon::Critical: return QMessageBox::Critical;
    case Msg::Icon::Question: return QMessageBox::Question;
    case Msg::Icon::Exclamation: return QMessageBox::Warning;
    case Msg::Icon::Information: return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

}  // namespace

namespace Msg {

int box(const QString &text, Buttons buttons, Icon icon, const QString &title)
{
    State &s = state();
    const QString shownTitle = title.isEmpty() ? s.defaultTitle : title;
    int answer;
    if (s.scripted) {
        answer = s.answers.isEmpty() ? firstButtonAnswer(buttons) : s.answers.dequeue();
    } else {
        // A box over an hourglass must still be answerable with the mouse.
        const bool busy = QApplication::overrideCursor() != nullptr;
        if (busy)
            QApplication::setOverrideCursor(Qt::ArrowCursor);
        // The texts break lines with CR or CR LF; the box wants LF.
        QString display = text;
        display.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        display.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        QMessageBox mb(qtIcon(icon), shownTitle, display, standardButtons(buttons),
                       QApplication::activeWindow());
        answer = answerOf(mb.exec());
        if (busy)
            QApplication::restoreOverrideCursor();
    }
    s.transcript.append({icon, buttons, shownTitle, text, answer});
    return answer;
}

void setDefaultTitle(const QString &title) { state().defaultTitle = title; }
QString defaultTitle() { return state().defaultTitle; }

void setScripted(bool on) { state().scripted = on; }
bool scripted() { return state().scripted; }
void queueAnswers(const QList<int> &answers)
{
    for (int a : answers)
        state().answers.enqueue(a);
}
QList<Shown> transcript() { return state().transcript; }
void clearTranscript()
{
    state().transcript.clear();
    state().answers.clear();
}

}  // namespace Msg
