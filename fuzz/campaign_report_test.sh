#!/usr/bin/env bash
# Checks scripts/fuzz's campaign bookkeeping without running a fuzzer: the
# totals of --report over a log of several runs per target (executions, wall
# and CPU seconds summed, coverage and corpus of the last run, faults counted,
# targets in the order first logged), and
# that bad arguments are usage errors.
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cat > "$dir/campaign.log" <<'LOG'
2026-11-24T16:31:49Z ini_fuzz executions=3695279 seconds=602 cov=361 ft=1479 corpus=432 clean
2026-11-24T16:41:51Z btree_fuzz executions=135775 seconds=242 cov=806 ft=3434 corpus=512 clean
2026-11-24T16:44:52Z ini_fuzz executions=6304721 seconds=783 cov=362 ft=1480 corpus=366 clean
2026-11-24T16:49:40Z btree_fuzz executions=20 seconds=1 cov=810 ft=3440 corpus=513 FAULT:fuzz/regressions/btree_fuzz/crash-1
2026-11-24T17:02:11Z vlist_fuzz executions=500 seconds=30 cpu=12 cov=700 ft=900 corpus=50 clean
2026-11-24T17:12:11Z ini_fuzz executions=7 seconds=600 cpu=590 cov=362 ft=1481 corpus=367 clean
LOG
actual=$("$root/scripts/fuzz" --report --corpus-dir "$dir") || fail "--report failed"
row='%-22s %14d %9d %9d %5d %7s %7s %7s %6d\n'
expected=$(printf '%-22s %14s %9s %9s %5s %7s %7s %7s %6s\n' target executions seconds cpu runs \
             cov ft corpus faults
           printf "$row" ini_fuzz 10000007 1985 590 3 362 1481 367 0
           printf "$row" btree_fuzz 135795 243 0 2 810 3440 513 1
           printf "$row" vlist_fuzz 500 30 12 1 700 900 50 0)
[ "$actual" = "$expected" ] || fail "report:"$'\n'"$actual"$'\n'"expected:"$'\n'"$expected"

"$root/scripts/fuzz" --report --log "$dir/missing.log" 2> /dev/null && fail "a missing log reported"
"$root/scripts/fuzz" --cpu-minutes 1 --report --corpus-dir "$dir" > /dev/null ||
  fail "--cpu-minutes refused"
for bad in "--execs x" "--cpu-minutes" "--cpu-minutes 1h" "--minutes" "--until 25h" "--until 25:00" "--bogus"; do
  # shellcheck disable=SC2086
  "$root/scripts/fuzz" $bad > /dev/null 2>&1
  [ $? -eq 2 ] || fail "'$bad' is not a usage error"
done
echo "campaign report checks passed"
