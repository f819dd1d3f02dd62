#!/usr/bin/env bash
# What a document shows is what there is: check_examples.sh [--write] ROOT BIN_FOLDER
#
#   <!-- file: PATH -->          the block of code that follows is that file
#   <!-- prints: COMMAND -->     .. is what COMMAND prints, run in ROOT with BIN_FOLDER first in the PATH
#   <!-- tells: COMMAND -->      what follows, up to <!-- end -->, is what COMMAND prints, run likewise
#   <!-- writes: NAME -->        .. becomes the file NAME in a folder that is the document's own
#   <!-- types: COMMAND -->      .. is a terminal in that folder: the command, behind it all that it prints, run
#                                with a copy of `sfg` that is installed beside the standard library
#
# With --write the documents are brought up to date instead.
set -euo pipefail
write=false
if [ "$1" = --write ]; then write=true; shift; fi
cd "$1"
PATH="$2:$PATH"
programs=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# An installed command, as people have it; made when the first document asks.
install_command() {
  [ -d "$work/prefix" ] || {
    mkdir -p "$work/prefix/bin" "$work/prefix/share/sfg"
    [ ! -e "$programs/sfg" ] || cp "$programs/sfg" "$work/prefix/bin"
    [ ! -d library ] || cp -r library "$work/prefix/share/sfg"
  }
}

# What a terminal shows of a command in the folder of the document.
type_command() {
  install_command
  mkdir -p "$work/here"
  printf '$ %s\n' "$1"
  (cd "$work/here" && LC_ALL=C PATH="$work/prefix/bin:$PATH" bash -c "$1" 2>&1) || true
}

# Prints a document with its marked blocks as they ought to be.
renew() {
  local line expected='' name='' state=text
  rm -rf "$work/here"
  while IFS= read -r line || [ -n "$line" ]; do
    if [ "$state" = written ]; then
      if [ "$line" = '```' ]; then state=text; else printf '%s\n' "$line" >>"$work/here/$name"; fi
    elif [ "$state" = inside ]; then
      [ "$line" = '```' ] || continue
      if [ -n "$expected" ]; then printf '%s\n' "$expected"; fi
      state=text
    elif [ "$state" = told ]; then
      [ "$line" = '<!-- end -->' ] || continue
      printf '\n%s\n\n' "$expected"
      state=text
    elif [[ $line =~ ^'<!-- tells: '(.*)' -->'$ ]]; then
      expected=$(bash -c "${BASH_REMATCH[1]}") || { echo "$1: fails: ${BASH_REMATCH[1]}" >&2; return 1; }
      state=told
    elif [[ $line =~ ^'<!-- writes: '(.*)' -->'$ ]]; then
      name=${BASH_REMATCH[1]}
      mkdir -p "$work/here"
      : >"$work/here/$name"
      state=named
    elif [[ $line =~ ^'<!-- types: '(.*)' -->'$ ]]; then
      state=marked
      expected=$(type_command "${BASH_REMATCH[1]}")
    elif [[ $line =~ ^'<!-- '(file|prints)': '(.*)' -->'$ ]]; then
      state=marked
      if [ "${BASH_REMATCH[1]}" = file ]; then
        expected=$(cat "${BASH_REMATCH[2]}")
      else
        expected=$(bash -c "${BASH_REMATCH[2]}") || { echo "$1: fails: ${BASH_REMATCH[2]}" >&2; return 1; }
      fi
    elif [ "$state" = marked ] || [ "$state" = named ]; then
      [ "${line:0:3}" = '```' ] || { echo "$1: no block of code behind the comment before: $line" >&2; return 1; }
      if [ "$state" = named ]; then state=written; else state=inside; fi
    fi
    printf '%s\n' "$line"
  done <"$1"
  [ "$state" = text ] || { echo "$1: a block of code is not closed" >&2; return 1; }
}

bad=0
new=$work/new
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
