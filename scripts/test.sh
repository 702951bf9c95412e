#!/usr/bin/env bash
# Builds everything and runs the whole test suite. The exit code is that of ctest.
#
#   test.sh                      against Qt 5, in build/
#   test.sh --qt 6               against Qt 6, in build-qt6/
#   test.sh --qt 6 --beside DIR  and installs the built build DIR (against the
#                                other Qt) beside this one in a test
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

major=5
beside=
while [ $# -gt 0 ]; do
  case "$1" in
    --qt) major="$2"; shift 2 ;;
    --beside) beside="$(cd "$2" && pwd)"; shift 2 ;;
    *) echo "usage: test.sh [--qt 5|6] [--beside BUILD_DIR]" >&2; exit 2 ;;
  esac
done
if [ "$major" = 5 ]; then build=build; else build="build-qt$major"; fi

bash scripts/install-deps.sh "$major"
cmake -S . -B "$build" -G Ninja -DEDD_QT_MAJOR="$major" -DEDD_SIDE_BY_SIDE_BUILD="$beside"
cmake --build "$build" -j2
exec ctest --test-dir "$build" --output-on-failure -j2
