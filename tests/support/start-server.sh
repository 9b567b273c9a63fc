#!/bin/sh
# Starts the test run's private server in a fresh home: tzorep HOME
exe="$1"; home="$2"
"$exe" --home "$home" db stop >/dev/null 2>&1 || true
rm -rf "$home"
exec "$exe" --home "$home" db start
