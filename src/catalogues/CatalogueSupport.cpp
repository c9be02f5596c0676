#include "catalogues/CatalogueSupport.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

namespace Catalogues {

bool refuseDoubleQuote(QLineEdit *field, const QString &text, const QString &warning, const QString &title)
{
    if (!text.contains(QLatin1Char('"')))
        return false;
    QApplication::beep();
    Msg::box(warning, Msg::Buttons::OK, Msg::Icon::Exclamation, title);
    // The shorter text comes round through this rule again, so a quote
    // typed in the middle keeps costing characters until it is gone.
    field->setText(text.chopped(1));
    field->setCursorPosition(int(field->text().size()));
    field->setFocus();
    return true;
}

void refuse(QLineEdit *field, const QString &text, const QString &title, int icon)
{
    Msg::box(text, Msg::Buttons::OK, static_cast<Msg::Icon>(icon), title);
    field->selectAll();
    field->setFocus();
}

QStringList selectedListRows()
{
    QStringList rows;
    if (const frmMain *main = frmMain::instance()) {
        const AdminListView *list = main->ListViewMain();
        for (int row = 0; row < list->list()->count(); ++row)
            if (list->isSelected(row))
                rows << list->list()->text(row);
    }
    return rows;
}

void closeIfEmpty(QDialog *dialog, const QListWidget *list)
{
    if (list->count() == 0)
        QTimer::singleShot(0, dialog, &QDialog::reject);
}

QStringList listedEntries(const QListWidget *list)
{
    QStringList entries;
    for (int i = 0; i < list->count(); ++i)
        if (!list->item(i)->text().isEmpty())
            entries << list->item(i)->text();
    return entries;
}

// ------------------------------------------------------------ TypedLimit

TypedLimit::TypedLimit(QLineEdit *field, int limit) : QValidator(field), m_limit(limit), m_accepted(field->text())
{
    field->setValidator(this);
    QObject::connect(field, &QLineEdit::textChanged, this, [this](const QString &text) { m_accepted = text; });
}

QValidator::State TypedLimit::validate(QString &input, int &) const
{
    if (m_putting || input.size() <= m_limit || input.size() < m_accepted.size())
        return Acceptable;
    return Invalid;
}

void TypedLimit::put(QLineEdit *field, const QString &text)
{
    auto *limit = dynamic_cast<TypedLimit *>(const_cast<QValidator *>(field->validator()));
    if (limit)
        limit->m_putting = true;
    field->setText(text);
    if (limit)
        limit->m_putting = false;
}

// ------------------------------------------------------ store statements

bool retrying(const Step &step, const Ask &ask)
{
    for (;;) {
        try {
            step();
            return true;
        } catch (const StoreError &e) {
            if (!ask(e))
                return false;
        }
    }
}

bool inOneTransaction(Database &db, const QVector<Step> &steps, const Ask &ask)
{
    if (!retrying([&] { db.beginTrans(); }, ask))
        return false;
    for (const Step &step : steps) {
        if (!retrying(step, ask)) {
            db.rollback();
            return false;
        }
    }
    if (!retrying([&] { db.commitTrans(); }, ask)) {
        db.rollback();
        return false;
    }
    return true;
}

DeletionBatch::DeletionBatch(Database &db, AskEntry ask) : m_db(db), m_ask(std::move(ask)) {}

DeletionBatch::~DeletionBatch()
{
    if (m_db.inTransaction())
        m_db.rollback();
}

bool DeletionBatch::attempt(const QString &entry, const Step &step)
{
    return retrying(step, [&](const StoreError &e) { return m_ask(entry, e); });
}

void DeletionBatch::undo(const QString &savepoint)
{
    // A failure here leaves the entry half undone: it goes on as a failure
    // of the whole batch, which the destructor rolls back.
    m_db.execute(QStringLiteral("ROLLBACK TO ") + savepoint);
    m_db.execute(QStringLiteral("RELEASE ") + savepoint);
}

bool DeletionBatch::run(const QString &entry, const QVector<Step> &steps)
{
    if (!m_db.inTransaction() && !attempt(entry, [this] { m_db.beginTrans(); }))
        return false;
    const QString savepoint = QStringLiteral("entry%1").arg(++m_serial);
    if (!attempt(entry, [&] { m_db.execute(QStringLiteral("SAVEPOINT ") + savepoint); }))
        return false;
    for (const Step &step : steps) {
        if (!attempt(entry, step)) {
            undo(savepoint);
            return false;
        }
    }
    m_pending.append({entry, savepoint});
    return true;
}

QStringList DeletionBatch::finish(const Step &last, bool always)
{
    const auto nothingToTell = [&] { return m_pending.isEmpty() && !always; };
    if (!m_db.inTransaction()) {
        if (!nothingToTell())
            last();
        return {};
    }
    if (nothingToTell()) {
        m_db.rollback();
        return {};
    }
    last();  // a failure here is the batch's: the destructor rolls it back
    for (;;) {
        try {
            m_db.commitTrans();
            break;
        } catch (const StoreError &e) {
            if (m_pending.isEmpty())
                throw;
            if (m_ask(m_pending.last().entry, e))
                continue;
            // Undoing the entry undoes what followed it too: `last` again.
            undo(m_pending.last().savepoint);
            m_pending.removeLast();
            if (nothingToTell()) {
                m_db.rollback();
                return {};
            }
            last();
        }
    }
    QStringList written;
    for (const Pending &p : m_pending)
        written << p.entry;
    m_pending.clear();
    return written;
}

}  // namespace Catalogues
