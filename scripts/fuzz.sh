#!/usr/bin/env bash
# Fuzzes the library with made-up calls, arguments and devices: fuzz.sh [seconds [seed]], 600 by
# default. With a seed the inputs are the same every time, as far as the seconds reach.
# Exit code 1 when an input breaks it, or when all inputs together reach too few lines of src.
# Inputs that broke it stay in build/fuzz/run, and so does the corpus as it has grown.
source "$(dirname "$0")/common.sh"

seconds=${1:-600}
seed=${2:-0}
least_coverage=95
fuzzer=build/fuzz/tests/fuzz/qvx_fuzz
run=build/fuzz/run
corpus=tests/fuzz/corpus

[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "\"$seconds\" is no number of seconds"
[[ $seed =~ ^[0-9]+$ ]] || fail "\"$seed\" is no seed"
scripts/setup.sh test || exit 1
for tool in clang++-14 llvm-profdata-14 llvm-cov-14; do
  command -v "$tool" >/dev/null || fail "$tool is missing (packages clang-14 and llvm-14)"
done
build_preset fuzz >"$logs/fuzz-build.log" 2>&1 || {
  cat "$logs/fuzz-build.log"
  fail "the build failed"
}
rm -rf "$run"
mkdir -p "$run/corpus"
cp "$corpus"/* "$run/corpus"

# Most time goes into keeping account of allocations: less of it means more executions.
export ASAN_OPTIONS=malloc_context_size=2:quarantine_size_mb=16
common=(-timeout=60 -artifact_prefix="$run/")

# The lines of src that the inputs of a folder reach, in percent.
coverage() {
  local folder=$1 profile=$run/$2
  LLVM_PROFILE_FILE=$profile.raw "$fuzzer" "${common[@]}" -runs=0 "${@:3}" "$folder" >"$profile.log" 2>&1 || {
    tail -n 40 "$profile.log" >&2
    return 1
  }
  llvm-profdata-14 merge -sparse "$profile.raw" -o "$profile.merged" &&
    llvm-cov-14 report "$fuzzer" -instr-profile="$profile.merged" src |
    awk '$1 == "TOTAL" { sub("%", "", $10); print $10 }'
}

# One process per core; they learn from each other through the corpus, unless they have a seed. Leaks
# show at the end.
fuzz() {
  local i processes=() status=0 learn=1
  [ "$seed" -eq 0 ] || learn=0
  for ((i = 0; i < jobs; i++)); do
    LLVM_PROFILE_FILE=$run/fuzz-$i.raw "$fuzzer" "${common[@]}" -max_total_time="$seconds" \
      -seed=$((seed > 0 ? seed + i : 0)) -reload=$learn -max_len=400 -len_control=20 -detect_leaks=0 \
      -print_final_stats=1 "$run/corpus" >"$run/fuzz-$i.log" 2>&1 &
    processes+=($!)
  done
  for i in "${!processes[@]}"; do
    wait "${processes[i]}" && continue
    status=1
    tail -n 60 "$run/fuzz-$i.log"
  done
  return $status
}

regressions=(tests/fuzz/regressions/*)
if [ -e "${regressions[0]}" ]; then
  LLVM_PROFILE_FILE=$run/regressions.raw "$fuzzer" "${common[@]}" "${regressions[@]}" \
    >"$run/regressions.log" 2>&1 || {
    tail -n 60 "$run/regressions.log"
    fail "a fault of the past is back"
  }
fi
before=$(coverage "$corpus" before) || fail "an input of $corpus breaks the library"
broken=0
fuzz || broken=1
after=$(coverage "$run/corpus" after -detect_leaks=0) || broken=1

executions=$(awk '/number_of_executed_units/ { sum += $2 } END { print sum + 0 }' "$run"/fuzz-*.log)
faults=$(find "$run" -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' | wc -l)
echo "$jobs processes, $seconds s: $executions executions, $((executions / seconds)) per second"
echo "inputs that broke the library: $faults"
echo "lines of src reached: $before % by $corpus, ${after:=0} % by what it grew to"
[ $broken -eq 0 ] || fail "the library broke"
awk -v reached="$after" -v least=$least_coverage 'BEGIN { exit reached < least }' ||
  fail "less than $least_coverage % of the lines of src are reached"
