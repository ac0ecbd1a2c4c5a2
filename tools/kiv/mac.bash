# ./kiv mac: the agent, built for macOS on this machine. For ./kiv, which has say() and install_missing().

packages_mac=(musl-dev libplist-utils python3)

# Prints the packages of a compiler and a C++ library of one version: those that the release means by the plain names, or,
# where these are too old, those of the oldest version that is not.
mac_compiler_packages() {
    local oldest=16 plain number suffix='' # As in platform/macos/sdk-declarations/build.py.
    plain=$(apt-cache show --no-all-versions clang 2>/dev/null | sed -n 's/^Version: \([0-9]*:\)\?\([0-9]*\).*/\2/p')
    if ((${plain:-0} < oldest)); then
        for number in $(apt-cache search --names-only '^libc\+\+-[0-9]+-dev$' | sed 's/^libc++-\([0-9]*\).*/\1/' | sort -n); do
            ((number < oldest)) || { suffix=-$number; break; }
        done
    fi
    printf '%s\n' "clang$suffix" "libc++$suffix-dev" "lld$suffix" "llvm$suffix"
}

check_mac() { # [TEST...]
    local compiler
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_mac[@]}"
    mapfile -t compiler < <(mac_compiler_packages)
    install_missing "${compiler[@]}"
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_OBJCXX_COMPILER_LAUNCHER=ccache
    fi
    say "Building for macOS, and looking at what comes out"
    python3 -B tests/platform/macos/mac_build_test.py build/mac --verbose "$@"
}
