#include "catalogues/StatusControls.h"

#include "catalogues/CatalogueSupport.h"

#include <QLineEdit>
#include <QPalette>
#include <QRadioButton>
#include <QWidget>

namespace StatusControls {

OptionGroup colourRadios(QWidget *dialog)
{
    static const QColor faces[] = {QColor(0xFF, 0x00, 0x00), QColor(0xFF, 0xFF, 0x00), QColor(0x00, 0xFF, 0x00),
                                   QColor(0x00, 0x00, 0xFF), QColor(0x00, 0xFF, 0xFF), QColor(0xFF, 0x00, 0xFF)};
    OptionGroup group(dialog, QStringLiteral("optStatusCode"), 1, 6);
    for (int code = 1; code <= 6; ++code) {
        QRadioButton *radio = group.button(code);
        if (!radio)
            continue;
        const QColor face = faces[code - 1];
        QPalette p = radio->palette();
        p.setColor(QPalette::Window, face);
        p.setColor(QPalette::Button, face);
        // Dark text wherever it reads; on the blue face only light text does.
        const bool dark = 0.299 * face.red() + 0.587 * face.green() + 0.114 * face.blue() < 60;
        p.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
        radio->setPalette(p);
        radio->setAutoFillBackground(true);
    }
    return group;
}

void followName(QLineEdit *buttonText, QLineEdit *toolTipText, const QString &name)
{
    Catalogues::TypedLimit::put(buttonText, name.left(10));
    Catalogues::TypedLimit::put(toolTipText, QStringLiteral(" Set status to ") + name + QStringLiteral(" "));
}

void limitTyping(QLineEdit *buttonText, QLineEdit *toolTipText)
{
    new Catalogues::TypedLimit(buttonText, 10);
    new Catalogues::TypedLimit(toolTipText, 30);
}

}  // namespace StatusControls
