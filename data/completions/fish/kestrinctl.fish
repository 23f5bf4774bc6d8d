# fish completion for kestrinctl: the program itself says what it knows.
function __kestrinctl_usage
    kestrinctl --help 2>/dev/null | string replace -fr '^.*kestrinctl (?=[a-z-])' ''
end
function __kestrinctl_options
    set -l words (commandline -opc)
    __kestrinctl_usage | string match -- "$words[2] *" | string match -ar -- '--[a-z]+'
end
complete -c kestrinctl -n __fish_use_subcommand -f -a "(__kestrinctl_usage | string split -f1 ' ') --version"
complete -c kestrinctl -n 'not __fish_use_subcommand; and string match -q -- "-*" (commandline -ct)' -f -a "(__kestrinctl_options)"
complete -c kestrinctl -n 'not __fish_use_subcommand' -k -a "(__fish_complete_suffix .kestrin)"
