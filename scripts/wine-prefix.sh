#!/usr/bin/env bash
# Creates the project's own Wine prefix once (never ~/.wine) and reuses it afterwards.
# Usage: wine-prefix.sh <prefix-dir>
set -euo pipefail
prefix=$1
mkdir -p "$(dirname "$prefix")"
export WINEPREFIX=$prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)

exec 9>"$prefix.lock"
flock 9
if [ ! -f "$prefix/.corvane-ready" ]; then
  echo "wine-prefix: creating $prefix" >&2
  "$wine" wineboot -i </dev/null >/dev/null 2>&1
  # GDI+ looks the product font up by name; WenQuanYi Micro Hei carries the same CJK coverage.
  "$wine" reg add 'HKCU\Software\Wine\Fonts\Replacements' /v 'Microsoft YaHei' /t REG_SZ /d 'WenQuanYi Micro Hei' /f </dev/null >/dev/null 2>&1
  wineserver -w
  touch "$prefix/.corvane-ready"
fi
