# ./kiv desktops: the agent on the desktops that people use, each in a session of its own, in a clean room that has all of
# them. For ./kiv, which has say(), fail() and build().

# Apart from the other clean rooms, for in those nothing is installed that a newcomer would not have. Beside it are the
# rooms of older Debians.
desktops_room=${KIV_DESKTOPS_ROOM:-/var/cache/kivmenua/desktops}
packages_desktops=(ccache dbus-x11 git passwd python3-pil python3-xlib util-linux)

desktops() { # [--debian 12|13] [NAME...]
    local release=13 room=$desktops_room suite=trixie clone lock status=0
    if [[ -n ${KIV_CLEAN_ROOM:-} ]]; then
        ask_desktops "$@"
        return
    fi
    if [[ ${1:-} == --debian ]]; then
        release=${2:-}
        shift "$(($# > 1 ? 2 : 1))"
    fi
    case $release in
    12) suite=bookworm room+=-12 ;;
    13) ;;
    *) fail "no desktops of Debian \"$release\"; there are those of 12 and 13" ;;
    esac
    clone=$room/root/kivmenua
    [[ $EUID -eq 0 ]] || fail "only root can make and enter a clean room"
    may_mount || exit_without_clean_room
    mkdir -p "${room%/*}"
    exec {lock}>"$room.lock"
    flock --nonblock "$lock" || fail "somebody else is in the room of the desktops of Debian $release"
    [[ -d $room ]] || make_room "$suite" "$room"
    take_commit_into "$room"
    cp docs/desktops.json "$clone/docs" # Other desktops may have been asked since the last commit.
    rm -rf "$clone"/build/desktops/{desktops.md,images}
    say "In the room of the desktops of Debian $release: ./kiv desktops $*"
    in_room "$room" desktops "$@" {lock}>&- || status=$?
    if [[ -e $clone/build/desktops/desktops.md ]]; then
        mkdir -p docs/images
        cp "$clone"/build/desktops/desktops.{json,md} docs
        cp -r "$clone"/build/desktops/images/. docs/images
        chown --recursive --reference=. docs/desktops.* docs/images/desktops*
        echo "The page: docs/desktops.md. What the programs said: $clone/build/desktops/logs"
    fi
    return "$status"
}

# In the room, as a user: most desktops refuse root.
ask_desktops() { # [NAME...]
    local packages tree folder=$PWD/build/desktops
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_run[@]}" "${packages_desktops[@]}"
    packages=$(python3 -B -m tests.desktops --packages "$@") || return
    # shellcheck disable=SC2086 # Their names have no blanks.
    install_missing $packages
    tree=$(git rev-parse --short HEAD) || return
    build release
    id -u desktop >/dev/null 2>&1 || useradd --create-home desktop
    chmod 755 /root # The tree lies there.
    dbus-uuidgen --ensure=/etc/machine-id
    rm -rf "$folder"
    mkdir -p "$folder/images"
    cp docs/desktops.json "$folder" 2>/dev/null || true # What was found out before.
    chown -R desktop "$folder"
    say "Asking the desktops"
    setpriv --reuid desktop --regid desktop --init-groups env HOME=/home/desktop KIV_TREE="$tree" \
        python3 -B -m tests.desktops --build build/release --folder "$folder" "$@"
}
