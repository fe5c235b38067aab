#!/usr/bin/env bash
# Creates the project's own Wine prefix once (never ~/.wine) and reuses it afterwards.
# Usage: wine-prefix.sh <prefix-dir>
set -euo pipefail
prefix=$1
mkdir -p "$(dirname "$prefix")"
export WINEPREFIX=$prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)

# Bump when the settings below change, so existing prefixes take them up.
settings_version=3

exec 9>"$prefix.lock"
flock 9
if [ "$(cat "$prefix/.corvane-ready" 2>/dev/null)" != "$settings_version" ]; then
  echo "wine-prefix: preparing $prefix" >&2
  [ -f "$prefix/system.reg" ] || "$wine" wineboot -i </dev/null >/dev/null 2>&1
  reg() { "$wine" reg add "$@" /f </dev/null >/dev/null 2>&1; }
  # GDI+ looks the product font up by name; WenQuanYi Micro Hei carries the same CJK coverage.
  reg 'HKCU\Software\Wine\Fonts\Replacements' /v 'Microsoft YaHei' /t REG_SZ /d 'WenQuanYi Micro Hei'
  # Wine's own UI faces have no CJK letters: link them to WenQuanYi Micro Hei so that Explorer's
  # tree, address box and title show the folder "Halvex同步盘" in readable characters.
  for face in 'Tahoma' 'Tahoma Bold' 'MS Shell Dlg' 'MS Shell Dlg 2' 'Microsoft Sans Serif' 'Segoe UI'; do
    reg 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' /v "$face" /t REG_MULTI_SZ \
      /d 'wqy-microhei.ttc,WenQuanYi Micro Hei'
  done
  # Xvfb has no window manager: unmanaged windows are destroyed at once instead of after Wine's
  # two-second wait for one, and Wine draws their captions itself.
  reg 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N
  echo "$settings_version" > "$prefix/.corvane-ready"
fi
