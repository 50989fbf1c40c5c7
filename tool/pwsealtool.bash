# Completion of pwsealtool's options and file names. The value of -k is never completed: a shell
# should not know an access key, and file names in its place would only mislead.

_pwsealtool() {
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    # Options are at the odd places, each followed by its value.
    if ((COMP_CWORD % 2 == 1)); then
        mapfile -t COMPREPLY < <(compgen -W '-k -e -d' -- "$word")
        return
    fi
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        -e | -d)
            compopt -o filenames 2>/dev/null || true # also where nothing is being completed
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            ;;
    esac
}
complete -F _pwsealtool pwsealtool
