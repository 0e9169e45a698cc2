# Sourced by the scripts: where the tree is, how to speak, how to install what is missing.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Installs the packages of a list that this machine lacks; asks for nothing when there are none.
install_packages() {
    local list=$1 missing=() name
    command -v dpkg-query >/dev/null || fail "These scripts need Debian's package tools; install what $list names by hand."
    while read -r name _; do
        [[ -z $name || $name == \#* ]] && continue
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] || missing+=("$name")
    done <"$list"
    [[ ${#missing[@]} -eq 0 ]] && return
    local sudo=()
    if [[ $(id -u) -ne 0 ]]; then
        command -v sudo >/dev/null || fail "Missing packages: ${missing[*]}. Install them as root, or install sudo."
        sudo=(sudo)
    fi
    say "Installing: ${missing[*]}"
    # A list that cannot be had is no obstacle while the packages are in the others; what is missing shows below.
    "${sudo[@]}" apt-get update >/dev/null 2>&1 || say "Not every package list could be updated."
    quietly "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

# Runs a command and shows what it printed only when it fails.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "Failed: $*"
    fi
    rm -f "$log"
}

jobs() { nproc; }

# Configures and builds a preset; further arguments are targets.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    quietly cmake --preset "$preset"
    quietly cmake --build --preset "$preset" --parallel "$(jobs)" ${@:+--target "$@"}
}

# Packs a finished build, and sets package to the file's path.
make_package() {
    rm -rf "build/$1/packages"
    quietly cpack --config "build/$1/CPackConfig.cmake"
    package=$(find "$PWD/build/$1/packages" -maxdepth 1 -type f)
}
