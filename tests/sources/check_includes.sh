#!/usr/bin/env bash
# Which folder may include which: check_includes.sh ROOT
#
# A folder sees the headers named below, its own, and the language's library. Tests and what their names show to be
# theirs (x_test.cpp, x_fixture.h, test_x.h) may include what they like.
set -euo pipefail
cd "$1"

# allow FOLDER PATTERN: every include in FOLDER that holds a slash or a `.h` and does not match PATTERN is named.
bad=0
allow() {
  local folder=$1 pattern=$2 line
  [ -d "$folder" ] || return 0
  while IFS= read -r line; do
    echo "$line"
    bad=$((bad + 1))
  done < <(grep -rnE --include='*.h' --include='*.cpp' '^ *# *include' "$folder" | LC_ALL=C sort -t: -k1,1 -k2,2n |
    grep -vE '_(test|fuzz|benchmark)\.cpp:|_fixture\.h:|^[^:]*/test_[^/:]*:' |
    grep -vE ":[0-9]+: *# *include *(<[a-z_0-9]+>|[<\"]($pattern)/)")
}

generator='sfg|tolmsdk'
allow include "$generator"
allow platform/include 'tolmsdk'
allow platform 'tolmsdk|platform|nlohmann|rapidjson|openssl|unicode'
allow text "$generator|text"
allow profiles "$generator|text|profiles"
allow fragments "$generator|text|profiles|fragments"
allow collapse "$generator|text|profiles|fragments|collapse"

if [ "$bad" -gt 0 ]; then
  echo "$bad includes that their folder may not have"
  exit 1
fi
