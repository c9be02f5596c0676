#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// Looks on the update server for a release newer than gstrReleaseVersion.
// The fetch runs in the background: the console keeps working, and the
// answer comes as a message box when the server has replied, failed, or
// kept silent for longer than the time-out. One check at a time.
//
// The server is the key Server of the section [Update] of tavello.ini (a
// scheme and host, "https://www.tavello.com" when the key is missing); the
// version file and the product page lie under /products/tavello/ there.
class UpdateCheck : public QObject {
    Q_OBJECT

public:
    // The Help menu's "Check For Updates": starts a check, or says that one
    // is still running.
    static void mnuCheckForUpdates_Click();
    static bool busy();

    static QUrl serverUrl();
    static QString hostName();  // as the option window names the server
    static QUrl versionFileUrl();
    static QUrl productPageUrl();

    // How long the server may take in all, in milliseconds.
    static int timeout();
    static void setTimeout(int ms);
    // A version file is a line of text; a longer answer is no version file.
    static constexpr qint64 MaxAnswerBytes = 4096;

    // Steps after the fetch, for the text the server returned (empty: no
    // usable answer): the failure message, or the question whether to visit
    // the product page, and the browser on Yes.
    static void answer(const QString &serverText);

private:
    explicit UpdateCheck(QObject *parent);
    static UpdateCheck *instance();
    void start();
    void readSome();
    void finished();

    QNetworkAccessManager *m_network;
    QPointer<QNetworkReply> m_reply;
    QTimer m_deadline;
    QByteArray m_body;
    bool m_unusable = false;
};
