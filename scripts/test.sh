#!/usr/bin/env bash
# Builds and tests everything, or the stages named: test.sh [stage...]
# The output of every stage stays in build/logs; that of a failing one is shown.
source "$(dirname "$0")/common.sh"

stages=(format scripts build native fuzz package tsan windows demo docs)

stage_format() {
  git ls-files -z '*.h' '*.c' '*.cpp' | xargs -0 clang-format-14 --dry-run -Werror
}

stage_scripts() {
  git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck -x -P SCRIPTDIR && scripts/check_rooms.py
}

# What is built for Windows, and the cameras as programs of this machine: most stages use both.
stage_build() { build_preset windows && build_preset simulator qvx-simulator; }

build_and_test() {
  build_preset "$1" && ctest --preset "$1" -j "${2:-$jobs}" --no-tests=error
}

# Address- and UndefinedBehaviorSanitizer, and clang-tidy while the library compiles.
stage_native() { build_and_test native; }

stage_tsan() { build_and_test tsan; }

# Twenty seconds of what scripts/fuzz.sh does for as long as it is given, always with the same inputs.
stage_fuzz() { scripts/fuzz.sh 20 1; }

# Under Wine, with the programs that use the installed package, and a camera beside it. Most of it is
# waiting.
stage_windows() { stage_build && build_and_test windows $((jobs + 3)); }

stage_demo() { scripts/demo.sh; }

# The documents' samples, tables and links; samples in C++ are compiled by the stage `native`.
stage_docs() { stage_build && scripts/docs/check.py; }

# What is shipped, tried as its users do, and linked and packed once more in another folder.
stage_package() { scripts/package.sh && scripts/package/reproduce.sh --cached; }

# By hand: everything for Windows by another compiler, each file by itself.
stage_clang() { build_preset clang; }

# By hand: the package compiled once more in another folder.
stage_reproduce() { scripts/package/reproduce.sh; }

# How many tests the log tells of, as "passed failed"; a stage without tests is one itself, and so is
# a failure outside of them. A skipped test counts as neither.
count_tests() {
  local log=$1 status=$2 skipped passed=$(($2 == 0)) failed=0
  local line='tests passed, ([0-9]+) tests failed out of ([0-9]+)'
  if [[ $(grep 'tests failed out of' "$log" | tail -n 1) =~ $line ]]; then
    skipped=$(grep -c '\*\*\*Skipped' "$log")
    failed=${BASH_REMATCH[1]}
    passed=$((BASH_REMATCH[2] - failed - skipped))
  fi
  [ "$status" -eq 0 ] || [ "$failed" -gt 0 ] || failed=1
  echo "$passed $failed"
}

# Leaves its line of the summary beside the log.
run_stage() {
  local stage=$1 log=$logs/$1.log status=0 start=$SECONDS
  echo "== $stage"
  "stage_$stage" </dev/null >"$log" 2>&1 || status=$?
  [ $status -eq 0 ] || cat "$log"
  echo "$stage $(count_tests "$log" $status) $((SECONDS - start))" >"$logs/$stage.result"
}

# Those of the stages that are asked for, one after the other.
run_stages() {
  local stage
  for stage in "$@"; do
    [[ " ${stages[*]} " != *" $stage "* ]] || run_stage "$stage"
  done
}

# In what processor time others leave.
run_beside() {
  renice -n 19 "$BASHPID" >/dev/null
  run_stages "$@"
}

tell_results() {
  local stage passed failed seconds all_passed=0 all_failed=0
  echo
  for stage in "${stages[@]}"; do
    read -r stage passed failed seconds <"$logs/$stage.result"
    printf '%-8s %s %5d passed %4d failed %5d s\n' "$stage" \
      "$([ "$failed" -eq 0 ] && echo pass || echo FAIL)" "$passed" "$failed" "$seconds"
    all_passed=$((all_passed + passed))
    all_failed=$((all_failed + failed))
  done
  printf '\n%d passed, %d failed\n' $all_passed $all_failed
  [ $all_failed -eq 0 ]
}

[ $# -eq 0 ] || stages=("$@")
for stage in "${stages[@]}"; do
  declare -F "stage_$stage" >/dev/null || fail "no stage \"$stage\""
done
scripts/setup.sh test || { echo "0 passed, 1 failed"; exit 1; }
# What several presets compile alike is compiled once.
export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_DIR=$PWD/build/ccache CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
# From the build on, one row of stages goes first and mostly waits; two others run in the processor
# time that it leaves.
run_stages format scripts
run_beside native fuzz clang reproduce &
run_stages build
run_beside tsan package &
run_stages windows demo docs
wait
tell_results
