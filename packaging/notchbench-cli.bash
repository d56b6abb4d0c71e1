# Completion for notchbench-cli. Commands and options are those that the program itself tells.
_notchbench_cli() {
    local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "--help --version $("$program" --help 2>/dev/null |
            sed -n '/^Commands:/,/^$/s/^  \([a-z]\{1,\}\) .*/\1/p')" -- "$current")
        return
    fi
    case $previous in
    --format)
        mapfile -t COMPREPLY < <(compgen -W "text wav wv npy sigmf cf32" -- "$current")
        return ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W "cf32 cf64 ci16 ci8 rf32 rf64 ri16" -- "$current")
        return ;;
    --simulate | --theory)
        mapfile -t COMPREPLY < <(compgen -W "linear rapp soft saleh cubic adc same" -- "$current")
        return ;;
    --out | --json | --csv | --plot | --subtract)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$program" "$command" --help 2>/dev/null |
            sed -n 's/^  \(--[a-z]\{1,\}\).*/\1/p')" -- "$current")
    elif [ "$command" = plot ]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(
            compgen -f -X '!*.json' -- "$current"
            compgen -d -- "$current"
        )
    elif [ "$COMP_CWORD" -eq 2 ]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(
            compgen -f -X '!*.cfg' -- "$current"
            compgen -d -- "$current"
            compgen -W "default" -- "$current"
        )
    elif [ "$command" = analyze ]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _notchbench_cli notchbench-cli
