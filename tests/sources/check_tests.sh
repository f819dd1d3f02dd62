#!/usr/bin/env bash
# Every source of the host has its test beside it, and every test tests something: check_tests.sh ROOT
#
# What is there when compilers are not is tested with what takes its place (compile_test.cpp).
set -euo pipefail
cd "$1"
bad=0
for source in host/*/*.cpp; do
  case "$source" in *_test.cpp | host/modules/no_compiler.cpp) continue ;; esac
  [ -f "${source%.cpp}_test.cpp" ] && continue
  echo "$source: no ${source%.cpp}_test.cpp"
  bad=$((bad + 1))
done
for test in host/*/*_test.cpp; do
  if ! grep -qE '^(TYPED_)?TEST' "$test"; then
    echo "$test: has no test"
    bad=$((bad + 1))
  fi
  grep -qE "(^|[ (])$(basename "$test")([ )]|\$)" "$(dirname "$test")/CMakeLists.txt" && continue
  echo "$test: not in $(dirname "$test")/CMakeLists.txt"
  bad=$((bad + 1))
done
if [ "$bad" -gt 0 ]; then
  echo "$bad sources or tests stand alone"
  exit 1
fi
