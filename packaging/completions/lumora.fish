# fish completion for lumora. Commands, options, looks and textures are asked of the tool itself.
function __lumora_commands
    lumora --help | awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}'
end
function __lumora_looks
    lumora looks --json | string replace -rf '.*"name": "([^"]*)".*' '$1'
end
function __lumora_textures
    lumora looks --json | awk -F'"' '/"textures": \[$/{on=1;next} /\]/{on=0} on{print $2 "="}'
end
function __lumora_options
    set -l words (commandline -opc)
    set -l command $words[2]
    test "$command" = pack; and set command $command $words[3]
    lumora $command --help 2>/dev/null | string match -ar -- '--[a-z][a-z-]*' | sort -u
end
# The looks behind a comma, and behind "--look=" or "--look ".
function __lumora_look_list
    set -l begun (string match -r -- '^(?:--looks?=)?(?:.*,)?' (commandline -ct))
    for look in (__lumora_looks) (contains gallery (commandline -opc); and echo original)
        echo $begun$look
    end
end
# Whether the value of one of these options is being typed.
function __lumora_at
    contains -- (commandline -opc)[-1] $argv; and return
    contains -- (string replace -r '=.*' '' -- (commandline -ct)) $argv
    and string match -q -- '*=*' (commandline -ct)
end
complete -c lumora -n 'test (count (commandline -opc)) -eq 1' -f -a '(__lumora_commands)'
complete -c lumora -n 'test (count (commandline -opc)) -eq 2; and contains pack (commandline -opc)' -f -a 'create show check extract'
complete -c lumora -n 'string match -qr -- "^-[^=]*\$" (commandline -ct)' -f -a '(__lumora_options)'
complete -c lumora -n '__lumora_at --look -l --looks' -f -a '(__lumora_look_list)'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --format -f' -f -a 'rgba nv21 nv12'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --to; and contains lut (commandline -opc)' -f -a 'cube hald tiles'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --to; and not contains lut (commandline -opc)' -f -a 'jpg png webp tif avif heic'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --profile' -f -a 'srgb keep'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --direction' -f -a '0 1 2 3'
complete -c lumora -n 'contains -- (commandline -opc)[-1] --slot' -a '(__lumora_textures)'
complete -c lumora -n 'test "$(commandline -opc)[2]" = looks' -f -a '(__lumora_looks)'
