#!/usr/bin/env bash
# Builds the fuzz targets with clang, libFuzzer and the sanitizers in
# build-fuzz/ and runs each for EDD_FUZZ_SECONDS (60 by default) from the seeds
# of the bundled samples. A finding fails the run and leaves its input in
# build-fuzz/fuzz/run-<target>/findings/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/install-deps.sh
# The fuzz runs are CTest tests, so testing stays on; only the fuzz targets
# (edd_fuzz) are built, and only the label fuzz runs.
cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DEDD_FUZZ=ON -DBUILD_TESTING=ON -DEDD_BUILD_BENCH=OFF -DEDD_BUILD_EXAMPLES=OFF \
  -DEDD_FUZZ_SECONDS="${EDD_FUZZ_SECONDS:-60}"
cmake --build build-fuzz -j2 --target edd_fuzz
rm -rf build-fuzz/fuzz/run-*
exec ctest --test-dir build-fuzz -L fuzz -j2 --output-on-failure
