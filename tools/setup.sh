# shellcheck shell=bash
# SPDX-License-Identifier: ISC
# Sourced by ./run and ./test: packages and builds. Everything it says goes to standard error, so that
# standard output stays the program's own.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$*"
    exit 1
}

# as_root COMMAND...: directly, or by way of sudo.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# packages_of USE...: the names listed for these uses.
packages_of() {
    local use
    for use in "$@"; do
        awk -v use="$use" '$1 == use { print $2 }' "$root/tools/packages.txt"
    done
}

# missing_packages USE...: those that aren't installed.
missing_packages() {
    local wanted installed
    wanted=$(packages_of "$@" | sort -u)
    # A package that dpkg has never heard of makes it fail, but it still lists the others.
    # shellcheck disable=SC2086 # names are words
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
        awk '$1 == "installed" { print $2 }' | sort -u)
    comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed")
}

# ensure_packages USE...: installs what is missing, and says what that is.
ensure_packages() {
    local missing
    if ! command -v dpkg-query >/dev/null; then
        say "This is no Debian system: install the counterparts of tools/packages.txt by hand."
        return 0
    fi
    missing=$(missing_packages "$@" | tr '\n' ' ')
    missing=${missing% }
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        die "Missing packages, and neither root nor sudo here to install them." \
            "Ask for: apt-get install $missing"
    fi
    say "Installing: $missing"
    as_root apt-get update -qq </dev/null >&2 ||
        say "The package lists could not be renewed; going on with those at hand."
    # shellcheck disable=SC2086 # names are words
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends $missing </dev/null >&2 ||
        die "Could not install: $missing"
}

# arm_sysroot FOLDER: the libraries that are linked, for 64-bit ARM, in a folder that no program of
# this system looks into. It is made once for each release and list of packages.
arm_sysroot() {
    local folder=$1 packages codename
    packages=$(packages_of build | grep -e '-dev$' | paste -sd,)
    codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
    [ "$(cat "$folder/packages" 2>/dev/null)" != "$codename $packages" ] || return 0
    say "Fetching libraries for ARM"
    rm -rf "$folder"
    mkdir -p "$(dirname "$folder")"
    # Nothing of it is installed, so that neither a superuser nor an emulator is needed.
    mmdebstrap --quiet --variant=extract --mode=chrootless --architectures=arm64 \
        --include="$packages" "$codename" "$folder" </dev/null >&2 || return 1
    printf '%s\n' "$codename $packages" >"$folder/packages"
}

# build PRESET FOLDER TARGET...: configures once, then builds what is out of date.
build() {
    local preset=$1 name=$2 folder=$root/$2
    shift 2
    mkdir -p "$folder"
    (
        # Two runs side by side wait for each other instead of building over each other.
        flock 9
        local cache=$folder/CMakeCache.txt
        # A folder that was moved or copied can't be built in any more.
        if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache"; then
            rm -rf "$cache" "$folder/CMakeFiles" "$folder/build.ninja"
        fi
        if [ ! -f "$folder/build.ninja" ]; then
            say "Configuring $name"
            (cd "$root" && cmake --preset "$preset") </dev/null >&2
        fi
        if ! ninja -C "$folder" -n "$@" </dev/null 2>/dev/null | grep -q 'no work to do'; then
            say "Building $name"
            ninja -C "$folder" "$@" </dev/null >&2
        fi
    ) 9>"$folder/.lock"
}

# benchmark: builds and runs the measurements.
benchmark() {
    ensure_packages bench
    build bench build-bench puffguard_bench || return 1
    "$root/build-bench/bench/puffguard_bench"
}
