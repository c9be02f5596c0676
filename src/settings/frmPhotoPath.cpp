#include "settings/frmPhotoPath.h"

#include "ui_frmPhotoPath.h"

#include "core/Unhandled.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "core/basGetFolder.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "settings/SettingsStore.h"

frmPhotoPath::frmPhotoPath(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmPhotoPath>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtNewPath, QStringLiteral(" Example: \\\\SERVERNAME\\SHARENAME\\APPS\\TAVELLO\\")},
        {ui->cmdBrowse, QStringLiteral(" TIP: Choose Network Neighborhood or My Network Places as your starting point.")},
        {ui->cmdButtons_0, QStringLiteral(" Press OK to Accept the current Path.")},
        {ui->cmdButtons_1, QStringLiteral(" Press Cancel to Exit without saving new Path.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    ui->lblNewPath->setBuddy(ui->txtNewPath);
    ui->lblCurrentPath->setAccessibleName(ui->Label1->text());
    for (int i = 0; i < 3; ++i) {
        auto *button = findChild<QPushButton *>(QStringLiteral("cmdButtons_%1").arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { cmdButtons_Click(i); });
    }
    connect(ui->cmdBrowse, &QPushButton::clicked, this, [this] { cmdBrowse_Click(); });

    m_support->openingRead([this] {
        const QString stored = Settings::readPhotoPath(gdbMain);
        ui->lblCurrentPath->setText(stored.isEmpty() ? gstrAppPath : stored);
    });
    ui->txtNewPath->clear();
    ui->txtNewPath->setFocus();
}

frmPhotoPath::~frmPhotoPath() = default;

void frmPhotoPath::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] { okClicked(); });
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

void frmPhotoPath::refuse(const QString &text, const QString &title)
{
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Exclamation, title);
    ui->txtNewPath->setFocus();
    ui->txtNewPath->selectAll();
}

void frmPhotoPath::okClicked()
{
    QString path = Settings::trimBlanks(ui->txtNewPath->text());
    if (path.isEmpty()) {
        // Clearing needs no question.
        Settings::savePhotoPath(gdbMain, QString());
        accept();
        return;
    }
    if (!path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('\\');
    if (!path.startsWith(QLatin1String("\\\\"))) {
        refuse(QStringLiteral("You have not entered a valid UNC path. A UNC path must ") + QStringLiteral("begin with ") +
                   QLatin1Char('"') + QStringLiteral(" \\\\ ") + QLatin1Char('"'),
               QStringLiteral("TAVELLO - Invalid UNC"));
        return;
    }
    if (!Settings::folderExists(path.chopped(1))) {
        refuse(QStringLiteral("You have not entered an existing path."), QStringLiteral("TAVELLO - Path Does NOT exist."));
        return;
    }
    Settings::savePhotoPath(gdbMain, path);
    accept();
}

void frmPhotoPath::cmdBrowse_Click()
{
    const QString current = ui->lblCurrentPath->text();
    const QString folder =
        BrowseForFolder(this, QStringLiteral("Please select a folder:"), UncPath::isUnc(current) ? current : QString());
    if (folder.isEmpty())
        return;
    if (!UncPath::isUnc(folder)) {
        Msg::box(folder + QStringLiteral(" is not a UNC path. Please reselect."));
        return;
    }
    ui->txtNewPath->setText(folder);
}
