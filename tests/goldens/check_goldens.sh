#!/usr/bin/env bash
# Every example material is collapsed to the very bytes kept for it:
#
#   check_goldens.sh [--write] ROOT SFG GOLDENS
#
# SFG collapses each examples/materials/NAME.json of ROOT, lit by the studio; GOLDENS holds what it prints:
# NAME.json the result as it is, NAME.hlsl the complete shader. Of an include file the shader holds the whole text, which
# is no generated code: the golden names it in one line, where the shader holds the file to the letter. With --write the
# files are brought up to date instead.
set -euo pipefail
write=false
if [ "$1" = --write ]; then write=true; shift; fi
cd "$1"
sfg=$2
goldens=$3
printed=$(mktemp)
cut=$(mktemp)
trap 'rm -f "$printed" "$cut"' EXIT
status=0

complain() {
  echo "$1" >&2
  status=1
}

check() {  # MATERIAL FORMAT GOLDEN
  "$sfg" collapse "$1" -L library -I library --tool lightloop \
    --environment examples/environments/studio.json --format "$2" >"$printed" ||
    { complain "$1: sfg collapse fails"; return; }
  if [ "$2" = shader ]; then
    awk -f tests/goldens/cut_includes.awk library/*.h "$printed" >"$cut"
    mv "$cut" "$printed"
  fi
  if $write; then
    cat "$printed" >"$3"
  elif [ ! -f "$3" ]; then
    complain "$3: missing; scripts/update-goldens writes it"
  elif ! cmp -s "$3" "$printed"; then
    diff -u --label "$3" --label "$1 --format $2" "$3" "$printed" | head -n 20 >&2 || true
    complain "$3: other bytes than \`sfg collapse --format $2\` prints; scripts/update-goldens renews it"
  fi
}

for material in examples/materials/*.json; do
  name=$(basename "$material" .json)
  check "$material" json "$goldens/$name.json"
  check "$material" shader "$goldens/$name.hlsl"
done
for golden in "$goldens"/*; do
  name=$(basename "$golden")
  [ -f "examples/materials/${name%.*}.json" ] || complain "$golden: of no material"
done
exit $status
