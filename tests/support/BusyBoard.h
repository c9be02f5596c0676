#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace TestSupport {

// A board in use while a test drives the console: user programs as real
// processes on the same file, at a person's pace. Writers change their own
// user row, add a log row and raise the counter every 10 to 50 ms, reading
// the board between; readers read every 10 to 30 ms; a holder now and then
// takes the whole file to itself for one to two seconds.
class BusyBoard {
public:
    struct Pace {
        int writers = 3;
        int readers = 2;
        bool holds = true;
        int holdMinMs = 1000;
        int holdMaxMs = 2000;
        int holdEveryMs = 4000;
        // How long a user program waits for a lock before its read or
        // write is refused.
        int patienceMs = 5000;
    };

    // What the programs saw, once stopped.
    struct Report {
        int committed = 0;        // writes the writers saw committed
        QStringList lost;         // committed writes no longer on the board
        QStringList lockedOut;    // reads refused after a program's whole patience
        QStringList refused;      // writes refused (rolled back by their writer)
        int holds = 0;            // exclusive holds that ran
    };

    // Adds the writers' users to the board at `localDbPath` and starts the programs.
    explicit BusyBoard(const QString &localDbPath);
    BusyBoard(const QString &localDbPath, const Pace &pace);
    ~BusyBoard();
    BusyBoard(const BusyBoard &) = delete;
    BusyBoard &operator=(const BusyBoard &) = delete;

    static QString writerName(int i);  // "Busy Writer 1", ...
    QStringList writerNames() const;

    // Stops every program and checks the board against what they saw.
    Report stop();

    // Whether a fresh program reads the board within `ms`, now.
    bool readPasses(int ms) const;
    static bool readPasses(const QString &localDbPath, int ms);

    // Every row of `table` as text, ordered, leaving out the rows whose
    // `nameField` is a writer's: what the console must leave alone.
    QStringList rowsBesideWriters(const QString &table, const QString &nameField = QStringLiteral("Name")) const;

private:
    void start(const QString &role, const QStringList &args);

    QString m_path;
    Pace m_pace;
    std::vector<std::unique_ptr<QProcess>> m_programs;
    std::vector<QString> m_roles;  // the writer's name, or "reader" / "holder"
    bool m_stopped = false;
};

}  // namespace TestSupport
