#include "core/frmLocate.h"

#include "ui_frmLocate.h"

#include "core/DialogSupport.h"
#include "core/Global.h"
#include "core/frmDataPath.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"

frmLocate::frmLocate(QWidget *parent) : QDialog(parent), ui(new Ui::frmLocate)
{
    ui->setupUi(this);
    auto *support = new DialogSupport(this, ui->StatusBar);  // owned by the dialog
    support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Save UNC database path details into tavello.ini and Exit.")},
        {ui->cmdButtons_1, QStringLiteral(" Exit without saving UNC database path details.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdBrowse, &QPushButton::clicked, this, &frmLocate::cmdBrowse_Click);

    gbolIniFound = false;
    ui->txtUNCpath->setFocus();
}

frmLocate::~frmLocate() { delete ui; }

void frmLocate::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        okClicked();
        break;
    case 1:
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    default:
        break;
    }
}

void frmLocate::cmdBrowse_Click()
{
    // The chosen name's tail is upper-cased before it is compared with the
    // lower-case file name, so Browse never fills the field here: the path
    // of this dialog is typed.
    PathSelection::browseForDatabase(this, ui->txtUNCpath, QStringLiteral("Locate TAVELLO Database"),
                                     QStringLiteral("Tavello database|tavello.mdb"), true);
}

void frmLocate::okClicked()
{
    QString path = ui->txtUNCpath->text().trimmed().toUpper();
    if (!path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('\\');
    ui->txtUNCpath->setText(path);
    if (!UncPath::isUnc(path)) {
        PathSelection::warnNotUnc();
        ui->txtUNCpath->selectAll();
        ui->txtUNCpath->setFocus();
        return;
    }
    try {
        Database db = Database::open(path + QStringLiteral("tavello.mdb"));
        db.close();
    } catch (const StoreError &) {
        Msg::box(QStringLiteral("Cannot locate a valid TAVELLO database at the UNC path specified. ") +
                     QStringLiteral("The path may be invalid or the location may be currently unavailable."),
                 Msg::Buttons::OK, Msg::Icon::Exclamation, QStringLiteral("TAVELLO - tavello.mdb database not found."));
        return;
    }
    if (!PathSelection::writeDataPath(path))
        return;
    gbolIniFound = true;
    accept();
}
