#!/usr/bin/env bash
# Which folder may include which: check_includes.sh ROOT
#
# A folder sees the headers named below, its own, and the language's library. Tests and what their names show to be
# theirs (x_test.cpp, x_fixture.h, x_test_support.cpp, test_x.h) may include what they like.
set -euo pipefail
cd "$1"

# allow FOLDER PATTERN: every include in FOLDER that holds a slash or a `.h` and does not match PATTERN, which names
# folders and single headers, is named. What lies under $other is left out.
bad=0
other=
allow() {
  local folder=$1 pattern=$2 line
  [ -d "$folder" ] || return 0
  while IFS= read -r line; do
    echo "$line"
    bad=$((bad + 1))
  done < <(grep -rnE --include='*.h' --include='*.cpp' '^ *# *include' "$folder" | LC_ALL=C sort -t: -k1,1 -k2,2n |
    { if [ -n "$other" ]; then grep -vE "^$other"; else cat; fi; } |
    grep -vE '_(test|fuzz|benchmark)\.cpp:|_(fixture|test_support)\.(h|cpp):|^[^:]*/test_[^/:]*:' |
    grep -vE ":[0-9]+: *# *include *(<[a-z_0-9]+>|[<\"]($pattern)[/>\"])")
}

generator='sfg/[a-z_]+\.h|tolmsdk'
# The host's public headers see the generator's, not the other way round.
allow include/sfg/host 'sfg|tolmsdk'
other='include/sfg/host/'
allow include "$generator"
other=
allow platform/include 'tolmsdk'
allow platform 'tolmsdk|platform|nlohmann|rapidjson|openssl|unicode|fcntl.h|poll.h|unistd.h'
allow text "$generator|text"
allow profiles "$generator|text|profiles"
allow fragments "$generator|text|profiles|fragments"
allow collapse "$generator|text|profiles|fragments|collapse"

# The host's rooms, and the headers of the generator that hold nothing but inline functions.
rooms="sfg|tolmsdk|text/ascii.h|text/hash_index.h|fragments/profile_choice.h"
for room in documents library job shader modules origins diagnostics lints drawing road check build; do
  rooms="$rooms|host/$room"
  case "$room" in
    library | origins | diagnostics | lints | drawing | road) allow "host/$room" "$rooms" ;;
    documents | job | shader | check | build) allow "host/$room" "$rooms|nlohmann" ;;
    modules) allow host/modules "$rooms|glslang|spirv-tools|spirv_cross_c.h|pthread.h|fcntl.h|poll.h|setjmp.h|signal.h|sys|unistd.h" ;;
  esac
done
allow import 'sfg|tolmsdk|import|nlohmann|pugixml.hpp'
other='tools/(lsp|watch)/'
allow tools "sfg|tolmsdk|tools|import|pictures|render|nlohmann|CLI|unistd.h|dlfcn.h|malloc.h|sys"
other=
allow tools/lsp "sfg|tolmsdk|tools|nlohmann"
# One header of the host holds nothing but inline functions.
allow tools/watch "sfg|tolmsdk|tools|nlohmann|host/check/diagnostic_json.h|poll.h|sys|unistd.h"
# To be copied: nothing of this project.
allow render 'vulkan|png.h|renderer.h'
allow pictures 'sfg|tolmsdk|pictures|render|nlohmann|assimp|Imf[A-Za-z]*.h|png.h|stb|zlib.h'

if [ "$bad" -gt 0 ]; then
  echo "$bad includes that their folder may not have"
  exit 1
fi
