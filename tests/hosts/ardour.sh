#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# Lets Ardour, without its window, make a session with the plug-in on a track and export it; then load
# what it saved, and export again: ardour.sh BUILD_FOLDER. Ardour takes the plug-in's latency out, so
# what comes out is what the command makes of the recording.
# shellcheck disable=SC2317 # functions are called by what holds their names
set -uo pipefail
# shellcheck source=tests/hosts/support.sh
source "$(dirname "${BASH_SOURCE[0]}")/support.sh"

rate=48000
export LV2_PATH=$build/lib/lv2
vst3=$build/lib/vst3/Puff-guard.vst3

# Ardour plays silence ahead of the first sample, and the repair works in hops of 512 samples, its
# pitch tracker with every second one: the last bits depend on how they fall together. The silence is
# whole blocks of 1024 samples, less this latency and the 256 samples of the port that it plays to:
# 769 more than pairs of hops. Now and then it is a hop less.
leads=(769 257)

# steadily COMMAND...: Ardour's tools crash now and then on their way out, with no plug-in loaded as
# well; and on a busy machine an export may never begin, since its butler thread and its main thread
# wait for each other. So they get three attempts.
steadily() {
    local attempt code limit=60
    for attempt in 1 2 3; do
        limited "$@"
        code=$?
        [ $code -ge 124 ] || return $code
        echo "again   attempt $attempt ended with code $code: $1"
    done
    return $code
}

# after_silence SAMPLES INPUT OUTPUT: what the command makes of the input when so much silence comes
# first, without that silence.
after_silence() {
    ffmpeg_quietly -i "$2" -af "adelay=delays=${1}S:all=1" -c:a pcm_f32le "$scratch/late.wav" &&
        repaired "$scratch/late.wav" "$scratch/late-repaired.wav" &&
        ffmpeg_quietly -i "$scratch/late-repaired.wav" -af "atrim=start_sample=$1,asetpts=PTS-STARTPTS" \
            -c:a pcm_f32le "$3"
}

# starts_like A B SECONDS
starts_like() {
    ffmpeg_quietly -i "$1" -t "$3" -f f32le "$scratch/a.raw" &&
        ffmpeg_quietly -i "$2" -t "$3" -f f32le "$scratch/b.raw" && cmp -s "$scratch/a.raw" "$scratch/b.raw"
}

# find_lead OUTPUT: the lead that makes the beginning of the output equal is then $lead.
find_lead() {
    ffmpeg_quietly -i "$scratch/in.wav" -t 2 -c:a pcm_f32le "$scratch/beginning.wav"
    for lead in "${leads[@]}"; do
        after_silence "$lead" "$scratch/beginning.wav" "$scratch/expected.wav" || return 1
        if starts_like "$scratch/expected.wav" "$1" 1.5; then
            echo "note    Ardour plays silence of $lead samples, and whole hops, ahead"
            return
        fi
    done
    return 1
}

# as_repaired OUTPUT: to the last bit what the command makes of $scratch/in.wav.
as_repaired() {
    find_lead "$1" && after_silence "$lead" "$scratch/in.wav" "$scratch/expected.wav" &&
        same_sound "$scratch/expected.wav" "$1" "$scratch/in.wav"
}

# export_session SNAPSHOT OUTPUT
export_session() {
    rm -f "$2"
    steadily ardour7-export -s "$rate" -b float -o "$2" "$PUFFGUARD_SESSION" "$1" && [ -s "$2" ]
}

# values_are SENSITIVITY STRENGTH FREQUENCY: what the script printed of the controls.
values_are() {
    [ "$(awk -F '\t' '$1 == "value" { print $3 }' "$scratch/log" | head -n 3 | tr '\n' ' ')" = "$1 $2 $3 " ]
}

# run_session NAME: on $scratch/in.wav with the plug-in that the variables name.
run_session() {
    export PUFFGUARD_SESSION=$scratch/session PUFFGUARD_LATENCY=16383
    rm -rf "$PUFFGUARD_SESSION"
    steadily ardour7-lua "$root/tests/hosts/ardour/session.lua" &&
        grep -qx $'latency\t16383' "$scratch/log" &&
        limited python3 "$root/tests/hosts/ardour/add_recording.py" "$PUFFGUARD_SESSION" "$scratch/in.wav"
    result $? "Ardour makes a session with $1, and is told the latency" || return
    export_session puffguard "$scratch/out.wav" && as_repaired "$scratch/out.wav"
    result $? "Ardour exports with $1 what the command makes" || return
    PUFFGUARD_LOAD=again steadily ardour7-lua "$root/tests/hosts/ardour/session.lua" &&
        grep -qx $'latency\t16383' "$scratch/log" &&
        values_are "$sensitivity" "$strength" "$upper_frequency"
    result $? "Ardour loads the session with $1" || return
    export_session again "$scratch/again.wav" && as_repaired "$scratch/again.wav"
    result $? "Ardour exports the loaded session with $1 alike"
}

# What no control holds: a latency of its own, from a preset into the session and out of it again.
run_preset() {
    export PUFFGUARD_SESSION=$scratch/preset PUFFGUARD_LATENCY=9215 PUFFGUARD_VALUES=""
    export PUFFGUARD_FORMAT=LV2 PUFFGUARD_PLUGIN=https://puffguard.example/lv2/stereo
    rm -rf "$PUFFGUARD_SESSION"
    PUFFGUARD_PRESET="Live - low latency" steadily ardour7-lua "$root/tests/hosts/ardour/session.lua" &&
        grep -qx $'latency\t9215' "$scratch/log"
    result $? "Ardour loads a preset with another latency" || return
    PUFFGUARD_LOAD=again steadily ardour7-lua "$root/tests/hosts/ardour/session.lua" &&
        grep -qx $'latency\t9215' "$scratch/log"
    result $? "Ardour loads a session with another latency"
}

# The host's own scanner loads the bundle, and its list is where the session finds it: but only when the
# binary is older than the list, which the scanner gives the binary's own time.
scan_vst3() {
    install_plugins
    find "$HOME/.vst3" -name '*.so' -exec touch -d '1 hour ago' {} +
    limited env LD_LIBRARY_PATH=/usr/lib/ardour7 /usr/lib/ardour7/ardour-vst3-scanner -f -v \
        "$HOME/.vst3/$(basename "$vst3")" &&
        identifier=$(sed -n 's/.*uid="\([0-9A-Fa-f]\{32\}\)".*/\1/p' "$HOME"/.cache/ardour7/vst/*.v3i | head -n 1) &&
        [ -n "$identifier" ] && touch "$HOME"/.cache/ardour7/vst/*.v3i
    result $? "Ardour scans VST3"
}

run_formats() {
    export PUFFGUARD_VALUES="0=$sensitivity 1=$strength 2=$upper_frequency"
    PUFFGUARD_FORMAT=LV2 PUFFGUARD_PLUGIN=https://puffguard.example/lv2/stereo run_session "LV2, $1"
    if [ -n "$identifier" ]; then
        PUFFGUARD_FORMAT=VST3 PUFFGUARD_PLUGIN=$identifier run_session "VST3, $1"
    fi
}

# At the session's rate. A track of one channel would go through the law of the panner.
run_recording() {
    [ "$(ffprobe -v error -show_entries stream=channels -of csv=p=0 "$1")" -eq 2 ] || return
    ffmpeg_quietly -i "$1" -t 10 -ar "$rate" -c:a pcm_f32le "$scratch/in.wav"
    run_formats "$(basename "$1")"
}

# Ardour lines its ports up with their resampler's 16 samples either before or after an export begins,
# as its threads happen to run, with no plug-in as well; without the resampler there are none.
configure() {
    mkdir -p "$HOME/.config/ardour7"
    cat >"$HOME/.config/ardour7/config" <<TEXT
<?xml version="1.0"?>
<Ardour><Config><Option name="port-resampler-quality" value="0"/></Config></Ardour>
TEXT
}

versions ardour ffmpeg
configure
run_preset
identifier=
if [ -d "$vst3" ]; then
    scan_vst3
else
    echo "skipped VST3: not part of this build"
fi
ffmpeg_quietly -i "$root/tools/sample/plosives.flac" -af "pan=2c|c0=0.9*c0|c1=0.5*c0" -ar "$rate" \
    -c:a pcm_f32le "$scratch/in.wav"
run_formats plosives.flac
each_recording run_recording
finish
