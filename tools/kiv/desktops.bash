# ./kiv desktops: the agent on the desktops that people use, each in a session of its own, in a clean room that has all of
# them. For ./kiv, which has say(), fail() and build().

# Apart from the other clean rooms, for in those nothing is installed that a newcomer would not have.
desktops_room=${KIV_DESKTOPS_ROOM:-/var/cache/kivmenua/desktops}
packages_desktops=(ccache dbus-x11 git passwd python3-pil python3-xlib util-linux)

desktops() { # [NAME...]
    local clone=$desktops_room/root/kivmenua lock status=0
    if [[ -n ${KIV_CLEAN_ROOM:-} ]]; then
        ask_desktops "$@"
        return
    fi
    [[ $EUID -eq 0 ]] || fail "only root can make and enter a clean room"
    may_mount || exit_without_clean_room
    mkdir -p "${desktops_room%/*}"
    exec {lock}>"$desktops_room.lock"
    flock --nonblock "$lock" || fail "somebody else is in the room of the desktops"
    [[ -d $desktops_room ]] || make_room trixie "$desktops_room"
    take_commit_into "$desktops_room"
    say "In the room of the desktops: ./kiv desktops $*"
    in_room "$desktops_room" desktops "$@" {lock}>&- || status=$?
    if [[ -e $clone/build/desktops/desktops.json ]]; then
        mkdir -p docs/images/desktops
        cp "$clone"/build/desktops/desktops.{json,md} docs
        cp "$clone"/build/desktops/images/desktops/*.png docs/images/desktops
        chown --recursive --reference=. docs/desktops.* docs/images/desktops
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
    cp -r docs/images/desktops "$folder/images" 2>/dev/null || true
    chown -R desktop "$folder"
    say "Asking the desktops"
    setpriv --reuid desktop --regid desktop --init-groups env HOME=/home/desktop KIV_TREE="$tree" \
        python3 -B -m tests.desktops --build build/release --folder "$folder" "$@"
}
