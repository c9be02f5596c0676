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
        p.setColor(QPalette::WindowText, face.lightness() < 100 ? Qt::white : Qt::black);
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
