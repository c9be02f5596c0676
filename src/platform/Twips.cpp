#include "platform/Twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace {
double dpiX()
{
    const QScreen *s = QGuiApplication::primaryScreen();
    return s ? s->logicalDotsPerInchX() : 96.0;
}
double dpiY()
{
    const QScreen *s = QGuiApplication::primaryScreen();
    return s ? s->logicalDotsPerInchY() : 96.0;
}
}  // namespace

namespace Twips {
int toPixelsX(int twips) { return int(std::lround(twips * dpiX() / 1440.0)); }
int toPixelsY(int twips) { return int(std::lround(twips * dpiY() / 1440.0)); }
int fromPixelsX(int pixels) { return int(std::lround(pixels * 1440.0 / dpiX())); }
int fromPixelsY(int pixels) { return int(std::lround(pixels * 1440.0 / dpiY())); }
}  // namespace Twips
