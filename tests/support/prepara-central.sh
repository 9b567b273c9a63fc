#!/bin/sh
# An initialised data folder for the second (central) servers that some tests start: made once
# per run (started and stopped cleanly); each such test copies it into its own home, so that its
# server starts without initialising one. tzorep HOME
exe="$1"; home="$2"
"$exe" --home "$home" db stop >/dev/null 2>&1 || true
rm -rf "$home"
"$exe" --home "$home" db start >/dev/null && exec "$exe" --home "$home" db stop
