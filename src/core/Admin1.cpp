#include "core/Admin1.h"

#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/AppFolders.h"
#include "platform/Hourglass.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/UncPath.h"
#include "store/CreateDB.h"
#include "store/frmRepair.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace {

const QString CR = QStringLiteral("\r");
const QString CRLF = QStringLiteral("\r\n");

std::function<void()> &mainWindowUnloader()
{
    static std::function<void()> f;
    return f;
}

// The path flow of a bad database path: edit it, or end the run.
void askForDataPath()
{
    gbolDataPathSaved = false;
    Msg::box(QStringLiteral("The path ") + gstrDataPath + QStringLiteral(" appears to be incorrect.") + CR +
                 QStringLiteral("Press OK to edit the Database Path."),
             Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("Database Not Found"));
    frmDataPath dialog;
    Modal::show(&dialog);
    if (!gbolDataPathSaved)
        endProcess();
}

enum class IniResult { Open, DontOpen };

// Reads tavello.ini into the path values. A missing ini is created.
IniResult readDataPath()
{
    const QString ini = UncPath::iniFile();
    gbolIniFound = false;
    if (!IniFile::exists(ini)) {
        if (!IniFile::writeKey(ini, QStringLiteral("DataPath"), QStringLiteral("DataPath"), QString()) ||
            !IniFile::exists(ini)) {
            Msg::box(QStringLiteral("The settings file ") + ini +
                         QStringLiteral(" is missing and cannot be created. Check that the program's folder can be written to."),
                     Msg::Buttons::OK, Msg::Icon::Critical, gstrAppTitle + QStringLiteral(" - Database Error"));
            return IniResult::DontOpen;
        }
    }
    gbolIniFound = true;

    QString value = IniFile::readKey(ini, QStringLiteral("DataPath"), QStringLiteral("DataPath"));
    if (value.isEmpty()) {
        gstrDataPath = gstrAppPath;
        gstrDataPathUnc = gstrAppPath;
        gstrDataPathCopy = gstrAppPath;
        gstrDatabaseFile = gstrDataPath + QStringLiteral("tavello.mdb");
        return IniResult::Open;
    }
    value = UncPath::withTrailingSeparator(value);
    gstrDataPath = value;
    gstrDatabaseFile = value + QStringLiteral("tavello.mdb");
    if (!UncPath::isUnc(value)) {
        gstrMsg = QStringLiteral("The UNC path is missing from the tavello.ini file on the server. ") + CR +
                  QStringLiteral("Please select the File / DataPath menu item to ") + QStringLiteral("rectify this problem.");
        Msg::box(gstrMsg, Msg::Buttons::OK, Msg::Icon::Critical);
        return IniResult::DontOpen;
    }
    gstrDataPathUnc = value;
    const QString shutdown = IniFile::readKey(localFolder(gstrDataPath) + QStringLiteral("forceshutdown.ini"),
                                              QStringLiteral("ForceShutDown"), QStringLiteral("ForceShutDown"));
    gbolForceShutDown = shutdown == QLatin1String("True");
    gstrDataPathCopy = value;
    return IniResult::Open;
}

}  // namespace

QString localFolder(const QString &folder)
{
    const auto local = UncPath::toLocal(folder);
    if (!local)
        return QString();
    QString l = *local;
    if (!l.endsWith(QLatin1Char('/')))
        l += QLatin1Char('/');
    return l;
}

void setMainWindowUnloader(std::function<void()> unloader)
{
    mainWindowUnloader() = std::move(unloader);
}

void unloadMainWindow()
{
    if (mainWindowUnloader())
        mainWindowUnloader()();
    endProcess();
}

void InitializeLocalDatabase()
{
    const QString label = QStringLiteral("Admin - InitializeLocalDatabase event.");
    for (;;) {  // a repair after 3343 tries the whole open again from the ini
        if (readDataPath() == IniResult::DontOpen)
            return;
        try {
            gdbMain.close();
            gdbMain = Database::open(gstrDatabaseFile);
            return;
        } catch (const StoreError &e) {
            const QString title = gstrAppTitle + QStringLiteral(" - Database Error");
            switch (e.number()) {
            case err::DatabaseMissing:
                // A new site needs nothing but the folder.
                CreateDatabase(gstrDatabaseFile);
                return;
            case err::FileNotFound: {
                Msg::box(e.text() + CR + QStringLiteral("The database could not be found at the location") +
                             QStringLiteral(" specified in the tavello.ini file. "),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, title);
                frmDataPath dialog;
                Modal::show(&dialog);
                return;
            }
            case err::PathNotFound:
            case err::BadFileName:
                askForDataPath();
                return;
            case err::FileInUse:
            case err::PlacedInState:
            case err::OpenedExclusively:
                Msg::box(QStringLiteral("Error (") + QString::number(e.number()).trimmed() + QStringLiteral(" ) in ") +
                             label + CR + e.text() + CR +
                             QStringLiteral("Probable cause - Someone MAY have the database open using MS Access 2000."),
                         Msg::Buttons::OK);
                unloadMainWindow();
                return;
            case err::Damaged:
                Msg::box(e.text() + CR + QStringLiteral("The database is damaged and must be repaired. ") +
                             QStringLiteral(" Probable cause - someone switched off or crashed their") +
                             QStringLiteral(" PC whilst updating the database on the server."),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, title);
                unloadMainWindow();
                return;
            case err::NotThisStore: {
                Msg::box(e.text() + CR +
                             QStringLiteral("This error indicates an immediate database rebuild / repair is required. ") +
                             QStringLiteral("Please ensure all users are logged OUT, & press OK to begin the repair."),
                         Msg::Buttons::OK, Msg::Icon::Exclamation, title);
                gbolRepairDone = false;
                {
                    frmRepair dialog;
                    Modal::show(&dialog);
                }
                if (gbolRepairDone)
                    continue;
                Msg::box(QStringLiteral("Unable to continue. The database must be repaired first."), Msg::Buttons::OK,
                         Msg::Icon::Exclamation, title);
                unloadMainWindow();
                return;
            }
            default:
                Msg::box(QStringLiteral("Err: ") + QString::number(e.number()) + QStringLiteral(" - ") + e.text(),
                         Msg::Buttons::OK, Msg::Icon::Exclamation,
                         gstrAppTitle + QStringLiteral(" - Database Init Error"));
                unloadMainWindow();
                return;
            }
        }
    }
}

void subCheckDBVersionForConversion()
{
    if (gbolIsValidDatabase(gstrDataPath))
        return;

    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy MM dd hhmmss"));
    gbolCloseDatabaseNow = true;
    subCloseDatabase();
    const QString backupName = QStringLiteral("tavello2002or2003backup") + stamp + QStringLiteral(".mdb");
    const QString folder = localFolder(gstrDataPath);
    const QString title = gstrAppTitle + QStringLiteral(" Database Conversion.");
    if (folder.isEmpty() || !QFile::rename(folder + QStringLiteral("tavello.mdb"), folder + backupName)) {
        // Without the old file set aside nothing may be created over it.
        Msg::box(QStringLiteral("The old database ") + gstrDatabaseFile + QStringLiteral(" could not be renamed to ") +
                     backupName + QStringLiteral(". It has been left as it is; no new database was created."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, title);
        return;
    }
    CreateDatabase(gstrDataPath + QStringLiteral("tavello.mdb"));

    const int answer = Msg::box(
        QStringLiteral("Old (TAVELLO 2002/2003) database detected.") + CRLF + CRLF +
            QStringLiteral("Would you like to convert this old data to the new 2005 format database now ?") + CRLF + CRLF +
            QStringLiteral("     You can either:") + CRLF + CRLF +
            QStringLiteral("          1) Press Yes and have TAVELLO convert the data.") + CRLF + CRLF +
            QStringLiteral("      or 2) Press No to run TAVELLO Admin with a blank 2005 database."),
        Msg::Buttons::YesNo, Msg::Icon::Question, title);
    if (answer == Msg::Yes) {
        Msg::box(QStringLiteral("You have chosen to convert your data.") + CRLF + CRLF +
                     QStringLiteral("Admin will now run the conversion program.") + CRLF + CRLF +
                     QStringLiteral("Once convertsion has finished, Admin will restart."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, title);
        const QString converter = AppFolders::current().program + QStringLiteral("/tavello-convert");
        const QString argument = gstrDataPath + backupName + QStringLiteral("|") + gstrDataPath + QStringLiteral("tavello.mdb");
        if (QFileInfo(converter).isExecutable() && QProcess::startDetached(converter, {argument})) {
            unloadMainWindow();
            return;
        }
        Msg::box(QStringLiteral("The conversion program ") + converter +
                     QStringLiteral(" could not be started, so the old data has not been converted.") + CRLF + CRLF +
                     QStringLiteral("Admin will run on the blank 2005 database. The old data is kept in ") +
                     gstrDataPath + backupName + QStringLiteral("."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, title);
        return;
    }
    Msg::box(QStringLiteral("You've chosen NOT to convert your old data and just run Admin on a blank database."),
             Msg::Buttons::OK, Msg::Icon::Exclamation, title);
}

void subReadTransactionLogFlag()
{
    try {
        if (!gdbMain.isOpen())
            throw StoreError(err::ObjectClosed, QStringLiteral("Object invalid or no longer set."));
        Recordset rs = gdbMain.query(QStringLiteral("SELECT * FROM GlobalSettingsTable"));
        if (rs.eof())
            throw StoreError(3021, QStringLiteral("No current record."));
        gbolTransactionLog = rs.value(QStringLiteral("TransactionLogFlag")).toInt() != 0;
    } catch (const StoreError &) {
        Msg::box(QStringLiteral("The Global Settings Table appears to be missing or is damaged. Please run the DATABASE UPDATE utility to rectify this problem."));
    }
}

void subRefreshUserCount()
{
    try {
        if (gdbMain.isOpen())
            gintUserCount = gdbMain.scalar(QStringLiteral("SELECT COUNT(*) FROM EmployeeTable")).toInt();
    } catch (const StoreError &) {
        // The count panel keeps its last value while the file is busy.
    }
}
