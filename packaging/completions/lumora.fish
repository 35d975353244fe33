# fish completion for lumora. Commands, options and looks are asked of the tool itself.
function __lumora_commands
    lumora --help | awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}'
end
function __lumora_looks
    lumora looks --json | string replace -rf '.*"name": "([^"]*)".*' '$1'
end
function __lumora_options
    set -l words (commandline -opc)
    set -l command $words[2]
    test "$command" = pack; and set command $command $words[3]
    lumora $command --help 2>/dev/null | string match -ar -- '--[a-z][a-z-]*' | sort -u
end
complete -c lumora -n 'test (count (commandline -opc)) -eq 1' -f -a '(__lumora_commands)'
complete -c lumora -n 'test (count (commandline -opc)) -eq 2; and contains pack (commandline -opc)' -f -a 'create show check extract'
complete -c lumora -n 'string match -qr -- "^-" (commandline -ct)' -f -a '(__lumora_options)'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --look -l --looks' -f -a '(__lumora_looks)'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --format -f' -f -a 'rgba nv21 nv12'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --to' -f -a 'jpg png webp tif avif heic'
complete -c lumora -n 'test "$(commandline -opc)[2]" = looks' -f -a '(__lumora_looks)'
