#!/usr/bin/env bash
# The check of the goldens refuses what it must: check_goldens_test.sh ROOT SFG
set -euo pipefail
root=$1
sfg=$2
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

refuses() {  # MESSAGE
  local said
  if said=$("$here/check_goldens.sh" "$root" "$sfg" "$folder" 2>&1); then
    echo "passes, but should say: $1" >&2
    exit 1
  fi
  [[ $said == *"$1"* ]] || { printf 'should say: %s\nsays: %s\n' "$1" "$said" >&2; exit 1; }
}

renew() { rm -f "$folder"/*; cp "$here"/materials/* "$folder"; }

renew
sed -i '1s/^./X/' "$folder/brick.hlsl"
refuses "$folder/brick.hlsl: other bytes"
renew
printf '\n' >>"$folder/toon.json"
refuses "$folder/toon.json: other bytes"
renew
rm "$folder/wood.hlsl"
refuses "$folder/wood.hlsl: missing"
renew
touch "$folder/nothing.hlsl"
refuses "$folder/nothing.hlsl: of no material"
renew
echo >"$folder/brick.hlsl"
rm "$folder/wood.json"
"$here/check_goldens.sh" --write "$root" "$sfg" "$folder" 2>/dev/null
diff -r "$here/materials" "$folder"

# An include file is cut where its whole text stands, and nowhere else.
cat >"$folder/one.h" <<'END'
#include "two.h"
float one;

float last;
END
printf '%s\n' 'before' 'float one;' '' 'float last;' 'float one;' '' 'after' >"$folder/shader"
cut=$(awk -f "$here/cut_includes.awk" "$folder/one.h" "$folder/shader")
expected=$'before\n// the text of one.h\nfloat one;\n\nafter'
[ "$cut" = "$expected" ] || { printf 'cuts to:\n%s\n' "$cut" >&2; exit 1; }
