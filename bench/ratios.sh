#!/usr/bin/env bash
# Runs the whole-dossier benchmarks and prints, as a markdown table, each
# form's median time beside its yardstick's, their ratio and the aim, then the
# memory counters.
#
#   bench/ratios.sh [SIZE_MB [REPETITIONS]]     (defaults: 20 and 5)
#
# EDD_BENCH names the benchmark program (default: build-rel/bench/edd_bench of
# this checkout). Times are the real ("Time") medians over the repetitions,
# which run interleaved in random order so that a busy spell of the machine
# falls on both sides of a ratio alike.
# Needs python3 to read the JSON.
set -euo pipefail

size_mb=${1:-20}
repetitions=${2:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
bench=${EDD_BENCH:-$here/../build-rel/bench/edd_bench}

if [[ ! -x $bench ]]; then
    echo "ratios.sh: no benchmark program at $bench (build the edd_bench target, or set EDD_BENCH)" >&2
    exit 1
fi
if ! command -v python3 >/dev/null; then
    echo "ratios.sh: python3 is needed to read the results (Debian: apt-get install python3)" >&2
    exit 1
fi

json=$(mktemp)
trap 'rm -f "$json"' EXIT

nice "$bench" --size_mb="$size_mb" --benchmark_filter=Dossier_ \
    --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
    --benchmark_report_aggregates_only=true \
    --benchmark_format=json >"$json"

python3 - "$json" <<'EOF'
import json
import sys

with open(sys.argv[1]) as f:
    report = json.load(f)

# Each run's median, or its only run when it ran once.
runs = {}
errors = {}
for b in report["benchmarks"]:
    name = b.get("run_name", b["name"])
    if b.get("error_occurred"):
        errors[name] = b.get("error_message", "error")
        continue
    if b.get("run_type") == "aggregate":
        if b.get("aggregate_name") == "median":
            runs[name] = b
    else:
        runs.setdefault(name, b)

def ms(b, key="real_time"):
    factor = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[b["time_unit"]]
    return b[key] * factor

pairs = [
    ("XML read", "Dossier_XmlRead", "Dossier_XmlTokenPass", 1.10),
    ("XML write", "Dossier_XmlWriteToWriter", "Dossier_XmlWritePlainStructs", 0.95),
    ("raw write", "Dossier_RawWrite", "Dossier_RawWritePlainStructs", 1.5),
    ("raw read", "Dossier_RawRead", "Dossier_RawReadPlainStructs", 1.5),
    ("tagged write", "Dossier_TaggedWrite", "Dossier_TaggedWriteYardstick", 2.0),
    ("tagged read", "Dossier_TaggedRead", "Dossier_TaggedReadYardstick", 2.0),
    # JSON against the other text form's own times.
    ("JSON write / XML write", "Dossier_JsonWrite", "Dossier_XmlWrite", 1.0),
    ("JSON read / XML read of bytes", "Dossier_JsonRead", "Dossier_XmlReadBytes", None),
]

def aimText(aim):
    return "<= %.2f" % aim if aim is not None else "-"

context = report.get("context", {})
xml_bytes = next((b["xml_bytes"] for b in runs.values() if "xml_bytes" in b), None)
print("size asked: %s MB; XML bytes: %s; %s" % (
    context.get("dossier_size_mb", "?"),
    "%d" % xml_bytes if xml_bytes is not None else "?",
    context.get("dossier_lists", "")))
print()
print("| form | library median ms | yardstick median ms | ratio | aim |")
print("| --- | ---: | ---: | ---: | ---: |")
for form, library, yardstick, aim in pairs:
    if library in runs and yardstick in runs:
        a, b = ms(runs[library]), ms(runs[yardstick])
        print("| %s | %.2f | %.2f | %.2f | %s |" % (form, a, b, a / b, aimText(aim)))
    else:
        missing = [n for n in (library, yardstick) if n not in runs]
        why = "; ".join("%s: %s" % (n, errors.get(n, "no result")) for n in missing)
        print("| %s | | | | %s | (%s)" % (form, aimText(aim), why))

print()
print("| memory | bytes | XML bytes | per XML byte |")
print("| --- | ---: | ---: | ---: |")
for name in sorted(runs):
    b = runs[name]
    label = b.get("label", "")
    if name.startswith("Dossier_HeapAfterRead"):
        print("| heap held after %s read (%s) | %d | %d | %.3f |" % (
            label, name, b["heap_bytes"], b["xml_bytes"], b["heap_per_xml_byte"]))
    elif name.startswith("Dossier_PeakRss"):
        print("| peak resident above baseline (%s) | %d | %d | %.3f |" % (
            name, b["peak_bytes"], b["xml_bytes"], b["peak_per_xml_byte"]))
if "Dossier_FormSizes" in runs:
    sizes = runs["Dossier_FormSizes"]
    print()
    print("| form | bytes |")
    print("| --- | ---: |")
    for form in ("xml", "json", "compact_json", "tagged", "compressed", "raw"):
        print("| %s | %d |" % (form.replace("_", " "), sizes[form + "_bytes"]))
for name in sorted(errors):
    print("| %s | failed: %s | | |" % (name, errors[name]))
EOF
