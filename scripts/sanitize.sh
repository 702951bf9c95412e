#!/usr/bin/env bash
# Builds everything with clang, AddressSanitizer, UndefinedBehaviorSanitizer
# and libFuzzer's coverage in build-san/, and runs there the whole test suite
# (any report fails a test) and then a short run of every fuzz target. One
# build serves both, and it is also the project's clang build: the library,
# the tool, the tests, the examples, the benchmarks and the fuzz targets.
#
#   sanitize.sh           the suite, then the fuzz runs
#   sanitize.sh --suite   the suite only
#   sanitize.sh --fuzz    the fuzz runs only (what scripts/fuzz.sh does)
#
# Each fuzz target runs for EDD_FUZZ_SECONDS (30 by default) from the seeds of
# the bundled samples. A finding fails the run and leaves its input in
# build-san/fuzz/run-<target>/findings/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

suite=true
fuzz=true
case "${1:-}" in
  "") ;;
  --suite) fuzz=false ;;
  --fuzz) suite=false ;;
  *) echo "usage: sanitize.sh [--suite | --fuzz]" >&2; exit 2 ;;
esac

bash scripts/install-deps.sh
cmake -S . -B build-san -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DEDD_FUZZ=ON -DBUILD_TESTING=ON -DEDD_BUILD_BENCH=ON -DEDD_FUZZ_SECONDS="${EDD_FUZZ_SECONDS:-30}"
if $suite; then
  cmake --build build-san -j2
else
  cmake --build build-san -j2 --target edd_fuzz
fi
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
if $suite; then
  # The install test builds a plain consumer, which cannot link a sanitized
  # library, and the reference is the same in every build: both run in the
  # normal suite.
  ctest --test-dir build-san --output-on-failure -j2 -LE 'install|docs|fuzz'
fi
if $fuzz; then
  rm -rf build-san/fuzz/run-*
  ctest --test-dir build-san --output-on-failure -j2 -L fuzz
fi
