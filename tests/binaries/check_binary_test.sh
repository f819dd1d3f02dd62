#!/usr/bin/env bash
# check_binary.sh on a library that does everything wrong: check_binary_test.sh LIBRARY
set -uo pipefail
library=$1
check=$(dirname "$0")/check_binary.sh
failures=0

# expect STATUS OUTPUT ARGUMENTS.. : what the check answers, to the letter.
expect() {
  local status=$1 output=$2 got got_status
  shift 2
  got=$("$check" "$@")
  got_status=$?
  if [ "$got_status" != "$status" ] || [ "$got" != "$output" ]; then
    printf '%s answered %s:\n%s\nexpected %s:\n%s\n' "$*" "$got_status" "$got" "$status" "$output"
    failures=$((failures + 1))
  fi
}

expect 1 'exported: Foreign::leak(int)
exported: TolmSDK::LeakyRecord const& std::max<TolmSDK::LeakyRecord>(TolmSDK::LeakyRecord const&, TolmSDK::LeakyRecord const&)
exported: leakyFunction
bad: 3' exports "$library"
list=$(mktemp)
trap 'rm -f "$list"' EXIT
"$check" symbols "$library" >"$list"
grep -q '^leakyFunction$' "$list" || { echo 'leakyFunction is not among the symbols'; failures=$((failures + 1)); }
expect 0 '' lists "$library" "$list"
sed -i '/leakyFunction/d' "$list"
echo _ZZgone >>"$list"
told=$("$check" lists "$library" "$list" | grep -xE '[+]leakyFunction|-_ZZgone' | LC_ALL=C sort | tr '\n' ' ')
if [ "$told" != '+leakyFunction -_ZZgone ' ]; then
  echo "of an added and a missing symbol is told: $told"
  failures=$((failures + 1))
fi
expect 1 'refers to: std::cout
refers to: abort
refers to: exit
refers to: stdout
bad: 4' references "$library"
expect 1 'refers to: abort
bad: 1' references "$library" _ZSt4cout exit stdout
expect 0 'bad: 0' references "$library" _ZSt4cout exit stdout abort
expect 1 ', expected libleaky.so.0' soname "$library" libleaky.so.0
expect 1 'needs: libcrypto.so.3
bad: 1' needs "$library"
expect 0 'bad: 0' needs "$library" libcrypto.so.3
expect 1 'missing: binding at start
missing: stack protector
bad: 2' hardened "$library"
[ "$failures" -eq 0 ]
