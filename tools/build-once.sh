# Sourced, after common.sh, by the scripts that build what a preset needs and no package has. The script says what it
# builds:
#
#   name            what it is called in messages, for example "Qt for ThreadSanitizer"
#   verb            the call of ./dev that needs it
#   cache           the folder that holds the finished ones, each named by its key
#   packages        the installed packages that decide what is built
#   keyFiles        the files that decide what is built
#   make            a function that leaves it in $building/made; what it calls is in keyFunctions
#   minutes         how long that takes, for the user
#
# and calls provide, which builds it unless it is there, and prints its folder. A script may have its own key,
# check_installed and discard.
# shellcheck shell=bash
# shellcheck disable=SC2154 # the variables are the script's

cannot() {
    printf '%s\n' "$1"
    exit 3
}

# The source package of an installed one, as apt takes it: NAME=VERSION.
source_of() {
    # shellcheck disable=SC2016 # dpkg-query is the one to fill it in
    dpkg-query --show --showformat '${source:Package}=${source:Version}' "$1"
}

check_installed() {
    local package
    for package in "${packages[@]}"; do
        dpkg-query --show "$package" >/dev/null 2>&1 ||
            cannot "the package $package is not installed here; the toolbox has it: $verb"
    done
}

# A hash of all that decides what is built.
key() {
    {
        dpkg-query --show "${packages[@]}"
        declare -f make fetch_sources "${keyFunctions[@]}"
        ((${#keyFiles[@]} == 0)) || cat -- "${keyFiles[@]}"
    } | sha256sum | cut -c1-16
}

# discard FOLDER: removes one that is not whole.
discard() {
    rm -rf -- "$1"
}

# step TEXT: what is said when one of the next commands fails.
step() {
    failing=$1
}

# run COMMAND...: shows the command; its output goes to the log.
run() {
    show "$@"
    "$@" >>"$log" 2>&1
}

# run_with_progress COMMAND...: as run, for a build with Ninja, with a line on stderr for every tenth of the way.
run_with_progress() {
    local line tenth last=0
    show "$@"
    NINJA_STATUS='[%p] ' "$@" 2>&1 | while IFS= read -r line; do
        printf '%s\n' "$line" >>"$log"
        if [[ $line =~ ^\[\ *([0-9]*)[0-9]%\] ]]; then
            tenth=${BASH_REMATCH[1]:-0}
            ((tenth == last)) || say "$name: $tenth""0 % built"
            last=$tenth
        fi
    done
}

# apt keeps its lists in the folder of the build: the toolbox cannot be written to.
apt() {
    local state=$building/apt
    mkdir -p -- "$state/lists/partial" "$state/archives/partial"
    # Without the list apt itself says what it misses.
    sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$state/sources.list" || true
    run apt-get -q -o "Dir::State=$state" -o "Dir::State::status=/var/lib/dpkg/status" -o "Dir::Cache=$state" \
        -o "Dir::Etc::sourcelist=$state/sources.list" -o Dir::Etc::sourceparts=- \
        -o APT::Sandbox::User=root -o Acquire::Retries=2 -o APT::Update::Error-Mode=any "$@"
}

# fetch_sources [--tar-only] PACKAGE...: leaves the files of the source packages in $building/fetched, or only what
# their authors published, without Debian's changes.
fetch_sources() {
    local sources=() package only=()
    if [[ $1 == --tar-only ]]; then
        only=("$1")
        shift
    fi
    for package in "$@"; do
        sources+=("$(source_of "$package")")
    done
    step "the source of ${sources[*]} could not be fetched"
    mkdir -- "$building/fetched" && cd -- "$building/fetched" && apt update &&
        apt source --download-only "${only[@]}" "${sources[@]}"
}

# The line of the log that tells why, for the one sentence that the user gets: the nearest to the cause first.
reason() {
    local sign
    # The log lies on the disk that may be full.
    if ! printf '\n' >>"$log"; then
        printf 'No space left on device\n'
        return
    fi 2>/dev/null
    for sign in 'No space left on device' 'Killed' '(^|: )(E|ERROR): ' '(^|[^a-z])error: ' 'CMake Error' '^FAILED: '; do
        grep -a -m 1 -E -- "$sign" "$log" && return
    done
    # The last line with text.
    grep -a . -- "$log" | tail -n 1 || true
}

build() {
    local why
    trap 'discard "$building"' EXIT
    if ! mkdir -- "$building" || ! : >"$log"; then
        cannot "$name cannot be built: $cache cannot be written to"
    fi
    if ! make; then
        why=$(reason)
        cannot "$failing (${why:-no reason given}; all output: $log)"
    fi
    mv -T -- "$building/made" "$folder" || cannot "$name was built and could not be put into $folder"
    rm -f -- "$log"
}

# Whoever holds the lock of a build is the only one to touch its .building folder; the kernel drops the lock with
# the last process of a builder that was killed.
remove_stale() {
    local stale lock
    for stale in "$cache"/*.building; do
        [[ -d $stale ]] || continue
        exec {lock}>>"${stale%.building}.lock"
        if [[ $stale == "$building" ]] || flock -n "$lock"; then
            discard "$stale"
        fi
        exec {lock}>&-
    done
}

provide() {
    check_installed
    folder=$cache/$(key)
    building=$folder.building
    log=$folder.log
    if [[ ! -d $folder ]]; then
        if ! mkdir -p -- "$cache" || ! exec 9>>"$folder.lock"; then
            cannot "$name cannot be built: $cache cannot be written to"
        fi
        if ! flock -n 9; then
            say "waiting for another build of $name"
            flock 9
        fi
        if [[ ! -d $folder ]]; then
            remove_stale
            say "building $name, once: about $minutes minutes on 2 cores"
            build
        fi
    fi
    printf '%s\n' "$folder"
}
