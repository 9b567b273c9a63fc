#!/bin/bash
# Data path benchmark, by hand: streams a selection of about a million rows with a
# pushed-down formula out of the demo company's warehouse history
# (datos1.historicoalmacen) through the renderer's data path (ODBC in keyset-paged
# blocks), beside the same SQL run by `mariadb --no-defaults --quick` into /dev/null,
# in one run; elapsed time and peak memory of each with /usr/bin/time -v.
#   bench/datos/correr.sh HOME_DEL_SERVIDOR
# The server of the tzorep home must be running with a demo company loaded
# (tzorep --home HOME db start; tzorep --home HOME db demo --scale N). The warehouse
# history has about 74,000 rows per unit of scale: scale 14 gives just over a million.
# BLOQUES (rows per block, default "20000 50000") and ORDEN (sort field, default
# "+{historicoalmacen.Fecha}") can be set in the environment.
set -euo pipefail
home=${1:?home folder of a running private server}
src=$(cd "$(dirname "$0")/../.." && pwd)
out=${TMPDIR:-/tmp}/bench-datos
mkdir -p "$out"

# Connection data from the server's own file: port, socket and application user.
conf="$home/servidor.conf"
port=$(sed -n 's/^puerto=//p' "$conf")
user=$(sed -n 's/^usuario=//p' "$conf")
pass=$(sed -n 's/^password=//p' "$conf")
sock=$(sed -n 's/^socket=//p' "$conf")
cli=(mariadb --no-defaults -S "$sock" -u"$user" -p"$pass")

echo "== building (optimised) =="
g++ -std=c++20 -O2 -DNDEBUG -I"$src" "$src/bench/datos/BenchDatos.cpp" "$src/renderer/Valor.cpp" \
    "$src"/renderer/formula/*.cpp "$src"/renderer/data/*.cpp -lodbc -lsqlite3 -o "$out/bench_datos"

total=$("${cli[@]}" -N -e "SELECT COUNT(*) FROM datos1.historicoalmacen")
echo "== datos1.historicoalmacen: $total rows =="

printf '[myodbc3-test]\nDriver=/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so\nSERVER=127.0.0.1\nPORT=%s\n' \
    "$port" > "$out/odbc.ini"
connect="DSN=myodbc3-test;SERVER=127.0.0.1;DB=datos1;UID=$user;PWD=$pass"
campos="Id,Producto,Fecha,Movimiento,Documento,Sucursal,Cantidad,Costo,Usuario"
formula="{historicoalmacen.Fecha} >= Date(2024,11,1) and not ('CANCELACION' in {historicoalmacen.Movimiento}) and {historicoalmacen.Cantidad} <> 0"
orden=${ORDEN:-+{historicoalmacen.Fecha\}}

# The client's first read warms the server's buffer pool, so that neither side pays for it.
"${cli[@]}" --quick -N -e "SELECT * FROM datos1.historicoalmacen" > /dev/null

sql=""
for bloque in ${BLOQUES:-20000 50000}; do
    echo "== renderer data path, blocks of $bloque =="
    ODBCINI="$out/odbc.ini" /usr/bin/time -v "$out/bench_datos" "$connect" datos1.historicoalmacen \
        "$campos" "$formula" "$bloque" "$orden" > "$out/renderer-$bloque.txt" \
        2> "$out/time-renderer-$bloque.txt"
    grep -v "^primer SQL" "$out/renderer-$bloque.txt"
    grep -E "Elapsed|Maximum resident" "$out/time-renderer-$bloque.txt"
    # The whole selection in one statement: the first block's, without its LIMIT.
    sql=$(sed -n 's/^primer SQL: //p' "$out/renderer-$bloque.txt" | sed 's/ LIMIT [0-9]*$//')
done

echo "== mariadb --quick, same SQL =="
echo "$sql"
/usr/bin/time -v "${cli[@]}" --quick -N datos1 -e "$sql" > /dev/null 2> "$out/time-mariadb.txt"
grep -E "Elapsed|Maximum resident" "$out/time-mariadb.txt"
