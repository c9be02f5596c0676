#include "core/basGetFolder.h"

#include "platform/FileDialogs.h"
#include "platform/UncPath.h"

QString BrowseForFolder(QWidget *parent, const QString &prompt, const QString &startFolder)
{
    // The chooser works on local folders; the console keeps UNC ones.
    QString start;
    if (!startFolder.isEmpty())
        start = UncPath::toLocal(startFolder).value_or(QString());
    QString folder = FileDialogs::browseForFolder(
        parent, prompt.isEmpty() ? QStringLiteral("Please select a folder:") : prompt, start);
    // The shell's answer ends at its first NUL.
    const qsizetype nul = folder.indexOf(QChar(u'\0'));
    if (nul >= 0)
        folder.truncate(nul);
    if (folder.isEmpty())
        return QString();  // cancelled
    return UncPath::toUnc(folder);
}
