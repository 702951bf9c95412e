#pragma once

// What the whole-dossier benchmarks (DossierBench.cpp) take from the command
// line, which main (bench_main.cpp) reads before Google Benchmark starts.

namespace DossierBench {

// The size of the whole dossier in megabytes (10^6 bytes) of XML; 20 unless
// set. Call before any benchmark runs: the dossier is built once, on first use.
void setSizeMb(double megabytes);

// The child side of Dossier_PeakRss, which runs this program again with
// --peak_child=FORM --peak_file=PATH: reads the XML file at `path` once through
// the reader `form` names (loadxml, setxmlstring or setxmlbytes) and prints
// "peak_kib=N baseline_kib=M" on standard output. Returns the exit code.
int peakChild(const char* form, const char* path);

}  // namespace DossierBench
