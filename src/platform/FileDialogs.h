#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// File and folder choosers. Tests script the answers; an empty answer means
// the user cancelled.
namespace FileDialogs {

// Open-file dialog: filter in the form "Description|pattern[|Description|pattern]".
QString openFile(QWidget *parent, const QString &title, const QString &filter,
                 const QString &initialFolder);

// Folder browser: prompt (default "Please select a folder:") and a folder to preselect.
QString browseForFolder(QWidget *parent, const QString &prompt, const QString &startFolder);

void setScripted(bool on);
void queueAnswers(const QStringList &answers);
struct Asked {
    QString kind;  // "file" or "folder"
    QString title;
    QString filter;
    QString initialFolder;
};
QList<Asked> transcript();
void clearTranscript();

}  // namespace FileDialogs
