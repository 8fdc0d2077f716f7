#!/usr/bin/env bash
# Builds and tests everything, or the stages named: test.sh [stage...]
# The output of every stage stays in build/logs; that of a failing one is shown.
source "$(dirname "$0")/common.sh"

stages=(format scripts native tsan fuzz windows demo docs release)

stage_format() {
  git ls-files -z '*.h' '*.c' '*.cpp' | xargs -0 clang-format-14 --dry-run -Werror
}

stage_scripts() {
  git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck -x -P SCRIPTDIR
}

build_and_test() {
  build_preset "$1" && ctest --preset "$1" -j "$jobs" --no-tests=error
}

# Address- and UndefinedBehaviorSanitizer, and clang-tidy while the library compiles.
stage_native() { build_and_test native; }

stage_tsan() { build_and_test tsan; }

# A minute of what scripts/fuzz.sh does for as long as it is given.
stage_fuzz() { scripts/fuzz.sh 60; }

# Under Wine, with the programs that use the installed package, and a camera beside it.
stage_windows() { build_preset simulator qvx-wifi-camera && build_and_test windows; }

stage_demo() { scripts/demo.sh; }

# The documents' samples, tables and links.
stage_docs() {
  build_preset native && build_preset simulator && build_preset windows && python3 scripts/docs/check.py
}

# Never run: it would look for a camera's access point.
stage_release() {
  build_preset release || return
  local address check
  address=$(sed -n 's/^QVX_CAMERA_ADDRESS:STRING=//p' build/release/CMakeCache.txt)
  for check in exports imports address; do
    python3 tests/windows/check_exports.py "$check" --dll build/release/QVX64.dll \
      --camera-address "$address" || return
  done
}

summary=""
passed=0
failed=0

# Adds what the log says of its tests; a stage without tests is one itself, and so is a failure
# outside of them. A skipped test counts as neither.
count_tests() {
  local log=$1 status=$2 skipped
  local line='tests passed, ([0-9]+) tests failed out of ([0-9]+)'
  stage_passed=$((status == 0))
  stage_failed=0
  if [[ $(grep 'tests failed out of' "$log" | tail -n 1) =~ $line ]]; then
    skipped=$(grep -c '\*\*\*Skipped' "$log")
    stage_failed=${BASH_REMATCH[1]}
    stage_passed=$((BASH_REMATCH[2] - stage_failed - skipped))
  fi
  [ "$status" -eq 0 ] || [ "$stage_failed" -gt 0 ] || stage_failed=1
  passed=$((passed + stage_passed))
  failed=$((failed + stage_failed))
}

run_stage() {
  local stage=$1 log=$logs/$1.log status=0 result=pass start=$SECONDS
  echo "== $stage"
  "stage_$stage" </dev/null >"$log" 2>&1 || status=$?
  if [ $status -ne 0 ]; then
    result=FAIL
    cat "$log"
  fi
  count_tests "$log" $status
  summary+=$(printf '%-8s %s %5d passed %4d failed %5d s' \
    "$stage" $result "$stage_passed" "$stage_failed" $((SECONDS - start)))$'\n'
}

[ $# -eq 0 ] || stages=("$@")
for stage in "${stages[@]}"; do
  declare -F "stage_$stage" >/dev/null || fail "no stage \"$stage\""
done
scripts/setup.sh test || { echo "0 passed, 1 failed"; exit 1; }
for stage in "${stages[@]}"; do run_stage "$stage"; done

printf '\n%s\n%d passed, %d failed\n' "$summary" $passed $failed
[ $failed -eq 0 ]
