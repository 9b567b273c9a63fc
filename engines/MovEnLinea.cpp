#include "engines/MovEnLinea.h"

#include <cmath>
#include <optional>

#include "data/AbrirBaseDeDatos.h"
#include "engines/Cadena.h"
#include "engines/TextosMovEnLinea.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/Fechas.h"
#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Movimientos.h"
#include "toolkit/Texto.h"
#include "toolkit/Utilerias.h"

namespace paratzorep::engines {

namespace detail {

constexpr const char* kSeccionRegistro = "kvtz5";

std::string Registro(const std::string& clave) {
    return toolkit::detail::Recorta(toolkit::Utilerias().LeeRegistro(kSeccionRegistro, clave));
}

// A payment that leaves less than one whole unit closes the document.
bool Cierra(double saldo) {
    return std::floor(saldo) <= 0;
}

// The date and the short time ("hh:mm") of a server.
struct Ahora {
    std::string fecha;
    std::string hora;
};

Ahora AhoraEn(host::BaseDD& bd, const host::Conexion& cn) {
    host::Recordset rs;
    bd.RstExecutar(rs, cn, "SELECT CURDATE(), DATE_FORMAT(NOW(),'%H:%i')");
    if (rs.RecordCount() == 0) return {};
    rs.MoveFirst();
    return {rs.Campo(std::size_t{0}).Fecha(), rs.Campo(std::size_t{1}).Texto()};
}

std::int64_t Entero(host::BaseDD& bd, const host::Conexion& cn, const std::string& sql) {
    host::Recordset rs;
    bd.RstExecutar(rs, cn, sql);
    if (rs.RecordCount() == 0) return 0;
    rs.MoveFirst();
    return rs.Campo(std::size_t{0}).Entero();
}

double Doble(host::BaseDD& bd, const host::Conexion& cn, const std::string& sql) {
    host::Recordset rs;
    bd.RstExecutar(rs, cn, sql);
    if (rs.RecordCount() == 0) return 0;
    rs.MoveFirst();
    return rs.Campo(std::size_t{0}).Doble();
}

// configura (Dato, Valor) through the engine's own data-access object.
std::int64_t LeeFolioSEL(host::BaseDD& bd, const host::Conexion& cn) {
    host::Recordset rs;
    bd.RstExecutar(
        rs, cn, std::string("SELECT Valor FROM configura WHERE Dato='") + kFolioSEL + "' LIMIT 1");
    if (rs.RecordCount() == 0) return 0;
    rs.MoveFirst();
    return static_cast<std::int64_t>(toolkit::LibKRVM().kvVal(rs.Campo(std::size_t{0}).Texto()));
}

void GrabaFolioSEL(host::BaseDD& bd, const host::Conexion& cn, std::int64_t folio) {
    const std::string valor = std::to_string(folio);
    if (bd.ActualizaRegistro(cn, "configura", std::string("Dato='") + kFolioSEL + "'", {"Valor"},
                             {host::Valor(valor)}) == 0)
        bd.AgregaRegistro(cn, "configura", {"Dato", "Valor"},
                          {host::Valor(kFolioSEL), host::Valor(valor)});
}

// The current row of `cliente` (a company customer) into the central database: the row, its
// balance, an opening statement row when the key has none there, and its saldoscli row.
bool AgregaClienteEn(host::BaseDD& bd, const host::Conexion& central,
                     const host::Recordset& cliente, const std::string& claveEmpresa,
                     const std::string& usuario) {
    const std::string clave = cliente["Clave"].Texto();
    ExigeClave(clave, "del cliente");
    if (AbreTabla(bd, central, BuscaCliente(clave)).RecordCount() > 0) return false;

    Transaccion t(bd, central);
    host::Recordset nuevo = AbreTabla(bd, central, FuenteVacia("clientes"));
    bd.CopiaRecordset(nuevo, cliente, {"Id"});
    Pon(nuevo, "IdEmpresa", cliente["Id"]);
    Pon(nuevo, "ClaveEmpresa", claveEmpresa);
    bd.RstUpdate(nuevo);

    const double saldo = cliente["Saldo"].Doble();
    bd.Executar(central, FijaSaldoCliente(saldo, clave));
    if (AbreTabla(bd, central, FuentePrimerMovimiento(clave)).RecordCount() == 0) {
        const Ahora ahora = AhoraEn(bd, central);
        host::Recordset mov = AbreTabla(bd, central, FuenteVacia("edoctacli"));
        bd.AddNuevo(mov);
        // Not a document of the company: no folio; the customer's first central movement.
        Pon(mov, "Folio", 0);
        Pon(mov, "Foliote", 0);
        Pon(mov, "Movimiento", 1);
        Pon(mov, "Fecha", ahora.fecha);
        Pon(mov, "Hora", ahora.hora);
        Pon(mov, "FechaDePago", ahora.fecha);
        Pon(mov, "Clave", clave);
        Pon(mov, "CantidadCargo", saldo > 0 ? saldo : 0.0);
        Pon(mov, "CantidadPago", saldo < 0 ? -saldo : 0.0);
        Pon(mov, "Concepto", "SALDO INICIAL");
        Pon(mov, "Usuario", usuario);
        Pon(mov, "MontoTotal", std::fabs(saldo));
        Pon(mov, "MonedaMT", 1);
        Pon(mov, "IdMoneda", 1);
        Pon(mov, "Moneda", 1);
        Pon(mov, "SaldoAnterior", 0.0);
        Pon(mov, "SaldoActual", saldo);
        Pon(mov, "ClaveEmpresa", claveEmpresa);
        Pon(mov, "IdEmpresa", 0);
        bd.RstUpdate(mov);
    }
    if (AbreTabla(bd, central, FuenteSaldoscli(clave)).RecordCount() == 0)
        bd.AgregaRegistro(central, "saldoscli", {"Clave", "IdMoneda", "Saldo"},
                          {host::Valor(clave), host::Valor(1), host::Valor(saldo)});
    ActualizaSaldoEn(bd, central, clave);
    t.Confirma();
    return true;
}

enum class Aplicacion { Aplicado, YaEstaba };

// One central payment into the company, in one company transaction that first records the
// central row in pagossel (its primary key: a second run, or a run at the same time, finds it
// and applies nothing). The central row is marked afterwards by the caller.
Aplicacion AplicaUnPago(host::BaseDD& bd, const host::Conexion& empresa,
                        const host::Recordset& pago, bool porRenglon, double& importe) {
    const std::int64_t idSEL = pago["Id"].Entero();
    const std::string clave = pago["Clave"].Texto();
    ExigeClave(clave, "del cliente del pago central " + std::to_string(idSEL));
    const double cantidad = pago["CantidadPago"].Doble();
    const std::string tipo = toolkit::detail::Recorta(pago["Tipo"].Texto());
    const std::int64_t numero = pago["Numero"].Entero();
    const std::int32_t moneda = static_cast<std::int32_t>(pago["IdMoneda"].Entero());
    const std::string fecha = FechaDeMovimiento(pago["Fecha"]);
    const std::string hora = pago["Hora"].Texto();

    Transaccion t(bd, empresa);
    if (AbreTabla(bd, empresa, FuenteMarcaSEL(idSEL)).RecordCount() > 0)
        return Aplicacion::YaEstaba;
    try {
        bd.AgregaRegistro(
            empresa, "pagossel", {"IdSEL", "ClaveEmpresa", "Fecha"},
            {host::Valor(idSEL), pago["ClaveEmpresa"], host::Valor(AhoraEn(bd, empresa).fecha)});
    } catch (const host::ErrorDatos& e) {
        if (e.Codigo() == 1062) return Aplicacion::YaEstaba;  // applied by a run at the same time
        throw;
    }

    // The ledger row, then the document.
    bool cerrado = false;
    double saldoDoc = 0;
    host::Recordset cxc = AbreTabla(bd, empresa, FuenteCxCEmpresa(pago["IdCxCemp"].Entero()));
    if (cxc.RecordCount() > 0) {
        const double nuevo = cxc["Saldo"].Doble() - cantidad;
        cerrado = Cierra(nuevo);
        const std::int64_t idCxC = cxc["Id"].Entero();
        bd.Executar(empresa, cerrado ? BorraCxC(idCxC) : ActualizaSaldoCxC(nuevo, idCxC));
        saldoDoc = cerrado ? 0 : nuevo;
    }
    if (tipo == "F" || tipo == "R") {
        host::Recordset doc = AbreTabla(bd, empresa, FuenteDocumento(tipo == "R", numero));
        if (doc.RecordCount() > 0) {
            const double nuevo = doc["Saldo"].Doble() - cantidad;
            if (cxc.RecordCount() == 0) cerrado = Cierra(nuevo);
            saldoDoc = cerrado ? 0 : nuevo;
            bd.Executar(empresa, ActualizaDocumentoPagado(tipo == "R", saldoDoc, cantidad, numero));
        }
    }

    // The payment's statement row: the company's next folio, the customer's next movement.
    toolkit::Movimientos folios;
    folios.BaseDD = std::shared_ptr<host::BaseDD>(&bd, [](host::BaseDD*) {});
    const std::int64_t folio = folios.Foliar(empresa, "edoctacli", "Folio");
    const std::int64_t movimiento =
        Entero(bd, empresa,
               "SELECT IFNULL(MAX(Movimiento),0)+1 FROM edoctacli WHERE Clave=" +
                   session::LlenaXXX("'XXX'", clave));
    host::Recordset mov = AbreTabla(bd, empresa, FuenteVacia("edoctacli"));
    bd.AddNuevo(mov);
    Pon(mov, "Folio", folio);
    Pon(mov, "Foliote", folio);
    Pon(mov, "Movimiento", movimiento);
    Pon(mov, "Fecha", fecha);
    Pon(mov, "Hora", hora);
    Pon(mov, "FechaDePago", fecha);
    Pon(mov, "Clave", clave);
    Pon(mov, "CantidadCargo", 0.0);
    Pon(mov, "CantidadPago", cantidad);
    Pon(mov, "Concepto", pago["Concepto"]);
    Pon(mov, "Usuario", pago["Usuario"]);
    Pon(mov, "MontoTotal", pago["MontoTotal"]);
    Pon(mov, "MonedaMT", pago["MonedaMT"]);
    Pon(mov, "Concepto2", pago["Concepto2"]);
    Pon(mov, "Concepto3", pago["Concepto3"]);
    Pon(mov, "IdMoneda", moneda);
    Pon(mov, "Moneda", moneda);
    bd.RstUpdate(mov);
    const std::int64_t idMov = bd.LastId(empresa);

    host::Recordset anexo = AbreTabla(bd, empresa, FuenteAnexoVacio());
    bd.AddNuevo(anexo);
    Pon(anexo, "FolioDelPago", folio);
    Pon(anexo, "Tipo", tipo);
    if (tipo == "F") {
        Pon(anexo, "Factura", numero);
        Pon(anexo, "IdFactura", numero);
    } else if (tipo == "R") {
        Pon(anexo, "Remision", numero);
        Pon(anexo, "IdRemision", numero);
    } else {
        Pon(anexo, "Cargo", numero);
    }
    Pon(anexo, "Cliente", clave);
    Pon(anexo, "Cantidad", cantidad);
    Pon(anexo, "Moneda", moneda);
    Pon(anexo, "CantidadReal", cantidad);
    Pon(anexo, "Saldo", saldoDoc);
    Pon(anexo, "FechaReal", fecha);
    Pon(anexo, "Hora", hora);
    Pon(anexo, "FechaAplicacion", fecha);
    bd.RstUpdate(anexo);

    bd.Executar(empresa, ActualizaUltPago(fecha, clave));
    bd.Executar(empresa, CompletaMarcaSEL(idSEL, folio, idMov));
    Recalcula(bd, empresa, idMov, porRenglon);
    t.Confirma();
    importe += cantidad;
    return Aplicacion::Aplicado;
}

// What a data-access failure says, for the user, with what the engine was doing.
[[noreturn]] void Falla(const std::string& haciendo, const std::exception& e) {
    throw ErrorMovEnLinea(haciendo + ": " + e.what());
}

}  // namespace detail

using detail::AbreTabla;
using detail::Pon;

MovEnLinea::MovEnLinea() : Menu(session::sesion().objMenu), deBdD(session::sesion().BaseDD) {}

host::BaseDD& MovEnLinea::Base() const {
    if (!deBdD)
        throw ErrorMovEnLinea(
            "El motor de movimientos en línea no tiene objeto de acceso a datos "
            "(deBdD).");
    return *deBdD;
}

std::string MovEnLinea::ClaveEmpresa() const {
    const std::string clave = toolkit::detail::Recorta(session::sesion().ClaveEmpresa);
    if (clave.empty())
        throw ErrorMovEnLinea(
            "Falta la clave de la empresa (ClaveEmpresa de la sesión): la base "
            "de datos central distingue con ella los datos de cada empresa.");
    detail::ExigeClave(clave, "de la empresa");
    if (clave.size() > 15)
        throw ErrorMovEnLinea("La clave de la empresa '" + clave + "' tiene más de 15 caracteres.");
    return clave;
}

bool MovEnLinea::CompruebaSEL() const {
    const std::string v = toolkit::detail::Minusculas(detail::Registro("BasesDD"));
    if (v == "true" || v == "verdadero" || v == "si" || v == "sí") return true;
    return toolkit::LibKRVM().kvVal(v) != 0;
}

void MovEnLinea::LlenaObjetoMEL(host::DatosConecte& datos) const {
    datos.xServidor = detail::Registro("SELservidor");
    datos.xBaseDD = detail::Registro("SELbaseDeDatos");
    datos.xUsuario = detail::Registro("SELusuario");
    datos.xPassWord = detail::Registro("SELpassword");
    const double puerto = toolkit::LibKRVM().kvVal(detail::Registro("SELpuerto"));
    datos.xPuerto = puerto >= 1 && puerto <= 65535 ? static_cast<std::int32_t>(puerto) : 3306;
}

host::Conexion MovEnLinea::AbreCentral(bool crearBase, bool* creada) {
    host::DatosConecte d;
    LlenaObjetoMEL(d);
    if (d.xServidor.empty() || d.xBaseDD.empty())
        throw ErrorMovEnLinea(
            "Faltan los datos del servidor central: SELservidor y "
            "SELbaseDeDatos en la sección [kvtz5] de " +
            toolkit::ArchivoRegistro().string() + ".");
    for (unsigned char c : d.xBaseDD)
        if (!std::isalnum(c) && c != '_' && c != '$')
            throw ErrorMovEnLinea("El nombre de la base de datos central '" + d.xBaseDD +
                                  "' no es válido (SELbaseDeDatos).");
    host::BaseDD& bd = Base();
    // The central server's values only for this open: the object keeps its own.
    struct Valores {
        host::BaseDD& bd;
        std::string ruta, usuario, password;
        std::int32_t puerto;
        ~Valores() {
            bd.cRuta = ruta;
            bd.cUsuario = usuario;
            bd.cPassword = password;
            bd.cPuerto = puerto;
        }
    } originales{bd, bd.cRuta, bd.cUsuario, bd.cPassword, bd.cPuerto};
    bd.cRuta = d.xServidor;
    bd.cUsuario = d.xUsuario;
    bd.cPassword = d.xPassWord;
    bd.cPuerto = d.xPuerto;

    host::Conexion cn;
    if (bd.AbrirBdD(cn, d.xBaseDD)) return cn;
    std::string error = bd.UltimoError();
    if (crearBase && error.find("(código 1049)") != std::string::npos) {
        host::Conexion servidor;
        if (bd.AbrirBdD(servidor, "information_schema")) {
            bd.Executar(servidor, "CREATE DATABASE IF NOT EXISTS `" + d.xBaseDD + "`");
            bd.CierraBdD(servidor);
            if (creada) *creada = true;
            if (bd.AbrirBdD(cn, d.xBaseDD)) return cn;
            error = bd.UltimoError();
        } else {
            error = bd.UltimoError();
        }
    }
    throw ErrorMovEnLinea("No se pudo conectar con la base de datos central '" + d.xBaseDD +
                          "' del servidor '" + d.xServidor + "' (puerto " +
                          std::to_string(d.xPuerto) + "): " + error +
                          ". No se cambió nada en la base de datos de la empresa.");
}

host::Conexion MovEnLinea::AbreEmpresa() {
    host::BaseDD& bd = Base();
    host::Conexion cn;
    bool abierta = false;
    if (auto dc = session::sesion().DatosConecte)
        abierta = data::AbrirBaseDeDatos(bd, *dc, cn, bd.cMiBase);
    else
        abierta = bd.AbrirBdD(cn, bd.cMiBase);
    if (!abierta)
        throw ErrorMovEnLinea("No se pudo abrir la base de datos de la empresa '" + bd.cMiBase +
                              "': " + bd.UltimoError());
    return cn;
}

bool MovEnLinea::ActualizaSaldo(const std::string& clave) {
    detail::ExigeClave(clave, "del cliente");
    host::Conexion cn = AbreEmpresa();
    try {
        return detail::ActualizaSaldoEn(Base(), cn, clave);
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Actualizar saldoscli del cliente " + clave, e);
    }
}

ResumenRecalculo MovEnLinea::RecalculaEdoCta(std::int64_t id) {
    host::Conexion cn = AbreEmpresa();
    try {
        detail::Transaccion t(Base(), cn);
        ResumenRecalculo r = detail::Recalcula(Base(), cn, id, RecalculoPorRenglon);
        t.Confirma();
        return r;
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Recalcular el estado de cuenta desde el movimiento " + std::to_string(id),
                      e);
    }
}

bool MovEnLinea::AgregaCliente(const std::string& clave) {
    detail::ExigeClave(clave, "del cliente");
    if (!CompruebaSEL()) return false;
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral();
    host::Conexion empresa = AbreEmpresa();
    try {
        host::Recordset cliente = AbreTabla(Base(), empresa, detail::BuscaCliente(clave));
        if (cliente.RecordCount() == 0) return false;
        return detail::AgregaClienteEn(Base(), central, cliente, empresaClave,
                                       session::sesion().UserUsuario);
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Copiar el cliente " + clave + " a la base central", e);
    }
}

ResumenClientes MovEnLinea::AgregarClientesSEL() {
    ResumenClientes r;
    if (!CompruebaSEL()) {
        r.enUso = false;
        return r;
    }
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral();
    host::Conexion empresa = AbreEmpresa();
    std::string clave;
    try {
        host::Recordset clientes = AbreTabla(Base(), empresa, detail::FuenteClientesEmpresa());
        const int total = clientes.RecordCount();
        for (; !clientes.Eof(); clientes.MoveNext()) {
            ++r.leidos;
            clave = clientes["Clave"].Texto();
            if (!detail::ClaveAceptable(clave)) {
                r.omitidos.push_back(clave);
                continue;
            }
            if (detail::AgregaClienteEn(Base(), central, clientes, empresaClave,
                                        session::sesion().UserUsuario))
                ++r.agregados;
            else
                ++r.yaEstaban;
            session::BarraPorcentaje(r.leidos, total, "Clientes a la base central");
        }
        session::BarraPorcentaje(0, 0);
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Copiar el cliente " + clave + " a la base central (" +
                          std::to_string(r.agregados) + " copiados antes)",
                      e);
    }
    return r;
}

ResumenCrear MovEnLinea::CrearBdDR(bool vaciar) {
    ResumenCrear r;
    if (!CompruebaSEL()) {
        r.enUso = false;
        return r;
    }
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral(true, &r.baseCreada);
    host::Conexion empresa = AbreEmpresa();
    host::BaseDD& bd = Base();
    auto definicion = [&](const host::Conexion& cn, const std::string& tabla) {
        host::Recordset rs;
        bd.RstExecutar(rs, cn, detail::MuestraDefinicion(tabla));
        if (rs.RecordCount() == 0 || rs.FieldCount() < 2)
            throw host::ErrorDatos("Leer la definición de " + tabla,
                                   detail::MuestraDefinicion(tabla), 0, "sin filas");
        rs.MoveFirst();
        return rs.Campo(std::size_t{1}).Texto();
    };
    auto corre = [&](const std::string& sql) {
        bd.Executar(central, sql);
        r.sentencias.push_back(sql);
    };
    for (const std::string& tabla : detail::TablasCentrales()) {
        try {
            if (!bd.HayTabla(central, tabla)) {
                corre(detail::CreaSiFalta(definicion(empresa, tabla)));
                ++r.tablasCreadas;
            }
            // One clause at a time, the definition read again after each (a dropped column can
            // take the primary key with it).
            std::string anterior;
            for (;;) {
                const auto pendientes =
                    detail::ClausulasPendientes(tabla, definicion(central, tabla), empresaClave);
                if (pendientes.empty()) break;
                if (pendientes.front() == anterior)
                    throw ErrorMovEnLinea("La tabla " + tabla + " de la base central no admitió '" +
                                          detail::Altera(tabla, anterior) + "'.");
                anterior = pendientes.front();
                corre(detail::Altera(tabla, anterior));
            }
            if (vaciar) corre(detail::Vacia(tabla));
        } catch (const host::ErrorDatos& e) {
            detail::Falla("Preparar la tabla " + tabla + " de la base central", e);
        }
    }
    return r;
}

std::int64_t MovEnLinea::GeneraCxCyEdoCta(std::int64_t idEdoCta, std::int64_t idDocumento,
                                          bool esRemision, double saldo, double total,
                                          double puntos) {
    if (!CompruebaSEL()) return 0;
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral();
    host::Conexion empresa = AbreEmpresa();
    host::BaseDD& bd = Base();
    try {
        host::Recordset mov = AbreTabla(bd, empresa, detail::FuenteMovimiento(idEdoCta));
        if (mov.RecordCount() == 0) return 0;
        const std::string clave = mov["Clave"].Texto();
        detail::ExigeClave(clave, "del cliente del movimiento " + std::to_string(idEdoCta));
        host::Recordset doc;
        if (idDocumento != 0)
            doc = AbreTabla(bd, empresa, detail::FuenteDocumento(esRemision, idDocumento));
        const bool hayDoc = doc.Abierto() && doc.RecordCount() > 0;
        const std::string tipo = hayDoc ? (esRemision ? "R" : "F") : "C";
        const std::int64_t numeroEmpresa = hayDoc ? idDocumento : mov["Folio"].Entero();
        host::Recordset cxcEmpresa =
            AbreTabla(bd, empresa, detail::FuenteCxCDeDocumento(tipo, numeroEmpresa));

        detail::Transaccion t(bd, central);
        if (puntos != 0) bd.Executar(central, detail::SumaPuntos(puntos, clave));
        host::Recordset copia = AbreTabla(bd, central, detail::FuenteVacia("edoctacli"));
        bd.CopiaRecordset(copia, mov, {"Id"});
        Pon(copia, "IdEmpresa", idEdoCta);
        Pon(copia, "ClaveEmpresa", empresaClave);
        bd.RstUpdate(copia);
        const std::int64_t idCentral = bd.LastId(central);

        std::int64_t numeroCentral = idCentral;
        if (hayDoc) {
            host::Recordset copiaDoc =
                AbreTabla(bd, central, detail::FuenteVacia(esRemision ? "remisiones" : "facturas"));
            bd.CopiaRecordset(copiaDoc, doc, {"Id"});
            Pon(copiaDoc, "IdEmpresa", idDocumento);
            Pon(copiaDoc, "ClaveEmpresa", empresaClave);
            bd.RstUpdate(copiaDoc);
            numeroCentral = bd.LastId(central);
        }
        // Only what is left to collect opens a ledger row that other companies may settle.
        if (saldo > 0) {
            host::Recordset cxc = AbreTabla(bd, central, detail::FuenteVacia("cxc"));
            bd.AddNuevo(cxc);
            const std::string fecha = mov["Fecha"].Fecha();
            const std::string vence =
                hayDoc && !doc["Vence"].Fecha().empty() ? doc["Vence"].Fecha() : fecha;
            Pon(cxc, "Clave", clave);
            Pon(cxc, "Fecha", fecha);
            Pon(cxc, "Vencimiento", vence);
            Pon(cxc, "Tipo", tipo);
            Pon(cxc, "Numero", numeroCentral);
            Pon(cxc, "NumPago", 1);
            Pon(cxc, "Saldo", saldo);
            Pon(cxc, "Total", total);
            Pon(cxc, "IdMoneda", mov["IdMoneda"]);
            Pon(cxc, "ClaveEmpresa", empresaClave);
            Pon(cxc, "IdEmpresa", cxcEmpresa.RecordCount() > 0 ? cxcEmpresa["Id"].Entero() : 0);
            bd.RstUpdate(cxc);
        }
        detail::Recalcula(bd, central, idCentral, RecalculoPorRenglon);
        t.Confirma();
        return idCentral;
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Copiar el movimiento " + std::to_string(idEdoCta) + " a la base central", e);
    }
}

std::int64_t MovEnLinea::GrabaPago(const DatosPago& p) {
    detail::ExigeClave(p.clave, "del cliente");
    detail::ExigeClave(p.claveEmpresaDoc, "de la empresa del documento");
    if (!(p.cantidad > 0)) throw ErrorMovEnLinea("La cantidad del pago debe ser mayor que cero.");
    if (p.tipo != "F" && p.tipo != "R" && p.tipo != "C")
        throw ErrorMovEnLinea("El tipo de documento '" + p.tipo +
                              "' no es válido: F factura, R remisión o C cargo.");
    if (p.numero <= 0 || p.idCxC <= 0)
        throw ErrorMovEnLinea("Falta el documento que liquida el pago (número y renglón de cxc).");
    if (!p.fecha.empty() && !toolkit::LeeFecha(p.fecha))
        throw ErrorMovEnLinea("La fecha del pago '" + p.fecha + "' no es una fecha válida.");
    if (!CompruebaSEL())
        throw ErrorMovEnLinea(
            "La base de datos central no está en uso (BasesDD en la sección "
            "[kvtz5] de " +
            toolkit::ArchivoRegistro().string() + ").");
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral();
    host::BaseDD& bd = Base();
    try {
        host::Recordset cxc = AbreTabla(bd, central, detail::FuenteCxC(p.idCxC));
        if (cxc.RecordCount() == 0)
            throw ErrorMovEnLinea("El documento ya no tiene saldo en la base central (cxc " +
                                  std::to_string(p.idCxC) + "): no se grabó el pago.");
        if (!toolkit::detail::IgualesSinCaso(cxc["ClaveEmpresa"].Texto(), p.claveEmpresaDoc) ||
            !toolkit::detail::IgualesSinCaso(cxc["Clave"].Texto(), p.clave) ||
            toolkit::detail::Recorta(cxc["Tipo"].Texto()) != p.tipo)
            throw ErrorMovEnLinea("El renglón " + std::to_string(p.idCxC) +
                                  " de cxc de la base central no es del cliente " + p.clave +
                                  " ni del documento " + p.tipo + " de la empresa " +
                                  p.claveEmpresaDoc + ": no se grabó el pago.");
        host::Recordset doc = AbreTabla(
            bd, central, detail::FuenteDocumentoCentral(p.tipo, p.claveEmpresaDoc, p.numero));
        if (doc.RecordCount() == 0)
            throw ErrorMovEnLinea("No está en la base central el documento " + p.tipo + " " +
                                  std::to_string(p.numero) + " de la empresa " + p.claveEmpresaDoc +
                                  ": no se grabó el pago.");
        detail::Ahora ahora;
        if (p.fecha.empty() || p.hora.empty()) ahora = detail::AhoraEn(bd, central);
        const std::string fecha =
            p.fecha.empty() ? ahora.fecha : toolkit::TextoSQL(*toolkit::LeeFecha(p.fecha));
        const std::string hora = p.hora.empty() ? ahora.hora : p.hora;

        detail::Transaccion t(bd, central);
        // The balances first, read again under a lock (another store may be paying too); the
        // payment row last, so that it becomes visible to its owner together with them.
        const double saldo = detail::Doble(
            bd, central,
            "SELECT Saldo FROM cxc WHERE Id=" + std::to_string(p.idCxC) + " FOR UPDATE");
        const double nuevo = saldo - p.cantidad;
        const bool cerrado = detail::Cierra(nuevo);
        bd.Executar(central, cerrado ? detail::BorraCxC(p.idCxC)
                                     : detail::ActualizaSaldoCxC(nuevo, p.idCxC));
        if (p.tipo != "C") {
            const bool esRemision = p.tipo == "R";
            const std::int64_t idDoc = doc["Id"].Entero();
            const double saldoDoc = detail::Doble(
                bd, central,
                std::string("SELECT Saldo FROM ") + (esRemision ? "remisiones" : "facturas") +
                    " WHERE Id=" + std::to_string(idDoc) + " FOR UPDATE");
            bd.Executar(central, detail::ActualizaSaldoDocumento(
                                     esRemision, cerrado ? 0.0 : saldoDoc - p.cantidad, idDoc));
        }
        host::Recordset mov = AbreTabla(bd, central, detail::FuenteVacia("edoctacli"));
        bd.AddNuevo(mov);
        Pon(mov, "Fecha", fecha);
        Pon(mov, "Hora", hora);
        Pon(mov, "FechaDePago", fecha);
        Pon(mov, "Clave", p.clave);
        Pon(mov, "CantidadCargo", 0.0);
        Pon(mov, "CantidadPago", p.cantidad);
        Pon(mov, "Concepto", p.concepto);
        Pon(mov, "Usuario", p.usuario.empty() ? session::sesion().UserUsuario : p.usuario);
        Pon(mov, "MontoTotal", p.montoTotal != 0 ? p.montoTotal : p.cantidad);
        Pon(mov, "Concepto2", p.concepto2);
        Pon(mov, "Concepto3", p.concepto3);
        Pon(mov, "IdMoneda", cxc["IdMoneda"]);
        Pon(mov, "Moneda", cxc["IdMoneda"]);
        Pon(mov, "MonedaMT", cxc["IdMoneda"]);
        Pon(mov, "ClaveEmpresa", empresaClave);
        Pon(mov, "IdEmpresa", p.idEmpresa);
        Pon(mov, "Clave2Empresa", cxc["ClaveEmpresa"]);
        Pon(mov, "Tipo", p.tipo);
        Pon(mov, "Numero", p.numero);
        Pon(mov, "IdCxCemp", cxc["IdEmpresa"]);
        bd.RstUpdate(mov);
        const std::int64_t id = bd.LastId(central);
        detail::Recalcula(bd, central, id, RecalculoPorRenglon);
        t.Confirma();
        return id;
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Grabar el pago de " + p.clave + " en la base central", e);
    }
}

ResumenPagos MovEnLinea::AplicaPagosPendientes() {
    ResumenPagos r;
    if (!CompruebaSEL()) {
        r.enUso = false;
        return r;
    }
    const std::string empresaClave = ClaveEmpresa();
    host::Conexion central = AbreCentral();
    host::Conexion empresa = AbreEmpresa();
    host::BaseDD& bd = Base();
    std::int64_t actual = 0;
    try {
        r.folioSEL = detail::LeeFolioSEL(bd, empresa);
        host::Recordset pagos =
            AbreTabla(bd, central, detail::FuentePagosPendientes(empresaClave, r.folioSEL));
        r.pendientes = pagos.RecordCount();
        std::int64_t ultimo = r.folioSEL;
        int hechos = 0;
        for (; !pagos.Eof(); pagos.MoveNext()) {
            actual = pagos["Id"].Entero();
            const auto a = detail::AplicaUnPago(bd, empresa, pagos, RecalculoPorRenglon, r.importe);
            a == detail::Aplicacion::Aplicado ? ++r.aplicados : ++r.yaAplicados;
            ++hechos;
            if (AlAplicar) AlAplicar(actual, hechos, r.pendientes);
            session::BarraPorcentaje(hechos, r.pendientes, "Pagos de otras empresas");
            bd.Executar(central, detail::MarcaAplicado(actual));
            ultimo = actual;
        }
        session::BarraPorcentaje(0, 0);
        if (r.pendientes > 0) {
            detail::GrabaFolioSEL(bd, empresa, ultimo);
            r.folioSEL = ultimo;
        }
    } catch (const host::ErrorDatos& e) {
        detail::Falla("Aplicar el pago " + std::to_string(actual) + " de la base central (" +
                          std::to_string(r.aplicados) +
                          " aplicados en esta ejecución; otra ejecución aplica los que faltan sin "
                          "repetir ninguno)",
                      e);
    }
    return r;
}

}  // namespace paratzorep::engines
