#!/usr/bin/env bash
# Every text in src/ has a finished French and Chinese translation: lupdate
# gathers the texts into copies of the .ts files, and lrelease must then
# report nothing unfinished and nothing untranslated.
# Usage: CheckTranslations.sh SOURCE-DIR
set -euo pipefail
src=$1
bin=/usr/lib/qt6/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
for ts in "$src"/resources/translations/oculix_*.ts; do
  copy=$work/$(basename "$ts")
  cp "$ts" "$copy"
  "$src/tools/lupdate-src.sh" "$src" "$copy"
  report=$("$bin/lrelease" "$copy" -qm "$work/out.qm" 2>&1)
  echo "$(basename "$ts"): $(echo "$report" | tr '\n' ' ')"
  if ! echo "$report" | grep -q "(.* finished and 0 unfinished)" || echo "$report" | grep -q "untranslated"; then
    echo "  unfinished or missing texts (run tools/update-translations.sh and fill them in):"
    grep -B3 'type="unfinished"' "$copy" | grep -E '<source>' | head -40 | sed 's/^ */    /'
    status=1
  fi
done
exit $status
