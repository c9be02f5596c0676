#include "platform/Hourglass.h"

#include <QApplication>

namespace {
bool g_shown = false;
}

namespace Hourglass {

void set(int pointer)
{
    const bool wanted = pointer == 11;
    if (wanted == g_shown)
        return;
    g_shown = wanted;
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;  // no screen (one-shot repair run from a terminal)
    if (wanted)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

bool shown() { return g_shown; }

}  // namespace Hourglass
