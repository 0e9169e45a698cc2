# Sourced by the scripts that build for Windows and run under Wine.

# What an installed Wine calls its loaders and its server.
wine_folder=/usr/lib/wine
wine_state=$PWD/build/wine

# Wine must not look for a screen, and its own remarks are not ours.
export DISPLAY= WINEDEBUG=-all

as_root() {
    if [[ $(id -u) -eq 0 ]]; then "$@"; else sudo "$@"; fi
}

# apt with package lists of its own, which hold only the main and the updates suites, for these kinds of entry.
apt_apart() {
    local kind=$1 folder=$wine_state/apt-$1
    shift
    if [[ ! -f $folder/list.sources ]]; then
        mkdir -p "$folder/lists/partial"
        sed -n "s|^URIs: *||p; s|^deb \(\[.*\] \)\?\([^ ]*\) .*|\2|p" \
            /etc/apt/sources.list /etc/apt/sources.list.d/*.sources /etc/apt/sources.list.d/*.list 2>/dev/null |
            grep -m 1 'debian/\?$' >"$folder/uri" || printf 'http://deb.debian.org/debian\n' >"$folder/uri"
        printf 'Types: %s\nURIs: %s\nSuites: bookworm bookworm-updates\nComponents: main\nSigned-By: %s\n' \
            "$kind" "$(cat "$folder/uri")" /usr/share/keyrings/debian-archive-keyring.gpg >"$folder/list.sources"
    fi
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -o Dir::Etc::sourcelist="$folder/list.sources" \
        -o Dir::Etc::sourceparts=/dev/null -o Dir::State::lists="$folder/lists" "$@"
}

have_wine32() { [[ -x $wine_folder/wine ]]; }

# 32-bit Wine needs the i386 packages. Where the ordinary lists cannot serve them, lists of their own may; where those
# cannot either, the 64-bit half must do.
install_wine32() {
    have_wine32 && return 0
    local log
    log=$(mktemp)
    say "Installing: wine32"
    as_root dpkg --add-architecture i386
    if { as_root apt-get update && as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends --no-remove wine32:i386; } >"$log" 2>&1 ||
        { apt_apart deb update && apt_apart deb install -y --no-install-recommends --no-remove \
            wine64 wine32:i386; } >"$log" 2>&1; then
        rm -f "$log"
        return 0
    fi
    # Left in place, the foreign architecture would disturb later updates.
    as_root dpkg --remove-architecture i386 2>/dev/null || true
    say "32-bit Wine is not to be had: $(grep -m 1 '^E:' "$log" || tail -n 1 "$log")"
    rm -f "$log"
    return 0
}

# The sources of the libraries that Debian has no Windows builds of, in build/windows-sources.
unpack_windows_sources() {
    local target=$PWD/build/windows-sources work
    [[ -f $target/done ]] && return
    say "Unpacking the sources of pugixml and SQLite"
    work=$(mktemp -d)
    chmod 755 "$work"
    quietly apt_apart deb-src update
    (cd "$work" && quietly apt_apart deb-src source --download-only pugixml sqlite3)
    mkdir -p "$work/pugixml" "$work/sqlite" "$target"
    tar -C "$work/pugixml" --strip-components=1 -xf "$work"/pugixml_*.orig.tar.*
    tar -C "$work/sqlite" --strip-components=1 -xf "$(find "$work" -name 'sqlite3_*.orig.tar.*')"
    (cd "$work/sqlite" && quietly ./configure --disable-tcl && quietly make sqlite3.c)
    rm -rf "$target/pugixml" "$target/sqlite"
    mkdir -p "$target/sqlite"
    cp -r "$work/pugixml/src" "$target/pugixml"
    cp "$work/sqlite/sqlite3.c" "$work/sqlite/sqlite3.h" "$target/sqlite/"
    touch "$target/done"
    rm -rf "$work"
}

# One run of Wine in a prefix: wine_run PREFIX PROGRAM ARGUMENT... The loader follows the program's bitness. Nothing of
# ours may stay open in Wine's servers, which outlive the program, so that no pipe waits for them.
wine_run() {
    local prefix=$1
    shift
    WINEPREFIX=$prefix "$(wine_loader "$1")" "$@"
}

# Which loader runs a program: its header tells (0x14c for 32-bit machines). Programs of Wine itself are named without
# a path and are 64-bit.
wine_loader() {
    local offset machine
    if [[ -f $1 ]]; then
        offset=$(od -An -t u4 -j 60 -N 4 "$1")
        machine=$(od -An -t x2 -j $((offset + 4)) -N 2 "$1")
        [[ $machine == *014c* ]] && printf '%s/wine' "$wine_folder" && return
    fi
    printf '%s/wine64' "$wine_folder"
}

# A throwaway Windows machine of that name in build/wine. The first one is made by Wine, the others are its copies; their
# registries are their own.
make_wine_prefix() {
    local prefix=$wine_state/$1 template=$wine_state/template
    if [[ ! -f $template/ready ]]; then
        say "Making a Wine prefix"
        rm -rf "$template"
        mkdir -p "$template"
        WINEPREFIX=$template WINEARCH=win64 "$wine_folder/wine64" wineboot -i >"$wine_state/boot.log" 2>&1 </dev/null ||
            fail "wineboot failed: $(tail -n 5 "$wine_state/boot.log")"
        WINEPREFIX=$template "$wine_folder/wineserver" -w
        touch "$template/ready"
    fi
    [[ -f $prefix/ready ]] && return
    rm -rf "$prefix"
    cp -al "$template" "$prefix"
    # What Wine rewrites must not be shared.
    rm "$prefix"/*.reg
    cp "$template"/*.reg "$prefix/"
}

# The servers of the prefixes are kept while tests run: a start then takes a tenth of the time.
start_wine_servers() {
    local prefix
    for prefix in "$wine_state"/prefix-*[0-9]; do
        WINEPREFIX=$prefix "$wine_folder/wineserver" -p >/dev/null 2>&1 </dev/null || true
    done
}

stop_wine_servers() {
    local prefix
    for prefix in "$wine_state"/prefix-*[0-9]; do
        [[ -d $prefix ]] && WINEPREFIX=$prefix "$wine_folder/wineserver" -k >/dev/null 2>&1 </dev/null
    done
    return 0
}
