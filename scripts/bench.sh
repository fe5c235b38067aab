#!/usr/bin/env bash
# Runs every benchmark program under Wine and prints its figures.
set -euo pipefail
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export CORVANE_WINEPREFIX=$build/wineprefix
"$here/wine-prefix.sh" "$CORVANE_WINEPREFIX"
# Wine's desktop belongs to the display it first met: start afresh on this run's display.
WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true
trap 'WINEPREFIX=$CORVANE_WINEPREFIX wineserver -k 2>/dev/null || true' EXIT
cmake --build "$build" --target corvane_bench -j 2 >/dev/null
benchdir=$build/testbed/Halvex/bench
run() { "$here/wine-run.sh" "$@" 2>/dev/null | tr -d '\r'; }
# Every figure goes to the terminal and to one file, from which the README's short table is refreshed.
figures=$build/bench-figures.txt
load=$(cut -d' ' -f1 /proc/loadavg)
all() {
  cd "$benchdir"
  run ./log_bench.exe
  run ./poll_bench.exe
  run ./explorer.exe 'Z:'"$(echo "$build/testbed/Halvex/shell/Corvane.dll" | tr / '\\')" trivial.dll 200
  # The bar renders into its module folder's skin, so its benchmark runs from beside the DLL; so does
  # the Explorer benchmark, which starts the DPI tool found there. Both take their default, shortened
  # soaks (a few minutes in all); their first arguments ask for the full ones.
  (cd "$build/testbed/Halvex/shell" && run ./bar_bench.exe)
  (cd "$build/testbed/Halvex/shell" && run ./explorer_bench.exe)
  # The namespace view's benchmark is an explorer.exe of its own one folder below the DLL, loading the
  # benchmark build beside the DLL; its launched drops start the Halvex.exe stand-in of the test bed.
  (cd "$build/testbed/Halvex/shell/namespace-bench" && run ./explorer.exe)
}
all | tee "$figures"
cpu=$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -1)
machine="$(date -u +%Y-%m-%d), $(nproc) cores ($cpu), $(. /etc/os-release && echo "$PRETTY_NAME"), $(wine --version 2>/dev/null), release build; load average $load when it began"
"$here/bench-table.py" "$figures" "$here/../README.md" "$machine" && echo "README.md: benchmark table refreshed from $figures"
