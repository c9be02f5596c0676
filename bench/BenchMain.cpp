// tavello-bench <benchmark> [options]
#include <cstdio>
#include <cstring>

int runAutoSyncBench(int argc, char **argv);
int runCompactBench(int argc, char **argv);
int runListUsersBench(int argc, char **argv);
int runGroupsBench(int argc, char **argv);
int runStatusDeleteBench(int argc, char **argv);
int runImportBench(int argc, char **argv);
int runExportBench(int argc, char **argv);
int runPrintBench(int argc, char **argv);

namespace {

struct Benchmark {
    const char *name;
    int (*run)(int, char **);
    const char *usage;
};

const Benchmark benchmarks[] = {
    {"autosync", runAutoSyncBench, "autosync [--quick] [--sites N] [--runs N]"},
    {"compact", runCompactBench, "compact [--quick] [--mb N] [--runs N]"},
    {"list-users", runListUsersBench, "list-users [--quick] [--users N]"},
    {"groups", runGroupsBench, "groups [--quick] [--users N] [--members N] [--moved N] [--runs N]"},
    {"status-delete", runStatusDeleteBench, "status-delete [--quick] [--users N] [--runs N]"},
    {"import", runImportBench, "import [--quick] [--lines N] [--runs N]"},
    {"export", runExportBench, "export [--quick] [--rows N] [--runs N]"},
    {"print", runPrintBench, "print [--quick] [--rows N]"},
};

}  // namespace

int main(int argc, char **argv)
{
    if (argc >= 2)
        for (const Benchmark &b : benchmarks)
            if (std::strcmp(argv[1], b.name) == 0)
                return b.run(argc, argv);
    std::fprintf(stderr, "usage: tavello-bench <benchmark> [options]\n");
    for (const Benchmark &b : benchmarks)
        std::fprintf(stderr, "  %s\n", b.usage);
    return 2;
}
