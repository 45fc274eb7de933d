#!/usr/bin/env bash
# lupdate over src/ into the given .ts files. The command table marks its
# texts with one-argument macros (CMD, MENU, BAR) that lupdate cannot read,
# so it reads a copy in which they are spelt out.
# Usage: tools/lupdate-src.sh SOURCE-DIR TS-FILE...
set -euo pipefail
src=$1; shift
lupdate=$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
cp -r "$src/src" "$copy/src"
sed -i -E 's/\bCMD\("/QT_TRANSLATE_NOOP("Command", "/g; s/\bMENU\("/QT_TRANSLATE_NOOP("Menu", "/g; s/\bBAR\("/QT_TRANSLATE_NOOP("ToolBar", "/g' \
  "$copy/src/app/CommandTable.cpp"
for ts in "$@"; do
  "$lupdate" -silent -locations none -no-obsolete -extensions cpp,h "$copy/src" -ts "$ts" >/dev/null
done
