#include "platform/AppFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <optional>

#ifndef TAVELLO_APP_ID
#error "TAVELLO_APP_ID must name the application id"
#endif
#ifndef TAVELLO_DATADIR_FROM_BINDIR
#error "TAVELLO_DATADIR_FROM_BINDIR must give the data folder relative to the bin folder"
#endif

namespace {

std::optional<AppFolders::Folders> &override_()
{
    static std::optional<AppFolders::Folders> f;
    return f;
}

QString clean(const QString &folder)
{
    QString s = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    while (s.size() > 1 && s.endsWith(QLatin1Char('/')))
        s.chop(1);
    return s;
}

// An installed tree: the desktop entry sits where `cmake --install` puts it
// relative to the executable (/usr/bin -> /usr/share/applications).
bool isInstalledTree(const QString &exeFolder)
{
    return QFileInfo::exists(exeFolder + QStringLiteral("/" TAVELLO_DATADIR_FROM_BINDIR "/applications/") +
                             AppFolders::applicationId() + QStringLiteral(".desktop"));
}

}  // namespace

namespace AppFolders {

QString applicationId() { return QStringLiteral(TAVELLO_APP_ID); }

QString userFolderName() { return QStringLiteral("tavello-admin"); }

Folders choose(const QString &exeFolder, const QString &configHome, const QString &dataHome)
{
    const QString exe = clean(exeFolder);
    const bool iniBeside = QFileInfo::exists(exe + QStringLiteral("/tavello.ini"));
    if (iniBeside || (!isInstalledTree(exe) && QFileInfo(exe).isWritable()))
        return {exe, exe, exe, true};
    return {exe, clean(configHome) + QLatin1Char('/') + userFolderName(),
            clean(dataHome) + QLatin1Char('/') + userFolderName(), false};
}

Folders current()
{
    if (override_())
        return *override_();
    static const Folders decided = [] {
        Folders f = choose(QCoreApplication::applicationDirPath(),
                           QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                           QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
        if (!f.portable) {
            // The first start on an account makes them; a failure shows later
            // as an ini or database that cannot be created, with its path.
            QDir().mkpath(f.ini);
            QDir().mkpath(f.data);
        }
        return f;
    }();
    return decided;
}

void set(const Folders &folders)
{
    override_() = Folders{clean(folders.program), clean(folders.ini), clean(folders.data), folders.portable};
}

void reset() { override_().reset(); }

}  // namespace AppFolders
