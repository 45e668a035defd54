#!/bin/sh
# Runs each fuzz target for a bounded time under ASan and UBSan, seeded from
# the end-to-end cases of tests/cases and the inputs of fuzz/seeds, with the
# token dictionaries of this folder. Fails on the first crash, leak, sanitizer report, time-out (10 s)
# or memory use over 4 GB (a text of the language may take 2 GB) of a
# target; the input that caused it is kept as <build>/fuzz-out/<target>-*.
# The corpus grows in <build>/fuzz-out/corpus-<target> from run to run.
# Usage: fuzz/run.sh <build folder> [seconds per target, 60]
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
seconds=${2:-60}
out=$build/fuzz-out
rm -rf "$out/seeds-calc" "$out/seeds-skelvor" "$out/tmp"
mkdir -p "$out/seeds-calc" "$out/seeds-skelvor" "$out/corpus-calc" "$out/corpus-skelvor" "$out/tmp"
"$build/fuzz/fuzz_seeds" "$root/tests/cases" "$out/seeds-calc" "$out/seeds-skelvor"
# and the inputs written for the fuzzers alone, in their own layout
cp "$root"/fuzz/seeds/calc/* "$out/seeds-calc"
cp "$root"/fuzz/seeds/skelvor/* "$out/seeds-skelvor"
cat "$root/fuzz/calc.dict" > "$out/calc.dict"
cat "$root/fuzz/calc.dict" "$root/fuzz/skelvor.dict" > "$out/skelvor.dict"
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export TMPDIR="$out/tmp"  # the scratch files of fuzz_skelvor, left behind by a crash

status=0
for target in calc skelvor; do
    log=$out/$target.log
    start=$(date +%s)
    if "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
        -dict="$out/$target.dict" -artifact_prefix="$out/$target-" \
        "$out/corpus-$target" "$out/seeds-$target" > "$log" 2>&1; then
        result=clean
    else
        result="FAILED (see $log)"
        status=1
        grep -E "ERROR|SUMMARY|Test unit written" "$log" | head -n 5
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "fuzz_$target: ${runs:-?} executions in $(($(date +%s) - start)) s: $result"
done
exit $status
