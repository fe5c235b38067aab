#!/usr/bin/env bash
# Runs a Windows program under Wine in the project's prefix; CTest uses it as the cross-compiling emulator.
# CORVANE_WINEPREFIX selects the prefix (the build tree's own, set by the generated wrapper).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${CORVANE_WINEPREFIX:?CORVANE_WINEPREFIX must name the project prefix}"
export WINEPREFIX=$CORVANE_WINEPREFIX WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)

"$here/wine-prefix.sh" "$WINEPREFIX"

# Wine's helper processes outlive a program and would hold CTest's output pipes open:
# keep the server and the services alive on their own, away from our streams. The lock makes a
# second program wait until the first has started both; the helpers must not inherit it.
exec 8>"$WINEPREFIX.server.lock"
flock 8
if wineserver -p </dev/null >/dev/null 2>&1 8>&-; then
  "$wine" cmd /c exit 0 </dev/null >/dev/null 2>&1 8>&- || true
fi
exec 8>&-
exec "$wine" "$@"
