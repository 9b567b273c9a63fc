#include "reports/sales/RepAdmUtilidad.h"

#include <cctype>

#include "data/CargaLocal.h"
#include "host/Interaccion.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace detail {

const char* const kTablaVenta[] = {"facturas", "remisiones"};
const char* const kLetraVenta[] = {"F", "R"};

const toolkit::LibKRVM& LibUtilidad() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// The date, seller and customer conditions, joined with " and " ("" when none is given).
std::string CondicionesPeriodo(const RepAdmUtilidad::Filtros& f, const std::string& vendedor) {
    std::string c;
    if (!f.desdeSQL.empty()) c = session::UneCondicion(c, session::LlenaXXX("Fecha>='XXX'", f.desdeSQL));
    if (!f.hastaSQL.empty()) c = session::UneCondicion(c, session::LlenaXXX("Fecha<='XXX'", f.hastaSQL));
    if (!vendedor.empty()) c = session::UneCondicion(c, vendedor);
    if (!f.cliente.empty()) c = session::UneCondicion(c, session::LlenaXXX("Cliente='XXX'", f.cliente));
    return c;
}

std::string Y(const std::string& condiciones) {
    return condiciones.empty() ? std::string() : " AND " + condiciones;
}

// A document's amount in local currency: multiplied by its exchange rate when it is in a
// foreign currency and the company works with several.
std::string EnMonedaLocal(const std::string& importe, const std::string& paridad,
                          const RepAdmUtilidad::Filtros& f) {
    if (!f.multimoneda) return importe;
    return importe + "*IF(v.Moneda<>1," + paridad + ",1)";
}

// The document discounts in cascade: each one on the price the earlier ones left.
std::string ConDescuentos(const std::string& precio) {
    std::string r = precio;
    for (int i = 1; i <= 5; ++i) r += "*(1-v.Desc" + std::to_string(i) + "/100)";
    return r;
}

// The product's line, sub-line and brand keys and names.
const char* const kProducto =
    "IFNULL(p.Linea,''),IFNULL(p.SubLinea,''),IFNULL(p.Marca,''),IFNULL(l.Linea,''),"
    "IFNULL(sl.SubLinea,''),IFNULL(m.Marca,'')";
const char* const kUneProducto =
    " LEFT JOIN productos p ON p.Clave=v.Producto LEFT JOIN lineas l ON l.Id=p.Linea"
    " LEFT JOIN sublineas sl ON sl.Id=p.SubLinea LEFT JOIN marcas m ON m.Id=p.Marca";

// Lines of the products chosen: line, sub-line, brand and product key.
std::string CondicionesProducto(const RepAdmUtilidad::Filtros& f) {
    std::string w;
    const auto& lib = LibUtilidad();
    if (!f.linea.empty()) w = lib.SumaWhereAnd(w, "p.Linea=" + f.linea);
    if (!f.sublinea.empty()) w = lib.SumaWhereAnd(w, "p.SubLinea=" + f.sublinea);
    if (!f.marca.empty()) w = lib.SumaWhereAnd(w, "p.Marca=" + f.marca);
    if (!f.producto.empty()) w = lib.SumaWhereAnd(w, "v.Producto='" + f.producto + "'");
    return w;
}

bool EsNumero(const std::string& s) {
    if (s.empty() || s.size() > 11) return false;
    for (char c : s)
        if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

}  // namespace detail

RepAdmUtilidad::RepAdmUtilidad() : FormaReporte("RepAdmUtilidad", "Utilidad") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblCliente", -1, "Cliente:");
    Agrega("txtDato", 0, "Cliente");
    Agrega("lblDato", 0);
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 1, "Producto");
    Agrega("lblDato", 1);
    Agrega("lblLinea", -1, "Línea:");
    Agrega("dcmDato", 0, "Línea");
    Agrega("lblSubLinea", -1, "Sublínea:");
    Agrega("dcmDato", 1, "Sublínea");
    Agrega("lblMarca", -1, "Marca:");
    Agrega("dcmDato", 2, "Marca");
    Agrega("lblVendedor", -1, "Vendedor:");
    Agrega("dcmDato", 3, "Vendedor");
    Agrega("lblVentas", -1, "Documentos:");
    Control& ventas = Agrega("cmbVentas", -1, "Documentos");
    ventas.Items = {"Facturas y remisiones"};
    Agrega("chkXdias", -1, "Por días y vendedor");
    Agrega("chkTotalizado", -1, "Totalizado");
    Agrega("chkXlin", -1, "Agrupado por línea");
    Agrega("Frame1").Caption = "Devoluciones";
    Agrega("optQue", 0, "Buscar lo devuelto de cada venta").Value = 1;
    Agrega("optQue", 1, "Agregar las devoluciones del periodo");

    Ctl("dcmDato", 0).Change = [this](Control&) { LlenaSubLineas(); };
    // By-days mode has only the totalled template; the line grouping is for the detail.
    Ctl("chkXdias").Click = [this](Control& c) {
        if (c.Value == 0) return;
        Ctl("chkTotalizado").Value = 1;
        Ctl("chkXlin").Value = 0;
        Ctl("chkXlin").Enabled = false;
    };
    Ctl("chkTotalizado").Click = [this](Control& c) {
        if (c.Value == 0) Ctl("chkXdias").Value = 0;
        Ctl("chkXlin").Enabled = c.Value == 0;
        if (c.Value != 0) Ctl("chkXlin").Value = 0;
    };
}

int RepAdmUtilidad::PrimerTipo(int indiceVentas) {
    return indiceVentas < 2 && indiceVentas >= 0 ? indiceVentas : 0;
}

std::string RepAdmUtilidad::Plantilla(bool totalizado, bool porDias, bool porLinea) {
    if (totalizado) return porDias ? "utilidadtotxdias.rpt" : "utilidadtot.rpt";
    return porLinea ? "utilidadtotlin.rpt" : "utilidad.rpt";
}

std::string RepAdmUtilidad::ConsultaVentas(int tipo, const Filtros& f, bool porDias) {
    const std::string columnas =
        std::string(porDias ? "Cantidad,Devueltos,XXX.Moneda,XXX.Id,XXX.Vendedor,"
                            : "Cantidad,Devueltos,XXX.Moneda,XXX.Id,XXX.Vendedor,"
                              "XXXdetalle.Partida,XXXdetalle.IdKardex,") +
        "XXX.Desc5,Cliente,Producto,CostoPromedio,PrecioNeto,ParidadCompra,Descripcion," +
        "Fecha,Factura,Serie,XXX.Paridad,XXX.Desc1,XXX.Desc2,XXX.Desc3,XXX.Desc4";
    std::string vendedor;
    if (!f.vendedor.empty())
        vendedor = session::LlenaXXX("Vendedor='XXX'", f.vendedor);
    else if (porDias)
        vendedor = "Vendedor<>''";
    const std::string sql =
        "SELECT " + columnas +
        " FROM XXX LEFT JOIN XXXdetalle ON XXX.Id=XXXdetalle.Id WHERE Cancelada=0 AND "
        "Afectada=1" +
        (f.puntoDeVenta ? "" : " AND XXX.PdeV=0") +
        detail::Y(detail::CondicionesPeriodo(f, vendedor)) + " ORDER BY XXX.Id,XXXdetalle.Partida";
    return session::LlenaXXX(sql, detail::kTablaVenta[tipo]);
}

std::string RepAdmUtilidad::ConsultaDevoluciones(const Filtros& f) {
    const std::string sql =
        "SELECT Producto,CostoPromedio,Precio,Descripcion,Cantidad,XXX.Moneda,XXX.DevolucionCtes,"
        "Fecha,XXX.Paridad,XXX.Desc1,XXX.Desc2,XXX.Desc3,XXX.Desc4,XXX.Desc5,Cliente,"
        "XXXdet.Partida,XXX.Numero,XXX.Serie,XXX.Tipo,XXX.NotasCredito"
        " FROM devolucionctes LEFT JOIN devolucionctesdet ON "
        "devolucionctes.DevolucionCtes=devolucionctesdet.DevolucionCtes WHERE Cancelada=0" +
        detail::Y(detail::CondicionesPeriodo(f, "")) +
        " ORDER BY devolucionctes.DevolucionCtes,devolucionctesdet.Partida";
    return session::LlenaXXX(sql, "devolucionctes");
}

std::string RepAdmUtilidad::ConsultaNotasCredito(const Filtros& f) {
    return "SELECT NotaCredito,Serie,Fecha,notascredito.Cliente,Moneda,Paridad,Subtotal,Concepto,"
           "clientes.Vendedor FROM notascredito LEFT JOIN clientes ON "
           "notascredito.Cliente=clientes.Clave WHERE Devolucion=0 AND Cancelada=0" +
           detail::Y(detail::CondicionesPeriodo(f, "")) + " ORDER BY NotaCredito";
}

std::string RepAdmUtilidad::FuenteGastos(const Filtros& f) {
    const auto& lib = detail::LibUtilidad();
    std::string w = lib.SumaWhereAnd("", "PdeV=0");
    if (!f.desdeSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", f.desdeSQL));
    if (!f.hastaSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", f.hastaSQL));
    return "gastos" + w;
}

const std::vector<std::string>& RepAdmUtilidad::ColumnasUtilidad() {
    static const std::vector<std::string> c = {
        "Linea",      "SubLinea",    "Marca",    "NombreLinea",   "NombreSubLinea",
        "NombreMarca", "VendedorCve", "VendedorNom", "Fecha",      "Factura",
        "Serie",      "Remision",    "CostoPromedio", "PrecioNeto", "Precio",
        "Desc1",      "Desc2",       "Desc3",    "Desc4",         "Desc5",
        "Cliente",    "clave",       "Articulo", "DESCripcion",   "Cantidad",
        "Devueltos",  "Moneda",      "Paridad",  "IdentVta",      "IdKardex",
        "Costo",      "ExistenciaAnterior", "EnDevolucs", "EnNdeC", "Devolucion",
        "MontoNdeC"};
    return c;
}

std::string RepAdmUtilidad::SqlVentas(int tipo, const Filtros& f, bool buscaDevoluciones) {
    const std::string letra = detail::kLetraVenta[tipo];
    const std::string costo =
        detail::EnMonedaLocal("IFNULL(v.CostoPromedio,0)", "IFNULL(v.ParidadCompra,0)", f);
    const std::string precio =
        detail::ConDescuentos(detail::EnMonedaLocal("IFNULL(v.PrecioNeto,0)", "v.Paridad", f));
    const std::string documento =
        tipo == 0 ? "v.Factura,v.Serie,NULL" : "NULL,NULL,v.Factura";
    // The first return of the sale (the lowest number, as "LIMIT 1" finds it by the index on
    // Tipo and Venta), and what it took back of the line: with a credit note or without.
    const std::string devuelto = "IFNULL(dd.Cantidad,0)";
    const std::string devoluciones =
        buscaDevoluciones ? "IF(d.NotasCredito<>0,0," + devuelto + "),IF(d.NotasCredito<>0," +
                                devuelto + ",0)"
                          : "0,0";
    std::string sql =
        std::string("SELECT ") + detail::kProducto +
        ",v.Vendedor,IFNULL(s.Nombre,''),v.Fecha," + documento + "," + costo + "," + precio +
        "," + precio +
        ",v.Desc1,v.Desc2,v.Desc3,v.Desc4,v.Desc5,v.Cliente,v.Producto,v.Producto,v.Descripcion,"
        "v.Cantidad,v.Devueltos,v.Moneda,v.Paridad,CONCAT('" +
        letra +
        "',v.Id),v.IdKardex,IFNULL(h.Costo,0),IFNULL(h.ExistenciaAnterior,0)," + devoluciones +
        ",0,0 FROM (" + ConsultaVentas(tipo, f, false) + ") v" + detail::kUneProducto +
        " LEFT JOIN vendedores s ON s.Clave=v.Vendedor"
        " LEFT JOIN historicoalmacen h ON v.IdKardex<>0 AND h.Id=v.IdKardex";
    if (buscaDevoluciones) {
        sql +=
            " LEFT JOIN (SELECT Venta,MIN(DevolucionCtes) AS Primera FROM devolucionctes WHERE "
            "Tipo='" +
            letra +
            "' GROUP BY Venta) pd ON pd.Venta=v.Id"
            " LEFT JOIN devolucionctes d ON d.DevolucionCtes=pd.Primera"
            " LEFT JOIN (SELECT DevolucionCtes,Producto,PartidaVenta,SUM(Cantidad) AS Cantidad"
            " FROM devolucionctesdet GROUP BY DevolucionCtes,Producto,PartidaVenta) dd ON"
            " dd.DevolucionCtes=pd.Primera AND dd.Producto=v.Producto AND"
            " dd.PartidaVenta=v.Partida";
    }
    return sql + detail::CondicionesProducto(f) + " ORDER BY v.Id,v.Partida";
}

std::string RepAdmUtilidad::SqlDevoluciones(const Filtros& f) {
    // A return carries one exchange rate: it converts both its price and its cost.
    const std::string costo =
        detail::EnMonedaLocal("IFNULL(v.CostoPromedio,0)", "v.Paridad", f);
    const std::string precio =
        detail::ConDescuentos(detail::EnMonedaLocal("IFNULL(v.Precio,0)", "v.Paridad", f));
    return std::string("SELECT ") + detail::kProducto +
           ",IFNULL(IFNULL(vf.Vendedor,vr.Vendedor),''),IFNULL(s.Nombre,''),v.Fecha,v.Numero,"
           "v.Serie,NULL," +
           costo + "," + precio + "," + precio +
           ",v.Desc1,v.Desc2,v.Desc3,v.Desc4,v.Desc5,v.Cliente,v.Producto,v.Producto,"
           "v.Descripcion,v.Cantidad,0,v.Moneda,v.Paridad,CONCAT('D',v.DevolucionCtes),0,0,0,0,0,"
           "1,0 FROM (" +
           ConsultaDevoluciones(f) + ") v" + detail::kUneProducto +
           " LEFT JOIN devolucionctes r ON r.DevolucionCtes=v.DevolucionCtes"
           " LEFT JOIN facturas vf ON r.Tipo='F' AND vf.Id=r.Venta"
           " LEFT JOIN remisiones vr ON r.Tipo='R' AND vr.Id=r.Venta"
           " LEFT JOIN vendedores s ON s.Clave=IFNULL(vf.Vendedor,vr.Vendedor)"
           " ORDER BY v.DevolucionCtes,v.Partida";
}

std::string RepAdmUtilidad::SqlNotasCredito(const Filtros& f) {
    return "SELECT '','','','','','',IFNULL(v.Vendedor,''),IFNULL(s.Nombre,''),v.Fecha,"
           "v.NotaCredito,v.Serie,NULL,0,0,0,0,0,0,0,0,v.Cliente,'','',v.Concepto,0,0,v.Moneda,"
           "v.Paridad,CONCAT('N',v.NotaCredito),0,0,0,0,0,0," +
           detail::EnMonedaLocal("v.Subtotal", "v.Paridad", f) + " FROM (" +
           ConsultaNotasCredito(f) +
           ") v LEFT JOIN vendedores s ON s.Clave=v.Vendedor ORDER BY v.NotaCredito";
}

std::vector<std::string> RepAdmUtilidad::SqlPorDias(const std::string& tabla, int primerTipo,
                                                    const Filtros& f) {
    // One row per day and seller: the sales of each kind read, then the returns and the
    // credit notes of the period, each on the day and seller they belong to.
    std::string vendedor = f.vendedor.empty() ? "<>''" : "='" + f.vendedor + "'";
    std::string partes;
    for (int tipo = primerTipo; tipo <= 1; ++tipo) {
        const std::string cantidad = "IFNULL(v.Cantidad,0)";
        const std::string precio =
            detail::EnMonedaLocal("IFNULL(v.PrecioNeto,0)", "v.Paridad", f);
        partes += std::string(partes.empty() ? "" : " UNION ALL ") + "SELECT v.Fecha,v.Vendedor," +
                  cantidad + " AS Cantidad,IFNULL(v.Devueltos,0) AS Devueltos," + cantidad + "*" +
                  detail::ConDescuentos(precio) + " AS Total," + cantidad + "*" + precio +
                  " AS Total2," + cantidad + "*" +
                  detail::EnMonedaLocal("IFNULL(v.CostoPromedio,0)", "IFNULL(v.ParidadCompra,0)",
                                        f) +
                  " AS Costo,0 AS Devoluciones,0 AS NotasCredito FROM (" +
                  ConsultaVentas(tipo, f, true) + ") v" + detail::kUneProducto +
                  detail::CondicionesProducto(f);
    }
    partes += " UNION ALL SELECT v.Fecha,IFNULL(vf.Vendedor,vr.Vendedor),0,0,0,0,0,"
              "IFNULL(v.Cantidad,0)*" +
              detail::ConDescuentos(detail::EnMonedaLocal("IFNULL(v.Precio,0)", "v.Paridad", f)) +
              ",0 FROM (" + ConsultaDevoluciones(f) +
              ") v LEFT JOIN devolucionctes r ON r.DevolucionCtes=v.DevolucionCtes"
              " LEFT JOIN facturas vf ON r.Tipo='F' AND vf.Id=r.Venta"
              " LEFT JOIN remisiones vr ON r.Tipo='R' AND vr.Id=r.Venta"
              " WHERE IFNULL(vf.Vendedor,vr.Vendedor)" +
              vendedor;
    partes += " UNION ALL SELECT v.Fecha,v.Vendedor,0,0,0,0,0,0," +
              detail::EnMonedaLocal("v.Subtotal", "v.Paridad", f) + " FROM (" +
              ConsultaNotasCredito(f) + ") v WHERE v.Vendedor" + vendedor;
    const std::string columnas =
        "Cantidad,Devueltos,Total,Total2,Costo,Devoluciones,NotasCredito";
    const std::string sumas =
        "SUM(Cantidad),SUM(Devueltos),SUM(Total),SUM(Total2),SUM(Costo),SUM(Devoluciones),"
        "SUM(NotasCredito)";
    return {
        "INSERT INTO " + tabla + " (Fecha,VendedorCve,VendedorNom," + columnas +
            ") SELECT x.Fecha,x.Vendedor,IFNULL(s.Nombre,''),SUM(x.Cantidad),SUM(x.Devueltos),"
            "SUM(x.Total),SUM(x.Total2),SUM(x.Costo),SUM(x.Devoluciones),SUM(x.NotasCredito) "
            "FROM (" +
            partes +
            ") x LEFT JOIN vendedores s ON s.Clave=x.Vendedor GROUP BY x.Fecha,x.Vendedor ORDER "
            "BY x.Fecha,x.Vendedor",
        "UPDATE " + tabla + " SET Total3=Total-Costo",
        // The summary row of each seller of the catalogue that has rows.
        "INSERT INTO " + tabla + " (VendedorCve,VendedorNom," + columnas +
            ",Total3,Resumen) SELECT t.VendedorCve,s.Nombre," + sumas +
            ",SUM(Total3),1 FROM " + tabla +
            " t JOIN vendedores s ON s.Clave=t.VendedorCve WHERE t.Resumen=0 GROUP BY "
            "t.VendedorCve ORDER BY t.VendedorCve",
        "UPDATE " + tabla + " SET Porcentaje=IF(Total<>0,Total3/Total,0)",
    };
}

void RepAdmUtilidad::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    EnlazaCombo(Ctl("dcmDato", 0), "lineas ORDER BY Linea", "Linea", "Id");
    EnlazaCombo(Ctl("dcmDato", 2), "marcas ORDER BY Marca", "Marca", "Id");
    EnlazaCombo(Ctl("dcmDato", 3), "vendedores ORDER BY Clave", "Nombre", "Clave");
    LlenaSubLineas();
    Control& ventas = Ctl("cmbVentas");
    ventas.Items.resize(1);
    ventas.Items.push_back("Remisiones");
    ventas.Items.push_back("Ambas");
    ventas.ListIndex = 0;
    ventas.Text = ventas.Items[0];
    // What the company does not use is not offered.
    const bool remisiones = session::LeerConfigBool(cn, "Remisiones");
    for (const char* c : {"lblVentas", "cmbVentas"}) Ctl(c).Visible = remisiones;
    const bool vendedores = session::LeerConfigBool(cn, "Vendedores");
    for (const char* c : {"lblVendedor"}) Ctl(c).Visible = vendedores;
    Ctl("dcmDato", 3).Visible = vendedores;
    const bool sublineas = session::LeerConfigBool(cn, "SubLineas");
    Ctl("lblSubLinea").Visible = sublineas;
    Ctl("dcmDato", 1).Visible = sublineas;
    const bool marcas = session::LeerConfigBool(cn, "Marcas");
    Ctl("lblMarca").Visible = marcas;
    Ctl("dcmDato", 2).Visible = marcas;
}

void RepAdmUtilidad::LlenaSubLineas() {
    Control& sub = Ctl("dcmDato", 1);
    const std::string linea = Ctl("dcmDato", 0).BoundText;
    if (!detail::EsNumero(linea)) {
        sub.Items.clear();
        sub.ItemData.clear();
        sub.ListIndex = -1;
        sub.BoundText.clear();
        sub.Text.clear();
        return;
    }
    EnlazaCombo(sub, "SubLineas WHERE IdLinea=" + linea + " ORDER BY SubLinea", "SubLinea", "Id");
}

void RepAdmUtilidad::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || !ConexionEmpresa()) return;
    const std::string clave = toolkit::detail::Recorta(c.Text);
    Control& etiqueta = Ctl("lblDato", c.Indice);
    etiqueta.Caption.clear();
    if (clave.empty() || detail::RompeLiteral(clave)) return;
    try {
        host::Recordset rs;
        if (c.Indice == 0) {
            if (session::BuscaCliente(ConexionEmpresa(), clave, rs))
                etiqueta.Caption = rs.Campo("Nombre").Texto();
        } else {
            auto& bd = *session::sesion().BaseDD;
            if (bd.AbrirTabla(rs, ConexionEmpresa(),
                              "productos WHERE Clave='" + clave + "' LIMIT 1") &&
                rs.RecordCount() > 0) {
                rs.MoveFirst();
                etiqueta.Caption = rs.Campo("Descrip").Texto();
            }
        }
    } catch (const std::exception&) {
        // An unknown key just leaves the label empty.
    }
}

RepAdmUtilidad::Filtros RepAdmUtilidad::LeeFiltros() const {
    Filtros f;
    f.desdeSQL = FechaSQL(0);
    f.hastaSQL = FechaSQL(1);
    f.cliente = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.producto = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    auto elegido = [this](std::int16_t i) {
        const Control& c = Ctl("dcmDato", i);
        return c.Visible && c.ListIndex >= 0 ? c.BoundText : std::string();
    };
    f.linea = elegido(0);
    f.sublinea = elegido(1);
    f.marca = elegido(2);
    f.vendedor = elegido(3);
    for (const auto* id : {&f.linea, &f.sublinea, &f.marca})
        if (!id->empty() && !detail::EsNumero(*id))
            throw ErrorPaso("revisar los filtros", "la lista de líneas, sublíneas o marcas dio "
                                                   "un valor que no es un número: '" +
                                                       *id + "'");
    if (detail::RompeLiteral(f.vendedor))
        throw ErrorPaso("revisar los filtros", "la clave del vendedor lleva comillas");
    f.puntoDeVenta = PuntoDeVenta;
    return f;
}

std::string RepAdmUtilidad::TextoFiltros() const {
    std::string t;
    auto agrega = [&t](const std::string& s) { t += (t.empty() ? "" : ". ") + s; };
    const Control& ventas = Ctl("cmbVentas");
    agrega(PrimerTipo(ventas.ListIndex) == 1 ? "Remisiones" : "Facturas y remisiones");
    const char* nombres[] = {"Línea", "Sublínea", "Marca", "Vendedor"};
    for (std::int16_t i = 0; i < 4; ++i) {
        const Control& c = Ctl("dcmDato", i);
        if (c.Visible && c.ListIndex >= 0) agrega(std::string(nombres[i]) + ": " + c.Text);
    }
    for (std::int16_t i = 0; i < 2; ++i) {
        const std::string clave = toolkit::detail::Recorta(Ctl("txtDato", i).Text);
        if (clave.empty()) continue;
        const std::string nombre = Ctl("lblDato", i).Caption;
        agrega(std::string(i == 0 ? "Cliente: " : "Producto: ") + clave +
               (nombre.empty() ? "" : " " + nombre));
    }
    if (Ctl("chkXdias").Value == 0)
        agrega(Ctl("optQue", 1).Value != 0 ? "Con las devoluciones del periodo"
                                            : "Con lo devuelto de cada venta");
    return t;
}

void RepAdmUtilidad::LlenaArchivoLocal(const Filtros& f, bool porDias, int primerTipo) {
    auto& bd = *session::sesion().BaseDD;
    host::Conexion local;
    Paso("abrir el archivo de trabajo local");
    if (!bd.AbreBdDAccess(local, ArchivoLocal()))
        throw ErrorPaso("abrir el archivo de trabajo local",
                        "no se pudo abrir " + ArchivoLocal() + ": " + bd.UltimoError());
    struct Cierra {
        host::BaseDD& bd;
        host::Conexion& cn;
        ~Cierra() { bd.CierraBdD(cn); }
    } cierra{bd, local};
    data::CargaLocal carga(local);
    auto& avisos = host::interaccion();
    Paso("sumar los gastos del periodo");
    carga.Rehace("TotalesUtilPdV");
    carga.Copia(ConexionEmpresa(), "SELECT IFNULL(SUM(Cantidad),0) FROM " + FuenteGastos(f),
                "TotalesUtilPdV", {"Gastos"});
    if (!porDias) {
        carga.Rehace("Utilidad");
        const auto& columnas = ColumnasUtilidad();
        const bool buscaDevoluciones = Ctl("optQue", 1).Value == 0;
        for (int tipo = primerTipo; tipo <= 1; ++tipo) {
            avisos.Progreso(10 + tipo * 40, std::string("Leyendo ") + detail::kTablaVenta[tipo]);
            Paso(std::string("llenar la tabla Utilidad con las ") + detail::kTablaVenta[tipo]);
            carga.Copia(ConexionEmpresa(), SqlVentas(tipo, f, buscaDevoluciones), "Utilidad",
                        columnas);
        }
        avisos.Progreso(90, "Leyendo devoluciones y notas de crédito");
        if (!buscaDevoluciones) {
            Paso("llenar la tabla Utilidad con las devoluciones del periodo");
            carga.Copia(ConexionEmpresa(), SqlDevoluciones(f), "Utilidad", columnas);
        }
        Paso("llenar la tabla Utilidad con las notas de crédito");
        carga.Copia(ConexionEmpresa(), SqlNotasCredito(f), "Utilidad", columnas);
    }
    carga.Confirma();
    avisos.Progreso(0, "");
}

void RepAdmUtilidad::Imprimir() {
    Paso("revisar los filtros");
    Filtros f = LeeFiltros();
    f.multimoneda = session::LeerConfigBool(ConexionEmpresa(), "MultiMoneda");
    const bool porDias = Ctl("chkXdias").Value != 0;
    const bool totalizado = porDias || Ctl("chkTotalizado").Value != 0;
    const bool porLinea = !totalizado && Ctl("chkXlin").Value != 0;
    const int primerTipo = PrimerTipo(Ctl("cmbVentas").ListIndex);

    LlenaArchivoLocal(f, porDias, primerTipo);
    std::string tabla;
    if (porDias) {
        tabla = ClonaTabla("utilidadxdias", true);
        if (session::HuboError()) return;
        Paso("llenar la tabla de trabajo " + tabla + " por días y vendedor");
        for (const auto& sql : SqlPorDias(tabla, primerTipo, f)) Ejecutar(sql);
    }

    const auto& lib = detail::LibUtilidad();
    std::string periodo = "Del " + (Fecha(0).empty() ? std::string("principio")
                                                     : lib.FechaCompleta(Fecha(0))) +
                          " al " + (Fecha(1).empty() ? std::string("final")
                                                      : lib.FechaCompleta(Fecha(1)));
    PasaGenerales({
        {"Titulo", host::Valor(porDias ? "Utilidad por días y vendedor" : "Utilidad")},
        {"ParaLasFechas", host::Valor(periodo)},
        {"Filtros", host::Valor(TextoFiltros())},
    });

    auto& sol = session::solicitud();
    sol.Plantilla = Plantilla(totalizado, porDias, porLinea);
    const Control& vendedor = Ctl("dcmDato", 3);
    if (!f.vendedor.empty()) sol.Formula(0, session::FormulaVendedor(vendedor.Text));
    if (porDias) {
        sol.FormulaSeleccion = "{utilidadxdias.Resumen}=0";
        sol.MapeaTabla("utilidadxdias", tabla);
    }
    Ejecuta();
}

}  // namespace paratzorep::reports
