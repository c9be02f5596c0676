#pragma once

#include <QString>

class QWidget;

// F1 help: a help window showing the page of the window in front. Pages are
// HTML in the resources under :/help/<window name>.html; a window without a
// page of its own gets the contents page.
namespace Help {

// Catches F1 in every window of the application.
void install();

// Shows the page for `window` (its objectName, else its class name).
void showFor(const QWidget *window);

// Name of the page last shown, for tests.
QString lastPage();

}  // namespace Help
