// What main() does in the end, where benchmarks need an application and so a main() of their own.
#pragma once

#include <benchmark/benchmark.h>

// The status of the program: 1 for an argument that nobody knows.
inline int runBenchmarks(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
