#!/usr/bin/env bash
# Installs the build into a temporary root and checks what a desktop reads there: the launcher
# entry and the AppStream metadata pass the freedesktop validators, the entry starts a program
# that was installed and handles quillbox:// links, and the icon it names is there as SVG and at every PNG size, each PNG as
# large as the folder it is in says.
# Usage: validate-install.sh BUILD_DIR APP_ID
set -euo pipefail
build_dir=$1
app_id=$2

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
DESTDIR=$root cmake --install "$build_dir" --prefix /usr >/dev/null
share=$root/usr/share
desktop=$share/applications/$app_id.desktop
metainfo=$share/metainfo/$app_id.metainfo.xml

failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# desktop-file-validate fails only on errors; a warning counts here too.
if ! report=$(desktop-file-validate "$desktop" 2>&1) || grep -q "warning:" <<<"$report"; then
    fail "desktop-file-validate $desktop: $report"
elif [ -n "$report" ]; then
    echo "$report"
fi
appstreamcli validate --no-net --explain "$metainfo" || fail "appstreamcli validate $metainfo"
grep -q "<launchable type=\"desktop-id\">$app_id.desktop</launchable>" "$metainfo" \
    || fail "the metadata does not launch $app_id.desktop"

# quillbox:// links open Quillbox, which takes them as its arguments.
grep -qx 'MimeType=x-scheme-handler/quillbox;' "$desktop" || fail "the entry does not handle quillbox:// links"
grep -qx 'Exec=quillbox %U' "$desktop" || fail "the entry's Exec does not take the links (%U)"

program=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$root/usr/bin/$program" ] || fail "Exec=$program is not installed in /usr/bin"

icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no scalable icon named $icon"
sizes=0
for dir in "$share"/icons/hicolor/*x*; do
    png=$dir/apps/$icon.png
    actual=$(python3 - "$png" <<'PY'
import struct, sys
head = open(sys.argv[1], "rb").read(24)
if head[:8] != b"\x89PNG\r\n\x1a\n":
    sys.exit("not a PNG")
print("%dx%d" % struct.unpack(">II", head[16:24]))
PY
    ) || { fail "$png is missing or not a PNG"; continue; }
    [ "$actual" = "${dir##*/}" ] || fail "$png is $actual, not ${dir##*/}"
    sizes=$((sizes + 1))
done
[ "$sizes" -ge 9 ] || fail "only $sizes PNG sizes of the icon are installed"

if [ "$failures" -gt 0 ]; then
    exit 1
fi
echo "the launcher entry, the metadata and $sizes icon sizes are valid"
