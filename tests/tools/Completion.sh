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

expect "convert" co
expect "schema show" s
expect "--help --version check convert diff inspect schema show" ""
expect "--version" --v
expect "--max-errors --max-size" check --m
expect "--class --from --help --max-errors --max-size --strict" check --
expect "--help --max-size" inspect --
expect "--all" show x --a
expect "--class --compact --from --help --max-size --to -o" convert x -
# A number is for the user to write.
expect "" check --max-size ""
# The forms that convert's usage line lists after --to.
expect "$("$tool" convert --help | sed -n '1s/.* --to \([a-z|]*\).*/\1/p' | tr '|' '\n' | LC_ALL=C sort | paste -sd ' ')" convert x --to ""
expect "tagged" convert x --to t
expect "raw" check --from ""
expect "raw" show x --from r
expect "Alternative Alternatives" show x --from raw --class Alternat
expect "Altitude" check --class Alti
expect "Bearing" schema Bear
expect "EmitterDossier" schema EmitterD
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
