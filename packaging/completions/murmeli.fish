# What a line may go on with is what "murmeli complete" says.
function __murmeli_offers
    set -l words (commandline -opc) (commandline -ct)
    murmeli complete $words[2..] 2>/dev/null
end
complete -c murmeli -f -n 'not __fish_prev_arg_in -o' -a '(__murmeli_offers)'
complete -c murmeli -F -n '__fish_prev_arg_in -o'
