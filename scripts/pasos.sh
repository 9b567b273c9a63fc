# shellcheck shell=bash
# Steps of the set-up scripts, sourced by scripts/setup, scripts/demo and scripts/test from the
# repository's root. Each step prints one line with its time; what its commands print goes to a
# log file of its own, whose last lines and path are printed when the step fails, and the script
# then exits with the step's status.
#
#   paso NOMBRE TEXTO LOG COMANDO...   runs COMANDO; "NOMBRE: TEXTO (12.3 s)" when it succeeds
#   paso_inicia NOMBRE LOG / paso_bien TEXTO / paso_falla ESTADO   the same in parts
#
# COMANDO runs as the left side of `||`, where bash ignores `set -e`: a shell function given as
# COMANDO chains its commands with `&&`.

# The logs: build/logs under the checkout, or the temporary folder when that cannot be written.
PASOS_LOGS="$PWD/build/logs"
if ! mkdir -p "$PASOS_LOGS" 2>/dev/null || [ ! -w "$PASOS_LOGS" ]; then
    PASOS_LOGS="${TMPDIR:-/tmp}/tzorep-logs"
    mkdir -p "$PASOS_LOGS"
fi

# Microseconds since the epoch (EPOCHREALTIME's separator follows the locale).
_pasos_ahora() {
    local t=$EPOCHREALTIME
    echo "${t/[.,]/}"
}

# "0.4 s", "12.3 s", "3 min 05 s" since _paso_t0.
paso_tiempo() {
    local us=$(($(_pasos_ahora) - _paso_t0))
    local decimas=$(((us + 50000) / 100000))
    if [ "$decimas" -lt 600 ]; then
        echo "$((decimas / 10)).$((decimas % 10)) s"
    else
        local s=$(((us + 500000) / 1000000))
        printf '%d min %02d s\n' $((s / 60)) $((s % 60))
    fi
}

paso_inicia() {
    _paso_nombre=$1
    _paso_log=$2
    : >"$_paso_log"
    _paso_t0=$(_pasos_ahora)
}

paso_bien() {
    echo "$_paso_nombre: $1 ($(paso_tiempo))"
}

# Prints the failure, the log's last lines (or what the caller prints instead, given as the
# second argument: a command that reads the log) and its path; exits with ESTADO.
paso_falla() {
    local estado=${1:-1} muestra=${2:-}
    {
        echo "$_paso_nombre: falló ($(paso_tiempo))"
        if [ -n "$muestra" ]; then
            "$muestra" "$_paso_log"
        else
            tail -n 25 "$_paso_log" | sed 's/^/  /'
        fi
        echo "Registro completo: $_paso_log"
    } >&2
    exit "$estado"
}

paso() {
    local nombre=$1 texto=$2 log=$3 estado=0
    shift 3
    paso_inicia "$nombre" "$log"
    "$@" >>"$log" 2>&1 </dev/null || estado=$?
    [ "$estado" -eq 0 ] || paso_falla "$estado"
    paso_bien "$texto"
}

# Configures and builds a preset (further arguments go to `cmake --build`).
construye() {
    local preset=$1
    shift
    cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)" "$@"
}

compila() {
    local preset=$1
    shift
    paso "compilación ($preset)" "lista" "$PASOS_LOGS/compilacion-$preset.log" construye "$preset" "$@"
}
