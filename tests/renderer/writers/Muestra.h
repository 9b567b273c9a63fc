// A realistic report for the writer tests: customer balances grouped by customer, with
// a title, column headings, dates, amounts, group totals and "page N of M".
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "renderer/layout/FuentePrueba.h"
#include "renderer/layout/ListaPaginas.h"
#include "renderer/layout/Maquetador.h"
#include "renderer/template/Plantilla.h"

namespace paratzorep::renderer::prueba {

inline const char* kPlantillaMuestra = R"(<?xml version="1.0" encoding="UTF-8"?>
<reporte version="1" titulo="Saldos de clientes">
  <pagina tamano="Carta" unidades="mm" margenes="12"/>
  <fuente familia="DejaVu Sans" tamano="8"/>
  <tabla nombre="cxc"/>
  <tabla nombre="clientes"/>
  <union tipo="izquierda" tabla="clientes" de="cxc.Clave" a="clientes.clave"/>
  <formula nombre="ENCABEZADO">'Antigüedad de saldos'</formula>
  <formula nombre="TEXTOLLAVE">'Movto.'</formula>
  <parametro nombre="UsuarioImpresion"/>
  <grupo campo="cxc.Clave" juntos="si">
    <encabezado alto="6">
      <campo ref="cxc.Clave" x="0" y="1.5" ancho="20" estilo="negrita"/>
      <campo ref="clientes.Nombre" x="22" y="1.5" ancho="120" estilo="negrita"/>
    </encabezado>
    <pie alto="8">
      <linea x="150" y="0.8" x2="191.9"/>
      <texto x="90" y="1.8" ancho="58" alinea="derecha">Total del cliente</texto>
      <resumen funcion="suma" campo="cxc.Saldo" x="150" y="1.8" ancho="41.9" formato="#,##0.00" estilo="negrita"/>
    </pie>
  </grupo>
  <encabezadoReporte alto="16">
    <formula nombre="ENCABEZADO" x="0" y="0" ancho="191.9" tamano="14" estilo="negrita" alinea="centro"/>
    <texto x="0" y="7.5" ancho="191.9" alinea="centro" tamano="9">Cuentas por cobrar al 05/mar/2024</texto>
    <parametro nombre="UsuarioImpresion" x="0" y="11.5" ancho="191.9" alinea="derecha"/>
  </encabezadoReporte>
  <encabezadoPagina alto="8">
    <caja x="0" y="0" ancho="191.9" alto="6" relleno="0.9" grosor="0"/>
    <formula nombre="TEXTOLLAVE" x="22" y="1.3" ancho="30" estilo="negrita"/>
    <texto x="55" y="1.3" ancho="30" estilo="negrita" alinea="derecha">Número</texto>
    <texto x="95" y="1.3" ancho="30" estilo="negrita">Vencimiento</texto>
    <texto x="150" y="1.3" ancho="41.9" estilo="negrita" alinea="derecha">Saldo</texto>
  </encabezadoPagina>
  <detalle alto="4.2">
    <campo ref="cxc.Tipo" x="22" y="0.3" ancho="30"/>
    <campo ref="cxc.Numero" x="55" y="0.3" ancho="30" formato="0"/>
    <campo ref="cxc.Vencimiento" x="95" y="0.3" ancho="30" formato="dd/mmm/yyyy"/>
    <campo ref="cxc.Saldo" x="150" y="0.3" ancho="41.9" formato="#,##0.00"/>
  </detalle>
  <piePagina alto="8">
    <linea x="0" y="1" ancho="191.9"/>
    <especial tipo="fecha" x="0" y="2.5" ancho="60" formato="dd/mmm/yyyy"/>
    <especial tipo="paginaDeTotal" x="131.9" y="2.5" ancho="60" alinea="derecha"/>
  </piePagina>
  <pieReporte alto="10">
    <linea x="150" y="1" x2="191.9" grosor="1"/>
    <texto x="90" y="2.5" ancho="58" alinea="derecha" estilo="negrita">Total general</texto>
    <resumen funcion="suma" campo="cxc.Saldo" x="150" y="2.5" ancho="41.9" formato="#,##0.00" estilo="negrita"/>
    <resumen funcion="cuenta" campo="cxc.Numero" x="0" y="2.5" ancho="80" formato="#,##0 documentos"/>
  </pieReporte>
  <sinDatos>No hay saldos pendientes en las fechas pedidas</sinDatos>
</reporte>
)";

inline const char* kNombres[] = {"Abarrotes La Güera",        "Ferretería Núñez",
                                 "Papelería El Águila",       "Distribuidora Peña",
                                 "Comercial Sánchez y Hijos", "Farmacia San José"};

// `clientes` customers with a varying number of documents each.
inline FuentePrueba DatosMuestra(int clientes) {
    std::vector<std::vector<Valor>> filas;
    int numero = 1000;
    for (int c = 0; c < clientes; ++c) {
        int docs = 3 + (c * 7) % 11;
        for (int d = 0; d < docs; ++d) {
            double saldo = ((c + 1) * 1237.5 + d * 311.25);
            if (d % 4 == 3) saldo *= 10;
            filas.push_back(
                {Valor::texto("C" + std::to_string(100 + c)), Valor::texto(kNombres[c % 6]),
                 Valor::texto(d % 3 == 0   ? "Factura"
                              : d % 3 == 1 ? "Remisión"
                                           : "Cargo"),
                 Valor::numero(numero++), Valor::fecha({2024, 1 + (c + d) % 12, 1 + (d * 5) % 28}),
                 Valor::numero(saldo)});
        }
    }
    return FuentePrueba(
        {"cxc.Clave", "clientes.Nombre", "cxc.Tipo", "cxc.Numero", "cxc.Vencimiento", "cxc.Saldo"},
        std::move(filas),
        {{"ENCABEZADO", Valor::texto("Antigüedad de saldos")},
         {"TEXTOLLAVE", Valor::texto("Movto.")},
         {"UsuarioImpresion", Valor::texto("Impreso por: ADMIN")}});
}

// Lays out the sample report with `clientes` customers, printed at `ahora`, replays it to
// the writers and returns the page count.
inline int RenderMuestra(int clientes, Medidor& medidor, const std::vector<Escritor*>& escritores,
                         std::time_t ahora = 1709640000) {
    Plantilla p = LeePlantillaTexto(kPlantillaMuestra, "muestra.rpt");
    auto datos = DatosMuestra(clientes);
    ListaPaginas lista;
    Maquetador m(p, medidor, ahora);
    auto r = m.Maqueta(datos, lista);
    lista.Reproduce(m.DocumentoSalida(), medidor, escritores);
    return r.paginas;
}

}  // namespace paratzorep::renderer::prueba
