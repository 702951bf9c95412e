#!/usr/bin/env bash
# From a fresh Debian 12 machine to a running example: installs what is
# missing, builds the library in build/ and runs the example program on the
# sample file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build
build/examples/edd-example examples/dossier.xml
