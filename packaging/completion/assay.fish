# Completes the command lines of assay, which knows what fits; where nothing does, fish offers files.
function __assay_complete
    set -l words (commandline --tokenize --current-process --cut-at-cursor)
    set -l current (commandline --current-token --cut-at-cursor)
    $words[1] complete $words[2..-1] "$current" 2>/dev/null
end
complete --command assay --no-files --condition 'test -n "$(__assay_complete)"' --arguments '(__assay_complete)'
