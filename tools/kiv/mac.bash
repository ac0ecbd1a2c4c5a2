# ./kiv mac: the agent, built for macOS on this machine. For ./kiv, which has say() and install_missing().

# A compiler and a C++ library of the same version; 16 is the oldest that has all of the ranges. Newer releases of Debian
# have a newer one under the plain names.
packages_mac=(musl-dev libplist-utils python3)
packages_mac_compiler=('clang-16|clang' 'libc++-16-dev|libc++-dev' 'lld-16|lld' 'llvm-16|llvm')

check_mac() { # [TEST...]
    local package compiler=()
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_mac[@]}"
    # One that is there in an older version is not enough.
    for package in "${packages_mac_compiler[@]}"; do
        compiler+=("$(name_here "$package")")
    done
    install_missing "${compiler[@]}"
    say "Building for macOS, and looking at what comes out"
    python3 -B tests/platform/macos/mac_build_test.py build/mac --verbose "$@"
}
