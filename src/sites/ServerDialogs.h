#pragma once

#include <QString>
#include <QVector>

#include <functional>

class QLineEdit;
class QWidget;

// What the Add and Modify server windows share.
namespace Sites {

enum class Wording { Add, Modify };

// The typed path must begin with two backslashes and end with one. A path
// that doesn't is refused with the window's own wording, and the field gets
// the focus with its text selected.
bool uncFormAccepted(QLineEdit *field, const QString &path, Wording wording);

// The test open of `path` + "tavello.mdb"; a failure is told and answers false.
bool remoteDatabaseOpens(const QString &path);

// Asks for a tavello.mdb and answers its folder in UNC form; empty when the
// choice was cancelled or refused. A file reached other than through a share
// is refused with `notUnc`, given the folder.
QString browseForSite(QWidget *parent, const QString &filter, const QString &initialFolder,
                      const std::function<void(const QString &folder)> &notUnc);

// Runs one write on gdbMain as a transaction. A failure is rolled back and
// goes to gintHandleUpdateError, whose Retry runs the write again. True when
// the write is done.
bool writeWithRetry(const std::function<void()> &change);

}  // namespace Sites
