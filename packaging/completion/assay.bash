# Completes the command lines of assay, which knows what fits; where nothing does, bash offers files.
_assay() {
    local i
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]/#\~/$HOME}" complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    for i in "${!COMPREPLY[@]}"; do
        [[ ${COMPREPLY[i]} == *[!A-Za-z0-9_./:,=+@%-]* ]] && printf -v "COMPREPLY[i]" %q "${COMPREPLY[i]}"
    done
}
complete -o default -F _assay assay
