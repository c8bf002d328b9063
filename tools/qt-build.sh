# Sourced by the scripts that build a Qt of their own, after common.sh. The script says what it builds:
#
#   qtName          what it is called in messages, for example "Qt for Windows"
#   qtVerb          the call of ./dev that needs it
#   cache           the folder that holds the finished ones, each named by its key
#   toolchain       the packages that make the libraries what they are beside the source
#   keyFiles        files that take part in it
#   configure       a function that configures build/ for source/, to be installed to the prefix /qt
#   minutes         how long that takes, for the user
#
# and calls provide_qt. The source is that of the very Qt that the toolbox builds with, so all have one version.
# shellcheck shell=bash
# shellcheck disable=SC2154 # the variables are the script's

cannot() {
    printf '%s\n' "$1"
    exit 3
}

source_version() {
    # shellcheck disable=SC2016 # dpkg-query is the one to fill it in
    dpkg-query --show --showformat '${source:Version}' qt6-base-dev
}

check_installed() {
    local package
    for package in qt6-base-dev "${toolchain[@]}"; do
        dpkg-query --show "$package" >/dev/null 2>&1 ||
            cannot "the package $package is not installed here; the toolbox has it: $qtVerb"
    done
}

# A hash of all that decides what is built: the source, the compiler with its headers, and the recipe.
key() {
    {
        source_version
        dpkg-query --show "${toolchain[@]}"
        declare -f fetch_source configure make_qt
        ((${#keyFiles[@]} == 0)) || cat -- "${keyFiles[@]}"
    } | sha256sum | cut -c1-16
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
            ((tenth == last)) || say "$qtName: $tenth""0 % built"
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

fetch_source() {
    local version
    version=$(source_version)
    mkdir -- "$building/fetched"
    cd -- "$building/fetched"
    apt update || return 1
    apt source --download-only "qt6-base=$version" || return 1
    run sh -c 'exec dpkg-source --no-check --extract ./*.dsc ../source'
}

make_qt() {
    fetch_source || return 4
    cd -- "$building"
    configure && run_with_progress cmake --build build || return 5
    # strip would write the present time into the libraries.
    run env SOURCE_DATE_EPOCH=0 "DESTDIR=$building/installed" cmake --install build --strip || return 5
}

# The line of the log that tells why, for the one sentence that the user gets: the nearest to the cause first.
reason() {
    local sign
    # The log lies on the disk that may be full.
    if ! printf '\n' >>"$log"; then
        printf 'No space left on device\n'
        return
    fi 2>/dev/null
    for sign in 'No space left on device' 'Killed' '^E: ' '(^|[^a-z])error: ' 'CMake Error' '^FAILED: '; do
        grep -m 1 -E -- "$sign" "$log" && return
    done
    tail -n 1 -- "$log"
}

build() {
    local code=0 why
    trap 'rm -rf -- "$building"' EXIT
    if ! mkdir -- "$building" || ! : >"$log"; then
        cannot "$qtName cannot be built: $cache cannot be written to"
    fi
    (set -e; make_qt) || code=$?
    if ((code == 4)); then
        why=$(reason)
        cannot "the source of qt6-base $(source_version) could not be fetched and unpacked (${why:-no reason given}; all output: $log)"
    elif ((code)); then
        why=$(reason)
        cannot "$qtName could not be built (${why:-no reason given}; all output: $log)"
    fi
    mv -T -- "$building/installed/qt" "$folder" ||
        cannot "$qtName was built and could not be put into $folder"
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
            rm -rf -- "$stale"
        fi
        exec {lock}>&-
    done
}

# Prints the folder of the Qt, which is built unless it is there.
provide_qt() {
    check_installed
    folder=$cache/$(key)
    building=$folder.building
    log=$folder.log
    if [[ ! -d $folder ]]; then
        if ! mkdir -p -- "$cache" || ! exec 9>>"$folder.lock"; then
            cannot "$qtName cannot be built: $cache cannot be written to"
        fi
        if ! flock -n 9; then
            say "waiting for another build of $qtName"
            flock 9
        fi
        if [[ ! -d $folder ]]; then
            remove_stale
            say "building $qtName, once: about $minutes minutes on 2 cores"
            build
        fi
    fi
    printf '%s\n' "$folder"
}
