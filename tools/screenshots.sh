#!/usr/bin/env bash
# Screenshots of Oculix as a user sees it, taken under Xvfb so anyone can
# repeat them. Usage: tools/screenshots.sh [build-dir] [out-dir]
#   build-dir  a configured build tree (default: build-run, made by ./dev run)
#   out-dir    where the PNGs go (default: docs/screenshots)
# Needs xvfb, xauth, imagemagick and xdotool. The program runs with the
# simulated camera and a data folder of its own, so no settings are touched.
set -euo pipefail

# The part that runs inside the virtual display: tools/screenshots.sh --inside PROGRAM OUT [args]
if [ "${1:-}" = --inside ]; then
  program=$2 out=$3
  shift 3
  "$program" --demo-camera "$@" &
  pid=$!
  win=""
  for _ in $(seq 100); do
    win=$(xdotool search --onlyvisible --class Oculix 2>/dev/null | head -1 || true)
    [ -n "$win" ] && break
    sleep 0.1
  done
  [ -n "$win" ] || { echo "Oculix did not show a window" >&2; kill "$pid"; exit 1; }
  sleep 2
  import -window root "$out/main-window.png"

  # A menu by its place in the bar: File is clicked open (without a window
  # manager nothing has the focus), then Right walks along the bar.
  open_menu() {
    xdotool mousemove 15 8 click 1
    sleep 0.4
    for _ in $(seq "$1"); do xdotool key Right; sleep 0.1; done
  }
  # The Edit menu, as a document without edits shows it.
  open_menu 1
  sleep 0.3
  import -window root "$out/edit-menu.png"
  xdotool key Escape Escape
  sleep 0.3

  # The Measure menu open, the highlight on "&Angle" so the status bar shows
  # its prompt.
  open_menu 3
  sleep 0.3
  xdotool key Down Down
  sleep 0.5
  import -window root "$out/measure-menu.png"
  xdotool key Escape Escape
  sleep 0.3

  # Shapes on the live video: "&Line" and "&Circle" from the Measure menu
  # (by their mnemonics), each dragged over the picture.
  measure() { open_menu 3; xdotool key "$1"; sleep 0.3; }
  drag() {
    xdotool mousemove "$1" "$2" mousedown 1
    sleep 0.1
    xdotool mousemove $((($1 + $3) / 2)) $((($2 + $4) / 2))
    sleep 0.1
    xdotool mousemove "$3" "$4"
    sleep 0.1
    xdotool mouseup 1
    sleep 0.3
  }
  measure l
  drag 500 300 900 300
  drag 500 350 700 600
  measure c
  drag 1000 500 1100 500
  sleep 1
  import -window root "$out/live-shapes.png"
  # The circle undone with Ctrl+Z: the Edit menu offers both directions.
  xdotool key ctrl+z
  sleep 0.5
  open_menu 1
  sleep 0.3
  import -window root "$out/edit-menu-after-undo.png"
  xdotool key Escape Escape
  sleep 0.3
  xdotool key ctrl+y
  sleep 0.3

  # The calibration dialog with its ruler, then the measure settings.
  measure n
  sleep 1
  import -window root "$out/calibration-dialog.png"
  measure n
  measure s
  sleep 1
  import -window root "$out/measure-settings.png"
  xdotool key Escape
  sleep 0.3

  # SIGTERM ends the program the orderly way; its exit status must be 0.
  kill -TERM "$pid"
  wait "$pid"
  exit
fi

# A picture document: the program opened with a picture on its command line.
if [ "${1:-}" = --inside-picture ]; then
  program=$2 out=$3 picture=$4
  "$program" "$picture" &
  pid=$!
  for _ in $(seq 100); do
    xdotool search --onlyvisible --class Oculix >/dev/null 2>&1 && break
    sleep 0.1
  done
  sleep 2
  xdotool mousemove 15 8 click 1
  sleep 0.4
  xdotool key Right Right Right
  sleep 0.3
  xdotool key c
  sleep 0.3
  xdotool mousemove 700 450 mousedown 1 mousemove 760 450 mousemove 820 450 mouseup 1
  sleep 1
  import -window root "$out/picture-document.png"

  # "&Open..." with the picture highlighted: its preview beside the list.
  xdotool key ctrl+o
  sleep 1
  xdotool type --delay 20 "$(dirname "$picture")/"
  xdotool key Return
  sleep 0.5
  xdotool type --delay 20 "$(basename "$picture")"
  sleep 1
  import -window root "$out/open-dialog.png"
  xdotool key Escape
  sleep 0.3
  kill -TERM "$pid"
  wait "$pid"
  exit
fi

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${1:-$ROOT/build-run}
OUT=${2:-$ROOT/docs/screenshots}
# Whatever follows the two folders goes to the program.
shift $(($# < 2 ? $# : 2))
for tool in xvfb-run import xdotool; do
  command -v "$tool" >/dev/null || { echo "missing $tool (apt-get install xvfb imagemagick xdotool)" >&2; exit 1; }
done
if [ ! -f "$BUILD/CMakeCache.txt" ]; then
  cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DOCULIX_BUILD_TESTS=OFF -DOCULIX_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$BUILD" --target Oculix
mkdir -p "$OUT"
DATA=$(mktemp -d)
trap 'rm -rf "$DATA"' EXIT


OCULIX_DATA_DIR="$DATA" XDG_CONFIG_HOME="$DATA/config" \
  xvfb-run -a -s "-screen 0 1600x1000x24" "$0" --inside "$BUILD/src/app/Oculix" "$OUT" "$@"
convert -size 900x640 plasma:fractal -seed 7 -blur 0x2 "$DATA/specimen.bmp" 2>/dev/null \
  || convert -size 900x640 gradient:navy-orange "$DATA/specimen.bmp"
OCULIX_DATA_DIR="$DATA" XDG_CONFIG_HOME="$DATA/config" \
  xvfb-run -a -s "-screen 0 1600x1000x24" "$0" --inside-picture "$BUILD/src/app/Oculix" "$OUT" "$DATA/specimen.bmp"
echo "screenshots in $OUT:"
ls -1 "$OUT"/*.png
