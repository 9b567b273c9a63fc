#include "apps/tzorep/Ayuda.h"

#include <algorithm>
#include <cctype>
#include <map>

#include "renderer/template/Plantilla.h"

#ifndef TZ_VERSION
#define TZ_VERSION "0.0.0"
#endif

namespace paratzorep::cli {

namespace detail {
namespace {

constexpr const char* kUso =
    "Uso: tzorep [--home CARPETA] ORDEN [OPCIONES]\n"
    "     tzorep --version | --help | help [ORDEN]\n"
    "\n"
    "Órdenes:\n"
    "  db start | db stop | db status      el servidor MariaDB privado de la carpeta\n"
    "  db demo [--scale N] [--seed S]      crea la empresa de demostración\n"
    "  list [--json]                       los 46 reportes y cuáles están disponibles\n"
    "  show ENTRADA [--set C=V]... [--all] [--json]\n"
    "                                      los filtros que se pueden fijar en el reporte\n"
    "  print ENTRADA [--set C=V]... [--to screen|printer|file] [--type T] [--out RUTA]\n"
    "        [--printer NOMBRE] [--request-log ARCHIVO]\n"
    "                                      genera el reporte (en pantalla si no se indica)\n"
    "  press ENTRADA BOTON [--set C=V]...  oprime otro botón de la forma (cmdEnviar de\n"
    "                                      ADSClientes: envía por correo las hojas de saldos)\n"
    "  printers                            las impresoras a las que se puede enviar\n"
    "  templates list | import CARPETA | export CARPETA\n"
    "                                      las plantillas de los reportes\n"
    "  movenlinea crear | clientes | aplicar | recalcular ID | saldo CLAVE\n"
    "                                      los movimientos en línea con la base central\n"
    "  help [ORDEN]                        esta ayuda, o la de una orden\n"
    "\n"
    "ENTRADA es el nombre del reporte o su número en 'tzorep list' (BitacoraUsuarios o 6).\n"
    "Carpeta: --home, TZOREP_HOME o ~/.local/share/tzorep.\n"
    "Salida: 0 hecho, 1 error, 2 uso incorrecto; db status: 0 en marcha, 3 detenido.\n"
    "\n"
    "Ejemplos:\n"
    "  tzorep list\n"
    "  tzorep show BitacoraUsuarios\n"
    "  tzorep print 6 --set 'mkeFecha(0)=01/10/2026' --to file --out octubre.pdf\n"
    "\n"
    "Más sobre una orden: tzorep help ORDEN (o tzorep ORDEN --help).\n";

constexpr const char* kSet =
    "  --set C=V      fija el control C de la forma con el valor V, como lo haría el usuario,\n"
    "                 en el orden dado (los controles y sus valores: tzorep show ENTRADA):\n"
    "                   fechas dd/mm/aaaa             --set 'mkeFecha(0)=01/10/2026'\n"
    "                   casillas 0 o 1                --set 'chkAccion(0)=1'\n"
    "                   opciones 1                    --set 'optAccesos(1)=1'\n"
    "                   listas, su texto o #índice    --set 'cmbDato(0)=#2'\n"
    "                   listas de datos, clave o texto; cuadros de texto, el texto\n";

const std::map<std::string, std::string>& Textos() {
    static const std::map<std::string, std::string> textos = {
        {"db",
         "Uso: tzorep [--home CARPETA] db start | db stop | db status\n"
         "     tzorep [--home CARPETA] db demo [--scale N] [--seed S]\n"
         "\n"
         "El servidor MariaDB privado de la carpeta (sus datos, su socket y un puerto libre de\n"
         "127.0.0.1).\n"
         "  start          lo arranca (si ya está en marcha, no hace nada)\n"
         "  stop           lo detiene\n"
         "  status         dice si está en marcha (salida 0) o detenido (salida 3)\n"
         "  demo           (re)crea la empresa de demostración \"datos1\", \"generaltanzo\" y\n"
         "                 \"tanzoreportes\" con las plantillas, y escribe tzorep.ini\n"
         "    --scale N    tamaño de la empresa, de 1 a 1000 (por omisión 1)\n"
         "    --seed S     semilla de los datos (la misma semilla da los mismos datos)\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep db start\n"
         "  tzorep db demo --scale 10\n"
         "  tzorep --home /tmp/prueba db status\n"},
        {"list",
         "Uso: tzorep [--home CARPETA] list [--json]\n"
         "\n"
         "Los 46 reportes en el orden de la fachada: número, entrada, forma, opción del menú,\n"
         "si está disponible (su forma está completa y se puede imprimir) y el título que ve el\n"
         "usuario. La entrada o el número sirven de ENTRADA para show y print.\n"
         "  --json         una lista JSON: number, entry, form, option, available, title\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep list\n"
         "  tzorep list --json\n"},
        {"show",
         std::string("Uso: tzorep [--home CARPETA] show ENTRADA [--set C=V]... [--all] [--json]\n"
                     "\n"
                     "La forma del reporte después de cargarla y de fijar los controles: los\n"
                     "filtros que el usuario puede fijar, en el orden de la forma, cada uno con\n"
                     "su leyenda, su valor y los valores que admite.\n"
                     "ENTRADA es el nombre del reporte o su número en 'tzorep list'.\n"
                     "\n"
                     "Opciones:\n") +
             kSet +
             "  --all          todos los controles, también el marco de destino y los adornos\n"
             "  --json         en JSON, cada control con name, kind, caption, text, value,\n"
             "                 listIndex, boundText, items, enabled, visible y filter\n"
             "\n"
             "Ejemplos:\n"
             "  tzorep show BitacoraUsuarios\n"
             "  tzorep show 6 --set 'txtDato(0)=ANA'\n"
             "  tzorep show BitacoraUsuarios --json\n"},
        {"print",
         std::string(
             "Uso: tzorep [--home CARPETA] print ENTRADA [--set C=V]... [--to "
             "screen|printer|file]\n"
             "              [--type T] [--out RUTA] [--printer NOMBRE] [--request-log ARCHIVO]\n"
             "\n"
             "Abre la forma del reporte, fija sus controles como lo haría el usuario y lo genera.\n"
             "ENTRADA es el nombre del reporte o su número en 'tzorep list'.\n"
             "\n"
             "Opciones:\n") +
             kSet +
             "  --to screen    en pantalla (lo que se hace si no se indica --to): el reporte como\n"
             "                 texto, página por página; en una terminal pasa por $PAGER (o less)\n"
             "                 y se ajusta a su ancho cuando las columnas lo permiten\n"
             "  --to printer   a la impresora predeterminada, o a --printer NOMBRE\n"
             "                 (las impresoras: tzorep printers; \"pdfcreator\" guarda un PDF en "
             "la\n"
             "                 carpeta de los PDF)\n"
             "  --to file      a un archivo: --out RUTA y --type T (pdf, txt, rtf, doc, xls, csv,\n"
             "                 xlsx); sin --type, el de la extensión de RUTA. Con --out - los\n"
             "                 tipos de texto (csv, txt) van a la salida estándar\n"
             "  --request-log ARCHIVO\n"
             "                 agrega una línea JSON por cada solicitud de reporte\n"
             "\n"
             "Ejemplos:\n"
             "  tzorep print BitacoraUsuarios\n"
             "  tzorep print 6 --set 'mkeFecha(0)=01/10/2026' --set 'mkeFecha(1)=31/10/2026' \\\n"
             "         --to file --out octubre.pdf\n"
             "  tzorep print BitacoraUsuarios --set 'txtDato(0)=ANA' --to file --type csv --out -\n"
             "\n"
             "Salida: 0 el reporte se generó, 1 falló (el mensaje en la salida de errores como\n"
             "\"Título: texto\"), 2 uso incorrecto.\n"},
        {"press",
         std::string(
             "Uso: tzorep [--home CARPETA] press ENTRADA BOTON [--set C=V]... "
             "[--request-log ARCHIVO]\n"
             "\n"
             "Abre la forma del reporte, fija sus controles como lo haría el usuario y oprime\n"
             "el botón BOTON (un control cmd de la forma; los botones: tzorep show ENTRADA\n"
             "--all). cmdEnviar de ADSClientes genera la hoja de antigüedad de saldos de cada\n"
             "cliente con correo electrónico (ADS-CLAVE.pdf en la carpeta de los PDF) y se la\n"
             "envía, con los datos del correo de la sección [kvtz5] de kvtz5.ini:\n"
             "edcSMTP, edcCorreoSaliente, edcPuertoSalida (25; 465 con SSL), edcSSL (1 SSL,\n"
             "STARTTLS en un puerto distinto de 465), edcAutenticacion (1: con edcUsuario y\n"
             "edcPassword), edcAutenticacionPOP y edcSMTPPOP3 (POP antes de SMTP), DeEquipo\n"
             "(el nombre del remitente) y EnviarCorreos (0 apaga el envío en el equipo).\n"
             "\n"
             "Opciones:\n") +
             kSet +
             "  --request-log ARCHIVO\n"
             "                 agrega una línea JSON por cada solicitud de reporte\n"
             "\n"
             "Ejemplos:\n"
             "  tzorep press ADSClientes cmdEnviar\n"
             "  tzorep press ADSClientes cmdEnviar --set 'txtDato(0)=C00001' --set "
             "'txtDato(1)=C00050'\n"
             "\n"
             "Salida: 0 hecho, 1 falló (el mensaje en la salida de errores como \"Título: "
             "texto\"),\n"
             "2 uso incorrecto (un botón que la forma no tiene).\n"},
        {"printers",
         "Uso: tzorep [--home CARPETA] printers\n"
         "\n"
         "Las impresoras a las que print --to printer --printer NOMBRE puede enviar: las del\n"
         "servidor de impresión (CUPS), la predeterminada marcada con *, y \"pdfcreator\", que\n"
         "guarda el reporte como PDF en la carpeta de los PDF.\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep printers\n"
         "  tzorep print BitacoraUsuarios --to printer --printer pdfcreator\n"},
        {"templates",
         "Uso: tzorep [--home CARPETA] templates list | import CARPETA | export CARPETA\n"
         "\n"
         "Las plantillas de los reportes guardadas en la base de datos de la empresa\n"
         "(reportesbin).\n"
         "  list              las plantillas guardadas\n"
         "  import CARPETA    guarda los .rpt de la carpeta (los reemplaza si ya estaban)\n"
         "  export CARPETA    escribe las plantillas guardadas en la carpeta\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep templates list\n"
         "  tzorep templates import templates\n"
         "  tzorep templates export /tmp/plantillas\n"},
        {"movenlinea",
         "Uso: tzorep [--home CARPETA] movenlinea crear | clientes | aplicar | recalcular ID |\n"
         "                                        saldo CLAVE\n"
         "\n"
         "El motor de movimientos en línea: lleva los clientes, documentos y pagos de la empresa\n"
         "a la base de datos central que comparten las empresas de la cadena, y aplica aquí los\n"
         "pagos que otras empresas recibieron por documentos de esta.\n"
         "  crear            prepara las tablas de la base central (y la base, si falta)\n"
         "  clientes         copia a la base central los clientes que aún no tiene\n"
         "  aplicar          aplica los pagos pendientes de la base central (cada uno una vez)\n"
         "  recalcular ID    los saldos del estado de cuenta desde el movimiento ID\n"
         "  saldo CLAVE      iguala saldoscli al saldo del cliente\n"
         "\n"
         "El servidor central está en kvtz5.ini ($XDG_CONFIG_HOME/kvtz5/, o ~/.config/kvtz5/),\n"
         "sección [kvtz5]: BasesDD=1, SELservidor, SELpuerto, SELbaseDeDatos, SELusuario y\n"
         "SELpassword (que solo su dueño pueda leer el archivo). La clave de la empresa es\n"
         "ClaveEmpresa en la sección [Iniciales] de tzorep.ini.\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep movenlinea aplicar\n"
         "  tzorep movenlinea recalcular 1520\n"
         "  tzorep movenlinea saldo C00001\n"},
        {"help",
         "Uso: tzorep help [ORDEN]\n"
         "\n"
         "Sin ORDEN, el resumen de las órdenes; con ella, su ayuda (lo mismo que\n"
         "tzorep ORDEN --help).\n"
         "\n"
         "Ejemplos:\n"
         "  tzorep help\n"
         "  tzorep help print\n"},
    };
    return textos;
}

std::string Minusculas(const std::string& s) {
    std::string r = s;
    for (char& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}

}  // namespace

std::size_t Distancia(const std::string& a, const std::string& b) {
    // Optimal string alignment over bytes; the words compared are ASCII names.
    const std::size_t n = a.size(), m = b.size();
    std::vector<std::vector<std::size_t>> d(n + 1, std::vector<std::size_t>(m + 1));
    for (std::size_t i = 0; i <= n; ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= m; ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= n; ++i)
        for (std::size_t j = 1; j <= m; ++j) {
            const std::size_t costo = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + costo});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[n][m];
}

}  // namespace detail

std::string Version() {
    return std::string("tzorep ") + TZ_VERSION + " (ParaTZOrep para Linux; plantillas versión " +
           std::to_string(renderer::kVersionPlantilla) + ")";
}

const char* UsoGeneral() {
    return detail::kUso;
}

const std::vector<std::string>& Ordenes() {
    static const std::vector<std::string> ordenes = {
        "db", "list", "show", "print", "press", "printers", "templates", "movenlinea", "help"};
    return ordenes;
}

bool AyudaDe(const std::string& orden, std::ostream& salida) {
    const auto& textos = detail::Textos();
    auto it = textos.find(orden);
    if (it == textos.end()) return false;
    salida << it->second;
    return true;
}

bool PideAyuda(const std::vector<std::string>& args) {
    return std::any_of(args.begin(), args.end(),
                       [](const std::string& a) { return a == "--help" || a == "-h"; });
}

std::string Parecida(const std::string& palabra, const std::vector<std::string>& conocidas) {
    const std::string buscada = detail::Minusculas(palabra);
    if (buscada.empty()) return {};
    std::string mejor;
    std::size_t mejorDistancia = std::string::npos;
    int empiezan = 0;
    std::string prefijo;
    for (const auto& c : conocidas) {
        const std::string candidata = detail::Minusculas(c);
        const std::size_t d = detail::Distancia(buscada, candidata);
        if (d < mejorDistancia) {
            mejorDistancia = d;
            mejor = c;
        }
        if (buscada.size() >= 3 && candidata.rfind(buscada, 0) == 0) {
            ++empiezan;
            prefijo = c;
        }
    }
    const std::size_t tolerada = buscada.size() <= 4 ? 1 : buscada.size() <= 8 ? 2 : 3;
    if (mejorDistancia <= tolerada) return mejor;
    return empiezan == 1 ? prefijo : std::string();
}

std::string QuisoDecir(const std::string& palabra, const std::vector<std::string>& conocidas) {
    const std::string p = Parecida(palabra, conocidas);
    return p.empty() ? std::string() : " ¿Quiso decir '" + p + "'?";
}

}  // namespace paratzorep::cli
