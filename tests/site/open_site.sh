#!/usr/bin/env bash
# Tries a site in a browser, with the accessibility rules of axe-core where npm can give them:
# open_site.sh CHECK SITE FOLDER-FOR-AXE
set -euo pipefail
axe="$3/node_modules/axe-core/axe.min.js"
if [ ! -f "$axe" ] && command -v npm >/dev/null; then
  mkdir -p "$3"
  timeout 60 npm install --no-save --no-audit --no-fund --prefix "$3" axe-core@4 >/dev/null 2>&1 || true
fi
exec "$1" "$2" --axe "$axe"
