# Sourced by ./dev and by the scripts beside this file.
# shellcheck shell=bash

# Only the toolbox has this folder. No variable says so: it could come from anywhere.
# shellcheck disable=SC2034 # used by ./dev and toolbox-enter
toolboxMark=/kvx-toolbox

# Prints where toolboxes, ccache's files and the toolbox's home folder lie: outside of every checkout.
cache_dir() {
    local home=${HOME:-$(getent passwd "$(id -u)" | cut -d: -f6)}
    realpath -m -- "${KVX_CACHE_DIR:-${XDG_CACHE_HOME:-$home/.cache}/kvx}"
}

# say TEXT: one line on stderr, led by the script's name.
say() {
    printf '%s: %s\n' "${KVX_SPEAKER:-${0##*/}}" "$1" >&2
}

# quoted WORD...: prints the words so that a shell reads them back unchanged.
quoted() {
    local word separator=''
    for word in "$@"; do
        if [[ $word =~ ^[A-Za-z0-9_./:=@%+,-]+$ ]]; then
            printf '%s%s' "$separator" "$word"
        else
            printf "%s'%s'" "$separator" "${word//\'/\'\\\'\'}"
        fi
        separator=' '
    done
    printf '\n'
}

# show WORD...: announces a command on stderr, so that the command's own output stays alone on stdout. A dry run
# has no other output and names its stdout with KVX_SHOW_FD, which holds inside command substitutions, too.
show() {
    printf '$ %s\n' "$(quoted "$@")" >&"${KVX_SHOW_FD:-2}"
}

# package_list FILE: prints the packages that the file names, one a line; '#' begins a comment.
package_list() {
    sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' -- "$1" | LC_ALL=C sort -u
}
