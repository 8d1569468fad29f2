# shellcheck shell=bash
# SPDX-License-Identifier: ISC
# Sourced by the scripts that run the plug-ins in programs that others wrote, each of them called
# with the folder of the build: a scratch folder as home, limited commands, results.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
build=$(cd "$1" && pwd -P)
export LC_ALL=C.UTF-8

scratch=$(mktemp -d)
mkdir "$scratch/home"
export HOME=$scratch/home
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME PUFFGUARD_MODULE DISPLAY WAYLAND_DISPLAY

# Groups of processes that start_group() made and stop_group() has not ended yet.
groups=()

clean_up() {
    local group
    for group in "${groups[@]}"; do
        kill -KILL -- "-$group" 2>/dev/null
    done
    rm -rf "$scratch"
}
trap clean_up EXIT
trap 'exit 130' INT TERM HUP

failures=0

# result CODE NAME: one line; what the last limited command said follows a failure.
result() {
    if [ "$1" -eq 0 ]; then
        echo "ok      $2"
    else
        echo "FAILED  $2"
        [ ! -f "$scratch/log" ] || tail -n 20 "$scratch/log" | sed 's/^/        | /'
        failures=$((failures + 1))
    fi
    return "$1"
}

# finish: the last line, and the exit code of the script.
finish() {
    echo "$failures failed"
    [ "$failures" -eq 0 ]
    exit
}

# versions PACKAGE...: what the results below are true of.
versions() {
    if command -v dpkg-query >/dev/null; then
        dpkg-query -W -f 'host    ${Package} ${Version}\n' "$@"
    fi
}

# start_group SECONDS LOG COMMAND...: in a group of its own, whose number is then $group, and for so
# long at the most.
start_group() {
    setsid timeout --foreground -k 2 "$1" "${@:3}" </dev/null >"$2" 2>&1 &
    group=$!
    groups+=("$group")
}

# stop_group GROUP: ends everything in it, and answers how its first command ended.
stop_group() {
    local code other remaining=()
    # Its limit makes sure that it ends.
    kill -TERM "$1" 2>/dev/null
    { wait "$1"; } 2>/dev/null
    code=$?
    kill -KILL -- "-$1" 2>/dev/null
    for other in "${groups[@]}"; do
        [ "$other" = "$1" ] || remaining+=("$other")
    done
    groups=("${remaining[@]}")
    return $code
}

# limited COMMAND...: ended, with all that it started, when it takes longer than $limit seconds; what
# it leaves running is ended, too. Its output is in $scratch/log.
limit=120
limited() {
    local group
    start_group "$limit" "$scratch/log" "$@"
    { wait "$group"; } 2>/dev/null
    stop_group "$group"
}

# ffmpeg_quietly ARGUMENT...
ffmpeg_quietly() { limited ffmpeg -nostdin -v error -y "$@"; }

# same_sound REFERENCE OUTPUT INPUT: as long as the input, and equal to the reference up to there.
same_sound() { limited "$root/tests/hosts/same_sound.py" "$@"; }

# Settings that are not the defaults, by the names of each program.
sensitivity=7
strength=8
upper_frequency=150

# repaired INPUT OUTPUT [OPTION...]: by the command, with these settings.
repaired() {
    limited "$build/bin/puffguard" "$1" -f -o "$2" --sensitivity "$sensitivity" \
        --strength "$strength" --upper-frequency "$upper_frequency" "${@:3}"
}

# install_plugins: where hosts look for them in the scratch home.
install_plugins() {
    limited "$root/tools/install-plugins.sh" "$build"
    result $? "plug-ins are installed"
}

recordings=${PUFFGUARD_MATERIAL:-$root/../shared}/audio

# each_recording FUNCTION: with every file of the recordings, if they are there.
each_recording() {
    local file
    if [ ! -d "$recordings" ]; then
        echo "skipped recordings: no $recordings"
        return
    fi
    for file in "$recordings"/*.flac; do
        "$1" "$file"
    done
}
