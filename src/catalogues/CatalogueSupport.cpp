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

// ------------------------------------------------------ deletion batch

DeletionBatch::DeletionBatch(Database &db, AskEntry ask) : m_db(db), m_ask(std::move(ask)) {}

void DeletionBatch::add(const QString &entry, const QVector<Step> &steps) { m_entries.append({entry, steps}); }

QStringList DeletionBatch::finish(const Step &last, bool always)
{
    QVector<Entry> entries = m_entries;
    for (;;) {
        if (entries.isEmpty() && !always)
            return {};
        qsizetype at = 0;  // the entry a failure is asked about
        try {
            m_db.beginTrans();
            for (qsizetype i = 0; i < entries.size(); ++i) {
                at = i;
                for (const Step &step : entries[i].steps)
                    step();
            }
            at = entries.size() - 1;
            last();
            m_db.commitTrans();
            QStringList written;
            for (const Entry &e : entries)
                written << e.name;
            return written;
        } catch (const StoreError &e) {
            m_db.rollback();
            if (entries.isEmpty())
                throw;  // nothing of the administrator's to ask about: the batch's own failure
            if (!m_ask(entries[at].name, e))
                entries.remove(at);
        }
    }
}

}  // namespace Catalogues
