#include "messages/frmMsgsPreview.h"

#include "ui_frmMsgsPreview.h"

#include "console/AdminListView.h"
#include "core/Unhandled.h"
#include "console/frmMain.h"
#include "core/DialogSupport.h"
#include "core/Global.h"
#include "messages/MessageStore.h"
#include "messages/frmViewMessage.h"
#include "platform/Hourglass.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"

#include <QAction>
#include <QHeaderView>
#include <QToolBar>

// The pictures live in a static library: register them explicitly.
static void initMessageIcons()
{
    static bool done = false;
    if (!done) {
        Q_INIT_RESOURCE(message_icons);
        done = true;
    }
}

namespace {

struct Button {
    const char *key;
    const char *caption;
    const char *tip;
    bool userProgram;  // works only in the user program, which owns the message form
};

const Button Buttons[] = {
    {"View", "View", " View selected TAVELLO message ", false},
    {"New", "New", " Create new message ", true},
    {"Reply", "Reply", " Reply to selected message ", true},
    {"ReplyAll", "Reply All", " Reply to All ", true},
    {"Forward", "Forward", " Forward selected message ", true},
    {"eMail", "eMail", " Send eMail ", true},
    {"WYWO", "WYWO", " Send WYWO message ", true},
    {"Print", "Print", " Print selected message(s) ", false},
    {"Delete", "Delete", " Delete selected message(s) ", false},
    {"Refresh", "Refresh", " Refresh preview screen ", false},
    {"Help", "Help", " Display preview message Help ", false},
};

const QString UserProgramOnly = QStringLiteral("(in the TAVELLO user program only) ");

QIcon buttonIcon(const QString &key)
{
    QIcon icon;
    icon.addFile(QStringLiteral(":/messages/icons/%1-16.png").arg(key));
    icon.addFile(QStringLiteral(":/messages/icons/%1-24.png").arg(key));
    return icon;
}

// The row chosen in the console's Messages list names the person: its
// recipient.
QString recipientChosenInConsole()
{
    const frmMain *main = frmMain::instance();
    if (!main)
        return QString();
    const AdminListView *list = main->ListViewMain();
    const int row = list->selectedItem();
    if (row < 0)
        return QString();
    return list->list()->subItem(row, 1);
}

void reportFailure(const StoreError &e, const QString &label)
{
    Hourglass::set(0);
    Msg::box(QStringLiteral("Error (") + QString::number(e.number()) + QStringLiteral(" ) in ") + label +
             QStringLiteral("\r") + e.text());
}

}  // namespace

frmMsgsPreview::frmMsgsPreview(QWidget *parent) : frmMsgsPreview(recipientChosenInConsole(), parent) {}

frmMsgsPreview::frmMsgsPreview(const QString &person, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmMsgsPreview>()), m_person(person)
{
    initMessageIcons();
    ui->setupUi(this);
    setup();
    try {
        subLoad_MsgsPreview_ListView();
    } catch (const StoreError &e) {
        reportFailure(e, QStringLiteral("frmMsgsPreview - Load event"));
    }
    subBindMsgsPreviewToolBar();
    setButtonStates();
}

frmMsgsPreview::~frmMsgsPreview() = default;

void frmMsgsPreview::setup()
{
    // The caption is the user program's own, without the console's prefix.
    const QString caption = windowTitle();
    m_support = new DialogSupport(this, ui->StatusBarMsgsPreview);
    setWindowTitle(caption);
    ui->StatusBarMsgsPreview->setSizeGripEnabled(true);
    ui->imgPreviewIcon->setPixmap(QPixmap(QStringLiteral(":/messages/icons/eMail-24.png")));
    ui->imgPreviewIcon->setAccessibleName(QStringLiteral("Messages"));

    m_toolbar = new QToolBar(this);
    m_toolbar->setObjectName(QStringLiteral("ToolbarMsgsPreview"));
    m_toolbar->setIconSize(QSize(24, 24));
    ui->layoutTop->addWidget(m_toolbar, 1);
    for (const Button &b : Buttons) {
        QAction *a = m_toolbar->addAction(QString::fromLatin1(b.caption));
        const QString key = QString::fromLatin1(b.key);
        a->setObjectName(key);
        a->setData(key);
        QString tip = QString::fromLatin1(b.tip);
        if (b.userProgram)
            tip += UserProgramOnly;
        a->setToolTip(tip);
        connect(a, &QAction::triggered, this, [this, key] { ToolbarMsgsPreview_ButtonClick(key); });
    }

    QTreeWidget *list = ui->listMsgsPreview;
    list->header()->setSectionResizeMode(QHeaderView::Interactive);
    const int widths[] = {70, 100, 130, 220, 145, 90, 70};
    for (int i = 0; i < 7; ++i)
        list->setColumnWidth(i, widths[i]);
    connect(list, &QTreeWidget::itemDoubleClicked, this, [this] { ToolbarMsgsPreview_ButtonClick(QStringLiteral("View")); });
    connect(list, &QTreeWidget::itemSelectionChanged, this, [this] { setButtonStates(); });

    ui->StatusBarMsgsPreview->showMessage(QStringLiteral(" Messages for ") + m_person);
}

QStringList frmMsgsPreview::buttonKeys()
{
    QStringList keys;
    for (const Button &b : Buttons)
        keys << QString::fromLatin1(b.key);
    return keys;
}

QAction *frmMsgsPreview::button(const QString &key) const
{
    for (QAction *a : m_toolbar->actions())
        if (a->data().toString() == key)
            return a;
    return nullptr;
}

void frmMsgsPreview::subBindMsgsPreviewToolBar()
{
    // Pictures only: the captions stay blank, as nothing in the console asks
    // for toolbar texts. The text of each button still names it to screen
    // readers.
    m_toolbar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const Button &b : Buttons) {
        QAction *a = button(QString::fromLatin1(b.key));
        a->setIcon(buttonIcon(a->data().toString()));
    }
}

void frmMsgsPreview::subLoad_MsgsPreview_ListView()
{
    Hourglass::set(11);
    const QVector<Messages::PreviewRow> rows = Messages::previewRows(gdbMain, m_person);
    QTreeWidget *list = ui->listMsgsPreview;
    list->clear();
    QList<QTreeWidgetItem *> items;
    for (const Messages::PreviewRow &r : rows) {
        QString body = r.body;
        body.replace(QLatin1String("\r\n"), QLatin1String(" ")).replace(QLatin1Char('\n'), QLatin1Char(' '));
        items << new QTreeWidgetItem(QStringList{r.category, r.from, r.subject, body, r.sent, r.sentBy, r.id});
    }
    list->addTopLevelItems(items);
    if (!items.isEmpty())
        list->setCurrentItem(items.first(), 0, QItemSelectionModel::NoUpdate);
    Hourglass::set(0);
}

void frmMsgsPreview::setButtonStates()
{
    const bool rows = ui->listMsgsPreview->topLevelItemCount() > 0;
    for (const Button &b : Buttons) {
        QAction *a = button(QString::fromLatin1(b.key));
        const QString key = a->data().toString();
        if (b.userProgram)
            a->setEnabled(false);
        else if (key == QLatin1String("View") || key == QLatin1String("Delete") || key == QLatin1String("Print"))
            a->setEnabled(rows);
        else
            a->setEnabled(true);
    }
}

QStringList frmMsgsPreview::selectedIds() const
{
    QStringList ids;
    QTreeWidget *list = ui->listMsgsPreview;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        if (list->topLevelItem(i)->isSelected())
            ids << list->topLevelItem(i)->text(6);
    return ids;
}

void frmMsgsPreview::ToolbarMsgsPreview_ButtonClick(const QString &key)
{
    guarded([&] {
        if (key == QLatin1String("View")) {
            subMsgsPreview_Command_View();
        } else if (key == QLatin1String("New") || key == QLatin1String("Reply") || key == QLatin1String("Forward")) {
            // The message form is the user program's; these buttons stay off.
        } else if (key == QLatin1String("Delete")) {
            deleteSelected();
        } else if (key == QLatin1String("Print")) {
            printSelected();
        } else if (key == QLatin1String("Refresh")) {
            try {
                subLoad_MsgsPreview_ListView();
            } catch (const StoreError &e) {
                reportFailure(e, QStringLiteral("frmMsgsPreview - Load event"));
            }
        } else if (key == QLatin1String("Exit")) {
            reject();
            return;
        } else if (key == QLatin1String("Help")) {
            DialogSupport::sendHelpKey(this);
        } else {
            Msg::box(QStringLiteral("Invalid selection!"), Msg::Buttons::OK, Msg::Icon::Critical, QStringLiteral("Error!"));
        }
    });
    setButtonStates();
}

void frmMsgsPreview::subMsgsPreview_Command_View()
{
    QTreeWidgetItem *item = ui->listMsgsPreview->currentItem();
    if (!item)
        return;
    frmViewMessage view(item->text(6), this);
    Modal::show(&view);
    subLoad_MsgsPreview_ListView();
}

void frmMsgsPreview::deleteSelected()
{
    const QStringList ids = selectedIds();
    if (ids.isEmpty())
        return;
    if (Msg::box(QStringLiteral("Are you sure you want to delete the selected message(s)?"), Msg::Buttons::YesNo,
                 Msg::Icon::Question, QStringLiteral("Delete Confirmation Required")) != Msg::Yes)
        return;
    // A marking, not a removal: the rows stay for the console's Delete.
    Messages::markDeleted(gdbMain, ids, QDateTime::currentDateTime());
    subCloseDatabase();
    subLoad_MsgsPreview_ListView();
}

ReportPrinter::Report frmMsgsPreview::messagesReport(const QString &person, const QStringList &ids)
{
    ReportPrinter::Report r;
    r.caption = gstrAppTitle + QStringLiteral("Print Messages");
    r.documentName = QStringLiteral("TAVELLO-MESSAGES");
    r.title = QStringLiteral("TAVELLO Messages for ") + person + QLatin1Char('\n');
    r.titleFont = QFont(r.titleFont.family(), 12, QFont::Bold);
    r.bodyFont = ReportPrinter::fixedFont(10);  // the labels line up
    r.lineCount = ids.size() * 8;
    r.body = [ids](const ReportPrinter::LineSink &line) {
        for (const QString &id : ids) {
            const QVariantMap m = Messages::message(gdbMain, id);
            if (m.isEmpty())
                continue;
            const auto field = [&m](const char *name) { return m.value(QLatin1String(name)).toString(); };
            QStringList lines{
                QStringLiteral("Message ") + id + QStringLiteral("    ") + field("Category"),
                QStringLiteral("From:     ") + Messages::fromText(m),
                QStringLiteral("To:       ") + field("SentToName"),
                QStringLiteral("Sent:     ") + Messages::dateNumberText(m.value(QStringLiteral("SentDateTimeNum"))),
                QStringLiteral("Subject:  ") + field("MessageSubject"),
                QString(),
            };
            QString body = field("MessageBody");
            body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
            lines += body.split(QLatin1Char('\n'));
            lines << QString() << QString(40, QLatin1Char('-')) << QString();
            for (const QString &l : lines)
                if (!line(l))
                    return;
        }
    };
    return r;
}

void frmMsgsPreview::printSelected()
{
    const QStringList ids = selectedIds();
    if (ids.isEmpty())
        return;
    ReportPrinter::preview(this, messagesReport(m_person, ids));
}
