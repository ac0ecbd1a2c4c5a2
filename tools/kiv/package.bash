# ./kiv package and what else has to do with a release. For ./kiv, which has say(), fail() and install_missing().

packages_package=(build-essential debhelper dpkg-dev lintian appstream desktop-file-utils git)
packages_try=(adduser ca-certificates dex openssl procps python3 util-linux)

project_version() { # The one place where it stands.
    sed -n 's/^project(kivmenua VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt
}

# The source, as an archive that builds by itself: what is committed, and nothing of a clone. The same commit gives the
# same bytes: gzip is told no time and no name.
source_archive() { # FOLDER
    local name
    name=kivmenua-$(project_version)
    git -c tar.umask=0022 archive --format tar --prefix "$name/" HEAD | gzip --no-name -9 >"$1/$name.tar.gz"
    echo "$1/$name.tar.gz"
}

# Debian packages of what is committed, for the Debian that this runs on, in build/packages: ./kiv clean-room has others.
package() { # [--twice]
    local folder=$PWD/build/packages archive twice=${1:-}
    [[ -z $twice || $twice == --twice ]] || fail "package does not know \"$twice\"; see ./kiv help"
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_package[@]}"
    rm -rf "$folder"
    mkdir -p "$folder"
    archive=$(source_archive "$folder")
    say "Building the packages"
    build_packages "$archive" "$folder"
    if [[ -n $twice ]]; then
        say "Building them once more"
        mkdir "$folder/again"
        # Elsewhere, as another user's machine would.
        (umask 027 && TZ=Pacific/Kiritimati LC_ALL=C build_packages "$archive" "$folder/again")
        # What a package is made with, and when, stands in .buildinfo and .changes; the packages themselves are the same.
        (cd "$folder" && sha256sum -- *.deb) >"$folder/SHA256SUMS"
        (cd "$folder/again" && sha256sum --check --strict ../SHA256SUMS) || fail "not the same bytes twice"
        rm -r "$folder/again"
    fi
    say "Checking them"
    # The tag is about Debian's own bugs: these packages are not for its archive.
    lintian --fail-on error,warning --tag-display-limit 0 --suppress-tags initial-upload-closes-no-bugs "$folder"/*.deb
    git rev-parse HEAD >"$folder/commit"
    ls -l "$folder"
}

# In a folder of the same name each time, so that no path in a debugger's information tells one build from the next.
build_packages() { # ARCHIVE FOLDER
    local work=/tmp/kivmenua-package version release
    version=$(project_version)
    rm -rf "$work"
    mkdir -m 700 "$work"
    tar --extract --gzip --file "$1" --directory "$work"
    # Packages for several Debians must not have one name, and the later Debian's have to count as newer.
    # shellcheck source=/dev/null
    release=$(. /etc/os-release && echo "${VERSION_ID:-}")
    sed -i "1s/)/${release:+~deb${release}u1})/" "$work/kivmenua-$version/debian/changelog"
    (cd "$work/kivmenua-$version" &&
        dpkg-buildpackage --build=binary --unsigned-changes --unsigned-buildinfo --jobs="$(nproc)") \
        >"$2/build.log" 2>&1 || { tail -n 40 "$2/build.log"; fail "could not build the packages"; }
    mv "$work"/*.{deb,buildinfo,changes} "$2"
    rm -rf "$work"
}

# The packages in the hands of an administrator and a user. Of a clean room only: it installs them.
try_packages() {
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_run[@]}" "${packages_try[@]}"
    [[ $(cat build/packages/commit 2>/dev/null) == "$(git rev-parse HEAD)" ]] || package
    say "Trying the packages"
    PYTHONPATH=$PWD python3 -B tools/packages/try_packages.py build/packages
}

release_check() {
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_package[@]}"
    [[ -z $(git status --porcelain) ]] || fail "what is not committed is in no release"
    ./kiv check
    CI=true ./kiv test
    package --twice
    say "Building the source archive by itself"
    local work=$PWD/build/release-check archive
    rm -rf "$work"
    mkdir -p "$work"
    archive=$(source_archive "$work")
    tar --extract --gzip --file "$archive" --directory "$work"
    (cd "$work/kivmenua-$(project_version)" && cmake --preset release --log-level=WARNING &&
        cmake --build --preset release && cmake --install build/release --prefix "$work/installed")
    test -x "$work/installed/bin/kivmenua"
    rm -rf "$work"
    say "Version $(project_version) may be released"
}
