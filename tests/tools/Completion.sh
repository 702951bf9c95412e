#!/usr/bin/env bash
# The bash completion of the tool, sourced and called as bash calls it, asking
# TOOL; a line for each completion not as expected, and exit code 1 then.
#   Completion.sh SCRIPT TOOL
set -u
script=$1 tool=$2 failures=0
fail() { echo "$*" && failures=$((failures + 1)); }

# shellcheck source=/dev/null
bash -n "$script" && source "$script" || exit 1
for name in dossier-qt6 dossier; do
    [[ $(complete -p "$name" 2>/dev/null) =~ -F\ ([^ ]+) ]] || fail "no completion is registered for $name"
done
complete_function=${BASH_REMATCH[1]:-false}

# The completions of the last WORD (may be empty) after the others, sorted.
completions() {
    COMP_WORDS=("$tool" "$@") COMP_CWORD=$# COMPREPLY=()
    COMP_LINE="${COMP_WORDS[*]}" COMP_POINT=${#COMP_LINE}
    "$complete_function" dossier "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' '
}
# expect "EXPECTED WORDS" WORD...
expect() {
    local got
    got=$(completions "${@:2}")
    [[ $got == "$1" ]] || fail "dossier ${*:2}<tab>: completed to '$got', expected '$1'"
}

# The completions of data/completions.txt: EXPECTED|WORD|WORD..., the last
# word the one completed (it may be empty).
while IFS= read -r line; do
    [[ -z $line || $line == \#* ]] && continue
    IFS='|' read -r -a row <<<"$line|" # the added | keeps a last empty word
    expect "${row[@]}"
done <"$(dirname "$0")/data/completions.txt"

# The forms that convert's usage line lists after --to.
expect "$("$tool" convert --help | sed -n '1s/.* --to \([a-z|]*\).*/\1/p' | tr '|' '\n' | LC_ALL=C sort | paste -sd ' ')" convert x --to ""
classes=$(completions schema "" | wc -w)
[[ $classes -eq $("$tool" schema | wc -l) ]] || fail "dossier schema <tab>: $classes classes, the tool lists more or fewer"

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir" && touch alpha.xml alpha.bin beta.xml && mkdir archive || exit 1
expect "alpha.bin alpha.xml" check al
expect "beta.xml" diff alpha.xml b
expect "alpha.bin alpha.xml archive" convert beta.xml --to xml -o a
expect "archive" inspect ar
exit $((failures > 0))
