#include "platform/LockWait.h"

#include "platform/Hourglass.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QThread>
#include <QTimer>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace {

std::atomic<int> g_limitMs{Store::DefaultLockWaitMs};

// Before this much waiting nobody notices; after it the hourglass shows and
// the windows repaint every PaintEveryMs.
constexpr qint64 QuietMs = 150;
constexpr qint64 PaintEveryMs = 50;

struct WaitState {
    QString localPath;
    QElapsedTimer clock;
    qint64 lastPaint = 0;
    bool heldThroughout = false;
    bool ranOut = false;
};

std::mutex g_statesGuard;  // connections live on worker threads too
std::map<sqlite3 *, std::unique_ptr<WaitState>> g_states;

// SQLite's lock bytes: a program that holds the file to itself has the
// shared range locked for writing.
constexpr off_t PendingByte = 0x40000000;
constexpr off_t SharedFirst = PendingByte + 2;
constexpr off_t SharedSize = 510;

// One descriptor per file for asking about locks, kept for the run: closing
// a descriptor would drop every lock this process holds on the file.
int lockQueryDescriptor(const QString &localPath)
{
    static std::map<std::pair<dev_t, ino_t>, int> descriptors;
    static std::mutex guard;
    const std::lock_guard<std::mutex> lock(guard);
    const QByteArray name = QFile::encodeName(localPath);
    struct stat st {};
    if (::stat(name.constData(), &st) != 0)
        return -1;
    const auto key = std::make_pair(st.st_dev, st.st_ino);
    if (const auto it = descriptors.find(key); it != descriptors.end())
        return it->second;
    const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0)
        descriptors.emplace(key, fd);
    return fd;
}

bool onGuiThread()
{
    const QCoreApplication *app = QCoreApplication::instance();
    return app && qobject_cast<const QGuiApplication *>(app) && QThread::currentThread() == app->thread();
}

// The hourglass of a wait. One the window had up already stays; one the
// wait put up goes once the console is back in its event loop and no wait
// has gone on for a moment (the repaints of a wait run that loop too).
QElapsedTimer g_lastWait;
bool g_ourHourglass = false;
bool g_takeScheduled = false;

void takeHourglassWhenDone()
{
    if (g_lastWait.elapsed() < 30) {
        QTimer::singleShot(50, qApp, takeHourglassWhenDone);
        return;
    }
    g_takeScheduled = false;
    if (g_ourHourglass)
        Hourglass::set(0);
    g_ourHourglass = false;
}

void showWaitCursor()
{
    g_lastWait.start();
    if (Hourglass::shown())
        return;
    g_ourHourglass = true;
    Hourglass::set(11);
    if (!g_takeScheduled) {
        g_takeScheduled = true;
        QTimer::singleShot(0, qApp, takeHourglassWhenDone);
    }
}

// Keeps the windows painting. User input waits: a click must not start a
// second piece of work in the middle of this one, and neither may a network
// reply; timers and repaints go on.
void repaint()
{
    static bool inside = false;
    if (inside)
        return;
    inside = true;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
    inside = false;
}

int busyHandler(void *arg, int count)
{
    auto *s = static_cast<WaitState *>(arg);
    if (count == 0) {
        s->clock.start();
        s->lastPaint = 0;
        s->heldThroughout = true;
        s->ranOut = false;
    }
    if (s->heldThroughout && !LockWait::heldByAnother(s->localPath))
        s->heldThroughout = false;
    const qint64 elapsed = s->clock.elapsed();
    const qint64 limit = g_limitMs.load();
    if (elapsed >= limit) {
        s->ranOut = true;
        return 0;
    }
    // Short pauses first: most locks on a board pass within a few milliseconds.
    const qint64 pause = qMin<qint64>(count < 3 ? qint64(1) << count : 10, limit - elapsed);
    QThread::msleep(static_cast<unsigned long>(qMax<qint64>(pause, 1)));
    if (elapsed >= QuietMs && onGuiThread()) {
        showWaitCursor();
        if (elapsed - s->lastPaint >= PaintEveryMs) {
            s->lastPaint = elapsed;
            repaint();
        }
    }
    return 1;
}

}  // namespace

namespace Store {

int lockWait() { return g_limitMs.load(); }
void setLockWait(int ms) { g_limitMs.store(qMax(0, ms)); }

}  // namespace Store

namespace LockWait {

void install(sqlite3 *db, const QString &localPath)
{
    if (!db)
        return;
    auto state = std::make_unique<WaitState>();
    state->localPath = localPath;
    sqlite3_busy_handler(db, busyHandler, state.get());
    const std::lock_guard<std::mutex> lock(g_statesGuard);
    g_states[db] = std::move(state);
}

void forget(sqlite3 *db)
{
    if (!db)
        return;
    sqlite3_busy_handler(db, nullptr, nullptr);
    const std::lock_guard<std::mutex> lock(g_statesGuard);
    g_states.erase(db);
}

bool heldThroughout(sqlite3 *db)
{
    const std::lock_guard<std::mutex> lock(g_statesGuard);
    const auto it = g_states.find(db);
    return it != g_states.end() && it->second->ranOut && it->second->heldThroughout;
}

bool heldByAnother(const QString &localPath)
{
    const int fd = lockQueryDescriptor(localPath);
    if (fd < 0)
        return false;
    struct flock query {};
    query.l_type = F_RDLCK;
    query.l_whence = SEEK_SET;
    query.l_start = SharedFirst;
    query.l_len = SharedSize;
    if (::fcntl(fd, F_GETLK, &query) != 0)
        return false;
    return query.l_type == F_WRLCK;
}

}  // namespace LockWait
