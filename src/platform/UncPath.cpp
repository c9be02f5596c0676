#include "platform/UncPath.h"

#include "platform/AppFolders.h"
#include "platform/IniFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

struct Share {
    QString unc;    // \\SERVER\SHARE, no trailing separator
    QString local;  // absolute local folder, no trailing separator
};

QString stripTrailing(QString s, QChar sep)
{
    while (s.size() > 1 && s.endsWith(sep))
        s.chop(1);
    return s;
}

// Octal escapes (\040 for a blank) as the mount table writes them.
QString unescapeMount(const QString &s)
{
    QString out;
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (s[i] == QLatin1Char('\\') && i + 3 < s.size()) {
            bool ok = false;
            const int code = s.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                out += QChar(code);
                i += 3;
                continue;
            }
        }
        out += s[i];
    }
    return out;
}

QList<Share> knownShares()
{
    QList<Share> shares;
    for (const auto &[key, value] : IniFile::readSection(UncPath::iniFile(), QStringLiteral("Shares"))) {
        if (!key.startsWith(QLatin1String("\\\\")) || value.isEmpty())
            continue;
        shares.append({stripTrailing(key, QLatin1Char('\\')),
                       stripTrailing(QDir::cleanPath(QFileInfo(value).absoluteFilePath()), QLatin1Char('/'))});
    }
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    if (mounts.open(QIODevice::ReadOnly | QIODevice::Text)) {
        QTextStream in(&mounts);
        while (!in.atEnd()) {
            const QStringList f = in.readLine().split(QLatin1Char(' '));
            if (f.size() < 3)
                continue;
            const QString type = f[2];
            if (type != QLatin1String("cifs") && type != QLatin1String("smb3") && type != QLatin1String("smbfs"))
                continue;
            QString src = unescapeMount(f[0]);
            if (!src.startsWith(QLatin1String("//")))
                continue;
            src.replace(QLatin1Char('/'), QLatin1Char('\\'));
            shares.append({stripTrailing(src, QLatin1Char('\\')), stripTrailing(unescapeMount(f[1]), QLatin1Char('/'))});
        }
    }
    return shares;
}

}  // namespace

namespace UncPath {

QString programFolder()
{
    return AppFolders::current().data;
}

void setProgramFolder(const QString &localFolder)
{
    if (localFolder.isEmpty())
        AppFolders::reset();
    else
        AppFolders::set({localFolder, localFolder, localFolder, true});
}

QString iniFile()
{
    return AppFolders::current().ini + QStringLiteral("/tavello.ini");
}

bool isUnc(const QString &path)
{
    return path.startsWith(QLatin1String("\\\\"));
}

std::optional<QString> toLocal(const QString &path)
{
    if (!isUnc(path))
        return path;
    // \\SERVER\SHARE\rest
    const QString body = path.mid(2);
    const QStringList parts = body.split(QLatin1Char('\\'));
    if (parts.size() < 2 || parts[0].isEmpty() || parts[1].isEmpty())
        return std::nullopt;
    const QString root = QStringLiteral("\\\\") + parts[0] + QLatin1Char('\\') + parts[1];
    for (const Share &s : knownShares()) {
        if (s.unc.compare(root, Qt::CaseInsensitive) != 0)
            continue;
        QString local = s.local;
        const QStringList rest = parts.mid(2);
        for (const QString &seg : rest)
            local += QLatin1Char('/') + seg;
        // A trailing backslash in the UNC form keeps its meaning: a folder.
        return local;
    }
    return std::nullopt;
}

QString toUnc(const QString &localPath)
{
    if (isUnc(localPath))
        return localPath;
    const QString abs = QDir::cleanPath(QFileInfo(localPath).absoluteFilePath());
    const Share *best = nullptr;
    const QList<Share> shares = knownShares();
    for (const Share &s : shares) {
        if (abs == s.local || abs.startsWith(s.local + QLatin1Char('/')) || s.local == QLatin1String("/")) {
            if (!best || s.local.size() > best->local.size())
                best = &s;
        }
    }
    if (!best)
        return localPath;
    QString rest = abs.mid(best->local == QLatin1String("/") ? 0 : best->local.size());
    rest.replace(QLatin1Char('/'), QLatin1Char('\\'));
    QString unc = best->unc + rest;
    if (localPath.endsWith(QLatin1Char('/')) && !unc.endsWith(QLatin1Char('\\')))
        unc += QLatin1Char('\\');
    return unc;
}

QString withTrailingSeparator(const QString &path)
{
    const QChar sep = isUnc(path) ? QLatin1Char('\\') : QLatin1Char('/');
    if (path.endsWith(sep))
        return path;
    return path + sep;
}

}  // namespace UncPath
