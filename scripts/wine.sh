# Sourced by the scripts that run Windows programs: installs Wine, makes prefixes, runs programs in them.

# What an installed Wine calls its loaders and its server.
wine_folder=/usr/lib/wine
# Prefixes and results. A run without 32-bit Wine keeps its own, so that each finds what it made.
wine_state=$PWD/build/wine${WNCOM_NO_WINE32:+-64}
apt_state=$PWD/build/apt

# Wine must not look for a screen, and its own remarks are not ours.
export DISPLAY= WINEDEBUG=-all

# 32-bit programs run only where Wine has its 32-bit half and nobody left it out (WNCOM_NO_WINE32).
have_wine32() { [[ -z ${WNCOM_NO_WINE32-} && -x $wine_folder/wine ]]; }
have_wine64() { [[ -x $wine_folder/wine64 ]]; }

# apt with package lists of its own, which hold only the main and the updates suites, for these kinds of entry.
apt_apart() {
    local kind=$1 folder=$apt_state/$1
    shift
    if [[ ! -f $folder/list.sources ]]; then
        mkdir -p "$folder/lists/partial"
        sed -n "s|^URIs: *||p; s|^deb \(\[.*\] \)\?\([^ ]*\) .*|\2|p" \
            /etc/apt/sources.list /etc/apt/sources.list.d/*.sources /etc/apt/sources.list.d/*.list 2>/dev/null |
            grep -m 1 'debian/\?$' >"$folder/uri" || printf 'http://deb.debian.org/debian\n' >"$folder/uri"
        printf 'Types: %s\nURIs: %s\nSuites: bookworm bookworm-updates\nComponents: main\nSigned-By: %s\n' \
            "$kind" "$(cat "$folder/uri")" /usr/share/keyrings/debian-archive-keyring.gpg >"$folder/list.sources"
    fi
    apt_options=(-o "Dir::Etc::sourcelist=$folder/list.sources" -o Dir::Etc::sourceparts=/dev/null
        -o "Dir::State::lists=$folder/lists")
    as_root env DEBIAN_FRONTEND=noninteractive apt-get "${apt_options[@]}" "$@"
}

# The version of a package in the lists of apt_apart.
version_apart() { apt-cache "${apt_options[@]}" madison "$1" | awk -F '|' 'NR == 1 { gsub(/ /, "", $2); print $2 }'; }

# What apt must be told to take back so that 32-bit Wine can have its libraries, NAME:ARCHITECTURE=VERSION a line: the
# installed 64-bit libraries that are newer than the version that both architectures have in the lists of apt_apart (two
# architectures of a library must have one version), and what else is installed of the same source.
newer_than_both() {
    local names name version installed source
    mapfile -t names < <(apt-cache "${apt_options[@]}" depends --recurse --no-recommends --no-suggests --no-conflicts \
        --no-breaks --no-replaces --no-enhances wine32:i386 | sed -n 's/^\([a-z0-9][^ ]*:i386\)$/\1/p' | sort -u)
    apt-cache "${apt_options[@]}" madison "${names[@]}" | tr -d ' ' | sort -u -t '|' -k 1,1 |
        while IFS='|' read -r name version _; do
            name=${name%:i386}
            installed=$(dpkg-query -W -f '${db:Status-Status} ${Version}' "$name:amd64" 2>/dev/null) || continue
            [[ $installed == "installed "* ]] || continue
            dpkg --compare-versions "${installed#installed }" gt "$version" || continue
            printf '%s:i386=%s\n' "$name" "$version"
            source=$(dpkg-query -W -f '${source:Package}' "$name:amd64")
            dpkg-query -W -f '${source:Package} ${db:Status-Status} ${Package}:${Architecture}\n' |
                sed -n "s/^$source installed //p" | while read -r name; do
                printf '%s=%s\n' "$name" "$(version_apart "$name")"
            done
        done
}

# Installs Wine for both bitnesses in one command, so that the libraries of both come in one version: from the ordinary
# lists where they agree, else from the main and updates suites alone, for the i386 half of the security suite can lag
# behind. Libraries that are installed in a newer version already can be taken back only with "downgrade" as argument,
# for that takes back security fixes. Where 32-bit Wine cannot be installed, the 64-bit half must do.
install_wine() {
    have_wine64 && { have_wine32 || [[ -n ${WNCOM_NO_WINE32-} ]]; } && return 0
    local log newer=() both=(install -y --no-install-recommends --no-remove wine64 wine32:i386)
    log=$(mktemp)
    if [[ -z ${WNCOM_NO_WINE32-} ]]; then
        say "Installing: wine64 wine32:i386"
        as_root dpkg --add-architecture i386
        as_root apt-get update >"$log" 2>&1 || true
        if as_root env DEBIAN_FRONTEND=noninteractive apt-get "${both[@]}" >"$log" 2>&1 ||
            { apt_apart deb update >"$log" 2>&1 && apt_apart deb "${both[@]}" >"$log" 2>&1; }; then
            rm -f "$log"
            return 0
        fi
        mapfile -t newer < <(newer_than_both)
        if [[ ${#newer[@]} -gt 0 && ${1-} == downgrade ]]; then
            say "Downgrading, so that both architectures have one version: ${newer[*]}"
            if apt_apart deb "${both[@]}" --allow-downgrades "${newer[@]}" >"$log" 2>&1; then
                rm -f "$log"
                return 0
            fi
        elif [[ ${#newer[@]} -gt 0 ]]; then
            say "32-bit Wine needs these libraries in an older version than the installed one:"
            say "$(printf '%s\n' "${newer[@]}" | grep -v ':i386=')"
            say "To let it have them, at the price of their security fixes: scripts/test windows --allow-downgrades"
        fi
        # Left in place, the foreign architecture would disturb later updates.
        as_root dpkg --remove-architecture i386 2>/dev/null || true
        say "32-bit Wine cannot be installed: $(grep -m 1 '^E:' "$log" || tail -n 1 "$log")"
    fi
    rm -f "$log"
    have_wine64 || install_packages scripts/packages-wine.txt
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

# What a prefix was made with: one made without 32-bit Wine stays without when Wine's other half comes.
prefix_bits() { if have_wine32; then printf '32 and 64'; else printf '64'; fi; }

# A throwaway Windows machine of that name in build/wine. The first one is made by Wine, the others are its copies; their
# registries are their own.
make_wine_prefix() {
    local prefix=$wine_state/$1 template=$wine_state/template
    if [[ $(cat "$template/ready" 2>/dev/null) != "$(prefix_bits)" ]]; then
        stop_wine_servers
        rm -rf "$wine_state"
        mkdir -p "$template"
        WINEPREFIX=$template WINEARCH=win64 "$wine_folder/wine64" wineboot -i >"$wine_state/boot.log" 2>&1 </dev/null ||
            fail "wineboot failed: $(tail -n 5 "$wine_state/boot.log")"
        WINEPREFIX=$template "$wine_folder/wineserver" -w
        # Where 32-bit Wine is installed but left out, the prefix is to look as if it were not.
        have_wine32 || rm -rf "$template/drive_c/windows/syswow64"
        prefix_bits >"$template/ready"
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
