#pragma once

#include <QString>
#include <QStringList>
#include <QValidator>
#include <QVector>

#include <functional>

class Database;
class QDialog;
class QLineEdit;
class QListWidget;
class StoreError;

// What the catalogue windows share: the typing rule of their name fields,
// the selection they are opened on, and the way their writes meet a store
// that other programs use at the same time.
namespace Catalogues {

using Step = std::function<void()>;
// Answers a failed statement: true runs it again, false gives up.
using Ask = std::function<bool(const StoreError &error)>;

// The names are joined into statements by the user programs between double
// quotes, so a double quote typed into a name costs a beep, a warning and
// the last character of the text (the last one, wherever the quote went).
// True when the text was refused; the field then holds the shortened text.
bool refuseDoubleQuote(QLineEdit *field, const QString &text, const QString &warning, const QString &title);

// Refuses what is in `field`: the box, then the whole text selected and focused.
void refuse(QLineEdit *field, const QString &text, const QString &title, int icon);

// Texts of the rows selected in the console's list, from the first to the last.
QStringList selectedListRows();

// A delete window shown with nothing in its list closes itself at once.
void closeIfEmpty(QDialog *dialog, const QListWidget *list);

// Entries of a delete list that are not empty, in their order.
QStringList listedEntries(const QListWidget *list);

// Holds what is typed into a field to `limit` characters. A longer text that
// the program puts there through put() stays whole, and typing may shorten
// it but not lengthen it.
class TypedLimit : public QValidator {
public:
    TypedLimit(QLineEdit *field, int limit);
    State validate(QString &input, int &pos) const override;

    // Sets the field's text as the program's, past the limit if need be.
    static void put(QLineEdit *field, const QString &text);

private:
    int m_limit;
    bool m_putting = false;
    QString m_accepted;  // the text as it stood before the edit being checked
};

// Runs `step` until it succeeds or `ask` gives up. True when it succeeded.
bool retrying(const Step &step, const Ask &ask);

// Runs `steps` as one transaction. A failing statement asks: Retry runs that
// statement again, giving up rolls back the whole. True when committed.
bool inOneTransaction(Database &db, const QVector<Step> &steps, const Ask &ask);

// A batch of deletions, each entry all or nothing, the whole batch written
// by a single commit: one write of the file for a hundred entries as for
// one. Each entry runs in a savepoint of the batch's transaction, which
// opens with the first entry. A failing statement asks about its entry:
// Retry runs that statement again, giving up undoes that entry alone and the
// batch goes on. A commit refused at the end asks about the last entry still
// in it: giving up undoes that one and the rest are committed.
class DeletionBatch {
public:
    using AskEntry = std::function<bool(const QString &entry, const StoreError &error)>;

    DeletionBatch(Database &db, AskEntry ask);
    ~DeletionBatch();  // whatever was not committed is rolled back
    DeletionBatch(const DeletionBatch &) = delete;
    DeletionBatch &operator=(const DeletionBatch &) = delete;

    // True when the entry's steps all ran.
    bool run(const QString &entry, const QVector<Step> &steps);
    // Runs `last` (the change counter) in the batch's transaction, or on its
    // own when no entry opened one, and commits. With `always` false, `last`
    // runs only when an entry is written. Returns the entries written.
    QStringList finish(const Step &last, bool always = true);

private:
    struct Pending {
        QString entry;
        QString savepoint;
    };
    bool attempt(const QString &entry, const Step &step);
    void undo(const QString &savepoint);

    Database &m_db;
    AskEntry m_ask;
    QVector<Pending> m_pending;
    int m_serial = 0;
};

}  // namespace Catalogues
