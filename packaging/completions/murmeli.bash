# What a line may go on with is what "murmeli complete" says.
_murmeli() {
    local offer word start words=()
    COMPREPLY=()
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == -o ]]; then
        compopt -o default
        return
    fi
    # Bash parts words at colons and equals signs too.
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        if ((${#words[@]})) && [[ $word == [:=]* || ${words[-1]} == *[:=] ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    start=${words[-1]%"${words[-1]##*[:=]}"}
    while IFS= read -r offer; do
        COMPREPLY+=("$(printf %q "${offer#"$start"}")")
    done < <(murmeli complete "${words[@]}" 2>/dev/null)
}
complete -F _murmeli murmeli
