#!/usr/bin/env bash
# Builds the Debian package from a built tree, unpacks it into a scratch root
# with dpkg -x (no container here), checks the desktop files with the
# freedesktop and AppStream validators, and starts the unpacked program
# headless until it reports that it runs, then ends it as the desktop would.
# Usage: InstallTest.sh BUILD-DIR
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

(cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/pkg" >"$work/cpack.log" 2>&1) \
  || { cat "$work/cpack.log"; fail "cpack"; }
deb=$(ls "$work"/pkg/*.deb)
echo "package: $(basename "$deb")"
dpkg-deb --field "$deb" Package Version Depends | sed 's/^/  /'
dpkg-deb --field "$deb" Depends | grep -q 'libqt6widgets6' || fail "no shared-library dependencies"
# The engine's development files are a component of their own, not the program's.
! dpkg-deb --contents "$deb" | grep -E '/include/|\.a$|/cmake/' || fail "development files in the package"

root=$work/root
dpkg -x "$deb" "$root"
prog=$root/usr/lib/oculix
for f in "$prog/Oculix" "$prog/KorvalCam" "$prog/ZephraCam" "$prog/Oculix_EN.pdf" "$prog/Oculix_CN.pdf" \
         "$prog/KorvalCam_CN.pdf" "$prog/svrdata/40-1280_1024.svr" \
         "$root/usr/share/icons/hicolor/scalable/apps/org.oculix.Oculix.svg" \
         "$root/usr/share/icons/hicolor/48x48/apps/org.oculix.Oculix.png" \
         "$root/usr/share/icons/hicolor/256x256/apps/org.oculix.Oculix.png"; do
  [ -e "$f" ] || fail "missing ${f#"$root"}"
done
[ "$(readlink -f "$root/usr/bin/oculix")" = "$(readlink -f "$prog/Oculix")" ] || fail "usr/bin/oculix does not lead to the program"
head -c 5 "$prog/Oculix_CN.pdf" | grep -q '%PDF-' || fail "the Chinese manual is no PDF"

desktop-file-validate "$root/usr/share/applications/org.oculix.Oculix.desktop" || fail "desktop file"
appstreamcli validate --no-net --pedantic "$root/usr/share/metainfo/org.oculix.Oculix.metainfo.xml" || fail "metainfo"

# The unpacked program, in French, with a home of its own; its program folder
# holds a file named after the brand, so the data goes to the per-user folder.
home=$work/home
mkdir -p "$home"
chmod 700 "$home"
log=$work/oculix.log
env -i PATH=/usr/bin:/bin HOME="$home" XDG_RUNTIME_DIR="$home" LANG=fr_FR.UTF-8 \
  QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES=oculix.app.info=true OCULIX_DEMO_CAMERA=1 \
  ASAN_OPTIONS="${ASAN_OPTIONS:-}" LSAN_OPTIONS="${LSAN_OPTIONS:-}" \
  "$root/usr/bin/oculix" >"$log" 2>&1 &
pid=$!
for _ in $(seq 300); do
  grep -q "started in" "$log" && break
  kill -0 "$pid" 2>/dev/null || break
  sleep 0.1
done
grep -q 'started in "fr" with data folder "'"$home"'/.local/share/Oculix/"' "$log" \
  || { kill "$pid" 2>/dev/null; cat "$log"; fail "the unpacked program did not start in French with its per-user data folder"; }
kill -TERM "$pid"
rc=0
wait "$pid" || rc=$?
[ "$rc" -eq 0 ] || { cat "$log"; fail "exit code $rc after SIGTERM"; }
[ -f "$home/.local/share/Oculix/Setting.ini" ] || fail "no settings written"
grep -q "no translation" "$log" && { cat "$log"; fail "a translation was not found"; }
echo "PASS: installed, validated, started and ended"
