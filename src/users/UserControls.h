#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class QCheckBox;
class QRadioButton;
class QWidget;

// A set of mutually exclusive choices, each a radio button named
// <prefix>_<index> in a dialog, addressed by its index as the column it
// stands for is numbered.
class OptionGroup {
public:
    OptionGroup() = default;
    OptionGroup(const QWidget *dialog, const QString &prefix, int first, int last);

    // Chooses the choice of that index. A value no choice stands for is a
    // failure (340), as it has always been: the dialog stops there.
    void select(int index);
    // Index of the choice made; `none` when no choice is made.
    int chosen(int none = -1) const;
    QRadioButton *button(int index) const { return m_buttons.value(index); }

private:
    QString m_prefix;
    QMap<int, QRadioButton *> m_buttons;
};

// Check boxes show any non-zero value as checked (-1 is the older engine's True)
// and write 1; Null reads as unchecked.
void setCheck(QCheckBox *box, const QVariant &value);
int checkValue(const QCheckBox *box);

// A column value as a text box shows it: Null as empty.
QString shownText(const QVariant &value);
