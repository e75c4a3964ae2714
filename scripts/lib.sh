# What the scripts share. Sourced, not run; the caller has set -eu.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages="g++ cmake ninja-build ccache qt6-base-dev libqt6opengl6-dev libgl-dev libglu1-mesa-dev libegl-dev libpng-dev
    libcli11-dev nlohmann-json3-dev libassimp-dev libstb-dev libtinygltf-dev"
run_packages="libgl1-mesa-dri fonts-dejavu-core fonts-liberation"
headless_packages="xvfb xauth openbox"
test_packages="libgtest-dev libgmock-dev assimp-testmodels"
windows_packages="g++-mingw-w64-x86-64-posix cmake ninja-build ccache libcli11-dev nlohmann-json3-dev libstb-dev libtinygltf-dev"
wine_packages="wine wine64 googletest"
windows_qt_packages="qt6-base-dev qt6-base-dev-tools"
picture_packages="xdotool x11-utils imagemagick"

virtual_screens=()

say() { printf '\n== %s\n' "$*"; }

# Installs the named Debian packages that are missing. Asks for the password of sudo when it is not run as root.
install_missing() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "These Debian packages (or what your system calls them) are needed: ${missing[*]}" >&2
        return 1
    fi
    local sudo=
    [ "$(id -u)" = 0 ] || sudo=sudo
    say "Installing ${missing[*]}"
    $sudo apt-get update -qq
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds targets of a preset: build_preset PRESET [TARGET ...]
build_preset() {
    local preset=$1 log
    shift
    log=$(mktemp)
    (cd "$root" && cmake --preset "$preset" -Wno-dev >"$log" 2>&1) || {
        cat "$log" >&2
        rm -f "$log"
        return 1
    }
    rm -f "$log"
    (cd "$root" && cmake --build --preset "$preset" ${*:+--target "$@"})
}

# Runs a program of Windows with a folder of Wine's own: in_wine FOLDER PROGRAM [ARGUMENT ...]
# It sees the names of files as UTF-8, and ends when it crashes.
in_wine() {
    local -x WINEPREFIX=$1 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=" LC_ALL=C.UTF-8
    shift
    if [ ! -e "$WINEPREFIX/system.reg" ]; then
        mkdir -p "$WINEPREFIX"
        wineboot -i >/dev/null 2>&1
        wineserver -w
    fi
    timeout -k 10 600 wine "$@" # a message box of a program there waits for ever
}

# Starts a virtual screen with a small window manager, sets DISPLAY, and ends both when the script ends:
# start_virtual_screen [XVFB ARGUMENT ...]
start_virtual_screen() {
    local number
    number=$(mktemp)
    Xvfb -displayfd 9 -screen 0 1280x1024x24 -nolisten tcp -noreset "$@" 9>"$number" >/dev/null 2>&1 &
    virtual_screen=$!
    for _ in $(seq 100); do
        [ -s "$number" ] && break
        sleep 0.1
    done
    DISPLAY=:$(tr -d '[:space:]' <"$number")
    rm -f "$number"
    if [ "$DISPLAY" = : ]; then
        echo "Xvfb did not start." >&2
        return 1
    fi
    export DISPLAY QT_QPA_PLATFORM=xcb
    unset WAYLAND_DISPLAY
    openbox >/dev/null 2>&1 &
    window_manager=$!
    virtual_screens+=("$window_manager" "$virtual_screen")
    trap 'kill "${virtual_screens[@]}" 2>/dev/null || true' EXIT
}
