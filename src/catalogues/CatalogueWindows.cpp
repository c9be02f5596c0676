#include "catalogues/CatalogueWindows.h"

#include "catalogues/frmAddColumn.h"
#include "catalogues/frmAddDueBack.h"
#include "catalogues/frmAddStatus.h"
#include "catalogues/frmDeleteColumn.h"
#include "catalogues/frmDeleteDueBack.h"
#include "catalogues/frmDeleteStatus.h"
#include "catalogues/frmModColumn.h"
#include "catalogues/frmModDueBack.h"
#include "catalogues/frmModStatus.h"
#include "console/DialogRegistry.h"

namespace {

template <class Window>
void add(const char *name)
{
    DialogRegistry::add(QLatin1String(name), [](QWidget *parent) -> QDialog * {
        auto *w = new Window;
        if (parent)
            w->setParent(parent, w->windowFlags() | Qt::Dialog);
        return w;
    });
}

}  // namespace

void registerCatalogueWindows()
{
    add<frmAddStatus>("frmAddStatus");
    add<frmModStatus>("frmModStatus");
    add<frmDeleteStatus>("frmDeleteStatus");
    add<frmAddDueBack>("frmAddDueBack");
    add<frmModDueBack>("frmModDueBack");
    add<frmDeleteDueBack>("frmDeleteDueBack");
    add<frmAddColumn>("frmAddColumn");
    add<frmModColumn>("frmModColumn");
    add<frmDeleteColumn>("frmDeleteColumn");
}
