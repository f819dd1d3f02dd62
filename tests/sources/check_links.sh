#!/usr/bin/env bash
# No document points to what is gone: check_links.sh ROOT
#
# Looks at relative links, at links to headings, and at file names in backticks that begin with a folder of ROOT.
set -euo pipefail
cd "$1"

bad=0
complain() {
  echo "$1: $2"
  bad=$((bad + 1))
}

# The anchors of a document's headings: lower case, punctuation dropped, blanks turned into hyphens.
anchors() {
  awk '/^```/ { code = !code } !code && /^#+ / { sub(/^#+ +/, ""); print tolower($0) }' "$1" |
    sed -E 's/[^a-z0-9 _-]//g; s/ /-/g'
}

check_link() {
  local document=$1 link=$2 path anchor target
  case "$link" in *://* | mailto:*) return ;; esac
  path=${link%%#*}
  anchor=
  case "$link" in *'#'*) anchor=${link#*#} ;; esac
  target=$document
  [ -z "$path" ] || target=$(dirname "$document")/$path
  if [ ! -e "$target" ]; then
    complain "$document" "no file $link"
  elif [ -n "$anchor" ] && ! anchors "$target" | grep -qxF "$anchor"; then
    complain "$document" "no heading $link"
  fi
}

while IFS= read -r document; do
  document=${document#./}
  # Links, outside of code.
  while IFS= read -r link; do check_link "$document" "$link"; done < <(
    awk '/^```/ { code = !code; next } !code' "$document" | sed -E 's/`[^`]*`//g' |
      grep -oE '\]\([^) ]+\)' | sed -E 's/^\]\((.*)\)$/\1/')
  # File names in backticks.
  while IFS= read -r name; do
    [ -d "${name%%/*}" ] || continue
    compgen -G "$name" >/dev/null || complain "$document" "no file \`$name\`"
  done < <(
    awk '/^```/ { code = !code; next } !code' "$document" |
      grep -oE '`[A-Za-z0-9_.*-]+/[A-Za-z0-9_./*-]*`' | tr -d '`')
done < <(find . \( -name build -o -name 'build-*' -o -name '.?*' -o -name 'faulty_*' \) -prune -o -name '*.md' -print | LC_ALL=C sort)

if [ "$bad" -gt 0 ]; then
  echo "$bad dead links"
  exit 1
fi
