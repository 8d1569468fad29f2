#!/usr/bin/env bash
# SPDX-License-Identifier: ISC
# What tools/install-plugins.sh leaves behind, with bundles that hold a text each, in scratch folders.
set -uo pipefail
script=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)/tools/install-plugins.sh

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
build=$scratch/build
export HOME=$scratch/home
failures=0

# check NAME COMMAND...: one line when the command fails.
check() {
    local name=$1
    shift
    if ! "$@"; then
        echo "FAILED  $name: $*"
        failures=$((failures + 1))
    fi
}

# Bundles of a "build" whose files hold the text.
make_bundles() {
    rm -rf "$build"
    mkdir -p "$build"/lib/{lv2/puffguard.lv2,clap/puffguard,vst3/Puff-guard.vst3/Contents}
    echo "$1" >"$build/lib/lv2/puffguard.lv2/manifest.ttl"
    echo "$1" >"$build/lib/clap/puffguard/puffguard.clap"
    echo "$1" >"$build/lib/vst3/Puff-guard.vst3/Contents/moduleinfo.json"
}

# install [PREFIX]: what it says is kept.
install() { timeout -k 2 20 "$script" "$build" "$@" >"$scratch/log" 2>&1; }

says() { grep -qF -- "$1" "$scratch/log"; }

# holds FOLDER LV2 CLAP VST3 TEXT: the three bundles, each alone in its folder, with this text.
holds() {
    [ "$(ls -A "$1/$2")" = puffguard.lv2 ] && [ "$(ls -A "$1/$3")" = puffguard ] &&
        [ "$(ls -A "$1/$4")" = Puff-guard.vst3 ] &&
        [ "$(cat "$1/$2/puffguard.lv2/"*)" = "$5" ] &&
        [ "$(cat "$1/$3/puffguard/"*)" = "$5" ] &&
        [ "$(cat "$1/$4/Puff-guard.vst3/Contents/"*)" = "$5" ]
}

home_holds() { holds "$HOME" .lv2 .clap .vst3 "$1"; }

rm -rf "$HOME" && mkdir "$HOME"
make_bundles first
echo extra >"$build/lib/lv2/puffguard.lv2/old.ttl"
check "into an empty home" install
check "into an empty home" says "installed  $HOME/.clap/puffguard"
make_bundles second
check "over an older version" install
check "over an older version" says "replaced   $HOME/.lv2/puffguard.lv2"
check "nothing of the older version stays" home_holds second

prefix=$scratch/a\ prefix
chmod -R go-rwx "$build"
(umask 077 && install "$prefix")
check "below a prefix" [ $? -eq 0 ]
check "below a prefix" holds "$prefix/lib" lv2 clap vst3 second
check "below a prefix for all users" [ -z "$(find "$prefix" -not -perm -a+r -o -type d -not -perm -a+x)" ]
check "an option is no prefix" eval '! install --help'
check "an option is no prefix" says "usage: "

# One place of three can't be had: nothing changes anywhere.
make_bundles third
rm -rf "$HOME/.vst3" && echo "no folder" >"$HOME/.vst3"
check "a file in the way is told" eval '! install'
check "a file in the way is told" says "No permission to write in $HOME/.vst3: nothing was installed"
rm "$HOME/.vst3" && mkdir -p "$HOME/.vst3/Puff-guard.vst3/Contents"
echo second >"$HOME/.vst3/Puff-guard.vst3/Contents/moduleinfo.json"
check "a file in the way leaves the rest" home_holds second

# Only somebody who isn't the superuser can be without permission.
alone=()
if [ "$(id -u)" -eq 0 ]; then
    alone=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi
cp "$script" "$scratch/install-plugins.sh"
chmod a+rx "$scratch"
if ! "${alone[@]}" test -r "$scratch/install-plugins.sh" 2>/dev/null; then
    echo "skipped: can't run as somebody without rights"
else
    [ "$(id -u)" -ne 0 ] || chown -R 65534:65534 "$HOME"
    chmod a-w "$HOME/.clap"
    "${alone[@]}" timeout -k 2 20 "$scratch/install-plugins.sh" "$build" >"$scratch/log" 2>&1
    check "no permission is a failure" [ $? -ne 0 ]
    check "no permission is told" says "No permission to write in $HOME/.clap: nothing was installed"
    chmod u+w "$HOME/.clap"
    check "no permission leaves what was there" home_holds second
fi

# stop_at NUMBER: the script is ended when it is about to make its move of this number.
stop_at() {
    mkdir -p "$scratch/bin"
    cat >"$scratch/bin/mv" <<TEXT
#!/usr/bin/env bash
echo move >>"$scratch/moves"
[ \$(wc -l <"$scratch/moves") -eq $1 ] || exec "$(command -v mv)" "\$@"
kill -TERM \$PPID
TEXT
    chmod a+x "$scratch/bin/mv"
    rm -f "$scratch/moves"
}

# whole_bundles: each is there in one of the two versions, and nothing beside it.
whole_bundles() {
    local place
    for place in .lv2/puffguard.lv2 .clap/puffguard .vst3/Puff-guard.vst3; do
        [ "$(ls -A "$HOME/${place%/*}")" = "${place#*/}" ] &&
            grep -rqx 'before\|after' "$HOME/$place" || return
    done
}

# Two moves for each bundle: what is there aside, and the new one to its place.
for number in 1 2 3 4 5 6; do
    make_bundles before
    check "before an interruption" install
    make_bundles after
    stop_at $number
    check "interrupted at move $number" eval "! PATH=$scratch/bin:$PATH install"
    check "interrupted at move $number" whole_bundles
    [ $number -gt 2 ] || check "interrupted in the first bundle" home_holds before
done

rm -rf "$build" && mkdir "$build"
check "a build without bundles is told" eval '! install'
check "a build without bundles is told" says "There is no bundle"

echo "$failures failed"
[ $failures -eq 0 ]
