#include "console/DialogRegistry.h"

#include "catalogues/CatalogueWindows.h"
#include "console/about.h"
#include "console/frmAdminOptions.h"
#include "core/frmDataPath.h"
#include "groups/frmAddGroup.h"
#include "groups/frmDeleteGroup.h"
#include "groups/frmModGroup.h"
#include "messages/frmDeleteMessages.h"
#include "messages/frmMsgsPreview.h"
#include "import/frmImport01.h"
#include "import/frmImportErrors.h"
#include "logs/frmPrint.h"
#include "logs/frmTransLog.h"
#include "platform/Modal.h"
#include "settings/UpdateCheck.h"
#include "settings/frmAutoCheckForUpdates.h"
#include "settings/frmCompany.h"
#include "settings/frmForceShutdown.h"
#include "settings/frmGlobalSettings.h"
#include "settings/frmPhotoPath.h"
#include "settings/frmSecurity.h"
#include "sites/frmAddServer.h"
#include "sites/frmAutoSync.h"
#include "sites/frmDeleteServer.h"
#include "sites/frmModServer.h"
#include "store/frmRepair.h"
#include "users/frmAddUser.h"
#include "users/frmDeleteUser.h"
#include "users/frmModUser.h"
#include "users/frmNewUser.h"

#include <QDialog>
#include <QHash>
#include <memory>

namespace {

struct Registry {
    QHash<QString, DialogRegistry::Factory> windows;
    QHash<QString, DialogRegistry::Command> commands;
};

Registry &registry()
{
    static Registry r;
    return r;
}

template <class Window>
QDialog *make(QWidget *parent)
{
    auto *w = new Window;
    if (parent)
        w->setParent(parent, w->windowFlags() | Qt::Dialog);
    return w;
}

}  // namespace

namespace DialogRegistry {

void add(const QString &name, Factory f) { registry().windows.insert(name, std::move(f)); }
void addCommand(const QString &name, Command c) { registry().commands.insert(name, std::move(c)); }

void remove(const QString &name)
{
    registry().windows.remove(name);
    registry().commands.remove(name);
}

bool available(const QString &name)
{
    return !name.isEmpty() && (registry().windows.contains(name) || registry().commands.contains(name));
}

QStringList names()
{
    QStringList out = registry().windows.keys();
    out += registry().commands.keys();
    out.sort();
    return out;
}

QDialog *create(const QString &name, QWidget *parent)
{
    const auto it = registry().windows.constFind(name);
    if (it == registry().windows.constEnd())
        return nullptr;
    return (*it)(parent);
}

bool showModal(const QString &name, QWidget *parent)
{
    std::unique_ptr<QDialog> dialog(create(name, parent));
    if (!dialog)
        return false;
    Modal::show(dialog.get());
    return true;
}

bool run(const QString &name)
{
    const auto it = registry().commands.constFind(name);
    if (it == registry().commands.constEnd())
        return false;
    (*it)();
    return true;
}

void registerAvailableWindows()
{
    add(QStringLiteral("frmRepair"), make<frmRepair>);
    add(QStringLiteral("frmDataPath"), make<frmDataPath>);
    add(QStringLiteral("frmAdminOptions"), make<frmAdminOptions>);
    add(QStringLiteral("about"), make<about>);
    add(QStringLiteral("frmAddUser"), make<frmAddUser>);
    add(QStringLiteral("frmDeleteUser"), make<frmDeleteUser>);
    add(QStringLiteral("frmNewUser"), make<frmNewUser>);
    add(QStringLiteral("frmModUser"), make<frmModUser>);
    add(QStringLiteral("frmAddGroup"), make<frmAddGroup>);
    add(QStringLiteral("frmModGroup"), make<frmModGroup>);
    add(QStringLiteral("frmDeleteGroup"), make<frmDeleteGroup>);
    add(QStringLiteral("frmAddServer"), make<frmAddServer>);
    add(QStringLiteral("frmModServer"), make<frmModServer>);
    add(QStringLiteral("frmDeleteServer"), make<frmDeleteServer>);
    add(QStringLiteral("frmAutoSync"), make<frmAutoSync>);
    registerCatalogueWindows();
    add(QStringLiteral("frmDeleteMessages"), make<frmDeleteMessages>);
    add(QStringLiteral("frmMsgsPreview"), make<frmMsgsPreview>);
    add(QStringLiteral("frmGlobalSettings"), make<frmGlobalSettings>);
    add(QStringLiteral("frmSecurity"), make<frmSecurity>);
    add(QStringLiteral("frmForceShutdown"), make<frmForceShutdown>);
    add(QStringLiteral("frmCompany"), make<frmCompany>);
    add(QStringLiteral("frmPhotoPath"), make<frmPhotoPath>);
    add(QStringLiteral("frmAutoCheckForUpdates"), make<frmAutoCheckForUpdates>);
    addCommand(QStringLiteral("CheckForUpdates"), [] { UpdateCheck::mnuCheckForUpdates_Click(); });
    add(QStringLiteral("frmImport01"), make<frmImport01>);
    add(QStringLiteral("frmImportErrors"), make<frmImportErrors>);
    add(QStringLiteral("frmTransLog"), make<frmTransLog>);
    add(QStringLiteral("frmPrint"), make<frmPrint>);
}

QString dialogFor(Verb verb, const QString &kind)
{
    // The kinds' short names as the windows are called.
    static const QHash<QString, QString> stem = {
        {QStringLiteral("Users"), QStringLiteral("User")},
        {QStringLiteral("Groups"), QStringLiteral("Group")},
        {QStringLiteral("Status Types"), QStringLiteral("Status")},
        {QStringLiteral("DueBack Types"), QStringLiteral("DueBack")},
        {QStringLiteral("Servers"), QStringLiteral("Server")},
        {QStringLiteral("Columns"), QStringLiteral("Column")},
    };
    switch (verb) {
    case Verb::Add:
        return stem.contains(kind) ? QStringLiteral("frmAdd") + stem.value(kind) : QString();
    case Verb::Modify:
        return stem.contains(kind) ? QStringLiteral("frmMod") + stem.value(kind) : QString();
    case Verb::Delete:
        if (kind == QLatin1String("Messages"))
            return QStringLiteral("frmDeleteMessages");
        return stem.contains(kind) ? QStringLiteral("frmDelete") + stem.value(kind) : QString();
    }
    return QString();
}

}  // namespace DialogRegistry
