#!/usr/bin/env bash
# Checks scripts/fuzz's campaign bookkeeping without running a fuzzer: the
# totals of --report over a log of several runs per target (executions and
# seconds summed, coverage and corpus of the last run, faults counted), and
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
LOG
actual=$("$root/scripts/fuzz" --report --corpus-dir "$dir") || fail "--report failed"
expected=$(printf '%-22s %14s %9s %5s %7s %7s %7s %6s\n' target executions seconds runs cov ft corpus faults
           printf '%-22s %14d %9d %5d %7s %7s %7s %6d\n' ini_fuzz 10000000 1385 2 362 1480 366 0
           printf '%-22s %14d %9d %5d %7s %7s %7s %6d\n' btree_fuzz 135795 243 2 810 3440 513 1)
[ "$actual" = "$expected" ] || fail "report:"$'\n'"$actual"$'\n'"expected:"$'\n'"$expected"

"$root/scripts/fuzz" --report --log "$dir/missing.log" 2> /dev/null && fail "a missing log reported"
for bad in "--execs x" "--minutes" "--until 25h" "--until 25:00" "--bogus"; do
  # shellcheck disable=SC2086
  "$root/scripts/fuzz" $bad > /dev/null 2>&1
  [ $? -eq 2 ] || fail "'$bad' is not a usage error"
done
echo "campaign report checks passed"
