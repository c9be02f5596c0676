#include "platform/Help.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QKeyEvent>
#include <QPointer>
#include <QTextBrowser>
#include <QVBoxLayout>

// The pages live in a static library: register them explicitly.
static void initHelpResources()
{
    static bool done = false;
    if (!done) {
        Q_INIT_RESOURCE(help);
        done = true;
    }
}

namespace {

QString g_lastPage;

class HelpWindow : public QWidget {
public:
    HelpWindow() : QWidget(nullptr, Qt::Window)
    {
        setObjectName(QStringLiteral("HelpWindow"));
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        browser = new QTextBrowser(this);
        browser->setOpenLinks(true);
        browser->setSearchPaths({QStringLiteral(":/help")});
        layout->addWidget(browser);
        resize(560, 480);
    }
    QTextBrowser *browser;
};

QPointer<HelpWindow> g_window;

QString pageFor(const QWidget *w)
{
    for (const QWidget *p = w; p; p = p->parentWidget()) {
        const QString name = p->objectName().isEmpty() ? QString::fromLatin1(p->metaObject()->className())
                                                       : p->objectName();
        if (QFile::exists(QStringLiteral(":/help/") + name + QStringLiteral(".html")))
            return name;
        if (p->isWindow())
            break;
    }
    return QStringLiteral("index");
}

class F1Filter : public QObject {
protected:
    bool eventFilter(QObject *obj, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1 &&
            obj->isWidgetType()) {
            Help::showFor(static_cast<QWidget *>(obj)->window());
            return true;
        }
        return false;
    }
};

}  // namespace

namespace Help {

void install()
{
    initHelpResources();
    static F1Filter filter;
    qApp->installEventFilter(&filter);
}

void showFor(const QWidget *window)
{
    initHelpResources();
    const QString page = pageFor(window);
    g_lastPage = page;
    if (!g_window) {
        g_window = new HelpWindow;
        g_window->setAttribute(Qt::WA_DeleteOnClose);
    }
    g_window->browser->setSource(QUrl(QStringLiteral("qrc:/help/") + page + QStringLiteral(".html")));
    g_window->setWindowTitle(g_window->browser->documentTitle());
    // A modal dialog in front would block a plain window: show the help as
    // its own window that stays usable.
    g_window->setWindowModality(Qt::NonModal);
    if (window && window->isModal())
        g_window->setParent(const_cast<QWidget *>(window), Qt::Window);
    g_window->show();
    g_window->raise();
}

QString lastPage() { return g_lastPage; }

}  // namespace Help
