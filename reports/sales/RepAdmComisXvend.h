// RepAdmComisXvend: commissions by seller. Reads the company's commission settings, has the
// commission engine (clsComisionarAux) work out what each seller earned in the period on the
// documents, currency and seller chosen, and prints "comispv1.rpt" (sales brackets, tables of
// the local work file) or "comispv2.rpt" (line and price number, two work tables).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

// The company's commission settings (configura).
struct ConfigComisiones {
    bool porPagado = false;     // ComisXpagado
    bool porLiquidado = false;  // ComisXliquidado
    bool porTabla = false;      // ComisVendXtabla
    bool porLinea = false;      // ComisVendXlinea
    bool porPrecios = false;    // ComisVendXprecios
    bool porLinYprec = false;   // ComisVendXlinYprec

    // The bracket scheme is in force with ComisVendXtabla, or when no line or price flag is.
    bool EsquemaDeTabla() const { return porTabla || !(porLinea || porPrecios || porLinYprec); }
    bool SobrePagos() const { return porPagado || porLiquidado; }
    // "pagado", "liquidado" or "vendido".
    std::string Base() const;
    // The percentage sources of the line-and-price scheme (both when only ComisVendXlinYprec,
    // or none, is on).
    bool FuenteLinea() const { return porLinea || porLinYprec || !porPrecios; }
    bool FuentePrecio() const { return porPrecios || porLinYprec || !porLinea; }
};

class RepAdmComisXvend : public FormaReporte {
  public:
    RepAdmComisXvend();

    // The documents list: "Facturas", "Remisiones", "Ambas".
    static const std::vector<std::string>& ListaDocumentos();
    // The caption of the basis label: "Comisionar por lo " + ConfigComisiones::Base().
    static std::string TextoBase(const ConfigComisiones& config);
    // The template of a scheme, under the reports folder `rutaRpts`.
    static std::string Plantilla(const ConfigComisiones& config, const std::string& rutaRpts);
    // The data files of the line-and-price templates: both work tables in one entry.
    static std::string ArchivosDatos(const std::string& tablaVentas,
                                     const std::string& tablaDetalle);
    // The sort fields of an order (optDato index) for the scheme's documents table.
    static std::vector<std::string> Orden(std::int16_t opcion, bool porTabla);
    // "Del ... al ...", "Desde el ...", "Hasta el ..." or "Todas las fechas", dates as typed.
    static std::string TextoPeriodo(const std::string& desde, const std::string& hasta);

    const ConfigComisiones& Configuracion() const { return config_; }

  protected:
    std::string TablaMovimientos() const override { return "facturas"; }
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void Imprimir() override;

  private:
    void MuestraVendedor();

    ConfigComisiones config_;
};

}  // namespace paratzorep::reports
