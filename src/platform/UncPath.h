#pragma once

#include <QList>
#include <QString>
#include <optional>

// Paths to the shared database are UNC paths (\\SERVER\SHARE\DIR\), the same
// on every machine of the site. On Linux a share is a mounted folder: the
// [Shares] section of tavello.ini maps "\\SERVER\SHARE" to
// a local folder, and the mount table supplies cifs/smb3 mounts of
// //server/share and nfs mounts of server:/export. A local path under no share
// keeps its local form. Below a share, names are blind to case, as on the
// file servers these paths come from.
namespace UncPath {

// A network file system mounted on this machine.
struct Mount {
    QString unc;    // \\SERVER\SHARE (more levels for an nfs export), no trailing separator
    QString local;  // the mount folder, no trailing separator
    QString type;   // cifs, smb3, smbfs, nfs, nfs4; "tavello.ini" for a [Shares] entry
};

// The network mounts of a mount table (default: this process's), in its order.
QList<Mount> networkMounts(const QString &mountTable = QString());
// Every share this machine knows: the [Shares] section of tavello.ini (type
// "tavello.ini") first, then the network mounts.
QList<Mount> shares();

// "The program's folder" (local form): where the default database lives, the
// executable's folder in the portable layout (see AppFolders). Tests point it
// at a temporary folder, which then holds the ini too.
QString programFolder();
void setProgramFolder(const QString &localFolder);

// tavello.ini, local form.
QString iniFile();

bool isUnc(const QString &path);

// Local path for a UNC (or local) path; nothing when the share is unknown.
std::optional<QString> toLocal(const QString &path);

// UNC form of a local path when it lies under a known share; else unchanged.
QString toUnc(const QString &localPath);

// Appends the separator the path's form uses ("\" for UNC, "/" otherwise).
QString withTrailingSeparator(const QString &path);

}  // namespace UncPath
