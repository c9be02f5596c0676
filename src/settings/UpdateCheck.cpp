#include "settings/UpdateCheck.h"

#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/IniFile.h"
#include "platform/MessageBox.h"
#include "platform/UncPath.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringDecoder>

namespace {

const QString CRLF = QStringLiteral("\r\n");
const QString DefaultServer = QStringLiteral("https://www.tavello.com");
int g_timeoutMs = 5000;
QPointer<UpdateCheck> g_instance;

void couldNotConnect()
{
    Msg::box(QStringLiteral("Could not connect to Internet."), Msg::Buttons::OK, Msg::Icon::Information,
             gstrAppTitle + QStringLiteral("Check for Update failed."));
}

}  // namespace

UpdateCheck::UpdateCheck(QObject *parent) : QObject(parent), m_network(new QNetworkAccessManager(this))
{
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    connect(&m_deadline, &QTimer::timeout, this, [this] {
        if (m_reply)
            m_reply->abort();
    });
}

UpdateCheck *UpdateCheck::instance()
{
    // A check belongs to the console window that asked for it and goes with it.
    QObject *owner = frmMain::instance();
    if (!owner)
        owner = QCoreApplication::instance();
    if (!g_instance || g_instance->parent() != owner)
        g_instance = new UpdateCheck(owner);
    return g_instance;
}

bool UpdateCheck::busy() { return g_instance && g_instance->m_reply; }

int UpdateCheck::timeout() { return g_timeoutMs; }
void UpdateCheck::setTimeout(int ms) { g_timeoutMs = ms; }

QUrl UpdateCheck::serverUrl()
{
    QString text = IniFile::readKey(UncPath::iniFile(), QStringLiteral("Update"), QStringLiteral("Server")).trimmed();
    if (text.isEmpty())
        text = DefaultServer;
    if (!text.contains(QLatin1String("://")))
        text = QStringLiteral("https://") + text;
    while (text.endsWith(QLatin1Char('/')))
        text.chop(1);
    return QUrl(text);
}

QString UpdateCheck::hostName()
{
    const QUrl url = serverUrl();
    return url.port() == -1 ? url.host() : url.host() + QLatin1Char(':') + QString::number(url.port());
}

QUrl UpdateCheck::versionFileUrl()
{
    QUrl url = serverUrl();
    url.setPath(url.path() + QStringLiteral("/products/tavello/tavellolatestversion.txt"));
    return url;
}

QUrl UpdateCheck::productPageUrl()
{
    QUrl url = serverUrl();
    url.setPath(url.path() + QStringLiteral("/products/tavello/index.html"));
    return url;
}

void UpdateCheck::mnuCheckForUpdates_Click()
{
    if (busy()) {
        Msg::box(QStringLiteral("Still checking Internet for update...."), Msg::Buttons::OK, Msg::Icon::Information,
                 gstrAppTitle + QStringLiteral("Check for Update."));
        return;
    }
    instance()->start();
}

void UpdateCheck::start()
{
    m_body.clear();
    m_unusable = false;
    const QUrl url = versionFileUrl();
    if (!url.isValid() || url.host().isEmpty()) {
        couldNotConnect();
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::readyRead, this, &UpdateCheck::readSome);
    connect(m_reply, &QNetworkReply::finished, this, &UpdateCheck::finished);
    m_deadline.start(g_timeoutMs);
}

void UpdateCheck::readSome()
{
    if (!m_reply)
        return;
    m_body += m_reply->read(MaxAnswerBytes + 1 - m_body.size());
    if (m_body.size() > MaxAnswerBytes) {
        m_unusable = true;
        m_reply->abort();
    }
}

void UpdateCheck::finished()
{
    m_deadline.stop();
    QNetworkReply *reply = m_reply;
    if (!reply)
        return;
    if (!m_unusable && reply->error() == QNetworkReply::NoError)
        readSome();
    const bool ok = !m_unusable && reply->error() == QNetworkReply::NoError;
    m_reply = nullptr;
    reply->deleteLater();

    QString text;
    if (ok) {
        // Text, or no answer at all: a NUL or a broken character is no
        // version file.
        QStringDecoder utf8(QStringDecoder::Utf8);
        text = utf8(m_body);
        if (utf8.hasError() || text.contains(QChar(u'\0')))
            text.clear();
    }
    m_body.clear();
    answer(text);
}

void UpdateCheck::answer(const QString &serverText)
{
    if (serverText.isEmpty()) {
        couldNotConnect();
        return;
    }
    // Text against text, case folded, nothing trimmed: a trailing line break
    // makes the server's text the greater.
    int reply;
    if (serverText.toUpper() > gstrReleaseVersion.toUpper()) {
        reply = Msg::box(QStringLiteral("An update to TAVELLO is now available.") + CRLF + CRLF +
                             QStringLiteral("Would you like to visit the web site now? (opens new Internet Explorer window)"),
                         Msg::Buttons::YesNo, Msg::Icon::Question,
                         QStringLiteral("TAVELLO Update ") + serverText + QStringLiteral(" available"));
    } else {
        reply = Msg::box(QStringLiteral("You are currently running the latest version of TAVELLO.") + CRLF + CRLF +
                             QStringLiteral("Would you like to visit the web site anyway? (opens new Internet Explorer window)"),
                         Msg::Buttons::YesNo, Msg::Icon::Question, gstrAppTitle + QStringLiteral(" Check for update"));
    }
    if (reply != Msg::Yes)
        return;
    if (!QDesktopServices::openUrl(productPageUrl()))
        Msg::box(QStringLiteral("Internet Explorer is not available."), Msg::Buttons::OK, Msg::Icon::Information,
                 QStringLiteral("Internet Explorer Failed!"));
}
