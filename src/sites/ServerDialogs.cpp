#include "sites/ServerDialogs.h"

#include "core/ERRORS.h"
#include "core/Global.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBox.h"
#include "platform/Transaction.h"
#include "platform/UncPath.h"
#include "sites/SiteStore.h"

#include <QLineEdit>

namespace Sites {

bool uncFormAccepted(QLineEdit *field, const QString &path, Wording wording)
{
    const QString quote = QStringLiteral("\"");
    const bool add = wording == Wording::Add;
    QString text;
    if (path.size() < 2 || path[0] != QLatin1Char('\\') || path[1] != QLatin1Char('\\'))
        text = add ? QStringLiteral("You have not entered a valid UNC path. A UNC path must begin with ") + quote +
                         QStringLiteral(" \\\\ ") + quote
                   : QStringLiteral("You have not entered in a valid UNC path. A UNC path must begin with ") + quote +
                         QStringLiteral(" \\\\ ") + quote + QStringLiteral(" (double backslash).");
    else if (!path.endsWith(QLatin1Char('\\')))
        text = add ? QStringLiteral("You have not entered a valid UNC path. A UNC path must end with ") + quote +
                         QStringLiteral(" \\ ") + quote
                   : QStringLiteral("You have not entered in a valid UNC path. A UNC path must end with ") + quote +
                         QStringLiteral(" \\ ") + quote + QStringLiteral(" (backslash).");
    if (text.isEmpty())
        return true;
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - Invalid UNC"));
    field->setFocus();
    field->selectAll();
    return false;
}

bool remoteDatabaseOpens(const QString &path)
{
    if (!testOpen(path + DatabaseName))
        return true;
    Msg::box(QStringLiteral("Cannot locate a valid TAVELLO database at the UNC path specified. The path may be invalid "
                            "or the remote location may be currently unavailable."),
             Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - No remote database."));
    return false;
}

QString browseForSite(QWidget *parent, const QString &filter, const QString &initialFolder,
                      const std::function<void(const QString &folder)> &notUnc)
{
    QString file = FileDialogs::openFile(parent, QStringLiteral("Locate TAVELLO Databases"), filter, initialFolder);
    if (file.isEmpty())
        return QString();  // cancelled
    // A file under a mounted share is known by its UNC name on every machine.
    file = UncPath::toUnc(file);
    if (!file.toUpper().endsWith(DatabaseName.toUpper())) {
        Msg::box(QStringLiteral("Invalid database file selected"), Msg::Buttons::OK, Msg::Icon::Exclamation,
                 QStringLiteral("tavello.mdb Not Found"));
        return QString();
    }
    const QString folder = file.left(file.size() - DatabaseName.size());
    if (!folder.startsWith(QLatin1String("\\\\"))) {
        notUnc(folder);
        return QString();
    }
    return folder;
}

bool writeWithRetry(const std::function<void()> &change)
{
    return Store::inTransaction(gdbMain, change, [](const StoreError &e) {
        return gintHandleUpdateError(e.number(), e.text()) == RetryStatement;
    });
}

}  // namespace Sites
