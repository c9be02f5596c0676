#include "console/Images.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

// The icons live in a static library: register them explicitly.
static void initConsoleIcons()
{
    static bool done = false;
    if (!done) {
        Q_INIT_RESOURCE(console_icons);
        done = true;
    }
}

namespace {

QPixmap tango(const QString &name, int size)
{
    initConsoleIcons();
    QPixmap pm(QStringLiteral(":/console/icons/%1-%2.png").arg(name).arg(size));
    Q_ASSERT(!pm.isNull());
    return pm;
}

QPixmap canvas(int size)
{
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    return pm;
}

// A round lamp with a highlight, in the style of the board's status colours.
void drawLamp(QPainter &p, const QPointF &centre, qreal r, const QColor &colour)
{
    QRadialGradient g(centre - QPointF(r / 3, r / 3), r * 1.3);
    g.setColorAt(0, colour.lighter(170));
    g.setColorAt(0.5, colour);
    g.setColorAt(1, colour.darker(140));
    p.setBrush(g);
    p.setPen(QPen(colour.darker(200), 1));
    p.drawEllipse(centre, r, r);
}

QPixmap lamp(const QColor &colour)
{
    QPixmap pm = canvas(16);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    drawLamp(p, QPointF(8, 8), 6.5, colour);
    return pm;
}

QPixmap lampTrio(int size)
{
    QPixmap pm = canvas(size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal r = size * 0.22;
    drawLamp(p, QPointF(size * 0.28, size * 0.30), r, QColor(0xd9, 0x2b, 0x2b));
    drawLamp(p, QPointF(size * 0.72, size * 0.30), r, QColor(0xf2, 0xc1, 0x1e));
    drawLamp(p, QPointF(size * 0.50, size * 0.72), r, QColor(0x3c, 0xb3, 0x3a));
    return pm;
}

// One person: head and shoulders.
QPixmap person(int size)
{
    QPixmap pm = canvas(size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal s = size / 16.0;
    QPainterPath body;
    body.moveTo(2.5 * s, 15.5 * s);
    body.cubicTo(2.5 * s, 10.5 * s, 5 * s, 9 * s, 8 * s, 9 * s);
    body.cubicTo(11 * s, 9 * s, 13.5 * s, 10.5 * s, 13.5 * s, 15.5 * s);
    body.closeSubpath();
    QLinearGradient shirt(0, 9 * s, 0, 16 * s);
    shirt.setColorAt(0, QColor(0x72, 0x9f, 0xcf));
    shirt.setColorAt(1, QColor(0x34, 0x65, 0xa4));
    p.setBrush(shirt);
    p.setPen(QPen(QColor(0x20, 0x4a, 0x87), 1));
    p.drawPath(body);
    QRadialGradient face(QPointF(7 * s, 4.5 * s), 4 * s);
    face.setColorAt(0, QColor(0xfc, 0xe9, 0x94));
    face.setColorAt(1, QColor(0xe9, 0xb9, 0x6e));
    p.setBrush(face);
    p.setPen(QPen(QColor(0x8f, 0x59, 0x02), 1));
    p.drawEllipse(QPointF(8 * s, 5 * s), 3.3 * s, 3.5 * s);
    return pm;
}

QImage brightened(const QPixmap &pm)
{
    QImage img = pm.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < img.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(img.scanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            const QRgb c = line[x];
            auto lift = [](int v) { return std::min(255, v + (255 - v) / 4 + 12); };
            line[x] = qRgba(lift(qRed(c)), lift(qGreen(c)), lift(qBlue(c)), qAlpha(c));
        }
    }
    return img;
}

QImage greyed(const QPixmap &pm)
{
    QImage img = pm.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < img.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(img.scanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            const QRgb c = line[x];
            const int g = 128 + qGray(c) / 3;
            line[x] = qRgba(g, g, g, qAlpha(c) / 2);
        }
    }
    return img;
}

const QHash<QString, QString> &toolbarSources()
{
    static const QHash<QString, QString> sources = {
        {QStringLiteral("Import"), QStringLiteral("import")},   {QStringLiteral("Add"), QStringLiteral("add")},
        {QStringLiteral("Modify"), QStringLiteral("modify")},   {QStringLiteral("Delete"), QStringLiteral("delete")},
        {QStringLiteral("Repair"), QStringLiteral("repair")},   {QStringLiteral("Refresh"), QStringLiteral("refresh")},
        {QStringLiteral("About"), QStringLiteral("about")},     {QStringLiteral("Help"), QStringLiteral("help")},
        {QStringLiteral("ExitAdmin"), QStringLiteral("exit")},
    };
    return sources;
}

}  // namespace

namespace Images {

const QHash<QString, QPixmap> &ImageListSmall()
{
    static const QHash<QString, QPixmap> list = {
        {QStringLiteral("1Red"), lamp(QColor(0xe0, 0x20, 0x20))},
        {QStringLiteral("2Yellow"), lamp(QColor(0xf5, 0xd0, 0x10))},
        {QStringLiteral("3Green"), lamp(QColor(0x30, 0xb0, 0x30))},
        {QStringLiteral("4Blue"), lamp(QColor(0x20, 0x50, 0xe0))},
        {QStringLiteral("5Cyan"), lamp(QColor(0x10, 0xc8, 0xd8))},
        {QStringLiteral("6Magenta"), lamp(QColor(0xd0, 0x20, 0xc8))},
        {QStringLiteral("Users"), person(16)},
        {QStringLiteral("Groups"), tango(QStringLiteral("groups"), 16)},
        {QStringLiteral("DueBack"), tango(QStringLiteral("dueback"), 16)},
        {QStringLiteral("Servers"), tango(QStringLiteral("servers"), 16)},
        {QStringLiteral("Warning"), tango(QStringLiteral("warning"), 16)},
        {QStringLiteral("Messages"), tango(QStringLiteral("messages"), 16)},
        {QStringLiteral("Columns"), tango(QStringLiteral("columns"), 16)},
    };
    return list;
}

const QHash<QString, QPixmap> &TBMainSm()
{
    static const QHash<QString, QPixmap> list = {
        {QStringLiteral("Root"), tango(QStringLiteral("workgroup"), 16)},
        {QStringLiteral("Columns"), tango(QStringLiteral("columns"), 16)},
        {QStringLiteral("DueBack"), tango(QStringLiteral("dueback"), 16)},
        {QStringLiteral("Groups"), tango(QStringLiteral("groups"), 16)},
        {QStringLiteral("Messages"), tango(QStringLiteral("messages"), 16)},
        {QStringLiteral("Servers"), tango(QStringLiteral("servers"), 16)},
        {QStringLiteral("AutoSync"), tango(QStringLiteral("autosync"), 16)},
        {QStringLiteral("Status"), lampTrio(16)},
        {QStringLiteral("Users"), person(16)},
        {QStringLiteral("Import"), tango(QStringLiteral("import"), 16)},
    };
    return list;
}

const QHash<QString, QPixmap> &imglstToolBarCold()
{
    static const QHash<QString, QPixmap> list = [] {
        QHash<QString, QPixmap> l;
        for (auto it = toolbarSources().cbegin(); it != toolbarSources().cend(); ++it)
            l.insert(it.key(), tango(it.value(), 24));
        return l;
    }();
    return list;
}

const QHash<QString, QPixmap> &imglstToolbarHot()
{
    static const QHash<QString, QPixmap> list = [] {
        QHash<QString, QPixmap> l;
        for (auto it = imglstToolBarCold().cbegin(); it != imglstToolBarCold().cend(); ++it)
            l.insert(it.key(), QPixmap::fromImage(brightened(it.value())));
        return l;
    }();
    return list;
}

const QHash<QString, QPixmap> &imglstToolbarDisabled()
{
    static const QHash<QString, QPixmap> list = [] {
        QHash<QString, QPixmap> l;
        for (auto it = imglstToolBarCold().cbegin(); it != imglstToolBarCold().cend(); ++it)
            l.insert(it.key(), QPixmap::fromImage(greyed(it.value())));
        return l;
    }();
    return list;
}

QIcon toolbarIcon(const QString &key)
{
    QIcon icon;
    icon.addPixmap(imglstToolBarCold().value(key), QIcon::Normal);
    icon.addPixmap(imglstToolbarHot().value(key), QIcon::Active);
    icon.addPixmap(imglstToolbarDisabled().value(key), QIcon::Disabled);
    return icon;
}

QPixmap aboutPicture() { return lampTrio(48); }

}  // namespace Images
