#include "core/frmDataPath.h"

#include "ui_frmDataPath.h"

#include "core/Admin1.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "store/modUpdateDatabaseStructure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int PathNotFound = 76;  // a plain file's folder is missing or unreachable

const QString DatabaseName = QStringLiteral("tavello.mdb");
const QString DataPathKey = QStringLiteral("DataPath");
const QString Backslash = QStringLiteral("\\");

std::function<void()> &statusBarRefresh()
{
    static std::function<void()> refresh;
    return refresh;
}

}  // namespace

// ------------------------------------------------------------ PathSelection

namespace PathSelection {

int openForInput(const QString &path, QString *errorText)
{
    const auto fail = [errorText](int number, const QString &text) {
        if (errorText)
            *errorText = text;
        return number;
    };
    const auto local = UncPath::toLocal(path);
    if (!local)
        return fail(PathNotFound, QStringLiteral("Path not found"));
    const QFileInfo fi(*local);
    // A folder opens on Linux, but it is not a file to read.
    if (fi.isDir())
        return fail(err::PathFileAccess, QStringLiteral("Path/File access error"));
    // Straight to the file system: its reason decides the number.
    const int fd = ::open(QFile::encodeName(*local).constData(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        ::close(fd);
        return 0;
    }
    const int e = errno;
    switch (e) {
    case ENOENT:
        if (QFileInfo(fi.absolutePath()).isDir())
            return fail(err::FileNotFound, QStringLiteral("File not found"));
        return fail(PathNotFound, QStringLiteral("Path not found"));
    case ENOTDIR:
        return fail(PathNotFound, QStringLiteral("Path not found"));
    case EACCES:
    case EPERM:
    case ETXTBSY:
        return fail(err::PermissionDenied, QStringLiteral("Permission denied"));
    default:
        return fail(err::PathFileAccess, QStringLiteral("Path/File access error (") + QString::fromLocal8Bit(std::strerror(e)) +
                            QStringLiteral(")"));
    }
}

bool holds2005Database(const QString &folder)
{
    try {
        Database db = Database::open(folder + DatabaseName);
        const QVariant version = db.scalar(QStringLiteral("Select DatabaseVersion from GlobalSettingsTable"));
        return !version.isNull() && version.toString() == QLatin1String("2005");
    } catch (const StoreError &) {
        return false;
    }
}

bool sameFolder(const QString &a, const QString &b)
{
    if (a == b)
        return true;
    const auto la = UncPath::toLocal(a);
    const auto lb = UncPath::toLocal(b);
    if (!la || !lb || la->isEmpty() || lb->isEmpty())
        return false;
    return QDir::cleanPath(QFileInfo(*la).absoluteFilePath()) == QDir::cleanPath(QFileInfo(*lb).absoluteFilePath());
}

bool writeDataPath(const QString &value)
{
    const QString ini = UncPath::iniFile();
    const QString title = QStringLiteral("TAVELLO - Database Path");
    if (value.size() > IniFile::MaxValueLength) {
        // The readers of tavello.ini would cut it and look in the wrong place.
        Msg::box(QStringLiteral("The path ") + value + QStringLiteral(" is longer than ") +
                     QString::number(IniFile::MaxValueLength) +
                     QStringLiteral(" characters and cannot be kept in tavello.ini. Please choose a shorter path."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, title);
        return false;
    }
    if (!IniFile::writeKey(ini, DataPathKey, DataPathKey, value)) {
        Msg::box(QStringLiteral("The database path could not be saved: ") + ini +
                     QStringLiteral(" cannot be written."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, title);
        return false;
    }
    return true;
}

void warnNotUnc()
{
    Msg::box(QStringLiteral("You have not entered a valid UNC path. A UNC path must ") + QStringLiteral("begin with ") +
                 QLatin1Char('"') + QStringLiteral(" \\\\ ") + QLatin1Char('"'),
             Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Invalid UNC"));
}

void browseForDatabase(QWidget *dialog, QLineEdit *field, const QString &title, const QString &filter,
                       bool upperCaseTail)
{
    QString file = FileDialogs::openFile(dialog, title, filter, NetworkFolder);
    if (file.isEmpty())
        return;  // cancelled
    // A file under a mounted share is known by its UNC name on every machine.
    file = UncPath::toUnc(file);
    QString tail = file.right(DatabaseName.size());
    tail = upperCaseTail ? tail.toUpper() : tail.toLower();
    if (tail != DatabaseName) {
        Msg::box(QStringLiteral("Invalid database file selected"), Msg::Buttons::OK, Msg::Icon::Exclamation,
                 QStringLiteral("tavello.mdb Not Found"));
        return;
    }
    const QString folder = file.left(file.size() - DatabaseName.size());
    if (!UncPath::isUnc(folder)) {
        Msg::box(folder + QStringLiteral(" is not a UNC path. Please reselect."));
        field->setFocus();
        return;
    }
    field->setText(folder);
    gbolIsValidDatabase(gstrDataPath);
}

}  // namespace PathSelection

// --------------------------------------------------------------- frmDataPath

frmDataPath::frmDataPath(QWidget *parent) : QDialog(parent), ui(new Ui::frmDataPath)
{
    ui->setupUi(this);
    auto *support = new DialogSupport(this, ui->StatusBar);  // owned by the dialog
    support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Press OK to Accept the current Path.")},
        {ui->cmdButtons_1, QStringLiteral(" Press Cancel to Exit without saving new Path.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
        {ui->txtNewPath, QStringLiteral(" Example: \\\\SERVERNAME\\SHARENAME\\APPS\\TAVELLO\\")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdBrowse, &QPushButton::clicked, this, &frmDataPath::cmdBrowse_Click);

    gbolDataPathSaved = false;
    const QString ini = UncPath::iniFile();
    if (IniFile::exists(ini))
        ui->lblCurrentPath->setText(QLatin1Char(' ') + IniFile::readKey(ini, DataPathKey, DataPathKey));
    else
        ui->lblCurrentPath->setText(QStringLiteral(" tavello.ini file MISSING! "));
    ui->txtNewPath->setFocus();
}

frmDataPath::~frmDataPath() { delete ui; }

void frmDataPath::setStatusBarRefresh(std::function<void()> refresh)
{
    statusBarRefresh() = std::move(refresh);
}

void frmDataPath::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        okClicked();
        break;
    case 1:
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmDataPath::cmdBrowse_Click()
{
    PathSelection::browseForDatabase(this, ui->txtNewPath, QStringLiteral("Locate TAVELLO Databases"),
                                     QStringLiteral("TAVELLO database|tavello.mdb"), false);
}

void frmDataPath::selectField()
{
    ui->txtNewPath->selectAll();
    ui->txtNewPath->setFocus();
}

void frmDataPath::okClicked()
{
    QString text = ui->txtNewPath->text().trimmed();
    if (!text.isEmpty() && !text.endsWith(Backslash))
        text += Backslash;
    ui->txtNewPath->setText(text);
    // Refused before any file is touched: a path must mean the same on every machine.
    if (!text.isEmpty() && !UncPath::isUnc(text)) {
        PathSelection::warnNotUnc();
        selectField();
        return;
    }
    // An empty field stands for the program's folder from the first check on.
    const QString folder = text.isEmpty() ? gstrAppPath : text;
    if (!PathSelection::holds2005Database(folder)) {
        Msg::box(QStringLiteral("Error: This is NOT a 2005 Tavello database."), Msg::Buttons::OK,
                 Msg::Icon::Information, QStringLiteral("Not a valid 2005 Tavello Database"));
        return;
    }
    savePath(text);
}

void frmDataPath::savePath(const QString &fieldText)
{
    const QString newPath = fieldText.isEmpty() ? gstrAppPath : fieldText;

    QString errorText;
    switch (PathSelection::openForInput(newPath + DatabaseName, &errorText)) {
    case 0:
    case err::PermissionDenied:  // in use by the user programs: it is there
        break;
    case err::FileNotFound:
        Msg::box(QStringLiteral("The tavello.mdb file could not be found at the requested directory '") + newPath +
                     QStringLiteral("'."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Database Not Found"));
        reject();
        return;
    default:
        Msg::box(errorText, Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Database Path"));
        reject();
        return;
    }

    // A console that sits beside its database keeps no path.
    const QString value = PathSelection::sameFolder(newPath, gstrAppPath) ? QString() : newPath;
    if (!PathSelection::writeDataPath(value))
        return;
    gbolDataPathSaved = true;

    InitializeLocalDatabase();
    if (gbolEnding) {
        reject();
        return;
    }
    subOpenDatabase();
    subCloseDatabase();
    if (gbolEnding) {
        reject();
        return;
    }
    if (!gbolIsValidDatabase(gstrDataPath))
        return;
    if (statusBarRefresh())
        statusBarRefresh()();
    subUpdateDatabaseStructure();
    accept();
}
