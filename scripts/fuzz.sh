#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Runs the fuzz targets one by one, each for so many seconds, from the corpora in tests/fuzz/corpus.
#
#   scripts/fuzz.sh SECONDS FOLDER TARGET...
#
# What they find to go on from is kept in FOLDER/TARGET, so that the next run begins there; inputs that break
# something are FOLDER/TARGET-*, their stories FOLDER/TARGET.log. It goes on with the next target then, and
# fails at the end. FUZZ_LENGTH is the most bytes of an input (512).
set -eu

seconds=$1
folder=$2
shift 2
corpora=$(dirname "$0")/../tests/fuzz
export UBSAN_OPTIONS=print_stacktrace=1
# Noting where memory was taken takes a tenth of the time: run the input that breaks something by itself.
export ASAN_OPTIONS=quarantine_size_mb=8:malloc_context_size=0

failed=
for program in "$@"; do
    target=$(basename "$program")
    target=${target#fuzz_}
    mkdir -p "$folder/$target"
    log=$folder/$target.log
    status=0
    "$program" -entropic=0 -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 \
        -max_len="${FUZZ_LENGTH:-512}" -close_fd_mask=1 -print_final_stats=1 -artifact_prefix="$folder/$target-" -dict="$corpora/dictionary" \
        "$folder/$target" "$corpora/corpus/$target" >"$log" 2>&1 || status=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    covered=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' "$log" | tail -n 1)
    printf '%-16s %10s executions, %6s edges covered\n' "$target" "${runs:-0}" "${covered:-0}"
    [ "$status" -eq 0 ] || {
        failed="$failed $target"
        printf '  failed: see %s\n' "$log"
    }
done
[ -z "$failed" ] || exit 1
