# ./kiv check: what a machine can say about the tree without running it. For ./kiv, which has say(), fail() and
# install_missing(). Each check prints what is wrong and where, and all of them run whatever the others find.

packages_check=(clang-format shellcheck libxml2-utils desktop-file-utils appstream python3)

check() { # [NAME...]
    local all=(format scripts includes sizes words versions documents links mutants tidy) name found=()
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

check_versions() {
    python3 -B tools/kiv/versions.py .
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
# included, and so must be there; it is not ours to look through. Files are read as many at a time as they are compiled,
# for most of the time goes into Qt's headers. The tests, which run under the sanitizers, are spared the analyzer: in the
# macros of a test it takes a minute and a half for one file.
check_tidy() {
    local ours
    # shellcheck disable=SC2154 # ./kiv has them.
    install_missing "${packages_build[@]}" "${packages_run[@]}" clang-tidy
    cmake --preset check --log-level=WARNING >/dev/null || return
    ninja -C build/check -t targets all | sed -n 's/^\([A-Za-z0-9_]*_autogen\): phony$/\1/p' |
        xargs ninja -C build/check --quiet
    : >build/check/tidy.log
    ours="^$PWD/(build/check/)?"
    if ! tidy "$ours(fetch|menu|notify|platform|settings|shell|showmenu|tools)/(?!.*_autogen/)" ||
        ! tidy "$ours(tests)/(?!.*_autogen/)" '-checks=-clang-analyzer-*'; then
        grep --extended-regexp 'warning:|error:' build/check/tidy.log | sed 's/\x1b\[[0-9;]*m//g' | sort --unique
        return 1
    fi
}

tidy() { # FILES [OPTION...]: the files of the compile commands that match, and the headers of ours that they include
    run-clang-tidy -quiet -p build/check -header-filter="^$PWD/(fetch|menu|notify|platform|settings|shell|showmenu|tests|tools)/" \
        "${@:2}" "$1" >>build/check/tidy.log 2>/dev/null
}
