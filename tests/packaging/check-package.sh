#!/usr/bin/env bash
# Builds the Debian package from a build tree, unpacks it into a scratch root and checks what it
# holds and what it asks to have installed; its desktop entries must pass desktop-file-validate,
# and apt must be able to install it as `apt-get install ./orvanta_*.deb` (simulated, so the
# machine is left as it was).
set -euo pipefail
build="$1"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

(cd "$build" && cpack -G DEB -B "$scratch/out" >"$scratch/cpack.log" 2>&1) || { cat "$scratch/cpack.log"; exit 1; }
deb="$(ls "$scratch"/out/orvanta_*.deb)"
dpkg-deb -x "$deb" "$scratch/root"

fail() { echo "FAIL: $*"; exit 1; }
[ -x "$scratch/root/usr/bin/orvanta" ] || fail "no /usr/bin/orvanta"
entry="$scratch/root/usr/share/applications/orvanta.desktop"
[ -f "$entry" ] || fail "no desktop entry"
grep -qx 'Exec=orvanta' "$entry" || fail "desktop entry does not start orvanta"
grep -qx 'Icon=orvanta' "$entry" || fail "desktop entry names no icon"
[ -f "$scratch/root/usr/share/icons/hicolor/scalable/apps/orvanta.svg" ] || fail "no hicolor icon"
[ "$(dpkg-deb -f "$deb" Package)" = orvanta ] || fail "wrong package name"
depends="$(dpkg-deb -f "$deb" Depends)"
for library in libqt6widgets6 libpulse0 libxcb1; do
    grep -q "$library" <<<"$depends" || fail "Depends lacks $library: $depends"
done
while IFS= read -r -d '' desktop; do
    desktop-file-validate "$desktop" || fail "desktop-file-validate rejects ${desktop#"$scratch/root"}"
done < <(find "$scratch/root" -name '*.desktop' -print0)
(cd "$(dirname "$deb")" && apt-get install --simulate --no-install-recommends "./$(basename "$deb")" \
    >"$scratch/apt.log" 2>&1) || { cat "$scratch/apt.log"; fail "apt cannot install the package"; }
grep -q '^Inst orvanta ' "$scratch/apt.log" || { cat "$scratch/apt.log"; fail "apt would not install orvanta"; }
echo "package ok: $(basename "$deb"), Depends: $depends"
