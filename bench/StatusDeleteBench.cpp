// tavello-bench status-delete [--quick] [--users N] [--runs N]
//
// Deletes status types the way frmDeleteStatus does on OK (DeleteStatusTypes:
// each type in its own savepoint, one commit and one counter raise for the
// batch) on a board of N users: a batch of 100 types against a batch of
// one, each the median of several runs on fresh types. For contrast it also
// times the same 100 types deleted one batch each, as separate OK presses
// would. Prints the figures and ends with "ratio <batch of 100 / batch of 1>".
#include "catalogues/frmDeleteStatus.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "store/CreateDB.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int BatchSize = 100;

// Users standing in the types the runs delete, so that the deletion meets
// a board in use; a tenth with an empty status is not possible under the
// schema's rules and is left out.
void fillUsers(Database &db, int users)
{
    db.beginTrans();
    for (int i = 0; i < users; ++i)
        db.execute(QStringLiteral("INSERT INTO EmployeeTable (Name, UID, Status) VALUES (?, ?, ?)"),
                   {QStringLiteral("User %1").arg(i, 6, 10, QLatin1Char('0')), QStringLiteral("U%1").arg(i),
                    QStringLiteral("Type %1").arg(i % BatchSize)});
    db.commitTrans();
}

QStringList addTypes(Database &db, int count, int run)
{
    QStringList names;
    db.beginTrans();
    for (int i = 0; i < count; ++i) {
        names << QStringLiteral("Type %1").arg(i);
        db.execute(QStringLiteral("INSERT INTO StatusTypesTable (Status, StatusCode) VALUES (?, ?)"),
                   {names.last(), 1 + (i + run) % 6});
    }
    db.commitTrans();
    return names;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// One batch of `count` fresh types; milliseconds, or -1 when a type stayed.
double batchMs(int count, int run)
{
    const QStringList names = addTypes(gdbMain, count, run);
    QElapsedTimer t;
    t.start();
    const QStringList gone = DeleteStatusTypes(gdbMain, names);
    const double ms = double(t.nsecsElapsed()) / 1e6;
    return gone.size() == count ? ms : -1;
}

double separateMs(int count, int run)
{
    const QStringList names = addTypes(gdbMain, count, run);
    QElapsedTimer t;
    t.start();
    int gone = 0;
    for (const QString &name : names)
        gone += int(DeleteStatusTypes(gdbMain, {name}).size());
    const double ms = double(t.nsecsElapsed()) / 1e6;
    return gone == count ? ms : -1;
}

}  // namespace

int runStatusDeleteBench(int argc, char **argv)
{
    int users = 10000;
    int runs = 9;
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0)
            quick = true;
        else if (std::strcmp(argv[i], "--users") == 0 && i + 1 < argc)
            users = std::max(0, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
    }
    if (quick) {
        users = 500;
        runs = 3;
    }

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QApplication> ownApp;
    if (!QCoreApplication::instance())
        ownApp = std::make_unique<QApplication>(argc, argv);
    Msg::setScripted(true);  // a failure is counted, not waited on

    // On the disk of the working folder, where a commit costs what it costs.
    QTemporaryDir dir(QDir::current().filePath(QStringLiteral("status-delete-XXXXXX")));
    const QString file = dir.filePath(QStringLiteral("tavello.mdb"));
    if (!dir.isValid() || CreateDatabase(file) != 0) {
        std::fprintf(stderr, "status-delete: could not build the database\n");
        return 2;
    }
    gdbMain = Database::open(file);
    fillUsers(gdbMain, users);

    std::vector<double> one, hundred, separate;
    for (int r = 0; r < runs; ++r) {
        one.push_back(batchMs(1, r));
        hundred.push_back(batchMs(BatchSize, r));
        if (r < 3)  // the slow contrast, three times is plenty
            separate.push_back(separateMs(BatchSize, r));
    }
    const bool failed = std::count(one.begin(), one.end(), -1.0) + std::count(hundred.begin(), hundred.end(), -1.0) +
                            std::count(separate.begin(), separate.end(), -1.0) >
                        0;
    const long long counter = gdbMain.scalar(QStringLiteral("SELECT StatusTypeCounter FROM StatusCounterTable")).toLongLong();
    gdbMain.close();
    if (failed || !Msg::transcript().isEmpty()) {
        std::fprintf(stderr, "status-delete: a type was not deleted\n");
        return 1;
    }
    // One raise per batch: runs * 2 batches, plus 100 per contrast run.
    const long long expected = 1 + 2LL * runs + BatchSize * qint64(separate.size());
    if (counter != expected) {
        std::fprintf(stderr, "status-delete: StatusTypeCounter is %lld, expected %lld\n", counter, expected);
        return 1;
    }

    const double m1 = median(one), m100 = median(hundred), mSeparate = median(separate);
    std::printf("status-delete: %d users, %d runs (median)\n", users, runs);
    std::printf("  batch of 1 type      %9.2f ms\n", m1);
    std::printf("  batch of %d types  %9.2f ms  (%.2f ms a type)\n", BatchSize, m100, m100 / BatchSize);
    std::printf("  %d batches of 1     %9.2f ms  (for contrast: a commit a type)\n", BatchSize, mSeparate);
    std::printf("ratio %.2f\n", m1 > 0 ? m100 / m1 : 0.0);
    return 0;
}
