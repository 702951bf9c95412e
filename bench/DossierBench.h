#pragma once

// What the whole-dossier benchmarks (dossier_bench.cpp) take from the command
// line, which main (bench_main.cpp) reads before Google Benchmark starts.

namespace dossier_bench {

// The size of the whole dossier in megabytes (10^6 bytes) of XML; 20 unless
// set. Call before any benchmark runs: the dossier is built once, on first use.
void setSizeMb(double megabytes);

}  // namespace dossier_bench
