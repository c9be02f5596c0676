#pragma once

#include <QProcess>
#include <QString>
#include <QTcpServer>
#include <QTemporaryDir>

namespace TestSupport {

// A throw-away site: a program folder and a share folder, the share mapped
// as \\TESTSRV\SHARE in the [Shares] section of the program's tavello.ini.
// Message boxes, file dialogs and modal dialogs are scripted while it lives;
// the process-wide values start fresh. Its update server, on the loopback,
// takes connections and never answers, so no test reaches the Internet.
class Site {
public:
    Site();
    ~Site();

    QString programFolder() const;        // local, no trailing separator
    QString shareFolder() const;          // local, no trailing separator
    QString shareUnc() const;             // "\\TESTSRV\SHARE\"
    QString local(const QString &relativeToShare) const;
    QString iniFile() const;              // program folder's tavello.ini

    // Points gstrDataPath (and gstrDatabaseFile) at the share.
    void useShareAsDataPath() const;

private:
    QTemporaryDir m_dir;
    QTcpServer m_silentUpdateServer;
};

// Puts every process-wide value back to its value at program start.
void resetGlobals();

// Another program on the same file: the sqlite3 shell, as a separate process.
class ExternalHolder {
public:
    enum class Hold { None, Read, Write, Exclusive };

    // Starts the shell on `localDbPath` and takes the hold: Read keeps a
    // read transaction open, Write an uncommitted write (run `writeSql`, or a
    // harmless one), Exclusive the whole file.
    ExternalHolder(const QString &localDbPath, Hold hold, const QString &writeSql = QString());
    ~ExternalHolder();

    // Runs statements in the shell and returns what it printed (stdout and
    // stderr), once they are done.
    QString run(const QString &sql);
    // Hands statements to the shell without waiting for them (one that waits
    // for a lock, say); what they print is read by the next run().
    void send(const QString &sql);
    void release();  // commits or rolls back what it holds: "COMMIT" or "ROLLBACK"
    void commit();
    bool started() const { return m_started; }

private:
    QProcess m_proc;
    bool m_started = false;
    bool m_holding = false;
};

// A file or folder that nobody may change, root included: chattr +i for
// root (where the file system has it), the write permission taken away for
// anyone else. Changeable again when it goes.
class Unchangeable {
public:
    explicit Unchangeable(const QString &path);
    ~Unchangeable();
    bool ok() const { return m_ok; }  // false: not possible here (skip)

private:
    QString m_path;
    bool m_ok = false;
    bool m_immutable = false;
};

}  // namespace TestSupport
