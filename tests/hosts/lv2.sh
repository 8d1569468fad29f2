#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# Runs the LV2 bundle in programs that others wrote, and holds what comes out to what the command
# makes of the same recording: lv2.sh BUILD_FOLDER [--short]. Says "ok" or "FAILED" for each run. The
# short round needs no other hosts than those of lilv.
# shellcheck disable=SC2317 # functions are called by what holds their names
set -uo pipefail
# shellcheck source=tests/hosts/support.sh
source "$(dirname "${BASH_SOURCE[0]}")/support.sh"
uri=https://puffguard.example/lv2
seconds=20
hosts=(lv2apply lv2file lv2proc ffmpeg)
export LV2_PATH=$build/lib/lv2:/usr/lib/lv2

plugin_of() {
    case $1 in
    1) echo mono ;;
    2) echo stereo ;;
    6) echo surround51 ;;
    8) echo surround71 ;;
    esac
}

# run_hosts NAME CHANNELS: on $scratch/in.wav, at settings that are not the defaults.
run_hosts() {
    local name=$1 plugin host
    plugin=$(plugin_of "$2")
    repaired "$scratch/in.wav" "$scratch/expected.wav" --keep-latency
    result $? "puffguard $name" || return
    for host in "${hosts[@]}"; do
        rm -f "$scratch/out.wav"
        run_"$host" "$uri/$plugin" && same_sound "$scratch/expected.wav" "$scratch/out.wav" "$scratch/in.wav"
        result $? "$host $plugin $name"
    done
}

# run_cli URI OPTION...: a host for the command line, whose options the rest are.
run_cli() { limited "$2" -i "$scratch/in.wav" -o "$scratch/out.wav" "${@:3}" "$1"; }

run_lv2apply() {
    run_cli "$1" lv2apply -c sensitivity "$sensitivity" -c strength "$strength" \
        -c upper_repair_frequency "$upper_frequency"
}

run_lv2file() {
    run_cli "$1" lv2file -p "sensitivity:$sensitivity" -p "strength:$strength" \
        -p "upper_repair_frequency:$upper_frequency"
}

run_lv2proc() {
    run_cli "$1" lv2proc -c "sensitivity:$sensitivity" -c "strength:$strength" \
        -c "upper_repair_frequency:$upper_frequency"
}

run_ffmpeg() {
    # A colon separates options of a filter, and filters are unquoted twice.
    local escaped=${1//:/\\\\:}
    ffmpeg_quietly -i "$scratch/in.wav" -c:a pcm_f32le -af \
        "lv2=p=$escaped:c=sensitivity=$sensitivity|strength=$strength|upper_repair_frequency=$upper_frequency" \
        "$scratch/out.wav"
}

# A preset brings what no control holds, too: this one a latency of its own, and with it another sound.
check_preset() {
    local preset="Live - low latency"
    rm -f "$scratch/out.wav"
    limited "$build/bin/puffguard" "$scratch/in.wav" -f -o "$scratch/expected.wav" \
        --preset "$preset" --keep-latency &&
        limited lv2file -i "$scratch/in.wav" -o "$scratch/out.wav" -P "$preset" "$uri/mono" &&
        same_sound "$scratch/expected.wav" "$scratch/out.wav" "$scratch/in.wav"
    result $? "lv2file loads a preset"
}

check_documents() {
    limited lv2_validate "$build"/lib/lv2/puffguard.lv2/*.ttl && grep -q 'Found 0 errors' "$scratch/log"
    result $? "lv2_validate"
    local plugin
    for plugin in mono stereo surround51 surround71; do
        limited lv2info "$uri/$plugin" && ! grep -qi 'error\|warning' "$scratch/log" &&
            grep -q 'Has latency: *yes' "$scratch/log" && grep -q 'Gentle' "$scratch/log"
        result $? "lv2info $plugin"
    done
}

# Installed, they are found without being told where.
check_installed() {
    install_plugins
    limited env -u LV2_PATH lv2ls && [ "$(grep -c "^$uri/" "$scratch/log")" -eq 4 ]
    result $? "lv2ls finds the installed plug-ins"
}

# Without its module a plug-in declines: the host says so and ends by itself. (lv2apply is left out:
# it runs what it doesn't have.)
check_missing_module() {
    ffmpeg_quietly -f lavfi -i anoisesrc=duration=0.1 -c:a pcm_f32le "$scratch/in.wav"
    local host code
    for host in lv2file lv2proc ffmpeg; do
        PUFFGUARD_MODULE=/nowhere/module.so run_"$host" "$uri/mono"
        code=$?
        [ $code -gt 0 ] && [ $code -lt 124 ] && grep -q '/nowhere/module.so' "$scratch/log"
        result $? "$host without the module"
    done
}

# make_input: the project's sample, without the help of other programs.
make_input() {
    limited "$build/bin/puffguard" "$root/tools/sample/plosives.flac" -f -o "$scratch/in.wav" \
        --bypass --format wav --subtype float
    result $? "the recording is there"
}

if [ "${2:-}" = --short ]; then
    versions lilv-utils sordi
    hosts=(lv2apply)
    check_documents
    make_input && run_hosts plosives.flac 1
    finish
fi

versions lilv-utils lv2file lv2proc sordi ffmpeg
check_documents
check_installed
check_missing_module

make_input && run_hosts plosives.flac 1
check_preset
# The sample on all channels, each at a level of its own.
for channels in 2 6 8; do
    pan=${channels}c
    for ((i = 0; i < channels; i++)); do
        pan+="|c$i=0.$((9 - i))*c0"
    done
    ffmpeg_quietly -i "$root/tools/sample/plosives.flac" -af "pan=$pan" -c:a pcm_f32le "$scratch/in.wav"
    run_hosts "plosives.flac on $channels channels" "$channels"
done

run_recording() {
    local channels
    channels=$(ffprobe -v error -show_entries stream=channels -of csv=p=0 "$1")
    ffmpeg_quietly -i "$1" -t "$seconds" -c:a pcm_f32le "$scratch/in.wav"
    run_hosts "$(basename "$1")" "$channels"
}
each_recording run_recording
finish
