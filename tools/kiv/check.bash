# ./kiv check: what a machine can say about the tree without running it. For ./kiv, which has say(), fail() and
# install_missing(). Each check prints what is wrong and where, and all of them run whatever the others find.

packages_check=(clang-format shellcheck libxml2-utils desktop-file-utils appstream python3)

check() { # [NAME...]
    local all=(format scripts includes sizes words documents links mutants tidy) name found=()
    [[ $# -gt 0 ]] || set -- "${all[@]}"
    for name in "$@"; do
        [[ " ${all[*]} " == *" $name "* ]] || fail "no such check: \"$name\"; there are ${all[*]}"
    done
    install_missing "${packages_check[@]}"
    for name in "$@"; do
        say "Checking $name"
        "check_$name" || found+=("$name")
    done
    [[ ${#found[@]} -eq 0 ]] || fail "the tree is not in order: ${found[*]}"
    echo "The tree is in order."
}

check_format() {
    git ls-files -z '*.h' '*.cpp' '*.mm' | xargs -0 clang-format --dry-run -Werror
}

check_scripts() {
    shellcheck --external-sources --shell bash kiv tools/kiv/*.bash .ci/run && shellcheck fuzz/run resources/make-images
}

check_includes() {
    python3 -B tools/kiv/include_directions.py .
}

check_sizes() {
    python3 -B tools/kiv/sizes.py .
}

check_words() {
    python3 -B tools/kiv/reserved_words.py .
}

# Descriptions, pictures, property lists, entries of desktops and of software centres: what other programs read.
check_documents() {
    local status=0 file
    while IFS= read -r -d '' file; do
        case $file in
        *.metainfo.xml) appstreamcli validate --no-net --explain "$file" ||
            { echo "$file is no metainfo"; status=1; } ;;
        *.xml | *.svg) xmllint --noout --nonet "$file" || status=1 ;;
        *.plist | *.plist.in) python3 -c 'import plistlib, sys; plistlib.load(open(sys.argv[1], "rb"))' "$file" ||
            { echo "$file is no property list"; status=1; } ;;
        *.desktop) desktop-file-validate "$file" || status=1 ;;
        esac
    done < <(git ls-files -z resources docs tools)
    return "$status"
}

check_links() {
    python3 -B tools/kiv/links.py .
}

check_mutants() {
    python3 -B tools/kiv/mutate.py --check .
}

# The compile commands of a preset without precompiled headers, which clang cannot read from GCC. What moc makes is
# included, and so must be there.
check_tidy() {
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_run[@]}" clang-tidy
    cmake --preset check --log-level=WARNING >/dev/null || return
    ninja -C build/check -t targets all | sed -n 's/^\([A-Za-z0-9_]*_autogen\): phony$/\1/p' |
        xargs ninja -C build/check --quiet
    git ls-files '*.cpp' | grep --extended-regexp '^(fetch|menu|notify|platform|shell|tests|tools)/' |
        grep --invert-match '^platform/macos/' |
        xargs run-clang-tidy -quiet -p build/check >build/check/tidy.log 2>/dev/null ||
        { grep --extended-regexp 'warning:|error:' build/check/tidy.log | sort --unique; return 1; }
}
