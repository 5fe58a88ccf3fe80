# Sourced by the scripts: a Wine that runs 32-bit programs. The machine's own is taken when it can; otherwise an i386
# tree with Wine is made once with mmdebstrap and entered with bwrap, which needs no foreign architecture on the machine.
# Both the tree and the prefix are kept in the cache folder.
#   prepare_wine             makes everything ready; quick when it is
#   start_wine_server        lets the script's next programs start quickly; undone when it exits
#   in_wine COMMAND...       runs wine or wineserver with the project's prefix
#   branch_prefix FOLDER     makes a prefix for one user alone, with X
# Needs: lib/setup.sh, and VELLUM_ROOT, the checkout's folder.

VELLUM_CACHE=$(cache_folder "$VELLUM_ROOT")
WINE_TREE=$VELLUM_CACHE/wine-i386
# Without X programs draw on Wine's null driver: dialogs, painting and reading pixels back all work. For screenshots:
# VELLUM_WINE_GRAPHICS=x11 with a DISPLAY, in a prefix of its own.
WINE_GRAPHICS=${VELLUM_WINE_GRAPHICS:-null}
# Or VELLUM_WINE_PREFIX is one that branch_prefix made.
export WINEPREFIX=${VELLUM_WINE_PREFIX:-$VELLUM_CACHE/prefix-$WINE_GRAPHICS}
# File names are UTF-8, whatever the caller's locale.
export LC_ALL=C.UTF-8
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
WINE_READY=$WINEPREFIX/.vellum-ready
WINE_USERS=$WINEPREFIX/.vellum-users

in_wine() {
    if [ "$WINE_KIND" = machine ]; then
        exec_or_run "$@"
    else
        in_tree "$@"
    fi
}

# The host's folders that hold people's files are seen under the same names inside the tree.
in_tree() {
    local binds=() folder
    for folder in /*/; do
        folder=${folder%/}
        case $folder in
        /bin | /boot | /dev | /etc | /lib* | /proc | /run | /sbin | /sys | /usr | /var | /lost+found) ;;
        *) binds+=(--bind "$folder" "$folder") ;;
        esac
    done
    mkdir -p "$WINEPREFIX"
    exec_or_run bwrap --bind "$WINE_TREE" / --dev-bind /dev /dev --proc /proc --ro-bind /sys /sys "${binds[@]}" \
        --bind "$VELLUM_ROOT" "$VELLUM_ROOT" --bind "$PWD" "$PWD" --bind "$WINEPREFIX" "$WINEPREFIX" --chdir "$PWD" \
        --setenv PATH /usr/lib/wine:/usr/bin:/bin -- "$@"
}

# The launcher replaces itself by the program; everyone else waits for it.
exec_or_run() {
    if [ "${WINE_EXEC:-}" = 1 ]; then
        exec "$@"
    fi
    "$@"
}

prepare_wine() {
    if [ -r "$WINE_READY" ]; then
        WINE_KIND=$(<"$WINE_READY")
        return
    fi
    mkdir -p "$VELLUM_CACHE"
    # Programs started at the same time wait here for the first one.
    exec 9>"$VELLUM_CACHE/lock"
    flock 9
    if [ -r "$WINE_READY" ]; then
        WINE_KIND=$(<"$WINE_READY")
    elif machine_wine_works; then
        WINE_KIND=machine
        say "using this machine's Wine"
        finish_prefix
    else
        WINE_KIND=tree
        make_tree
        make_prefix || die "the Wine prefix could not be made"
        finish_prefix
    fi
    exec 9>&-
}

# Makes the prefix with the machine's Wine and starts a 32-bit program in it.
machine_wine_works() {
    command -v wine >/dev/null && command -v wineserver >/dev/null || return 1
    WINE_KIND=machine
    make_prefix || return 1
    # Where 32-bit programs lie: beside the 64-bit ones, or alone.
    local system32='C:\windows\system32' status=0
    [ ! -d "$WINEPREFIX/drive_c/windows/syswow64" ] || system32='C:\windows\syswow64'
    wine "$system32\\cmd.exe" /c exit 7 >/dev/null 2>&1 9>&- </dev/null || status=$?
    [ "$status" -eq 7 ] && return 0
    wineserver -k 2>/dev/null || true
    rm -rf "$WINEPREFIX"
    return 1
}

make_tree() {
    [ -e "$WINE_TREE/usr/lib/wine/wine" ] && return
    need_packages "${PACKAGES_WINE[@]}"
    local codename mirror log
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mirror=$(debian_mirror "$codename")
    if [ -z "$mirror" ]; then
        as_root apt-get update >/dev/null
        mirror=$(debian_mirror "$codename")
    fi
    [ -n "$mirror" ] || die "no package source for Debian $codename main is known to apt on this machine"
    say "making a folder with 32-bit Wine in $WINE_TREE (once; about a minute)"
    as_root rm -rf "$WINE_TREE" "$WINE_TREE.part"
    log=$VELLUM_CACHE/wine-i386.log
    # The explicit source keeps mmdebstrap from adding others of this machine, which may have no i386 packages.
    if ! as_root mmdebstrap --architectures=i386 --variant=minbase --include=wine32,wine,fonts-liberation \
        "$codename" "$WINE_TREE.part" "deb $mirror $codename main" >"$log" 2>&1 9>&-; then
        cat "$log" >&2
        die "the folder with 32-bit Wine could not be made"
    fi
    as_root rm -rf "$WINE_TREE.part"/var/cache/apt/archives "$WINE_TREE.part"/var/lib/apt/lists
    as_root chown -R --no-dereference "$(id -u):$(id -g)" "$WINE_TREE.part"
    mv "$WINE_TREE.part" "$WINE_TREE"
}

debian_mirror() {
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $1" 'Component: main' | head -n 1
}

make_prefix() {
    say "making a Wine prefix in $WINEPREFIX (once)"
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    in_wine wine wineboot --init >"$VELLUM_CACHE/prefix.log" 2>&1 9>&- </dev/null || {
        cat "$VELLUM_CACHE/prefix.log" >&2
        return 1
    }
}

# Settings that take hold with the next server. Unmanaged windows close at once where there is no window manager.
finish_prefix() {
    {
        in_wine wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d "$WINE_GRAPHICS" /f
        in_wine wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
        in_wine wineserver -k
        in_wine wineserver -w
    } >>"$VELLUM_CACHE/prefix.log" 2>&1 9>&- </dev/null || true
    printf '%s' "$WINE_KIND" >"$WINE_READY"
}

# A prefix whose programs see nobody else's windows, clipboard and settings: it has a registry and a server of its own,
# and shares the system's files. They draw with X, whatever the other prefix does.
branch_prefix() {
    local file
    mkdir "$1"
    for file in system.reg user.reg userdef.reg .update-timestamp dosdevices; do
        cp -a "$WINEPREFIX/$file" "$1"
    done
    ln -s "$WINEPREFIX/drive_c" "$1/drive_c"
    sed -i 's/^"Graphics"=.*/"Graphics"="x11"/' "$1/user.reg"
    cp "$WINE_READY" "$1"
}

# Makes the next programs start quickly: a server that stays. Its users are noted by their process ids, and the last one
# to leave ends it; a server that ended by a time-out could do so just while a program connects to it.
#   start_wine_server        for the script that calls it, until it exits
#   start_wine_server PID    for that process, until stop_wine_server PID
start_wine_server() {
    [ $# -gt 0 ] || trap "stop_wine_server $$" EXIT
    (
        flock 9
        forget_ended_users
        note_wine_user "${1:-$$}"
        in_wine wineserver -p >/dev/null 2>&1 9>&- </dev/null || true
        in_wine wine cmd /c exit >/dev/null 2>&1 9>&- </dev/null
    ) 9>"$VELLUM_CACHE/server.lock"
}

stop_wine_server() {
    (
        flock 9
        rm -f "$WINE_USERS/$1"
        forget_ended_users
        [ -z "$(ls "$WINE_USERS")" ] || exit 0
        in_wine wineserver -k 9>&- || true
        in_wine wineserver -w 9>&- || true
    ) 9>"$VELLUM_CACHE/server.lock" >/dev/null 2>&1 </dev/null
}

note_wine_user() {
    [ -d "$WINE_USERS" ] || mkdir -p "$WINE_USERS"
    : >"$WINE_USERS/$1"
}

forget_ended_users() {
    local user
    for user in "$WINE_USERS"/*; do
        kill -0 "${user##*/}" 2>/dev/null || rm -f "$user"
    done
}
