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

// The UNC form of a mount's source: //server/share for the SMB family,
// server:/export/dir for nfs. Empty when it has none.
QString uncOfSource(const QString &type, const QString &source)
{
    QString unc;
    if (type.startsWith(QLatin1String("nfs"))) {
        // server:/export, with [v6 address]:/export allowed
        const qsizetype colon = source.startsWith(QLatin1Char('['))
                                    ? source.indexOf(QLatin1String("]:")) + 1
                                    : source.indexOf(QLatin1Char(':'));
        if (colon <= 0)
            return QString();
        const QString host = source.left(colon);
        const QString path = source.mid(colon + 1);
        if (!path.startsWith(QLatin1Char('/')))
            return QString();
        unc = QStringLiteral("//") + host + path;
    } else {
        if (!source.startsWith(QLatin1String("//")))
            return QString();
        unc = source;
    }
    unc.replace(QLatin1Char('/'), QLatin1Char('\\'));
    unc = stripTrailing(unc, QLatin1Char('\\'));
    // \\server\share at least
    const QStringList parts = unc.mid(2).split(QLatin1Char('\\'));
    if (parts.size() < 2 || parts[0].isEmpty() || parts[1].isEmpty())
        return QString();
    return unc;
}

QList<Share> knownShares()
{
    QList<Share> shares;
    for (const UncPath::Mount &m : UncPath::shares())
        shares.append({m.unc, m.local});
    return shares;
}

// The entry of `folder` named `name` without regard to case: the exact name
// when it exists, else the first that differs only in case; empty for none.
QString entryBlindToCase(const QString &folder, const QString &name)
{
    if (name == QLatin1String(".") || name == QLatin1String("..") || QFileInfo::exists(folder + QLatin1Char('/') + name))
        return name;
    const QStringList entries =
        QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return entry;
    return QString();
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
    // \\SERVER\SHARE\rest: the longest known share the path lies under.
    const QStringList parts = path.mid(2).split(QLatin1Char('\\'));
    if (parts.size() < 2 || parts[0].isEmpty() || parts[1].isEmpty())
        return std::nullopt;
    const Share *best = nullptr;
    const QList<Share> shares = knownShares();
    for (const Share &s : shares) {
        const bool under = path.startsWith(s.unc, Qt::CaseInsensitive) &&
                           (path.size() == s.unc.size() || path[s.unc.size()] == QLatin1Char('\\'));
        if (under && (!best || s.unc.size() > best->unc.size()))
            best = &s;
    }
    if (!best)
        return std::nullopt;
    QString local = best->local;
    const QStringList rest = path.mid(best->unc.size() + 1).split(QLatin1Char('\\'));
    bool resolving = path.size() > best->unc.size();
    for (qsizetype i = 0; resolving && i < rest.size(); ++i) {
        // A trailing backslash in the UNC form keeps its meaning: a folder.
        if (rest[i].isEmpty()) {
            local += QLatin1Char('/');
            continue;
        }
        const QString found = entryBlindToCase(local, rest[i]);
        if (found.isEmpty()) {
            // Nothing there: the rest stands as written.
            local += QLatin1Char('/') + rest.mid(i).join(QLatin1Char('/'));
            break;
        }
        local += QLatin1Char('/') + found;
    }
    return local;
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

QList<Mount> networkMounts(const QString &mountTable)
{
    static const QStringList types = {QStringLiteral("cifs"), QStringLiteral("smb3"), QStringLiteral("smbfs"),
                                      QStringLiteral("nfs"), QStringLiteral("nfs4")};
    QList<Mount> mounts;
    QFile table(mountTable.isEmpty() ? QStringLiteral("/proc/self/mounts") : mountTable);
    if (!table.open(QIODevice::ReadOnly | QIODevice::Text))
        return mounts;
    QTextStream in(&table);
    while (!in.atEnd()) {
        const QStringList f = in.readLine().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (f.size() < 3 || !types.contains(f[2]))
            continue;
        const QString unc = uncOfSource(f[2], unescapeMount(f[0]));
        if (unc.isEmpty())
            continue;
        mounts.append({unc, stripTrailing(unescapeMount(f[1]), QLatin1Char('/')), f[2]});
    }
    return mounts;
}

QList<Mount> shares()
{
    QList<Mount> all;
    for (const auto &[key, value] : IniFile::readSection(iniFile(), QStringLiteral("Shares"))) {
        if (!key.startsWith(QLatin1String("\\\\")) || value.isEmpty())
            continue;
        all.append({stripTrailing(key, QLatin1Char('\\')),
                    stripTrailing(QDir::cleanPath(QFileInfo(value).absoluteFilePath()), QLatin1Char('/')),
                    QStringLiteral("tavello.ini")});
    }
    all += networkMounts();
    return all;
}

QString withTrailingSeparator(const QString &path)
{
    const QChar sep = isUnc(path) ? QLatin1Char('\\') : QLatin1Char('/');
    if (path.endsWith(sep))
        return path;
    return path + sep;
}

}  // namespace UncPath
