#!/usr/bin/env bash
# Runs every test through CTest under Wine on a private headless display.
set -euo pipefail
build=$1; jobs=${2:-2}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export CORVANE_WINEPREFIX=$(cd "$build" && pwd)/wineprefix
"$here/wine-prefix.sh" "$CORVANE_WINEPREFIX"
# Wine's desktop belongs to the display it first met: start afresh on this run's display.
WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true
stop_wine() { WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true; }
trap stop_wine EXIT
"$here/with-xvfb.sh" ctest --test-dir "$build" --output-on-failure -j "$jobs" --timeout 300
