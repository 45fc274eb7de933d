#!/usr/bin/env bash
# Brings the translation files up to date with the texts in src/: new texts
# appear unfinished, texts no longer used are dropped. Fill in the new ones
# (Qt Linguist, or by hand in the .ts files), then run
#   ctest --test-dir build -R Language.TranslationsComplete
# Usage: tools/update-translations.sh
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)
for ts in resources/translations/oculix_*.ts; do
  "$lupdate" -silent -locations none -no-obsolete -extensions cpp,h src -ts "$ts"
done
