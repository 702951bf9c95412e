#!/usr/bin/env bash
# From a fresh Debian 12 machine to a running example: installs what is
# missing, builds the library and its tool in build/, runs the example program
# on the bundled complete dossier, then checks it and shows it with the tool.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build
build/examples/edd_example examples/dossier.xml
build/tools/dossier/dossier check examples/dossier.xml
build/tools/dossier/dossier show examples/dossier.xml
