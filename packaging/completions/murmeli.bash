# What a line may go on with is what "murmeli complete" says.
_murmeli() {
    local offer
    COMPREPLY=()
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == -o ]]; then
        compopt -o default
        return
    fi
    while IFS= read -r offer; do
        COMPREPLY+=("$(printf %q "$offer")")
    done < <(murmeli complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _murmeli murmeli
