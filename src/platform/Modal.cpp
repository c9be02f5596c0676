#include "platform/Modal.h"

#include <QDialog>

namespace {
Modal::Handler &handler()
{
    static Modal::Handler h;
    return h;
}
}  // namespace

namespace Modal {

int show(QDialog *dialog)
{
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
