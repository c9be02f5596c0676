#pragma once

#include <QString>

// Where tavello.ini and the default database live: "the program's folder" of
// every dialog and message. The portable layout keeps both beside the
// executable, as a copy on a file server or a build folder does. An installed
// program (in the bin folder of a tree that carries its desktop entry) or one
// in a folder it cannot write to keeps tavello.ini in the user's configuration
// folder and the default database in the user's data folder instead. A
// tavello.ini beside the executable always wins.
namespace AppFolders {

struct Folders {
    QString program;  // the executable's folder (tavello-convert lies there)
    QString ini;      // folder of tavello.ini
    QString data;     // folder of the default database
    bool portable = true;
};

// The rule on the facts it looks at: the executable's folder and the user's
// configuration and data homes (~/.config, ~/.local/share).
Folders choose(const QString &exeFolder, const QString &configHome, const QString &dataHome);

// The folders of this run, decided once at first use; in the user layout the
// two folders are created then.
Folders current();

// Tests: these folders instead of the rule's, until reset().
void set(const Folders &folders);
void reset();

// Reverse-DNS id of the desktop entry, icon and AppStream data.
QString applicationId();

// Name of the folder under the user's configuration and data homes.
QString userFolderName();

}  // namespace AppFolders
