#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# Lets the scanner of Qtractor, a CLAP host, load the bundle and list its plug-ins: clap.sh
# BUILD_FOLDER.
# shellcheck disable=SC2016 # the inner shell expands it
set -uo pipefail
# shellcheck source=tests/hosts/support.sh
source "$(dirname "${BASH_SOURCE[0]}")/support.sh"

bundle=$HOME/.clap/puffguard/puffguard.clap
scanner=$(dpkg -L qtractor | grep -m 1 '/qtractor_plugin_scan$')

# The scanner reads what to load from its standard input.
scan() { limited sh -c 'echo "CLAP:$1" | "$2"' sh "$1" "$scanner"; }

versions qtractor
install_plugins
if [ ! -f "$bundle" ]; then
    echo "skipped CLAP: not part of this build"
    finish
fi
scan "$bundle"
grep -m 1 '^CLAP|' "$scratch/log" | sed 's/^/note    /'
grep -q '^CLAP|.*Puff-guard.*|2:2|0:0|4:0|' "$scratch/log"
result $? "qtractor_plugin_scan lists the plug-in, two channels to two, with its four controls"
! scan "$scratch/home/none.clap" || ! grep -q '^CLAP|' "$scratch/log"
result $? "qtractor_plugin_scan lists nothing where nothing is"
finish
