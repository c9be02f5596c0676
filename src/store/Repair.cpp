#include "store/Repair.h"

#include "core/Global.h"
#include "platform/Compact.h"
#include "platform/Database.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "store/Counters.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <optional>

namespace {

const QString CR = QStringLiteral("\r");
const QString DatabaseName = QStringLiteral("tavello.mdb");
const QString Label = QStringLiteral("Admin - subCompactDatabase event.");
const QString DialogBackups = QStringLiteral("tavello-database-backup.");
const QString OneShotBackups = QStringLiteral("tavello.");

QString threeDigits(int n)
{
    return (QStringLiteral("000") + QString::number(n)).right(3);
}

QString folderOf(const QString &localFile)
{
    return QFileInfo(localFile).absolutePath() + QLatin1Char('/');
}

bool present(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

StoreError noRoom(const QString &name, const QString &why)
{
    return StoreError(err::PathFileAccess,
                      QStringLiteral("There is no room for a new backup: '%1' could not be %2. The repair was "
                                     "stopped before anything was copied; every backup is as it was.")
                          .arg(QFileInfo(name).fileName(), why));
}

// Ten generations: the oldest goes, the rest move one along; a missing
// generation is skipped. A generation that cannot make way stops it all
// (75) with every backup put back as it was, so that the new copy never
// lands on the newest one.
void rotateBackups(const QString &folder, const QString &prefix)
{
    const auto name = [&](int n) { return folder + prefix + threeDigits(n); };
    // The oldest waits under a hidden name until the others have moved, so
    // that it can be put back.
    const QString aside = folder + QLatin1Char('.') + prefix + threeDigits(9) + QStringLiteral(".leaving");
    if (present(aside) && !Compact::removeFile(aside))  // left by a run that was cut short
        throw noRoom(aside, QStringLiteral("removed"));
    bool setAside = false;
    if (present(name(9))) {
        if (QFileInfo(name(9)).isDir())
            throw noRoom(name(9), QStringLiteral("removed: it is a folder"));
        QFile oldest(name(9));
        if (!oldest.rename(aside))
            throw noRoom(name(9), QStringLiteral("removed (%1)").arg(oldest.errorString()));
        setAside = true;
    }
    QList<int> moved;
    for (int n = 8; n >= 0; --n) {
        if (!present(name(n)))
            continue;
        QFile generation(name(n));
        if (!generation.rename(name(n + 1))) {
            const StoreError failure =
                noRoom(name(n), QStringLiteral("moved to %1 (%2)").arg(prefix + threeDigits(n + 1), generation.errorString()));
            for (auto it = moved.crbegin(); it != moved.crend(); ++it)
                QFile::rename(name(*it + 1), name(*it));
            if (setAside)
                QFile::rename(aside, name(9));
            throw failure;
        }
        moved << n;
    }
    // Its name is free already; a file that could be renamed can be removed.
    if (setAside)
        Compact::removeFile(aside);
}

void pauseASecond()
{
    QThread::msleep(1000);
    yieldEvents();
}

// gdbMain back on the file after a failure; if even that fails the handle
// stays closed and the next routine's own open reports it.
void reopenQuietly()
{
    try {
        gdbMain = Database::open(gstrDataPath + DatabaseName);
    } catch (const StoreError &) {
    }
}

void dispatchFailure(const StoreError &e)
{
    gbolRepairDone = false;
    switch (e.number()) {
    case err::PathFileAccess:
    case err::FileInUse:
    case err::Damaged:
    case err::OpenedExclusively:
        Hourglass::set(0);
        Msg::box(QStringLiteral("Cannot complete the current operation due to the following error: (") +
                     QString::number(e.number()) + QStringLiteral(" ) ") + CR + e.text() + CR + CR +
                     QStringLiteral("Possible causes:") + CR +
                     QStringLiteral("Someone was updating their status at the exact moment you selected OK.") + CR +
                     QStringLiteral("Someone has the database open using MS Access.") + CR + CR +
                     QStringLiteral("NOTE: Having the Admin program running will NOT cause this error."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Repair/Compacting Error"));
        reopenQuietly();
        return;
    default:
        Msg::box(QStringLiteral("Error (") + QString::number(e.number()) + QStringLiteral(" ) in ") + Label + CR +
                 e.text());
        return;
    }
}

bool isDamaged(const StoreError &e)
{
    return e.number() == err::NotThisStore || e.number() == err::Damaged || e.number() == err::DamagedIndex;
}

// The file to ourselves from the copy to the end of the compaction. A file
// that cannot even be held (not a database at all) is still copied, byte
// for byte, before its failure is told.
class HeldFile {
public:
    void hold(const QString &local) { m_db = Compact::holdFile(local); }

    void holdIfPossible(const QString &local)
    {
        if (m_db || m_unreadable)
            return;
        try {
            hold(local);
        } catch (const StoreError &e) {
            if (!isDamaged(e))
                throw;
            m_unreadable = e;
        }
    }

    void copyAndCompact(const QString &local, const QString &backup)
    {
        if (m_db) {
            Compact::compactHeld(std::move(m_db), backup);
            return;
        }
        Compact::copyFile(local, backup);
        throw m_unreadable.value_or(StoreError(err::NotThisStore, QStringLiteral("Unrecognized database format.")));
    }

    void release() { m_db.reset(); }

private:
    Compact::Connection m_db;
    std::optional<StoreError> m_unreadable;
};

// The copy of the untouched file and the compaction. The copy gets three
// tries a second apart when the folder refuses it; a failed copy leaves the
// file untouched, and let go: each new try holds it again.
void copyAndCompactWithRetries(HeldFile &held, const QString &local, const QString &backup)
{
    for (int tries = 0;;) {
        try {
            if (tries > 0)
                held.holdIfPossible(local);
            held.copyAndCompact(local, backup);
            return;
        } catch (const StoreError &e) {
            if (e.number() != err::PathFileAccess || ++tries >= 3)
                throw;
            pauseASecond();
        }
    }
}

struct RunningFlag {
    bool &flag;
    explicit RunningFlag(bool &f) : flag(f) { flag = true; }
    ~RunningFlag() { flag = false; }
};

}  // namespace

void subResetActiveFlags(Database &db)
{
    const QString table = QStringLiteral("EmployeeTable");
    const QString field = QStringLiteral("ActiveFlag");
    Recordset rs = db.openTable(table, field + QStringLiteral(" = ?"), {QStringLiteral("Yes")});
    // With nobody active there is nothing to do. (A row of defaults added
    // here would be refused by a Guest, or become a user with no settings.)
    if (rs.eof())
        return;
    // The old engine gathered edits made outside a transaction and wrote
    // them out together; one commit for the whole walk does the same, instead
    // of a flush to disk for every active user.
    db.beginTrans();
    try {
        for (; !rs.eof(); rs.moveNext())
            rs.edit({{field, QStringLiteral("No")}});
        db.commitTrans();
    } catch (...) {
        db.rollback();
        throw;
    }
    rs.close();
}

void subCompactDatabase()
{
    // The pauses let events run; a second press of OK meanwhile must not start another run.
    static bool running = false;
    if (running)
        return;
    const RunningFlag guard(running);

    gbolRepairDone = false;
    gdbMain.close();

    const QString path = gstrDataPath + DatabaseName;
    QString local;
    try {
        local = Store::resolvePath(path);
    } catch (const StoreError &e) {
        dispatchFailure(e);
        return;
    }
    const QString folder = folderOf(local);

    // Get the file alone: three tries, a second apart. A damaged file cannot
    // be held as usual, and waiting does not mend it.
    HeldFile held;
    bool damaged = false;
    for (int tries = 0;;) {
        try {
            held.hold(local);
            break;
        } catch (const StoreError &e) {
            if (isDamaged(e)) {
                damaged = true;
                break;
            }
            if (++tries >= 3) {
                dispatchFailure(e);
                return;
            }
            pauseASecond();
        }
    }

    for (;;) {
        try {
            rotateBackups(folder, DialogBackups);
            if (damaged)
                held.holdIfPossible(local);
            copyAndCompactWithRetries(held, local, folder + DialogBackups + threeDigits(0));
            held.release();
            gdbMain = Database::open(path);
            gbolRepairDone = true;
            subResetActiveFlags(gdbMain);
            return;
        } catch (const StoreError &e) {
            held.release();
            // A file that turns out not to be readable as usual takes the
            // damaged route, once; met again there, it is a plain failure.
            if (e.number() == err::NotThisStore && !damaged) {
                damaged = true;
                continue;
            }
            dispatchFailure(e);
            return;
        }
    }
}

bool subOneShotRepair(const QString &commandLine)
{
    if (commandLine.trimmed().toUpper() != QLatin1String("REPAIR"))
        return false;

    const QString path = gstrDataPath + DatabaseName;
    bool compacted = false;
    try {
        gdbMain.close();
        Database::open(path).close();  // the file can be got at

        const QString local = Store::resolvePath(path);
        const QString folder = folderOf(local);
        rotateBackups(folder, OneShotBackups);

        Compact::compactHeld(Compact::holdFile(local), folder + OneShotBackups + threeDigits(0));
        gdbMain = Database::open(path);
        compacted = true;
        subWriteTransactionLog(gdbMain, QStringLiteral("REPAIR SUCCESSFUL"));
    } catch (const StoreError &e) {
        if (compacted)
            return true;  // only the log line failed; there is nobody to tell
        Hourglass::set(0);
        try {
            gdbMain = Database::open(path);
            // Status holds 250 characters; a longer engine text would lose the entry.
            subWriteTransactionLog(gdbMain, (QStringLiteral("REPAIR FAILED. ") + e.text()).left(250));
        } catch (const StoreError &) {
        }
    }
    return true;
}
