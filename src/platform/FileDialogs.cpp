#include "platform/FileDialogs.h"

#include <QFileDialog>
#include <QQueue>

namespace {

struct State {
    bool scripted = false;
    QQueue<QString> answers;
    QList<FileDialogs::Asked> transcript;
};

State &state()
{
    static State s;
    return s;
}

// "Description|pattern|..." to Qt's "Description (pattern);;..."
QString qtFilter(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        out << QStringLiteral("%1 (%2)").arg(parts[i], QString(parts[i + 1]).replace(QLatin1Char(';'), QLatin1Char(' ')));
    return out.join(QStringLiteral(";;"));
}

QString nextAnswer(State &s)
{
    return s.answers.isEmpty() ? QString() : s.answers.dequeue();
}

}  // namespace

namespace FileDialogs {

QString openFile(QWidget *parent, const QString &title, const QString &filter,
                 const QString &initialFolder)
{
    State &s = state();
    s.transcript.append({QStringLiteral("file"), title, filter, initialFolder});
    if (s.scripted)
        return nextAnswer(s);
    return QFileDialog::getOpenFileName(parent, title, initialFolder, qtFilter(filter));
}

QString browseForFolder(QWidget *parent, const QString &prompt, const QString &startFolder)
{
    State &s = state();
    const QString title = prompt.isEmpty() ? QStringLiteral("Please select a folder:") : prompt;
    s.transcript.append({QStringLiteral("folder"), title, QString(), startFolder});
    if (s.scripted)
        return nextAnswer(s);
    return QFileDialog::getExistingDirectory(parent, title, startFolder);
}

void setScripted(bool on) { state().scripted = on; }
void queueAnswers(const QStringList &answers)
{
    for (const QString &a : answers)
        state().answers.enqueue(a);
}
QList<Asked> transcript() { return state().transcript; }
void clearTranscript()
{
    state().transcript.clear();
    state().answers.clear();
}

}  // namespace FileDialogs
