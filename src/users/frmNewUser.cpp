#include "users/frmNewUser.h"

#include "ui_frmNewUser.h"

#include "core/Unhandled.h"
#include "console/frmAdminOptions.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "users/UserStore.h"

namespace {

void addFontSizes(QComboBox *combo)
{
    for (int size = 8; size <= 15; ++size)
        combo->addItem(QString::number(size));
}

}  // namespace

frmNewUser::frmNewUser(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmNewUser>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->cmdButtons_0, QStringLiteral(" Press OK to save New User Default settings.")},
        {ui->cmdButtons_1, QStringLiteral(" Press Cancel to Exit without saving settings.")},
        {ui->cmdButtons_2, QStringLiteral(" Display Help.")},
    });
    m_minimizeSetting = OptionGroup(this, QStringLiteral("optMinimizeSetting"), 0, 2);
    m_sortKey = OptionGroup(this, QStringLiteral("optSortKey"), 1, 6);
    m_sortOrder = OptionGroup(this, QStringLiteral("optSortOrder"), 0, 1);
    m_securityLevel = OptionGroup(this, QStringLiteral("optUserSecurityLevel"), 0, 2);
    m_iconSize = OptionGroup(this, QStringLiteral("optIconSize"), 0, 1);
    m_toolBarText = OptionGroup(this, QStringLiteral("optToolBarText"), 0, 1);

    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdButtons_3, &QPushButton::clicked, this, [this] { cmdButtons_Click(3); });

    // The sizes go in here and again on loading: the list shows them twice,
    // as it always has.
    addFontSizes(ui->comboFontSizeDisplay);
    ui->TabStripNewUser->setCurrentIndex(0);
    m_support->openingRead([this] { subLoadNUDdata(); });
}

frmNewUser::~frmNewUser() = default;

void frmNewUser::cmdButtons_Click(int index)
{
    switch (index) {
    case 0:
        guarded([this] {
            subSaveNUDdata();
            yieldEvents();
            accept();
        });
        break;
    case 1:
        reject();
        break;
    case 2:
        DialogSupport::sendHelpKey(this);
        break;
    case 3:
        subResetNUDdata();
        break;
    default:
        break;
    }
}

void frmNewUser::subLoadNUDdata()
{
    for (const char *rate : {"0", "1", "5", "15", "30", "60"})
        ui->ComboRefreshRate->addItem(QLatin1String(rate));
    addFontSizes(ui->comboFontSizeDisplay);

    Recordset groups = gdbMain.openTable(QStringLiteral("GroupTable"));
    if (groups.eof()) {
        gdbMain.addRow(QStringLiteral("GroupTable"));
        groups = gdbMain.openTable(QStringLiteral("GroupTable"));
    }
    for (; !groups.eof(); groups.moveNext())
        ui->ComboDefaultGroup->addItem(groups.text(QStringLiteral("GroupName")));
    groups.close();

    Recordset rs = Users::openNewUserDefaults(gdbMain);
    const auto v = [&rs](const char *column) { return rs.value(QLatin1String(column)); };
    setCheck(ui->chkAutoClearComments, v("AutoClearComments"));
    setCheck(ui->chkAutoLogIn, v("AutoLogIn"));
    setCheck(ui->chkAutoLogOut, v("AutoLogOut"));
    setCheck(ui->chkAutoMinimize, v("AutoMinimize"));
    ui->ComboRefreshRate->setEditText(shownText(v("RefreshRate")));
    m_minimizeSetting.select(v("MinimizeSetting").toInt());
    setCheck(ui->chkMinimizeOnClose, v("MinimizeOnClose"));
    setCheck(ui->chkDisplayTreeView, v("DisplayTreeView"));
    setCheck(ui->chkListViewPopUp, v("ListViewPopUp"));
    setCheck(ui->chkChangeScreenPopUp, v("ChangeScreenPopUp"));
    ui->ComboDefaultGroup->setEditText(shownText(v("DefaultGroup")));
    const int sortKey = v("SortKey").toInt();  // Null reads as 0
    m_sortKey.select(sortKey == 0 ? 2 : sortKey);
    m_sortOrder.select(v("SortOrder").toInt());
    ui->comboFontSizeDisplay->setEditText(shownText(v("FontSizeDisplay")));
    setCheck(ui->chkFontBoldDisplay, v("FontBoldDisplay"));
    ui->txtScreenTop->setText(shownText(v("ScreenTop")));
    ui->txtScreenLeft->setText(shownText(v("ScreenLeft")));
    ui->txtScreenWidth->setText(shownText(v("ScreenWidth")));
    ui->txtScreenHeight->setText(shownText(v("ScreenHeight")));
    ui->txtStatusColumnWidth->setText(shownText(v("StatusColumnWidth")));
    ui->txtNameColumnWidth->setText(shownText(v("NameColumnWidth")));
    ui->txtPhoneColumnWidth->setText(shownText(v("PhoneColumnWidth")));
    ui->txtDueBackColumnWidth->setText(shownText(v("DueBackColumnWidth")));
    ui->txtCommentsColumnWidth->setText(shownText(v("CommentsColumnWidth")));
    ui->txtLastModifiedColumnWidth->setText(shownText(v("LastModifiedColumnWidth")));
    m_securityLevel.select(v("UserSecurityLevel").toInt());
    m_iconSize.select(v("IconSize").toInt());
    m_toolBarText.select(v("ToolBarText").toInt());
    rs.close();
}

void frmNewUser::subSaveNUDdata()
{
    using Users::wholeNumberAtStart;
    Recordset rs = gdbMain.openTable(QStringLiteral("NewUserDefaultsTable"));
    rs.edit({
        {QStringLiteral("AutoClearComments"), checkValue(ui->chkAutoClearComments)},
        {QStringLiteral("AutoLogIn"), checkValue(ui->chkAutoLogIn)},
        {QStringLiteral("AutoLogOut"), checkValue(ui->chkAutoLogOut)},
        {QStringLiteral("AutoMinimize"), checkValue(ui->chkAutoMinimize)},
        {QStringLiteral("MinimizeOnClose"), checkValue(ui->chkMinimizeOnClose)},
        {QStringLiteral("DisplayTreeView"), checkValue(ui->chkDisplayTreeView)},
        // Any number may be typed here, also one the Modify window does not offer.
        {QStringLiteral("RefreshRate"), wholeNumberAtStart(ui->ComboRefreshRate->currentText())},
        {QStringLiteral("DefaultGroup"), Users::textValue(ui->ComboDefaultGroup->currentText())},
        {QStringLiteral("StatusColumnWidth"), wholeNumberAtStart(ui->txtStatusColumnWidth->text())},
        {QStringLiteral("NameColumnWidth"), wholeNumberAtStart(ui->txtNameColumnWidth->text())},
        {QStringLiteral("PhoneColumnWidth"), wholeNumberAtStart(ui->txtPhoneColumnWidth->text())},
        {QStringLiteral("DueBackColumnWidth"), wholeNumberAtStart(ui->txtDueBackColumnWidth->text())},
        {QStringLiteral("CommentsColumnWidth"), wholeNumberAtStart(ui->txtCommentsColumnWidth->text())},
        {QStringLiteral("LastModifiedColumnWidth"), wholeNumberAtStart(ui->txtLastModifiedColumnWidth->text())},
        {QStringLiteral("SortOrder"), m_sortOrder.chosen(0)},
        {QStringLiteral("SortKey"), m_sortKey.chosen(2)},
        {QStringLiteral("ScreenTop"), wholeNumberAtStart(ui->txtScreenTop->text())},
        {QStringLiteral("ScreenLeft"), wholeNumberAtStart(ui->txtScreenLeft->text())},
        {QStringLiteral("ScreenWidth"), wholeNumberAtStart(ui->txtScreenWidth->text())},
        {QStringLiteral("ScreenHeight"), wholeNumberAtStart(ui->txtScreenHeight->text())},
        {QStringLiteral("ListViewPopUp"), checkValue(ui->chkListViewPopUp)},
        {QStringLiteral("ChangeScreenPopUp"), checkValue(ui->chkChangeScreenPopUp)},
        {QStringLiteral("UserSecurityLevel"), m_securityLevel.chosen(0)},
        {QStringLiteral("MinimizeSetting"), m_minimizeSetting.chosen(0)},
        {QStringLiteral("IconSize"), m_iconSize.chosen() == 0 ? 0 : 1},
        {QStringLiteral("ToolBarText"), m_toolBarText.chosen() == 0 ? 0 : 1},
        {QStringLiteral("FontBoldDisplay"), checkValue(ui->chkFontBoldDisplay)},
        {QStringLiteral("FontSizeDisplay"), adminFontSizeFromText(ui->comboFontSizeDisplay->currentText())},
    });
    rs.close();
}

void frmNewUser::subResetNUDdata()
{
    ui->chkAutoClearComments->setChecked(false);
    ui->chkAutoLogIn->setChecked(true);
    ui->chkAutoLogOut->setChecked(true);
    ui->chkAutoMinimize->setChecked(false);
    ui->ComboRefreshRate->setEditText(QStringLiteral("5"));
    m_minimizeSetting.select(0);
    ui->chkMinimizeOnClose->setChecked(false);
    ui->chkDisplayTreeView->setChecked(true);
    ui->chkListViewPopUp->setChecked(true);
    ui->chkChangeScreenPopUp->setChecked(false);
    ui->ComboDefaultGroup->setEditText(QStringLiteral("Everyone"));
    m_sortKey.select(2);
    m_sortOrder.select(0);
    ui->comboFontSizeDisplay->setEditText(QStringLiteral("8"));
    ui->chkFontBoldDisplay->setChecked(false);
    // The label says 9000 for the width; the factory value is 10710.
    ui->txtScreenTop->setText(QStringLiteral("600"));
    ui->txtScreenLeft->setText(QStringLiteral("600"));
    ui->txtScreenWidth->setText(QStringLiteral("10710"));
    ui->txtScreenHeight->setText(QStringLiteral("7005"));
    ui->txtStatusColumnWidth->setText(QStringLiteral("2000"));
    ui->txtNameColumnWidth->setText(QStringLiteral("1400"));
    ui->txtPhoneColumnWidth->setText(QStringLiteral("1100"));
    ui->txtDueBackColumnWidth->setText(QStringLiteral("1300"));
    ui->txtCommentsColumnWidth->setText(QStringLiteral("1300"));
    ui->txtLastModifiedColumnWidth->setText(QStringLiteral("4000"));
    m_securityLevel.select(0);
    m_iconSize.select(0);
    m_toolBarText.select(1);
    Msg::box(QStringLiteral("Values have been reset to factory defaults, but not saved (yet)."));
}
