# Sourced by the scripts: saying what is done, and installing Debian packages that are missing. Nothing is installed
# that is there already, and the package lists are fetched only when something has to be installed.
#   say TEXT...              a line about what happens now
#   die TEXT...              ends the script with a message
#   need_packages NAME...    installs the missing ones
#   PACKAGES_BUILD etc.      the packages that building, the native tests and Wine need

PACKAGES_BUILD=(cmake ninja-build ccache g++-mingw-w64-i686-posix gcc-mingw-w64-i686-posix llvm-14 googletest)
PACKAGES_NATIVE=(clang-14 gcc-multilib g++-multilib libclang-rt-14-dev)
PACKAGES_CHECKS=(clang-format-14 lld-14 git libtiff-tools python3 xdotool xvfb)
PACKAGES_WINE=(mmdebstrap arch-test bubblewrap dpkg-dev)

say() { printf '== %s\n' "$*"; }
die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# Runs a command as root: directly, or with sudo when it asks for no password.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
        sudo -n "$@"
    else
        die "this needs root (or sudo without a password): $*"
    fi
}

package_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

need_packages() {
    local missing=() name log
    command -v dpkg-query >/dev/null || die "this is not a Debian system; install by hand what provides: $*"
    for name in "$@"; do
        package_installed "$name" || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "installing ${missing[*]}"
    log=$(mktemp)
    if ! install_packages "${missing[@]}" >"$log" 2>&1; then
        # The package lists are missing or too old.
        if ! { as_root apt-get update && install_packages "${missing[@]}"; } >"$log" 2>&1; then
            cat "$log" >&2
            die "the packages could not be installed: ${missing[*]}"
        fi
    fi
    rm -f "$log"
}

install_packages() { as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"; }

# Where things are kept that outlive a checkout: the Wine tree and its prefix.
cache_folder() {
    if [ -n "${XDG_CACHE_HOME:-}" ]; then
        echo "$XDG_CACHE_HOME/vellum"
    elif [ -n "${HOME:-}" ]; then
        echo "$HOME/.cache/vellum"
    else
        echo "$1/build/cache"
    fi
}
