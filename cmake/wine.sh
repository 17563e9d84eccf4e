#!/usr/bin/env bash
# wine.sh PROGRAM [ARGUMENT...]: runs a Windows program under Wine, which has a home of its own in build/windows/wine.
# wine.sh --start: makes that home ready, and keeps its server until --stop; the first program otherwise waits for both.
# Whatever an earlier run has left there is ended.
# Its screen is as large as DISPLAY's then, whichever programs are given later; without DISPLAY 1024 x 768.
# wine.sh --stop: ends whatever still runs there.
set -euo pipefail
WINEPREFIX=$(cd "$(dirname "$0")/.." && pwd)/build/windows/wine
# Off: messages, and what Wine would install or start by itself (other runtimes, a browser, a debugger).
export WINEPREFIX WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml,winedbg.exe='
unset SDL_VIDEODRIVER  # this machine's, where a test sets it
wine=/usr/lib/wine/wine64
server=/usr/lib/wine/wineserver64
stop() { [ ! -d "$WINEPREFIX" ] || "$server" --kill --wait || true; }
case ${1:-} in
  --start)
    stop
    mkdir -p "$WINEPREFIX"
    "$server" --persistent
    "$wine" wineboot --init
    ;;
  --stop) stop ;;
  *) exec "$wine" "$@" ;;
esac
