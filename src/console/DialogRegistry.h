#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QDialog;
class QWidget;

// The windows the console can open, by their names ("frmAddUser", "about").
// The main window's menus, toolbar and dispatchers ask here whether a window
// exists before they offer it: an entry whose window is not registered stays
// disabled and its dispatcher branch shows nothing. A unit that brings a new
// window adds one line to registerAvailableWindows() in DialogRegistry.cpp.
namespace DialogRegistry {

using Factory = std::function<QDialog *(QWidget *parent)>;
using Command = std::function<void()>;

// A window that exists. Registering a name again replaces its factory.
void add(const QString &name, Factory make);
// Work without a window of its own (the update check, "CheckForUpdates").
void addCommand(const QString &name, Command run);
void remove(const QString &name);

bool available(const QString &name);
QStringList names();

// Builds the named window and shows it modally (Modal::show); the window is
// deleted afterwards. False, and nothing shown, when it does not exist yet.
bool showModal(const QString &name, QWidget *parent);
// Builds the named window; nullptr when it does not exist.
QDialog *create(const QString &name, QWidget *parent);
// Runs a registered command; false when there is none.
bool run(const QString &name);

// Fills the registry with every window built so far. Idempotent.
void registerAvailableWindows();

// Dialog names per verb and item kind (tree node text); empty for none.
enum class Verb { Add, Modify, Delete };
QString dialogFor(Verb verb, const QString &kind);

}  // namespace DialogRegistry
