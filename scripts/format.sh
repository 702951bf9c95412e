#!/usr/bin/env bash
# Formats the tracked C++ files with clang-format 14 and the tree's
# .clang-format.
#
#   scripts/format.sh           formats every tracked .h and .cpp in place
#   scripts/format.sh --check   lists the files that are not formatted and
#                               exits 1 if there are any, 0 if there are none
#
# Another version of clang-format formats differently, so only 14 is used:
# clang-format-14, or clang-format when it is version 14.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

check=false
case "${1:-}" in
  "") ;;
  --check) check=true ;;
  *)
    echo "usage: scripts/format.sh [--check]" >&2
    exit 2
    ;;
esac

clang_format=
if command -v clang-format-14 >/dev/null 2>&1; then
  clang_format=clang-format-14
elif command -v clang-format >/dev/null 2>&1 && clang-format --version | grep -q 'version 14\.'; then
  clang_format=clang-format
fi
if [ -z "$clang_format" ]; then
  echo "format.sh: clang-format 14 was not found (Debian 12: apt-get install clang-format," \
       "or run scripts/install-deps.sh)" >&2
  exit 2
fi

# The goldens of generated code are compared byte for byte with the generator's
# output, so they keep its layout.
mapfile -t files < <(git ls-files '*.h' '*.cpp' ':!:tests/codegen/golden/*')
if [ "${#files[@]}" -eq 0 ]; then
  exit 0
fi

if ! $check; then
  "$clang_format" -i --style=file "${files[@]}"
  exit 0
fi

unformatted=0
for f in "${files[@]}"; do
  if ! "$clang_format" --style=file "$f" | cmp -s - "$f"; then
    echo "$f"
    unformatted=1
  fi
done
exit "$unformatted"
