#pragma once

#include <functional>

class QDialog;

// Shows a dialog modally. Tests install a handler that drives the dialog
// (fills fields, presses buttons) instead of a blocking event loop.
namespace Modal {
using Handler = std::function<void(QDialog *)>;
// A dialog that could not read what it shows is not shown at all (Rejected).
int show(QDialog *dialog);
// Marks a dialog whose opening read failed, so that it never shows and no OK
// of it can write back what it did not read.
void refuseToShow(QDialog *dialog);
bool refusedToShow(const QDialog *dialog);
void setHandler(Handler handler);  // empty handler: real modal loop
}  // namespace Modal
