#!/bin/bash
# Data path benchmark, by hand: streams a 1M-row selection with a pushed-down
# formula through the renderer (ODBC in keyset-paged blocks) beside the same SQL
# run by `mariadb --no-defaults --quick` into /dev/null; peak memory with
# /usr/bin/time -v.
#   bench/datos/correr.sh HOME_DEL_SERVIDOR [FILAS]
# The server of the tzorep home must be running (tzorep --home HOME db start).
set -euo pipefail
home=${1:?home folder of a running private server}
filas=${2:-1000000}
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

echo "== data: $filas rows in benchdatos.mov =="
"${cli[@]}" -e "CREATE DATABASE IF NOT EXISTS benchdatos"
if [ "$("${cli[@]}" -N -e "SELECT COUNT(*) FROM benchdatos.mov" 2>/dev/null || echo 0)" != "$filas" ]; then
    "${cli[@]}" benchdatos -e "
      DROP TABLE IF EXISTS mov;
      CREATE TABLE mov (Id INT PRIMARY KEY, Clave VARCHAR(10), Fecha DATE, Concepto VARCHAR(60),
                        Importe DECIMAL(12,2), IdMoneda INT, Usuario VARCHAR(20), KEY (Fecha))
                        DEFAULT CHARSET=utf8mb4;
      INSERT INTO mov SELECT seq, CONCAT('C', LPAD(seq MOD 5000, 4, '0')),
             DATE'2020-01-01' + INTERVAL (seq MOD 1800) DAY,
             CASE seq MOD 10 WHEN 0 THEN 'BONIFICACION POR CANCELACION F-1'
                             ELSE CONCAT('Cargo por factura ', seq) END,
             (seq MOD 100000) / 100, 1 + (seq MOD 20 = 0), 'USUARIO'
      FROM seq_1_to_$filas;"
fi

printf '[myodbc3-test]\nDriver=/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so\nSERVER=127.0.0.1\nPORT=%s\n' \
    "$port" > "$out/odbc.ini"
connect="DSN=myodbc3-test;SERVER=127.0.0.1;DB=benchdatos;UID=$user;PWD=$pass"
formula="{edoctacli.IdMoneda}=1 and {edoctacli.Fecha}>=Date(2020,1,1) and not ('BONIFICACION POR CANCELACION' in {edoctacli.Concepto})"
sql="SELECT \`edoctacli\`.\`Id\`, \`edoctacli\`.\`Clave\`, \`edoctacli\`.\`Fecha\`, \`edoctacli\`.\`Concepto\`, \`edoctacli\`.\`Importe\`, \`edoctacli\`.\`IdMoneda\`, \`edoctacli\`.\`Usuario\` FROM \`mov\` AS \`edoctacli\` WHERE \`edoctacli\`.\`IdMoneda\` = 1 AND \`edoctacli\`.\`Fecha\` >= DATE'2020-01-01' AND NOT (LOCATE(_utf8mb4'BONIFICACION POR CANCELACION' COLLATE utf8mb4_general_ci, \`edoctacli\`.\`Concepto\`) > 0) ORDER BY \`edoctacli\`.\`Id\` ASC"

for bloque in ${BLOQUES:-20000 50000}; do
    echo "== renderer data path, blocks of $bloque =="
    ODBCINI="$out/odbc.ini" /usr/bin/time -v "$out/bench_datos" "$connect" mov "$formula" "$bloque" \
        2> "$out/time-renderer-$bloque.txt"
    grep -E "Elapsed|Maximum resident" "$out/time-renderer-$bloque.txt"
done

echo "== mariadb --quick, same SQL =="
/usr/bin/time -v "${cli[@]}" --quick -N benchdatos -e "$sql" > /dev/null 2> "$out/time-mariadb.txt"
grep -E "Elapsed|Maximum resident" "$out/time-mariadb.txt"
