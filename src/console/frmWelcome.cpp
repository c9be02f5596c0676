#include "console/frmWelcome.h"

#include "core/Global.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>

frmWelcome::frmWelcome(QWidget *parent) : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("frmWelcome"));
    setFixedSize(420, 220);
    if (const QScreen *s = QGuiApplication::primaryScreen())
        move(s->availableGeometry().center() - rect().center());
    TimerWelcome.setSingleShot(true);
    TimerWelcome.setInterval(2000);
    connect(&TimerWelcome, &QTimer::timeout, this, &frmWelcome::timeUp);
}

void frmWelcome::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, width(), height());
    g.setColorAt(0, QColor(0x1f, 0x4e, 0x8c));
    g.setColorAt(1, QColor(0x3f, 0x8e, 0xd8));
    p.fillRect(rect(), g);
    QFont f = font();
    f.setBold(true);
    f.setPixelSize(46);
    p.setFont(f);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 30, width(), 70), Qt::AlignCenter, QStringLiteral("TAVELLO Pro"));
    f.setBold(false);
    f.setPixelSize(18);
    p.setFont(f);
    p.drawText(QRect(0, 100, width(), 30), Qt::AlignCenter, QStringLiteral("In/Out Board - Administration"));
    f.setPixelSize(13);
    p.setFont(f);
    p.drawText(QRect(0, 170, width(), 24), Qt::AlignCenter,
               QStringLiteral("Version %1   %2").arg(gstrReleaseVersion, gstrReleaseDate));
}
