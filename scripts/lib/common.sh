# Shared by scripts/run, scripts/test and scripts/bench: the Debian packages Orvanta needs,
# installed when missing, and the build step.

ORVANTA_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"

# Everything is named, down to what a bare Debian 12 root (debootstrap minbase, a container)
# lacks: the tests' private sound servers need dbus (dbus-daemon) and pulseaudio-utils (pactl,
# pacat, parec); cpack's shlibdeps step needs dpkg-dev and file; Qt draws text (offscreen and
# under Xvfb) in a font fontconfig finds, named here rather than left to a dependency's choice.
ORVANTA_PACKAGES=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-svg-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    libpulse-dev libpipewire-0.3-dev pulseaudio pulseaudio-utils pipewire pipewire-pulse wireplumber dbus
    clang libclang-rt-14-dev
    xvfb xdotool libxcb1-dev fonts-dejavu-core
    dpkg-dev file desktop-file-utils
)

# Installs the packages that are not installed yet, with sudo unless already root.
orvanta_install_packages() {
    local missing=()
    local package
    for package in "${ORVANTA_PACKAGES[@]}" "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing missing packages: ${missing[*]}"
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# orvanta_build BUILD_DIR [cmake options...]
orvanta_build() {
    local dir="$1"
    shift
    cmake -S "$ORVANTA_ROOT" -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" --parallel "$(nproc)"
}
