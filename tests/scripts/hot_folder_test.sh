#!/usr/bin/env bash
# A hot-folder run as a job system drives it: 50 documents handed over on standard input
# (--files-from -), the JSON written to a file by --output while the summary reaches the terminal
# (nothing at all with --quiet), the exit status by the worst document: 0 when all are clean, 1 when
# one has alerts, 2 when one cannot be read, and every document still reported.
set -euo pipefail
quillon=$1 samples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QUILLON_SUPPORT_DIR=$work/support XDG_CONFIG_HOME=$work/config TMPDIR=$work
mkdir -p "$work/hot" "$work/support" "$work/config"
fail() { echo "FAIL: $*" >&2; exit 1; }

clean=$samples/idml/placeholders.idml     # no alert under "[Default]"
alerting=$samples/idml/helloworld-1.idml  # its fonts and links are missing here
for i in $(seq -w 1 50); do cp "$clean" "$work/hot/doc_$i.idml"; done

# run EXPECTED_STATUS [OPTION]: preflights the hot folder's list into result.json and checks the
# status, that the JSON holds the 50 documents in the order of the list, and that the terminal was
# given the summary of each readable one (nothing with --quiet).
run() {
    local status=0
    rm -f "$work/result.json"
    find "$work/hot" -name '*.idml' | sort | "$quillon" preflight --files-from - --format json --jobs 2 \
        --output "$work/result.json" "${@:2}" >"$work/terminal" 2>"$work/stderr" || status=$?
    [[ $status == "$1" ]] || fail "exit status $status, expected $1: $(cat "$work/stderr")"
    local summaries=$(grep -c '^  Result: ' "$work/terminal" || true)
    if [[ ${2:-} == --quiet ]]; then
        [[ ! -s "$work/terminal" && ( $1 == 2 || ! -s "$work/stderr" ) ]] || fail "--quiet printed more than errors"
    elif [[ $summaries != $(( $1 == 2 ? 49 : 50 )) ]]; then
        fail "$summaries summaries reached the terminal"
    fi
    python3 - "$work/result.json" "$work/hot" <<'PY' || fail "JSON of the run"
import json, sys
documents = json.load(open(sys.argv[1]))["documents"]
paths = [d["path"] for d in documents]
expected = ["%s/doc_%02d.idml" % (sys.argv[2], i) for i in range(1, 51)]
assert paths == expected, paths
print(",".join(sorted({d["path"][-11:-5] for d in documents if "error" in d})))
PY
}

[[ $(run 0) == "" ]] || fail "a clean run reports errors"
[[ $(run 0 --quiet) == "" ]] || fail "a quiet clean run reports errors"
cp "$alerting" "$work/hot/doc_17.idml"
[[ $(run 1) == "" ]] || fail "an alerting run reports errors"
echo "not a zip" >"$work/hot/doc_33.idml"
got=$(run 2)
[[ $got == "doc_33" ]] || fail "the documents reported as errors: $got"
grep -q "doc_33.idml" "$work/stderr" || fail "the unreadable document is not named on standard error"
[[ $(run 2 --quiet) == "doc_33" ]] || fail "a quiet run loses the unreadable document"
grep -q "doc_33.idml" "$work/stderr" || fail "--quiet hides the unreadable document's error"
echo "hot folder test passed"
