#!/usr/bin/env bash
# Builds everything in build/ and runs the whole test suite. The exit code is
# that of ctest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/install-deps.sh
cmake -S . -B build -G Ninja
cmake --build build -j2
exec ctest --test-dir build --output-on-failure -j2
