#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer in
# build-san/ and runs the whole test suite there; any report fails a test.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/install-deps.sh
cmake -S . -B build-san -G Ninja -DCMAKE_BUILD_TYPE=Debug -DEDD_SANITIZE=ON -DEDD_BUILD_BENCH=OFF
cmake --build build-san -j2
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
# The install test builds a plain consumer, which cannot link a sanitized
# library; it runs in the normal suite.
exec ctest --test-dir build-san --output-on-failure -j2 -LE install
