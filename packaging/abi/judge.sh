# Sourced by scripts/abi and by its own test: what a shared library's binary interface is, and whether it may differ from
# an earlier one.
# shellcheck shell=bash disable=SC2154

# interface_of LIBRARY OUTPUT [HEADER-DIRECTORY...]: with the types that headers show; the rest is the library's affair.
# Nothing that differs from machine to machine or when a line is added above another.
interface_of() {
    local library=$1 output=$2 directory options=()
    shift 2
    for directory in "$@"; do options+=(--headers-dir "$directory"); done
    abidw --exported-interfaces-only --drop-private-types --type-id-style hash \
        --no-show-locs --no-corpus-path --no-comp-dir-path --no-elf-needed --no-parameter-names --no-write-default-sizes \
        "${options[@]}" --out-file "$output" "$library"
}

soname_of() { sed -n "1s/.* soname='\([^']*\)'.*/\1/p" "$1"; }

# Whether version $1 has another major number than $2, or else a higher minor one.
is_newer_minor() {
    local new old
    IFS=. read -ra new <<<"$1"
    IFS=. read -ra old <<<"$2"
    ((new[0] != old[0] || new[1] > old[1]))
}

# differs WHAT OLD NEW OPTION...: whether abidiff finds something. The report is added to $report.
differs() {
    local old=$1 new=$2 status=0
    shift 2
    abidiff "$@" "$old" "$new" >>"$report" 2>&1 || status=$?
    # 1 and 2: it did not work, or was not used well. The others say what it found.
    ((status & 3)) && fail "abidiff failed with $status: $(tail -n 3 "$report")"
    ((status))
}

# judge OLD OLD-VERSION NEW NEW-VERSION: prints a word, and is false if the change may not be. $report gets the details.
judge() {
    local old=$1 old_version=$2 new=$3 new_version=$4
    if differs "$old" "$new" --no-added-syms; then
        if [[ $(soname_of "$old") == "$(soname_of "$new")" ]]; then
            echo "broken: something was removed or changed, and the SONAME is still $(soname_of "$new")"
            return 1
        fi
        echo "broken, and has a new SONAME"
    elif differs "$old" "$new"; then
        if ! is_newer_minor "$new_version" "$old_version"; then
            echo "added to, and the version has the minor number of $old_version still"
            return 1
        fi
        echo "added to, in a new minor version"
    else
        echo "unchanged"
    fi
}
