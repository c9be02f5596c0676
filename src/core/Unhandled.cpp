#include "core/Unhandled.h"

#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/StoreError.h"

void reportUnhandled(const StoreError &e)
{
    Hourglass::set(0);
    Msg::box(QStringLiteral("Run-time error '") + QString::number(e.number()) + QStringLiteral("':\r\n\r\n") + e.text(),
             Msg::Buttons::OK, Msg::Icon::Critical);
}

void guarded(const std::function<void()> &work)
{
    try {
        work();
    } catch (const StoreError &e) {
        reportUnhandled(e);
    }
}
