#!/usr/bin/env bash
# A short run of every fuzz target, built with clang, libFuzzer and the
# sanitizers in build-san/ (the build that scripts/sanitize.sh shares), each
# for EDD_FUZZ_SECONDS (30 by default) from the seeds of the bundled samples.
# A finding fails the run and leaves its input in build-san/fuzz/run-<target>/findings/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec bash scripts/sanitize.sh --fuzz
