#!/usr/bin/env bash
# wine.sh PROGRAM [ARGUMENT...]: runs a Windows program under Wine, whose prefix is build/windows/wine.
# wine.sh --start: ends all processes of an earlier run, prepares the prefix and starts its server, which runs until
# --stop. Without --start the first program waits for both. The screen size is fixed at this time for all programs:
# that of DISPLAY, or 1024 x 768 if DISPLAY is unset.
# wine.sh --stop: ends all processes of the prefix.
set -euo pipefail
WINEPREFIX=$(cd "$(dirname "$0")/.." && pwd)/build/windows/wine
# Switches off messages, and everything that Wine would install or start: other runtimes, a browser, a debugger.
export WINEPREFIX WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml,winedbg.exe='
unset SDL_VIDEODRIVER  # a test may have set it for this machine's SDL
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
