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
winpath() { echo "Z:$1" | tr / '\\'; }
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

# The add-in inside the Explorer stand-in, on the sample sync folder. Registration is not built yet,
# so the demo writes the helper object's class and the key Explorer loads helper objects from.
clsid='{5B1E7C20-3F4A-4D2E-9C61-0A8D2E47B913}'
class_key="HKLM\\SOFTWARE\\Classes\\CLSID\\$clsid"
helper_key="HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\$clsid"
dll="Z:$(echo "$demo/shell/Corvane.dll" | tr / '\\')"
run reg add "$class_key\\InprocServer32" /ve /t REG_SZ /d "$dll" /f >/dev/null 2>&1
run reg add "$class_key\\InprocServer32" /v ThreadingModel /t REG_SZ /d Apartment /f >/dev/null 2>&1
run reg add "$helper_key" /f >/dev/null 2>&1
mkdir -p "$build/demo/explorer"
cp "$build/testbed/Halvex/explorer/explorer.exe" "$build/demo/explorer/"
# A script file carries the Chinese folder name whatever the shell's locale.
script=$build/demo/explorer/open-sync.txt
printf '\xEF\xBB\xBFopen C:\\HalvexDemo\\同步盘\r\nsleep 5000\r\nquit\r\n' > "$script"
theme_key='HKCU\Software\Microsoft\Windows\CurrentVersion\Themes\Personalize'
for theme in light dark; do
  value=1; [ "$theme" = dark ] && value=0
  run reg add "$theme_key" /v AppsUseLightTheme /t REG_DWORD /d $value /f >/dev/null 2>&1
  (cd "$build/demo/explorer" && run ./explorer.exe --width=1200 --height=520 \
      --script="Z:$(echo "$script" | tr / '\\')" >/dev/null 2>&1) &
  pid=$!
  sleep 4
  import -display "$DISPLAY" -window root -crop 1400x620+0+0 +repage "$shots/explorer-sync-folder-$theme.png" 2>/dev/null || true
  wait "$pid" || true
  echo "   $shots/explorer-sync-folder-$theme.png"
done
run reg delete "$theme_key" /v AppsUseLightTheme /f >/dev/null 2>&1 || true
run reg delete "$helper_key" /f >/dev/null 2>&1 || true
run reg delete "$class_key" /f >/dev/null 2>&1 || true

# The namespace folder's view with its login prompt, in the namespace host's plain frame: signed out
# and signed in without sync, at sizes that pick each layout, light and dark.
shoot_prompt() {  # name width height login open_sync light|dark
  local name=$1 width=$2 height=$3 login=$4 sync=$5 theme=$6
  set_value bLogin "$login"
  set_value bOpenSync "$sync"
  local value=1; [ "$theme" = dark ] && value=0
  run reg add "$theme_key" /v AppsUseLightTheme /t REG_DWORD /d $value /f >/dev/null 2>&1
  (cd "$demo/shell/namespace-host" && run ./explorer.exe --width="$width" --height="$height" --seconds=4 >/dev/null 2>&1) &
  local pid=$!
  sleep 3
  import -display "$DISPLAY" -window root -crop "${width}x${height}+0+0" +repage "$shots/$name.png" 2>/dev/null || true
  wait "$pid" || true
  echo "   $shots/$name.png"
}
# The bar and the prompt as a screen reader reads them (oleacc's client objects, one line per window).
tree=$shots/accessible-tree.txt
{
  echo "The bar at 1400 px, light, zoom 1.0 (bar-host):"
  (cd "$demo/shell" && run ./bar-host.exe --width=1400 --height=120 --x=0 --y=0 --zoom=1.0 --seconds=3 \
      --accessible-tree="$(winpath "$tree.bar")" >/dev/null 2>&1) || true
  cat "$tree.bar" 2>/dev/null || echo "(not written)"
  for state in "signed out:0:0" "signed in, sync off:1:0"; do
    IFS=: read -r label login sync <<<"$state"
    set_value bLogin "$login"
    set_value bOpenSync "$sync"
    echo
    echo "The login prompt, $label, 900 x 600, light (namespace host):"
    (cd "$demo/shell/namespace-host" && run ./explorer.exe --width=900 --height=600 --seconds=1 \
        --accessible-tree="$(winpath "$tree.prompt")" >/dev/null 2>&1) || true
    cat "$tree.prompt" 2>/dev/null || echo "(not written)"
  done
} > "$tree"
rm -f "$tree.bar" "$tree.prompt"
echo "   $tree"

for theme in light dark; do
  shoot_prompt "prompt-signed-out-900x600-$theme" 900 600 0 0 "$theme"
  shoot_prompt "prompt-no-sync-900x900-$theme" 900 900 1 0 "$theme"
  shoot_prompt "prompt-no-sync-873x900-$theme" 873 900 1 0 "$theme"
  shoot_prompt "prompt-no-sync-436x600-$theme" 436 600 1 0 "$theme"
done
shoot_prompt "prompt-signed-out-700x500-light" 700 500 0 0 light

# The namespace folder in Wine's own explorer.exe, registered by Wine's regsvr32 as an installer
# does. Wine's explorer takes no shell path on its command line, so shell-nav types the folder's
# parsing path into its address box, and closes its window when the shots are taken.
dll_win=$(winpath "$demo/shell/Corvane.dll")
shell_nav="$build/testbed/Halvex/tools/shell-nav.exe"
folder_path='::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a40}'
run regsvr32 /s "$dll_win" >/dev/null 2>&1
shoot_explorer() {  # name login open_sync light|dark seconds-after-navigating...
  local name=$1 login=$2 sync=$3 theme=$4; shift 4
  set_value bLogin "$login"
  set_value bOpenSync "$sync"
  local value=1; [ "$theme" = dark ] && value=0
  run reg add "$theme_key" /v AppsUseLightTheme /t REG_DWORD /d $value /f >/dev/null 2>&1
  # The demo runs from a folder holding the demo host's explorer.exe: name Wine's own in full.
  run 'C:\windows\explorer.exe' >/dev/null 2>&1 &
  local pid=$!
  # Large enough for the prompt's pictures, which a smaller view leaves out.
  run "$shell_nav" resize 1000 720 >/dev/null 2>&1 || true
  run "$shell_nav" navigate "$folder_path" >/dev/null 2>&1 || echo "   shell-nav could not navigate"
  local waited=0 at
  for at in "$@"; do
    sleep "$(awk "BEGIN { print $at - $waited }")"; waited=$at
    import -display "$DISPLAY" -window root -crop 1000x720+0+0 +repage "$shots/$name-${at}s.png" 2>/dev/null || true
    echo "   $shots/$name-${at}s.png"
  done
  if kill -0 "$pid" 2>/dev/null; then
    run "$shell_nav" close 5000 >/dev/null 2>&1 || echo "   explorer.exe did not close"
  else
    echo "   (explorer.exe had ended by itself)"
  fi
  wait "$pid" 2>/dev/null || true
}
for theme in light dark; do
  shoot_explorer "wine-explorer-signed-out-$theme" 0 0 "$theme" 2.5
  shoot_explorer "wine-explorer-no-sync-$theme" 1 0 "$theme" 2.5
done
# Signed in with sync on: the prompt steps aside and, at its first poll, sends the window on to the
# sync folder; the shots follow what Wine's explorer does with that.
shoot_explorer "wine-explorer-sync-on" 1 1 light 0.5 1.5 3
run regsvr32 /s /u "$dll_win" >/dev/null 2>&1
set_value bLogin 1
set_value bOpenSync 1
run reg delete "$theme_key" /v AppsUseLightTheme /f >/dev/null 2>&1 || true
