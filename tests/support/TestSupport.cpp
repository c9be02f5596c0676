#include "support/TestSupport.h"

#include "core/Global.h"
#include "platform/FileDialogs.h"
#include "platform/Hourglass.h"
#include "platform/IniFile.h"
#include "platform/LockWait.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "platform/UncPath.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <unistd.h>

namespace TestSupport {

void resetGlobals()
{
    gdbMain.close();
    gstrSql.clear();
    gstrMsg.clear();
    gstrAppPath.clear();
    gstrDataPath.clear();
    gstrDataPathUnc.clear();
    gstrDataPathCopy.clear();
    gstrDatabaseFile.clear();
    gstrAppTitle = appTitleFor(gstrReleaseVersion);
    gstrCommandLine.clear();
    gbolIniFound = false;
    gbolForceShutDown = false;
    gbolTransactionLog = false;
    gbolAutoCheckForUpdates = false;
    gstrLastSelectedNode.clear();
    gintCountryCode = 0;
    gintUserCount = 0;
    gbolCloseDatabaseNow = false;
    gintRealCloseCount = 0;
    gbolDataPathSaved = false;
    gbolRepairDone = false;
    gintAdminFontBold = 0;
    gintAdminFontSize = 8;
    gbolEnding = false;
    Hourglass::set(0);
    Msg::setDefaultTitle(gstrAppTitle);
}

Site::Site()
{
    resetGlobals();
    QDir(m_dir.path()).mkpath(QStringLiteral("program"));
    QDir(m_dir.path()).mkpath(QStringLiteral("share"));
    UncPath::setProgramFolder(programFolder());
    IniFile::writeKey(iniFile(), QStringLiteral("Shares"), QStringLiteral("\\\\TESTSRV\\SHARE"), shareFolder());
    m_silentUpdateServer.listen(QHostAddress::LocalHost);
    IniFile::writeKey(iniFile(), QStringLiteral("Update"), QStringLiteral("Server"),
                      QStringLiteral("http://127.0.0.1:%1").arg(m_silentUpdateServer.serverPort()));
    gstrAppPath = UncPath::withTrailingSeparator(UncPath::toUnc(programFolder()));
    Msg::setScripted(true);
    Msg::clearTranscript();
    FileDialogs::setScripted(true);
    FileDialogs::clearTranscript();
}

Site::~Site()
{
    resetGlobals();
    Modal::setHandler({});
    Msg::setWhileShown({});
    Store::setLockWait(Store::DefaultLockWaitMs);
    Msg::clearTranscript();
    FileDialogs::clearTranscript();
    UncPath::setProgramFolder(QString());
}

QString Site::programFolder() const { return m_dir.path() + QStringLiteral("/program"); }
QString Site::shareFolder() const { return m_dir.path() + QStringLiteral("/share"); }
QString Site::shareUnc() const { return QStringLiteral("\\\\TESTSRV\\SHARE\\"); }
QString Site::local(const QString &rel) const { return shareFolder() + QLatin1Char('/') + rel; }
QString Site::iniFile() const { return programFolder() + QStringLiteral("/tavello.ini"); }

void Site::useShareAsDataPath() const
{
    gstrDataPath = shareUnc();
    gstrDataPathUnc = gstrDataPath;
    gstrDataPathCopy = gstrDataPath;
    gstrDatabaseFile = gstrDataPath + QStringLiteral("tavello.mdb");
}

ExternalHolder::ExternalHolder(const QString &localDbPath, Hold hold, const QString &writeSql)
{
    m_proc.setProcessChannelMode(QProcess::MergedChannels);
    m_proc.start(QStringLiteral("sqlite3"), {QStringLiteral("-batch"), localDbPath});
    m_started = m_proc.waitForStarted(5000);
    if (!m_started)
        return;
    run(QStringLiteral(".timeout 5000"));
    switch (hold) {
    case Hold::None:
        break;
    case Hold::Read:
        run(QStringLiteral("BEGIN; SELECT count(*) FROM sqlite_master;"));
        m_holding = true;
        break;
    case Hold::Write:
        run(QStringLiteral("BEGIN IMMEDIATE;"));
        if (!writeSql.isEmpty())
            run(writeSql);
        m_holding = true;
        break;
    case Hold::Exclusive:
        run(QStringLiteral("BEGIN EXCLUSIVE;"));
        m_holding = true;
        break;
    }
}

ExternalHolder::~ExternalHolder()
{
    if (!m_started)
        return;
    release();
    m_proc.write(".quit\n");
    m_proc.closeWriteChannel();
    if (!m_proc.waitForFinished(5000))
        m_proc.kill();
}

QString ExternalHolder::run(const QString &sql)
{
    if (!m_started)
        return QString();
    static int serial = 0;
    const QByteArray marker = "__done_" + QByteArray::number(++serial) + "__";
    m_proc.write(sql.toUtf8() + "\n.print " + marker + "\n");
    QByteArray out;
    QElapsedTimer t;
    t.start();
    while (!out.contains(marker) && t.elapsed() < 20000) {
        m_proc.waitForReadyRead(100);
        out += m_proc.readAll();
    }
    out.replace(marker, "");
    return QString::fromUtf8(out).trimmed();
}

void ExternalHolder::send(const QString &sql)
{
    if (!m_started)
        return;
    m_proc.write(sql.toUtf8() + "\n");
    m_proc.waitForBytesWritten(5000);
}

void ExternalHolder::release()
{
    if (m_holding)
        run(QStringLiteral("ROLLBACK;"));
    m_holding = false;
}

void ExternalHolder::commit()
{
    if (m_holding)
        run(QStringLiteral("COMMIT;"));
    m_holding = false;
}

Unchangeable::Unchangeable(const QString &path) : m_path(path)
{
    if (::geteuid() == 0) {
        // Permission bits do not stop root; the immutable flag does.
        m_immutable = QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+i"), path}) == 0;
        m_ok = m_immutable;
        return;
    }
    const QFile::Permissions p = QFile::permissions(path);
    m_ok = QFile::setPermissions(path, p & ~(QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther));
}

Unchangeable::~Unchangeable()
{
    if (m_immutable)
        QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), m_path});
    else if (m_ok)
        QFile::setPermissions(m_path, QFile::permissions(m_path) | QFile::WriteOwner | QFile::WriteUser);
}

}  // namespace TestSupport
