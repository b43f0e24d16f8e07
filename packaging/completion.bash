# Completion for ostmake and ostquery in bash. The options are those that the programs name in their help.

_ostmake_solution() {
    local word
    for word in "${COMP_WORDS[@]}"; do
        case $word in *.vkp) printf '%s\n' "$word" ;; esac
    done
}

# _ostmake_offer LINE...: completes the current word to one of these lines, which may hold blanks.
_ostmake_offer() {
    local IFS=$'\n' candidate
    for candidate in $1; do
        case $candidate in "$2"*) COMPREPLY+=("$(printf '%q' "$candidate")") ;; esac
    done
}

_ostmake() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} solution
    solution=$(_ostmake_solution | head -n 1)
    COMPREPLY=()
    case $previous in
    -config) _ostmake_offer "$(ostquery configurations "$solution" 2>/dev/null | sed 's/ (hidden)$//')" "$current" ;;
    -project)
        _ostmake_offer "$(ostquery tree "$solution" 2>/dev/null | sed -n 's/^ *project \(.*\) \[.*$/\1/p')" "$current"
        ;;
    -packagesdir | -tarndir) compopt -o dirnames ;;
    *)
        case $current in
        -*) _ostmake_offer "$(ostmake -help 2>&1 | sed -n 's/^  \(-[A-Za-z]*\).*/\1/p')" "$current" ;;
        *) compopt -o default ;;
        esac
        ;;
    esac
}

_ostquery() {
    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        _ostmake_offer "$(ostquery --help 2>/dev/null | sed -n 's/^  \([a-z]*\)  .*/\1/p')" "$current"
    elif [[ $current == -* ]]; then
        _ostmake_offer "$(ostquery "$command" --help 2>/dev/null | sed -n 's/^  \(--[a-z-]*\).*/\1/p')" "$current"
    elif [ "${COMP_WORDS[COMP_CWORD - 1]}" = --config ]; then
        _ostmake_offer "$(ostquery configurations "$(_ostmake_solution | head -n 1)" 2>/dev/null |
            sed 's/ (hidden)$//')" "$current"
    else
        compopt -o default
    fi
}

complete -F _ostmake ostmake
complete -F _ostquery ostquery
