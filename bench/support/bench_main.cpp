// The benchmarks' main. The test data must be readable before anything is timed: a build run
// from another place stops at once, naming the folder it looked in, instead of skipping every
// benchmark.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "base/memory_reuse.h"
#include "test_data.h"

int main(int argc, char** argv) {
    // The programs keep freed memory for the next document; so do the measurements of them.
    zolt::keepFreedMemoryForReuse();
    const std::string data = zolt::testdata::root();
    if (!zolt::testdata::readable(data)) {
        std::fprintf(stderr, "test data folder %s not readable (set ZOLT_TESTDATA_DIR)\n",
                     data.c_str());
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
