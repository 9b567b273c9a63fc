#!/bin/bash
# Render benchmark over a demo company, by hand: the warehouse history of datos1 read
# through the renderer's data path, laid out with three group levels and written to
# PDF, TXT and XLSX; peak memory with /usr/bin/time -v.
#   bench/render/demo.sh BENCH_RENDER HOME_DEL_SERVIDOR [CARPETA]
# BENCH_RENDER is the program of a release build with -DTZ_BUILD_BENCH=ON; the server of
# the tzorep home must be running with a demo company loaded (scale 14 gives just over a
# million rows).
set -euo pipefail
exe=${1:?bench_render program}
home=${2:?home folder of a running private server}
out=${3:-${TMPDIR:-/tmp}/tz-bench-render}
mkdir -p "$out"
conf="$home/servidor.conf"
port=$(sed -n 's/^puerto=//p' "$conf")
user=$(sed -n 's/^usuario=//p' "$conf")
pass=$(sed -n 's/^password=//p' "$conf")
printf '[myodbc3-test]\nDriver=/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so\nSERVER=127.0.0.1\nPORT=%s\n' \
    "$port" > "$out/odbc.ini"
connect="DSN=myodbc3-test;SERVER=127.0.0.1;DB=datos1;UID=$user;PWD=$pass"
formula=${SELECCION:-"{historicoalmacen.Fecha} >= Date(2024,11,1) and not ('CANCELACION' in {historicoalmacen.Movimiento}) and {historicoalmacen.Cantidad} <> 0"}
ODBCINI="$out/odbc.ini" /usr/bin/time -v "$exe" --demo "$connect" "$formula" "$out" 2> "$out/time.txt"
grep -E "Elapsed|Maximum resident|User time" "$out/time.txt"
