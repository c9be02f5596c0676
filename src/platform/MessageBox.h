#pragma once

#include <QList>
#include <QString>

#include <functional>

// The one way any code shows a message box. Tests switch it to scripted mode:
// no window appears, each box is recorded in a transcript and answered from
// a queue of scripted answers (or with its first button when the queue is empty).
namespace Msg {

enum class Icon { None, Critical, Question, Exclamation, Information };
enum class Buttons { OK, OKCancel, AbortRetryIgnore, YesNoCancel, YesNo, RetryCancel };
// Answers keep the classic numbers: OK 1, Cancel 2, Abort 3, Retry 4, Ignore 5, Yes 6, No 7.
enum Answer { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

struct Shown {
    Icon icon;
    Buttons buttons;
    QString title;
    QString text;
    int answer;
    int defaultButton = 1;  // the button Enter presses: 1 the first, 2 the second, ...
};

// Shows a box. An empty title means the application title (gstrAppTitle).
int box(const QString &text, Buttons buttons = Buttons::OK, Icon icon = Icon::None,
        const QString &title = QString());
// The same with another default button (2: the second). Scripted, an empty
// queue of answers gives the default button's answer.
int box(const QString &text, Buttons buttons, Icon icon, const QString &title, int defaultButton);

// Title used when a box names none; start-up sets it to gstrAppTitle.
void setDefaultTitle(const QString &title);
QString defaultTitle();

// Scripted mode for tests.
void setScripted(bool on);
bool scripted();
void queueAnswers(const QList<int> &answers);
QList<Shown> transcript();
// Runs while each scripted box stands, before it is answered: what a test
// looks at while the console waits for the administrator.
void setWhileShown(std::function<void(const Shown &)> probe);
void clearTranscript();

}  // namespace Msg
