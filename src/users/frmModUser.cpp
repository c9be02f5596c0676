#include "users/frmModUser.h"

#include "ui_frmModUser.h"

#include "console/Images.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/Admin1.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/FileDialogs.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"
#include "users/UserStore.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFocusEvent>
#include <QHeaderView>
#include <QImageReader>
#include <QScrollBar>

namespace {

// Refresh rates in minutes, by the index of their choice.
constexpr int RefreshRates[] = {0, 1, 5, 15, 30, 60};

const QString AddedPrefix = QStringLiteral("New_");

QString trimmedText(const QVariant &v) { return shownText(v).trimmed(); }

}  // namespace

frmModUser::frmModUser(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmModUser>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, ui->StatusBar);
    m_support->addHints({
        {ui->txtName, QStringLiteral(" Enter users NAME in this field.")},
        {ui->txtPhone, QStringLiteral(" Enter users Phone number or Extension in this field.")},
        {ui->txtComments, QStringLiteral(" Enter a Comment for this user.")},
        {ui->ComboDueBack, QStringLiteral(" Enter Time and/or Date this user is due to return.")},
        {ui->ComboLastGroup, QStringLiteral(" Displays which group was last selected.")},
        {ui->imgDropDown_0, QStringLiteral(" Select new Status Type for this user")},
        {ui->imgDropDown_1, QStringLiteral(" Select new Due Back details for this user")},
        {ui->imgDropDown_2, QStringLiteral(" Select last Group Accesssed for this user")},
        {ui->ListView1, QStringLiteral(" Select Groups that you want this user to Manage")},
        {ui->ListView2, QStringLiteral(" Select Groups you do NOT want this user to Manage")},
        {ui->FrameModUser_2, QStringLiteral(" These options are set by the user from the main TAVELLO program")},
        {ui->cmdButtons_0, QStringLiteral(" Save current user's settings and return to the Main Screen.")},
        {ui->cmdButtons_1, QStringLiteral(" Cancel Modify and return to the Main Screen.")},
        {ui->cmdButtons_2, QStringLiteral(" Call Modify User Details Help.")},
        {ui->cmdButtons_3, QStringLiteral(" Reset ALL options to 'New User' defaults.")},
    });
    ui->cmdButtons_3->setToolTip(QStringLiteral(" Reset to 'New User' defaults "));
    connect(ui->TabStrip1, &QTabWidget::currentChanged, m_support, &DialogSupport::clearHint);

    m_sortKey = OptionGroup(this, QStringLiteral("optSortKey"), 1, 6);
    m_sortOrder = OptionGroup(this, QStringLiteral("optSortOrder"), 0, 1);
    m_security = OptionGroup(this, QStringLiteral("OptionSecurity"), 0, 2);
    m_refreshRate = OptionGroup(this, QStringLiteral("optionRefreshRate"), 0, 5);
    m_sysTray = OptionGroup(this, QStringLiteral("optSysTrayTaskBar"), 0, 2);
    m_iconSize = OptionGroup(this, QStringLiteral("optIconSize"), 0, 1);
    m_toolBarText = OptionGroup(this, QStringLiteral("optToolBarText"), 0, 1);

    // The grid's cell editor stands over the value cell it edits.
    QTableWidget *grid = ui->msFlexGridChange;
    grid->setHorizontalHeaderLabels({QStringLiteral("Column Name"), QStringLiteral("Value")});
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setStretchLastSection(true);
    m_cellEditor = new QLineEdit(grid->viewport());
    m_cellEditor->setObjectName(QStringLiteral("txtChangeFieldValue"));
    m_cellEditor->hide();
    m_cellEditor->installEventFilter(this);
    connect(m_cellEditor, &QLineEdit::returnPressed, this, [this] { commitCellEditor(); });
    connect(grid, &QTableWidget::cellClicked, this, [this](int row, int) { msFlexGridChange_Pick(row); });
    connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { commitCellEditor(); });
    connect(grid->horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] { commitCellEditor(); });

    connect(ui->ListView1, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { moveGroup(ui->ListView1, item, ui->ListView2); });
    connect(ui->ListView2, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { moveGroup(ui->ListView2, item, ui->ListView1); });

    const std::pair<QToolButton *, QComboBox *> dropDowns[] = {
        {ui->imgDropDown_0, ui->comboStatusTypes},
        {ui->imgDropDown_1, ui->ComboDueBack},
        {ui->imgDropDown_2, ui->ComboLastGroup},
    };
    const QString pictures[] = {QStringLiteral("Status"), QStringLiteral("DueBack"), QStringLiteral("Groups")};
    for (int i = 0; i < 3; ++i) {
        const auto &[image, combo] = dropDowns[i];
        image->setIcon(Images::TBMainSm().value(pictures[i]));
        connect(image, &QToolButton::clicked, combo, &QComboBox::showPopup);
    }

    // The long check-box texts wrap in labels beside their boxes.
    for (QLabel *label : {ui->lblAutoMinimize, ui->lblMinimizeOnClose})
        label->installEventFilter(this);

    connect(ui->File1, &QListWidget::itemSelectionChanged, this, &frmModUser::File1_Click);
    connect(ui->cmdBrowse, &QPushButton::clicked, this, &frmModUser::cmdBrowse_Click);
    connect(ui->cmdClearImage, &QPushButton::clicked, this, &frmModUser::cmdClearImage_Click);
    connect(ui->chkPhotoSizeToFit, &QCheckBox::toggled, this, &frmModUser::applyPhotoSize);
    connect(ui->HScroll1, &QScrollBar::valueChanged, this,
            [this](int x) { ui->picPhoto->move(-x, ui->picPhoto->y()); });
    connect(ui->VScroll1, &QScrollBar::valueChanged, this,
            [this](int y) { ui->picPhoto->move(ui->picPhoto->x(), -y); });

    connect(ui->cmdButtons_0, &QPushButton::clicked, this, [this] { cmdButtons_Click(0); });
    connect(ui->cmdButtons_1, &QPushButton::clicked, this, [this] { cmdButtons_Click(1); });
    connect(ui->cmdButtons_2, &QPushButton::clicked, this, [this] { cmdButtons_Click(2); });
    connect(ui->cmdButtons_3, &QPushButton::clicked, this, [this] { cmdButtons_Click(3); });

    m_support->openingRead([this] { Form_Load(); });
}

frmModUser::~frmModUser() = default;

void frmModUser::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    Hourglass::set(0);
}

bool frmModUser::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_cellEditor && event->type() == QEvent::FocusOut)
        commitCellEditor();
    if (event->type() == QEvent::MouseButtonRelease) {
        if (watched == ui->lblAutoMinimize)
            ui->chkAutoMinimize->toggle();
        else if (watched == ui->lblMinimizeOnClose)
            ui->chkMinimizeOnClose->toggle();
    }
    return QDialog::eventFilter(watched, event);
}

// ------------------------------------------------------------------ loading

void frmModUser::Form_Load()
{
    setWindowTitle(windowTitle() + QStringLiteral(" [ ") + SelectedItemName + QStringLiteral(" ]"));

    Recordset rs = gdbMain.query(QStringLiteral("SELECT Status FROM StatusTypesTable"));
    for (; !rs.eof(); rs.moveNext())
        ui->comboStatusTypes->addItem(trimmedText(rs.value(0)));
    rs = gdbMain.query(QStringLiteral("SELECT DueBack FROM DueBackTable"));
    for (; !rs.eof(); rs.moveNext())
        ui->ComboDueBack->addItem(shownText(rs.value(0)));
    rs = gdbMain.query(QStringLiteral("SELECT GroupName FROM GroupTable"));
    for (; !rs.eof(); rs.moveNext())
        ui->ComboLastGroup->addItem(shownText(rs.value(0)));
    rs.close();

    // The row is found by its key, not by a pattern: a name holding
    // [ ] * ? or # must find itself and nobody else.
    SelectedItemID.clear();
    QStringList added;
    QVariantList addedValues;
    Recordset user = gdbMain.openTable(QStringLiteral("EmployeeTable"), QStringLiteral("Name = ?"), {SelectedItemName});
    for (const QString &column : user.fieldNames())
        if (column.contains(AddedPrefix) && !column.contains(QLatin1String("ReadOnly")))
            added << column;
    if (!user.eof()) {
        ui->txtID->setText(shownText(user.value(QStringLiteral("UID"))));
        SelectedItemID = ui->txtID->text();
        ui->txtName->setText(shownText(user.value(QStringLiteral("Name"))));
        const QString status = shownText(user.value(QStringLiteral("Status")));
        ui->comboStatusTypes->setCurrentIndex(ui->comboStatusTypes->findText(status, Qt::MatchFixedString | Qt::MatchCaseSensitive));
        ui->comboStatusTypes->setEditText(status);
        ui->txtPhone->setText(shownText(user.value(QStringLiteral("Phone"))));
        ui->ComboDueBack->setEditText(shownText(user.value(QStringLiteral("DueBack"))));
        ui->txtComments->setText(shownText(user.value(QStringLiteral("Comments"))));
        for (const QString &column : added)
            addedValues << user.value(column);
    } else {
        // Gone since the list was drawn: the fields stay empty.
        ui->comboStatusTypes->setEditText(QString());
        ui->ComboDueBack->setEditText(QString());
        for (qsizetype i = 0; i < added.size(); ++i)
            addedValues << QVariant();
    }
    user.close();
    buildGrid(added, addedValues);

    loadSettings();
    fillGroupLists();
    ui->txtName->selectAll();
    ui->txtName->setFocus();
    ui->StatusBar->showMessage(QStringLiteral(" Adds a colored button to the users ToolBar."));
    ui->TabStrip1->setCurrentIndex(0);
    preparePhotoPage();
}

void frmModUser::buildGrid(const QStringList &columns, const QVariantList &values)
{
    QTableWidget *grid = ui->msFlexGridChange;
    grid->setRowCount(0);
    const auto cell = [](const QString &text) {
        auto *item = new QTableWidgetItem(text);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        return item;
    };
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const int row = grid->rowCount();
        grid->insertRow(row);
        grid->setItem(row, 0, cell(columns[i].mid(AddedPrefix.size())));
        grid->setItem(row, 1, cell(shownText(values.value(i))));
    }
    // An empty row keeps the grid from being a bare heading.
    if (grid->rowCount() == 0) {
        grid->insertRow(0);
        grid->setItem(0, 0, cell(QString()));
        grid->setItem(0, 1, cell(QString()));
    }
}

void frmModUser::selectRefreshRate(const QVariant &rate, bool templateMapping)
{
    const int value = rate.toInt();
    if (!templateMapping) {
        int index = 2;
        for (int i = 0; i < 6; ++i)
            if (!rate.isNull() && RefreshRates[i] == value)
                index = i;
        m_refreshRate.select(index);
        return;
    }
    // The template is read with its own table, which knows a rate of 10 and
    // so runs one choice ahead from there on; 60 asks for a choice that
    // does not exist. Both are kept as the board has always had them.
    constexpr int TemplateRates[] = {0, 1, 5, 10, 15, 30, 60};
    for (int i = 0; i < 7; ++i)
        if (!rate.isNull() && TemplateRates[i] == value)
            m_refreshRate.select(i);
}

void frmModUser::selectSortKey(const QVariant &key, bool lenient)
{
    const int value = key.toInt();
    if (value <= 0 && (lenient || value == 0)) {
        m_sortKey.select(2);
        return;
    }
    if (lenient && !m_sortKey.button(value)) {
        m_sortKey.select(2);  // a key of no choice loads as Name, without a word
        return;
    }
    m_sortKey.select(value);
}

void frmModUser::loadSettings()
{
    Recordset s = gdbMain.openTable(QStringLiteral("EmployeeSettingsTable"), QStringLiteral("Name = ?"), {SelectedItemName});
    if (s.eof())
        return;
    const auto v = [&s](const char *column) { return s.value(QLatin1String(column)); };
    if (ui->txtPhone->text().isEmpty())
        ui->txtPhone->setText(shownText(v("Phone")));
    setCheck(ui->chkStatusAlertsOverride, v("StatusAlertsOverride"));
    setCheck(ui->chkAutoClearComments, v("AutoClearComments"));
    setCheck(ui->chkAutoLogIn, v("AutoLogIn"));
    setCheck(ui->chkAutoLogOut, v("AutoLogOut"));
    setCheck(ui->chkListViewPopUp, v("ListViewPopUp"));
    setCheck(ui->chkChangeScreenPopUp, v("ChangeScreenPopUp"));
    selectRefreshRate(v("RefreshRate"), false);
    ui->ComboLastGroup->setEditText(shownText(v("DefaultGroup")));
    setCheck(ui->chkDisplayTreeView, v("DisplayTreeView"));
    ui->txtStatusColumnWidth->setText(shownText(v("StatusColumnWidth")));
    ui->txtNameColumnWidth->setText(shownText(v("NameColumnWidth")));
    ui->txtPhoneColumnWidth->setText(shownText(v("PhoneColumnWidth")));
    ui->txtDueBackColumnWidth->setText(shownText(v("DueBackColumnWidth")));
    ui->txtCommentsColumnWidth->setText(shownText(v("CommentsColumnWidth")));
    ui->txtLastModifiedColumnWidth->setText(shownText(v("LastModifiedColumnWidth")));
    m_sortOrder.select(v("SortOrder").toInt());
    selectSortKey(v("SortKey"), true);
    ui->txtScreenTop->setText(shownText(v("ScreenTop")));
    ui->txtScreenLeft->setText(shownText(v("ScreenLeft")));
    ui->txtScreenWidth->setText(shownText(v("ScreenWidth")));
    ui->txtScreenHeight->setText(shownText(v("ScreenHeight")));
    setCheck(ui->chkAutoMinimize, v("AutoMinimize"));
    setCheck(ui->chkMinimizeOnClose, v("MinimizeOnClose"));
    m_security.select(v("UserSecurityLevel").toInt());
    m_sysTray.select(v("MinimizeSetting").toInt());
    m_iconSize.select(v("IconSize").toInt());
    m_toolBarText.select(v("ToolBarText").isNull() ? 1 : v("ToolBarText").toInt());
    setCheck(ui->chkPhotoSizeToFit, v("PhotoSizeToFit"));
    ui->txtFileName->setText(shownText(v("PictureFileName")));
}

void frmModUser::fillGroupLists()
{
    const QPixmap icon = Images::ImageListSmall().value(QStringLiteral("Groups"));
    ui->ListView1->clear();
    ui->ListView2->clear();
    Recordset rs = gdbMain.query(QStringLiteral("SELECT GroupTable.GroupName FROM GroupTable WHERE GroupName NOT IN ("
                                                "SELECT DISTINCT GroupName FROM EmployeeGroupTable WHERE "
                                                "EmployeeName = ? AND GroupManager > 0) ORDER BY GroupName"),
                                 {SelectedItemName});
    for (; !rs.eof(); rs.moveNext())
        ui->ListView1->addItem(new QListWidgetItem(icon, rs.text(QStringLiteral("GroupName"))));
    rs = gdbMain.query(QStringLiteral("SELECT * FROM EmployeeGroupTable WHERE EmployeeName = ? AND GroupManager > 0 "
                                      "ORDER BY GroupName"),
                       {SelectedItemName});
    for (; !rs.eof(); rs.moveNext())
        ui->ListView2->addItem(new QListWidgetItem(icon, rs.text(QStringLiteral("GroupName"))));
    rs.close();
}

void frmModUser::moveGroup(QListWidget *from, QListWidgetItem *item, QListWidget *to)
{
    if (!item || from->count() == 0)
        return;
    to->addItem(new QListWidgetItem(item->icon(), item->text()));
    delete from->takeItem(from->row(item));
}

// ------------------------------------------------------------ the grid

void frmModUser::msFlexGridChange_Pick(int row)
{
    QTableWidget *grid = ui->msFlexGridChange;
    commitCellEditor();
    const QTableWidgetItem *name = grid->item(row, 0);
    if (!name || name->text().trimmed().isEmpty()) {
        QApplication::beep();
        QApplication::beep();
        return;
    }
    m_editRow = row;
    m_cellEditor->setGeometry(grid->visualItemRect(grid->item(row, 1)));
    m_cellEditor->setText(grid->item(row, 1)->text());
    m_cellEditor->show();
    m_cellEditor->selectAll();
    m_cellEditor->setFocus();
}

void frmModUser::commitCellEditor()
{
    if (m_editRow < 0)
        return;
    const int row = m_editRow;
    m_editRow = -1;  // first, so the focus leaving the editor does not come back here
    if (QTableWidgetItem *value = ui->msFlexGridChange->item(row, 1))
        value->setText(m_cellEditor->text());
    m_cellEditor->hide();
}

// -------------------------------------------------------------- buttons

void frmModUser::cmdButtons_Click(int index)
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
    case 3:
        guarded([this] { subReset(); });
        break;
    default:
        break;
    }
}

void frmModUser::refuse(const QString &text, const QString &title)
{
    Msg::box(text, Msg::Buttons::OK, Msg::Icon::Critical, title);
    // Also where the fault lies in the ID: the name field is the one selected.
    ui->txtName->selectAll();
    ui->txtName->setFocus();
}

bool frmModUser::validate()
{
    const QString name = ui->txtName->text().trimmed();
    const QString id = ui->txtID->text().trimmed();
    if (name.isEmpty()) {
        refuse(QStringLiteral("Please enter this user's name (Using your preferred format)."),
               QStringLiteral("Modify User Error"));
        return false;
    }
    if (id.isEmpty()) {
        refuse(QStringLiteral("Please enter this user's ID."), QStringLiteral("Modify User Error"));
        return false;
    }
    // The user's own row matches as well, so a change of case alone is refused.
    if (name != SelectedItemName && Users::nameTaken(gdbMain, name)) {
        refuse(QStringLiteral("Sorry, ") + name + QStringLiteral(" already exists.") + QLatin1Char('\r') +
                   QStringLiteral("Please select a different user name or add the user's middle initial."),
               QStringLiteral("Error - User Exists"));
        return false;
    }
    if (id != SelectedItemID && Users::uidTaken(gdbMain, id)) {
        refuse(QStringLiteral("Sorry, ") + id + QStringLiteral(" already exists.") + QLatin1Char('\r') +
                   QStringLiteral("Please select a different User ID."),
               QStringLiteral("Error - User ID Exists"));
        return false;
    }
    return true;
}

void frmModUser::okClicked()
{
    using Users::wholeNumberAtStart;
    commitCellEditor();
    if (!validate())
        return;
    Hourglass::set(11);

    Users::UserChanges c;
    c.oldName = SelectedItemName;
    c.uid = ui->txtID->text();
    c.name = ui->txtName->text();
    c.status = ui->comboStatusTypes->currentText();
    c.phone = ui->txtPhone->text();
    c.dueBack = ui->ComboDueBack->currentText();
    c.comments = ui->txtComments->text();
    const QTableWidget *grid = ui->msFlexGridChange;
    for (int row = 0; row < grid->rowCount(); ++row)
        c.addedColumns.append({grid->item(row, 0)->text(), grid->item(row, 1)->text()});

    const int refreshIndex = m_refreshRate.chosen(2);
    QString picture;
    if (!ui->txtFileName->text().isEmpty() && !ui->File1->selectedItems().isEmpty())
        picture = ui->File1->selectedItems().first()->text();
    c.settings = {
        {QStringLiteral("Phone"), ui->txtPhone->text().trimmed()},
        {QStringLiteral("StatusAlertsOverride"), checkValue(ui->chkStatusAlertsOverride)},
        {QStringLiteral("AutoClearComments"), checkValue(ui->chkAutoClearComments)},
        {QStringLiteral("AutoLogIn"), checkValue(ui->chkAutoLogIn)},
        {QStringLiteral("AutoLogOut"), checkValue(ui->chkAutoLogOut)},
        {QStringLiteral("ListViewPopUp"), checkValue(ui->chkListViewPopUp)},
        {QStringLiteral("ChangeScreenPopUp"), checkValue(ui->chkChangeScreenPopUp)},
        {QStringLiteral("DisplayTreeView"), checkValue(ui->chkDisplayTreeView)},
        {QStringLiteral("SortKey"), m_sortKey.chosen(2)},
        {QStringLiteral("SortOrder"), m_sortOrder.chosen(0)},
        {QStringLiteral("UserSecurityLevel"), m_security.chosen(0)},
        {QStringLiteral("RefreshRate"), RefreshRates[refreshIndex]},
        {QStringLiteral("AutoMinimize"), checkValue(ui->chkAutoMinimize)},
        {QStringLiteral("MinimizeSetting"), m_sysTray.chosen(0)},
        {QStringLiteral("MinimizeOnClose"), checkValue(ui->chkMinimizeOnClose)},
        {QStringLiteral("IconSize"), m_iconSize.chosen(0)},
        {QStringLiteral("ToolBarText"), m_toolBarText.chosen(1)},
        {QStringLiteral("ScreenTop"), wholeNumberAtStart(ui->txtScreenTop->text())},
        {QStringLiteral("ScreenLeft"), wholeNumberAtStart(ui->txtScreenLeft->text())},
        {QStringLiteral("ScreenWidth"), wholeNumberAtStart(ui->txtScreenWidth->text())},
        {QStringLiteral("ScreenHeight"), wholeNumberAtStart(ui->txtScreenHeight->text())},
        {QStringLiteral("StatusColumnWidth"), wholeNumberAtStart(ui->txtStatusColumnWidth->text())},
        {QStringLiteral("NameColumnWidth"), wholeNumberAtStart(ui->txtNameColumnWidth->text())},
        {QStringLiteral("PhoneColumnWidth"), wholeNumberAtStart(ui->txtPhoneColumnWidth->text())},
        {QStringLiteral("DueBackColumnWidth"), wholeNumberAtStart(ui->txtDueBackColumnWidth->text())},
        {QStringLiteral("CommentsColumnWidth"), wholeNumberAtStart(ui->txtCommentsColumnWidth->text())},
        {QStringLiteral("LastModifiedColumnWidth"), wholeNumberAtStart(ui->txtLastModifiedColumnWidth->text())},
        {QStringLiteral("PictureFileName"), picture},
        {QStringLiteral("PhotoSizeToFit"), checkValue(ui->chkPhotoSizeToFit)},
    };
    for (int i = 0; i < ui->ListView2->count(); ++i)
        c.managedGroups << ui->ListView2->item(i)->text();

    Users::saveUser(gdbMain, c);
    Hourglass::set(0);
    accept();
}

void frmModUser::subReset()
{
    Recordset t = Users::openNewUserDefaults(gdbMain);
    const auto v = [&t](const char *column) { return t.value(QLatin1String(column)); };
    setCheck(ui->chkAutoClearComments, v("AutoClearComments"));
    setCheck(ui->chkAutoLogIn, v("AutoLogIn"));
    setCheck(ui->chkAutoLogOut, v("AutoLogOut"));
    setCheck(ui->chkAutoMinimize, v("AutoMinimize"));
    setCheck(ui->chkMinimizeOnClose, v("MinimizeOnClose"));
    selectRefreshRate(v("RefreshRate"), true);
    ui->ComboLastGroup->setEditText(shownText(v("DefaultGroup")));
    ui->txtStatusColumnWidth->setText(shownText(v("StatusColumnWidth")));
    ui->txtNameColumnWidth->setText(shownText(v("NameColumnWidth")));
    ui->txtPhoneColumnWidth->setText(shownText(v("PhoneColumnWidth")));
    ui->txtDueBackColumnWidth->setText(shownText(v("DueBackColumnWidth")));
    ui->txtCommentsColumnWidth->setText(shownText(v("CommentsColumnWidth")));
    ui->txtLastModifiedColumnWidth->setText(shownText(v("LastModifiedColumnWidth")));
    m_sortOrder.select(v("SortOrder").toInt());
    selectSortKey(v("SortKey"), false);
    ui->txtScreenTop->setText(shownText(v("ScreenTop")));
    ui->txtScreenLeft->setText(shownText(v("ScreenLeft")));
    ui->txtScreenWidth->setText(shownText(v("ScreenWidth")));
    ui->txtScreenHeight->setText(shownText(v("ScreenHeight")));
    setCheck(ui->chkListViewPopUp, v("ListViewPopUp"));
    setCheck(ui->chkChangeScreenPopUp, v("ChangeScreenPopUp"));
    setCheck(ui->chkDisplayTreeView, v("DisplayTreeView"));
    m_security.select(v("UserSecurityLevel").toInt());
    m_sysTray.select(v("MinimizeSetting").toInt());
    m_iconSize.select(v("IconSize").toInt());
    m_toolBarText.select(v("ToolBarText").toInt());
    t.close();
    Msg::box(QStringLiteral("Values have been reset to 'New User' defaults, but not saved (yet)."));
}

// ------------------------------------------------------------ photo page

void frmModUser::preparePhotoPage()
{
    QString folder;
    const QVariant path = gdbMain.scalar(QStringLiteral("SELECT PhotoPath from GlobalSettingsTable"));
    if (!path.isNull() && !path.toString().trimmed().isEmpty()) {
        const auto local = UncPath::toLocal(path.toString().trimmed());
        if (local && QFileInfo(*local).isDir())
            folder = *local;
    }
    if (folder.isEmpty())
        folder = localFolder(gstrDataPath);
    m_photoFolder = QDir(folder).absolutePath();

    // Names are matched without regard to case, as the user programs do;
    // the picture is read under the name the folder really has.
    QString chosen = ui->txtFileName->text();
    const QStringList files =
        QDir(m_photoFolder).entryList({QStringLiteral("*.jpg")}, QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
    {
        const QSignalBlocker quiet(ui->File1);
        for (const QString &file : files) {
            ui->File1->addItem(file);
            if (file.compare(chosen, Qt::CaseInsensitive) == 0) {
                ui->File1->item(ui->File1->count() - 1)->setSelected(true);
                chosen = file;
            }
        }
    }
    if (!chosen.isEmpty())
        showPicture(m_photoFolder + QLatin1Char('/') + chosen);
    applyPhotoSize();
}

void frmModUser::showPicture(const QString &localPath)
{
    // A picture that cannot be read leaves the panel empty, without a word.
    QImageReader reader(localPath);
    reader.setAutoTransform(true);
    m_picture = QPixmap::fromImage(reader.read());
    ui->imgPhoto->setPixmap(m_picture);
    ui->picPhoto->setPixmap(m_picture);
    ui->picPhoto->resize(m_picture.isNull() ? QSize(0, 0) : m_picture.size());
    ui->picPhoto->move(0, 0);
    ui->HScroll1->setValue(0);
    ui->VScroll1->setValue(0);
    subSetPictureBoxScrollBars();
}

void frmModUser::applyPhotoSize()
{
    const bool fit = ui->chkPhotoSizeToFit->isChecked();
    ui->imgPhoto->setVisible(fit);
    ui->picPortal->setVisible(!fit);
    if (fit) {
        ui->HScroll1->hide();
        ui->VScroll1->hide();
    } else {
        subSetPictureBoxScrollBars();
    }
}

void frmModUser::subSetPictureBoxScrollBars()
{
    if (ui->chkPhotoSizeToFit->isChecked())
        return;
    const QSize portal = ui->picPortal->maximumSize();
    const QSize picture = m_picture.isNull() ? QSize(0, 0) : m_picture.size();
    const int wider = picture.width() - portal.width();
    const int taller = picture.height() - portal.height();
    ui->HScroll1->setRange(0, std::max(0, wider));
    ui->HScroll1->setPageStep(portal.width());
    ui->HScroll1->setVisible(wider > 0);
    ui->VScroll1->setRange(0, std::max(0, taller));
    ui->VScroll1->setPageStep(portal.height());
    ui->VScroll1->setVisible(taller > 0);
}

void frmModUser::File1_Click()
{
    const QList<QListWidgetItem *> selected = ui->File1->selectedItems();
    if (selected.isEmpty())
        return;
    ui->txtFileName->setText(selected.first()->text());
    showPicture(m_photoFolder + QLatin1Char('/') + selected.first()->text());
}

void frmModUser::cmdBrowse_Click()
{
    const QString file = FileDialogs::openFile(this, QStringLiteral("Locate Users Photo"),
                                               QStringLiteral("Pictures (*.jpg)|*.jpg"), m_photoFolder);
    if (file.isEmpty())
        return;
    const QString name = QFileInfo(file).fileName();
    if (!name.toUpper().endsWith(QLatin1String(".JPG"))) {
        Msg::box(QStringLiteral("Invalid file selected"), Msg::Buttons::OK, Msg::Icon::Exclamation,
                 QStringLiteral(".JPG Not Found"));
        ui->txtFileName->clear();
        return;
    }
    ui->txtFileName->setText(name);
    // What OK stores is the entry of the photo folder's list; a picture from
    // elsewhere is shown but has no entry there.
    {
        const QSignalBlocker quiet(ui->File1);
        ui->File1->clearSelection();
        for (int i = 0; i < ui->File1->count(); ++i)
            if (ui->File1->item(i)->text().compare(name, Qt::CaseInsensitive) == 0 &&
                QFileInfo(file).absolutePath() == m_photoFolder)
                ui->File1->item(i)->setSelected(true);
    }
    showPicture(file);
}

void frmModUser::cmdClearImage_Click()
{
    ui->txtFileName->clear();
    {
        const QSignalBlocker quiet(ui->File1);
        ui->File1->clearSelection();
    }
    m_picture = QPixmap();
    ui->imgPhoto->clear();
    ui->picPhoto->clear();
    ui->picPhoto->resize(0, 0);
    ui->HScroll1->setValue(0);
    ui->VScroll1->setValue(0);
    subSetPictureBoxScrollBars();
}
