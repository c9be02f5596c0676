#include "catalogues/ColumnPrompts.h"

#include "catalogues/ColumnStore.h"
#include "platform/MessageBox.h"
#include "platform/StoreError.h"

namespace ColumnPrompts {

bool askAfterRefusal(Change change, const QString &column, const QString &newName, const StoreError &e,
                     const QString &title)
{
    QString what, kept;
    switch (change) {
    case Change::Add:
        what = QStringLiteral("added");
        kept = QStringLiteral("Nothing has been added.");
        break;
    case Change::Rename:
        what = QStringLiteral("renamed to '") + newName + QLatin1Char('\'');
        kept = QStringLiteral("Its name and values are as they were.");
        break;
    case Change::Delete:
        what = QStringLiteral("deleted");
        kept = QStringLiteral("It has been left as it was, with its values.");
        break;
    }
    const QString head = QStringLiteral("Column '") + column + QStringLiteral("' could not be ") + what;
    if (Columns::inUse(e)) {
        return Msg::box(head + QStringLiteral(", because another program is reading or writing the board's database at "
                                              "this moment. Columns can only change while no other program is using "
                                              "the tables. ") +
                            kept + QStringLiteral("\r\n\r\nPress Retry to try again, or Cancel."),
                        Msg::Buttons::RetryCancel, Msg::Icon::Exclamation, QStringLiteral("Database In Use")) ==
               Msg::Retry;
    }
    const QString text = head + QStringLiteral(": ") + e.text() + QStringLiteral("\r\n\r\n") + kept;
    if (change == Change::Delete)
        return Msg::box(text + QStringLiteral(" Press Retry to try again, or Cancel."), Msg::Buttons::RetryCancel,
                        Msg::Icon::Critical, title) == Msg::Retry;
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Critical, title);
    return false;
}

}  // namespace ColumnPrompts
