#include "core/ERRORS.h"

#include "core/Global.h"
#include "platform/MessageBox.h"
#include "platform/StoreError.h"

#include <QThread>

int &gintRetryCount()
{
    static int count = 0;
    return count;
}

int gintHandleUpdateError(int errorNumber, const QString &errorText)
{
    if (errorNumber != err::RowLocked) {
        Msg::box(QStringLiteral("Error=") + QString::number(errorNumber).trimmed() + QStringLiteral(" Error message=") +
                     errorText.trimmed() + QStringLiteral(". Update cancelled."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation);
        return GiveUp;
    }
    if (gintRetryCount() < 1) {
        // The first collision costs no dialogue: a short wait with events running.
        for (int i = 0; i < 100; ++i) {
            yieldEvents();
            QThread::msleep(2);
        }
        ++gintRetryCount();
        return RetryStatement;
    }
    const int answer = Msg::box(QStringLiteral("The database is currently updating.  Would you like to retry ?"),
                                Msg::Buttons::YesNo, Msg::Icon::Question, QStringLiteral("TAVELLO"));
    gintRetryCount() = 0;
    return answer == Msg::Yes ? RetryStatement : GiveUp;
}
