#!/usr/bin/env bash
# The bash completion of the tool, sourced into this shell and called as bash
# calls it, with COMP_WORDS and COMP_CWORD set; the tool it asks is TOOL.
#
#   Completion.sh SCRIPT TOOL GROUP
#
# GROUP is one of: commands, options, values, classes, files. Exits 1 with a
# line for each completion that is not as expected.
set -u
script=$1
tool=$2
group=$3

# shellcheck source=/dev/null
source "$script" || exit 1
failures=0

# The function that `complete` registered for a name.
function_for() {
    local registered
    registered=$(complete -p "$1" 2>/dev/null) || return 1
    [[ $registered =~ -F\ ([^ ]+) ]] && echo "${BASH_REMATCH[1]}"
}
for name in dossier dossier-qt6; do
    if ! function_for "$name" >/dev/null; then
        echo "no completion is registered for $name"
        failures=$((failures + 1))
    fi
done
complete_function=$(function_for dossier) || exit 1

# expect "what" "expected words, sorted, blank-separated" WORD... : completes the
# last WORD (may be empty) after the ones before it, the tool being word 0.
expect() {
    local what=$1 expected=$2
    shift 2
    COMP_WORDS=("$tool" "$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMP_LINE="${COMP_WORDS[*]}"
    COMP_POINT=${#COMP_LINE}
    COMPREPLY=()
    "$complete_function" dossier "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    local got
    got=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | tr '\n' ' ')
    got=${got% }
    if [[ $got != "$expected" ]]; then
        echo "$what: completed to '$got', expected '$expected'"
        failures=$((failures + 1))
    fi
}

case $group in
commands)
    expect "dossier co" "convert" co
    expect "dossier s" "schema show" s
    expect "dossier <tab>" "--help --version check convert diff inspect schema show" ""
    expect "dossier --v" "--version" --v
    ;;
options)
    expect "dossier check --m" "--max-errors --max-size" check --m
    expect "dossier check --" "--class --from --help --max-errors --max-size --strict" check --
    expect "dossier inspect --" "--help --max-size" inspect --
    expect "dossier show x --a" "--all" show x --a
    expect "dossier convert x -" "--class --compact --from --help --max-size --to -o" convert x -
    # A number is for the user to write.
    expect "dossier check --max-size <tab>" "" check --max-size ""
    ;;
values)
    # The forms that convert's usage line lists after --to, the four binary
    # and XML forms among them.
    forms=$("$tool" convert --help | head -n 1 | sed -n 's/.* --to \([a-z|]*\).*/\1/p' | tr '|' '\n' | LC_ALL=C sort | tr '\n' ' ')
    forms=${forms% }
    for form in xml tagged compressed raw; do
        [[ " $forms " == *" $form "* ]] || { echo "convert --help lists no form $form after --to: '$forms'"; failures=$((failures + 1)); }
    done
    expect "dossier convert x --to <tab>" "$forms" convert x --to ""
    expect "dossier convert x --to t" "tagged" convert x --to t
    expect "dossier check --from <tab>" "raw" check --from ""
    expect "dossier show x --from r" "raw" show x --from r
    ;;
classes)
    expect "dossier show x --from raw --class Alternat" "Alternative Alternatives" show x --from raw --class Alternat
    expect "dossier check --class Alti" "Altitude" check --class Alti
    expect "dossier schema Bear" "Bearing" schema Bear
    expect "dossier schema EmitterD" "EmitterDossier" schema EmitterD
    count=$("$tool" schema | wc -l)
    COMP_WORDS=("$tool" schema "")
    COMP_CWORD=2
    COMPREPLY=()
    "$complete_function" dossier "" schema
    if [[ ${#COMPREPLY[@]} -ne $count ]]; then
        echo "dossier schema <tab>: ${#COMPREPLY[@]} classes, the tool lists $count"
        failures=$((failures + 1))
    fi
    ;;
files)
    dir=$(mktemp -d)
    trap 'rm -rf "$dir"' EXIT
    touch "$dir/alpha.xml" "$dir/alpha.bin" "$dir/beta.xml"
    mkdir "$dir/archive"
    cd "$dir" || exit 1
    expect "dossier check al" "alpha.bin alpha.xml" check al
    expect "dossier diff alpha.xml b" "beta.xml" diff alpha.xml b
    expect "dossier convert beta.xml --to xml -o a" "alpha.bin alpha.xml archive" convert beta.xml --to xml -o a
    expect "dossier inspect ar" "archive" inspect ar
    ;;
*)
    echo "unknown group '$group'"
    exit 2
    ;;
esac
exit $((failures > 0))
