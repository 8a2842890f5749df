# Sourced by the tests that build a host: runs it, and lets a controller ask. The test sets $scratch, a directory of its
# own, and $zelctl, the command that a controller's program is.
# shellcheck shell=bash disable=SC2154

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

[[ ${VARUNDO_TEST_ISOLATION:-} == *net* ]] || {
    echo "needs a network of its own, which this machine does not permit"
    exit 0
}

# quietly COMMAND...: shows what it said if it fails.
quietly() {
    "$@" >"$scratch/log" 2>&1 </dev/null || {
        tail -n 60 "$scratch/log" >&2
        fail "$*"
    }
}

host=
end_host() {
    [[ -n $host ]] || return 0
    kill -KILL "$host" 2>/dev/null || true
    wait "$host" 2>/dev/null || true
    host=
}
trap end_host EXIT

ask() { "${zelctl[@]}" --timeout 20000 "$@"; }

# start_host COMMAND...: and waits until a controller gets an answer.
start_host() {
    : >"$scratch/host.log"
    "$@" >>"$scratch/host.log" 2>&1 </dev/null &
    host=$!
    local attempt
    for ((attempt = 0; attempt < 600; ++attempt)); do
        if ask read software-id >/dev/null 2>&1; then
            return
        fi
        kill -0 "$host" 2>/dev/null || break
        sleep 0.1
    done
    cat "$scratch/host.log" >&2
    fail "nobody answers for $*"
}

# expect WHAT EXPECTED COMMAND...: what the command prints.
expect() {
    local what=$1 expected=$2 found
    shift 2
    found=$("$@") || fail "$what: '$*' did not work"
    [[ $found == "$expected" ]] || fail "$what: '$found', not '$expected'"
    echo "PASS: $what"
}
