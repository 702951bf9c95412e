# bash completion for the dossier tool of EmitterDossierDoc (dossier, and
# dossier-qt6 of the Qt 6 build).
#
# What there is to complete is asked of the tool itself, so that the script
# never falls behind it: the commands from `dossier --help`, each command's
# options and their values from the usage line of `dossier COMMAND --help`
# ("--to xml|tagged|..." gives the forms, "--from raw" the one it takes; N and
# BYTES are numbers, any other value in capitals a file), and class names, after
# --class and schema, from the first column of `dossier schema`. Files are
# completed elsewhere.

# The usage line of a command, or the list of commands for an empty one.
_dossier_help()
{
    local tool=$1 command=$2
    if [[ -z $command ]]; then
        "$tool" --help 2>/dev/null
    else
        "$tool" "$command" --help 2>/dev/null | head -n 1
    fi
}

_dossier_words()
{
    local cur=$1
    shift
    local word
    COMPREPLY=()
    for word in "$@"; do
        [[ $word == "$cur"* ]] && COMPREPLY+=("$word")
    done
}

_dossier_files()
{
    local cur=$1 path
    COMPREPLY=()
    # Names with blanks stay whole: one name a line, and filenames quoted.
    while IFS= read -r path; do
        COMPREPLY+=("$path")
    done < <(compgen -f -- "$cur")
    compopt -o filenames 2>/dev/null
}

_dossier_classes()
{
    local tool=$1 cur=$2 name rest
    local -a names=()
    while read -r name rest; do
        names+=("$name")
    done < <("$tool" schema 2>/dev/null)
    _dossier_words "$cur" "${names[@]}"
}

_dossier()
{
    local cur=${COMP_WORDS[COMP_CWORD]}
    local prev=
    ((COMP_CWORD > 0)) && prev=${COMP_WORDS[COMP_CWORD - 1]}
    local tool=${COMP_WORDS[0]}
    [[ $tool == "~/"* ]] && tool=$HOME/${tool#"~/"}

    if ((COMP_CWORD == 1)); then
        # The commands are listed below "commands:", up to an empty line.
        local line listed=false
        local -a commands=()
        while read -r line; do
            if [[ $line == commands: ]]; then
                listed=true
            elif [[ -z $line ]]; then
                [[ $listed == true ]] && break
            elif [[ $listed == true ]]; then
                commands+=("${line%% *}")
            fi
        done < <(_dossier_help "$tool" "")
        _dossier_words "$cur" "${commands[@]}" --help --version
        return 0
    fi

    local command=${COMP_WORDS[1]}
    local usage
    usage=$(_dossier_help "$tool" "$command")
    usage=${usage//[\[\]]/ }
    local -a words
    read -r -a words <<<"$usage"

    # The value of an option: the word that follows it in the usage line.
    local i value=
    for ((i = 0; i + 1 < ${#words[@]}; i++)); do
        if [[ ${words[i]} == "$prev" && ${words[i]} == -* && ${words[i + 1]} != -* ]]; then
            value=${words[i + 1]}
            break
        fi
    done
    if [[ -n $value ]]; then
        if [[ $prev == --class ]]; then
            _dossier_classes "$tool" "$cur"
        elif [[ $value =~ ^[a-z0-9|]+$ ]]; then
            local -a choices
            IFS='|' read -r -a choices <<<"$value"
            _dossier_words "$cur" "${choices[@]}"
        elif [[ $value == N || $value == BYTES ]]; then
            COMPREPLY=() # a number
        else
            _dossier_files "$cur"
        fi
        return 0
    fi

    if [[ $cur == -* ]]; then
        local -a options=()
        local word
        for word in "${words[@]}"; do
            [[ $word == -* ]] && options+=("$word")
        done
        _dossier_words "$cur" "${options[@]}" --help
        return 0
    fi

    # The one positional argument of schema is a class.
    if [[ $command == schema ]]; then
        _dossier_classes "$tool" "$cur"
        return 0
    fi
    _dossier_files "$cur"
    return 0
}

complete -F _dossier dossier dossier-qt6
