#include "SitesTest.h"

#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"

#include <QDir>
#include <QFile>

namespace SitesTest {

QString boardTemplate()
{
    static QTemporaryDir dir;
    static const QString file = [] {
        const QString f = dir.path() + QStringLiteral("/tavello.mdb");
        if (CreateDatabase(f) != 0)
            qFatal("the board template could not be created");
        return f;
    }();
    return file;
}

Boards::Boards(const TestSupport::Site &home) : m_home(home)
{
    m_folders.insert(QStringLiteral("H"), home.shareFolder());
}

QString Boards::unc(const QString &name) const
{
    if (name == QLatin1String("H"))
        return m_home.shareUnc();
    return QStringLiteral("\\\\") + name + QStringLiteral("SRV\\BOARD\\");
}

QString Boards::folder(const QString &name) const
{
    return m_folders.value(name, m_dir.path() + QLatin1Char('/') + name.toLower());
}

QString Boards::file(const QString &name) const { return folder(name) + QStringLiteral("/tavello.mdb"); }

void Boards::add(const QString &name, const QString &kind)
{
    const QString dir = folder(name);
    m_folders.insert(name, dir);
    if (kind == QLatin1String("absent"))
        return;
    QDir().mkpath(dir);
    IniFile::writeKey(m_home.iniFile(), QStringLiteral("Shares"), unc(name).chopped(1), dir);
    if (kind == QLatin1String("foreign")) {
        QFile f(file(name));
        if (f.open(QIODevice::WriteOnly))
            f.write("Minutes of the meeting of the site committee.\n");
    } else if (kind == QLatin1String("board") || kind == QLatin1String("2003")) {
        if (!QFile::copy(boardTemplate(), file(name)))
            qFatal("no copy of the board template");
        if (kind == QLatin1String("2003")) {
            Database db = Database::open(file(name));
            db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET DatabaseVersion = ?"), {2003});
        }
    }
}

QString Boards::expand(QString text) const
{
    for (char name = 'A'; name <= 'Z'; ++name) {
        const QString site = QString(QLatin1Char(name));
        text.replace(QLatin1Char('{') + site + QStringLiteral("-}"), unc(site).chopped(1));
        text.replace(QLatin1Char('{') + site + QLatin1Char('}'), unc(site));
    }
    return text;
}

QStringList Boards::expand(const QStringList &texts) const
{
    QStringList out;
    for (const QString &t : texts)
        out << expand(t);
    return out;
}

QStringList Boards::table(const QString &name) const
{
    QStringList out;
    Database db = Database::open(file(name));
    for (Recordset rs = db.query(QStringLiteral("SELECT UNCPath, Description FROM ServersTable ORDER BY rowid"));
         !rs.eof(); rs.moveNext()) {
        const QVariant path = rs.value(0), description = rs.value(1);
        out << (path.isNull() ? QStringLiteral("<null>") : path.toString()) + QLatin1Char('|') +
                   (description.isNull() ? QStringLiteral("<null>") : description.toString());
    }
    return out;
}

void Boards::setTable(const QString &name, const QStringList &rows) const
{
    Database db = Database::open(file(name));
    db.execute(QStringLiteral("DELETE FROM ServersTable"));
    for (const QString &row : rows) {
        const QString path = expand(row.section(QLatin1Char('='), 0, 0));
        const QString description = row.section(QLatin1Char('='), 1);
        db.execute(QStringLiteral("INSERT INTO ServersTable (UNCPath, Description) VALUES (?, ?)"),
                   {path, description == QLatin1String("<null>") ? QVariant() : QVariant(description)});
    }
}

QStringList boxes()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << s.title + QLatin1Char('|') + s.text;
    return out;
}

QByteArray fileBytes(const QString &localPath)
{
    QFile f(localPath);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace SitesTest
