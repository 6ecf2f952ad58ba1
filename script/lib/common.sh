# What the scripts beside this folder share; sourced, never run.
#
# After sourcing: the working directory is the top of the project, and the end of the script is
# reported in one sentence, whichever way it comes.

set -euo pipefail

SCRIPT_NAME="script/$(basename "$0")"
PROJECT_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)"
JOBS="$(nproc)"
STEP="getting ready"   # what the script is doing, for the sentence after a failure
CONCLUSION="done"      # the sentence after a success
CLEANUP=:              # what is to be done on the way out

cd "$PROJECT_ROOT"

# Without a login session Qt complains in every program that it has no place for sockets.
if [[ -z "${XDG_RUNTIME_DIR:-}" ]]; then
    export XDG_RUNTIME_DIR="$PROJECT_ROOT/build/runtime"
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
fi

# What every build needs, and what the engine runs.
BUILD_PACKAGES=(g++ cmake ninja-build pkg-config qtbase5-dev libdeflate-dev
    libpng-dev openssl curl ffmpeg ca-certificates fonts-dejavu-core)

# Tidies up on the way out and says what became of the script.
report_end() {
    local code=$?
    eval "$CLEANUP"
    if ((code == 0)); then
        printf '%s: %s\n' "$SCRIPT_NAME" "$CONCLUSION"
    else
        printf '%s: failed while %s (exit code %d)\n' "$SCRIPT_NAME" "$STEP" "$code" >&2
    fi
}
trap report_end EXIT
# An interrupted script would otherwise end with the code of its last command, often a success.
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# step WORDS...: announces what comes next.
step() {
    STEP="$*"
    printf '%s: %s\n' "$SCRIPT_NAME" "$STEP"
}

# fail SENTENCE: ends the script.
fail() {
    printf '%s: %s\n' "$SCRIPT_NAME" "$1" >&2
    exit 1
}

# missing_packages PACKAGE...: prints those that are not installed.
missing_packages() {
    local installed
    installed="$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" \
        2>/dev/null | sed -n 's/^installed //p' || true)"
    printf '%s\n' "$@" | grep --line-regexp --fixed-strings --invert-match "$installed" || true
}

# Root needs no sudo; without a terminal there is no way to type a password.
ROOT_PREFIX=()
((EUID == 0)) || ROOT_PREFIX=(sudo)
((EUID == 0)) || [[ -t 0 ]] || ROOT_PREFIX+=(--non-interactive)

apt() {
    "${ROOT_PREFIX[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get --quiet --yes -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

# install_packages PACKAGE...: installs what is missing, and says what.
install_packages() {
    if ! command -v dpkg-query >/dev/null; then
        printf '%s: this is no Debian or Ubuntu; taking these as installed: %s\n' "$SCRIPT_NAME" "$*"
        return
    fi
    local missing log=build/packages.log
    mapfile -t missing < <(missing_packages "$@")
    if ((${#missing[@]} == 0)); then
        return
    fi
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        fail "there is no sudo here; as root run: apt-get install ${missing[*]}"
    fi
    step "installing ${missing[*]} (a few minutes; details in $log)"
    mkdir -p build
    # Some other repository of the machine may be out of order; the second command decides.
    apt update >"$log" 2>&1 || true
    if ! apt install --no-install-recommends "${missing[@]}" >>"$log" 2>&1; then
        tail --lines=20 "$log" >&2
        return 1
    fi
}

# configure PRESET [OPTION...]: a few lines of words only when it fails.
configure() {
    local preset="$1" log="build/$1.configure.log"
    shift
    mkdir -p build
    if [[ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ]] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    if ! cmake --preset "$preset" "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# build PRESET [OPTION...]: incremental.
build() {
    local preset="$1"
    shift
    cmake --build --preset "$preset" --parallel "$JOBS" "$@"
}
