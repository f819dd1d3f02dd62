#!/usr/bin/env bash
# What a document shows is what there is: check_examples.sh [--write] ROOT BIN_FOLDER
#
#   <!-- file: PATH -->          the block of code that follows is that file
#   <!-- prints: COMMAND -->     .. is what COMMAND prints, run in ROOT with BIN_FOLDER first in the PATH
#
# With --write the documents are brought up to date instead.
set -euo pipefail
write=false
if [ "$1" = --write ]; then write=true; shift; fi
cd "$1"
PATH="$2:$PATH"

# Prints a document with its marked blocks as they ought to be.
renew() {
  local line expected='' state=text
  while IFS= read -r line || [ -n "$line" ]; do
    if [ "$state" = inside ]; then
      [ "$line" = '```' ] || continue
      if [ -n "$expected" ]; then printf '%s\n' "$expected"; fi
      state=text
    elif [[ $line =~ ^'<!-- '(file|prints)': '(.*)' -->'$ ]]; then
      state=marked
      if [ "${BASH_REMATCH[1]}" = file ]; then
        expected=$(cat "${BASH_REMATCH[2]}")
      else
        expected=$(bash -c "${BASH_REMATCH[2]}") || { echo "$1: fails: ${BASH_REMATCH[2]}" >&2; return 1; }
      fi
    elif [ "$state" = marked ]; then
      [ "${line:0:3}" = '```' ] || { echo "$1: no block of code behind the comment before: $line" >&2; return 1; }
      state=inside
    fi
    printf '%s\n' "$line"
  done <"$1"
  [ "$state" = text ] || { echo "$1: a block of code is not closed" >&2; return 1; }
}

bad=0
new=$(mktemp)
trap 'rm -f "$new"' EXIT
while IFS= read -r document; do
  document=${document#./}
  if ! renew "$document" >"$new"; then
    bad=$((bad + 1))
  elif $write; then
    cmp -s "$document" "$new" || cat "$new" >"$document"
  elif ! diff --label "$document" --label 'as it ought to be' -u "$document" "$new"; then
    bad=$((bad + 1))
  fi
done < <(find . \( -name build -o -name 'build-*' -o -name '.?*' -o -name 'faulty_*' \) -prune -o -name '*.md' -print | LC_ALL=C sort)

if [ "$bad" -gt 0 ]; then
  echo "$bad documents are out of date; scripts/update-docs brings them up"
  exit 1
fi
