#!/bin/bash
# Begins or ends the use of a Wine prefix: prefix.sh begin|end <prefix folder>
# The environment is that of the tests (WineTests.cmake), with WINEPREFIX set to the same folder.
set -euo pipefail

action=$1
export WINEPREFIX=$2
wine=$(dirname "${BASH_SOURCE[0]}")/wine
server=/usr/lib/wine/wineserver
mark=$WINEPREFIX/made

# Background processes of Wine keep their output open, and the caller would wait for its end.
case $action in
  begin)
    if [ ! -e "$mark" ]; then
      rm -rf "$WINEPREFIX"
      mkdir -p "$WINEPREFIX"
      "$wine" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1
      # What the first start writes is on disk only when its server has ended.
      timeout 60 "$server" -w
      touch "$mark"
    fi
    # A held server makes each start quick, and spares it the rare failure of a cold one. A server
    # that already runs can't be held: it may be a straggler of the first start, which ends by
    # itself, or one that an interrupted run has held.
    for _ in 1 2 3; do
      if "$server" -p </dev/null >"$WINEPREFIX/wineserver.log" 2>&1; then
        held=yes
        break
      fi
      # A server that is told to end takes a moment, in which it still answers.
      timeout 15 "$server" -w || { "$server" -k && timeout 15 "$server" -w; } || true
    done
    [ "${held:-no}" = yes ] || { echo "prefix.sh: no server could be held"; exit 1; }
    timeout 60 "$wine" cmd /c exit </dev/null >"$WINEPREFIX/warm.log" 2>&1
    ;;
  end)
    "$server" -k || true
    ;;
  *)
    echo "prefix.sh: begin or end, not $action" >&2
    exit 1
    ;;
esac
