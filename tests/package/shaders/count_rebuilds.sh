#!/usr/bin/env bash
# Changes the inputs of a project with 50 shaders one by one, and counts what is made again:
# count_rebuilds.sh WORK_FOLDER PREFIX GENERATOR TARGET EXTENSION
# CXX, CXXFLAGS and CMAKE say what to build with.
set -euo pipefail
sources=$(cd "$(dirname "$0")" && pwd)
work=$1 prefix=$2 generator=$3 target=$4 extension=$5

fail() {
  echo "$*" >&2
  exit 1
}

# Fragment N in a line of its own, with a number that makes it another; those from 40 on share an include file, 20
# to 22 another.
fragment() {
  local include='' value=1
  if [ "$1" -ge 40 ]; then include='"includes": ["shared.h"], ' value='most()'; fi
  if [ "$1" -ge 20 ] && [ "$1" -le 22 ]; then include='"includes": ["few.h"], ' value='few()'; fi
  local code="\"void tint$1(out float3 c)\", \"{\", \"c = float3($2, $1, $value);\", \"}\""
  printf '"tint%d": { "language": ["dx11"], %s"implementation": [%s] }' "$1" "$include" "$code"
}

graph() {
  printf '{ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ], "nodes": [ { "name": "a", "fragment": "tint%d" } ] }\n' "$1"
}

cp -a "$sources/CMakeLists.txt" "$sources/main.cpp" "$work"
mkdir -p "$work/lib" "$work/graphs"
cd "$work"
numbers=$(seq 10 59)
{
  echo '{'
  for i in $numbers; do echo "  $(fragment "$i" 0.5)$([ "$i" = 59 ] || echo ,)"; done
  echo '}'
} >lib/all.fraglib
echo 'float most() { return 1.0; }' >lib/shared.h
echo 'float few() { return 1.0; }' >lib/few.h
for i in $numbers; do graph "$i" >"graphs/m$i.json"; done

build() {
  "$CMAKE" --build build >build.log 2>&1
}

# The shaders whose files are others than before, by name: those of a change must be these.
expect_made() {
  local made
  made=$(cd build/materials && find . -newer ../../mark -name "*.$extension" -printf '%P\n' | sort | tr '\n' ' ')
  [ "$made" = "$1" ] || { cat build.log >&2; fail "$2: made: $made -- expected: $1"; }
}

names() {
  for i in "$@"; do printf 'm%d.%s ' "$i" "$extension"; done
}

# after WHAT NUMBER..: builds after WHAT has been done; the shaders of these numbers are made, no other.
after() {
  local what=$1
  shift
  build || { cat build.log >&2; fail "$what: does not build"; }
  expect_made "$(names "$@")" "$what"
  sleep 0.02
  touch mark
}

touch mark
sleep 0.02
"$CMAKE" -S . -B build -G "$generator" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" \
  -DCMAKE_PREFIX_PATH="$prefix" -DTARGETS="$target"
# shellcheck disable=SC2086
after 'the first build' $numbers

# What the program carries are the shaders.
for i in 10 59; do
  build/carries "m$i.$extension" | cmp - "build/materials/m$i.$extension" || fail "carries another m$i"
done
[ "$(build/carries | grep -cE "^m[0-9]{2}\.$extension [0-9]+ 40 reflected$")" = 50 ] || fail "carries: $(build/carries)"

after 'nothing'
[ "$generator" != Ninja ] || grep -q 'no work to do' build.log || { cat build.log >&2; fail 'does work for nothing'; }

sed -i "s/^  \"tint17\":.*/  $(fragment 17 0.25),/" lib/all.fraglib
after 'one fragment of 50' 17
after 'nothing behind a change'
[ "$generator" != Ninja ] || grep -q 'no work to do' build.log || { cat build.log >&2; fail 'does work for nothing'; }

echo 'float few() { return 2.0; }' >lib/few.h.new
mv lib/few.h.new lib/few.h
after 'an include file'  20 21 22

touch lib/all.fraglib lib/shared.h
after 'dates alone'

echo "{ $(fragment 30 0.125) }" >lib/over.fraglib
after 'a library that overrides a fragment' 30
rm lib/over.fraglib
after 'its removal' 30

graph 11 >graphs/m12.json
after 'one graph' 12

graph 99 >graphs/m13.json
sed -i "s/^  \"tint14\":.*/  $(fragment 14 0.25),/" lib/all.fraglib
cp "build/materials/m13.$extension" before
if build; then fail 'builds a graph of a fragment that is not there'; fi
grep -q tint99 build.log || { cat build.log >&2; fail 'does not tell which fragment is not there'; }
expect_made "$(names 14)" 'a graph that is broken'
cmp before "build/materials/m13.$extension" || fail 'a broken graph costs its last good shader'
graph 13 >graphs/m13.json
after 'its repair' 14
