# Sourced by run, check and .ci/run: installs what the machine lacks from Debian's packages.

# need <command-or-header> <package>...: remembers the packages if the command or file isn't there.
missing_packages=()
need() {
    local thing=$1
    shift
    case $thing in
        /*) [ -e "$thing" ] && return ;;
        *) command -v "$thing" >/dev/null 2>&1 && return ;;
    esac
    missing_packages+=("$@")
}

install_missing() {
    [ ${#missing_packages[@]} -eq 0 ] && return
    if ! command -v apt-get >/dev/null 2>&1; then
        echo "zorvane: missing, and no apt-get to install them: ${missing_packages[*]}" >&2
        exit 1
    fi
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "zorvane: installing ${missing_packages[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2 \
        && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
            "${missing_packages[@]}" >&2 \
        || {
            echo "zorvane: could not install ${missing_packages[*]}" >&2
            exit 1
        }
    missing_packages=()
}

need_build_tools() {
    need g++ g++
    need cmake cmake
    need ninja ninja-build
}

need_test_libraries() {
    need /usr/include/gtest/gtest.h libgtest-dev
    need /usr/include/benchmark/benchmark.h libbenchmark-dev
    need /usr/include/x86_64-linux-gnu/gmp.h libgmp-dev
    need /usr/include/mpfr.h libmpfr-dev
}
