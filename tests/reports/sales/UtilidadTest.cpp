// The profit report against a small company that has every case it distinguishes: the
// set-based fill of Utilidad and of the by-days work table compared with the rule applied line
// by line, the system's query texts, the template of each combination of check boxes, and a
// failure that leaves neither work table nor half-filled local table behind.
#include "reports/sales/RepAdmUtilidad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>

#include "data/BaseDDMaria.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "schema/Esquema.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "toolkit/Fabrica.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {
namespace {

using Fila = std::vector<std::optional<std::string>>;

// Invoices: 1 with discounts 10 and 10, a line without history, one whose history row and
// product are gone, and two returns (the second one is not the one "LIMIT 1" finds); 2 in
// dollars with all five discounts and a cancelled return; 3 cancelled; 4 not applied to stock;
// 5 a point-of-sale invoice; 6 without lines or seller; 7 a month later. Delivery notes: 1 with
// the fourth discount and a return with credit note; 2 in euros. Credit notes: one of a
// return, one in dollars that is not, one cancelled.
const char* kEmpresa = R"(
INSERT INTO configura (Dato,Valor) VALUES ('MultiMoneda','1'),('Remisiones','1'),
  ('Vendedores','1'),('SubLineas','1'),('Marcas','1');
INSERT INTO lineas (Id,Linea) VALUES (1,'FERRETERIA'),(2,'PINTURAS');
INSERT INTO sublineas (Id,IdLinea,SubLinea) VALUES (1,1,'HERRAMIENTA'),(2,1,'SERVICIOS'),
  (3,2,'VINILICAS');
INSERT INTO marcas (Id,Marca) VALUES (1,'TRUPER'),(2,'COMEX');
INSERT INTO vendedores (Clave,Nombre) VALUES ('V01','ANA LOPEZ'),('V02','BETO RUIZ'),
  ('V03','SIN VENTAS');
INSERT INTO clientes (Clave,Nombre,Vendedor) VALUES ('C1','FERRETERIA CENTRAL','V01'),
  ('C2','PINTURAS DEL NORTE','V02');
INSERT INTO productos (Clave,Descrip,Linea,SubLinea,Marca,Costo,Servicio) VALUES
  ('P1','MARTILLO',1,1,1,61,0),('P2','PINTURA BLANCA',2,3,2,31,0),('P3','INSTALACION',1,2,1,0,1);
INSERT INTO historicoalmacen (Id,Producto,Fecha,Movimiento,Cantidad,ExistenciaAnterior,Costo)
  VALUES (1,'P1','2025-03-05','VENTA FACTURA',-2,100,61),(2,'P2','2025-03-05','VENTA FACTURA',-1,50,31),
  (3,'P1','2025-03-06','VENTA FACTURA',-1,98,62),(4,'P2','2025-03-06','VENTA REMISION',-5,49,32),
  (5,'P1','2025-03-07','VENTA REMISION',-2,97,62);
INSERT INTO facturas (Id,Factura,Serie,Fecha,Cliente,Vendedor,Cancelada,Afectada,PdeV,Moneda,
  Paridad,Desc1,Desc2,Desc3,Desc4,Desc5) VALUES
  (1,101,'A','2025-03-05','C1','V01',0,1,0,1,1,10,10,0,0,0),
  (2,102,'A','2025-03-06','C2','V02',0,1,0,2,18.5,5,4,3,2,1),
  (3,103,'A','2025-03-06','C1','V01',1,1,0,1,1,0,0,0,0,0),
  (4,104,'A','2025-03-06','C1','V01',0,0,0,1,1,0,0,0,0,0),
  (5,105,'B','2025-03-07','C1','V01',0,1,1,1,1,0,0,0,0,0),
  (6,106,'A','2025-03-07','C2','',0,1,0,1,1,0,0,0,0,0),
  (7,107,'A','2025-04-01','C1','V01',0,1,0,1,1,0,0,0,0,0);
INSERT INTO facturasdetalle (Id,Partida,Producto,Descripcion,Cantidad,Devueltos,PrecioNeto,
  CostoPromedio,ParidadCompra,IdKardex) VALUES
  (1,1,'P1','MARTILLO',2,1,100,60,1,1),(1,2,'P2','PINTURA BLANCA',1,0,50,30,1,2),
  (1,3,'P3','INSTALACION',1,0,200,0,1,0),(1,4,'PX','ARTICULO DADO DE BAJA',3,0,10,5,1,99),
  (2,1,'P1','MARTILLO',1,0,10,3.2,18.4,3),(3,1,'P1','MARTILLO',1,0,100,60,1,0),
  (4,1,'P1','MARTILLO',1,0,100,60,1,0),(5,1,'P2','PINTURA BLANCA',1,0,50,30,1,0),
  (7,1,'P2','PINTURA BLANCA',2,0,55,30,1,0);
INSERT INTO remisiones (Id,Remision,Factura,Serie,Fecha,Cliente,Vendedor,Moneda,Paridad,Desc1,
  Desc2,Desc3,Desc4,Desc5) VALUES (1,7,7,'R','2025-03-06','C2','V02',1,1,0,0,0,5,0),
  (2,8,8,'R','2025-03-07','C1','V01',3,20.1,0,0,0,0,0);
INSERT INTO remisionesdetalle (Id,Partida,Producto,Descripcion,Cantidad,Devueltos,PrecioNeto,
  CostoPromedio,ParidadCompra,IdKardex) VALUES (1,1,'P2','PINTURA BLANCA',5,2,40,25,1,4),
  (2,1,'P1','MARTILLO',2,0,6,3,20,5);
INSERT INTO devolucionctes (DevolucionCtes,Numero,Serie,Fecha,Cliente,Tipo,Venta,NotasCredito,
  Cancelada,Moneda,Paridad,Desc1,Desc2,Desc3,Desc4,Desc5) VALUES
  (1,1,'D','2025-03-06','C1','F',1,0,0,1,1,10,10,0,0,0),
  (2,2,'D','2025-03-07','C1','F',1,0,0,1,1,10,10,0,0,0),
  (3,3,'D','2025-03-07','C2','R',1,9,0,1,1,0,0,0,5,0),
  (4,4,'D','2025-03-07','C2','F',2,0,1,2,18.5,5,4,3,2,1);
INSERT INTO devolucionctesdet (DevolucionCtes,Partida,Producto,Descripcion,Cantidad,Precio,
  CostoPromedio,PartidaVenta) VALUES (1,1,'P1','MARTILLO',1,100,60,1),
  (2,1,'P2','PINTURA BLANCA',1,50,30,2),(3,1,'P2','PINTURA BLANCA',2,40,25,1),
  (4,1,'P1','MARTILLO',1,10,3.2,1);
INSERT INTO notascredito (NotaCredito,Serie,Fecha,Cliente,Devolucion,Cancelada,Moneda,Paridad,
  Subtotal,Concepto) VALUES (9,'NC','2025-03-07','C2',3,0,1,1,76,'DEVOLUCION No. 3'),
  (10,'NC','2025-03-07','C1',0,0,2,18.5,20,'DESCUENTO POR PRONTO PAGO'),
  (11,'NC','2025-03-07','C1',0,1,1,1,500,'CANCELADA');
INSERT INTO gastos (Fecha,Cantidad,PdeV) VALUES ('2025-03-05',150,0),('2025-03-06',80,1),
  ('2025-04-01',40,0);
)";

double Numero(const std::optional<std::string>& s) {
    return s && !s->empty() ? std::strtod(s->c_str(), nullptr) : 0;
}

std::string Texto(double d) {
    char b[40];
    std::snprintf(b, sizeof b, "%.17g", d);
    return b;
}

// Rows compared column by column: numbers within rounding, everything else as text.
void Iguales(const std::vector<Fila>& esperadas, const std::vector<Fila>& obtenidas,
             const std::vector<std::string>& columnas, const std::vector<std::string>& numericas) {
    ASSERT_EQ(esperadas.size(), obtenidas.size());
    for (std::size_t i = 0; i < esperadas.size(); ++i)
        for (std::size_t c = 0; c < columnas.size(); ++c) {
            const auto& e = esperadas[i][c];
            const auto& o = obtenidas[i][c];
            SCOPED_TRACE("fila " + std::to_string(i) + ", " + columnas[c]);
            if (std::find(numericas.begin(), numericas.end(), columnas[c]) != numericas.end()) {
                ASSERT_EQ(e.has_value(), o.has_value());
                EXPECT_NEAR(Numero(e), Numero(o), 1e-9 * std::max(1.0, std::fabs(Numero(e))));
            } else {
                EXPECT_EQ(e.value_or("(nulo)"), o.value_or("(nulo)"));
            }
        }
}

class Utilidad : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        // The reports database's model, shared by the run: made from the schema file once.
        pruebas::BaseDeDatosDePrueba modelos;
        schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        modelos.ejecutar(
            "CREATE DATABASE IF NOT EXISTS tanzoreportes; CREATE TABLE IF NOT EXISTS "
            "tanzoreportes.utilidadxdias LIKE `" +
            modelos.nombre() + "`.utilidadxdias");
    }

    void SetUp() override {
        toolkit::RegistraToolkit();
        session::sesion() = session::RegistroSesion{};
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(kEmpresa);
        base = pruebas::baseDD(bd->servidor(), bd->nombre());
        auto& s = session::sesion();
        s.BaseDD = base;
        s.DatosConecte = std::make_shared<host::DatosConecte>();
        s.LibKRVM = std::make_shared<toolkit::LibKRVM>();
        s.RutaTanzo = tmp.ruta().string() + "/";
        s.ArchivoINI = (tmp / "sistema.ini").string();
        s.UserUsuario = "PRUEBA";
        forma.FijaEjecutor([this](const std::string&) {
            ++corridas;
            const auto& sol = session::solicitud();
            if (sol.ArchivosDatos.empty()) return;
            const std::string tabla = sol.ArchivosDatos[0].substr(sol.ArchivosDatos[0].find('*') + 1);
            porDias = Filas(
                "SELECT Fecha,VendedorCve,VendedorNom,Cantidad,Devueltos,Total,Total2,Costo,Total3,"
                "Porcentaje,Devoluciones,NotasCredito,Resumen FROM " +
                tabla + " ORDER BY Resumen,VendedorCve,Fecha");
        });
    }
    void TearDown() override {
        forma.Descarga();
        session::sesion() = session::RegistroSesion{};
    }

    // Loads the form and sets its controls as a user would.
    void Prepara(const std::vector<std::pair<std::string, std::string>>& controles) {
        forma.Carga();
        for (const auto& [c, v] : controles) forma.Fija(c, v);
    }
    bool Imprime() {
        const bool ok = forma.Imprime();
        EXPECT_TRUE(ok) << forma.UltimoError();
        return ok;
    }

    std::vector<Fila> Local(const std::string& sql) {
        host::Conexion local;
        EXPECT_TRUE(base->AbreBdDAccess(local, FormaReporte::ArchivoLocal()));
        host::Recordset rs;
        EXPECT_TRUE(base->AbrirTabla(rs, local, sql)) << base->UltimoError();
        std::vector<Fila> r;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            Fila f;
            for (std::int16_t c = 0; c < rs.FieldCount(); ++c) {
                const auto& v = rs.Campo(static_cast<std::size_t>(c));
                f.push_back(v.EsNulo() ? std::nullopt : std::optional<std::string>(v.Texto()));
            }
            r.push_back(std::move(f));
        }
        base->CierraBdD(local);
        return r;
    }
    std::vector<Fila> Utilidades() {
        std::string cols;
        for (const auto& c : RepAdmUtilidad::ColumnasUtilidad()) cols += (cols.empty() ? "" : ",") + c;
        return Local("SELECT " + cols + " FROM Utilidad ORDER BY Id");
    }

    // --- the rule, line by line, as the system describes it ---------------------------------
    std::optional<std::string> Uno(const std::string& sql) { return bd->valor(sql); }
    std::vector<Fila> Filas(const std::string& sql) {
        std::vector<Fila> r;
        auto m = pruebas::conectar(bd->servidor(), bd->nombre());
        if (mysql_query(m.get(), sql.c_str()) != 0) {
            ADD_FAILURE() << mysql_error(m.get()) << "\n" << sql;
            return r;
        }
        MYSQL_RES* res = mysql_store_result(m.get());
        const unsigned n = mysql_num_fields(res);
        while (MYSQL_ROW row = mysql_fetch_row(res)) {
            Fila f;
            for (unsigned i = 0; i < n; ++i)
                f.push_back(row[i] ? std::optional<std::string>(row[i]) : std::nullopt);
            r.push_back(std::move(f));
        }
        mysql_free_result(res);
        return r;
    }
    struct Producto {
        std::string linea, sublinea, marca, nombreLinea, nombreSubLinea, nombreMarca;
    };
    Producto BuscaProducto(const std::optional<std::string>& clave) {
        Producto p;
        auto f = Filas("SELECT Linea,SubLinea,Marca FROM productos WHERE Clave='" +
                       clave.value_or("") + "' LIMIT 1");
        if (f.empty()) return p;
        p.linea = *f[0][0];
        p.sublinea = *f[0][1];
        p.marca = *f[0][2];
        p.nombreLinea = Uno("SELECT Linea FROM lineas WHERE Id=" + p.linea).value_or("");
        p.nombreSubLinea = Uno("SELECT SubLinea FROM sublineas WHERE Id=" + p.sublinea).value_or("");
        p.nombreMarca = Uno("SELECT Marca FROM marcas WHERE Id=" + p.marca).value_or("");
        return p;
    }
    bool Fuera(const RepAdmUtilidad::Filtros& f, const Producto& p,
               const std::optional<std::string>& clave) {
        return (!f.linea.empty() && p.linea != f.linea) ||
               (!f.sublinea.empty() && p.sublinea != f.sublinea) ||
               (!f.marca.empty() && p.marca != f.marca) ||
               (!f.producto.empty() && clave.value_or("") != f.producto);
    }
    // Price after conversion and the cascade of the five discounts; cost after conversion.
    static double Precio(double precio, bool convierte, double paridad,
                         const std::vector<double>& descuentos) {
        if (convierte) precio = precio * paridad;
        for (double d : descuentos)
            if (d != 0) precio = precio - precio * d / 100;
        return precio;
    }
    std::string Nombre(const std::optional<std::string>& vendedor) {
        return Uno("SELECT Nombre FROM vendedores WHERE Clave='" + vendedor.value_or("") +
                   "' LIMIT 1")
            .value_or("");
    }

    std::vector<Fila> Regla(const RepAdmUtilidad::Filtros& f, int primerTipo, bool busca) {
        std::vector<Fila> r;
        auto o = [](const std::string& s) { return std::optional<std::string>(s); };
        for (int tipo = primerTipo; tipo <= 1; ++tipo) {
            const std::string letra = tipo == 0 ? "F" : "R";
            for (const auto& v : Filas(RepAdmUtilidad::ConsultaVentas(tipo, f, false))) {
                // Cantidad,Devueltos,Moneda,Id,Vendedor,Partida,IdKardex,Desc5,Cliente,Producto,
                // CostoPromedio,PrecioNeto,ParidadCompra,Descripcion,Fecha,Factura,Serie,Paridad,
                // Desc1,Desc2,Desc3,Desc4
                const Producto p = BuscaProducto(v[9]);
                if (Fuera(f, p, v[9])) continue;
                const bool convierte = f.multimoneda && v[2] != "1";
                double costo = Numero(v[10]);
                if (convierte) costo = costo * Numero(v[12]);
                const double precio =
                    Precio(Numero(v[11]), convierte, Numero(v[17]),
                           {Numero(v[18]), Numero(v[19]), Numero(v[20]), Numero(v[21]), Numero(v[7])});
                std::string costoH = "0", existencia = "0";
                if (Numero(v[6]) != 0) {
                    auto h = Filas("SELECT ExistenciaAnterior,Costo FROM historicoalmacen WHERE Id=" +
                                   *v[6]);
                    if (!h.empty()) existencia = *h[0][0], costoH = *h[0][1];
                }
                double sinNota = 0, conNota = 0;
                if (busca) {
                    auto dev = Uno("SELECT DevolucionCtes FROM devolucionctes WHERE Tipo='" + letra +
                                   "' AND Venta=" + *v[3] + " LIMIT 1");
                    if (dev) {
                        const bool nota = Numero(Uno("SELECT NotasCredito FROM devolucionctes WHERE "
                                                     "DevolucionCtes=" + *dev)) != 0;
                        for (const auto& d : Filas(
                                 "SELECT Cantidad FROM devolucionctesdet WHERE DevolucionCtes=" + *dev +
                                 " AND Producto='" + v[9].value_or("") +
                                 "' AND PartidaVenta=" + v[5].value_or("0") + " ORDER BY Partida"))
                            (nota ? conNota : sinNota) += Numero(d[0]);
                    }
                }
                r.push_back({o(p.linea), o(p.sublinea), o(p.marca), o(p.nombreLinea),
                             o(p.nombreSubLinea), o(p.nombreMarca), v[4], o(Nombre(v[4])), v[14],
                             tipo == 0 ? v[15] : std::nullopt, tipo == 0 ? v[16] : std::nullopt,
                             tipo == 1 ? v[15] : std::nullopt, o(Texto(costo)), o(Texto(precio)),
                             o(Texto(precio)), v[18], v[19], v[20], v[21], v[7], v[8], v[9], v[9],
                             v[13], v[0], v[1], v[2], v[17], o(letra + *v[3]), v[6], o(costoH),
                             o(existencia), o(Texto(sinNota)), o(Texto(conNota)), o("0"), o("0")});
            }
        }
        if (!busca) {
            for (const auto& v : Filas(RepAdmUtilidad::ConsultaDevoluciones(f))) {
                // Producto,CostoPromedio,Precio,Descripcion,Cantidad,Moneda,DevolucionCtes,Fecha,
                // Paridad,Desc1..Desc5,Cliente,Partida,Numero,Serie,Tipo,NotasCredito
                const Producto p = BuscaProducto(v[0]);
                const bool convierte = f.multimoneda && v[5] != "1";
                const double costo = Numero(v[1]) * (convierte ? Numero(v[8]) : 1);
                const double precio =
                    Precio(Numero(v[2]), convierte, Numero(v[8]),
                           {Numero(v[9]), Numero(v[10]), Numero(v[11]), Numero(v[12]), Numero(v[13])});
                const std::string tabla = v[18] == "F" ? "facturas" : "remisiones";
                const auto vendedor = Uno("SELECT Vendedor FROM " + tabla + " WHERE Id=(SELECT Venta "
                                          "FROM devolucionctes WHERE DevolucionCtes=" + *v[6] + ")");
                r.push_back({o(p.linea), o(p.sublinea), o(p.marca), o(p.nombreLinea),
                             o(p.nombreSubLinea), o(p.nombreMarca), o(vendedor.value_or("")),
                             o(Nombre(vendedor)), v[7], v[16], v[17], std::nullopt, o(Texto(costo)),
                             o(Texto(precio)), o(Texto(precio)), v[9], v[10], v[11], v[12], v[13],
                             v[14], v[0], v[0], v[3], v[4], o("0"), v[5], v[8], o("D" + *v[6]),
                             o("0"), o("0"), o("0"), o("0"), o("0"), o("1"), o("0")});
            }
        }
        for (const auto& v : Filas(RepAdmUtilidad::ConsultaNotasCredito(f))) {
            // NotaCredito,Serie,Fecha,Cliente,Moneda,Paridad,Subtotal,Concepto,Vendedor
            const bool convierte = f.multimoneda && v[4] != "1";
            const double monto = Numero(v[6]) * (convierte ? Numero(v[5]) : 1);
            r.push_back({o(""), o(""), o(""), o(""), o(""), o(""), o(v[8].value_or("")),
                         o(Nombre(v[8])), v[2], v[0], v[1], std::nullopt, o("0"), o("0"), o("0"),
                         o("0"), o("0"), o("0"), o("0"), o("0"), v[3], o(""), o(""), v[7], o("0"),
                         o("0"), v[4], v[5], o("N" + *v[0]), o("0"), o("0"), o("0"), o("0"), o("0"),
                         o("0"), o(Texto(monto))});
        }
        return r;
    }

    // By days: one row per day and seller, then a summary row per seller of the catalogue.
    std::vector<Fila> ReglaPorDias(const RepAdmUtilidad::Filtros& f, int primerTipo) {
        struct Suma {
            double cantidad = 0, devueltos = 0, total = 0, total2 = 0, costo = 0, devoluciones = 0,
                   notas = 0;
        };
        std::map<std::pair<std::string, std::string>, Suma> dias;
        auto delVendedor = [&](const std::optional<std::string>& v) {
            return v && !v->empty() && (f.vendedor.empty() || *v == f.vendedor);
        };
        for (int tipo = primerTipo; tipo <= 1; ++tipo)
            for (const auto& v : Filas(RepAdmUtilidad::ConsultaVentas(tipo, f, true))) {
                // Cantidad,Devueltos,Moneda,Id,Vendedor,Desc5,Cliente,Producto,CostoPromedio,
                // PrecioNeto,ParidadCompra,Descripcion,Fecha,Factura,Serie,Paridad,Desc1..Desc4
                if (Fuera(f, BuscaProducto(v[7]), v[7])) continue;
                const bool convierte = f.multimoneda && v[2] != "1";
                const double q = Numero(v[0]);
                Suma& s = dias[{*v[12], *v[4]}];
                s.cantidad += q;
                s.devueltos += Numero(v[1]);
                s.total += q * Precio(Numero(v[9]), convierte, Numero(v[15]),
                                      {Numero(v[16]), Numero(v[17]), Numero(v[18]), Numero(v[19]),
                                       Numero(v[5])});
                s.total2 += q * Precio(Numero(v[9]), convierte, Numero(v[15]), {});
                s.costo += q * Numero(v[8]) * (convierte ? Numero(v[10]) : 1);
            }
        for (const auto& v : Filas(RepAdmUtilidad::ConsultaDevoluciones(f))) {
            const std::string tabla = v[18] == "F" ? "facturas" : "remisiones";
            const auto vendedor = Uno("SELECT Vendedor FROM " + tabla + " WHERE Id=(SELECT Venta "
                                      "FROM devolucionctes WHERE DevolucionCtes=" + *v[6] + ")");
            if (!delVendedor(vendedor)) continue;
            const bool convierte = f.multimoneda && v[5] != "1";
            dias[{*v[7], *vendedor}].devoluciones +=
                Numero(v[4]) * Precio(Numero(v[2]), convierte, Numero(v[8]),
                                      {Numero(v[9]), Numero(v[10]), Numero(v[11]), Numero(v[12]),
                                       Numero(v[13])});
        }
        for (const auto& v : Filas(RepAdmUtilidad::ConsultaNotasCredito(f))) {
            if (!delVendedor(v[8])) continue;
            const bool convierte = f.multimoneda && v[4] != "1";
            dias[{*v[2], *v[8]}].notas += Numero(v[6]) * (convierte ? Numero(v[5]) : 1);
        }
        std::vector<Fila> r;
        std::map<std::string, Suma> porVendedor;
        auto fila = [&](const std::string& fecha, const std::string& vendedor, const Suma& s,
                        const char* resumen) {
            const double utilidad = s.total - s.costo;
            return Fila{fecha,
                        vendedor,
                        Nombre(vendedor),
                        Texto(s.cantidad),
                        Texto(s.devueltos),
                        Texto(s.total),
                        Texto(s.total2),
                        Texto(s.costo),
                        Texto(utilidad),
                        Texto(s.total != 0 ? utilidad / s.total : 0),
                        Texto(s.devoluciones),
                        Texto(s.notas),
                        std::string(resumen)};
        };
        // Ordered as the test reads the table: by seller, then day.
        std::map<std::pair<std::string, std::string>, Suma> porOrden;
        for (const auto& [k, s] : dias) porOrden[{k.second, k.first}] = s;
        for (const auto& [k, s] : porOrden) {
            r.push_back(fila(k.second, k.first, s, "0"));
            Suma& t = porVendedor[k.first];
            t.cantidad += s.cantidad, t.devueltos += s.devueltos, t.total += s.total;
            t.total2 += s.total2, t.costo += s.costo, t.devoluciones += s.devoluciones;
            t.notas += s.notas;
        }
        for (const auto& [vendedor, s] : porVendedor) {
            if (!Uno("SELECT Clave FROM vendedores WHERE Clave='" + vendedor + "'")) continue;
            r.push_back(fila("0000-00-00", vendedor, s, "1"));
        }
        return r;
    }

    RepAdmUtilidad::Filtros FiltrosDeLaForma(bool multimoneda) {
        RepAdmUtilidad::Filtros f;
        f.desdeSQL = toolkit::LibKRVM().FechaSQL(forma.Ctl("mkeFecha", 0).Text);
        f.hastaSQL = toolkit::LibKRVM().FechaSQL(forma.Ctl("mkeFecha", 1).Text);
        f.cliente = forma.Ctl("txtDato", 0).Text;
        f.producto = forma.Ctl("txtDato", 1).Text;
        auto elegido = [this](std::int16_t i) {
            const auto& c = forma.Ctl("dcmDato", i);
            return c.ListIndex >= 0 ? c.BoundText : std::string();
        };
        f.linea = elegido(0), f.sublinea = elegido(1), f.marca = elegido(2), f.vendedor = elegido(3);
        f.puntoDeVenta = forma.PuntoDeVenta;
        f.multimoneda = multimoneda;
        return f;
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<data::BaseDDMaria> base;
    std::shared_ptr<host::InteraccionGrabada> sink = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal instalada{sink};
    RepAdmUtilidad forma;
    int corridas = 0;
    std::vector<Fila> porDias;
};

struct CasoLlenado {
    const char* nombre;
    std::vector<std::pair<std::string, std::string>> controles;
    bool multimoneda = true;
    bool puntoDeVenta = false;
    std::size_t minimoDeFilas = 1;  // so that no case passes on two empty tables
};

class LlenadoUtilidad : public Utilidad, public ::testing::WithParamInterface<CasoLlenado> {};

TEST_P(LlenadoUtilidad, ElLlenadoDeConjuntosDaLoQueLaReglaLineaPorLinea) {
    const auto& c = GetParam();
    if (!c.multimoneda) bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato='MultiMoneda'");
    Prepara(c.controles);
    forma.PuntoDeVenta = c.puntoDeVenta;
    ASSERT_TRUE(Imprime());
    const auto f = FiltrosDeLaForma(c.multimoneda);
    const int primerTipo = RepAdmUtilidad::PrimerTipo(forma.Ctl("cmbVentas").ListIndex);
    if (forma.Ctl("chkXdias").Value != 0) {
        const auto esperadas = ReglaPorDias(f, primerTipo);
        EXPECT_GE(esperadas.size(), c.minimoDeFilas);
        Iguales(esperadas, porDias,
                {"Fecha", "VendedorCve", "VendedorNom", "Cantidad", "Devueltos", "Total", "Total2",
                 "Costo", "Total3", "Porcentaje", "Devoluciones", "NotasCredito", "Resumen"},
                {"Cantidad", "Devueltos", "Total", "Total2", "Costo", "Total3", "Porcentaje",
                 "Devoluciones", "NotasCredito"});
    } else {
        const auto esperadas = Regla(f, primerTipo, forma.Ctl("optQue", 0).Value != 0);
        EXPECT_GE(esperadas.size(), c.minimoDeFilas);
        Iguales(esperadas, Utilidades(), RepAdmUtilidad::ColumnasUtilidad(),
                {"CostoPromedio", "PrecioNeto", "Precio", "Desc1", "Desc2", "Desc3", "Desc4",
                 "Desc5", "Cantidad", "Devueltos", "Paridad", "Costo", "ExistenciaAnterior",
                 "EnDevolucs", "EnNdeC", "MontoNdeC"});
    }
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
    // The period's expenses outside the point of sale.
    const auto gastos = Local("SELECT Gastos FROM TotalesUtilPdV");
    ASSERT_EQ(gastos.size(), 1u);
    EXPECT_DOUBLE_EQ(Numero(gastos[0][0]),
                     Numero(bd->valor("SELECT SUM(Cantidad) FROM gastos WHERE PdeV=0 AND Fecha>='" +
                                      f.desdeSQL + "' AND Fecha<='" + f.hastaSQL + "'")));
}

INSTANTIATE_TEST_SUITE_P(
    Casos, LlenadoUtilidad,
    ::testing::Values(
        CasoLlenado{"todo", {}, true, false, 10},
        CasoLlenado{"sin multimoneda", {}, false, false, 10},
        CasoLlenado{"devoluciones del periodo", {{"optQue(1)", "1"}}, true, false, 13},
        CasoLlenado{"solo remisiones", {{"cmbVentas", "#1"}}, true, false, 3},
        CasoLlenado{"ambas", {{"cmbVentas", "#2"}}, true, false, 10},
        CasoLlenado{"vendedor y cliente", {{"dcmDato(3)", "V01"}, {"txtDato(0)", "C1"}}, true,
                    false, 6},
        CasoLlenado{"linea sublinea y marca",
                    {{"dcmDato(0)", "2"}, {"dcmDato(1)", "3"}, {"dcmDato(2)", "2"}}, true, false, 3},
        CasoLlenado{"producto", {{"txtDato(1)", "P1"}, {"optQue(1)", "1"}}, true, false, 5},
        CasoLlenado{"un dia", {{"mkeFecha(0)", "06/03/2025"}, {"mkeFecha(1)", "06/03/2025"}}, true,
                    false, 2},
        CasoLlenado{"punto de venta", {}, true, true, 11},
        CasoLlenado{"por dias", {{"chkXdias", "1"}}, true, false, 7},
        CasoLlenado{"por dias sin multimoneda ni facturas", {{"chkXdias", "1"}, {"cmbVentas", "#1"}},
                    false, false, 3},
        CasoLlenado{"por dias de un vendedor y una linea",
                    {{"chkXdias", "1"}, {"dcmDato(3)", "V02"}, {"dcmDato(0)", "2"}}, true, false,
                    3}),
    pruebas::PorNombre());

// A few figures worked out by hand, so that the rule above is not merely the code again.
TEST_F(Utilidad, CifrasHechasAMano) {
    Prepara({});
    ASSERT_TRUE(Imprime());
    const auto filas = Local(
        "SELECT IdentVta,clave,PrecioNeto,CostoPromedio,Costo,ExistenciaAnterior,EnDevolucs,"
        "EnNdeC,Linea FROM Utilidad ORDER BY Id");
    std::map<std::string, Fila> por;
    for (const auto& f : filas) por[*f[0] + "/" + f[1].value_or("")] = f;
    // Two discounts of 10 price the line at 81 %, not 80 %; the first return took one back.
    EXPECT_DOUBLE_EQ(Numero(por["F1/P1"][2]), 81);
    EXPECT_DOUBLE_EQ(Numero(por["F1/P1"][4]), 61);
    EXPECT_DOUBLE_EQ(Numero(por["F1/P1"][5]), 100);
    EXPECT_DOUBLE_EQ(Numero(por["F1/P1"][6]), 1);
    // The second return of the invoice is not the one looked up.
    EXPECT_DOUBLE_EQ(Numero(por["F1/P2"][6]), 0);
    // No history row: cost from history stays 0; a product that is gone has no line.
    EXPECT_DOUBLE_EQ(Numero(por["F1/P3"][4]), 0);
    EXPECT_DOUBLE_EQ(Numero(por["F1/PX"][4]), 0);
    EXPECT_EQ(por["F1/PX"][8], "");
    // Dollars: 10 x 18.5 less 5, 4, 3, 2 and 1 %; the cost at its own parity.
    EXPECT_NEAR(Numero(por["F2/P1"][2]), 185 * 0.95 * 0.96 * 0.97 * 0.98 * 0.99, 1e-9);
    EXPECT_NEAR(Numero(por["F2/P1"][3]), 3.2 * 18.4, 1e-9);
    // The delivery note's return came with a credit note.
    EXPECT_DOUBLE_EQ(Numero(por["R1/P2"][7]), 2);
    EXPECT_DOUBLE_EQ(Numero(por["R1/P2"][2]), 38);
    // Cancelled, not applied and point-of-sale invoices are not there.
    for (const char* fuera : {"F3/P1", "F4/P1", "F5/P2"}) EXPECT_EQ(por.count(fuera), 0u) << fuera;
    EXPECT_EQ(por.count("N10/"), 1u);
    EXPECT_EQ(por.count("N9/"), 0u);
}

TEST(UtilidadTextos, ConsultasDelSistema) {
    RepAdmUtilidad::Filtros todo;
    todo.desdeSQL = "2025-03-01";
    todo.hastaSQL = "2025-03-31";
    todo.vendedor = "V01";
    todo.cliente = "C1";
    RepAdmUtilidad::Filtros nada;
    nada.puntoDeVenta = true;
    EXPECT_EQ(RepAdmUtilidad::ConsultaVentas(0, todo, false),
              "SELECT Cantidad,Devueltos,facturas.Moneda,facturas.Id,facturas.Vendedor,"
              "facturasdetalle.Partida,facturasdetalle.IdKardex,facturas.Desc5,Cliente,Producto,"
              "CostoPromedio,PrecioNeto,ParidadCompra,Descripcion,Fecha,Factura,Serie,"
              "facturas.Paridad,facturas.Desc1,facturas.Desc2,facturas.Desc3,facturas.Desc4 FROM "
              "facturas LEFT JOIN facturasdetalle ON facturas.Id=facturasdetalle.Id WHERE "
              "Cancelada=0 AND Afectada=1 AND facturas.PdeV=0 AND Fecha>='2025-03-01' and "
              "Fecha<='2025-03-31' and Vendedor='V01' and Cliente='C1' ORDER BY "
              "facturas.Id,facturasdetalle.Partida");
    EXPECT_EQ(RepAdmUtilidad::ConsultaVentas(1, nada, true),
              "SELECT Cantidad,Devueltos,remisiones.Moneda,remisiones.Id,remisiones.Vendedor,"
              "remisiones.Desc5,Cliente,Producto,CostoPromedio,PrecioNeto,ParidadCompra,"
              "Descripcion,Fecha,Factura,Serie,remisiones.Paridad,remisiones.Desc1,"
              "remisiones.Desc2,remisiones.Desc3,remisiones.Desc4 FROM remisiones LEFT JOIN "
              "remisionesdetalle ON remisiones.Id=remisionesdetalle.Id WHERE Cancelada=0 AND "
              "Afectada=1 AND Vendedor<>'' ORDER BY remisiones.Id,remisionesdetalle.Partida");
    EXPECT_EQ(RepAdmUtilidad::ConsultaDevoluciones(todo),
              "SELECT Producto,CostoPromedio,Precio,Descripcion,Cantidad,devolucionctes.Moneda,"
              "devolucionctes.DevolucionCtes,Fecha,devolucionctes.Paridad,devolucionctes.Desc1,"
              "devolucionctes.Desc2,devolucionctes.Desc3,devolucionctes.Desc4,"
              "devolucionctes.Desc5,Cliente,devolucionctesdet.Partida,devolucionctes.Numero,"
              "devolucionctes.Serie,devolucionctes.Tipo,devolucionctes.NotasCredito FROM "
              "devolucionctes LEFT JOIN devolucionctesdet ON "
              "devolucionctes.DevolucionCtes=devolucionctesdet.DevolucionCtes WHERE Cancelada=0 "
              "AND Fecha>='2025-03-01' and Fecha<='2025-03-31' and Cliente='C1' ORDER BY "
              "devolucionctes.DevolucionCtes,devolucionctesdet.Partida");
    EXPECT_EQ(RepAdmUtilidad::ConsultaNotasCredito(nada),
              "SELECT NotaCredito,Serie,Fecha,notascredito.Cliente,Moneda,Paridad,Subtotal,"
              "Concepto,clientes.Vendedor FROM notascredito LEFT JOIN clientes ON "
              "notascredito.Cliente=clientes.Clave WHERE Devolucion=0 AND Cancelada=0 ORDER BY "
              "NotaCredito");
    EXPECT_EQ(RepAdmUtilidad::FuenteGastos(todo),
              "gastos WHERE PdeV=0 AND Fecha>='2025-03-01' AND Fecha<='2025-03-31'");
    EXPECT_EQ(RepAdmUtilidad::FuenteGastos(nada), "gastos WHERE PdeV=0");
    const auto porDias = RepAdmUtilidad::SqlPorDias("tbltemp3", 0, nada);
    ASSERT_EQ(porDias.size(), 4u);
    EXPECT_EQ(porDias[1], "UPDATE tbltemp3 SET Total3=Total-Costo");
    EXPECT_EQ(porDias[3], "UPDATE tbltemp3 SET Porcentaje=IF(Total<>0,Total3/Total,0)");
    // The list's first entry reads both kinds, as do "Ambas" and no choice.
    EXPECT_EQ(RepAdmUtilidad::PrimerTipo(0), 0);
    EXPECT_EQ(RepAdmUtilidad::PrimerTipo(1), 1);
    EXPECT_EQ(RepAdmUtilidad::PrimerTipo(2), 0);
    EXPECT_EQ(RepAdmUtilidad::PrimerTipo(-1), 0);
}

struct CasoPlantilla {
    const char* nombre;
    std::vector<std::pair<std::string, std::string>> controles;
    std::string plantilla;
    std::vector<std::string> formulas;
    std::string seleccion;
};

class PlantillaUtilidad : public Utilidad, public ::testing::WithParamInterface<CasoPlantilla> {};

TEST_P(PlantillaUtilidad, LaSolicitudLlevaLaPlantillaYSusDatos) {
    const auto& c = GetParam();
    Prepara(c.controles);
    ASSERT_TRUE(Imprime());
    const auto& sol = session::solicitud();
    EXPECT_EQ(sol.Plantilla, c.plantilla);
    EXPECT_EQ(sol.Formulas(), c.formulas);
    EXPECT_EQ(sol.FormulaSeleccion, c.seleccion);
    EXPECT_EQ(sol.ArchivosDatos, c.seleccion.empty()
                                     ? std::vector<std::string>{}
                                     : std::vector<std::string>{"utilidadxdias*tbltemp0"});
    EXPECT_EQ(corridas, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, PlantillaUtilidad,
    ::testing::Values(
        CasoPlantilla{"detalle", {}, "utilidad.rpt", {}, ""},
        CasoPlantilla{"por linea", {{"chkXlin", "1"}}, "utilidadtotlin.rpt", {}, ""},
        CasoPlantilla{"totalizado", {{"chkTotalizado", "1"}}, "utilidadtot.rpt", {}, ""},
        CasoPlantilla{"totalizado quita la linea",
                      {{"chkXlin", "1"}, {"chkTotalizado", "1"}}, "utilidadtot.rpt", {}, ""},
        CasoPlantilla{"por dias de un vendedor",
                      {{"chkXdias", "1"}, {"dcmDato(3)", "V01"}}, "utilidadtotxdias.rpt",
                      {"VENDEDOR='Vendedor: ANA LOPEZ'"}, "{utilidadxdias.Resumen}=0"},
        CasoPlantilla{"sin totalizar deja los dias",
                      {{"chkXdias", "1"}, {"chkTotalizado", "0"}}, "utilidad.rpt", {}, ""}),
    pruebas::PorNombre());

// A failure while filling: the by-days work table is dropped and the local table keeps what the
// last good print left in it; the message names the step.
TEST_F(Utilidad, UnFalloNoDejaTablasAMedias) {
    Prepara({});
    ASSERT_TRUE(Imprime());
    const auto antes = Utilidades();
    ASSERT_FALSE(antes.empty());
    bd->ejecutar("DROP TABLE notascredito");
    EXPECT_FALSE(forma.Imprime());
    EXPECT_NE(forma.UltimoError().find("notas de crédito"), std::string::npos)
        << forma.UltimoError();
    EXPECT_EQ(Utilidades().size(), antes.size());
    forma.Fija("chkXdias", "1");
    EXPECT_FALSE(forma.Imprime());
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
    EXPECT_EQ(corridas, 1);
}

TEST_F(Utilidad, ConfiguracionOcultaLoQueLaEmpresaNoUsa) {
    bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato IN ('Remisiones','Marcas')");
    Prepara({{"txtDato(0)", "C2"}, {"txtDato(1)", "NO-EXISTE"}, {"dcmDato(0)", "FERRETERIA"}});
    EXPECT_FALSE(forma.Ctl("cmbVentas").Visible);
    EXPECT_FALSE(forma.Ctl("dcmDato", 2).Visible);
    EXPECT_TRUE(forma.Ctl("dcmDato", 3).Visible);
    EXPECT_EQ(forma.Ctl("lblDato", 0).Caption, "PINTURAS DEL NORTE");
    EXPECT_EQ(forma.Ctl("lblDato", 1).Caption, "");
    // The sub-lines follow the line chosen.
    EXPECT_EQ(forma.Ctl("dcmDato", 1).Items, (std::vector<std::string>{"HERRAMIENTA", "SERVICIOS"}));
    EXPECT_EQ(forma.Ctl("dcmDato", 3).Items,
              (std::vector<std::string>{"ANA LOPEZ", "BETO RUIZ", "SIN VENTAS"}));
}

}  // namespace
}  // namespace paratzorep::reports
