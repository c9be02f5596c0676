#pragma once

#include "console/ConsoleFixture.h"
#include "platform/Database.h"

#include <QMap>
#include <QStringList>
#include <QTemporaryDir>

namespace SitesTest {

// Other boards beside the console's own, each in a folder of its own shared
// as \\<NAME>SRV\BOARD through the [Shares] section of the console's
// tavello.ini. The console's own database is site "H", \\TESTSRV\SHARE\.
class Boards {
public:
    explicit Boards(const TestSupport::Site &home);

    // A site's folder in UNC form, with its trailing backslash.
    QString unc(const QString &name) const;
    QString folder(const QString &name) const;  // local, no trailing separator
    QString file(const QString &name) const;    // local tavello.mdb

    // Adds a site: "board" a new board database, "foreign" a file of text,
    // "missing" a shared folder without a database, "absent" a share that is
    // not known at all, "2003" a board of that version.
    void add(const QString &name, const QString &kind = QStringLiteral("board"));

    // Replaces "{H}", "{B}", ... by the sites' UNC folders, "{B-}" by one
    // without its trailing backslash.
    QString expand(QString text) const;
    QStringList expand(const QStringList &texts) const;

    // ServersTable rows in the order they were written, as "path|description"
    // ("<null>" for a Null). `rows` sets them, each "path=description".
    QStringList table(const QString &name) const;
    void setTable(const QString &name, const QStringList &rows) const;

private:
    const TestSupport::Site &m_home;
    QTemporaryDir m_dir;
    QMap<QString, QString> m_folders;
};

// Every message box shown so far as "title|text".
QStringList boxes();

QByteArray fileBytes(const QString &localPath);

// A finished board database to copy; built once per test program.
QString boardTemplate();

}  // namespace SitesTest
