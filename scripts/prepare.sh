# Sourced by the project's scripts: installs what is missing of packages.txt, and builds a preset.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

say() { printf '%s\n' "$*" >&2; }
fail() {
    say "error: $*"
    exit 1
}

# install_packages GROUP: installs what packages.txt lists for the group and is not there yet. With nothing missing it
# costs a fraction of a second.
install_packages() {
    local group=$1 missing=() package
    command -v dpkg-query >/dev/null || {
        say "This is no Debian system: make sure that the packages of scripts/packages.txt are there in some form."
        return 0
    }
    while read -r package; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done < <(sed 's/#.*//' scripts/packages.txt | awk -v group="$group" '{ for (i = 2; i <= NF; ++i) if ($i == group) print $1 }')
    ((${#missing[@]})) || return 0

    say "installing: ${missing[*]}"
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "packages are missing and neither root nor sudo is at hand: ${missing[*]}"
        as_root=(sudo)
    fi
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } \
        >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        fail "could not install: ${missing[*]} (whole log: $log)"
    fi
    rm -f "$log"
}

# The sources of Debian itself as the machine's apt knows them: whatever mirror, without what others added. The security
# suite is left out, so that packages cannot skew among themselves.
debian_sources() {
    local keyring=/usr/share/keyrings/debian-archive-keyring.gpg options=
    [[ -r $keyring ]] && options="[signed-by=$keyring] "
    apt-get indextargets --format '$(CREATED_BY)|$(ORIGIN)|$(LABEL)|deb '"$options"'$(REPO_URI) $(RELEASE) $(COMPONENT)' |
        sed -n 's/^Packages|Debian|Debian|//p' | sort -u
}

# build PRESET [TARGET...]: configures and builds; the compiler's words are shown only when something is wrong.
build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    say "building ($preset) ..."
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -E -A 12 'error|FAILED|CMake Error' "$log" | head -n 80 >&2
        fail "the build failed (whole log: $log)"
    fi
    rm -f "$log"
}
