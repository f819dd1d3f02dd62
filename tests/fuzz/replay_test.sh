#!/usr/bin/env bash
# Tests replay_main.cpp: replay_test.sh PROGRAM WORK_FOLDER
set -uo pipefail
program=$1 work=$2
failures=0
rm -rf "$work"
mkdir -p "$work/corpus/deep" "$work/bad" "$work/empty"
cd "$work" || exit 1

# expect STATUS OUTPUT ARGUMENTS..
expect() {
  local status=$1 output=$2 got got_status
  shift 2
  got=$("$program" "$@" 2>&1)
  got_status=$?
  if [ "$got_status" != "$status" ] || [ "$got" != "$output" ]; then
    printf '%s\nanswered %s:\n%s\nexpected %s:\n%s\n' "$*" "$got_status" "$got" "$status" "$output"
    failures=$((failures + 1))
  fi
}

printf 'one' >corpus/deep/b
printf '' >corpus/a
printf 'a crash' >bad/b

# Files of all folders in the order of their names; an empty file is an input too.
expect 0 'corpus/a
<>
corpus/deep/b
<one>
2 files and 0 mutations replayed' corpus
# The last file named is the one that crashed.
expect 77 'bad/b
<a crash>' bad corpus
expect 2 'no corpus file found' empty
usage='usage: x_fuzz [--mutations N] [--seed S] [--last FILE] [FILE_OR_FOLDER]...'
expect 2 "$usage" --mutations
expect 2 "$usage" --mutations -1 corpus
expect 2 "$usage" --mutations 1x corpus
expect 2 "$usage" --unknown corpus
expect 2 "$usage" corpus --last

# Mutations are the same at every run, differ from each other, and each can be repeated alone.
first=$("$program" --mutations 50 --seed 7 corpus)
[ "$first" = "$("$program" --mutations 50 --seed 7 corpus)" ] || { echo "mutations differ from run to run"; failures=$((failures + 1)); }
different=$(grep -a '^<' <<<"$first" | sort -u | wc -l)
[ "$different" -gt 20 ] || { echo "only $different different inputs of 52"; failures=$((failures + 1)); }
third=$(grep -a -A1 '^--seed 9 ' <<<"$first")
alone=$("$program" --seed 9 --mutations 1 corpus | grep -a -A1 '^--seed 9 ')
[ "$third" = "$alone" ] || { printf 'seed 9 alone:\n%s\nin a row:\n%s\n' "$alone" "$third"; failures=$((failures + 1)); }
alone=$("$program" --seed 9 --mutations 1 --last last corpus | grep -a -A1 '^--seed 9 ' | tail -1)
[ "$alone" = "<$(cat last)>" ] || { echo "the last input is \`$(cat last)\` of $alone"; failures=$((failures + 1)); }
[ "$failures" -eq 0 ]
