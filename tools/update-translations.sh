#!/usr/bin/env bash
# Brings the translation files up to date with the texts in src/: new texts
# appear unfinished, texts no longer used are dropped. Fill in the new ones
# (Qt Linguist, by hand in the .ts files, or tools/fill-translations.py with
# a table), then run
#   ctest --test-dir build -R Language.TranslationsComplete
# Usage: tools/update-translations.sh
set -euo pipefail
cd "$(dirname "$0")/.."
tools/lupdate-src.sh . resources/translations/oculix_*.ts
