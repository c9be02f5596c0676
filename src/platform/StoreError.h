#pragma once

#include <QString>
#include <QByteArray>
#include <exception>

// Failure numbers the console's logic dispatches on. They keep the numbers
// the board's database engine has always reported, so every routine tests
// the same conditions whichever store stands behind it.
namespace err {
constexpr int FileNotFound = 53;       // plain file missing (outside the store)
constexpr int PermissionDenied = 70;   // plain file: permission denied / in use
constexpr int PathFileAccess = 75;     // rename or delete of a file failed
constexpr int DuplicateKey = 3022;     // unique index or primary key refused a value
constexpr int DatabaseMissing = 3024;  // database file does not exist
constexpr int PathNotFound = 3044;     // folder missing or unreachable (also unresolvable UNC)
constexpr int FileInUse = 3045;        // held exclusively by another program
constexpr int Damaged = 3049;          // damaged file
constexpr int CannotLock = 3050;       // cannot be locked right now
constexpr int CannotOpenFile = 3051;   // permission denied on the database file
constexpr int BadFileName = 3055;      // not a valid file name
constexpr int RowDeleted = 3167;       // row deleted by someone else
constexpr int AlreadyExists = 3204;    // create over an existing file
constexpr int RowLocked = 3260;        // row or table locked by another program
constexpr int NotThisStore = 3343;     // not a database of this store
constexpr int OpenedExclusively = 3356;
constexpr int ObjectClosed = 3420;     // handle used after close
constexpr int DamagedIndex = 3709;
constexpr int PlacedInState = 3734;    // another program holds the file in a state that prevents opening
}  // namespace err

class StoreError : public std::exception {
public:
    StoreError(int number, QString text);

    int number() const { return m_number; }
    const QString &text() const { return m_text; }
    const char *what() const noexcept override { return m_what.constData(); }

    // 3045, 3734 and 3356 all say: another program has the file to itself.
    bool heldExclusively() const;

private:
    int m_number;
    QString m_text;
    QByteArray m_what;
};
