#include "platform/Modal.h"

#include <QDialog>

#include <QVariant>

namespace {
Modal::Handler &handler()
{
    static Modal::Handler h;
    return h;
}
}  // namespace

namespace Modal {

namespace {
const char *const Refused = "tavelloRefusedToShow";
}

void refuseToShow(QDialog *dialog) { dialog->setProperty(Refused, true); }
bool refusedToShow(const QDialog *dialog) { return dialog->property(Refused).toBool(); }

int show(QDialog *dialog)
{
    if (refusedToShow(dialog)) {
        dialog->setResult(QDialog::Rejected);
        return QDialog::Rejected;
    }
    if (!handler())
        return dialog->exec();
    dialog->setModal(true);
    dialog->show();
    handler()(dialog);
    const int result = dialog->result();
    if (dialog->isVisible())
        dialog->reject();
    return result;
}

void setHandler(Handler h) { handler() = std::move(h); }

}  // namespace Modal
