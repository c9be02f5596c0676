#include "messages/frmViewMessage.h"

#include "ui_frmViewMessage.h"

#include "core/DialogSupport.h"
#include "core/Global.h"
#include "messages/MessageStore.h"

frmViewMessage::frmViewMessage(const QString &id, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmViewMessage>())
{
    ui->setupUi(this);
    m_support = new DialogSupport(this, nullptr);
    ui->lblFrom->setBuddy(ui->txtFrom);
    ui->lblTo->setBuddy(ui->txtTo);
    ui->lblSent->setBuddy(ui->txtSent);
    ui->lblCategory->setBuddy(ui->txtCategory);
    ui->lblSubject->setBuddy(ui->txtSubject);
    ui->lblBody->setBuddy(ui->txtBody);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::accept);

    const QVariantMap m = Messages::message(gdbMain, id);
    m_found = !m.isEmpty();
    const auto field = [&m](const char *name) { return m.value(QLatin1String(name)).toString(); };
    ui->txtFrom->setText(Messages::fromText(m));
    ui->txtTo->setText(field("SentToName"));
    ui->txtSent->setText(Messages::dateNumberText(m.value(QStringLiteral("SentDateTimeNum"))));
    ui->txtCategory->setText(field("Category"));
    ui->txtSubject->setText(field("MessageSubject"));
    QString body = field("MessageBody");
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    ui->txtBody->setPlainText(body);
    for (QLineEdit *e : {ui->txtFrom, ui->txtTo, ui->txtSent, ui->txtCategory, ui->txtSubject})
        e->setCursorPosition(0);
}

frmViewMessage::~frmViewMessage() = default;
