#pragma once

#include <functional>

class QDialog;

// Shows a dialog modally. Tests install a handler that drives the dialog
// (fills fields, presses buttons) instead of a blocking event loop.
namespace Modal {
using Handler = std::function<void(QDialog *)>;
int show(QDialog *dialog);
void setHandler(Handler handler);  // empty handler: real modal loop
}  // namespace Modal
