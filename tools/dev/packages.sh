# shellcheck shell=bash disable=SC2154
# The Debian packages that each kind of work needs, and how they get onto the machine.
# Sourced by ./dev, which sets root and say.

declare -A packages=(
    [build]='g++ cmake ninja-build pkg-config qtbase5-dev libsqlite3-dev liblog4cplus-dev libtag1-dev
        libmicrohttpd-dev rapidjson-dev libncurses-dev libmimalloc-dev libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
        gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-alsa'
    [test]='libgtest-dev libgmock-dev sqlite3 curl jq sox libsox-fmt-mp3 python3 libvterm-dev libtotem-plparser-dev'
    [demo]='sox python3'
    [fmt]='clang-format'
    [lint]='clang clang-tidy shellcheck'
    [coverage]='gcovr'
    [fuzz]='clang libclang-rt-dev'
    [web]='chromium'
    [peers]='mpd python3'
    [library]='libtag1-dev python3 strace'
)
# Node may have come from elsewhere than Debian; its package would not go along with Debian's npm.
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then packages[web]+=' nodejs npm'; fi

# need GROUP…: installs what is missing of these groups, or says what to do and exits with 3.
need() {
    local group name status wanted=() missing=()
    declare -A installed=()
    for group in "$@"; do
        read -r -d '' -a wanted <<<"${wanted[*]} ${packages[$group]}" || true
    done
    while read -r name status; do
        if [[ $status == installed ]]; then installed[$name]=1; fi
    done < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null)
    for name in "${wanted[@]}"; do
        if [[ ! ${installed[$name]:-} ]]; then missing+=("$name"); fi
    done
    if ((${#missing[@]})); then install_packages "${missing[@]}"; fi
}

install_packages() {
    local log=$root/.dev/apt.log as_root=()
    if ((EUID != 0)); then
        if sudo -n true 2>/dev/null; then
            as_root=(sudo -n)
        elif [[ -t 0 ]] && command -v sudo >/dev/null; then
            as_root=(sudo)
        else
            cannot_install "no root and no sudo here" "$@"
        fi
    fi
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get
        -o DPkg::Lock::Timeout=300 -o Acquire::Retries=2 -o Acquire::http::Timeout=20)

    say "installing with apt (log: .dev/apt.log): $*"
    mkdir -p "$root/.dev"
    # A list that cannot be refreshed may still do; the install decides.
    "${apt[@]}" update </dev/null >>"$log" 2>&1 || true
    "${apt[@]}" install -y --no-install-recommends "$@" </dev/null >>"$log" 2>&1 ||
        cannot_install "apt-get failed, see .dev/apt.log" "$@"
}

# cannot_install REASON PACKAGE…
cannot_install() {
    local reason=$1
    shift
    say "cannot install what is missing ($reason): $*"
    say "please run as root: apt-get update && apt-get install --no-install-recommends $*"
    exit 3
}
