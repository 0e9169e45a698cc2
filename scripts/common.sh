# Sourced by the scripts: where the tree is, how to speak, how to install what is missing.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Runs a command as root, through sudo where that is needed.
as_root() {
    if [[ $(id -u) -eq 0 ]]; then
        "$@"
    else
        command -v sudo >/dev/null || fail "This needs root: run the script as root, or install sudo. Command: $*"
        sudo "$@"
    fi
}

# The packages of a list that this machine lacks.
missing_packages() {
    local name
    command -v dpkg-query >/dev/null || fail "These scripts need Debian's package tools; install what $1 names by hand."
    while read -r name _; do
        [[ -z $name || $name == \#* ]] && continue
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] || printf '%s\n' "$name"
    done <"$1"
}

# Installs the packages of a list that this machine lacks; asks for nothing when there are none.
install_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$1")
    [[ ${#missing[@]} -eq 0 ]] && return
    say "Installing: ${missing[*]}"
    # A package list that cannot be fetched does no harm as long as the packages are in the others.
    as_root apt-get update >/dev/null 2>&1 || say "Not every package list could be updated."
    quietly as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
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

# Says which step of how many begins; the script sets steps.
step_number=0
step() {
    step_number=$((step_number + 1))
    say "[$step_number/$steps] $*"
}

# Passes on how far a build or a test run is: a line that renews itself on a terminal, elsewhere one at each quarter.
# Ninja prints "[3/40] ...", ctest " 3/40 Test ...".
show_progress() {
    local line next=25 percent
    while IFS= read -r line; do
        [[ $line =~ ^(\[| *)([0-9]+)/([0-9]+)[\]\ ] ]] || continue
        percent=$((100 * BASH_REMATCH[2] / BASH_REMATCH[3]))
        if [[ -t 1 ]]; then
            printf '\r    %3d %% of %d ' "$percent" "${BASH_REMATCH[3]}"
        elif ((percent >= next)); then
            printf '    %d %% of %d\n' "$percent" "${BASH_REMATCH[3]}"
            next=$((percent / 25 * 25 + 25))
        fi
    done
    if [[ -t 1 ]]; then printf '\r\033[K'; fi
}

# Runs a command with its output in a file, and shows how far it is: with_progress LOG COMMAND...
with_progress() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    "$@" 2>&1 </dev/null | tee "$log" | show_progress
}

# Configures and builds a preset; further arguments are targets.
build() {
    local preset=$1
    shift
    quietly cmake --preset "$preset"
    with_progress "build/$preset/build.log" \
        cmake --build --preset "$preset" --parallel "$(jobs)" ${@:+--target "$@"} || {
        grep -vE '^\[[0-9]+/[0-9]+\]' "build/$preset/build.log" >&2
        fail "The build failed ($preset): see build/$preset/build.log"
    }
}

# Runs the tests of a preset, so many at once.
run_tests() {
    local preset=$1 log=build/$1/tests.log
    with_progress "$log" ctest --preset "$preset" --parallel "$2" || {
        sed -n '/^The following tests FAILED/,$p' "$log" >&2
        fail "Tests failed ($preset): see $log"
    }
    grep -E '^[0-9]+% tests passed' "$log"
}

# Packs a finished build, and sets package to the file's path.
make_package() {
    rm -rf "build/$1/packages"
    quietly cpack --config "build/$1/CPackConfig.cmake"
    package=$(find "$PWD/build/$1/packages" -maxdepth 1 -type f)
}
