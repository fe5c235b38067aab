#!/usr/bin/env bash
# Runs a command with a private headless X display, then tears the display down.
set -euo pipefail
if [ -n "${CORVANE_KEEP_DISPLAY:-}" ] && [ -n "${DISPLAY:-}" ]; then exec "$@"; fi
fifo=$(mktemp -u); mkfifo "$fifo"
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$fifo" >/dev/null 2>&1 &
xpid=$!
read -r num <"$fifo"; rm -f "$fifo"
export DISPLAY=":$num"
cleanup() { kill "$xpid" 2>/dev/null || true; wait "$xpid" 2>/dev/null || true; }
trap cleanup EXIT
set +e
"$@"
rc=$?
exit $rc
