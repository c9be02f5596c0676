#include "platform/IniFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

QStringList readLines(const QString &path, bool *ok)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) {
        if (ok)
            *ok = false;
        return {};
    }
    if (ok)
        *ok = true;
    QStringList lines;
    QTextStream in(&f);
    while (!in.atEnd())
        lines << in.readLine();
    return lines;
}

bool isSectionLine(const QString &line, QString *name)
{
    const QString t = line.trimmed();
    if (!t.startsWith(QLatin1Char('[')))
        return false;
    const auto close = t.indexOf(QLatin1Char(']'));
    if (close < 0)
        return false;
    if (name)
        *name = t.mid(1, close - 1).trimmed();
    return true;
}

bool splitKeyLine(const QString &line, QString *key, QString *value)
{
    const QString t = line.trimmed();
    if (t.isEmpty() || t.startsWith(QLatin1Char(';')))
        return false;
    const auto eq = t.indexOf(QLatin1Char('='));
    if (eq <= 0)
        return false;
    *key = t.left(eq).trimmed();
    QString v = t.mid(eq + 1).trimmed();
    // One pair of matching quotes around a value is not part of it.
    if (v.size() >= 2 && (v.front() == QLatin1Char('"') || v.front() == QLatin1Char('\'')) &&
        v.back() == v.front())
        v = v.mid(1, v.size() - 2);
    *value = v.left(IniFile::MaxValueLength);
    return true;
}

}  // namespace

namespace IniFile {

bool exists(const QString &localPath)
{
    QFile f(localPath);
    return f.open(QIODevice::ReadOnly);
}

QList<std::pair<QString, QString>> readSection(const QString &localPath, const QString &section)
{
    QList<std::pair<QString, QString>> out;
    bool in = false;
    for (const QString &line : readLines(localPath, nullptr)) {
        QString name;
        if (isSectionLine(line, &name)) {
            in = name.compare(section, Qt::CaseInsensitive) == 0;
            continue;
        }
        QString k, v;
        if (in && splitKeyLine(line, &k, &v))
            out.append({k, v});
    }
    return out;
}

QString readKey(const QString &localPath, const QString &section, const QString &key,
                const QString &def)
{
    for (const auto &[k, v] : readSection(localPath, section))
        if (k.compare(key, Qt::CaseInsensitive) == 0)
            return v;
    return def.left(MaxValueLength);
}

bool writeKey(const QString &localPath, const QString &section, const QString &key,
              const QString &value)
{
    QStringList lines = readLines(localPath, nullptr);
    const QString entry = key + QLatin1Char('=') + value;
    qsizetype sectionAt = -1, insertAt = -1;
    bool in = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString name;
        if (isSectionLine(lines[i], &name)) {
            if (in)
                break;
            in = name.compare(section, Qt::CaseInsensitive) == 0;
            if (in) {
                sectionAt = i;
                insertAt = i + 1;
            }
            continue;
        }
        if (!in)
            continue;
        QString k, v;
        if (splitKeyLine(lines[i], &k, &v)) {
            if (k.compare(key, Qt::CaseInsensitive) == 0) {
                lines[i] = entry;
                insertAt = -2;
                break;
            }
        }
        if (!lines[i].trimmed().isEmpty())
            insertAt = i + 1;
    }
    if (sectionAt < 0) {
        if (!lines.isEmpty() && !lines.back().trimmed().isEmpty())
            lines << QString();
        lines << QLatin1Char('[') + section + QLatin1Char(']') << entry;
    } else if (insertAt >= 0) {
        lines.insert(insertAt, entry);
    }
    // Written whole to a temporary name and renamed: a crash never leaves a
    // half-written ini for the user programs to read.
    QSaveFile f(localPath);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream out(&f);
    for (const QString &l : lines)
        out << l << '\n';
    out.flush();
    return f.commit();
}

}  // namespace IniFile
