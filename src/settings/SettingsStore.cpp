#include "settings/SettingsStore.h"

#include "core/Admin1.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/IniFile.h"
#include "platform/UncPath.h"
#include "store/Counters.h"

#include <QFileInfo>

namespace Settings {

namespace {

const QString GlobalSettingsTable = QStringLiteral("GlobalSettingsTable");

}  // namespace

QString trimBlanks(const QString &text)
{
    qsizetype b = 0, e = text.size();
    while (b < e && text[b] == QLatin1Char(' '))
        ++b;
    while (e > b && text[e - 1] == QLatin1Char(' '))
        --e;
    return text.mid(b, e - b);
}

void ensureGlobalSettingsRow(Database &db)
{
    if (db.scalar(QStringLiteral("SELECT count(*) FROM GlobalSettingsTable")).toLongLong() == 0)
        db.addRow(GlobalSettingsTable);
}

void saveGlobalRules(Database &db, const GlobalRules &r)
{
    ensureGlobalSettingsRow(db);
    QString sql = QStringLiteral("UPDATE GlobalSettingsTable SET ");
    QVariantList params;
    if (r.logoPosition) {
        sql += QStringLiteral("LogoPosition = ?, ");
        params << *r.logoPosition;
    }
    sql += QStringLiteral("AllowStatusAlerts = ?, AllowMessaging = ?, AllowPresenceSensing = ?, "
                          "UpdateStatusOnLock = ?, AllowUserToAddTavelloToStartupFolder = ?");
    params << int(r.allowStatusAlerts) << int(r.allowMessaging) << int(r.allowPresenceSensing)
           << int(r.updateStatusOnLock) << int(r.allowUserToAddTavelloToStartupFolder);
    db.execute(sql, params);
}

void saveSecurityLevel(Database &db, std::optional<int> level)
{
    ensureGlobalSettingsRow(db);
    if (level)
        db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET SystemSecurityLevel = ?"), {*level});
    raiseCounterField(db, QStringLiteral("SecurityCounter"));
}

QString companyInfoAsStored(const QString &typed)
{
    QString text = trimBlanks(typed);
    text.replace(QLatin1Char('"'), QLatin1Char('\''));
    return text;
}

void saveCompanyInfo(Database &db, const QString &typed)
{
    const QString text = companyInfoAsStored(typed);
    ensureGlobalSettingsRow(db);
    db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET CompanyInfo = ?"),
               {text.isEmpty() ? QVariant() : QVariant(text)});
}

QString readCompanyInfo(Database &db)
{
    Recordset rs = db.query(QStringLiteral("SELECT CompanyInfo FROM GlobalSettingsTable"));
    if (rs.eof())
        return QString();
    return trimBlanks(rs.text(QStringLiteral("CompanyInfo")));
}

QString readPhotoPath(Database &db)
{
    Recordset rs = db.query(QStringLiteral("SELECT PhotoPath FROM GlobalSettingsTable"));
    if (rs.eof())
        return QString();
    return trimBlanks(rs.text(QStringLiteral("PhotoPath")));
}

void savePhotoPath(Database &db, const QString &path)
{
    ensureGlobalSettingsRow(db);
    db.execute(QStringLiteral("UPDATE GlobalSettingsTable SET PhotoPath = ?"),
               {path.isEmpty() ? QStringLiteral(" ") : path});
}

bool folderExists(const QString &folder)
{
    const auto local = UncPath::toLocal(folder);
    if (!local || local->isEmpty())
        return false;
    const QFileInfo info(*local);
    return info.isDir() && info.isExecutable();
}

void saveAutoCheckForUpdates(Database &db, bool on)
{
    if (db.scalar(QStringLiteral("SELECT count(*) FROM AdminSettingsTable")).toLongLong() == 0)
        db.addRow(QStringLiteral("AdminSettingsTable"));
    db.execute(QStringLiteral("UPDATE AdminSettingsTable SET AutoCheckForUpdates = ?"), {on ? 1 : 0});
}

QString forceShutdownFile()
{
    if (gstrDataPath.isEmpty())
        return QString();
    const QString folder = localFolder(gstrDataPath);
    if (folder.isEmpty())
        return QString();
    return folder + QStringLiteral("forceshutdown.ini");
}

void writeForceShutdown(bool on)
{
    const QString file = forceShutdownFile();
    if (file.isEmpty())
        return;
    IniFile::writeKey(file, QStringLiteral("ForceShutDown"), QStringLiteral("ForceShutDown"),
                      on ? QStringLiteral("True") : QStringLiteral("False"));
}

}  // namespace Settings
