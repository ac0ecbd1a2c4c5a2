# ./kiv clean-room: a Debian with nothing in it, where ./kiv runs as on a newcomer's machine. For ./kiv, which has
# say(), fail() and install_missing().

# Outside any clone and its build folder, so that no cleaning takes a room away by accident, and where root's folders
# are: every clone on the machine uses the same rooms. Not below /root, where apt's own user could not enter.
clean_rooms=${KIV_CLEAN_ROOMS:-/var/cache/kivmenua/clean-rooms}

# The exit status where the kernel lets nobody make a clean room: EX_UNAVAILABLE of sysexits.h.
no_clean_rooms_here=69

clean_room() { # RELEASE --remove | RELEASE [--fresh] COMMAND...
    local release=${1:-} suite option='' room lock
    case $release in
    12) suite=bookworm ;;
    13) suite=trixie ;;
    testing) suite=testing ;;
    *) fail "no such release: \"$release\"; there are 12, 13 and testing" ;;
    esac
    case ${2:-} in
    --fresh | --remove) option=$2; shift 2 ;;
    *) shift ;;
    esac
    [[ $option == --remove || $# -gt 0 ]] || fail "clean-room wants a command; see ./kiv help"
    [[ $EUID -eq 0 ]] || fail "only root can make and enter a clean room"
    [[ $option == --remove ]] || may_mount || exit_without_clean_room
    room=$clean_rooms/$release
    mkdir -p "$clean_rooms"
    exec {lock}>"$room.lock"
    flock --nonblock "$lock" || fail "somebody else is in the clean room of Debian $release"

    [[ -z $option ]] || rm -rf --one-file-system "$room" "$room.part"
    [[ $option != --remove ]] || return 0
    option=
    if [[ ! -d $room ]]; then
        option=--fresh
        make_room "$suite" "$room"
    fi
    use_room "$release" "$room" "$option" "$@" {lock}>&-
}

exit_without_clean_room() {
    echo 'kiv: root may not mount here, as in most containers: no clean room' >&2
    exit "$no_clean_rooms_here"
}

# All that in_room() mounts, tried where it is gone again at once.
may_mount() {
    unshare --mount --pid --ipc --uts --fork --kill-child bash -euc '
        mount -t tmpfs tmpfs /mnt
        mkdir /mnt/proc /mnt/pts
        mount -t proc proc /mnt/proc
        mount -t devpts -o newinstance devpts /mnt/pts
        mount --rbind /dev /mnt/pts'
}

make_room() { # SUITE ROOM
    local mirror
    command -v mmdebstrap >/dev/null || install_missing mmdebstrap
    command -v mmdebstrap >/dev/null || fail "no mmdebstrap to make a clean room with"
    mirror=$(debian_mirror)
    say "Making a clean room: $1 from $mirror"
    rm -rf --one-file-system "$2.part"
    # The index of testing is out of date after a week in a mirror that stands still. A room need not survive a power
    # cut, so that dpkg need not wait for the disk.
    mmdebstrap --variant=minbase --aptopt='Acquire::Check-Valid-Until "false"' \
        --aptopt='Acquire::Languages "none"' --dpkgopt=force-unsafe-io "$1" "$2.part" "$mirror" ||
        fail "mmdebstrap could not make the clean room"
    # As an installer writes it.
    printf '127.0.0.1\tlocalhost\n127.0.1.1\t%s\n::1\tlocalhost ip6-localhost ip6-loopback\n' \
        "$(uname -n)" >"$2.part/etc/hosts"
    mv "$2.part" "$2"
}

# The archive that this machine has its own Debian from. Others look the same by their paths, so apt is asked.
debian_mirror() {
    local mirror
    # shellcheck disable=SC2016 # apt expands it.
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' |
        awk '/^http/ && !found { print; found = 1 }') || mirror= # It reads all: apt-get would end by a closed pipe.
    echo "${mirror:-http://deb.debian.org/debian}"
}

# Clones what is committed into the room, or brings its clone up to that; sets commit.
take_commit_into() { # ROOM
    local clone=$1/root/kivmenua
    commit=$(git rev-parse HEAD) || fail "no git clone to take into the clean room"
    [[ -z $(git status --porcelain) ]] || say "Uncommitted changes are not in the clean room"
    [[ -d $clone ]] || git clone --quiet --no-hardlinks --no-checkout . "$clone"
    git -C "$clone" fetch --quiet "$PWD" HEAD
    git -C "$clone" checkout --quiet --force --detach "$commit"
    git -C "$clone" clean --quiet --force -d
    # A link to a service of the host would lead nowhere.
    rm -f "$1/etc/resolv.conf"
    cp /etc/resolv.conf "$1/etc/resolv.conf"
}

use_room() { # RELEASE ROOM OPTION COMMAND...
    local release=$1 room=$2 option=$3 clone=$2/root/kivmenua commit status=0 begin
    shift 3
    take_commit_into "$room"
    rm -rf "$clone/build/shot"

    say "In a clean room of Debian $release, commit ${commit:0:12}: ./kiv $*"
    begin=$SECONDS
    in_room "$room" "$@" || status=$?
    mkdir -p build
    [[ -s build/clean-rooms.tsv ]] ||
        printf 'time\trelease\tcommit\tcommand\tstatus\tseconds\n' >build/clean-rooms.tsv
    printf '%(%FT%T%z)T\t%s\t%s\t%s\t%s\t%s\n' -1 "$release" "${commit:0:12}" "${option:+$option }$*" \
        "$status" "$((SECONDS - begin))" >>build/clean-rooms.tsv
    if [[ -d $clone/build/shot ]]; then
        mkdir -p "build/clean-rooms/$release"
        cp "$clone"/build/shot/* "build/clean-rooms/$release"
        echo "Pictures: build/clean-rooms/$release"
    fi
    if [[ -d $clone/build/packages ]]; then
        rm -rf "build/clean-rooms/$release/packages"
        mkdir -p "build/clean-rooms/$release"
        cp -r "$clone/build/packages" "build/clean-rooms/$release"
        echo "Packages: build/clean-rooms/$release/packages"
    fi
    chown --recursive --reference=. build/clean-rooms*
    say "./kiv $* ended with status $status after $((SECONDS - begin)) s in the clean room of Debian $release"
    return "$status"
}

# Runs ./kiv in the room. When the first process of the room ends, the kernel ends all others, and the mounts go with
# them; and the first one dies with this script.
in_room() { # ROOM COMMAND...
    # shellcheck disable=SC2016 # The variables are those of the shells in the room.
    setpriv --pdeathsig KILL unshare --mount --pid --ipc --uts --fork --kill-child bash -euc '
        mount --bind "$0" "$0" # The root of a machine is a mount point.
        mount -t proc proc "$0/proc"
        mount --rbind /dev "$0/dev"
        mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$0/dev/pts"
        mount -t tmpfs -o mode=1777 tmpfs "$0/dev/shm"
        mount -t tmpfs -o mode=1777 tmpfs "$0/tmp"
        exec chroot "$0" /usr/bin/env --ignore-environment "$@"
    ' "$1" HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin TERM="${TERM:-dumb}" \
        LANG=C.UTF-8 KIV_CLEAN_ROOM=yes ${CI:+CI="$CI"} /bin/bash -c 'cd && cd kivmenua && ./kiv "$@"; exit' kiv "${@:2}"
}
