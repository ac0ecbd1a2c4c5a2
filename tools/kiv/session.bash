# ./kiv run and ./kiv shot: the agent at work in a session, the present one or one made for it, with the service's end
# of the link. For ./kiv, which has say(), fail() and build().

geometry=1280x800   # of a desktop of its own
verbose=''          # whether the agent says what it does
work=''             # the session's folder; all it writes goes there
private_desktop=tools/desktop/private_desktop.py
declare -A part=()  # the programs of the session: name of each process ID
started=()          # their process IDs in the order of their start

start() { # NAME COMMAND...: runs the command in the background with its output in the log of that name
    local name=$1
    shift
    "$@" </dev/null >"$work/$name.log" 2>&1 &
    part[$!]=$name
    started+=($!)
}

wait_for() { # SECONDS WHAT COMMAND...: until the command succeeds
    local tries=$(($1 * 20)) what=$2 pid
    shift 2
    until "$@" >/dev/null 2>&1; do
        for pid in "${started[@]}"; do
            kill -0 "$pid" 2>/dev/null || died "$pid"
        done
        ((tries-- > 0)) || fail "$what did not come"
        sleep 0.05
    done
}

died() { # PID [STATUS]
    echo "kiv: ${part[$1]} has ended${2:+ with status $2}. Its last words:" >&2
    tail -n 15 "$work/${part[$1]}.log" >&2
    if [[ ${part[$1]} == agent && -z $embedded ]]; then
        echo "(It also ends, in silence, when another agent has this display already.)" >&2
    fi
    exit 1
}

# The agents of this user in the display that DISPLAY names, by their process IDs: there is one at most, and it keeps any
# other out.
agents_here() {
    local process display
    for process in /proc/[0-9]*; do
        [[ -O $process && $(program_of "${process#/proc/}") == */kivmenua ]] || continue
        display=$(tr '\0' '\n' <"$process/environ" 2>/dev/null | sed -n 's/^DISPLAY=//p') || continue
        [[ $(without_screen "$display") != "$(without_screen "$DISPLAY")" ]] || echo "${process#/proc/}"
    done
}

# The file that the process runs; an upgrade may have put another in its place.
program_of() { # PID
    local program
    program=$(readlink "/proc/$1/exe" 2>/dev/null) || return 0
    echo "${program% (deleted)}"
}

# :0 and :0.0 are one display.
without_screen() { # DISPLAY
    if [[ $1 =~ ^(.*:[0-9]+)\.[0-9]+$ ]]; then
        echo "${BASH_REMATCH[1]}"
    else
        echo "$1"
    fi
}

# What is built is tried in the place of what is installed, which starts again at the end.
displaced=''
displaced_environment=()
displace_agent() {
    local pid
    pid=$(agents_here)
    [[ -n $pid ]] || return 0
    displaced=$(program_of "$pid")
    mapfile -d '' -t displaced_environment <"/proc/$pid/environ"
    echo "$displaced (process $pid) ends for now: the agent that is built takes its place in this session." \
        "The service of the one that ends has to attach again once it is back."
    kill "$pid"
    wait_for 10 "the end of the agent in this session" agent_is_gone "$pid"
}

agent_is_gone() { ! kill -0 "$1"; } # PID

replace_agent() {
    [[ -n $displaced ]] || return 0
    echo "$displaced takes its place again."
    # In what was its own environment: the one here has the folders and the bus of the demo, which have gone.
    setsid --fork env --ignore-environment "${displaced_environment[@]}" "$displaced" </dev/null >/dev/null 2>&1
}

# Every way out comes through here: the parts end in reverse order, and nothing is left behind.
end_session() {
    local i pid
    trap '' INT TERM HUP
    for ((i = ${#started[@]} - 1; i >= 0; --i)); do
        pid=${started[i]}
        kill "$pid" 2>/dev/null || continue
        # What does not go within two seconds is made to.
        for ((tries = 0; tries < 40; ++tries)); do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.05
        done
        kill -KILL "$pid" 2>/dev/null || true
    done
    wait
    replace_agent
    [[ -z $work ]] || rm -rf "$work"
}

free_port() {
    local port
    for port in {5901..5999}; do
        # Nobody listens there when the connection is refused.
        if ! (: <>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
            echo "$port"
            return
        fi
    done
    fail "no free port from 5901 to 5999"
}

# A desktop of its own. Viewers come over the loopback interface, which other users of this machine share, so that each
# also needs the password made for this run.
start_desktop() {
    local display
    viewer_password=$(mcookie | cut -c 1-8)
    viewer_port=$(free_port)
    # The password file of VNC is the password under DES with a fixed key that everybody knows.
    printf '%s' "$viewer_password" |
        openssl enc -des-ecb -nopad -K e84ad660c4721ae0 -provider legacy -provider default >"$work/vncpasswd"
    start_part "server" -geometry "$geometry" -desktop "kivmenua" \
        -localhost -rfbport "$viewer_port" -SecurityTypes VncAuth -PasswordFile "$work/vncpasswd"
    wait_for 10 "the X server" grep -qx '[0-9]\+' "$work/server.log"
    display=:$(grep -x '[0-9]\+' "$work/server.log")
    enter_desktop "$display"
    xsetroot -solid '#3b5b76'

    start_bus
    start_part "window-manager"
    # The tray goes to the left end, where the open menu leaves the pop-ups in sight.
    start_part "panel" left
}

start_part() { # PART ARGUMENT...: starts a part of the desktop of our own
    start "$1" "$private_desktop" "$1" "$work" "${@:2}"
}

enter_desktop() { # DISPLAY
    local variable
    while IFS= read -r variable; do
        export "${variable?}"
    done < <("$private_desktop" environment "$work" "$1")
}

start_bus() {
    start_part "bus"
    wait_for 10 "the bus" grep -q '^unix:path=' "$work/bus.log"
}

agent_is_linked() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner "string:com.tamborel.kivune.p$agent" | grep -q 'boolean true'
}

# A copy of the built agent whose bundle names a message feed on this machine, so that trying it asks nothing of the
# network.
make_bundle() {
    mkdir "$work/feed"
    python3 resources/demo/messages.py >"$work/feed/messages.xml"
    start "feed" python3 -u -m http.server --bind 127.0.0.1 --directory "$work/feed" 0
    wait_for 10 "the feed" grep -q 'Serving HTTP' "$work/feed.log"
    local port
    port=$(sed -n 's/^Serving HTTP on .* port \([0-9]*\) .*/\1/p' "$work/feed.log")
    "$private_desktop" bundle "$work/bundle" build/dev bin/kivmenua \
        "KIVSupportMessages=http://127.0.0.1:$port/messages.xml"
}

# The settings of somebody who wants to see all messages soon: the next one a minute after the last was closed. The
# agent writes only the last message's id.
make_preferences() {
    local folder=$HOME/Library/Preferences key
    mkdir -p "$folder"
    {
        echo '<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>'
        for key in News Notices Updates Warnings LowPriority MediumPriority HighPriority; do
            echo "<key>KivNotificationShow$key</key><true/>"
        done
        echo '<key>KivNotificationShowTimeout</key><integer>1</integer>'
        echo '<key>KivNotificationRepeatTimeout</key><integer>1</integer>'
        echo '<key>KivNotificationCloseTimeout</key><integer>4</integer>'
        echo '</dict></plist>'
    } >"$folder/com.tamborel.kivmenua.plist"
}

# The agent, and the reference service at the other end of its link, in the desktop that DISPLAY names. The service
# takes its commands from the pipe on descriptor 8.
start_agent() {
    make_bundle
    make_preferences
    local rules=()
    [[ -z $verbose ]] || rules=(env 'QT_LOGGING_RULES=kiv.*=true')
    start "agent" "${rules[@]}" "$work/bundle/bin/kivmenua"
    agent=${started[-1]}
    if [[ -n $verbose ]]; then
        tail --pid="$agent" --lines=+1 --follow "$work/agent.log" &
        started+=($!)
    fi
    wait_for 60 "the agent" agent_is_linked
    mkfifo "$work/commands"
    exec 8<>"$work/commands"
    build/dev/sbin/kivservice attach --pid "$agent" <&8 > >(tee "$work/service.log") 2>&1 &
    part[$!]=service
    started+=($!)
    tell_service 'flags 6'
    tell_service 'actions 32791 32792 32793 32794 32795 32796'
}

tell_service() { printf '%s\n' "$*" >&8; }

start_session() {
    trap end_session EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM HUP
    work=$(mktemp -d)
    if [[ -n ${DISPLAY:-} ]]; then
        embedded=
        displace_agent
        mkdir -m 700 "$work/home" "$work/runtime"
        # The home folder is replaced below; the right to use the display lies in the real one.
        export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
        if [[ -z ${DBUS_SESSION_BUS_ADDRESS:-} && ! -S ${XDG_RUNTIME_DIR:-}/bus ]]; then
            export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/bus
            start_bus
        fi
        export HOME=$work/home XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$work/runtime}
    else
        embedded=yes
        start_desktop
    fi
    start_agent
}

# Of the agent's windows the small one; a pop-up may be there, too.
item_window() {
    local window WIDTH
    for window in $(xdotool search --onlyvisible --class '^kivmenua$'); do
        eval "$(xdotool getwindowgeometry --shell "$window" | grep '^WIDTH=')"
        if ((WIDTH < 100)); then
            echo "$window"
            return
        fi
    done
    return 1
}

# Opens the menu with a click and its second submenu with keys, and takes a picture of the screen.
shoot_menu() { # FILE
    local window
    wait_for 15 "the status item" item_window
    window=$(item_window)
    # What the panel has just embedded is drawn a moment later.
    sleep 1
    xdotool mousemove --window "$window" 11 11 click 1
    sleep 1
    xdotool key Down Down Right
    sleep 1
    shoot "$1"
    xdotool key Escape Escape
}

shoot() { # FILE
    mkdir -p "$(dirname "$1")"
    import -silent -window root "$1"
}

run_session() { # [--for SECONDS] [--shot FILE] [--verbose]
    local seconds='' shot='' timer=''
    while [[ $# -gt 0 ]]; do
        # shellcheck disable=SC2154 # ./kiv has called_from.
        case $1 in
        --for) [[ ${2:-} =~ ^[0-9]+$ ]] || fail "--for wants a number of seconds"; seconds=$2; shift 2 ;;
        --shot) [[ -n ${2:-} ]] || fail "--shot wants a file"; shot=$(cd "$called_from" && realpath -m "$2"); shift 2 ;;
        --verbose) verbose=yes; shift ;;
        *) fail "run does not know \"$1\"; see ./kiv help" ;;
        esac
    done
    build dev kivmenua kivservice kivsettings
    say "Starting"
    start_session
    if [[ -n $embedded ]]; then
        shot=${shot:-$PWD/build/shot/session.png}
        cat <<END
A desktop of its own runs on display $DISPLAY with a panel, the agent (process $agent) and the service it talks to.
  look at it   with any VNC viewer at 127.0.0.1:$viewer_port, password $viewer_password
               (from another machine first: ssh -L $viewer_port:127.0.0.1:$viewer_port THIS-MACHINE)
  picture      $shot
END
    else
        echo "The agent (process $agent) and the service it talks to run on display $DISPLAY."
    fi
    cat <<END
  the service  prints here what you choose in the menu, and takes lines typed here: flags 2, flags 6,
               actions 32793 32796, actions none, hint TEXT
  messages     from a feed on this machine; the next one a minute after you close one
  stop         Ctrl-C${seconds:+, or wait $seconds seconds}
END
    [[ -z $shot ]] || shoot_menu "$shot"
    if [[ -t 0 ]]; then
        cat <&0 >&8 &
        started+=($!)
    fi
    if [[ -n $seconds ]]; then
        sleep "$seconds" &
        timer=$!
        started+=("$timer")
    fi
    watch_parts "$timer"
}

# Returns when the timer has run out, and fails when a part of the session ends by itself.
watch_parts() { # [TIMER]
    local ended status
    while true; do
        status=0
        wait -n -p ended "${started[@]}" || status=$?
        if [[ -n $1 && $ended == "$1" ]]; then
            return
        elif [[ -n ${part[$ended]:-} ]]; then
            died "$ended" "$status"
        fi
        # The reader of typed lines may end: there is no more to type.
        local pid left=()
        for pid in "${started[@]}"; do
            [[ $pid == "$ended" ]] || left+=("$pid")
        done
        started=("${left[@]}")
    done
}

# The pictures come from a desktop of their own, whatever session this is called in.
make_pictures() {
    unset DISPLAY
    geometry=960x420
    build dev kivmenua kivservice kivsettings
    say "Taking pictures"
    start_session
    shoot_menu docs/images/session.png
    ls -l docs/images
}
