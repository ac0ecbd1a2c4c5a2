# Debian packages: those that are missing are installed. For ./kiv, which has say() and fail().
#
# A package is a name, or several joined by "|" of which one is enough: a few have other names in other releases. The
# first that the release knows is installed.

# Prints those packages that are not installed, one a line.
missing_packages() { # PACKAGE...
    local state name package is_there names
    local -A installed=()
    read -ra names <<<"${*//|/ }"
    # dpkg also lists what it has merely heard of, in states like "not-installed".
    while read -r state name; do
        [[ $state != installed ]] || installed[$name]=yes
    done < <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${names[@]}" 2>/dev/null)
    for package in "$@"; do
        is_there=
        for name in ${package//|/ }; do
            is_there+=${installed[$name]:-}
        done
        [[ -n $is_there ]] || echo "$package"
    done
}

# Prints the name by which this release has the package.
name_here() { # PACKAGE
    local name
    for name in ${1//|/ }; do
        [[ -z $(apt-cache show --no-all-versions "$name" 2>/dev/null) ]] || break
    done
    echo "$name"
}

# Tells how far apt is, which reports that on standard input: in place on a terminal, else a line for each fifth.
show_apt_progress() {
    local line step percent told=''
    while read -r line; do
        [[ $line =~ ^(dl|pm)status:.*:([0-9]+)(\.[0-9]+)?: ]] || continue
        step='   downloaded' percent=${BASH_REMATCH[2]}
        [[ ${BASH_REMATCH[1]} == dl ]] || step='   installed '
        if [[ -t 1 ]]; then
            printf '\r%s %3d %%' "$step" "$percent"
        elif [[ $told != "$step $((percent / 20))" ]]; then
            told="$step $((percent / 20))"
            printf '%s %3d %%\n' "$step" "$percent"
        fi
    done
    [[ ! -t 1 || -z ${step:-} ]] || echo
}

install_missing() { # PACKAGE...
    if ! command -v dpkg-query >/dev/null; then
        echo "kiv: not a Debian system; this needs what Debian calls: $*" >&2
        return
    fi
    local missing as_root=() i
    mapfile -t missing < <(missing_packages "$@")
    [[ ${#missing[@]} -gt 0 ]] || return 0
    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null || fail "cannot install, being neither root nor able to sudo: ${missing[*]}"
        as_root=(sudo)
    fi
    say "Installing Debian packages: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq || fail "apt-get update failed"
    for i in "${!missing[@]}"; do
        [[ ${missing[i]} != *'|'* ]] || missing[i]=$(name_here "${missing[i]}")
    done
    # The report comes on a descriptor of its own: apt never waits for its reader, and what packages say while they are
    # installed would be refused on it when that is slow. A shell makes it, for sudo passes on no other than the usual.
    # shellcheck disable=SC2016 # That shell expands it.
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive bash -c '
        exec apt-get install -qq -y --no-install-recommends -o APT::Status-Fd=3 -o Dpkg::Use-Pty=0 \
            "$@" 3>&1 >/dev/null' apt "${missing[@]}" </dev/null | show_apt_progress ||
        fail "could not install: ${missing[*]}"
}
