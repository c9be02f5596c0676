#pragma once

#include <QDialog>
#include <QString>

#include <functional>

class QLineEdit;

namespace Ui {
class frmDataPath;
}

// "Database Path": shows the DataPath of tavello.ini and sets a new one.
// OK takes only a UNC folder that holds a 2005 database; the folder of the
// program itself is kept as an empty value. Loading it clears
// gbolDataPathSaved, and a saved path sets it.
class frmDataPath : public QDialog {
    Q_OBJECT

public:
    explicit frmDataPath(QWidget *parent = nullptr);
    ~frmDataPath() override;

    // What brings the main window's status bar up to date once a new path
    // is in use (the main window registers it; nothing by default).
    static void setStatusBarRefresh(std::function<void()> refresh);

    // cmdButtons: 0 OK, 1 Cancel, 2 Help.
    void cmdButtons_Click(int index);
    void cmdBrowse_Click();

    // OK after its checks of the field: makes sure the file is there,
    // stores the path and opens the database on it. `fieldText` is the
    // checked field; empty stands for the program's folder.
    void savePath(const QString &fieldText);

private:
    void okClicked();
    void selectField();

    Ui::frmDataPath *ui;
};

// Shared by the two path dialogs.
namespace PathSelection {

// The Network Neighbourhood object the file dialog starts in.
inline const QString NetworkFolder = QStringLiteral("::{208D2C60-3AEA-1069-A2D7-08002B30309D}");

// Opens `path` (UNC or local) for input as a plain file and closes it
// again: 0 when that worked, else the file system's failure as the console
// numbers it (53 file not found, 70 permission denied, 75 path/file access
// error, 76 path not found), its text in `errorText`.
int openForInput(const QString &path, QString *errorText = nullptr);

// Whether `folder` holds a database that opens and whose GlobalSettingsTable
// says DatabaseVersion 2005. Shows nothing; leaves gdbMain alone.
bool holds2005Database(const QString &folder);

// Both folders name the same place (UNC aliases of one local folder included).
bool sameFolder(const QString &a, const QString &b);

// Writes the DataPath of tavello.ini. A value the readers would cut (longer
// than the ini's 199 characters) or a file that cannot be written is told
// in a message, and nothing is stored.
bool writeDataPath(const QString &value);

// "You have not entered a valid UNC path..." under "TAVELLO - Invalid UNC".
void warnNotUnc();

// The Browse button of both dialogs: asks for tavello.mdb, compares the
// chosen name's last characters (lower-cased, or upper-cased when
// `upperCaseTail`) with "tavello.mdb" and puts its UNC folder in `field`.
void browseForDatabase(QWidget *dialog, QLineEdit *field, const QString &title, const QString &filter,
                       bool upperCaseTail);

}  // namespace PathSelection
