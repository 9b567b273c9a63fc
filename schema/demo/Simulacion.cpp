#include "schema/demo/Simulacion.h"

#include <algorithm>

#include "host/Interaccion.h"

namespace paratzorep::schema::detail {

const std::vector<std::string> kUsuarios = {"ADMIN", "ANA",   "M",      "MARIO",
                                            "CAJA1", "CAJA2", "LUPITA", "JUAN"};

namespace {

// Rows of a scale unit per day of history (259,300 over the two years at scale 1): what
// the progress shown while the company loads counts as the whole.
constexpr long long kFilasPorEscalaYDia = 355;
constexpr auto kPausaInforme = std::chrono::milliseconds(100);

// "1,234,567": thousands separated by commas.
std::string conMiles(long long n) {
    std::string s = std::to_string(n < 0 ? -n : n);
    for (int i = static_cast<int>(s.size()) - 3; i > 0; i -= 3)
        s.insert(static_cast<size_t>(i), 1, ',');
    return n < 0 ? "-" + s : s;
}

}  // namespace

Simulacion::Simulacion(Escritores& c, const OpcionesDemo& op, ConteoFilas& conteos)
    : c_(c), op_(op), conteos_(conteos), az_(op.semilla), s_(op.escala) {
    fin_ = fechaDeTexto(kFechaFinalDemo);
    inicio_ = op.dias > 0 ? fin_ - op.dias + 1 : fechaDeTexto(kFechaInicialDemo);
    agenda_.resize(static_cast<size_t>(fin_ - inicio_ + 1));
    filasEstimadas_ = kFilasPorEscalaYDia * s_ * (fin_ - inicio_ + 1);
    t0_ = std::chrono::steady_clock::now();
}

void Simulacion::avisa(std::string fase) {
    fase_ = std::move(fase);
    ultimoAviso_ = {};
    informa();
}

void Simulacion::informa(bool final) {
    const auto ahora = std::chrono::steady_clock::now();
    if (!final && ahora - ultimoAviso_ < kPausaInforme) return;
    ultimoAviso_ = ahora;
    // Half the work is composing the rows, half is the server writing them.
    const long long generadas = c_.filasGeneradas(), escritas = c_.filasEscritas();
    const long long estimadas = std::max(filasEstimadas_, generadas);
    const int porcentaje =
        final ? 100
              : static_cast<int>(std::min<long long>(99, (generadas + escritas) * 50 / estimadas));
    std::string texto = fase_ + ": " + conMiles(escritas) + " filas escritas";
    const double segundos = std::chrono::duration<double>(ahora - t0_).count();
    if (escritas > 0 && segundos > 0)
        texto += " a " + conMiles(static_cast<long long>(escritas / segundos)) + "/s";
    texto += ", " + conMiles(generadas) + " generadas";
    host::interaccion().Progreso(porcentaje, texto);
}

int Simulacion::cuantos(double media) {
    const double m = media * s_ * factorDia_;
    const long long k = static_cast<long long>(m);
    const long long extra = az_.probable(m - static_cast<double>(k)) ? 1 : 0;
    return static_cast<int>(az_.entre(0, 2 * k) + extra);
}

// What happens on a day, in a fixed order: the agenda's payments, cancellations and
// returns first, then each domain's own business.
void Simulacion::dia(int d) {
    eventos(d);
    const int dow = (d + 4) % 7;  // 0 Sunday
    factorDia_ = dow == 0 ? 0.35 : (dow == 6 ? 0.7 : 1.0);
    reposicion(d);
    ventasDelDia(d);
    cargosDelDia(d);
    comprasDelDia(d);
    cargoPorFlete(d);
    inventarioDelDia(d);
    gastosDelDia(d);
    bitacora(d);
}

void Simulacion::eventos(int d) {
    auto& hoy = agenda_[static_cast<size_t>(d - inicio_)];
    std::vector<Evento> pagos;
    for (const Evento& e : hoy) {
        switch (e.tipo) {
            case kPago:
            case kPagoCargo:
                pagos.push_back(e);
                break;
            case kCancelacion:
                cancelacion(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kDevolucion:
                devolucion(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kNotaCredito:
                notaCredito(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kPagoCompra: {
                Compra& cp = compras_[static_cast<size_t>(e.indice)];
                pagoCompra(d, cp, e.monto == 0 ? cp.saldo : std::min(e.monto, cp.saldo));
                break;
            }
            case kDevolucionProv:
                devolucionProv(d, compras_[static_cast<size_t>(e.indice)]);
                break;
        }
    }
    pagosDelDia(d, pagos);
    hoy.clear();
    hoy.shrink_to_fit();
}

void Simulacion::ejecuta() {
    abreVentas();
    abreCuentas();
    abreCompras();
    abreInventario();
    abreBitacora();

    avisa("Catálogos");
    catalogos();
    productos();
    clientesYproveedores();
    inventarioInicial();

    int mesAvisado = -1;
    for (int d = inicio_; d <= fin_; ++d) {
        int y, m, dd;
        civilDeDias(d, y, m, dd);
        if (m != mesAvisado) {
            mesAvisado = m;
            avisa("Movimientos de " + textoFecha(d).substr(0, 7));
        }
        dia(d);
        informa();
    }

    // What was kept in memory. Only the post-dated cheques (accounts) and the
    // alternate codes (catalogues) draw chance here, in that order.
    avisa("Documentos de venta");
    cierreVentas();
    avisa("Estados de cuenta y saldos");
    cierreCuentas();
    cierreCompras();
    avisa("Productos, clientes y proveedores");
    cierreCatalogos();
    cierreInventario();
    cierrePlantillas();
    cierreBitacora();
    avisa("Terminando de escribir");
    c_.termina();
    informa(true);
}

}  // namespace paratzorep::schema::detail
