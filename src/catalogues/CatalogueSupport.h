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

// A batch of deletions written by a single commit: one write of the file
// for a hundred entries as for one. When a statement or the commit fails,
// the whole transaction is rolled back before the entry it failed on is
// asked about (a failed commit asks about the last entry), so no lock stays
// on the file while the box waits: Retry runs the batch again, giving up
// leaves that entry out and runs the batch again without it.
class DeletionBatch {
public:
    using AskEntry = std::function<bool(const QString &entry, const StoreError &error)>;

    DeletionBatch(Database &db, AskEntry ask);

    // An entry of the batch; its steps run when the batch is finished.
    void add(const QString &entry, const QVector<Step> &steps);
    // Runs the entries and `last` (the change counter) in one transaction
    // and commits. With `always` false nothing runs once no entry is left.
    // Returns the entries written.
    QStringList finish(const Step &last, bool always = true);

private:
    struct Entry {
        QString name;
        QVector<Step> steps;
    };
    Database &m_db;
    AskEntry m_ask;
    QVector<Entry> m_entries;
};

}  // namespace Catalogues
