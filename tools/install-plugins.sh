#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# Puts the built bundles where hosts look: install-plugins.sh BUILD_FOLDER [PREFIX]. Without PREFIX
# that is in the user's home, with it below PREFIX/lib. All bundles are first copied beside their
# places; only when every copy is whole do they take the places of older ones, so that a full disk
# or a folder without permission leaves everything as it was.
set -euo pipefail

prefix=${2:-}
if [ $# -lt 1 ] || [ $# -gt 2 ] || [[ $prefix = -* ]]; then
    echo "usage: install-plugins.sh BUILD_FOLDER [PREFIX]" >&2
    exit 2
fi
build=$(cd -- "$1" && pwd -P)

# Format, folder of the bundle in BUILD_FOLDER.
bundles=(
    "LV2 lib/lv2/puffguard.lv2"
    "CLAP lib/clap/puffguard"
    "VST3 lib/vst3/Puff-guard.vst3"
)

say() { printf '%s\n' "$*"; }

die() {
    say "$*" >&2
    exit 1
}

# folder_of FORMAT: where hosts look for bundles of this format.
folder_of() {
    if [ -n "$prefix" ]; then
        say "$prefix/lib/${1,,}"
    else
        say "$HOME/.${1,,}"
    fi
}

# Copies that wait beside their places, and the places; what stood there goes into the copy's folder.
stages=()
places=()

# Puts back what an interrupted run has set aside, and leaves no copies behind.
clean_up() {
    local i
    for i in "${!stages[@]}"; do
        if [ -e "${stages[i]}/old" ] && [ ! -e "${places[i]}" ]; then
            mv "${stages[i]}/old" "${places[i]}"
        fi
        rm -rf "${stages[i]}"
    done
}
trap clean_up EXIT
trap 'exit 130' INT TERM HUP

# stage SOURCE PLACE: a whole copy beside the place.
stage() {
    local source=$1 place=$2 folder copy
    folder=$(dirname "$place")
    if ! mkdir -p "$folder" 2>/dev/null ||
        ! copy=$(mktemp -d "$folder/.puffguard.XXXXXX" 2>/dev/null); then
        die "No permission to write in $folder: nothing was installed."
    fi
    stages+=("$copy")
    places+=("$place")
    cp -R "$source" "$copy/new" || die "Could not copy to $folder: nothing was installed."
    # Whoever built them may have kept them to themselves.
    [ -z "$prefix" ] || chmod -R a+rX,u+w "$copy/new"
}

# replace STAGE PLACE: the copy takes the place.
replace() {
    if [ -e "$2" ] || [ -L "$2" ]; then
        mv "$2" "$1/old"
        mv "$1/new" "$2"
        say "replaced   $2"
    else
        mv "$1/new" "$2"
        say "installed  $2"
    fi
}

if [ -n "$prefix" ]; then
    umask 022 # a place for all users
    mkdir -p "$prefix" 2>/dev/null || die "Could not make $prefix: nothing was installed."
    prefix=$(cd "$prefix" && pwd -P)
elif [ ! -d "${HOME:-}" ]; then
    die "HOME names no folder: nothing was installed."
fi
for bundle in "${bundles[@]}"; do
    read -r format source <<<"$bundle"
    if [ -d "$build/$source" ]; then
        stage "$build/$source" "$(folder_of "$format")/$(basename "$source")"
    else
        say "left out   $format: not part of this build"
    fi
done
[ ${#stages[@]} -gt 0 ] || die "There is no bundle in $build/lib: nothing was installed."
for i in "${!stages[@]}"; do
    replace "${stages[i]}" "${places[i]}"
done
say 'Let your host scan its plug-ins again, and look for "Puff-guard".'
