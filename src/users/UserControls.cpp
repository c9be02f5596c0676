#include "users/UserControls.h"

#include "platform/StoreError.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QWidget>

OptionGroup::OptionGroup(const QWidget *dialog, const QString &prefix, int first, int last) : m_prefix(prefix)
{
    for (int i = first; i <= last; ++i)
        if (auto *b = dialog->findChild<QRadioButton *>(prefix + QLatin1Char('_') + QString::number(i)))
            m_buttons.insert(i, b);
}

void OptionGroup::select(int index)
{
    QRadioButton *b = m_buttons.value(index);
    if (!b)
        throw StoreError(340, QStringLiteral("Control array element '%1' doesn't exist (%2).").arg(index).arg(m_prefix));
    b->setChecked(true);
}

int OptionGroup::chosen(int none) const
{
    for (auto it = m_buttons.cbegin(); it != m_buttons.cend(); ++it)
        if (it.value()->isChecked())
            return it.key();
    return none;
}

void setCheck(QCheckBox *box, const QVariant &value)
{
    box->setChecked(!value.isNull() && value.toInt() != 0);
}

int checkValue(const QCheckBox *box) { return box->isChecked() ? 1 : 0; }

QString shownText(const QVariant &value) { return value.isNull() ? QString() : value.toString(); }
