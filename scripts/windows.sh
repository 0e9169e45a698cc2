# Sourced by the scripts that build for Windows: the sources of the libraries around the product, of which Debian has no
# builds for Windows.

# The upstream sources of Debian's source packages in build/windows-sources/NAME, and SQLite's joined into one file.
unpack_windows_sources() {
    local target=$PWD/build/windows-sources names work name
    mapfile -t names < <(awk '!/^#/ && NF { print $1 }' scripts/sources-windows.txt)
    [[ "$(cat "$target/done" 2>/dev/null)" == "${names[*]}" ]] && return
    say "Unpacking the sources of ${names[*]}"
    work=$(mktemp -d)
    # apt fetches as a user of its own.
    chmod 755 "$work"
    quietly apt_apart deb-src update
    (cd "$work" && quietly apt_apart deb-src source --download-only "${names[@]}")
    rm -rf "$target"
    mkdir -p "$target"
    for name in "${names[@]}"; do
        mkdir "$target/$name"
        tar -C "$target/$name" --strip-components=1 -xf "$(find "$work" -name "${name}_*.orig.tar.*" ! -name '*.asc')"
    done
    (cd "$target/sqlite3" && quietly ./configure --disable-tcl && quietly make sqlite3.c)
    printf '%s\n' "${names[*]}" >"$target/done"
    rm -rf "$work"
}
