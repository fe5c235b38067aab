#!/usr/bin/env bash
# The demo: a fresh copy of the installation, a sample client state published in the registry,
# the add-in loaded by an Explorer-named host under Wine, and what the client received.
set -euo pipefail
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export CORVANE_WINEPREFIX=$build/wineprefix
"$here/wine-prefix.sh" "$CORVANE_WINEPREFIX"
# Wine's desktop belongs to the display it first met: start afresh on this run's display.
WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true
trap 'WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true' EXIT
run() { "$here/wine-run.sh" "$@"; }
winpath() { echo "Z:$1" | tr / '\\'; }

# A writable copy of the installation: the add-in renders pictures into its skin folder at run time.
demo=$build/demo/Halvex
rm -rf "$build/demo"
mkdir -p "$build/demo"
cp -r "$build/dist/Halvex" "$demo"
cp "$build/demo-host/explorer.exe" "$demo/shell/"
# The namespace view's host, one folder below the DLL it loads.
cp -r "$build/testbed/Halvex/shell/namespace-host" "$demo/shell/"

# The sample account: a sync folder and a picture inside the prefix's C: drive.
sample=$CORVANE_WINEPREFIX/drive_c/HalvexDemo
mkdir -p "$sample/同步盘"
# The client publishes the account picture at the size the bar shows it.
convert -size 22x22 xc:none -fill '#C239B3' -draw 'circle 10.5,10.5 10.5,0.5' -fill white -font /usr/share/fonts/truetype/wqy/wqy-microhei.ttc -gravity center -pointsize 12 -annotate +0+0 D "$sample/avatar.png"

user=demo_user_2026
root='HKCU\Software\varnowe\Halvex'
run reg delete "$root" /f >/dev/null 2>&1 || true
add() { run reg add "$1" /v "$2" /t REG_SZ /d "$3" /f >/dev/null 2>&1; }
add "$root" currentUser "$user"
add "$root\\$user" bLogin 1
add "$root\\$user" bOpenSync 1
add "$root\\$user" syncPath 'C:/HalvexDemo/同步盘/'
add "$root\\$user" userLogoPath 'C:\HalvexDemo\avatar.png'
add "$root\\$user" totalSpace 2199023255552
add "$root\\$user" usedSpace 879609302220
add "$root\\$user" advertisingId spring-2026
add "$root\\$user" advertisingTitle '开通会员，空间翻倍'
add "$root\\dpiZoom" 1234 1.25

echo "Sample client state published under HKEY_CURRENT_USER\\Software\\varnowe\\Halvex (user $user)."
record=$demo/halvex-record.txt
dpirecord=$demo/shell/scalemend-record.txt
rm -f "$record" "$dpirecord"
export HALVEX_STANDIN_RECORD=$(winpath "$record")
export SCALEMEND_STANDIN_RECORD=$(winpath "$dpirecord")

cd "$demo/shell"
"$here/wine-run.sh" ./explorer.exe 2>/dev/null | tr -d '\r'

# The stand-in client is started by ShellExecute and records itself; give it a moment.
for _ in $(seq 50); do [ -s "$record" ] && [ -s "$dpirecord" ] && break; sleep 0.1; done
echo "== What the stand-in Halvex.exe received ($record):"
sed 's/^/   /' "$record" 2>/dev/null || echo "   (nothing recorded)"
echo "== What the stand-in scalemend.exe received ($dpirecord):"
sed 's/^/   /' "$dpirecord" 2>/dev/null || echo "   (nothing recorded)"

logs=$demo/log/Corvane
echo "== Log files in $logs:"
for f in "$logs"/*.log; do
  if iconv -f UTF-16LE -t UTF-8 "$f" | grep -q 'DLL PROCESS ATTACH'; then
    echo "   $(basename "$f")   (Corvane.dll's own log)"
  else
    echo "   $(basename "$f")   (the client bridge code linked into the demo host)"
  fi
  iconv -f UTF-16LE -t UTF-8 "$f" | tr -d '\r' | sed 's/^/      /'
done

# The bar in a plain window (Explorer itself is not here), photographed on the headless display.
echo "== Screenshots of the bar:"
"$here/demo-shots.sh" "$build" "$user"
