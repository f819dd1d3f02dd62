#!/usr/bin/env bash
# Builds the reference of all installed headers; a warning is a failure: build_reference.sh ROOT FOLDER
# FOLDER/reference/index.html is its first page. DOXYGEN says which program to use.
set -euo pipefail
root=$1 folder=$2
settings=$(cd "$(dirname "$0")/../.." && pwd)/docs/Doxyfile
rm -rf "$folder"
mkdir -p "$folder"
cd "$root"
{ cat "$settings"; printf 'OUTPUT_DIRECTORY = %s\nWARN_AS_ERROR = FAIL_ON_WARNINGS\n' "$folder"; } |
  "${DOXYGEN:-doxygen}" -

# Every header has a page.
missing=0
while IFS= read -r header; do
  grep -qrlF "$(basename "$header") File Reference" "$folder/reference" --include='*.html' ||
    { echo "no page for $header"; missing=$((missing + 1)); }
done < <(find include platform/include -name '*.h')
[ "$missing" -eq 0 ]
