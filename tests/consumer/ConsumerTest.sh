#!/usr/bin/env bash
# Installs the engine's development files from a built tree into a scratch
# prefix and builds tests/consumer against them with find_package(Oculix),
# then runs it: another project can use oculix_core without this source tree
# and without compiling the engine again.
# Usage: ConsumerTest.sh BUILD-DIR SOURCE-DIR
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

stage=$work/stage
cmake --install "$build" --component Development --prefix "$stage" >"$work/install.log" 2>&1 \
  || { cat "$work/install.log"; fail "install of the Development component"; }
[ -z "$(find "$stage" -name Oculix -type f)" ] || fail "the program came along with the development files"

consumer=$work/consumer
cmake -S "$source/tests/consumer" -B "$consumer" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_PREFIX_PATH="$stage" >"$work/configure.log" 2>&1 \
  || { cat "$work/configure.log"; fail "configure against the installed package"; }
grep -q "^Oculix_DIR:PATH=$stage/" "$consumer/CMakeCache.txt" \
  || fail "find_package(Oculix) did not find the staged package: $(grep ^Oculix_DIR "$consumer/CMakeCache.txt")"
grep -q -- "-isystem $stage/include/oculix" "$consumer/build.ninja" || fail "the staged headers are not used"
! grep -q "$source/src" "$consumer/build.ninja" || fail "the consumer reaches into the source tree"

cmake --build "$consumer" >"$work/build.log" 2>&1 || { cat "$work/build.log"; fail "build"; }
objects=$(grep -c "^build [^:]*\.o:" "$consumer/build.ninja")
[ "$objects" -eq 1 ] || fail "the consumer compiled $objects files, not its one main.cpp"
"$consumer/consumer"
