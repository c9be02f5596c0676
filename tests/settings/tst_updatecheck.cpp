// The update check against a real HTTP server on the loopback: the text
// comparison, every way a server can fail, the time-out, the busy guard,
// the product page on Yes, and the check at start.
#include "users/UsersTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "platform/IniFile.h"
#include "platform/UncPath.h"
#include "settings/UpdateCheck.h"

#include <QAction>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <optional>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

// Serves the version file: answers each request after `delayMs` with a
// status and a body, or keeps silent, or trickles a byte at a time.
class VersionServer : public QObject {
    Q_OBJECT

public:
    enum class Mode { Answer, Silent, Trickle };

    VersionServer(int status, QByteArray body, int delayMs = 0, Mode mode = Mode::Answer)
        : m_status(status), m_body(std::move(body)), m_delay(delayMs), m_mode(mode)
    {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *s = m_server.nextPendingConnection())
                connect(s, &QTcpSocket::readyRead, this, [this, s] { request(s); });
        });
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()); }
    QStringList paths;

private:
    void request(QTcpSocket *s)
    {
        QByteArray &got = m_requests[s];
        got += s->readAll();
        if (!got.contains("\r\n\r\n") || got.startsWith("done"))
            return;
        paths << QString::fromLatin1(got.split(' ').value(1));
        got = "done";
        if (m_mode == Mode::Silent)
            return;
        QTimer::singleShot(m_delay, s, [this, s] {
            if (m_mode == Mode::Trickle) {
                s->write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
                auto *drip = new QTimer(s);
                connect(drip, &QTimer::timeout, s, [s] { s->write("2"); });
                drip->start(50);
                return;
            }
            s->write("HTTP/1.1 " + QByteArray::number(m_status) + " Status\r\nContent-Type: text/plain\r\nContent-Length: " +
                     QByteArray::number(m_body.size()) + "\r\nConnection: close\r\n\r\n");
            s->write(m_body);
            s->disconnectFromHost();
        });
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_requests;
    int m_status;
    QByteArray m_body;
    int m_delay;
    Mode m_mode;
};

// Takes the browser's part: records the pages asked for.
class Browser : public QObject {
    Q_OBJECT

public:
    Browser()
    {
        QDesktopServices::setUrlHandler("http", this, "open");
        QDesktopServices::setUrlHandler("https", this, "open");
    }
    ~Browser() override
    {
        QDesktopServices::unsetUrlHandler("http");
        QDesktopServices::unsetUrlHandler("https");
    }
    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened << url; }
};

void useServer(const TestSupport::Site &site, const QString &url)
{
    IniFile::writeKey(site.iniFile(), "Update", "Server", url);
}

const QString Failed = "Check for Update failed.|Could not connect to Internet.";
const QString Newer = "TAVELLO Update %1 available|An update to TAVELLO is now available.";
const QString Latest = " Check for update|You are currently running the latest version of TAVELLO.";

// "title|first paragraph" of each box, the application title left out.
QStringList shown()
{
    QStringList out;
    for (const Msg::Shown &s : Msg::transcript())
        out << QString(s.title).remove(gstrAppTitle) + '|' + s.text.section("\r\n\r\n", 0, 0);
    return out;
}

}  // namespace

class TestUpdateCheck : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { UpdateCheck::setTimeout(5000); }

    void answers_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("delay");
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<QString>("box");
        const int answer = int(VersionServer::Mode::Answer);
        QTest::newRow("newer: 2006-07E") << 200 << QByteArray("2006-07E") << 0 << answer << 5000 << Newer.arg("2006-07E");
        QTest::newRow("same, case folded: 2006-07d") << 200 << QByteArray("2006-07d") << 0 << answer << 5000 << Latest;
        QTest::newRow("trailing line break compares greater")
            << 200 << QByteArray("2006-07D\r\n") << 0 << answer << 5000 << Newer.arg("2006-07D\r\n");
        QTest::newRow("older") << 200 << QByteArray("2005-12A") << 0 << answer << 5000 << Latest;
        QTest::newRow("text, not numbers: 2006-7E") << 200 << QByteArray("2006-7E") << 0 << answer << 5000
                                                    << Newer.arg("2006-7E");
        QTest::newRow("slow but in time") << 200 << QByteArray("2007-01A") << 700 << answer << 5000
                                          << Newer.arg("2007-01A");
        QTest::newRow("404") << 404 << QByteArray("2099-01A") << 0 << answer << 5000 << Failed;
        QTest::newRow("500") << 500 << QByteArray("Internal error") << 0 << answer << 5000 << Failed;
        QTest::newRow("empty") << 200 << QByteArray() << 0 << answer << 5000 << Failed;
        QTest::newRow("garbage bytes") << 200 << QByteArray("\x00\xff\xfe\x01garbage", 11) << 0 << answer << 5000 << Failed;
        QTest::newRow("huge body") << 200 << QByteArray(8 * 1024 * 1024, '9') << 0 << answer << 5000 << Failed;
        QTest::newRow("never answers") << 200 << QByteArray() << 0 << int(VersionServer::Mode::Silent) << 600 << Failed;
        QTest::newRow("trickles past the time-out") << 200 << QByteArray() << 0 << int(VersionServer::Mode::Trickle) << 800
                                                    << Failed;
        QTest::newRow("connection refused") << 0 << QByteArray() << 0 << -1 << 5000 << Failed;
    }
    void answers()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(int, delay);
        QFETCH(int, mode);
        QFETCH(int, timeout);
        QFETCH(QString, box);
        TestSupport::Site site;
        std::unique_ptr<VersionServer> server;
        if (mode >= 0) {
            server = std::make_unique<VersionServer>(status, body, delay, VersionServer::Mode(mode));
            useServer(site, server->url());
        } else {
            QTcpServer closed;  // a port that was just free
            closed.listen(QHostAddress::LocalHost);
            useServer(site, QStringLiteral("http://127.0.0.1:%1").arg(closed.serverPort()));
        }
        UpdateCheck::setTimeout(timeout);
        Msg::queueAnswers({Msg::No});
        QElapsedTimer t;
        t.start();
        UpdateCheck::mnuCheckForUpdates_Click();
        QVERIFY(Msg::transcript().isEmpty());  // nothing waits for the server
        QTRY_COMPARE_WITH_TIMEOUT(Msg::transcript().size(), 1, timeout + 5000);
        QCOMPARE(shown(), QStringList{box});
        const Msg::Shown s = Msg::transcript()[0];
        QCOMPARE(s.buttons, box == Failed ? Msg::Buttons::OK : Msg::Buttons::YesNo);
        QCOMPARE(s.icon, box == Failed ? Msg::Icon::Information : Msg::Icon::Question);
        if (mode == int(VersionServer::Mode::Silent) || mode == int(VersionServer::Mode::Trickle))
            QVERIFY(t.elapsed() >= timeout);
        if (server)
            QCOMPARE(server->paths, QStringList{"/products/tavello/tavellolatestversion.txt"});
        QVERIFY(!UpdateCheck::busy());
    }

    // A second check while the first waits is turned away; the console
    // keeps working meanwhile.
    void busyGuard()
    {
        Console c([](Database &db) { db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')"); });
        VersionServer server(200, "2006-07D", 800);
        useServer(c.site(), server.url());
        Msg::clearTranscript();
        Msg::queueAnswers({Msg::OK, Msg::No});
        QAction *check = c.w().menuItem("mnuCheckForUpdates");
        check->trigger();
        check->trigger();
        QCOMPARE(shown(), QStringList{"Check for Update.|Still checking Internet for update...."});
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::Information);
        c.clickNode("Groups");
        QCOMPARE(c.texts(), (QStringList{"Everyone", "Sales"}));
        QVERIFY(UpdateCheck::busy());
        QTRY_COMPARE_WITH_TIMEOUT(Msg::transcript().size(), 2, 8000);
        QCOMPARE(shown()[1], Latest);
        QCOMPARE(server.paths.size(), 1);
    }

    // Yes opens the product page in the desktop's browser.
    void yesOpensTheProductPage_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("browser");  // false: none can be started (the test platform has none)
        QTest::newRow("newer, Yes") << QByteArray("2006-08A") << int(Msg::Yes) << true;
        QTest::newRow("latest, Yes anyway") << QByteArray("2006-07D") << int(Msg::Yes) << true;
        QTest::newRow("newer, No") << QByteArray("2006-08A") << int(Msg::No) << true;
        QTest::newRow("Yes, no browser") << QByteArray("2006-08A") << int(Msg::Yes) << false;
    }
    void yesOpensTheProductPage()
    {
        QFETCH(QByteArray, version);
        QFETCH(int, answer);
        QFETCH(bool, browser);
        TestSupport::Site site;
        VersionServer server(200, version);
        useServer(site, server.url() + "/");
        std::optional<Browser> handler;
        if (browser)
            handler.emplace();
        Msg::queueAnswers({answer});
        UpdateCheck::mnuCheckForUpdates_Click();
        QTRY_VERIFY_WITH_TIMEOUT(!Msg::transcript().isEmpty(), 8000);
        if (browser)
            QCOMPARE(handler->opened, answer == Msg::Yes ? QList<QUrl>{QUrl(server.url() + "/products/tavello/index.html")}
                                                         : QList<QUrl>());
        QCOMPARE(shown().mid(1), browser ? QStringList() : QStringList{"Internet Explorer Failed!|Internet Explorer is not available."});
    }

    // The server setting: an https default, a host alone taken as https.
    void serverSetting_data()
    {
        QTest::addColumn<QString>("setting");  // "<none>" for no key
        QTest::addColumn<QString>("versionFile");
        QTest::addColumn<QString>("host");
        QTest::newRow("default") << "<none>" << "https://www.tavello.com/products/tavello/tavellolatestversion.txt"
                                 << "www.tavello.com";
        QTest::newRow("host alone") << "updates.example.org" << "https://updates.example.org/products/tavello/"
                                                                "tavellolatestversion.txt"
                                    << "updates.example.org";
        QTest::newRow("with port and slash") << "http://10.0.0.5:8080/" << "http://10.0.0.5:8080/products/tavello/"
                                                                          "tavellolatestversion.txt"
                                             << "10.0.0.5:8080";
    }
    void serverSetting()
    {
        QFETCH(QString, setting);
        QFETCH(QString, versionFile);
        QFETCH(QString, host);
        TestSupport::Site site;
        QFile ini(site.iniFile());
        QVERIFY(ini.remove());
        if (setting != "<none>")
            useServer(site, setting);
        QCOMPARE(UpdateCheck::versionFileUrl().toString(), versionFile);
        QCOMPARE(UpdateCheck::hostName(), host);
    }

    // With the option on, the start does not wait for the server: the list
    // is there first, the answer comes when the server replies.
    void checkAtStart_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("on") << 1 << QStringList{Newer.arg("2006-07E")};
        QTest::newRow("off") << 0 << QStringList();
    }
    void checkAtStart()
    {
        QFETCH(int, option);
        QFETCH(QStringList, boxes);
        VersionServer server(200, "2006-07E", 1500);
        Console c([&](Database &db) {
            IniFile::writeKey(UncPath::iniFile(), "Update", "Server", server.url());
            db.execute("UPDATE AdminSettingsTable SET AutoCheckForUpdates = ?", {option});
        });
        Msg::queueAnswers({Msg::No});
        QCOMPARE(c.texts(), QStringList{"Guest"});
        QCOMPARE(UpdateCheck::busy(), option == 1);
        QTRY_COMPARE_WITH_TIMEOUT(server.paths.size() + Msg::transcript().size(), 2 * option, 8000);
        QTest::qWait(option ? 0 : 500);
        QCOMPARE(shown(), boxes);
    }
};

QTEST_MAIN(TestUpdateCheck)
#include "tst_updatecheck.moc"
