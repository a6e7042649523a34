#!/usr/bin/env bash
# run.sh NAME SECONDS [LIBFUZZER OPTION...]: runs one fuzz target of build/fuzz over its corpus and then for so long.
# What it comes upon goes to build/fuzz/found/NAME, where the next run takes it up: what stands in the corpus is chosen
# by hand. An input that finds something is kept beside that folder, and the end of the target's log is shown.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
name="$1"
seconds="$2"
shift 2

corpus="$root/tests/fuzz/corpus/$name"
found="$root/build/fuzz/found/$name"
log="$root/build/fuzz/$name.log"
mkdir -p "$found"
# No input may take 10 s, or more memory than a desktop has to spare.
if ! "$root/build/fuzz/tests/fuzz/$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$found-" "$@" "$found" "$corpus" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "$name found something; the input is in build/fuzz/found." >&2
    exit 1
fi
grep -E '^stat::(number_of_executed_units|new_units_added)' "$log"
