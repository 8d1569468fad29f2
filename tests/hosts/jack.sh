#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# Plays the LV2 plug-in in jalv, in a graph of JACK without a sound card, for a minute: jack.sh
# BUILD_FOLDER. The server says which client was late, so that a busy machine's other trouble isn't
# counted; and where the system allows it, audio goes before all other work.
# shellcheck disable=SC2317 # functions are called by what holds their names
set -uo pipefail
# shellcheck source=tests/hosts/support.sh
source "$(dirname "${BASH_SOURCE[0]}")/support.sh"

seconds=60
longest=$((seconds + 120))
export LV2_PATH=$build/lib/lv2
# A server of our own beside any that the user runs.
export JACK_DEFAULT_SERVER=puffguard-$$ JACK_NO_AUDIO_RESERVATION=1 JACK_NO_START_SERVER=1
client=puffguard
server_log=$scratch/server
client_log=$scratch/client

# Blocks since the server started in which our client was late and the metronome was not: when that was
# late in the same block, nobody let them run. The server names who was late, then says that the block
# is lost.
late_blocks() {
    awk -v ours="client = $client was" -v other="client = metro was" '
        index($0, ours) { late = 1 }
        index($0, other) { excused = 1 }
        /Process error/ { count += late && !excused; late = excused = 0 }
        END { print count + (late && !excused) }' "$server_log"
}

more_late_than() { [ "$(late_blocks)" -gt "$1" ]; }

# waits_for COMMAND...: until it succeeds.
waits_for() {
    local attempt
    for ((attempt = 0; attempt < 100; ++attempt)); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.1
    done
    return 1
}

port_is_there() { jack_lsp 2>/dev/null | grep -qx "$1"; }

# Drums in, ears out: short low tones, as often as people pop.
connect() {
    local side number=0
    for side in left right; do
        number=$((number + 1))
        limited jack_connect metro:120_bpm "$client:in_$side" &&
            limited jack_connect "$client:out_$side" "system:playback_$number" || return
    done
}

start_server() {
    local scheduling=--no-realtime
    if chrt --fifo 10 true 2>/dev/null; then
        scheduling=--realtime
    fi
    start_group "$longest" "$server_log" \
        jackd --name "$JACK_DEFAULT_SERVER" --no-mlock $scheduling -d dummy -r 48000 -p 1024
    server=$group
    waits_for port_is_there system:playback_1
    result $? "a JACK server without a sound card"
}

start_client() {
    start_group "$longest" "$scratch/metro" jack_metro -b 120 -f 90 -A 0.5 -D 60 -n metro
    metro=$group
    start_group "$longest" "$client_log" \
        jalv -i -n "$client" -c sensitivity="$sensitivity" -c strength="$strength" \
        https://puffguard.example/lv2/stereo
    jalv=$group
    waits_for port_is_there "$client:out_right" && waits_for port_is_there metro:120_bpm && connect
    result $? "jalv plays the plug-in"
}

# ports_with CLIENT TEXT: how many of the client's ports have a line with this text below them.
ports_with() { grep -A 2 "^$1:" "$scratch/log" | grep -cF "$2"; }

# jalv gives the latency of the plug-in to its ports: from the inputs on, and before the two blocks
# that the card is late.
check_latency() {
    limited jack_lsp -l
    [ "$(ports_with "$client" "capture latency = [ 16383 16383 ]")" -eq 2 ] &&
        [ "$(ports_with "$client" "playback latency = [ $((16383 + 2048)) $((16383 + 2048)) ]")" -eq 2 ]
    result $? "jalv reports the latency"
}

check_in_time() {
    local before late
    before=$(late_blocks)
    sleep $seconds
    late=$(($(late_blocks) - before))
    cp "$server_log" "$scratch/log"
    [ "$late" -eq 0 ] && kill -0 "$jalv" 2>/dev/null && port_is_there "$client:out_left"
    result $? "no block of $seconds s is late: $late"
}

check_end() {
    local code
    kill -INT "$jalv"
    wait "$jalv"
    code=$?
    cp "$client_log" "$scratch/log"
    result $code "jalv ends cleanly"
    stop_group "$jalv"
    ! port_is_there "$client:out_left" && port_is_there system:playback_1
    result $? "the server goes on without it"
}

# Stopped in the midst of it, the client must count as late, or the check above would prove nothing.
check_counting() {
    local before
    start_client || return
    before=$(late_blocks)
    kill -STOP -- "-$jalv"
    sleep 0.5
    kill -CONT -- "-$jalv"
    waits_for more_late_than "$before"
    result $? "a client that is held up is counted"
    stop_group "$jalv"
    stop_group "$metro"
}

versions jalv jackd2
start_server || finish
if start_client; then
    check_latency
    check_in_time
    check_end
    stop_group "$metro"
    check_counting
fi
stop_group "$server"
finish
