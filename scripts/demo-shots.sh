#!/usr/bin/env bash
# Photographs the bar in its plain host window at the widths, themes, zooms and client states the
# demo shows. Runs on a display set up by with-xvfb.sh; the demo has published the client state.
set -euo pipefail
build=$1; user=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export CORVANE_WINEPREFIX=$build/wineprefix
demo=$build/demo/Halvex
shots=$build/demo/screenshots
root='HKCU\Software\varnowe\Halvex'
run() { "$here/wine-run.sh" "$@"; }
rm -rf "$shots"; mkdir -p "$shots"

set_value() { run reg add "$root\\$user" /v "$1" /t REG_SZ /d "$2" /f >/dev/null 2>&1; }
no_value() { run reg delete "$root\\$user" /v "$1" /f >/dev/null 2>&1 || true; }

shoot() {  # name width zoom light|dark
  local name=$1 width=$2 zoom=$3 theme=$4
  local args=(--width="$width" --height=120 --x=0 --y=0 --zoom="$zoom" --seconds=4)
  [ "$theme" = dark ] && args+=(--dark)
  (cd "$demo/shell" && run ./bar-host.exe "${args[@]}" >/dev/null 2>&1) &
  local pid=$!
  sleep 2.5
  import -display "$DISPLAY" -window root -crop "$((width + 24))x170+0+0" +repage "$shots/$name.png" 2>/dev/null || true
  wait "$pid" || true
  echo "   $shots/$name.png"
}

for width in 600 900 1400; do
  for theme in light dark; do shoot "bar-$width-$theme-zoom1.0" "$width" 1.0 "$theme"; done
done
for zoom in 1.25 1.5 2.0; do
  for theme in light dark; do shoot "bar-1400-$theme-zoom$zoom" 1400 "$zoom" "$theme"; done
done
# 500 MiB left of 2 TiB: the warning colours.
set_value usedSpace 2198498967552
for theme in light dark; do shoot "bar-1400-$theme-zoom1.5-quota-warning" 1400 1.5 "$theme"; done
set_value usedSpace 879609302220
no_value advertisingId
shoot "bar-1400-light-zoom1.5-no-promotion" 1400 1.5 light
set_value advertisingId spring-2026
