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
    std::function<void(const Msg::Shown &)> whileShown;
};

State &state()
{
    static State s;
    return s;
}

// The answers of a box's buttons, left to right.
QList<int> buttonAnswers(Msg::Buttons b)
{
    switch (b) {
    case Msg::Buttons::OK: return {Msg::OK};
    case Msg::Buttons::OKCancel: return {Msg::OK, Msg::Cancel};
    case Msg::Buttons::AbortRetryIgnore: return {Msg::Abort, Msg::Retry, Msg::Ignore};
    case Msg::Buttons::YesNoCancel: return {Msg::Yes, Msg::No, Msg::Cancel};
    case Msg::Buttons::YesNo: return {Msg::Yes, Msg::No};
    case Msg::Buttons::RetryCancel: return {Msg::Retry, Msg::Cancel};
    }
    return {Msg::OK};
}

int defaultAnswer(Msg::Buttons b, int defaultButton)
{
    const QList<int> answers = buttonAnswers(b);
    return answers.value(defaultButton - 1, answers.first());
}

QMessageBox::StandardButton standardOf(int answer)
{
    switch (answer) {
    case Msg::OK: return QMessageBox::Ok;
    case Msg::Cancel: return QMessageBox::Cancel;
    case Msg::Abort: return QMessageBox::Abort;
    case Msg::Retry: return QMessageBox::Retry;
    case Msg::Ignore: return QMessageBox::Ignore;
    case Msg::Yes: return QMessageBox::Yes;
    case Msg::No: return QMessageBox::No;
    default: return QMessageBox::NoButton;
    }
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
    return box(text, buttons, icon, title, 1);
}

int box(const QString &text, Buttons buttons, Icon icon, const QString &title, int defaultButton)
{
    State &s = state();
    const QString shownTitle = title.isEmpty() ? s.defaultTitle : title;
    int answer;
    if (s.scripted) {
        answer = s.answers.isEmpty() ? defaultAnswer(buttons, defaultButton) : s.answers.dequeue();
        if (s.whileShown)
            s.whileShown({icon, buttons, shownTitle, text, answer, defaultButton});
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
        if (defaultButton != 1)
            mb.setDefaultButton(standardOf(defaultAnswer(buttons, defaultButton)));
        answer = answerOf(mb.exec());
        if (busy)
            QApplication::restoreOverrideCursor();
    }
    s.transcript.append({icon, buttons, shownTitle, text, answer, defaultButton});
    return answer;
}

void setDefaultTitle(const QString &title) { state().defaultTitle = title; }
QString defaultTitle() { return state().defaultTitle; }

void setScripted(bool on) { state().scripted = on; }
void setWhileShown(std::function<void(const Shown &)> probe) { state().whileShown = std::move(probe); }
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
