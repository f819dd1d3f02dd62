#!/usr/bin/env bash
# Looks into a shared library:
#   check_binary.sh exports LIBRARY               exports nothing outside the namespace TolmSDK
#   check_binary.sh lists LIBRARY FILE            exports what FILE lists, no more and no less (inline code aside)
#   check_binary.sh symbols LIBRARY               prints such a list
#   check_binary.sh references LIBRARY [NAME..]   refers to nothing that ends the process or prints, NAMEs excepted
#   check_binary.sh soname LIBRARY NAME           carries that name
#   check_binary.sh needs LIBRARY [NAME..]        needs the language's own libraries and NAMEs, nothing else
#   check_binary.sh hardened LIBRARY|PROGRAM      has read-only relocations and a stack protector, and may lie anywhere
# Prints "exported: .." and the like for each thing found, then "bad: N".
set -euo pipefail
what=$1 library=$2
shift 2
[ -f "$library" ] || { echo "no such library: $library" >&2; exit 2; }

dynamic() {
  readelf -dW "$library" | sed -nE "s/.*\($1\).*\[(.*)\]/\1/p"
}

# Reads names, drops those given as arguments and prints the others behind a word.
report() {
  local word=$1 bad=0 name
  shift
  while read -r name; do
    case " $* " in *" $name "*) continue ;; esac
    echo "$word: $(c++filt "$name")"
    bad=$((bad + 1))
  done < <(LC_ALL=C sort)
  echo "bad: $bad"
  [ "$bad" -eq 0 ]
}

# Exported names but weak functions: which of an inline function's copies are kept is the compiler's choice. So is
# whether an abstract class has both entries of a constructor, which are told as one.
symbols() {
  nm -D --defined-only "$library" | awk '$2 != "W" { print $3 }' | sed 's/@.*//; s/C1E/C2E/' | LC_ALL=C sort -u
}

case "$what" in
  exports)
    names=$(nm -D --defined-only "$library" | awk '{print $NF}' | sed 's/@.*//')
    [ -n "$names" ] || { echo "$library exports nothing at all"; exit 1; }
    # Names, type information, tables, thunks, static variables of inline functions and guards of the namespace.
    own='^_Z(T[ISVTC]|T[chvn0-9_]+|GV)?Z?N[KVRO]*7TolmSDK'
    { grep -vE "$own" || true; } <<<"$names" | report exported
    ;;
  lists)
    diff --label "$1" --label "what $(basename "$library") exports" -u "$1" <(symbols)
    ;;
  symbols)
    symbols
    ;;
  references)
    ends='exit|_exit|_Exit|quick_exit|abort|__assert_fail|raise|kill|__stack_chk_fail_local'
    streams='_ZSt3cin|_ZSt4(cout|cerr|clog|wcin)|_ZSt5(wcout|wcerr|wclog)|stdin|stdout|stderr'
    prints='(__)?v?w?printf(_chk)?|puts|putchar|putwchar|perror|psignal'
    { nm -D --undefined-only "$library" | awk '{print $NF}' | sed 's/@.*//' |
      grep -xE "$ends|$streams|$prints" || true; } | report "refers to" "$@"
    ;;
  soname)
    name=$(dynamic SONAME)
    [ "$name" = "$1" ] || { echo "${name}, expected $1"; exit 1; }
    ;;
  needs)
    { dynamic NEEDED | grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|libpthread|ld-linux[^.]*)\.so\.[0-9]+$' || true; } |
      report needs "$@"
    ;;
  hardened)
    {
      readelf -lW "$library" | grep GNU_RELRO >/dev/null || echo "read-only relocations"
      readelf -dW "$library" | grep -E 'BIND_NOW|FLAGS.*NOW' >/dev/null || echo "binding at start"
      nm -D --undefined-only "$library" | grep __stack_chk_fail >/dev/null || echo "stack protector"
      readelf -hW "$library" | grep -E 'Type: +DYN' >/dev/null || echo "any place in memory"
    } | report missing
    ;;
  *)
    echo "no such check: $what" >&2
    exit 2
    ;;
esac
