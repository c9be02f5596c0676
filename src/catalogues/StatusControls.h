#pragma once

#include "users/UserControls.h"

#include <QString>

class QLineEdit;
class QWidget;

// What the Add and Modify status windows show alike.
namespace StatusControls {

// optStatusCode_1..6, indexed by the colour code itself, each radio drawn in
// the colour it stands for.
OptionGroup colourRadios(QWidget *dialog);

// Each change of the name rewrites the button text (its first 10
// characters) and the tool tip, whatever was typed into them.
void followName(QLineEdit *buttonText, QLineEdit *toolTipText, const QString &name);

// The button text and tool tip hold what is typed to 10 and 30 characters.
void limitTyping(QLineEdit *buttonText, QLineEdit *toolTipText);

}  // namespace StatusControls
