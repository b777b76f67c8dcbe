# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What ./run, ./test and the checks share: installing packages and building a preset. Sourced, with `root` set to the
# source folder. Messages go to standard error, because standard output belongs to the command that is run in the end.
# It keeps to bash 3.2, which is what macOS has.
: "${root:?is the source folder}"

say() { printf '%s\n' "$*" >&2; }
on_terminal() { [[ -t 2 && ${TERM:-dumb} != dumb ]]; }
jobs_here() { printf '%s' "${CMAKE_BUILD_PARALLEL_LEVEL:-$(getconf _NPROCESSORS_ONLN)}"; }

# The packages of the named sections of packages-debian.txt, one a line.
packages_for() {
    awk -v wanted=" $* " '
        { sub(/#.*/, ""); gsub(/[ \t]/, "") }
        /^\[/ { on = index(wanted, " " substr($0, 2, length($0) - 2) " "); next }
        on && $0 != ""' "$root/scripts/packages-debian.txt"
}

as_root() {
    if [[ $(id -u) == 0 ]]; then "$@"; else sudo "$@"; fi
}

# Debian's `dpkg --status` file and Homebrew's folder of links change whenever a package does.
package_state() {
    local place
    for place in /var/lib/dpkg/status /opt/homebrew/opt /usr/local/opt; do
        if [[ -e $place && ( $place == /var/* || -x ${place%/opt}/bin/brew ) ]]; then
            printf '%s' "$place"
            return
        fi
    done
}

# install_packages SECTION...: returns at once when neither our list nor the system's packages changed.
install_packages() {
    local name stamp wanted state
    name=$(printf '%s-' "$@")
    stamp=$root/build/.packages-${name%-}
    wanted=$(cksum <"$root/scripts/packages-debian.txt")-$(cksum <"$root/scripts/Brewfile")
    state=$(package_state)
    if [[ -e $stamp && $(<"$stamp") == "$wanted" && ! $state -nt $stamp ]]; then
        return
    fi
    mkdir -p "$root/build"
    if command -v apt-get >/dev/null && command -v dpkg-query >/dev/null; then
        install_debian_packages "$@"
    elif command -v brew >/dev/null; then
        if ! brew bundle check --quiet --file="$root/scripts/Brewfile" >/dev/null 2>&1; then
            say "Installing packages with Homebrew …"
            brew bundle install --file="$root/scripts/Brewfile" >&2
        fi
    else
        say "Neither apt nor Homebrew is here, so nothing is installed; scripts/packages-debian.txt says what is needed."
    fi
    printf '%s\n' "$wanted" >"$stamp"
}

install_debian_packages() {
    local -a wanted=() missing=()
    local package installed log=$root/build/packages.log
    while IFS= read -r package; do wanted+=("$package"); done < <(packages_for "$@")
    # dpkg-query fails when it does not know one of the names; what it says of the others counts all the same.
    installed=$(dpkg-query -W -f '${db:Status-Abbrev}${Package}\n' "${wanted[@]}" 2>/dev/null || true)
    for package in "${wanted[@]}"; do
        # Elsewhere than in Debian's own packages npm comes with node, and clashes with the package.
        [[ $package == npm ]] && command -v npm >/dev/null && continue
        grep -q "^.i[^a-z]*${package//+/\\+}\$" <<<"$installed" || missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    if [[ $(id -u) != 0 ]] && ! command -v sudo >/dev/null; then
        say "Packages are missing, and installing them needs root or sudo. As root, run:"
        say "  apt-get update && apt-get install --no-install-recommends ${missing[*]}"
        return 1
    fi
    say "Installing ${#missing[@]} packages with apt: ${missing[*]}"
    : >"$log"
    if ! apt_install "${missing[@]}" && { say "That failed; trying once more …" && ! apt_install "${missing[@]}"; }; then
        cat "$log" >&2
        say "The packages could not be installed (the log above is $log)."
        return 1
    fi
}

apt_install() {
    local -a apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600)
    # A failing update is no reason to stop: some other source of the system may be away.
    as_root "${apt[@]}" update >>"$log" 2>&1 </dev/null || true
    as_root "${apt[@]}" install --no-install-recommends "$@" >>"$log" 2>&1 </dev/null
}

# build PRESET [TARGET...]: configures when it has to and builds; the output goes to build/PRESET/build.log.
build() {
    local folder=$root/build/$1
    mkdir -p "$folder"
    # The lock keeps two builds out of one folder; the subshell gives it back before anything else is started.
    (
        if command -v flock >/dev/null && ! flock -n 9; then
            say "Another build is at work in $folder; waiting for it …"
            flock 9
        fi
        build_locked "$@"
    ) 9>"$folder/.lock"
}

build_locked() {
    local preset=$1 log=$root/build/$1/build.log began=$SECONDS
    local folder=${log%/*}
    shift
    : >"$folder/.building"
    : >"$log"
    say "Building Orvane ($preset) …"
    if ! { configure "$preset" && run_ninja "$folder" "$@"; } 9>&-; then
        on_terminal && printf '\r\033[K' >&2
        cat "$log" >&2
        say "The build failed (the log above is $log)."
        return 1
    fi
    on_terminal && printf '\r\033[K' >&2
    # As old as the start of the build: what changed while it ran is newer.
    mv "$folder/.building" "$folder/.built"
    if ((SECONDS - began >= 10)); then
        say "Built in $((SECONDS - began)) s."
    fi
}

# CMake notices changed lists by itself, but neither changed presets nor a source folder that has moved.
configure() {
    local -a fresh=()
    if [[ -e $folder/CMakeCache.txt ]] && ! grep -qFx "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
        fresh=(--fresh)
    elif [[ -e $folder/build.ninja && -e $folder/.configured && ! $root/CMakePresets.json -nt $folder/.configured \
        && ! $root/cmake/Clang.cmake -nt $folder/.configured ]]; then
        return
    fi
    cmake -S "$root" --preset "$1" ${fresh[@]+"${fresh[@]}"} >>"$log" 2>&1 </dev/null && : >"$folder/.configured"
}

run_ninja() {
    local folder=$1
    shift
    # Python's caches would change the source folders after the build and make it look out of date.
    NINJA_STATUS='[%f/%t] ' PYTHONDONTWRITEBYTECODE=1 \
        ninja -C "$folder" -j "$(jobs_here)" "$@" 2>&1 </dev/null | show_progress
}

# Keeps a build's output in the log and shows how far it is: on a terminal in one line, elsewhere every tenth.
show_progress() {
    local line done_ total tenth=0
    while IFS= read -r line; do
        printf '%s\n' "$line"
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        done_=${BASH_REMATCH[1]} total=${BASH_REMATCH[2]}
        if on_terminal; then
            printf '\r\033[KBuilding Orvane … [%s/%s]' "$done_" "$total" >&2
        elif ((total >= 20 && done_ * 10 / total > tenth)); then
            tenth=$((done_ * 10 / total))
            say "Building Orvane … [$done_/$total]"
        fi
    done >>"$log"
}
